#pragma once
/// Where and which way a car starts: the place of its node.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class StartObject final : public RigHelper {
 public:
    StartObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool ShowsLock() const override { return false; }  // no recording ever moves it
    bool Drag(const Point3& d) override;

    float size = 0.0f;  // cached
};

}  // namespace tavrik_plugin
