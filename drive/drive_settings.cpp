#include "drive/drive_settings.h"

namespace tavrik {

DriveSettings StockCarSettings() {
    DriveSettings settings;
    settings.Rudder_Sensitivity = 30.0f;
    settings.Rudder_Angle = 38.0f;
    settings.Throttle_Sensitivity = 5000.0f;
    return settings;
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
