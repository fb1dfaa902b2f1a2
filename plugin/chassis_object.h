#pragma once
/// The body of a car: a box with mass and stiffness. +Y is the front.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class ChassisObject final : public RigHelper {
 public:
    ChassisObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;

    // Cached.
    float width = 0.0f, length = 0.0f, height = 0.0f;  // half sizes along X, Y and Z
    float mass = 15.0f;
    float solidity = 5000.0f;
    float rotationShift = 0.0f;  // a ratio of `length`
};

}  // namespace tavrik_plugin
