#pragma once

#include <cstdint>

#include "solver/rigid_body.h"

namespace tavrik {

constexpr std::int32_t kWishbone = 0;
constexpr std::int32_t kTelescopic = 1;

/// One wheel with its suspension.
///
//        row 0: travel, down in a standing car
//          |
//  chassis o----arm at rest----> row 2: towards the wheel, its axle at rest
//         /
//        row 1: the wishbone's pivot
struct SuspensionUnit {
    double Radius = 0.0;             // of the wheel, scene units
    double Width = 0.0;              // half the tyre's thickness, and the radius of its section, scene units
    double Mass = 0.0;               // of the wheel
    double Length = 0.0;             // of a wishbone's arm, scene units; a telescopic unit doesn't read it
    double Wheel_Shift = 0.0;        // of the wheel's centre from the hub along the axle, scene units
    double Shift = 0.0;              // preload: added to the travel in the main spring, scene units
    double Top_Stop = 0.0;           // largest travel
    double Bottom_Stop = 0.0;        // least travel
    double Ruggedness = 0.0;         // main spring, mass / s^2
    double Damping = 0.0;            // dashpot in series with the buffer spring, mass / s
    double Buffer_Ruggedness = 0.0;  // buffer spring, mass / s^2
    double wheelRuggedness = 0.0;    // tyre, mass / s^2
    double wheelDamping = 0.0;       // sqrt(wheelRuggedness) * 10, mass / s
    double Grip = 0.0;               // friction number of the tyre
    std::int32_t Suspension_Type = kWishbone;
    std::int32_t Steering = 0;            // flag: the axle aims at the rotation centre
    std::int32_t Drive = 0;               // flag
    std::int32_t Handbrake = 0;           // flag
    std::uint32_t wheelHandle = 0;        // names the wheel to the track texture
    DMatrix3 frame = IdentityDMatrix3();  // where the unit is fixed to the body, in chassis space; rows as drawn above
};

/// How far along row 2 of the unit's frame the wheel's centre stands at rest: the wishbone's arm and the shift, or the shift
/// alone on a telescopic unit.
double RestReach(const SuspensionUnit& unit);

/// Puts a wheel at its unit's rest position beside the chassis, not moving, with its dashpot at rest.
void PlaceWheel(const SuspensionUnit& unit, const RigidBody& chassisBody, RigidBody& wheelBody, double& bufferPosition);

}  // namespace tavrik
