#include "drive/drive_settings.h"

#include "rig/parameter_tables.h"

namespace tavrik {

DriveSettings StockCarSettings() {
    DriveSettings settings;
    settings.Rudder_Sensitivity = 30.0f;
    settings.Rudder_Angle = 38.0f;
    settings.Throttle_Sensitivity = 5000.0f;
    return settings;
}

DriveSettings ReadDriveSettings(const ParamBlock& params) {
    DriveSettings settings;
    settings.Gravity = params.GetFloat(MasterParam::Gravity);
    settings.Frame_Step = params.GetInt(MasterParam::Frame_Step);
    settings.Sample_Step = params.GetInt(MasterParam::Sample_Step);
    settings.Rudder_Sensitivity = params.GetFloat(MasterParam::Rudder_Sensitivity);
    settings.Rudder_Angle = params.GetFloat(MasterParam::Rudder_Angle);
    settings.Throttle_Sensitivity = params.GetFloat(MasterParam::Throttle_Sensitivity);
    settings.Brake_Sensitivity = params.GetFloat(MasterParam::Brake_Sensitivity);
    settings.Max_Drift_Speed = params.GetFloat(MasterParam::Max_Drift_Speed);
    settings.Differencial_Drive_Sensitivity = params.GetFloat(MasterParam::Differencial_Drive_Sensitivity);
    settings.Bike_Drive = params.GetInt(MasterParam::Bike_Drive);
    settings.Balance_Force = params.GetFloat(MasterParam::Balance_Force);
    return settings;
}

void WriteDriveSettings(const DriveSettings& settings, ParamBlock& params) {
    params.SetFloat(MasterParam::Gravity, settings.Gravity);
    params.SetInt(MasterParam::Frame_Step, settings.Frame_Step);
    params.SetInt(MasterParam::Sample_Step, settings.Sample_Step);
    params.SetFloat(MasterParam::Rudder_Sensitivity, settings.Rudder_Sensitivity);
    params.SetFloat(MasterParam::Rudder_Angle, settings.Rudder_Angle);
    params.SetFloat(MasterParam::Throttle_Sensitivity, settings.Throttle_Sensitivity);
    params.SetFloat(MasterParam::Brake_Sensitivity, settings.Brake_Sensitivity);
    params.SetFloat(MasterParam::Max_Drift_Speed, settings.Max_Drift_Speed);
    params.SetFloat(MasterParam::Differencial_Drive_Sensitivity, settings.Differencial_Drive_Sensitivity);
    params.SetInt(MasterParam::Bike_Drive, settings.Bike_Drive);
    params.SetFloat(MasterParam::Balance_Force, settings.Balance_Force);
}

void ApplySettings(const DriveSettings& settings, double kilometresPerUnit, DriveInput& input) {
    input.rudderSensitivity = settings.Rudder_Sensitivity;
    input.rudderAngle = settings.Rudder_Angle;
    input.bikeDrive = std::uint32_t(settings.Bike_Drive);
    input.balanceForce = settings.Balance_Force;
    input.throttleSensitivity = settings.Throttle_Sensitivity;
    input.brakeSensitivity = settings.Brake_Sensitivity;
    // km/h become units per second in double, rounded once at the end.
    input.maxDriftSpeed = float(double(settings.Max_Drift_Speed) / (3600.0 * kilometresPerUnit));
    input.differentialSensitivity = settings.Differencial_Drive_Sensitivity;
}

}  // namespace tavrik
