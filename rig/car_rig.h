#pragma once
/// The assembled vehicle: everything that the solver reads of a car, its state, and the history of that state.

#include <cstdint>
#include <span>

#include "rig/recorded_motion.h"
#include "rig/suspension_unit.h"
#include "solver/rigid_body.h"

namespace tavrik {

/// The body of the car. X runs across the car, Y along it (+Y is the front), Z up; the origin is the centre of mass.
struct ChassisParams {
    double Length = 180.0;             // along Y, scene units: half of the drawn box; also the scale of the steering geometry
    double Width = 70.0;               // along X, likewise
    double Height = 10.0;              // along Z, likewise
    double Mass = 12.0;                // of the body alone
    double Solidity = 5000.0;          // stiffness of all that is rigid between body and wheels, mass / s^2
    double RotationCenterShift = 0.0;  // where the steered axles aim along Y, as a ratio of Length
};

/// One ball through which the body touches the ground.
struct CollisionSphere {
    DMatrix3 frame = IdentityDMatrix3();  // in chassis space; only row 3, the centre, matters
    double Radius = 0.0;                  // scene units
    double Ruggedness = 0.0;              // stiffness, mass / s^2
    double Grip = 0.0;                    // friction number
    double damping = 0.0;                 // sqrt(Ruggedness) * 20, mass / s
};

struct CarRig;

/// The way of one wheel over the ground from one sample to a later one.
struct TrackSample {
    Matrix3 from, to;       // the wheel's frame at both ends
    float radius, width;    // of the wheel, scene units
    std::int32_t sideFlag;  // 1 where row 2 of the unit's frame has a negative Y component, else 0
    TimeValue fromTick, toTick;
    std::uint32_t wheelHandle;  // names the wheel to the track texture
};

/// One end of a connection between two cars.
struct HitchSlot {
    DMatrix3 frame = IdentityDMatrix3();  // in chassis space; row 3 is the point of the joint
    HitchSlot* partner = nullptr;         // the slot at the other end, null when unconnected; not owned
    CarRig* ownerRig = nullptr;           // the rig that holds this slot, set on connection only; not owned
    double Ruggedness = 0.0;              // stiffness, the same in both partners, mass / s^2
};

/// A car lives at one address: hitch slots and the solver's world point into it.
struct CarRig {
    void* master = nullptr;  // who owns this rig; not owned, never looked into here
    RecordedMotion motion;
    std::int32_t unitCount = 0;
    ChassisParams chassisParams;
    SuspensionUnit units[kMaxComponents];
    std::int32_t hitchCount = 0;
    HitchSlot hitches[kMaxComponents];
    std::int32_t sphereCount = 0;
    CollisionSphere spheres[kMaxComponents];
    RigidBody chassisBody;
    RigidBody wheelBodies[kMaxComponents];       // beside `units`
    double bufferPosition[kMaxComponents] = {};  // beside `units`: where each dashpot stands, scene units
    double steerValue = 0.0;                     // radians, right positive
    double steerSpare = 0.0;                     // stored and put back beside `steerValue`
    /// Velocities don't belong to the recording: set by whoever puts another one in place, cleared by the next tick that is
    /// driven, which derives them from what it rewound to.
    bool velocitiesStale = false;

    CarRig() = default;
    CarRig(const CarRig&) = delete;
    CarRig& operator=(const CarRig&) = delete;

    /// Starts a recording of one frame from the present pose: the car is locked from here on.
    void InitMotion();
    /// Drops the recording and so unlocks the car; on an unlocked car nothing happens.
    void ResetMotion();
    /// Whether a component follows the recording. Neither its kind nor `unitCount` is looked at, only that there is a recording
    /// and a place of that index.
    bool IsAnimated(std::int32_t objectType, std::int32_t index) const;

    /// The pose of a component at `tick`, blended between samples and single precision, as the scene is. The car must be
    /// locked, and the component one that the assembly made (asserted).
    Matrix3 GetTM(ComponentType objectType, std::int32_t index, TimeValue tick) const;
    /// The velocity of the chassis at `tick`, unit/s. The car must be locked.
    Point3 GetVelocity(TimeValue tick) const;
    /// The steering at `tick`, radians. The car must be locked.
    float GetSteer(TimeValue tick) const;

    /// Appends the present state to the recording. @return frames now stored
    std::int32_t Store(TimeValue tick);
    /// Puts the recorded state at or before `tick` back and forgets what came after; velocities stay. @return frames now stored
    std::int32_t Rewind(TimeValue tick);

    /// How many segments `FillTrackSamples` writes at most.
    std::int32_t TrackSampleCount() const;
    /// Cuts the wheels' recorded motion into segments for tyre tracks; pieces shorter than half a wheel radius are merged.
    /// @param out  at least TrackSampleCount() places (asserted)
    /// @return segments written
    std::int32_t FillTrackSamples(std::span<TrackSample> out) const;

    /// Unties every hitch slot from its partner.
    void ClearHitchLinks();
};

}  // namespace tavrik
