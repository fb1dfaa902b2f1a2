#include "rig/playback_rule.h"

#include <cstddef>

namespace tavrik {
namespace {

bool HasFrames(const RecordedMotion& motion) {
    const std::size_t frames = std::size_t(motion.frames);
    return motion.valid && motion.frames > 0 && motion.times.size() >= frames && motion.chassis.size() >= frames;
}

bool IsBelow(std::int32_t index, std::int32_t count) { return index >= 0 && index < count && index < kMaxComponents; }

bool IsRecordedWheel(const RecordedMotion& motion, std::int32_t index) {
    return IsBelow(index, motion.unitCount) && motion.wheels[index].size() >= std::size_t(motion.frames);
}

/// Whether everything that a component's pose is made of is there.
bool IsThere(const CarRig& rig, std::int32_t objectType, std::int32_t index) {
    switch (ComponentType(objectType)) {
        case ComponentType::Chassis:
            return true;                 // there is one, whatever its number
        case ComponentType::Suspension:  // a unit that was never filled in is square to the body
        case ComponentType::Wheel:
            return IsRecordedWheel(rig.motion, index);
        case ComponentType::UnitFrame:
            return IsBelow(index, rig.unitCount);
        case ComponentType::Hitch:
            return IsBelow(index, rig.hitchCount);
        case ComponentType::Sphere:
            return IsBelow(index, rig.sphereCount);
    }
    return false;
}

}  // namespace

bool FollowsRecording(ObjectClass masterClass, const CarRig* rig, std::int32_t objectType, std::int32_t index) {
    return masterClass == ObjectClass::Tavrik && rig != nullptr && rig->IsAnimated(objectType, index);
}

const CarRig* FollowedRig(const ControlValues& values) {
    if (values.Tavrik_Node == nullptr) return nullptr;
    const SceneNode& master = *values.Tavrik_Node;
    const CarRig* const rig = master.Rig();
    return FollowsRecording(master.Class(), rig, values.Object_Type, values.Axle_Num) ? rig : nullptr;
}

Matrix3 AnswerTM(const CarRig& rig, std::int32_t objectType, std::int32_t index, TimeValue tick) {
    if (!HasFrames(rig.motion)) return IdentityMatrix3();
    if (!IsThere(rig, objectType, index)) return rig.GetTM(ComponentType::Chassis, 0, tick);
    return rig.GetTM(ComponentType(objectType), index, tick);
}

ComponentType ComponentTypeOf(ObjectClass objectClass) {
    switch (objectClass) {
        case ObjectClass::Suspension:
            return ComponentType::Suspension;
        case ObjectClass::Wheel:
            return ComponentType::Wheel;
        case ObjectClass::Hitch:
        case ObjectClass::Tongue:
            return ComponentType::Hitch;
        case ObjectClass::Sphere:
            return ComponentType::Sphere;
        default:
            return ComponentType::Chassis;
    }
}

bool IsLocked(bool hasControl, const CarRig* rig, ComponentType objectType, std::int32_t index) {
    return hasControl && rig != nullptr && rig->IsAnimated(std::int32_t(objectType), index);
}

bool IsLocked(const SceneNode& node) {
    if (!node.HasControl()) return false;
    const ControlValues values = node.GetControl();
    const CarRig* const rig = values.Tavrik_Node != nullptr ? values.Tavrik_Node->Rig() : nullptr;
    return IsLocked(true, rig, ComponentTypeOf(node.Class()), values.Axle_Num);
}

}  // namespace tavrik
