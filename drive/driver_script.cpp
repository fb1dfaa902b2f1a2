#include "drive/driver_script.h"

#include <algorithm>

#include "drive/input_modes.h"

namespace tavrik {

DriverRow RowAt(const DriverScript& script, double seconds) {
    const auto after = std::upper_bound(script.rows.begin(), script.rows.end(), seconds,
                                        [](double value, const DriverRow& row) { return value < row.seconds; });
    return after == script.rows.begin() ? DriverRow{} : *std::prev(after);
}

void ApplyRow(const DriverRow& row, DriveInput& input) {
    input.steerRatio = row.steering;
    input.steerTarget = row.steering * LargestSteering(input);
    input.throttle = row.throttle * kHeldDemand;
    if (row.reverse) input.throttle = -input.throttle;
    // The hand brake asks for full pressure, as its key does; the solver gives it to the wheels it acts on.
    input.brake = row.handBrake ? kHeldDemand : row.brake * kHeldDemand;
    input.handBrake = row.handBrake ? 1 : 0;
    input.reverse = row.reverse ? 1 : 0;
}

}  // namespace tavrik
