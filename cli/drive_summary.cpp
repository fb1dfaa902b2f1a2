#include "cli/drive_summary.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/atomic_file.h"
#include "host/run_plot.h"
#include "host/telemetry.h"

namespace tavrik {
namespace {

Box3 BoxAround(const TriangleMesh& mesh) {
    Box3 box = EmptyBox3();
    for (const Point3& v : mesh.verts) box.Include(v);
    return box;
}

/// The second at which the car was below all ground and could only fall on, or a negative number.
double LeftGroundAt(const DrivenCar& drive, const RunSamples& samples) {
    constexpr double kDepthInKilometres = 0.01;
    const double below = double(BoxAround(*drive.ground).pmin.z) - kDepthInKilometres / drive.kilometresPerUnit;
    for (const RunReading& reading : samples.readings) {
        if (reading.position.z < below) return reading.seconds;
    }
    return -1.0;
}

}  // namespace

void AddReadings(const DrivenCar& drive, const RunSamples& samples, const std::filesystem::path& telemetry,
                 const std::filesystem::path& plot, Results& results) {
    if (!telemetry.empty()) results.emplace_back(telemetry, TelemetryCsv(samples, drive.kilometresPerUnit));
    if (plot.empty()) return;
    const std::string title = "Drive over " + std::filesystem::path(drive.groundName).filename().string();
    results.emplace_back(plot, RunPlotSvg({&samples, drive.car, drive.ground, drive.kilometresPerUnit, title}));
}

bool WriteResults(const Results& results, std::string& problem) {
    std::vector<PendingFile> files(results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (!files[i].Stage(results[i].first, results[i].second, problem)) return false;
    }
    for (PendingFile& file : files) {
        if (!file.Commit(problem)) return false;
    }
    return true;
}

bool CheckWritable(const std::vector<std::filesystem::path>& files, std::string& problem) {
    return std::all_of(files.begin(), files.end(),
                       [&problem](const std::filesystem::path& file) { return file.empty() || CanWriteFile(file, problem); });
}

void PrintSummary(const DrivenCar& drive, const RunSamples& samples, const DriveTimes& times, const std::string& notice,
                  const std::vector<std::filesystem::path>& written) {
    const Point3 size = BoxAround(*drive.ground).Width() * float(drive.kilometresPerUnit * 1000.0);
    fmt::print("Ground    {}: {} triangles, {:.1f} x {:.1f} x {:.1f} m\n", drive.groundName, drive.ground->faces.size(), size.x,
               size.y, size.z);
    fmt::print("Drive     {} frames, {} samples, {:.2f} s\n", times.frames, samples.readings.size(), times.driven);
    fmt::print("Car       {:.1f} m driven, top speed {:.1f} km/h\n", DistanceInMetres(samples, drive.kilometresPerUnit),
               TopSpeed(samples, drive.kilometresPerUnit));
    fmt::print("Time      {:.2f} s in all, driving {:.2f} s: {:.1f} times real time\n", times.all, times.driving,
               times.driven / std::max(times.driving, 1e-9));
    if (!notice.empty()) fmt::print("Note      {}\n", notice);
    const double leftAt = LeftGroundAt(drive, samples);
    if (leftAt >= 0.0) fmt::print("Note      the car left the ground and was 10 m below all of it at second {:.1f}\n", leftAt);
    std::string files;
    for (const std::filesystem::path& file : written) files += (files.empty() ? "" : ", ") + file.string();
    if (!files.empty()) fmt::print("Written   {}\n", files);
}

}  // namespace tavrik
