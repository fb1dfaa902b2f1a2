#pragma once
/// What a drive came to, for the terminal and as files.

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "host/run_samples.h"
#include "rig/car_rig.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// A driven car with what it was driven on. Nothing is owned.
struct DrivenCar {
    const CarRig* car = nullptr;  // locked; at least one driven sample
    const TriangleMesh* ground = nullptr;
    std::string groundName;
    double kilometresPerUnit = 1e-5;
};

/// Files to write, each with its bytes.
using Results = std::vector<std::pair<std::filesystem::path, std::string>>;

/// Adds telemetry and plot, where a name is given.
void AddReadings(const DrivenCar& drive, const RunSamples& samples, const std::filesystem::path& telemetry,
                 const std::filesystem::path& plot, Results& results);

/// Stages all results, and only then lets the first one replace anything.
bool WriteResults(const Results& results, std::string& problem);

/// Whether the files could be written at all: better to know before a long drive than after it.
bool CheckWritable(const std::vector<std::filesystem::path>& files, std::string& problem);

/// How long a drive took.
struct DriveTimes {
    int frames = 0;
    double driven = 0.0;   // on the timeline, seconds
    double driving = 0.0;  // on the clock, seconds
    double all = 0.0;      // likewise, with reading and writing
};

void PrintSummary(const DrivenCar& drive, const RunSamples& samples, const DriveTimes& times, const std::string& notice,
                  const std::vector<std::filesystem::path>& written);

}  // namespace tavrik
