#include "drive/finite_check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <vector>

#include "solver/frame_stepping.h"

namespace tavrik {
namespace {

bool IsFinite(const DPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

bool IsFinite(const MotionSample& sample) {
    return std::all_of(std::begin(sample.frame.row), std::end(sample.frame.row),
                       [](const DPoint3& p) { return IsFinite(p); }) &&
           IsFinite(sample.momentum) && IsFinite(sample.angularMomentum);
}

bool ChassisIsFinite(const RecordedMotion& motion, std::size_t frame) {
    return IsFinite(motion.chassis[frame]) && std::isfinite(motion.steer[frame].steerValue);
}

/// A step of `dt` leaves a spring of stiffness k on a mass m calm while k * dt^2 / m stays below about 1.
double StepStrain(double stiffness, double mass, double dt) { return stiffness * dt * dt / mass; }

struct Suspect {
    double strain;
    std::string text;
};

std::string DescribeNonFinite(const CarRig& rig, const NonFiniteSample& bad, TimeValue startTick, double dt) {
    const TimeValue tick = rig.motion.times[std::size_t(bad.frame)];
    char second[32];
    std::snprintf(second, sizeof second, "%.3f", double(TicksBetween(startTick, tick)) / kTicksPerSecond);
    const std::string body = bad.unit < 0 ? "chassis" : "wheel " + std::to_string(bad.unit + 1);
    return std::string("The run stopped at second ") + second + ": the motion of the " + body +
           " is no longer a finite number; " + LikelyCause(rig, dt) + ".";
}

}  // namespace

bool FindNonFinite(const CarRig& rig, std::int32_t firstFrame, NonFiniteSample& found) {
    const RecordedMotion& motion = rig.motion;
    for (std::int32_t f = firstFrame; f < motion.frames; ++f) {
        const std::size_t at = std::size_t(f);
        for (std::int32_t u = 0; u < motion.unitCount; ++u) {
            if (IsFinite(motion.wheels[u][at]) && std::isfinite(motion.buffers[u][at])) continue;
            found = {f, u};
            return true;
        }
        if (ChassisIsFinite(motion, at)) continue;
        found = {f, -1};
        return true;
    }
    return false;
}

std::string LikelyCause(const CarRig& rig, double dt) {
    std::vector<Suspect> suspects;
    const double chassisMass = rig.chassisParams.Mass;
    for (std::int32_t u = 0; u < rig.unitCount; ++u) {
        const SuspensionUnit& unit = rig.units[u];
        const std::string of = " of wheel " + std::to_string(u + 1);
        suspects.push_back({StepStrain(rig.chassisParams.Solidity, unit.Mass, dt), "Solidity of the chassis"});
        suspects.push_back({StepStrain(unit.wheelRuggedness, unit.Mass, dt), "Ruggedness" + of});
        suspects.push_back({StepStrain(unit.Ruggedness, unit.Mass, dt), "spring Ruggedness" + of});
        suspects.push_back({StepStrain(unit.Buffer_Ruggedness, unit.Mass, dt), "Buffer_Ruggedness" + of});
    }
    for (std::int32_t s = 0; s < rig.sphereCount; ++s) {
        suspects.push_back({StepStrain(rig.spheres[s].Ruggedness, chassisMass, dt),
                            "Ruggedness of collision sphere " + std::to_string(s + 1)});
    }
    const auto worst = std::max_element(suspects.begin(), suspects.end(),
                                        [](const Suspect& a, const Suspect& b) { return a.strain < b.strain; });
    if (worst == suspects.end() || !(worst->strain > 0.05)) {
        return "the driving forces or the start are out of all proportion to the car's size and mass";
    }
    return "the " + worst->text + " is likely too high for the step: lower it, or raise Sample_Step";
}

bool KeepFiniteSamples(CarWorld& world, std::int32_t newSamples, TimeValue startTick, double dt, std::string& problem) {
    const CarRig* worst = nullptr;
    NonFiniteSample first{std::numeric_limits<std::int32_t>::max(), -1};
    for (std::int32_t c = 0; c < world.carCount; ++c) {
        const CarRig& rig = *world.rigs[c];
        NonFiniteSample bad;
        if (!FindNonFinite(rig, std::max(1, rig.motion.frames - newSamples), bad)) continue;
        if (worst != nullptr && rig.motion.times[std::size_t(bad.frame)] >= worst->motion.times[std::size_t(first.frame)])
            continue;
        worst = &rig;
        first = bad;
    }
    if (worst == nullptr) return true;
    problem = DescribeNonFinite(*worst, first, startTick, dt);
    RewindCars(world, worst->motion.times[std::size_t(first.frame) - 1]);
    return false;
}

}  // namespace tavrik
