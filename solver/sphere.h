#pragma once
/// The balls through which a car's body touches the ground, felt out by twelve rays each a step.

#include <span>

#include "rig/car_rig.h"
#include "solver/car_runtime.h"
#include "solver/random_stream.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// A frame at the origin in uniformly random orientation. Draws six numbers or more.
DMatrix3 RandomFrame(RandomStream& random);

/// Feels for the ground with rays from the sphere's centre along the vertices of an icosahedron, turned at random each time.
///
/// @param contacts  kSphereRays places, all written; world
/// @return how many rays met the ground
int SphereRayCast(const CollisionSphere& sphere, const SurfaceTree& surface, const RigidBody& chassisBody, RandomStream& random,
                  std::span<ContactPoint, kSphereRays> contacts);

}  // namespace tavrik
