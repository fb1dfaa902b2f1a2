#pragma once

#include "solver/car_runtime.h"
#include "solver/drive_input.h"

namespace tavrik {

/// The angle by which the car is steered, radians, never zero: the driver's, or, on a two-wheeler, the angle that balances it.
double SteerAngle(const CarRig& rig, const DriveInput& input);

/// Fills `steerAngle` and `rotationCenter` from the chassis as it stands in this step.
void SteeringGeometry(CarRuntime& runtime, const CarRig& rig, const DriveInput& input);

}  // namespace tavrik
