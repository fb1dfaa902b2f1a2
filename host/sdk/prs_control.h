#pragma once
/// The host's own transform controller: a frame relative to the parent, or position, rotation and scale with keys.

#include <optional>
#include <vector>

#include "host/sdk/max.h"

namespace tavrik_host {

/// A rotation as x, y, z, w; length 1 is not needed.
struct Rotation {
    float x, y, z, w;
    bool operator==(const Rotation&) const = default;
};

enum class KeyCurve { Step, Linear };

template <typename Value>
struct Key {
    TimeValue tick;
    Value value;
};

/// The keys of one track, ticks ascending. Before the first and after the last key their values hold.
template <typename Value>
struct KeyTrack {
    KeyCurve curve = KeyCurve::Linear;
    std::vector<Key<Value>> keys;
};

/// Class (8197, 0). Without keys it holds one frame, to the bit as it was set. With keys in any track, what has no keys is the
/// `rest` of that track; the frame is scale along the node's axes, then rotation, then position. Rotations are blended the
/// short way round.
class PrsControl final : public Control {
 public:
    const Matrix3& Local() const { return local_; }
    void SetLocal(const Matrix3& local);

    bool HasKeys() const;
    KeyTrack<Point3> position, scale;
    KeyTrack<Rotation> rotation;
    Point3 restPosition{0, 0, 0}, restScale{1, 1, 1};
    Rotation restRotation{0, 0, 0, 1};
    /// To be called after keys were changed.
    void KeysChanged();

    /// Relative to the parent.
    Matrix3 LocalAt(TimeValue t) const;

    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {PRS_CONTROL_CLASS_ID, 0}; }
    void GetClassName(MSTR& s) override { s = L"Position/Rotation/Scale"; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    void GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method = CTRL_ABSOLUTE) override;
    /// A controller with keys stays as it is: its keys are the motion.
    void SetValue(TimeValue t, void* val, int commit = 1, GetSetMethod method = CTRL_ABSOLUTE) override;
    void Copy(Control* from) override;
    RefTargetHandle Clone(RemapDir& remap) override;

 private:
    Matrix3 local_{TRUE};
};

ClassDesc& PrsControlClass();

}  // namespace tavrik_host
