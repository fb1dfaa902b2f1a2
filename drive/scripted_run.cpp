#include "drive/scripted_run.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "drive/finite_check.h"
#include "solver/frame_stepping.h"
#include "solver/world_step.h"

namespace tavrik {
namespace {

/// A script has no timeline that ends: whoever runs it counts the frames.
class ScriptMaster final : public DriveMaster {
 public:
    explicit ScriptMaster(ScriptedRun& run) : run_(run) {}
    CarWorld& World() override { return *run_.world; }
    const SurfaceTree* Surface() const override { return run_.surface; }
    float Gravity() const override { return run_.settings.Gravity; }
    std::int32_t Frame_Step() const override { return run_.settings.Frame_Step; }
    std::int32_t Sample_Step() const override { return run_.settings.Sample_Step; }
    std::int32_t GetTicksPerFrame() const override { return run_.ticksPerFrame; }
    TimeValue AnimRangeEnd() const override { return std::numeric_limits<TimeValue>::max(); }

 private:
    ScriptedRun& run_;
};

double StepSeconds(const ScriptedRun& run) {
    return double(run.ticksPerFrame) / run.settings.Frame_Step / run.settings.Sample_Step / kTicksPerSecond;
}

std::string DescribeNonFinite(const ScriptedRun& run, const CarRig& rig, const NonFiniteSample& bad) {
    const TimeValue tick = rig.motion.times[std::size_t(bad.frame)];
    char second[32];
    std::snprintf(second, sizeof second, "%.3f", double(TicksBetween(run.startTick, tick)) / kTicksPerSecond);
    const std::string body = bad.unit < 0 ? "chassis" : "wheel " + std::to_string(bad.unit + 1);
    return std::string("The run stopped at second ") + second + ": the motion of the " + body +
           " is no longer a finite number; " + LikelyCause(rig, StepSeconds(run)) + ".";
}

}  // namespace

void ResumeAt(ScriptedRun& run, TimeValue tick) {
    run.tick = tick;
    RewindCars(*run.world, tick - run.ticksPerFrame / run.settings.Frame_Step / 2);
    for (int c = 0; c < run.world->carCount; ++c) RefreshVelocities(*run.world->rigs[c]);
}

bool DriveFrame(ScriptedRun& run, std::string& problem) {
    const double seconds = double(TicksBetween(run.startTick, run.tick)) / kTicksPerSecond;
    DriveInput input;
    ApplySettings(run.settings, run.kilometresPerUnit, input);
    ApplyRow(RowAt(run.script, seconds), input);

    ScriptMaster master(run);
    const TimeValue frameTick = run.tick;
    run.world->random.Seed(run.seed);
    DriveTick(master, run.tick, input);

    for (int c = 0; c < run.world->carCount; ++c) {
        CarRig& rig = *run.world->rigs[c];
        NonFiniteSample bad;
        const std::int32_t firstNew = std::max(1, rig.motion.frames - run.settings.Frame_Step);
        if (!FindNonFinite(rig, firstNew, bad)) continue;
        problem = DescribeNonFinite(run, rig, bad);
        // Every car goes back to the last sample in which all numbers are sound.
        const TimeValue lastGood = rig.motion.times[std::size_t(bad.frame) - 1];
        RewindCars(*run.world, lastGood);
        run.tick = frameTick;
        return false;
    }
    return true;
}

}  // namespace tavrik
