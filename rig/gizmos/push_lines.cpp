#include <cmath>

#include "rig/gizmos/gizmos.h"

namespace tavrik {
namespace {

/// Rays out of the ball's front half, the longest ones straight ahead where `p` is small.
void DrawBurst(GizmoLines& lines, float size, const std::function<double()>& rand01) {
    const auto ball = [&](const Point3& p) { return Point3{p.x, p.y - 3.0f, p.z} * size; };
    for (int i = 0; i < 8; ++i) {
        for (int j = 0; j < 8; ++j) {
            const float a = (float(j) + float(rand01())) / 4.0f * kGizmoPi;
            const float p = (float(i) + float(rand01())) / 16.0f * kGizmoPi;
            const Point3 direction{std::sin(a) * std::sin(p), std::cos(p), std::cos(a) * std::sin(p)};
            const float reach = 1.2f + 2.0f * ((1.7f - p) * (1.7f - p));
            DrawLine(lines, ball(direction * 1.2f), ball(direction * reach));
        }
    }
}

void DrawPushArrow(GizmoLines& lines, float size) {
    const float base = 4.0f * size;
    const Point3 tip{0, 7.0f * size, 0};
    DrawLine(lines, {0, 0, 0}, tip);
    const Point3 corners[] = {{size, base, 0}, {-size, base, 0}, {0, base, size}, {0, base, -size}};
    for (const Point3& corner : corners) DrawLine(lines, corner, tip);
    for (const int side : {0, 1}) {
        for (const int upright : {2, 3}) DrawLine(lines, corners[side], corners[upright]);
    }
}

}  // namespace

GizmoLines PushLines(float size, const std::function<double()>& rand01) {
    GizmoLines lines;
    DrawBall(lines, {0, -3.0f * size, 0}, size, 32);
    DrawBurst(lines, size, rand01);
    DrawPushArrow(lines, size);
    return lines;
}

}  // namespace tavrik
