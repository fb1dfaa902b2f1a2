#pragma once

#include <cstdint>

#include "drive/param_block.h"
#include "solver/drive_input.h"

namespace tavrik {

/// The settings of a master object that a run reads. The defaults are those of a new master object.
struct DriveSettings {
    float Gravity = 980.0f;         // unit/s^2
    std::int32_t Frame_Step = 5;    // samples to a frame
    std::int32_t Sample_Step = 30;  // solver steps to a sample
    float Rudder_Sensitivity = 5.0f;
    float Rudder_Angle = 45.0f;  // degrees
    std::int32_t Bike_Drive = 0;
    float Balance_Force = 2.0f;
    float Differencial_Drive_Sensitivity = 0.0f;
    float Throttle_Sensitivity = 2000.0f;
    float Brake_Sensitivity = 2000.0f;
    float Max_Drift_Speed = 10.0f;  // km/h
};

/// The settings that suit the stock car: a steering that a driver can keep up with, and an engine to match.
DriveSettings StockCarSettings();

/// The settings of a master object, from its parameters.
DriveSettings ReadDriveSettings(const ParamBlock& params);

/// The way back.
void WriteDriveSettings(const DriveSettings& settings, ParamBlock& params);

/// Copies the settings into `input`.
/// @param kilometresPerUnit  of the scene's unit, 1e-5 for centimetres
void ApplySettings(const DriveSettings& settings, double kilometresPerUnit, DriveInput& input);

}  // namespace tavrik
