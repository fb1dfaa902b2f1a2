#pragma once
/// A ball through which the body touches the ground.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class CSphereObject final : public RigHelper {
 public:
    CSphereObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;
    bool LiesAtFirstPoint() const override { return true; }

    // Cached.
    float radius = 0.0f, ruggedness = 0.0f, grip = 0.0f;
};

}  // namespace tavrik_plugin
