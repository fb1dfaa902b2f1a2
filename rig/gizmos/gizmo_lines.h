#pragma once
/// Lines of the wire drawings by which an artist sees a car's objects in a view, and the shapes that they are put together
/// from. All in the object's own space and in single precision, as the scene is.

#include <cstddef>
#include <span>
#include <vector>

#include "solver/single_maths.h"

namespace tavrik {

constexpr float kGizmoPi = 3.1415927f;

/// One straight line.
struct GizmoLine {
    Point3 from, to;
};

/// A drawing. Every shape below adds its lines at the end, each from where the one before it stopped.
using GizmoLines = std::vector<GizmoLine>;

void DrawLine(GizmoLines& lines, const Point3& a, const Point3& b);
void DrawLine(GizmoLines& lines, float ax, float ay, float az, float bx, float by, float bz);

// Circles of `segments` lines around (x, y, z), named by the plane that they lie in.
void DrawCircleYZ(GizmoLines& lines, float x, float y, float z, float radius, int segments);
void DrawCircleXZ(GizmoLines& lines, float x, float y, float z, float radius, int segments);
void DrawCircleXY(GizmoLines& lines, float x, float y, float z, float radius, int segments);
/// A circle, or an ellipse, that starts at `centre + axis1` and turns towards `axis2`.
void DrawCircle(GizmoLines& lines, const Point3& centre, const Point3& axis1, const Point3& axis2, int segments);
/// The three circles by which a ball is drawn.
void DrawBall(GizmoLines& lines, const Point3& centre, float radius, int segments);

/// A quarter of an ellipse from `a` to `c` that bulges towards `b`.
void DrawArc(GizmoLines& lines, const Point3& a, const Point3& b, const Point3& c, int segments);

/// The curve from `a` to `c` that `b` draws to itself, at `t` in 0..1.
Point3 BezierPoint(const Point3& a, const Point3& b, const Point3& c, float t);
void DrawBezier(GizmoLines& lines, const Point3& a, const Point3& b, const Point3& c, int segments);

/// The twelve edges of a box around the origin. @param x,y,z  half sizes
void DrawBox(GizmoLines& lines, float x, float y, float z);

/// Four lines from a square of half-width `halfWidth`, which lies across Z at height `base`, to (0, 0, tip).
void DrawHeadAlongZ(GizmoLines& lines, float halfWidth, float base, float tip);

}  // namespace tavrik
