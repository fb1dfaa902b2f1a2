#pragma once
/// The one operation that moves time forward. Positions move first, once, by the whole step; contacts and geometry are then
/// searched once; after that ten passes apply spring, contact and joint forces as momentum, each with a smaller weight.

#include "solver/car_world.h"
#include "solver/drive_input.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// Moves `value` towards `target`, twice as fast while it has to cross zero first.
/// @param dt    s
/// @param rate  sensitivity of the steering, in 0.03 rad/s
void SlewSteering(double& value, double target, double dt, double rate);

/// Moves the bodies of one car by `dt` and derives all that the passes need. Every field of `runtime` that they read is
/// written here.
void StepCar(CarRuntime& runtime, CarRig& rig, const SurfaceTree& surface, const DriveInput& input, double dt,
             RandomStream& random);

/// Applies one pass of gravity, suspension and contact forces to one car.
/// @param w        this pass's weight, s
/// @param gravity  unit/s^2, along world -Z
void RelaxCar(CarRuntime& runtime, double w, double gravity);

/// Moves the whole world by one step. Numbers that blow up stay so: whoever drives looks at the result.
///
/// @param time     seconds since the scene's time zero; only pushes look at it
/// @param dt       s
/// @param surface  built
/// @param gravity  unit/s^2
///
/// A step first moves bodies by the velocities that the step before left. Where there was none, after a load say, call
/// `RefreshVelocities` first. Allocates nothing. One thread at a time.
void WorldStep(CarWorld& world, double time, double dt, const SurfaceTree& surface, double gravity, const DriveInput& input);

/// Derives all velocities from frames and momenta, to the same bits that the last step of a run leaves.
void RefreshVelocities(CarRig& rig);

}  // namespace tavrik
