#pragma once
/// The history of one car's run: what puts the car on the timeline, and what the solver goes on from after a rewind.

#include <cstdint>
#include <span>

#include "rig/frame_array.h"
#include "rig/ticks.h"
#include "solver/rigid_body.h"

namespace tavrik {

/// Wheels, spheres and hitches that a car can have.
constexpr int kMaxComponents = 200;

/// The steering of a car as a recording keeps it.
struct SteerSample {
    double steerValue = 0.0;  // radians, right positive
    double steerSpare = 0.0;  // travels along with `steerValue`; nothing reads it
};

/// The kinds of component that a recording answers for.
enum class ComponentType : std::int32_t {
    Chassis = 0,
    Suspension = 1,  // follows its wheel, but doesn't spin with it
    Wheel = 2,
    UnitFrame = 3,  // where a suspension is fixed to the body
    Hitch = 4,      // hitch or tongue
    Sphere = 5,
};

struct CarRig;

/// Samples of chassis and wheels at ticks, with steering and suspension state. A frame is one index across all arrays. Frame 0
/// holds the pose of the assembly at the most negative tick, so a recording of one frame answers for all time.
///
/// Not for use from two threads at once while one of them writes.
// NOLINTNEXTLINE(bugprone-reserved-identifier): clang names a variable so where it copies the arrays of arrays
struct RecordedMotion {
    std::int32_t valid = 0;                           // flag: there is a recording, and the car is locked
    FrameArray<MotionSample> chassis;                 // [frames]
    FrameArray<SteerSample> steer;                    // [frames]
    FrameArray<MotionSample> wheels[kMaxComponents];  // [unitCount][frames]
    FrameArray<double> buffers[kMaxComponents];       // [unitCount][frames], positions of the dashpots' springs, scene units
    FrameArray<TimeValue> times;                      // [frames], ascending
    std::int32_t frames = 0;
    std::int32_t capacity = 0;  // frames that fit before the arrays grow; each array has that much room
    std::int32_t unitCount = 0;

    /// Starts a recording of one frame, the present pose, at the most negative tick. An older recording is dropped.
    ///
    /// @param units        0..kMaxComponents (asserted)
    /// @param wheelBodies  at least `units`
    void Init(std::int32_t units, const RigidBody& chassisBody, std::span<const RigidBody> wheelBodies);

    /// Drops the recording and unlocks the car. Changes nothing where there is none.
    void Release();

    /// Appends the present state at `tick`, which the caller keeps later than the last stored tick.
    /// @return frames now stored
    std::int32_t Store(TimeValue tick, const RigidBody& chassisBody, std::span<const RigidBody> wheelBodies,
                       std::span<const double> bufferPosition, const SteerSample& steerPair);

    /// Puts the state at or before `tick` back and forgets every later frame. Velocities stay as they are.
    /// @return frames now stored
    std::int32_t Rewind(TimeValue tick, RigidBody& chassisBody, std::span<RigidBody> wheelBodies,
                        std::span<double> bufferPosition, SteerSample& steerPair);

    /// The last frame at or before `tick`.
    std::int32_t FindFrame(TimeValue tick) const;

    /// The pose of a component at `tick`, single precision as the scene is: the two poses around it blended row by row, with
    /// rows 0..2 at length 1. The last frame answers for every later tick, as it is.
    ///
    /// @param rig    the car that holds this recording
    /// @param index  of a component that the assembly made (asserted for wheels and suspensions)
    Matrix3 Sample(TimeValue tick, const CarRig& rig, ComponentType objectType, std::int32_t index) const;
    /// The velocity of the chassis at `tick`, unit/s.
    Point3 VelocityAt(TimeValue tick, const CarRig& rig) const;
    /// The steering at `tick`, radians.
    float SteerAt(TimeValue tick) const;
};

/// Runs `operation` on each array of a recording that holds one entry to a frame, in the order of the image in files.
template <typename Motion, typename Operation>
void ForEachArray(Motion& motion, Operation operation) {
    operation(motion.times);
    operation(motion.steer);
    operation(motion.chassis);
    for (std::int32_t u = 0; u < motion.unitCount; ++u) {
        operation(motion.wheels[u]);
        operation(motion.buffers[u]);
    }
}

/// The pose of a component in one stored frame, unblended. A suspension takes position and axle from its wheel and its X axis
/// from the body; its Y axis is cross(X, Z), so its frame is left-handed.
Matrix3 ComponentPose(const CarRig& rig, std::int32_t frame, ComponentType objectType, std::int32_t index);

/// A tick's place between two frames. `weight` is 0 at `frame`, 1 at the next; `next` equals `frame` on the last frame.
struct FramePosition {
    std::int32_t frame;
    std::int32_t next;
    float weight;
};

/// Where `tick` lies among the frames of a valid recording. Before the first driven frame both differences of ticks wrap:
/// ticks at or above zero then show the first driven frame, negative ones extrapolate.
FramePosition LocateTick(const RecordedMotion& motion, TimeValue tick);

}  // namespace tavrik
