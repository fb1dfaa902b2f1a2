#pragma once
/// A run without a window: a script drives the car, frame by frame, and every stored sample is looked at.

#include <cstdint>
#include <string>

#include "drive/drive_settings.h"
#include "drive/driver_script.h"
#include "rig/car_rig.h"
#include "solver/car_world.h"
#include "surface/surface_tree.h"

namespace tavrik {

struct ScriptedRun {
    CarWorld* world = nullptr;             // not owned
    CarRig* rig = nullptr;                 // the driven car, locked; not owned
    const SurfaceTree* surface = nullptr;  // built; not owned
    DriveSettings settings;
    DriverScript script;
    std::uint64_t seed = 1;
    double kilometresPerUnit = 1e-5;
    std::int32_t ticksPerFrame = 160;
    TimeValue tick = 0;       // of the next frame
    TimeValue startTick = 0;  // where second 0 of the script lies
};

/// Takes the run back to the frame at `tick`, or picks up a loaded one there: the next `DriveFrame` gives the same bits as a
/// run that never stopped. What is recorded from `tick` on is dropped.
void ResumeAt(ScriptedRun& run, TimeValue tick);

/// Drives one frame of `ticksPerFrame` ticks and moves `tick` on.
///
/// @return false when a number in the new samples is not finite: `problem` then says at which second, of which body, and what
///         likely caused it, and the recording ends before the first bad sample
bool DriveFrame(ScriptedRun& run, std::string& problem);

}  // namespace tavrik
