#pragma once

#include <cstdint>
#include <string>

#include "rig/car_rig.h"

namespace tavrik {

/// The first stored sample with a number that is not finite, and which body it belongs to.
struct NonFiniteSample {
    std::int32_t frame;
    std::int32_t unit;  // index of the wheel, -1 for the chassis and the steering
};

/// Looks at the samples of a locked car from `firstFrame` on.
/// @return false when all their numbers are finite
bool FindNonFinite(const CarRig& rig, std::int32_t firstFrame, NonFiniteSample& found);

/// Likely reasons for numbers that blow up: a stiffness too high for steps of `dt` seconds on the mass that it moves, say.
/// One clause for the end of a sentence.
std::string LikelyCause(const CarRig& rig, double dt);

}  // namespace tavrik
