#pragma once

#include "solver/single_maths.h"

namespace tavrik {

/// Moves a chassis frame as a car with this steering would move it, without looking at any force. The chassis is a rod of 1.4
/// lengths about the frame's origin. Its front end goes `distance` where the front wheels point while the rear end stays: that
/// gives the rod's new direction, along which all of it then moves by `distance`. Flat: row 2, the up axis, stays.
///
///        o-----------+-----------o ->        + origin, o ends of the rod, -> `distance` along the front wheels
///       rear      frame        front         row 1 of `frame` points to the front, row 0 to the right
///
/// @param length    of the chassis, scene units
/// @param angle     of the front wheels, radians, right positive
/// @param distance  scene units; negative rolls backward
void BicycleStep(Matrix3& frame, float length, float angle, float distance);

}  // namespace tavrik
