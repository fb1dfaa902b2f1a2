#pragma once

#include <cstdint>
#include <string>

#include "rig/car_rig.h"
#include "solver/car_world.h"

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

/// Looks at the newest samples of every car that is driven. Where one isn't finite, every car goes back to the last sample in
/// which all numbers are sound.
///
/// @param newSamples  how many the last frame stored
/// @param startTick   where second 0 lies, for the message
/// @param dt          of a solver step, s
/// @param problem     on false: at which second, of which body, and what likely caused it
bool KeepFiniteSamples(CarWorld& world, std::int32_t newSamples, TimeValue startTick, double dt, std::string& problem);

}  // namespace tavrik
