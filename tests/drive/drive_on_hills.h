#pragma once
/// The scripted drive that tests of whole runs share: the stock car on rolling hills with every pedal used.

#include "rig/stock_car.h"
#include "solver/world_building.h"
#include "tests/drive/scripted_run.h"

namespace tavrik::test {

/// One static world to a program: it is more than 100 MB of untouched memory.
CarWorld& SharedWorld();

/// The ground of `HillRun`, built once.
const SurfaceTree& Hills();

/// Accelerates, steers both ways, brakes, reverses and pulls the hand brake, in six seconds.
DriverScript EveryPedal();

/// Puts the stock car on `Hills()` and the run at its start.
ScriptedRun HillRun(CarRig& rig);

/// A hash of every bit of a recording.
std::uint64_t HashRecording(const RecordedMotion& motion);

}  // namespace tavrik::test
