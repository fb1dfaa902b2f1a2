#include "cli/prepared_drive.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "drive/controls_config.h"
#include "drive/drive_settings.h"
#include "host/controls_file.h"
#include "rig/stock_car.h"
#include "samples/sample_ground.h"

namespace tavrik {
namespace {

// Well over 100 MB, of which one car touches a little: static storage costs nothing until it is used.
CarWorld world;
CarRig car;

/// Live hands meet the user's own bindings.
bool SetParams(PreparedDrive& drive, std::string& problem) {
    WriteDriveSettings(StockCarSettings(), drive.params);
    if (!drive.hands.ByEvents()) {
        drive.params.SetInt(MasterParam::Driving_Type, kDriveToTarget);
        return true;
    }
    ControlsFile file;
    if (LoadControls(file, drive.params) == FileState::Unreadable) {
        problem = file.Problem();
        return false;
    }
    drive.params.SetInt(MasterParam::Driving_Type, std::int32_t(DrivingTypeOf(drive.hands.events)));
    return true;
}

bool BuildSurface(const DriveOptions& options, PreparedDrive& drive, Progress& progress, std::string& problem) {
    progress.Begin("Reading ground");
    if (options.ground.empty()) {
        drive.ground = MakeSampleGround({});
    } else if (!ReadGround(options.ground, options.import, drive.ground, problem)) {
        return false;
    }
    progress.Begin("Building surface");
    if (drive.surface.Build(drive.ground, {}, problem)) return true;
    problem = fmt::format("{}: {}.", GroundName(options), problem);
    return false;
}

bool PutCarDown(const DriveOptions& options, PreparedDrive& drive, std::string& problem) {
    MakeStockCar(car, IdentityDMatrix3());
    std::vector<DPoint3> wheels;
    wheels.reserve(std::size_t(car.unitCount));
    for (int i = 0; i < car.unitCount; ++i) wheels.push_back(car.wheelBodies[i].frame.row[3]);
    const CarSpot spot = options.start ? *options.start : MiddleOfGround(drive.surface);
    DMatrix3 frame;
    if (!StandOnGround(drive.surface, spot, wheels, StockCarStandingHeight(), frame, problem)) {
        problem = fmt::format("{}: {}.", GroundName(options), problem);
        return false;
    }
    MakeStockCar(car, frame);
    drive.car = &car;
    return true;
}

void MakeRun(const DriveOptions& options, Canvas& canvas, PreparedDrive& drive) {
    drive.ticksPerFrame = options.ticksPerFrame;
    // A time that isn't a whole number of frames gets the frame in which it ends.
    drive.frames = std::max(1, int(std::ceil(options.seconds * kTicksPerSecond / options.ticksPerFrame - 1e-9)));
    const bool byEvents = drive.hands.ByEvents();
    VirtualRunSetup setup;
    setup.world = &world;
    setup.rig = &car;
    setup.surface = &drive.surface;
    setup.params = &drive.params;
    setup.canvas = &canvas;
    setup.rows = byEvents ? nullptr : &drive.hands.rows;
    setup.events = byEvents ? &drive.hands.events : nullptr;
    setup.ticksPerFrame = options.ticksPerFrame;
    setup.frames = drive.frames;
    setup.metresPerUnit = kMetresPerUnit;
    setup.seed = options.seed;
    drive.run = std::make_unique<VirtualRun>(setup);
}

}  // namespace

std::string GroundName(const DriveOptions& options) {
    return options.ground.empty() ? "The sample ground" : options.ground.string();
}

bool PrepareDrive(const DriveOptions& options, Canvas& canvas, Progress& progress, PreparedDrive& drive, std::string& problem) {
    if (!ReadHands(options.input, drive.hands, problem) || !SetParams(drive, problem) ||
        !BuildSurface(options, drive, progress, problem) || !PutCarDown(options, drive, problem)) {
        return false;
    }
    MakeRun(options, canvas, drive);
    return true;
}

bool DriveFrames(PreparedDrive& drive, int frames, Progress& progress, std::string& problem) {
    progress.Begin("Driving");
    if (!drive.run->Start(problem)) return false;
    for (int frame = 0; frame < frames; ++frame) {
        progress.Show(double(frame) / frames);
        if (!drive.run->Tick(problem)) return false;
    }
    return true;
}

}  // namespace tavrik
