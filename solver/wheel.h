#pragma once
/// A tyre: a ring around the wheel's Z axis with a rounded square section, felt out by sixteen rays a step.

#include <span>

#include "rig/suspension_unit.h"
#include "solver/car_runtime.h"
#include "solver/drive_input.h"
#include "solver/random_stream.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// Inverse inertia of a wheel, world axes.
BodyInverseInertia WheelInertia(const SuspensionUnit& unit, const RigidBody& body);

/// Feels for the ground with rays from the ring's centre line to the tyre's skin, two rings of eight around the outer half of
/// the section, at angles drawn anew each time.
///
/// @param random    two numbers are drawn
/// @param contacts  kWheelRays places, all written; world
/// @return how many rays met the ground
int WheelRayCast(const SuspensionUnit& unit, const SurfaceTree& surface, const RigidBody& body, RandomStream& random,
                 std::span<ContactPoint, kWheelRays> contacts);

/// The slowest sliding speed in the wheel's plane among its contacts, unit/s; 31622.8 without any.
double SlipSpeed(const RigidBody& body, std::span<const ContactPoint, kWheelRays> contacts);

/// Fills `driveTorque[i]` and `brakeTorque[i]` for this step, after `UnitDerive`. A driven wheel gets no torque when even its
/// best contact slides at `maxDriftSpeed` or more, or when it hangs in the air.
void DriveAndBrake(CarRuntime& runtime, int i, const DriveInput& input);

}  // namespace tavrik
