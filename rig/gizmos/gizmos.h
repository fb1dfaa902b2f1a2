#pragma once
/// What a car's objects look like in a view: one drawing to a class, from plain values in scene units. The suspension, which
/// moves, has a header of its own.

#include <functional>

#include "rig/gizmos/gizmo_lines.h"

namespace tavrik {

/// The body as a box, with the way it faces and the point that it turns about.
/// @param width,length,height  half sizes along X, Y and Z
/// @param rotationShift        of the point that the steered axles aim at, a ratio of `length`
GizmoLines ChassisLines(float width, float length, float height, float rotationShift);

/// A flat arrow in the plane z = 0 from the origin, its tip at y = `size`.
void DrawDirectionArrow(GizmoLines& lines, float size);
/// Two rings that turn about (0, centre, 0) with an arrow at either end, and a cross hair. @param unit  a sixth of its width
void DrawRotationMark(GizmoLines& lines, float unit, float centre);

/// A tyre around Z with the axle's outer side at +Z. A tyre that is wider than its radius turns inside out.
/// @param width  half the tyre's
GizmoLines WheelLines(float radius, float width);

GizmoLines SphereLines(float radius);

/// A ball on a stem that bends forward into a bar.
GizmoLines HitchLines(float radius);
/// A cup in a cage on a beam that runs backward: its place is over a hitch's ball.
GizmoLines TongueLines(float radius);

/// Every burst is drawn from a stream with this seed, so that it looks the same in all views and never flickers.
constexpr unsigned kBurstSeed = 1000;
/// A ball that bursts along +Y, and an arrow.
/// @param rand01  numbers in [0, 1); 128 are drawn
GizmoLines PushLines(float size, const std::function<double()>& rand01);

GizmoLines StartLines(float size);

}  // namespace tavrik
