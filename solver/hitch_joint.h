#pragma once

#include "solver/rigid_body.h"

namespace tavrik {

/// A ball joint between two cars: a point spring without rest length, which hinders no turn.
struct HitchJoint {
    RigidBody* bodyA;  // chassis of one car; not owned
    RigidBody* bodyB;  // chassis of the other; not owned
    DPoint3 localA;    // the joint's point in bodyA's frame
    DPoint3 localB;    // the joint's point in bodyB's frame
    double stiffness;  // mass / s^2
    double damping;    // sqrt(stiffness) * 20, mass / s
};

/// Applies one pass of the joint to both bodies. Points and separation are taken afresh in each pass.
/// @param w  this pass's weight, s
void ApplyJoint(const HitchJoint& joint, double w);

}  // namespace tavrik
