#include "rig/node_values.h"

#include "rig/parameter_tables.h"

namespace tavrik {

ChassisValues ReadChassisValues(const SceneNode& chassis) {
    return {
        .Width = chassis.GetFloat(ChassisParam::Width),
        .Length = chassis.GetFloat(ChassisParam::Length),
        .Height = chassis.GetFloat(ChassisParam::Height),
        .Mass = chassis.GetFloat(ChassisParam::Mass),
        .Solidity = chassis.GetFloat(ChassisParam::Solidity),
        .Rotation_Center_Shift = chassis.GetFloat(ChassisParam::Rotation_Center_Shift),
    };
}

SuspensionValues ReadSuspensionValues(const SceneNode& suspension) {
    return {
        .Suspension_Type = suspension.GetInt(SuspensionParam::Suspension_Type),
        .Length = suspension.GetFloat(SuspensionParam::Length),
        .Wheel_Shift = suspension.GetFloat(SuspensionParam::Wheel_Shift),
        .Ruggedness_Factor = suspension.GetFloat(SuspensionParam::Ruggedness_Factor),
        .Ruggedness = suspension.GetFloat(SuspensionParam::Ruggedness),
        .Damping = suspension.GetFloat(SuspensionParam::Damping),
        .Shift = suspension.GetFloat(SuspensionParam::Shift),
        .Buffer_Ruggedness = suspension.GetFloat(SuspensionParam::Buffer_Ruggedness),
        .Top_Stop = suspension.GetFloat(SuspensionParam::Top_Stop),
        .Bottom_Stop = suspension.GetFloat(SuspensionParam::Bottom_Stop),
        .Drive = suspension.GetInt(SuspensionParam::Drive),
        .Steering = suspension.GetInt(SuspensionParam::Steering),
        .Handbrake = suspension.GetInt(SuspensionParam::Handbrake),
    };
}

WheelValues ReadWheelValues(const SceneNode& wheel) {
    return {
        .Radius = wheel.GetFloat(WheelParam::Radius),
        .Width = wheel.GetFloat(WheelParam::Width),
        .Mass = wheel.GetFloat(WheelParam::Mass),
        .Ruggedness = wheel.GetFloat(WheelParam::Ruggedness),
        .Grip = wheel.GetFloat(WheelParam::Grip),
    };
}

SphereValues ReadSphereValues(const SceneNode& sphere) {
    return {
        .Radius = sphere.GetFloat(SphereParam::Radius),
        .Ruggedness = sphere.GetFloat(SphereParam::Ruggedness),
        .Grip = sphere.GetFloat(SphereParam::Grip),
    };
}

Point3 ReadBoxSize(const SceneNode& master) {
    return {master.GetFloat(MasterParam::Dummy_Size, 0), master.GetFloat(MasterParam::Dummy_Size, 1),
            master.GetFloat(MasterParam::Dummy_Size, 2)};
}

}  // namespace tavrik
