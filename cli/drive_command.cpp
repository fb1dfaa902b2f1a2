#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

#include "cli/command_line.h"
#include "cli/drive_summary.h"
#include "cli/prepared_drive.h"
#include "cli/progress.h"
#include "drive/null_canvas.h"
#include "host/run_samples.h"

namespace tavrik {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

/// The results of a drive. @param problem  on false: one sentence that names file and fault
bool MakeResults(const DriveOrder& order, const PreparedDrive& drive, const DrivenCar& driven, const RunSamples& samples,
                 Results& results, std::string& problem) {
    if (!order.out.empty()) {
        const DriveSceneOptions options{order.keys, drive.ticksPerFrame, drive.frames, kKilometresPerUnit};
        std::string glb;
        if (!MakeDriveScene(*drive.car, drive.ground, options, glb, problem)) {
            problem = fmt::format("{}: {}", order.out.string(), problem);
            return false;
        }
        results.emplace_back(order.out, std::move(glb));
    }
    AddReadings(driven, samples, order.telemetry, order.plot, results);
    return true;
}

}  // namespace

int RunDrive(const DriveOrder& order) {
    const Clock::time_point begin = Clock::now();
    Progress progress;
    NullCanvas unseen;
    PreparedDrive drive;
    std::string problem;
    bool done = CheckWritable({order.out, order.telemetry, order.plot}, problem) &&
                PrepareDrive(order.drive, unseen, progress, drive, problem);
    const Clock::time_point driving = Clock::now();
    done = done && DriveFrames(drive, drive.frames, progress, problem);
    DriveTimes times;
    times.driving = SecondsSince(driving);
    const DrivenCar driven{drive.car, &drive.ground, GroundName(order.drive), kKilometresPerUnit};
    RunSamples samples;
    Results results;
    if (done) {
        progress.Begin("Writing");
        samples = TakeRunSamples(*drive.car);
        done = MakeResults(order, drive, driven, samples, results, problem) && WriteResults(results, problem);
    }
    progress.Clear();
    if (!done) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    times.frames = (drive.car->motion.frames - 1) / drive.params.GetInt(MasterParam::Frame_Step);
    times.driven = double(times.frames) * drive.ticksPerFrame / kTicksPerSecond;
    times.all = SecondsSince(begin);
    std::vector<std::filesystem::path> written;
    for (const auto& [file, bytes] : results) written.push_back(file);
    PrintSummary(driven, samples, times, drive.run->Notice(), written);
    return kExitOk;
}

}  // namespace tavrik
