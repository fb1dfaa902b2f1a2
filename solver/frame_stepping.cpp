#include "solver/frame_stepping.h"

#include "solver/world_step.h"

namespace tavrik {

bool RewindCars(CarWorld& world, TimeValue tick) {
    bool forgot = false;
    for (int c = 0; c < world.carCount; ++c) {
        CarRig& rig = *world.rigs[c];
        const std::int32_t frames = rig.motion.frames;
        forgot |= rig.Rewind(tick) < frames;
    }
    return forgot;
}

void StoreCars(CarWorld& world, TimeValue tick) {
    for (int c = 0; c < world.carCount; ++c) world.rigs[c]->Store(tick);
}

void DriveTick(DriveMaster& master, TimeValue& tickInOut, DriveInput input) {
    const double gravity = double(master.Gravity());
    const std::int32_t frameStep = master.Frame_Step();
    const std::int32_t sampleStep = master.Sample_Step();
    const SurfaceTree* surface = master.Surface();
    if (surface == nullptr || !surface->built()) return;

    const std::int32_t ticksPerFrame = master.GetTicksPerFrame();
    const TimeValue tick = tickInOut;
    if (tick > master.AnimRangeEnd() - ticksPerFrame) return;

    CarWorld& world = master.World();
    // A car that was unlocked since the world was built has nothing to go on from.
    for (int c = 0; c < world.carCount; ++c) {
        if (!world.rigs[c]->motion.valid) return;
    }
    world.random.BeginTick(tick);
    // Half a sample back lies between the last sample before this frame and its first one, so no tick has to match exactly.
    const bool forgot = RewindCars(world, tick - ticksPerFrame / frameStep / 2);
    for (int c = 0; c < world.carCount; ++c) {
        CarRig& rig = *world.rigs[c];
        if (forgot || rig.velocitiesStale) RefreshVelocities(rig);
        rig.velocitiesStale = false;
    }

    const double dt = double(ticksPerFrame) / double(frameStep) / double(sampleStep) / double(kTicksPerSecond);
    for (std::int32_t i = 0; i < frameStep; ++i) {
        master.BeforeSample();
        const std::int32_t s = i * ticksPerFrame / frameStep;
        const double time = double(tick + s) / double(kTicksPerSecond);
        for (std::int32_t j = 0; j < sampleStep; ++j) WorldStep(world, time, dt, *surface, gravity, input);
        StoreCars(world, tick + s);
    }
    tickInOut = tick + ticksPerFrame;
}

}  // namespace tavrik
