// One decision of each of the two drivers in the hands' place, for the stock car at speed.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "drive/null_canvas.h"
#include "drive/table_params.h"
#include "drive/target_driver.h"
#include "drive/virtual_run.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"

namespace tavrik {
namespace {

constexpr float kRadius = 30000.0f;

/// The stock car, nine metres a second along the road's tangent.
class Master final : public SessionMaster {
 public:
    Master() {
        DMatrix3 frame = IdentityDMatrix3();
        frame.row[3] = {double(kRadius) + 130.0, 0.0, 50.0};
        MakeStockCar(rig_, frame);
        rig_.chassisBody.momentum = DPoint3{30.0, 900.0, 0.0} * rig_.chassisParams.Mass;
        rig_.InitMotion();
    }
    CarRig& Rig() override { return rig_; }
    const ParamBlock& Params() const override { return params_; }
    const SurfaceTree& Surface() const override { return surface_; }
    void UpdateSurface() override {}
    CarWorld& World() override {
        static CarWorld world;
        return world;
    }
    WorldScene* Scene() override { return nullptr; }
    void RebuildTrails() override {}
    TargetDriver* Target() override { return nullptr; }

 private:
    CarRig rig_;
    TableParams params_{*FindParamTable("Tavrik")};
    SurfaceTree surface_;
};

/// Answers at once, so that the driver alone is measured.
class AheadOnTheRoad final : public TargetPositions {
 public:
    Point3 PositionAt(TimeValue tick) const override { return {kRadius - float(tick) * 0.01f, float(tick) * 0.2f, 50.0f}; }
};

struct Table {
    std::unique_ptr<Master> master = std::make_unique<Master>();
    VirtualHost host;
    NullCanvas canvas;
    VirtualWindows windows{canvas};
    VirtualPad devices;
    DriveSession session{*master, host, windows, devices};
    Table() { session.ReadSettings(); }
};

void BM_DriveToTarget(benchmark::State& state) {
    Table table;
    const AheadOnTheRoad target;
    for (auto _ : state) DriveToTarget(table.session, &target);
    benchmark::DoNotOptimize(table.session.input);
}
BENCHMARK(BM_DriveToTarget)->Unit(benchmark::kMicrosecond);

void BM_DriveAlongPath_ClosedRoad(benchmark::State& state) {
    Table table;
    PolyLine line;
    line.closed = true;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        const double angle = 6.283185307179586 * double(i) / double(state.range(0));
        line.points.push_back({kRadius * float(std::cos(angle)), kRadius * float(std::sin(angle)), 0.0f});
    }
    table.session.path.BuildFromPolyShape({{line}});
    for (auto _ : state) DriveAlongPath(table.session);
    benchmark::DoNotOptimize(table.session.input);
}
BENCHMARK(BM_DriveAlongPath_ClosedRoad)->Arg(200)->Arg(2'000)->Arg(20'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrik
