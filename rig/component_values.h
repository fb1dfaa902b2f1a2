#pragma once
/// The parameters of a car's objects as plain records in single precision, as an artist sets them, and how they become the
/// double-precision records that the solver reads. Masses are in the scene's unit of mass.

#include <cstdint>

#include "rig/car_rig.h"

namespace tavrik {

struct ChassisValues {
    float Width, Length, Height;  // half sizes along X, Y and Z, scene units
    float Mass;
    float Solidity;               // mass / s^2
    float Rotation_Center_Shift;  // percent of Length
};

struct SuspensionValues {
    std::int32_t Suspension_Type;             // kWishbone or kTelescopic
    float Length, Wheel_Shift;                // scene units
    float Ruggedness_Factor;                  // scales springs by itself and the dashpot by its root; above zero
    float Ruggedness, Damping;                // mass / s^2, mass / s
    float Shift;                              // scene units
    float Buffer_Ruggedness;                  // mass / s^2
    float Top_Stop, Bottom_Stop;              // scene units
    std::int32_t Drive, Steering, Handbrake;  // flags
};

struct WheelValues {
    float Radius, Width;  // scene units
    float Mass;
    float Ruggedness;  // mass / s^2
    float Grip;
};

struct SphereValues {
    float Radius;      // scene units
    float Ruggedness;  // mass / s^2
    float Grip;
};

/// What a new object of each class starts with: the defaults of its parameter table.
ChassisValues DefaultChassisValues();
SuspensionValues DefaultSuspensionValues();
WheelValues DefaultWheelValues();
SphereValues DefaultSphereValues();

/// The percentage becomes a ratio in single precision, where the scene holds it; the rest is widened as it is.
ChassisParams MakeChassisParams(const ChassisValues& values);

/// The factor is worked into springs and dashpot in single precision, its root included, before anything is widened; the tyre's
/// damping comes from its stiffness in double precision.
///
/// @param frame        of the attachment, in chassis space, rows as `SuspensionUnit` draws them; taken as it is
/// @param wheelHandle  of the wheel's node
SuspensionUnit MakeUnit(const WheelValues& wheel, const SuspensionValues& suspension, const DMatrix3& frame,
                        std::uint32_t wheelHandle);

/// The damping comes from the stiffness in double precision.
///
/// @param frame  of the sphere's node, in chassis space
CollisionSphere MakeSphere(const SphereValues& values, const DMatrix3& frame);

}  // namespace tavrik
