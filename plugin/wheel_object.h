#pragma once
/// A wheel: it turns about its Z axis.

#include "plugin/helper_object.h"

namespace tavrik_plugin {

class WheelObject final : public RigHelper {
 public:
    WheelObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    bool Drag(const Point3& d) override;

    /// Called before every render, for what a tread pattern is sampled into. Nothing samples it so far.
    void BuildPattern() {}

    // Cached.
    float radius = 0.0f, width = 0.0f;  // of the tyre; `width` is half of it, along the axle
    float mass = 1.0f;
    float ruggedness = 3000.0f;
    float grip = 30000.0f;
};

}  // namespace tavrik_plugin
