#include "rig/component_values.h"

#include <cassert>
#include <cmath>
#include <string_view>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

const ParamTable& TableOf(std::string_view className) {
    const ParamTable* const table = FindParamTable(className);
    assert(table != nullptr);
    return *table;
}

// A stiff thing that meets the ground rings for the same number of swings whatever its stiffness when its damping grows with
// the root of it. A collision sphere is to rebound less than a tyre, so the two factors differ.
constexpr double kTyreDampingFactor = 10.0;
constexpr double kSphereDampingFactor = 20.0;

}  // namespace

ChassisValues DefaultChassisValues() {
    const ParamTable& table = TableOf("ChassisObject");
    return {
        .Width = DefaultFloat(table, ChassisParam::Width),
        .Length = DefaultFloat(table, ChassisParam::Length),
        .Height = DefaultFloat(table, ChassisParam::Height),
        .Mass = DefaultFloat(table, ChassisParam::Mass),
        .Solidity = DefaultFloat(table, ChassisParam::Solidity),
        .Rotation_Center_Shift = DefaultFloat(table, ChassisParam::Rotation_Center_Shift),
    };
}

SuspensionValues DefaultSuspensionValues() {
    const ParamTable& table = TableOf("SuspensionObject");
    return {
        .Suspension_Type = DefaultInt(table, SuspensionParam::Suspension_Type),
        .Length = DefaultFloat(table, SuspensionParam::Length),
        .Wheel_Shift = DefaultFloat(table, SuspensionParam::Wheel_Shift),
        .Ruggedness_Factor = DefaultFloat(table, SuspensionParam::Ruggedness_Factor),
        .Ruggedness = DefaultFloat(table, SuspensionParam::Ruggedness),
        .Damping = DefaultFloat(table, SuspensionParam::Damping),
        .Shift = DefaultFloat(table, SuspensionParam::Shift),
        .Buffer_Ruggedness = DefaultFloat(table, SuspensionParam::Buffer_Ruggedness),
        .Top_Stop = DefaultFloat(table, SuspensionParam::Top_Stop),
        .Bottom_Stop = DefaultFloat(table, SuspensionParam::Bottom_Stop),
        .Drive = DefaultInt(table, SuspensionParam::Drive),
        .Steering = DefaultInt(table, SuspensionParam::Steering),
        .Handbrake = DefaultInt(table, SuspensionParam::Handbrake),
    };
}

WheelValues DefaultWheelValues() {
    const ParamTable& table = TableOf("WheelObject");
    return {
        .Radius = DefaultFloat(table, WheelParam::Radius),
        .Width = DefaultFloat(table, WheelParam::Width),
        .Mass = DefaultFloat(table, WheelParam::Mass),
        .Ruggedness = DefaultFloat(table, WheelParam::Ruggedness),
        .Grip = DefaultFloat(table, WheelParam::Grip),
    };
}

SphereValues DefaultSphereValues() {
    const ParamTable& table = TableOf("CSphereObject");
    return {
        .Radius = DefaultFloat(table, SphereParam::Radius),
        .Ruggedness = DefaultFloat(table, SphereParam::Ruggedness),
        .Grip = DefaultFloat(table, SphereParam::Grip),
    };
}

ChassisParams MakeChassisParams(const ChassisValues& values) {
    return {
        .Length = double(values.Length),
        .Width = double(values.Width),
        .Height = double(values.Height),
        .Mass = double(values.Mass),
        .Solidity = double(values.Solidity),
        .RotationCenterShift = double(values.Rotation_Center_Shift / 100.0f),
    };
}

SuspensionUnit MakeUnit(const WheelValues& wheel, const SuspensionValues& suspension, const DMatrix3& frame,
                        std::uint32_t wheelHandle) {
    const float factor = suspension.Ruggedness_Factor;
    const double wheelRuggedness = double(wheel.Ruggedness);
    return {
        .Radius = double(wheel.Radius),
        .Width = double(wheel.Width),
        .Mass = double(wheel.Mass),
        .Length = double(suspension.Length),
        .Wheel_Shift = double(suspension.Wheel_Shift),
        .Shift = double(suspension.Shift),
        .Top_Stop = double(suspension.Top_Stop),
        .Bottom_Stop = double(suspension.Bottom_Stop),
        .Ruggedness = double(suspension.Ruggedness * factor),
        .Damping = double(suspension.Damping * std::sqrt(factor)),
        .Buffer_Ruggedness = double(suspension.Buffer_Ruggedness * factor),
        .wheelRuggedness = wheelRuggedness,
        .wheelDamping = std::sqrt(wheelRuggedness) * kTyreDampingFactor,
        .Grip = double(wheel.Grip),
        .Suspension_Type = suspension.Suspension_Type,
        .Steering = suspension.Steering,
        .Drive = suspension.Drive,
        .Handbrake = suspension.Handbrake,
        .wheelHandle = wheelHandle,
        .frame = frame,
    };
}

CollisionSphere MakeSphere(const SphereValues& values, const DMatrix3& frame) {
    const double ruggedness = double(values.Ruggedness);
    return {
        .frame = frame,
        .Radius = double(values.Radius),
        .Ruggedness = ruggedness,
        .Grip = double(values.Grip),
        .damping = std::sqrt(ruggedness) * kSphereDampingFactor,
    };
}

}  // namespace tavrik
