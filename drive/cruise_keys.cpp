#include "drive/cruise_keys.h"

namespace tavrik {
namespace {

// Rolling takes speed away by itself, so the brake waits for a car that really is too fast, as downhill.
constexpr double kThrottleBelow = 0.99, kBrakeAbove = 1.03;

}  // namespace

CruisePedals CruiseKeys::Decide(double speed) {
    if (speed < wanted_ * kThrottleBelow) {
        held_.throttle = true;
    } else if (speed >= wanted_) {
        held_.throttle = false;
    }
    if (speed > wanted_ * kBrakeAbove) {
        held_.brake = true;
    } else if (speed <= wanted_) {
        held_.brake = false;
    }
    return held_;
}

}  // namespace tavrik
