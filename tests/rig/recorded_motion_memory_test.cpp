// A program of its own, because it takes the allocator's place: what a recording does when there is no memory left.

#include <gtest/gtest.h>

#include <new>

#include "rig/recorded_motion.h"
#include "tests/rig/failing_memory.h"
#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

bool EveryArrayHolds(const RecordedMotion& motion, std::size_t frames) {
    bool same = motion.times.size() == frames && motion.steer.size() == frames && motion.chassis.size() == frames;
    for (std::int32_t u = 0; u < motion.unitCount; ++u) {
        same = same && motion.wheels[u].size() == frames && motion.buffers[u].size() == frames;
    }
    return same;
}

/// @return whether the frame was stored; false when memory ran out
bool StoreWithAllocations(CarRig& rig, TimeValue tick, int allocations) {
    test::allocationsLeft = allocations;
    bool stored = true;
    try {
        rig.Store(tick);
    } catch (const std::bad_alloc&) {
        stored = false;
    }
    test::allocationsLeft = -1;
    return stored;
}

TEST(RecordedMotionStore, GrowthThatFailsLeavesTheRecordingAsItWas) {
    test::TestRandom random(test::TestSeed(101)), again = random;
    const auto rig = test::RandomRun(random, 500, 0, 32), twin = test::RandomRun(again, 500, 0, 32);

    // One allocation more at each attempt, so that every array once is the one that fails.
    int failures = 0;
    while (!StoreWithAllocations(*rig, 500 * 32, failures)) {
        ++failures;
        ASSERT_LT(failures, 100);
        ASSERT_EQ(rig->motion.frames, 500);
        ASSERT_EQ(rig->motion.capacity, 500);
        ASSERT_TRUE(EveryArrayHolds(rig->motion, 500)) << failures;
    }

    EXPECT_GT(failures, 2);
    EXPECT_EQ(rig->motion.frames, 501);
    EXPECT_EQ(rig->motion.capacity, 1000);
    EXPECT_TRUE(EveryArrayHolds(rig->motion, 501));
    for (std::size_t f = 0; f < 500; ++f) ASSERT_TRUE(test::SameBits(rig->motion.wheels[3][f], twin->motion.wheels[3][f])) << f;
}

}  // namespace
}  // namespace tavrik
