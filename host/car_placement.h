#pragma once
/// Where a car is put down.

#include <span>
#include <string>

#include "rig/car_rig.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// A spot seen from above.
struct CarSpot {
    double x = 0.0, y = 0.0;  // scene units
    double heading = 0.0;     // degrees, 0 is +Y, clockwise seen from above is positive
};

/// The topmost ground at a place. @return false where there is none
bool GroundBelow(const SurfaceTree& surface, double x, double y, double& z);

/// The middle of a ground, or where it has a hole there, the middle of the triangle nearest to that.
CarSpot MiddleOfGround(const SurfaceTree& surface);

/// Stands a car on the topmost ground at `spot`, tilted as the ground under its wheels is where all of them have some; over an
/// edge, or on more than a car can stand on, it is put down level above the highest point under it.
///
/// @param wheels          where the wheels touch level ground, in chassis space; Z plays no part
/// @param standingHeight  of the chassis above the ground
/// @param frame           out: of the chassis
/// @param problem         on false: there is no ground at the spot itself
bool StandOnGround(const SurfaceTree& surface, const CarSpot& spot, std::span<const DPoint3> wheels, double standingHeight,
                   DMatrix3& frame, std::string& problem);

}  // namespace tavrik
