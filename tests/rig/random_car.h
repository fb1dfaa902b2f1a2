#pragma once
/// Cars in random states for the tests of the recording, and comparing to the last bit.

#include <cstring>
#include <memory>
#include <type_traits>

#include "rig/car_rig.h"
#include "tests/support/test_random.h"

namespace tavrik::test {

/// Whether two records hold the same bits. The records must have no padding; vectors and frames have none.
template <typename T>
bool SameBits(const T& a, const T& b) {
    static_assert(std::is_trivially_copyable_v<T>);
    return std::memcmp(&a, &b, sizeof(T)) == 0;  // NOLINT(bugprone-suspicious-memory-comparison): bits are what is meant
}

/// Axes of random direction, longer than 1, not quite square, at a random place: nothing that arithmetic could let pass by
/// luck.
DMatrix3 RandomFrame(TestRandom& random);

/// Fills the bodies (velocities too), the dashpots and the steering with random values, as if the solver had driven on.
void RandomState(TestRandom& random, CarRig& rig);

/// An unlocked car of `units` units, three hitches and two spheres, all at random places and in a random state.
std::unique_ptr<CarRig> RandomCar(TestRandom& random, int units = 4);

/// A locked car with `frames` frames: the assembly, then one random state at `firstTick` and every `step` ticks from there.
std::unique_ptr<CarRig> RandomRun(TestRandom& random, int frames, TimeValue firstTick, TimeValue step);

}  // namespace tavrik::test
