#pragma once
/// The ball on the towing car. It names the tongue that it takes.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class HitchObject final : public RigHelper {
 public:
    HitchObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;
    bool LiesAtFirstPoint() const override { return true; }

    /// Of the tongue, or null. Asked each time, since nodes come and go.
    INode* ConnectionNode() const;

    // Cached.
    float radius = 0.0f, ruggedness = 0.0f;
};

}  // namespace tavrik_plugin
