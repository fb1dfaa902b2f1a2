#pragma once
/// A suspension ties two free bodies, wheel and chassis, by stiff springs and leaves one way free, where the real spring, its
/// buffer and the stops act.

#include "solver/car_runtime.h"

namespace tavrik {

/// Fills the derived state of unit `i` once a step, from the bodies as they stand: `unitFrame`, `hubPoint`, `slideAxis`,
/// `lateralError`, `travel`, `spinAxis`, `radiusSquared`, `alignError` and `alignDamping`.
void UnitDerive(CarRuntime& runtime, int i);

/// Applies one pass of forces and torques between wheel `i` and the chassis, and moves the unit's dashpot.
/// @param w  this pass's weight, s
void UnitForces(CarRuntime& runtime, int i, double w);

}  // namespace tavrik
