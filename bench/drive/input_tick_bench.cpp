// One tick of the session without the solver's step: what reading the driver, the calls to the host and the display's drawing
// operations cost on top of the frame.

#include <benchmark/benchmark.h>

#include <memory>

#include "drive/drive_session.h"
#include "drive/null_canvas.h"
#include "drive/table_params.h"
#include "drive/virtual_run.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"

namespace tavrik {
namespace {

/// A full stick and a full trigger.
class OnePad final : public Devices {
 public:
    std::uint32_t joyGetPos(std::uint32_t, JoyInfo& info) override {
        info = {.wXpos = 65535, .wYpos = 0, .wZpos = 0, .wButtons = 0};
        return 0;
    }
    std::uint32_t XInputGetState(std::int32_t, XInputState& state) override {
        state.Gamepad.bRightTrigger = 255;
        state.Gamepad.sThumbLX = 32767;
        return 0;
    }
};

/// The stock car without a world around it: a ground that is taken away after the start leaves no frame to drive.
class Master final : public SessionMaster {
 public:
    Master() {
        MakeStockCar(rig_, IdentityDMatrix3());
        TriangleMesh mesh;
        mesh.verts = {{-100, -100, 0}, {100, -100, 0}, {0, 100, 0}};
        mesh.faces = {{{0, 1, 2}}};
        surface_.Build(mesh);
    }
    TableParams params{*FindParamTable("Tavrik")};

    void TakeGroundAway() { surface_.Release(); }

    CarRig& Rig() override { return rig_; }
    const ParamBlock& Params() const override { return params; }
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
    SurfaceTree surface_;
};

void TickWithoutAStep(benchmark::State& state, std::int32_t drivingType) {
    const auto master = std::make_unique<Master>();
    master->params.SetInt(MasterParam::Driving_Type, drivingType);
    master->params.SetInt(MasterParam::CtrlJoyDriver, 1);
    master->params.SetInt(MasterParam::CtrlJoyThrottleCtrl, 3);
    VirtualHost host;
    host.range = {0, 16000};
    NullCanvas canvas;
    VirtualWindows windows(canvas);
    OnePad devices;
    DriveSession session(*master, host, windows, devices);
    session.OpenDrive();
    session.StartDrive();
    session.HandleMessage(kWmKeyDown, 87, 0);
    session.HandleMessage(kWmKeyDown, 68, 0);
    session.HandleMessage(kWmMouseMove, 0, 0xFF38012Cu);
    master->TakeGroundAway();
    for (auto _ : state) session.HandleMessage(kWmTimer, kTimerId, 0);
    benchmark::DoNotOptimize(session.input);
}

void BM_InputTick_ByMouseWithoutAStep(benchmark::State& state) { TickWithoutAStep(state, kDriveByMouse); }
BENCHMARK(BM_InputTick_ByMouseWithoutAStep);

void BM_InputTick_ByKeyboardWithoutAStep(benchmark::State& state) { TickWithoutAStep(state, kDriveByKeyboard); }
BENCHMARK(BM_InputTick_ByKeyboardWithoutAStep);

void BM_InputTick_ByPadWithoutAStep(benchmark::State& state) { TickWithoutAStep(state, kDriveByGamepad); }
BENCHMARK(BM_InputTick_ByPadWithoutAStep);

}  // namespace
}  // namespace tavrik
