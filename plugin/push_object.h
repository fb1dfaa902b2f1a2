#pragma once
/// A force on a car: for a time, or after an animated percentage.

#include "plugin/helper_object.h"
#include "rig/push_values.h"

namespace tavrik_plugin {

class PushObject final : public RigHelper {
 public:
    PushObject();
    void ReadValues(TimeValue t) override { UpdatePushCache(t); }
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool ShowsLock() const override { return false; }  // no recording ever moves it
    bool Drag(const Point3& d) override;
    ParamMap2UserDlgProc* DialogProc() override;

    /// Takes the parameters at time 0. Start and length keep what they were unless the push is a timed one.
    void UpdatePushCache(TimeValue t = 0);
    /// How hard it pushes at `tick`, from the cache and the animated percentage, mass * unit/s^2.
    float PushMagnitude(TimeValue tick) const;
    /// Of the master whose car is pushed, or null.
    INode* TavrikNode() const;

    // Cached.
    float dummySize = 0.0f;
    tavrik::PushValues values;
};

}  // namespace tavrik_plugin
