#pragma once
/// The ground of a scene: a mesh on a node, and a car put down on it.

#include <optional>
#include <string>

#include "host/car_placement.h"
#include "host/scene_file.h"
#include "rig/car_plan.h"
#include "surface/surface_tree.h"
#include "surface/triangle_mesh.h"

namespace tavrik_host {

/// Adds a node "ground".
/// @param name     what messages call the ground
/// @param problem  on null: one sentence that begins with the name
INode* AddGroundNode(SceneDocument& document, const tavrik::TriangleMesh& ground, const std::string& name,
                     std::string& problem);

/// As a drive finds the ground of a node, scene units.
/// @param problem  on false: one sentence that begins with the name
bool BuildGround(INode& node, const std::string& name, tavrik::SurfaceTree& surface, std::string& problem);

/// Where the chassis of a planned car starts.
/// @param spot     none: the middle of the ground
/// @param frame    out, world
/// @param problem  on false: one sentence that begins with the ground's name
bool FindStart(const tavrik::SurfaceTree& surface, const std::string& name, const tavrik::CarPlan& plan,
               const std::optional<tavrik::CarSpot>& spot, tavrik::DMatrix3& frame, std::string& problem);

}  // namespace tavrik_host
