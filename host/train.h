#pragma once
/// Vehicles in the scene one behind the other, the tongue of each on the hitch of the one in front.

#include <vector>

#include "host/rig_scene.h"
#include "surface/surface_tree.h"

namespace tavrik_host {

struct DressedCar {
    tavrik::CarPlan plan;
    CarDress dress;
};

/// Puts vehicles into the scene, the driven one first. A train is built up in a yard beside the road, every vehicle with room
/// around it, since tongue and hitch on one spot would lie in two boxes; start positions then put it together on the road, and
/// it comes locked. One vehicle alone stands at its start and stays unlocked. The plug-in must be loaded, the desktop there
/// (asserted).
///
/// @param vehicles  each but the last has a hitch, each but the first a tongue (asserted)
/// @param frame     of the first chassis at its start, world
/// @param surface   built over `ground`
/// @return the nodes of each vehicle
std::vector<RigNodes> AddTrain(SceneDocument& document, const std::vector<DressedCar>& vehicles, const tavrik::DMatrix3& frame,
                               INode& ground, const tavrik::SurfaceTree& surface);

}  // namespace tavrik_host
