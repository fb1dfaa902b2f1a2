#pragma once
/// The running-in stand's model: one damper with a mass on top rolls over a random road of knolls and holes. It is a toy of its
/// own, quick enough to run live beside the sliders, and shares nothing with the car's solver.
///
/// Lengths are stand units: heights grow upward, 0 is where all rests without gravity. The wheel stays at x = 0 and the road
/// moves beneath it towards positive x, one unit a second. Double precision, but for the settings, which are single as the
/// artist sets them; a quotient of two settings and the root of one are single too.

#include <array>
#include <cstddef>
#include <span>

#include "solver/random_stream.h"

namespace tavrik {

constexpr double kStandStep = 0.033;  // seconds to a pass, about thirty a second
constexpr std::size_t kStandHistory = 300;
constexpr std::size_t kRoadBumps = 1000;
constexpr double kFreeBump = 2.0;  // at this position or beyond, an entry is free

/// One feature of the road.
struct RoadBump {
    double position = kFreeBump;
    double amplitude = 0.0;  // 1 is a knoll, -1 a hole
};

/// What the artist sets, as it stands at one moment.
struct DamperSettings {
    float mass = 400.0f;
    float knollRate = 1.0f;  // knolls a second
    float holeRate = 1.0f;   // holes a second
    float gravity = 0.0f;    // scene units/s^2
    float rigidityFactor = 0.0f;
    float springRigidity = 0.0f;
    float oilDamping = 0.0f;
    float damperShift = 0.0f;  // scene units
    float bufferRigidity = 0.0f;
    float sizeScale = 0.0f;  // scene units to a stand unit
};

/// The state of the stand. A fresh one is at rest on an empty road.
struct DamperModel {
    std::array<double, kStandHistory> history{};  // of `bodyHeight`, newest first, 300 to a second or so
    std::array<RoadBump, kRoadBumps> bumps{};     // in any order
    double bodyHeight = 0.0;                      // of the mass
    double bodyVelocity = 0.0;                    // of the mass, unit/s
    double damperTravel = 0.0;                    // extension of the damper
};

/// Height of the road at `x`: the sum over `bumps`, in their order. A bump is 0.1 wide.
double RoadHeight(std::span<const RoadBump> bumps, double x);

/// The entries in use, in their order, so that RoadHeight answers to the last bit as it does over all of them, only sooner.
/// Free entries rest at 2 or beyond: good for any `x` below 1.95.
struct LiveBumps {
    explicit LiveBumps(std::span<const RoadBump> bumps);
    double Height(double x) const { return RoadHeight({entries.data(), count}, x); }

    std::array<RoadBump, kRoadBumps> entries;  // the first `count` of them
    std::size_t count = 0;
};

/// Moves every bump that isn't free by `dt`. One that comes to 2 falls free.
void MoveRoad(std::span<RoadBump> bumps, double dt);

/// Puts a bump into the first free entry.
/// @return false where there is none: the bump is dropped
bool AddBump(std::span<RoadBump> bumps, double position, double amplitude);

/// Lets at most one knoll and then at most one hole appear at the far end of the road, with the chance of the rates in `dt`.
/// Draws a number for each chance, and one more for the place of each bump that comes.
void SpawnBumps(std::span<RoadBump> bumps, const DamperSettings& settings, double dt, RandomStream& random);

/// Moves damper and mass through `dt` in a hundred substeps and puts ten heights into the history. Nothing is limited: a mass,
/// a damping or a size of 0 leads to infinite heights or to none, and they stay.
void Simulate(DamperModel& model, const DamperSettings& settings, double dt);

/// One pass of the stand: moves the road, lets bumps appear, simulates.
void StandStep(DamperModel& model, const DamperSettings& settings, RandomStream& random);

}  // namespace tavrik
