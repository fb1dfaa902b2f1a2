#pragma once
/// One tick of a run: a scene frame of recorded samples, each of many solver steps.

#include <cstdint>

#include "rig/ticks.h"
#include "solver/car_world.h"
#include "solver/drive_input.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// What `DriveTick` asks of the master object, its session and the host, each time anew.
class DriveMaster {
 public:
    virtual ~DriveMaster() = default;
    virtual CarWorld& World() = 0;
    /// Null while no ground is built; then nothing moves.
    virtual const SurfaceTree* Surface() const = 0;
    virtual float Gravity() const = 0;             // unit/s^2
    virtual std::int32_t Frame_Step() const = 0;   // samples to a frame, at least 1
    virtual std::int32_t Sample_Step() const = 0;  // solver steps to a sample, at least 1
    virtual std::int32_t GetTicksPerFrame() const = 0;
    virtual TimeValue AnimRangeEnd() const = 0;
    /// Called before each sample: a session that drives towards a target fills its own input here, for the next tick to hand
    /// over.
    virtual void BeforeSample() {}
};

/// Puts every car of the world back to the recorded state at or before `tick`. Velocities stay what they were.
/// @return whether a recording lost frames by it
bool RewindCars(CarWorld& world, TimeValue tick);

/// Appends the present state of every car to its recording, at `tick`.
void StoreCars(CarWorld& world, TimeValue tick);

/// Drives one scene frame and moves `tickInOut` on by it. Goes on from what is recorded just before the frame and drops what
/// was recorded after. Without a ground, with a car that has no recording, or where the frame would pass the end of the
/// animation range, nothing changes.
///
/// A run that goes on where it stopped takes the velocities that its last step left; one that was taken back, and a car whose
/// velocities are stale, derives them anew, and so gives the bits of a run that never stopped. All draws of the frame come from
/// the generator's stream of this tick.
///
/// @param input  a copy, so that what `BeforeSample` writes counts from the next tick on
void DriveTick(DriveMaster& master, TimeValue& tickInOut, DriveInput input);

}  // namespace tavrik
