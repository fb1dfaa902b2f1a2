#pragma once

#include "rig/ticks.h"
#include "solver/rigid_body.h"

namespace tavrik {

/// What the solver asks of an object in the scene that pushes a car.
class PushSource {
 public:
    virtual ~PushSource() = default;
    /// Where the push stands at `tick` and which way it points (along row 1), world, single precision as the scene is.
    virtual Matrix3 GetObjectTM(TimeValue tick) const = 0;
    /// How hard it pushes at `tick`, mass * unit/s^2.
    virtual float PushMagnitude(TimeValue tick) const = 0;
};

/// A push on the chassis of one car.
struct PushForce {
    const PushSource* source;  // not owned
    RigidBody* body;           // not owned
};

/// The force of a push at a moment, world axes.
/// @param time  seconds since the scene's time zero
DPoint3 PushVector(const PushForce& push, double time);

/// Applies one pass of the push to its body.
/// @param w  this pass's weight, s
void ApplyPush(const PushForce& push, double time, double w);

}  // namespace tavrik
