#pragma once

#include "rig/gizmos/gizmo_lines.h"

namespace tavrik {

/// A forged arm in the shape of an A: two legs from the bushes of its pivot to the eye of its ball joint.
/// @param pivot     the middle of its pivot, which lies across X
/// @param joint     the ball joint
/// @param size      scales how thick and how wide it is; its length where it is drawn to scale
/// @param segments  of each curve
void DrawWishbone(GizmoLines& lines, const Point3& pivot, const Point3& joint, float size, int segments);

/// How far from the arm's middle either leg's bush stands, as a ratio of `size`.
constexpr float kWishboneHalfPivot = 0.32f;

}  // namespace tavrik
