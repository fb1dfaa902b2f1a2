#include "tests/drive/scripted_run.h"

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

    if (KeepFiniteSamples(*run.world, run.settings.Frame_Step, run.startTick, StepSeconds(run), problem)) return true;
    run.tick = frameTick;
    return false;
}

}  // namespace tavrik
