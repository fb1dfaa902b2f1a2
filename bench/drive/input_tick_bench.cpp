// One tick of the session without the solver's step: what reading the driver, the calls to the host and the display's drawing
// operations cost on top of the frame.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "drive/drive_session.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"

namespace tavrik {
namespace {

class MapParams final : public ParamBlock {
 public:
    MapParams() {
        for (const ParamRow& row : FindParamTable("Tavrik")->rows) {
            ints_[row.id] = std::int32_t(row.defaultValue);
            floats_[row.id] = float(row.defaultValue);
        }
    }
    float GetFloat(std::int32_t id) const override { return floats_.at(id); }
    std::int32_t GetInt(std::int32_t id) const override { return ints_.at(id); }
    void SetFloat(std::int32_t id, float value) override { floats_[id] = value; }
    void SetInt(std::int32_t id, std::int32_t value) override { ints_[id] = value; }

 private:
    std::map<std::int32_t, float> floats_;
    std::map<std::int32_t, std::int32_t> ints_;
};

/// Takes every operation and paints nothing.
class NoCanvas final : public Canvas {
 public:
    PixelRect GetClientRect() const override { return {0, 0, 300, 114}; }
    CanvasObject SelectObject(CanvasObject object) override { return object; }
    void SetDcPenColor(ColorRef) override {}
    void SetDcBrushColor(ColorRef) override {}
    void SetTextColor(ColorRef) override {}
    void SetTransparentBackground() override {}
    void Rectangle(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
    void Ellipse(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
    void MoveTo(std::int32_t, std::int32_t) override {}
    void LineTo(std::int32_t, std::int32_t) override {}
    void DrawTextLine(std::string_view text, const PixelRect&, std::uint32_t) override {
        benchmark::DoNotOptimize(text.data());
    }
};

class NoWindows final : public WindowLayer {
 public:
    WindowId CreateDialogWindow(WindowKind) override { return 1; }
    void DestroyWindow(WindowId) override {}
    void RegisterDlgWnd(WindowId) override {}
    void UnRegisterDlgWnd(WindowId) override {}
    void SetAlpha(WindowId, std::uint8_t) override {}
    void SetCapture(WindowId) override {}
    void ReleaseCapture() override {}
    void SetTimer(WindowId, std::uint32_t, std::uint32_t) override {}
    void KillTimer(WindowId, std::uint32_t) override {}
    void BeginDrag(WindowId) override {}
    Canvas& GetDC(WindowId) override { return canvas_; }
    void ReleaseDC(WindowId) override {}
    Canvas& BeginPaint(WindowId) override { return canvas_; }
    void EndPaint(WindowId) override {}
    void ShowMessageBox(WindowId, std::string_view, std::string_view, std::uint32_t) override {}
    void DisableAccelerators() override {}
    void EnableAccelerators() override {}

 private:
    NoCanvas canvas_;
};

class NoHost final : public DriveHost {
 public:
    TimeValue GetTime() const override { return time_; }
    void SetTime(TimeValue tick, bool) override { time_ = tick; }
    TimeRange GetAnimRange() const override { return {0, 16000}; }
    std::int32_t GetTicksPerFrame() const override { return 160; }
    double GetMasterScale(std::int32_t) const override { return 1e-5; }
    void RedrawViews(TimeValue) override {}
    void NotifyMasters() override {}

 private:
    TimeValue time_ = 0;
};

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
    MapParams params;

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
    NoHost host;
    NoWindows windows;
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
