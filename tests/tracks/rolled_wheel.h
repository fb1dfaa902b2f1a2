#pragma once
/// Cars whose wheels go where a test wants them, without a world to drive in.

#include <memory>

#include "rig/car_rig.h"
#include "tests/support/test_random.h"
#include "tracks/track_trail.h"

namespace tavrik::test {

constexpr float kTestRadius = 30.0f, kTestWidth = 10.0f;

/// A locked car of `wheels` wheels that stand at the origin, axles along X. Their handles count from 100.
std::unique_ptr<CarRig> LockedWheels(int wheels = 1);
/// The frame of a wheel that has rolled along Y, its axle along X, to `middle`.
DMatrix3 RolledTo(const DPoint3& middle, double turn);
/// Rolls the wheels along Y, `step` units a sample, from where they stand. Without `rolls` they slide.
void Roll(CarRig& rig, int samples, double step, bool rolls = true, TimeValue firstTick = 0);

/// The trail of a car, with no notice to it.
std::shared_ptr<TrackTrail> TrailOf(const CarRig& rig, std::size_t storedBytes = TrackTrail::kStoredFrameBytes);

/// The answer of a query, to be compared bit for bit.
struct TrackAnswer {
    float value = 0.0f;
    Point3 bump{0, 0, 0};
};
TrackAnswer Ask(const TrackTrail& trail, const Point3& point, TimeValue tick, const TrackParams& params,
                std::span<const SharedTread> treads = {});
bool SameBits(const TrackAnswer& a, const TrackAnswer& b);

/// A tread with lugs, different at each of its places.
SharedTread LuggedTread();

}  // namespace tavrik::test
