#pragma once
/// Where a body touches the ground, and what the ground gives back. Tyres and collision spheres share the one law.

#include <cstdint>
#include <span>

#include "solver/rigid_body.h"

namespace tavrik {

/// One ray's meeting with the ground. Searched once a step and frozen for its ten passes.
struct ContactPoint {
    DPoint3 point;      // of the hit, world
    DPoint3 direction;  // unit, out of the body into the ground; the force acts against it
    double depth;       // how far the ground lies inside the body along the ray, scene units
    std::uint32_t hit;  // 0: the ray found nothing, and the other fields are stale
};

/// Applies one pass of contact forces to `body`.
///
/// @param stiffness  mass / s^2
/// @param damping    mass / s
/// @param friction   friction number, may be above 1
/// @param w          this pass's weight, s
void ContactForces(RigidBody& body, std::span<const ContactPoint> contacts, double stiffness, double damping, double friction,
                   double w);

}  // namespace tavrik
