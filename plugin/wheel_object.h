#pragma once
/// A wheel: it turns about its Z axis.

#include "plugin/helper_object.h"
#include "tracks/tread_table.h"

namespace tavrik_plugin {

class WheelObject final : public RigHelper {
 public:
    WheelObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;

    /// Samples the tread map anew. To be called before every render, on the main thread: a million questions to the map.
    void BuildPattern();
    /// What the last call found; an empty table before the first one. Whoever reads it keeps it alive, whatever is sampled
    /// meanwhile.
    const tavrik::SharedTread& Tread() const { return tread_; }

    // Cached.
    float radius = 0.0f, width = 0.0f;  // of the tyre; `width` is half of it, along the axle
    float mass = 1.0f;
    float ruggedness = 3000.0f;
    float grip = 30000.0f;

 private:
    tavrik::SharedTread tread_ = tavrik::EmptyTread();
};

}  // namespace tavrik_plugin
