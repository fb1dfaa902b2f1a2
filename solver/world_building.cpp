#include "solver/world_building.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tavrik {
namespace {

// Damping of a hitch, to the square root of its stiffness.
constexpr double kJointDampingFactor = 20.0;

HitchJoint MakeJoint(CarRig& rig, const HitchSlot& slot) {
    HitchJoint joint;
    joint.bodyA = &rig.chassisBody;
    joint.bodyB = &slot.partner->ownerRig->chassisBody;
    joint.localA = slot.frame.row[3];
    joint.localB = slot.partner->frame.row[3];
    joint.stiffness = slot.Ruggedness;
    joint.damping = std::sqrt(joint.stiffness) * kJointDampingFactor;
    return joint;
}

bool Holds(const CarWorld& world, const CarRig* rig) {
    return std::find(world.rigs, world.rigs + world.carCount, rig) != world.rigs + world.carCount;
}

bool AddCar(CarWorld& world, CarRig& rig, WorldScene* scene) {
    if (world.carCount == kMaxCars) return false;
    world.rigs[world.carCount++] = &rig;
    return scene == nullptr || scene->CollectPushes(rig, world.pushes, world.pushCount);
}

bool AddJoint(CarWorld& world, const HitchJoint& joint) {
    // Both sides of a pair come by, and one of them enters it: which one has no meaning.
    if (!std::greater<>()(joint.bodyA, joint.bodyB)) return true;
    if (world.jointCount == kMaxJoints) return false;
    world.joints[world.jointCount++] = joint;
    return true;
}

bool AddNeighbours(CarWorld& world, CarRig& rig, WorldScene* scene) {
    for (std::int32_t h = 0; h < rig.hitchCount; ++h) {
        const HitchSlot& slot = rig.hitches[h];
        if (slot.partner == nullptr) continue;
        if (!AddJoint(world, MakeJoint(rig, slot))) return false;
        CarRig* partner = slot.partner->ownerRig;
        if (!Holds(world, partner) && !AddCar(world, *partner, scene)) return false;
    }
    return true;
}

void EmptyWorld(CarWorld& world) {
    world.carCount = 0;
    world.jointCount = 0;
    world.pushCount = 0;
}

}  // namespace

bool BuildWorld(CarWorld& world, CarRig& drivenRig, WorldScene* scene) {
    if (scene != nullptr) scene->LinkHitches();
    EmptyWorld(world);
    bool fits = AddCar(world, drivenRig, scene);
    for (int c = 0; fits && c < world.carCount; ++c) fits = AddNeighbours(world, *world.rigs[c], scene);
    if (!fits) EmptyWorld(world);
    return fits;
}

}  // namespace tavrik
