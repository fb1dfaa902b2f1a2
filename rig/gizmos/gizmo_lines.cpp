#include "rig/gizmos/gizmo_lines.h"

#include <cmath>

namespace tavrik {
namespace {

/// Lines through `first` and then `at(0)` .. `at(segments - 1)`.
template <typename PointAt>
void DrawChain(GizmoLines& lines, Point3 first, int segments, const PointAt& at) {
    for (int i = 0; i < segments; ++i) {
        const Point3 next = at(i);
        DrawLine(lines, first, next);
        first = next;
    }
}

float FullTurn(int i, int segments) { return 2.0f * kGizmoPi * float(i + 1) / float(segments); }
float QuarterTurn(int i, int segments) { return kGizmoPi / 2.0f * float(i + 1) / float(segments); }

}  // namespace

void DrawLine(GizmoLines& lines, const Point3& a, const Point3& b) { lines.push_back({a, b}); }

void DrawLine(GizmoLines& lines, float ax, float ay, float az, float bx, float by, float bz) {
    DrawLine(lines, {ax, ay, az}, {bx, by, bz});
}

void DrawCircleYZ(GizmoLines& lines, float x, float y, float z, float radius, int segments) {
    DrawChain(lines, {x, y, z + radius}, segments, [=](int i) {
        const float a = FullTurn(i, segments);
        return Point3{x, y + radius * std::sin(a), z + radius * std::cos(a)};
    });
}

void DrawCircleXZ(GizmoLines& lines, float x, float y, float z, float radius, int segments) {
    DrawChain(lines, {x + radius, y, z}, segments, [=](int i) {
        const float a = FullTurn(i, segments);
        return Point3{x + radius * std::cos(a), y, z + radius * std::sin(a)};
    });
}

void DrawCircleXY(GizmoLines& lines, float x, float y, float z, float radius, int segments) {
    DrawChain(lines, {x, y + radius, z}, segments, [=](int i) {
        const float a = FullTurn(i, segments);
        return Point3{x + radius * std::sin(a), y + radius * std::cos(a), z};
    });
}

void DrawCircle(GizmoLines& lines, const Point3& centre, const Point3& axis1, const Point3& axis2, int segments) {
    DrawChain(lines, centre + axis1, segments, [&](int i) {
        const float a = FullTurn(i, segments);
        return centre + axis1 * std::cos(a) + axis2 * std::sin(a);
    });
}

void DrawBall(GizmoLines& lines, const Point3& centre, float radius, int segments) {
    DrawCircleYZ(lines, centre.x, centre.y, centre.z, radius, segments);
    DrawCircleXZ(lines, centre.x, centre.y, centre.z, radius, segments);
    DrawCircleXY(lines, centre.x, centre.y, centre.z, radius, segments);
}

void DrawArc(GizmoLines& lines, const Point3& a, const Point3& b, const Point3& c, int segments) {
    //   p = (a - v) + u sin + v cos,   u = b - a,   v = b - c
    const Point3 u = b - a, v = b - c;
    DrawChain(lines, a, segments, [&](int i) {
        const float angle = QuarterTurn(i, segments);
        return (a - v) + u * std::sin(angle) + v * std::cos(angle);
    });
}

Point3 BezierPoint(const Point3& a, const Point3& b, const Point3& c, float t) {
    return (a + (b - a) * t) * (1.0f - t) + (b + (c - b) * t) * t;
}

void DrawBezier(GizmoLines& lines, const Point3& a, const Point3& b, const Point3& c, int segments) {
    DrawChain(lines, a, segments, [&](int i) { return BezierPoint(a, b, c, float(i + 1) / float(segments)); });
}

void DrawBox(GizmoLines& lines, float x, float y, float z) {
    for (const float side : {-1.0f, 1.0f}) {
        const float h = side * z;
        DrawLine(lines, -x, -y, h, x, -y, h);
        DrawLine(lines, x, -y, h, x, y, h);
        DrawLine(lines, x, y, h, -x, y, h);
        DrawLine(lines, -x, y, h, -x, -y, h);
    }
    DrawLine(lines, -x, -y, -z, -x, -y, z);
    DrawLine(lines, x, -y, -z, x, -y, z);
    DrawLine(lines, x, y, -z, x, y, z);
    DrawLine(lines, -x, y, -z, -x, y, z);
}

void DrawHeadAlongZ(GizmoLines& lines, float halfWidth, float base, float tip) {
    DrawLine(lines, halfWidth, 0.0f, base, 0.0f, 0.0f, tip);
    DrawLine(lines, -halfWidth, 0.0f, base, 0.0f, 0.0f, tip);
    DrawLine(lines, 0.0f, halfWidth, base, 0.0f, 0.0f, tip);
    DrawLine(lines, 0.0f, -halfWidth, base, 0.0f, 0.0f, tip);
}

}  // namespace tavrik
