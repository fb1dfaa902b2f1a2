#include "solver/world_building.h"

#include <algorithm>
#include <cmath>

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

/// The place of a car in the world; one that isn't there yet has the place behind the last, where it would be put.
int RankOf(const CarWorld& world, const CarRig& rig) {
    return int(std::find(world.rigs, world.rigs + world.carCount, &rig) - world.rigs);
}

bool AddCar(CarWorld& world, CarRig& rig, WorldScene* scene) {
    if (world.carCount == kMaxCars) return false;
    world.rigs[world.carCount++] = &rig;
    return scene == nullptr || scene->CollectPushes(rig, world.pushes, world.pushCount);
}

/// Both sides of a pair come by, and one of them enters it: the car that came into the world first. Which one has no meaning,
/// only that it hangs on nothing but the scene. A car that is hitched to itself has nothing to hold on to.
/// @param rank, partnerRank  places of the two cars in the world
bool Enters(int rank, int partnerRank) { return rank < partnerRank; }

bool AddJoint(CarWorld& world, const HitchJoint& joint) {
    if (world.jointCount == kMaxJoints) return false;
    world.joints[world.jointCount++] = joint;
    return true;
}

/// @param rank  of the car whose neighbours are added
bool AddNeighbours(CarWorld& world, int rank, WorldScene* scene) {
    CarRig& rig = *world.rigs[rank];
    for (std::int32_t h = 0; h < rig.hitchCount; ++h) {
        const HitchSlot& slot = rig.hitches[h];
        if (slot.partner == nullptr) continue;
        CarRig& partner = *slot.partner->ownerRig;
        const int partnerRank = RankOf(world, partner);
        if (partnerRank == world.carCount && !AddCar(world, partner, scene)) return false;
        if (Enters(rank, partnerRank) && !AddJoint(world, MakeJoint(rig, slot))) return false;
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
    for (int c = 0; fits && c < world.carCount; ++c) fits = AddNeighbours(world, c, scene);
    if (!fits) EmptyWorld(world);
    return fits;
}

}  // namespace tavrik
