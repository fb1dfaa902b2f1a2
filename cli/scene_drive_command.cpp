#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "cli/command_line.h"
#include "cli/drive_summary.h"
#include "cli/hands.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "drive/input_modes.h"
#include "drive/window_messages.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/scene_rig.h"
#include "host/sdk/desktop.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

using Clock = std::chrono::steady_clock;
using tavrik::MasterParam;

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

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

/// One run in an open scene.
struct SceneRun {
    const tavrik::SceneDriveOrder& order;
    SceneDesktop& desktop;
    INode& master;
    const tavrik::Hands& hands;
    TimeValue from = 0;  // the first tick to drive
    int frames = 0;
    std::string notice;
};

/// Where the run begins. A run that goes on must begin within what is recorded.
bool FindStart(SceneRun& run, std::string& problem) {
    const int perFrame = GetTicksPerFrame();
    run.frames = std::max(1, int(std::ceil(run.order.seconds * tavrik::kTicksPerSecond / perFrame - 1e-9)));
    if (!run.order.from) return true;
    auto motion = std::make_unique<tavrik::RecordedMotion>();
    if (!tavrik_host::ReadRecording(run.master, *motion, problem)) return false;
    if (!motion->valid) {
        problem =
            fmt::format("{}: its car has no recording to go on from; drive it without --from first.", run.order.scene.string());
        return false;
    }
    const double frame = std::round(*run.order.from * tavrik::kTicksPerSecond / perFrame);
    run.from = TimeValue(frame) * perFrame;
    const TimeValue last = motion->frames > 1 ? motion->times[std::size_t(motion->frames - 1)] : -1;
    const int sample = perFrame / std::max(1, tavrik_host::IntParam(run.master, MasterParam::Frame_Step));
    if (run.from <= last + sample) return true;
    problem = fmt::format("{}: its recording ends at second {:.2f}, so a drive can't go on from {:.2f}.",
                          run.order.scene.string(), double(last + sample) / tavrik::kTicksPerSecond, *run.order.from);
    return false;
}

/// Presses the buttons that come before the drive.
bool PressButtons(SceneRun& run, tavrik_host::MasterPanel& panel, std::string& problem) {
    if (!run.order.from) panel.LockComponents();
    panel.UpdateSurface();
    Interface& core = *GetCOREInterface();
    core.SetTime(run.from);
    const TimeValue end = run.from + run.frames * GetTicksPerFrame();
    const Interval range = core.GetAnimRange();
    if (end > range.End()) core.SetAnimRange(Interval(range.Start(), end));
    panel.Drive();
    problem = run.desktop.TakeMessage();
    if (problem.empty()) return true;
    problem = fmt::format("{}: {}", run.order.scene.string(), problem);
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
        if (windows.TimerRuns()) windows.Send(tavrik::kWmTimer, tavrik::kTimerId, 0);
        problem = run.desktop.TakeMessage();
        if (!problem.empty()) return false;
    }
    run.notice = hands.Notice();
    windows.Send(tavrik::kWmKeyUp, std::uint64_t(tavrik::kVkEscape), 0);
    windows.Send(tavrik::kWmClose, 0, 0);
    return true;
}

bool Drive(SceneRun& run, tavrik::Progress& progress, std::string& problem) {
    const bool byEvents = run.hands.ByEvents();
    const RowDriver rows(run.hands.rows);
    const DrivingType type(run.master,
                           byEvents ? std::int32_t(DrivingTypeOf(run.hands.events)) : std::int32_t(tavrik::kDriveToTarget));
    tavrik_host::MasterPanel panel(run.master);
    return PressButtons(run, panel, problem) && DriveFrames(run, progress, problem);
}

struct Readings {
    tavrik::RunSamples samples;
    std::unique_ptr<tavrik::CarRig> rig = std::make_unique<tavrik::CarRig>();
    tavrik::TriangleMesh ground;
    tavrik::DrivenCar driven;
    tavrik::Results results;
};

/// Reads the run off the scene and writes all that was asked for; the scene comes last.
bool WriteAll(const SceneRun& run, const tavrik_host::SceneDocument& document, Readings& readings, std::string& problem) {
    if (!tavrik_host::ReadRig(run.master, *readings.rig, problem)) return false;
    readings.ground = tavrik_host::ReadSurface(run.master);
    INode* ground = tavrik_host::NodeParam(run.master, MasterParam::Surface_Node);
    readings.driven = {readings.rig.get(), &readings.ground, tavrik_host::ToUtf8(ground->GetName()),
                       tavrik_host::MetresPerUnit() / 1000.0};
    readings.samples = TakeRunSamples(*readings.rig);
    AddReadings(readings.driven, readings.samples, run.order.telemetry, run.order.plot, readings.results);
    const std::filesystem::path& out = run.order.out.empty() ? run.order.scene : run.order.out;
    return tavrik::WriteResults(readings.results, problem) && KeepOldFile(run.order.scene, out, problem) &&
           SaveScene(out, document, problem);
}

bool RunInScene(const tavrik::SceneDriveOrder& order, SceneDesktop& desktop, tavrik::Progress& progress, std::string& problem) {
    const Clock::time_point begin = Clock::now();
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    tavrik::Hands hands;
    tavrik_host::SceneDocument document;
    INode* master = nullptr;
    progress.Begin("Reading scene");
    if (!tavrik::CheckWritable({out, order.telemetry, order.plot}, problem) || !ReadHands(order.input, hands, problem) ||
        !OpenScene(order.scene, document, problem) || !ChooseMaster(order.scene, order.master, master, problem)) {
        return false;
    }
    if (order.seed) tavrik::TheDesktop().seed = *order.seed;
    SceneRun run{order, desktop, *master, hands, 0, 0, {}};
    progress.Begin("Driving");
    const Clock::time_point driving = Clock::now();
    if (!FindStart(run, problem) || !Drive(run, progress, problem)) return false;
    tavrik::DriveTimes times;
    times.driving = SecondsSince(driving);
    progress.Begin("Writing");
    Readings readings;
    if (!WriteAll(run, document, readings, problem)) return false;
    progress.Clear();
    times.frames = run.frames;
    times.driven = double(run.frames) * GetTicksPerFrame() / tavrik::kTicksPerSecond;
    times.all = SecondsSince(begin);
    readings.results.emplace_back(out, std::string());
    PrintSummary(readings.driven, readings.samples, times, run.notice, readings.results);
    return true;
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunSceneDrive(const SceneDriveOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    std::string problem;
    if (tavrik_cli::RunInScene(order, desktop, progress, problem)) return kExitOk;
    progress.Clear();
    return tavrik_cli::Fail(problem);
}
