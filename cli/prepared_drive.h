#pragma once
/// What every command that drives has to do first: read the ground and the driver, and put the car down.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "cli/hands.h"
#include "cli/progress.h"
#include "drive/table_params.h"
#include "drive/virtual_run.h"
#include "host/car_placement.h"
#include "host/mesh_import.h"
#include "surface/surface_tree.h"

namespace tavrik {

constexpr double kMetresPerUnit = 0.01;  // the scene's unit is the centimetre
constexpr double kKilometresPerUnit = 1e-5;

/// Where to drive, who drives and for how long.
struct DriveOptions {
    std::filesystem::path ground;  // empty: the sample ground
    GroundImport import;
    std::filesystem::path input;  // empty: half throttle, straight on
    double seconds = 20.0;
    std::int32_t ticksPerFrame = 160;
    std::uint64_t seed = 1;
    std::optional<CarSpot> start;  // none: the middle of the ground
};

/// One drive, from the files to a run that is ready to start. There is one car and one world to a process.
struct PreparedDrive {
    TriangleMesh ground;
    SurfaceTree surface;
    TableParams params{*FindParamTable("Tavrik")};
    Hands hands;
    CarRig* car = nullptr;
    std::unique_ptr<VirtualRun> run;
    std::int32_t ticksPerFrame = 160;
    int frames = 0;
};

/// The name under which messages and titles speak of the ground.
std::string GroundName(const DriveOptions& options);

/// @param canvas   of the drive window; outlives the drive
/// @param problem  on false: one sentence that names file and fault
bool PrepareDrive(const DriveOptions& options, Canvas& canvas, Progress& progress, PreparedDrive& drive, std::string& problem);

/// Starts the run and drives `frames` frames. @param problem  on false: why the run couldn't start or had to stop
bool DriveFrames(PreparedDrive& drive, int frames, Progress& progress, std::string& problem);

}  // namespace tavrik
