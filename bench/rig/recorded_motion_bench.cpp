#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "rig/stock_car.h"

namespace tavrik {
namespace {

// Twenty seconds at thirty frames a second and five samples a frame.
constexpr int kFrames = 3000;
constexpr TimeValue kSampleTicks = 32;

/// The stock car, four wheels, rolling straight ahead for kFrames samples from tick 0 on.
std::unique_ptr<CarRig> RecordedCar() {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, IdentityDMatrix3());
    const DPoint3 way = {0.0, 10.0, 0.0};
    for (int f = 0; f < kFrames; ++f) {
        rig->chassisBody.frame.row[3] += way;
        for (std::int32_t u = 0; u < rig->unitCount; ++u) rig->wheelBodies[u].frame.row[3] += way;
        rig->Store(f * kSampleTicks);
    }
    return rig;
}

/// Ticks all over the recording, in an order that no cache can foresee.
std::vector<TimeValue> ScatteredTicks() {
    std::vector<TimeValue> ticks(4096);
    std::uint32_t state = 2026;
    for (TimeValue& tick : ticks) {
        state = state * 1664525u + 1013904223u;
        tick = TimeValue((state >> 8) % std::uint32_t(kFrames * kSampleTicks));
    }
    return ticks;
}

void BM_Store_FourWheelsIntoRoomThatIsThere(benchmark::State& state) {
    const auto rig = RecordedCar();
    while (state.KeepRunningBatch(kFrames)) {
        rig->Rewind(-1);
        for (int f = 0; f < kFrames; ++f) benchmark::DoNotOptimize(rig->Store(f * kSampleTicks));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Store_FourWheelsIntoRoomThatIsThere);

void BM_Store_FourWheelsFromAFreshLock(benchmark::State& state) {
    const auto rig = RecordedCar();
    while (state.KeepRunningBatch(kFrames)) {
        rig->InitMotion();
        for (int f = 0; f < kFrames; ++f) benchmark::DoNotOptimize(rig->Store(f * kSampleTicks));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Store_FourWheelsFromAFreshLock);

void BM_Rewind_FourWheelsToTheLastOf3000Frames(benchmark::State& state) {
    const auto rig = RecordedCar();
    const TimeValue last = rig->motion.times.back();
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(rig->Rewind(last));
}
BENCHMARK(BM_Rewind_FourWheelsToTheLastOf3000Frames);

void BM_Rewind_FourWheelsOneFrameAtATimeFrom3000(benchmark::State& state) {
    const auto rig = RecordedCar();
    while (state.KeepRunningBatch(kFrames)) {
        state.PauseTiming();
        for (int f = rig->motion.frames - 1; f < kFrames; ++f) rig->Store(f * kSampleTicks);
        state.ResumeTiming();
        for (int f = kFrames - 1; f >= 0; --f) benchmark::DoNotOptimize(rig->Rewind(f * kSampleTicks - kSampleTicks / 2));
    }
}
BENCHMARK(BM_Rewind_FourWheelsOneFrameAtATimeFrom3000);

void BM_FindFrame_ScatteredTicksIn3000Frames(benchmark::State& state) {
    const auto rig = RecordedCar();
    const auto ticks = ScatteredTicks();
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(rig->motion.FindFrame(ticks[i++ % ticks.size()]));
}
BENCHMARK(BM_FindFrame_ScatteredTicksIn3000Frames);

void BM_Sample_ScatteredTicksIn3000Frames(benchmark::State& state) {
    const auto rig = RecordedCar();
    const auto ticks = ScatteredTicks();
    const auto type = ComponentType(state.range(0));
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(rig->GetTM(type, 0, ticks[i++ % ticks.size()]));
}
BENCHMARK(BM_Sample_ScatteredTicksIn3000Frames)
    ->ArgName("kind")
    ->Arg(int(ComponentType::Chassis))
    ->Arg(int(ComponentType::Suspension))
    ->Arg(int(ComponentType::Wheel))
    ->Arg(int(ComponentType::Sphere));

}  // namespace
}  // namespace tavrik
