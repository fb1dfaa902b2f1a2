#include "rig/gizmos/gizmos.h"

namespace tavrik {
namespace {

/// A line in the plane z = 0.
void DrawFlat(GizmoLines& lines, float ax, float ay, float bx, float by) { DrawLine(lines, ax, ay, 0.0f, bx, by, 0.0f); }

/// A ring of half-width `w` around (0, c), open at the front. Its three quarters hang on the corners of a square on its tip.
/// @param rightSegments  of the quarter at +X
void DrawOpenRing(GizmoLines& lines, float w, float c, int rightSegments) {
    constexpr int kSegments = 10;
    DrawArc(lines, {w, c + w, 0}, {2.0f * w, c, 0}, {w, c - w, 0}, rightSegments);
    DrawArc(lines, {w, c - w, 0}, {0, c - 2.0f * w, 0}, {-w, c - w, 0}, kSegments);
    DrawArc(lines, {-w, c + w, 0}, {-2.0f * w, c, 0}, {-w, c - w, 0}, kSegments);
}

/// The head of the arrow in which the rings end on one side.
/// @param u  the unit, negative on the left
/// @param v  the unit
void DrawTurnHead(GizmoLines& lines, float u, float v, float c) {
    DrawFlat(lines, u, c + v, 2.0f * u, c + 2.0f * v);
    DrawFlat(lines, u, c + v, u, c + 4.0f * v);
    DrawFlat(lines, u, c + 4.0f * v, 4.0f * u, c + 4.0f * v);
    DrawFlat(lines, 3.0f * u, c + 3.0f * v, 4.0f * u, c + 4.0f * v);
}

}  // namespace

void DrawDirectionArrow(GizmoLines& lines, float size) {
    constexpr int kFootSegments = 20;
    const float b = 0.1f * size, a = 0.05f * size;
    for (const float s : {-a, a}) {
        DrawFlat(lines, 3.0f * s, 5.0f * b, 0.0f, 10.0f * b);
        DrawFlat(lines, 3.0f * s, 5.0f * b, s, 6.0f * b);
        DrawFlat(lines, s, 6.0f * b, 2.0f * s, b);
    }
    DrawBezier(lines, {2.0f * a, b, 0}, {0, 2.0f * b, 0}, {-2.0f * a, b, 0}, kFootSegments);
    DrawFlat(lines, 0.0f, 0.0f, 0.0f, b);
}

void DrawRotationMark(GizmoLines& lines, float unit, float centre) {
    const float u = unit, c = centre;
    DrawOpenRing(lines, 2.0f * u, c, 10);
    // Half as fine as its neighbours, which nobody ever saw in a view; drawings are compared line by line, so it stays.
    DrawOpenRing(lines, 3.0f * u, c, 5);
    DrawTurnHead(lines, u, u, c);
    DrawTurnHead(lines, -u, u, c);
    DrawFlat(lines, -6.0f * u, c, 6.0f * u, c);
    DrawFlat(lines, 0.0f, c - 6.0f * u, 0.0f, c + 6.0f * u);
}

GizmoLines ChassisLines(float width, float length, float height, float rotationShift) {
    GizmoLines lines;
    DrawBox(lines, width, length, height);
    DrawDirectionArrow(lines, length);
    DrawRotationMark(lines, 0.1f * width, length * rotationShift);
    return lines;
}

GizmoLines StartLines(float size) {
    GizmoLines lines;
    DrawDirectionArrow(lines, size);
    return lines;
}

}  // namespace tavrik
