// One solver step of the stock car, four wheels and eight spheres, on hills.

#include <benchmark/benchmark.h>

#include <memory>

#include "drive/drive_settings.h"
#include "drive/driver_script.h"
#include "rig/stock_car.h"
#include "solver/frame_stepping.h"
#include "solver/world_building.h"
#include "solver/world_step.h"
#include "surface/surface_tree.h"
#include "tests/support/ground_meshes.h"

namespace tavrik {
namespace {

constexpr int kStepsPerFrame = 150;
constexpr double kStep = 1.0 / 4500.0;
constexpr int kSettlingSteps = 4500;

CarWorld& World() {
    static CarWorld world;
    return world;
}

const SurfaceTree& Hills(std::int64_t faces) {
    static std::int64_t builtFor = 0;
    static SurfaceTree tree;
    if (builtFor != faces) {
        tree.Build(test::HillMesh(std::size_t(faces)));
        builtFor = faces;
    }
    return tree;
}

DriveInput Input(float throttle) {
    DriveInput input;
    ApplySettings(StockCarSettings(), 1e-5, input);
    input.throttle = throttle;
    return input;
}

/// Measures the frame that follows `settlingSteps` of driving, again and again from the same recorded state, so that every
/// round measures the same steps.
void MeasureSteps(benchmark::State& state, double heightAboveGround, float throttle, int settlingSteps) {
    const SurfaceTree& ground = Hills(state.range(0));
    const auto rig = std::make_unique<CarRig>();
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3].z = double(test::HillHeight(0.0f, 0.0f)) + StockCarStandingHeight() + heightAboveGround;
    MakeStockCar(*rig, frame);
    CarWorld& world = World();
    BuildWorld(world, *rig);
    const DriveInput input = Input(throttle);
    for (int i = 0; i < settlingSteps; ++i) WorldStep(world, 0.0, kStep, ground, 980.0, input);
    rig->Store(0);

    while (state.KeepRunningBatch(kStepsPerFrame)) {
        RewindCars(world, 0);
        world.random.BeginTick(0);
        for (int i = 0; i < kStepsPerFrame; ++i) WorldStep(world, 0.0, kStep, ground, 980.0, input);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_WorldStep_StandingOnHills(benchmark::State& state) { MeasureSteps(state, 0.0, 0.0f, kSettlingSteps); }
void BM_WorldStep_DrivingOnHills(benchmark::State& state) { MeasureSteps(state, 0.0, 4.0f, kSettlingSteps); }
void BM_WorldStep_InTheAir(benchmark::State& state) { MeasureSteps(state, 1000.0, 0.0f, 0); }

BENCHMARK(BM_WorldStep_StandingOnHills)->Arg(20'000)->Arg(200'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WorldStep_DrivingOnHills)->Arg(20'000)->Arg(200'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WorldStep_InTheAir)->Arg(20'000)->Arg(200'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrik
