#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "cli/command_line.h"
#include "cli/prepared_drive.h"
#include "cli/progress.h"
#include "drive/null_canvas.h"
#include "host/atomic_file.h"
#include "host/run_plot.h"
#include "host/run_samples.h"
#include "host/telemetry.h"

namespace tavrik {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

/// Whether the results could be written at all: better to know before a long drive than after it.
bool CheckOutputs(const DriveOrder& order, std::string& problem) {
    for (const std::filesystem::path* file : {&order.out, &order.telemetry, &order.plot}) {
        if (!file->empty() && !CanWriteFile(*file, problem)) return false;
    }
    return true;
}

/// Makes all results, stages all of them, and only then lets the first one replace anything.
bool WriteResults(const DriveOrder& order, const PreparedDrive& drive, const RunSamples& samples, std::string& problem) {
    std::vector<std::pair<const std::filesystem::path*, std::string>> results;
    if (!order.out.empty()) {
        const DriveSceneOptions options{order.keys, drive.ticksPerFrame, drive.frames, kKilometresPerUnit};
        std::string glb;
        if (!MakeDriveScene(*drive.car, drive.ground, options, glb, problem)) {
            problem = fmt::format("{}: {}", order.out.string(), problem);
            return false;
        }
        results.emplace_back(&order.out, std::move(glb));
    }
    if (!order.telemetry.empty()) results.emplace_back(&order.telemetry, TelemetryCsv(samples, kKilometresPerUnit));
    if (!order.plot.empty()) {
        const std::string title = "Drive over " + order.drive.ground.filename().string();
        results.emplace_back(&order.plot, RunPlotSvg({&samples, drive.car, &drive.ground, kKilometresPerUnit, title}));
    }
    std::vector<PendingFile> files(results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (!files[i].Stage(*results[i].first, results[i].second, problem)) return false;
    }
    for (PendingFile& file : files) {
        if (!file.Commit(problem)) return false;
    }
    return true;
}

Box3 BoxAround(const TriangleMesh& mesh) {
    Box3 box = EmptyBox3();
    for (const Point3& v : mesh.verts) box.Include(v);
    return box;
}

/// The second at which the car was below all ground and could only fall on, or a negative number.
double LeftGroundAt(const PreparedDrive& drive, const RunSamples& samples) {
    constexpr double kDepth = 1000.0;
    const double below = double(BoxAround(drive.ground).pmin.z) - kDepth;
    for (const RunReading& reading : samples.readings) {
        if (reading.position.z < below) return reading.seconds;
    }
    return -1.0;
}

void PrintSummary(const DriveOrder& order, const PreparedDrive& drive, const RunSamples& samples, double drivingSeconds,
                  double wallSeconds) {
    const Point3 size = BoxAround(drive.ground).Width() * 0.01f;
    const int frames = (drive.car->motion.frames - 1) / drive.params.GetInt(MasterParam::Frame_Step);
    const double driven = double(frames) * drive.ticksPerFrame / kTicksPerSecond;
    fmt::print("Ground    {}: {} triangles, {:.1f} x {:.1f} x {:.1f} m\n", GroundName(order.drive), drive.ground.faces.size(),
               size.x, size.y, size.z);
    fmt::print("Drive     {} frames, {} samples, {:.2f} s\n", frames, samples.readings.size(), driven);
    fmt::print("Car       {:.1f} m driven, top speed {:.1f} km/h\n", DistanceInMetres(samples, kKilometresPerUnit),
               TopSpeed(samples, kKilometresPerUnit));
    fmt::print("Time      {:.2f} s in all, driving {:.2f} s: {:.1f} times real time\n", wallSeconds, drivingSeconds,
               driven / std::max(drivingSeconds, 1e-9));
    if (!drive.run->Notice().empty()) fmt::print("Note      {}\n", drive.run->Notice());
    const double leftAt = LeftGroundAt(drive, samples);
    if (leftAt >= 0.0) fmt::print("Note      the car left the ground and was 10 m below all of it at second {:.1f}\n", leftAt);
    std::string files;
    for (const std::filesystem::path* file : {&order.out, &order.telemetry, &order.plot}) {
        if (!file->empty()) files += (files.empty() ? "" : ", ") + file->string();
    }
    if (!files.empty()) fmt::print("Written   {}\n", files);
}

}  // namespace

int RunDrive(const DriveOrder& order) {
    const Clock::time_point begin = Clock::now();
    Progress progress;
    NullCanvas unseen;
    PreparedDrive drive;
    std::string problem;
    bool done = CheckOutputs(order, problem) && PrepareDrive(order.drive, unseen, progress, drive, problem);
    const Clock::time_point driving = Clock::now();
    done = done && DriveFrames(drive, drive.frames, progress, problem);
    const double drivingSeconds = SecondsSince(driving);
    RunSamples samples;
    if (done) {
        progress.Begin("Writing");
        samples = TakeRunSamples(*drive.car);
        done = WriteResults(order, drive, samples, problem);
    }
    progress.Clear();
    if (!done) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    PrintSummary(order, drive, samples, drivingSeconds, SecondsSince(begin));
    return kExitOk;
}

}  // namespace tavrik
