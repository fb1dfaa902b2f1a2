#pragma once
/// What a suspension looks like in a view. Its object stands where the wheel is; X is the travel, Z the axle towards the wheel.
/// One piece is fixed to the object, the other lies between it and the body and moves with the car.

#include <cstdint>

#include "rig/gizmos/gizmo_lines.h"

namespace tavrik {

/// The hub carrier with the half shaft that ends in it, and an arrow to the outside.
GizmoLines HubCarrierLines(float length);

/// Between which points the moving piece is drawn, in the object's space.
struct SuspensionReach {
    Point3 from{0, 0, 0}, to{0, 0, 0};
};
/// Of a suspension that no recording moves. @param type  `kWishbone` or `kTelescopic`
SuspensionReach IdleReach(std::int32_t type, float length);
/// Of one that follows its wheel: out to where the body holds it. @param attachment  in the object's space
SuspensionReach LiveReach(const Point3& attachment);

/// Two wishbones one above the other, or a strut with its spring.
GizmoLines MovingPartLines(std::int32_t type, float length, const SuspensionReach& reach);

}  // namespace tavrik
