#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "cli/command_line.h"
#include "cli/drive_summary.h"
#include "cli/follow_run.h"
#include "cli/hands.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "cli/scene_run.h"
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

/// Where the run begins. A run that goes on must begin within what is recorded.
bool FindStart(const tavrik::SceneDriveOrder& order, SceneRun& run, std::string& problem) {
    const int perFrame = GetTicksPerFrame();
    run.frames = FramesIn(order.seconds);
    if (!order.from) return true;
    run.goesOn = true;
    const auto rig = std::make_unique<tavrik::CarRig>();
    const tavrik::RecordedMotion* const motion = &rig->motion;
    const bool whole = tavrik_host::ReadRig(run.master, *rig, problem);
    if (!motion->valid) {
        problem =
            fmt::format("{}: its car has no recording to go on from; drive it without --from first.", order.scene.string());
        return false;
    }
    if (!whole) {
        problem = fmt::format("{}: {}", order.scene.string(), problem);
        return false;
    }
    const double frame = std::round(*order.from * tavrik::kTicksPerSecond / perFrame);
    run.from = TimeValue(frame) * perFrame;
    const TimeValue last = motion->frames > 1 ? motion->times[std::size_t(motion->frames - 1)] : -1;
    const int sample = perFrame / std::max(1, tavrik_host::IntParam(run.master, MasterParam::Frame_Step));
    if (run.from <= last + sample) return true;
    problem = fmt::format("{}: its recording ends at second {:.2f}, so a drive can't go on from {:.2f}.", order.scene.string(),
                          double(last + sample) / tavrik::kTicksPerSecond, *order.from);
    return false;
}

struct Readings {
    tavrik::RunSamples samples;
    std::unique_ptr<tavrik::CarRig> rig = std::make_unique<tavrik::CarRig>();
    tavrik::TriangleMesh ground;
    tavrik::DrivenCar driven;
    std::vector<std::filesystem::path> written;
};

/// Reads the run off the scene and writes all that was asked for; the scene comes last.
bool WriteAll(const tavrik::SceneDriveOrder& order, const SceneRun& run, const tavrik_host::SceneDocument& document,
              Readings& readings, std::string& problem) {
    if (!tavrik_host::ReadRig(run.master, *readings.rig, problem)) {
        problem = fmt::format("{}: {}", order.scene.string(), problem);
        return false;
    }
    readings.ground = tavrik_host::ReadSurface(run.master);
    INode* ground = tavrik_host::NodeParam(run.master, MasterParam::Surface_Node);
    readings.driven = {readings.rig.get(), &readings.ground, tavrik_host::ToUtf8(ground->GetName()),
                       tavrik_host::MetresPerUnit() / 1000.0};
    readings.samples = TakeRunSamples(*readings.rig);
    tavrik::Results results;
    AddReadings(readings.driven, readings.samples, order.telemetry, order.plot, results);
    for (const auto& [file, bytes] : results) readings.written.push_back(file);
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    readings.written.push_back(out);
    return SaveScene(order.scene, out, document, std::move(results), problem);
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
    SceneRun run{order.scene, desktop, *master, hands};
    progress.Begin("Driving");
    const Clock::time_point driving = Clock::now();
    FollowRun follow;
    if (!FindStart(order, run, problem) ||
        !follow.Prepare(order.follow, run, order.input.empty(), !order.hasSeconds, problem) ||
        !DriveInScene(run, progress, problem)) {
        return false;
    }
    tavrik::DriveTimes times;
    times.driving = SecondsSince(driving);
    progress.Begin("Writing");
    Readings readings;
    if (!WriteAll(order, run, document, readings, problem)) return false;
    progress.Clear();
    times.frames = run.frames;
    times.driven = double(run.frames) * GetTicksPerFrame() / tavrik::kTicksPerSecond;
    times.all = SecondsSince(begin);
    fmt::print("{}", follow.Summary(readings.samples));
    PrintSummary(readings.driven, readings.samples, times, run.notice, readings.written);
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
