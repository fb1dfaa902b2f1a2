#pragma once
/// A car as an artist would set it up: what each object is set to, and where it stands. Generators write plans; a plan becomes
/// a rig at once, or helper objects in a scene.

#include <vector>

#include "rig/component_values.h"

namespace tavrik {

/// A wheel with its suspension.
struct PlannedUnit {
    WheelValues wheel;
    SuspensionValues suspension;
    /// Of the attachment, in chassis space, rows as `SuspensionUnit` draws them: travel, pivot, towards the wheel.
    DMatrix3 frame;
};

struct PlannedSphere {
    SphereValues values;
    DPoint3 centre;  // in chassis space
};

/// One half of a connection between two cars.
struct PlannedCoupling {
    bool isHitch;      // of the car in front; else the tongue of the one behind
    DPoint3 place;     // in chassis space
    float Radius;      // of the drawn ball or cup, scene units
    float Ruggedness;  // of a hitch, mass / s^2
};

struct CarPlan {
    ChassisValues chassis;
    std::vector<PlannedUnit> units;
    std::vector<PlannedSphere> spheres;
    std::vector<PlannedCoupling> couplings;
    double standingHeight = 0.0;  // of the chassis' origin above a level ground at rest, scene units
};

/// Fills `rig` with the planned car, standing at rest with its chassis at `frame`, and locks it. The plan must fit the rig's
/// capacities (asserted).
void MakePlannedCar(const CarPlan& plan, const DMatrix3& frame, CarRig& rig);

/// Where the wheel of a unit rests, in chassis space: rows and position of its node, and of its suspension's.
DMatrix3 RestFrame(const PlannedUnit& unit);

}  // namespace tavrik
