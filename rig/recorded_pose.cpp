#include <cassert>
#include <cstddef>

#include "rig/car_rig.h"
#include "rig/recorded_motion.h"

namespace tavrik {
namespace {

/// `a` and `b` mixed row by row, in single precision: weight 0 gives `a`, 1 gives `b`. Rows 0..2 come out at length 1 each,
/// which keeps them axes but lets them lean a little from square between samples.
Matrix3 BlendPoses(const Matrix3& a, const Matrix3& b, float weight) {
    Matrix3 result;
    for (int r = 0; r < 4; ++r) result.row[r] = b.row[r] * weight + a.row[r] * (1.0f - weight);
    for (int r = 0; r < 3; ++r) result.row[r] = Normalize(result.row[r]);
    return result;
}

Point3 VelocityInFrame(const CarRig& rig, std::int32_t frame) {
    return ToPoint3(rig.motion.chassis[std::size_t(frame)].momentum / rig.chassisParams.Mass);
}

}  // namespace

Matrix3 ComponentPose(const CarRig& rig, std::int32_t frame, ComponentType objectType, std::int32_t index) {
    const std::size_t at = std::size_t(frame);
    const DMatrix3& chassis = rig.motion.chassis[at].frame;
    switch (objectType) {
        case ComponentType::Chassis:
            return ToMatrix3(chassis);
        case ComponentType::Suspension: {
            assert(index < rig.motion.unitCount);
            DMatrix3 mixed = rig.motion.wheels[index][at].frame;
            mixed.row[0] = Compose(rig.units[index].frame, chassis).row[0];
            mixed.row[1] = Cross(mixed.row[0], mixed.row[2]);
            return ToMatrix3(mixed);
        }
        case ComponentType::Wheel:
            assert(index < rig.motion.unitCount);
            return ToMatrix3(rig.motion.wheels[index][at].frame);
        case ComponentType::UnitFrame:
            return ToMatrix3(Compose(rig.units[index].frame, chassis));
        case ComponentType::Hitch:
            return ToMatrix3(Compose(rig.hitches[index].frame, chassis));
        case ComponentType::Sphere:
            return ToMatrix3(Compose(rig.spheres[index].frame, chassis));
    }
    assert(false && "a component that no assembly makes");
    return IdentityMatrix3();
}

Matrix3 RecordedMotion::Sample(TimeValue tick, const CarRig& rig, ComponentType objectType, std::int32_t index) const {
    const FramePosition at = LocateTick(*this, tick);
    const Matrix3 pose = ComponentPose(rig, at.frame, objectType, index);
    if (at.next == at.frame) return pose;
    return BlendPoses(pose, ComponentPose(rig, at.next, objectType, index), at.weight);
}

Point3 RecordedMotion::VelocityAt(TimeValue tick, const CarRig& rig) const {
    const FramePosition at = LocateTick(*this, tick);
    const Point3 velocity = VelocityInFrame(rig, at.frame);
    if (at.next == at.frame) return velocity;
    return VelocityInFrame(rig, at.next) * at.weight + velocity * (1.0f - at.weight);
}

float RecordedMotion::SteerAt(TimeValue tick) const {
    const FramePosition at = LocateTick(*this, tick);
    const float value = float(steer[std::size_t(at.frame)].steerValue);
    if (at.next == at.frame) return value;
    return value * (1.0f - at.weight) + float(steer[std::size_t(at.next)].steerValue) * at.weight;
}

}  // namespace tavrik
