#pragma once
/// A simple car to look at, cut to the measure of a rig.

#include "host/shape.h"
#include "rig/car_rig.h"

namespace tavrik {

/// Hull, cabin and lights in chassis space. Length and width are those of the rig's body; how high it sits and how far it
/// spreads follow from where the wheels stand at rest, so that the wheels show.
Shape BodyShape(const CarRig& rig);

/// Tyre, rim and spokes about the Z axis, in the wheel's own space. One spoke has a colour of its own: a wheel with five equal
/// ones seems to stand still every fifth of a turn.
Shape WheelShape(const SuspensionUnit& unit);

}  // namespace tavrik
