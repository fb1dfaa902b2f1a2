#pragma once
/// Scenes with one of everything that the rig knows, made by arithmetic: to look at, to drive, and to test with.

#include <string>
#include <string_view>
#include <vector>

#include "host/train.h"
#include "samples/sample_ground.h"
#include "surface/surface_tree.h"

namespace tavrik_host {

using GarageVehicle = DressedCar;

/// One scene of the garage.
struct GarageScene {
    const char* name;
    const char* what;  // in one line
    tavrik::SampleGround ground;
    /// The driven one first, each following one hitched to the one before.
    std::vector<GarageVehicle> (*vehicles)();
    void (*addPushes)(const RigNodes& car);  // null: none
};

const std::vector<GarageScene>& GarageScenes();
/// @return null for an unknown name
const GarageScene* FindGarageScene(std::string_view name);

/// Puts the vehicles of a garage scene into the scene, as `AddTrain` does, and whatever pushes them.
///
/// @param frame    of the first chassis at its start, world
/// @param surface  built over `ground`
/// @return the nodes of each vehicle
std::vector<RigNodes> FillGarageScene(SceneDocument& document, const GarageScene& wanted, const tavrik::DMatrix3& frame,
                                      INode& ground, const tavrik::SurfaceTree& surface);

}  // namespace tavrik_host
