#pragma once
/// What the scene tells of a master object's car: its rig as the recording and the locked nodes give it, and its ground.

#include <string>

#include "host/sdk/max.h"
#include "rig/car_rig.h"
#include "surface/triangle_mesh.h"

namespace tavrik_host {

/// Reads the recording that a master object saves.
/// @param motion   not valid where the car is unlocked
/// @param problem  on false: one sentence
bool ReadRecording(INode& master, tavrik::RecordedMotion& motion, std::string& problem);

/// Puts the rig together from the recording and the nodes that are locked to the master. Bodies stay where they were: what
/// moves is in the recording.
/// @param problem  on false: the car is unlocked, or its locked nodes don't form a whole rig
bool ReadRig(INode& master, tavrik::CarRig& rig, std::string& problem);

/// The mesh of a node at time 0: world, scene units. Empty where the node has none.
tavrik::TriangleMesh ReadMesh(INode& node);

/// The surface that a master object has picked, likewise.
tavrik::TriangleMesh ReadSurface(INode& master);

}  // namespace tavrik_host
