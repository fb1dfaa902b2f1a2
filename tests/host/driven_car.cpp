#include "tests/host/driven_car.h"

#include <cstdlib>
#include <string>

#include "rig/stock_car.h"
#include "samples/sample_ground.h"
#include "solver/world_building.h"
#include "tests/drive/scripted_run.h"

namespace tavrik::test {
namespace {

CarWorld world;
CarRig car;

void Drive() {
    static SurfaceTree surface;
    if (!surface.Build(DrivenGround())) std::abort();
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3].z = StockCarStandingHeight();
    MakeStockCar(car, frame);
    if (!BuildWorld(world, car)) std::abort();
    ScriptedRun run;
    run.world = &world;
    run.rig = &car;
    run.surface = &surface;
    run.settings = StockCarSettings();
    DriverRow row;
    row.throttle = 1.0f;
    row.steering = 0.5f;
    run.script.rows = {row};
    std::string problem;
    for (int i = 0; i < kDrivenFrames; ++i) {
        if (!DriveFrame(run, problem)) std::abort();
    }
}

}  // namespace

const TriangleMesh& DrivenGround() {
    static const TriangleMesh ground = MakeSampleGround({SampleGroundKind::Course, 200.0, 2'000, 1});
    return ground;
}

const CarRig& DrivenCar() {
    static const bool driven = (Drive(), true);
    (void)driven;
    return car;
}

}  // namespace tavrik::test
