#include "rig/assembly.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "rig/component_values.h"
#include "rig/node_values.h"
#include "rig/rig_collector.h"

namespace tavrik {
namespace {

using NodeList = std::vector<CollectedNode>;

// ------------------------------------------------------------------------------------------------------------------ assembly

/// The suspension stands where the wheel is at rest; the body holds it further in, back along the axle.
Matrix3 AttachmentFrame(Matrix3 rest, const SuspensionValues& suspension) {
    const float reach = suspension.Suspension_Type != kWishbone ? suspension.Wheel_Shift  //
                                                                : suspension.Length + suspension.Wheel_Shift;
    rest.row[3] = rest.row[3] - rest.row[2] * reach;
    return rest;
}

/// One car in the making.
struct Build {
    CarRig& rig;
    SceneNode& master;
    const RigCollector& parts;
    Matrix3 chassisInverse;
};

void BuildChassis(const Build& build) {
    const CollectedNode& chassis = build.parts.chassis.front();
    build.rig.chassisParams = MakeChassisParams(ReadChassisValues(*chassis.node));
    ResetBody(build.rig.chassisBody, FromMatrix3(chassis.transform));
    LockNode(*chassis.node, build.master, ComponentType::Chassis, 0, IdentityMatrix3());
}

void BuildUnits(const Build& build) {
    std::int32_t k = 0;
    for (const CollectedNode& wheel : build.parts.wheels) {
        const std::int32_t s = FindSuspension(build.parts, wheel);
        if (s == kNoSuspension) continue;
        // Two wheels may get the same suspension: each makes a unit, and the suspension follows the later one.
        const CollectedNode& suspension = build.parts.suspensions[std::size_t(s)];
        const SuspensionValues values = ReadSuspensionValues(*suspension.node);
        const Matrix3 slot = AttachmentFrame(suspension.transform * build.chassisInverse, values);
        build.rig.units[k] = MakeUnit(ReadWheelValues(*wheel.node), values, FromMatrix3(slot), wheel.node->GetHandle());
        LockNode(*wheel.node, build.master, ComponentType::Wheel, k, slot);
        LockNode(*suspension.node, build.master, ComponentType::Suspension, k, slot);
        ++k;
    }
    build.rig.unitCount = k;
}

/// Only the frames: whatever ties a hitch to another car's tongue is found out when the drive begins.
void BuildHitches(const Build& build) {
    std::int32_t i = 0;
    for (const CollectedNode& hitch : build.parts.hitches) {
        const Matrix3 slot = hitch.transform * build.chassisInverse;
        build.rig.hitches[i].frame = FromMatrix3(slot);
        LockNode(*hitch.node, build.master, ComponentType::Hitch, i++, slot);
    }
    build.rig.hitchCount = i;
}

void BuildSpheres(const Build& build) {
    std::int32_t i = 0;
    for (const CollectedNode& sphere : build.parts.spheres) {
        const Matrix3 slot = sphere.transform * build.chassisInverse;
        build.rig.spheres[i] = MakeSphere(ReadSphereValues(*sphere.node), FromMatrix3(slot));
        LockNode(*sphere.node, build.master, ComponentType::Sphere, i++, slot);
    }
    build.rig.sphereCount = i;
}

/// Gathers the parts and makes sure that a car can hold them, without a change to the scene.
/// @return `NoChassis` or the reason to refuse; `Locked` if there is nothing in the way
AssemblyResult Prepare(RigCollector& parts, Matrix3& chassisInverse, SceneNode& root, SceneNode& master,
                       const Point3& dummySize, std::string& problem) {
    if (!GatherComponents(parts, root, master, dummySize)) {
        problem =
            "The master is scaled to nothing along some axis, so nothing is inside its box; give it a size in every direction.";
        return AssemblyResult::Flattened;
    }
    problem = OverfullSentence(parts);
    if (!problem.empty()) return AssemblyResult::TooMany;
    if (parts.chassis.empty()) {
        problem = kNoChassisText;
        return AssemblyResult::NoChassis;
    }
    if (!FindInverse(parts.chassis.front().transform, chassisInverse)) {
        problem = "The chassis is scaled to nothing along some axis; give it a size in every direction.";
        return AssemblyResult::Flattened;
    }
    return AssemblyResult::Locked;
}

// ---------------------------------------------------------------------------------------------------------------- reattaching

/// Puts each node that is locked to the master at the place that its control tells.
/// @return false if a control tells a place that no car has
bool GatherByIndex(RigCollector& parts, SceneNode& root, SceneNode& master) {
    bool allInRange = true;
    WalkScene(root, [&](SceneNode& node) {
        NodeList* const list = ListOf(parts, node.Class());
        if (list == nullptr || !IsHeldBy(node, master)) return true;
        const std::int32_t i = node.GetControl().Axle_Num;
        allInRange = i >= 0 && i < kMaxComponents;
        if (!allInRange) return false;
        if (list->size() <= std::size_t(i)) list->resize(std::size_t(i) + 1);
        (*list)[std::size_t(i)].node = &node;  // of two with one number the later counts
        return true;
    });
    return allInRange;
}

bool IsComplete(const NodeList& list) {
    return std::ranges::none_of(list, [](const CollectedNode& place) { return place.node == nullptr; });
}

bool IsWholeCar(const RigCollector& parts, const RecordedMotion& motion) {
    if (parts.chassis.empty() || parts.wheels.size() != parts.suspensions.size()) return false;
    if (motion.valid && motion.unitCount != std::int32_t(parts.wheels.size())) return false;
    return IsComplete(parts.wheels) && IsComplete(parts.suspensions) && IsComplete(parts.chassis) &&
           IsComplete(parts.hitches) && IsComplete(parts.spheres);
}

DMatrix3 SlotOf(const CollectedNode& part) { return FromMatrix3(part.node->GetControl().Slot_Position); }

}  // namespace

void LockNode(SceneNode& node, SceneNode& master, ComponentType objectType, std::int32_t index, const Matrix3& slot) {
    if (!node.HasControl()) node.InstallControl();
    node.SetControl({&master, std::int32_t(objectType), index, slot});
}

AssemblyResult Assemble(CarRig& rig, SceneNode& root, SceneNode& master, const Point3& dummySize, SceneNode* startNode,
                        std::string& problem) {
    // Set aside, not dropped yet: nodes must show their own places while they are read, and a refusal changes nothing.
    RecordedMotion before = std::exchange(rig.motion, {});
    RigCollector parts;
    Matrix3 chassisInverse = IdentityMatrix3();
    const AssemblyResult result = Prepare(parts, chassisInverse, root, master, dummySize, problem);
    if (result == AssemblyResult::TooMany || result == AssemblyResult::Flattened) {
        rig.motion = std::move(before);
        return result;
    }

    for (const OutsideNode& outside : parts.outside) {
        if (outside.held) outside.node->ClearControlMaster();
    }
    if (result == AssemblyResult::NoChassis) return result;

    const Build build = {rig, master, parts, chassisInverse};
    BuildChassis(build);
    BuildUnits(build);
    BuildHitches(build);
    BuildSpheres(build);

    // Everything above is in chassis space, so the start moves the car as a whole.
    if (startNode != nullptr) ResetBody(rig.chassisBody, FromMatrix3(startNode->GetObjectTM()));
    for (std::int32_t i = 0; i < rig.unitCount; ++i) {
        PlaceWheel(rig.units[i], rig.chassisBody, rig.wheelBodies[i], rig.bufferPosition[i]);
    }
    rig.InitMotion();
    return AssemblyResult::Locked;
}

bool Reattach(CarRig& rig, SceneNode& root, SceneNode& master) {
    RigCollector parts;
    if (!GatherByIndex(parts, root, master) || !IsWholeCar(parts, rig.motion)) return false;

    rig.chassisParams = MakeChassisParams(ReadChassisValues(*parts.chassis.front().node));
    for (std::size_t i = 0; i < parts.wheels.size(); ++i) {
        const SceneNode& wheel = *parts.wheels[i].node;
        rig.units[i] = MakeUnit(ReadWheelValues(wheel), ReadSuspensionValues(*parts.suspensions[i].node),
                                SlotOf(parts.wheels[i]), wheel.GetHandle());
    }
    for (std::size_t i = 0; i < parts.hitches.size(); ++i) rig.hitches[i].frame = SlotOf(parts.hitches[i]);
    for (std::size_t i = 0; i < parts.spheres.size(); ++i) {
        rig.spheres[i] = MakeSphere(ReadSphereValues(*parts.spheres[i].node), SlotOf(parts.spheres[i]));
    }
    rig.unitCount = std::int32_t(parts.wheels.size());
    rig.hitchCount = std::int32_t(parts.hitches.size());
    rig.sphereCount = std::int32_t(parts.spheres.size());
    return true;
}

}  // namespace tavrik
