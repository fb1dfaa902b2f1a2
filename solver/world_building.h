#pragma once

#include <cstdint>

#include "solver/car_world.h"

namespace tavrik {

/// What `BuildWorld` asks of the scene.
class WorldScene {
 public:
    virtual ~WorldScene() = default;
    /// Ties the hitch slots of all rigs in the scene to their partners.
    virtual void LinkHitches() = 0;
    /// Writes the pushes on `rig` behind the first `pushCount` of `pushes` and counts them.
    /// @return false when there is no room for them
    virtual bool CollectPushes(CarRig& rig, PushForce (&pushes)[kMaxPushes], std::int32_t& pushCount) = 0;
};

/// Fills the world with the driven car, whatever is hitched to it, their joints and pushes.
///
/// @param scene  null: the car drives alone
/// @return false, with an empty world, when the scene has more cars, joints or pushes than a world holds
bool BuildWorld(CarWorld& world, CarRig& drivenRig, WorldScene* scene = nullptr);

}  // namespace tavrik
