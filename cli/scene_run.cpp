#include "cli/scene_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "drive/drive_session.h"
#include "drive/driver_script.h"
#include "drive/input_modes.h"
#include "drive/window_messages.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/sdk/desktop.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

using tavrik::MasterParam;

/// Rows at the wheel. They go by the scene's time, so that a drive that goes on takes up the row that it stopped in.
class RowDriver final : public tavrik::TargetDriver {
 public:
    explicit RowDriver(const tavrik::DriverScript& rows) : rows_(rows) { tavrik::TheDesktop().driver = this; }
    ~RowDriver() override { tavrik::TheDesktop().driver = nullptr; }
    RowDriver(const RowDriver&) = delete;
    RowDriver& operator=(const RowDriver&) = delete;

    bool HasTarget() const override { return true; }
    bool TargetIsShape() const override { return false; }
    void BuildPath() override {}
    void DriveToTarget(tavrik::DriveSession& session) override {
        ApplyRow(RowAt(rows_, double(session.tick) / tavrik::kTicksPerSecond), session.input);
    }
    void DriveAlongPath(tavrik::DriveSession&) override {}

 private:
    const tavrik::DriverScript& rows_;
};

/// The way of driving that the hands need, for as long as they drive; the artist's own choice comes back after it.
class DrivingType {
 public:
    DrivingType(INode& master, std::int32_t type)
        : master_(master), before_(tavrik_host::IntParam(master, MasterParam::Driving_Type)) {
        tavrik_host::SetParam(master, MasterParam::Driving_Type, type);
    }
    ~DrivingType() { tavrik_host::SetParam(master_, MasterParam::Driving_Type, before_); }
    DrivingType(const DrivingType&) = delete;
    DrivingType& operator=(const DrivingType&) = delete;

 private:
    INode& master_;
    std::int32_t before_;
};

/// Presses the buttons that come before the drive.
bool PressButtons(SceneRun& run, tavrik_host::MasterPanel& panel, std::string& problem) {
    if (!run.goesOn) panel.LockComponents();
    panel.UpdateSurface();
    Interface& core = *GetCOREInterface();
    core.SetTime(run.from);
    const TimeValue end = run.from + run.frames * GetTicksPerFrame();
    const Interval range = core.GetAnimRange();
    if (end > range.End()) core.SetAnimRange(Interval(range.Start(), end));
    panel.Drive();
    problem = run.desktop.TakeMessage();
    if (problem.empty()) return true;
    problem = fmt::format("{}: {}", run.scene.string(), problem);
    return false;
}

bool DriveFrames(SceneRun& run, tavrik::Progress& progress, std::string& problem) {
    tavrik::VirtualWindows& windows = run.desktop.windows;
    tavrik::ScriptedHands hands(
        run.hands.ByEvents() ? &run.hands.events : nullptr, windows, run.desktop.pad,
        [](double seconds) { GetCOREInterface()->SetTime(TimeValue(seconds * tavrik::kTicksPerSecond)); });
    windows.Send(tavrik::kWmKeyUp, std::uint64_t(tavrik::kVkReturn), 0);
    const double frameSeconds = double(GetTicksPerFrame()) / tavrik::kTicksPerSecond;
    for (int frame = 0; frame < run.frames; ++frame) {
        progress.Show(double(frame) / run.frames);
        hands.PlayUntil(frame * frameSeconds);
        if (run.beforeFrame) run.beforeFrame(frame);
        if (windows.TimerRuns()) windows.Send(tavrik::kWmTimer, tavrik::kTimerId, 0);
        problem = run.desktop.TakeMessage();
        if (!problem.empty()) return false;
        if (!run.afterFrame || run.afterFrame(frame)) continue;
        run.frames = frame + 1;
        break;
    }
    run.notice = hands.Notice();
    windows.Send(tavrik::kWmKeyUp, std::uint64_t(tavrik::kVkEscape), 0);
    windows.Send(tavrik::kWmClose, 0, 0);
    return true;
}

}  // namespace

bool DriveInScene(SceneRun& run, tavrik::Progress& progress, std::string& problem) {
    const bool byEvents = run.hands.ByEvents();
    std::optional<RowDriver> rows;
    std::optional<DrivingType> type;
    if (!run.byTarget) {
        rows.emplace(run.hands.rows);
        type.emplace(run.master,
                     byEvents ? std::int32_t(DrivingTypeOf(run.hands.events)) : std::int32_t(tavrik::kDriveToTarget));
    }
    tavrik_host::MasterPanel panel(run.master);
    Interface& core = *GetCOREInterface();
    const Interval range = core.GetAnimRange();
    if (!PressButtons(run, panel, problem) || !DriveFrames(run, progress, problem)) return false;
    // A run that ended early leaves no empty time behind it.
    const TimeValue end = run.from + run.frames * GetTicksPerFrame();
    if (core.GetAnimRange().End() > std::max(range.End(), end)) {
        core.SetAnimRange(Interval(range.Start(), std::max(range.End(), end)));
    }
    return true;
}

int FramesIn(double seconds) {
    return std::max(1, int(std::ceil(seconds * tavrik::kTicksPerSecond / GetTicksPerFrame() - 1e-9)));
}

}  // namespace tavrik_cli
