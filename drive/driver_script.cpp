#include "drive/driver_script.h"

#include <algorithm>

namespace tavrik {
namespace {

// What a key held down asks for, of throttle and of brake.
constexpr float kFullDemand = 4.0f;

/// The largest steering angle in radians, single precision in this order, as every way of steering computes it.
float LargestSteering(const DriveInput& input) { return input.rudderAngle / 180.0f * 3.1415927f; }

}  // namespace

DriverRow RowAt(const DriverScript& script, double seconds) {
    const auto after = std::upper_bound(script.rows.begin(), script.rows.end(), seconds,
                                        [](double value, const DriverRow& row) { return value < row.seconds; });
    return after == script.rows.begin() ? DriverRow{} : *std::prev(after);
}

void ApplyRow(const DriverRow& row, DriveInput& input) {
    input.steerRatio = row.steering;
    input.steerTarget = row.steering * LargestSteering(input);
    input.throttle = row.throttle * kFullDemand;
    if (row.reverse) input.throttle = -input.throttle;
    // The hand brake asks for full pressure, as its key does; the solver gives it to the wheels it acts on.
    input.brake = row.handBrake ? kFullDemand : row.brake * kFullDemand;
    input.handBrake = row.handBrake ? 1 : 0;
    input.reverse = row.reverse ? 1 : 0;
}

}  // namespace tavrik
