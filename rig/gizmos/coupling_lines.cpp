#include "rig/gizmos/gizmos.h"

namespace tavrik {
namespace {

/// A round bar along +Y with its end circles, at height `z`.
void DrawBar(GizmoLines& lines, float r, float z, float y0, float y1) {
    constexpr int kSegments = 20;
    DrawCircleXZ(lines, 0.0f, y0, z, r, kSegments);
    DrawCircleXZ(lines, 0.0f, y1, z, r, kSegments);
    DrawLine(lines, -r, y0, z, -r, y1, z);
    DrawLine(lines, r, y0, z, r, y1, z);
    DrawLine(lines, 0.0f, y0, z + r, 0.0f, y1, z + r);
    DrawLine(lines, 0.0f, y0, z - r, 0.0f, y1, z - r);
}

/// The stem from the collar down and around into the bar: as thick as both at either end.
void DrawStem(GizmoLines& lines, float r) {
    constexpr int kSegments = 40;
    DrawArc(lines, {0, r, 0}, {0, r, -3.0f * r}, {0, 4.0f * r, -3.0f * r}, kSegments);
    DrawArc(lines, {0, -r, 0}, {0, -r, -5.0f * r}, {0, 4.0f * r, -5.0f * r}, kSegments);
    for (const float x : {-r, r}) DrawArc(lines, {x, 0, 0}, {x, 0, -4.0f * r}, {x, 4.0f * r, -4.0f * r}, kSegments);
}

/// The cage around the cup: rounded in front, open behind, with a floor's edge and a roof's.
void DrawCage(GizmoLines& lines, float q) {
    constexpr int kSegments = 20;
    for (const float z : {0.0f, q}) {
        for (const float x : {-q, q}) DrawArc(lines, {x, 0, z}, {x, q, z}, {0, q, z}, kSegments);
    }
    for (const float x : {-q, q}) DrawLine(lines, x, 0.0f, 0.0f, x, 0.0f, q);
    DrawLine(lines, 0.0f, q, 0.0f, 0.0f, q, q);
}

/// The cage's sides drawn out backward, and closed there.
void DrawBeam(GizmoLines& lines, float q) {
    const float end = -5.0f * q;
    for (const float x : {-q, q}) {
        for (const float z : {0.0f, q}) DrawLine(lines, x, 0.0f, z, x, end, z);
        DrawLine(lines, x, end, 0.0f, x, end, q);
    }
    for (const float z : {0.0f, q}) DrawLine(lines, -q, end, z, q, end, z);
}

}  // namespace

GizmoLines HitchLines(float radius) {
    GizmoLines lines;
    const float r = 0.5f * radius;
    DrawBall(lines, {0, 0, 0}, radius, 40);
    DrawCircleXY(lines, 0.0f, 0.0f, 0.0f, r, 20);
    DrawStem(lines, r);
    DrawBar(lines, r, -4.0f * r, 4.0f * r, 10.0f * r);
    return lines;
}

GizmoLines TongueLines(float radius) {
    GizmoLines lines;
    const float q = 1.2f * radius;
    const Point3 top{0, 0, radius};
    DrawCircleXY(lines, 0.0f, 0.0f, 0.0f, radius, 40);
    for (const float rim : {-radius, radius}) {
        DrawArc(lines, {rim, 0, 0}, {rim, 0, radius}, top, 20);
        DrawArc(lines, {0, rim, 0}, {0, rim, radius}, top, 20);
    }
    DrawCage(lines, q);
    DrawBeam(lines, q);
    return lines;
}

}  // namespace tavrik
