#pragma once
/// Scenes with one of everything that the rig knows, made by arithmetic: to look at, to drive, and to test with.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/car_placement.h"
#include "host/train.h"
#include "surface/surface_tree.h"

namespace tavrik_host {

using GarageVehicle = DressedCar;

/// One scene of the garage.
struct GarageScene {
    const char* name;
    const char* what;  // in one line
    tavrik::TriangleMesh (*ground)();
    /// The driven one first, each following one hitched to the one before.
    std::vector<GarageVehicle> (*vehicles)();
    /// What pushes the first vehicle, or leads it; null: nothing. Answers false where the ground has no room for it, with one
    /// sentence without the ground's name and a full stop.
    bool (*addMore)(SceneDocument& document, const RigNodes& car, const tavrik::SurfaceTree& surface, std::string& problem);
    std::optional<tavrik::CarSpot> start;  // of the first vehicle; none: the middle of the ground
};

const std::vector<GarageScene>& GarageScenes();
/// @return null for an unknown name
const GarageScene* FindGarageScene(std::string_view name);

/// Puts the vehicles of a garage scene into the scene, as `AddTrain` does, and whatever pushes or leads them.
///
/// @param frame    of the first chassis at its start, world
/// @param surface  built over `ground`
/// @param problem  where nothing is answered: why, as `addMore` tells it
/// @return the nodes of each vehicle
std::vector<RigNodes> FillGarageScene(SceneDocument& document, const GarageScene& wanted, const tavrik::DMatrix3& frame,
                                      INode& ground, const tavrik::SurfaceTree& surface, std::string& problem);

}  // namespace tavrik_host
