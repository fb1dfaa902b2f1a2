#pragma once
/// The cup on a trailer that sits on another car's hitch.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class TongueObject final : public RigHelper {
 public:
    TongueObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;

    float radius = 0.0f;  // cached
};

}  // namespace tavrik_plugin
