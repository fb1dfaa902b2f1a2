#include "rig/recorded_motion.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;
using test::TestRandom;

constexpr TimeValue kFirstTick = std::numeric_limits<TimeValue>::min(), kLastTick = std::numeric_limits<TimeValue>::max();

/// A recording without wheels, with a frame at each of `ticks` beside that of the assembly.
RecordedMotion MotionAt(const std::vector<TimeValue>& ticks) {
    RecordedMotion motion;
    motion.Init(0, {}, {});
    for (const TimeValue tick : ticks) motion.Store(tick, {}, {}, {}, {});
    return motion;
}

/// What a recording keeps of a car, and the velocities, which it doesn't.
struct CarState {
    RigidBody chassis;
    RigidBody wheels[4];
    double buffers[4];
    SteerSample steer;
};

CarState StateOf(const CarRig& rig) {
    CarState state = {rig.chassisBody, {}, {}, {rig.steerValue, rig.steerSpare}};
    for (int u = 0; u < 4; ++u) {
        state.wheels[u] = rig.wheelBodies[u];
        state.buffers[u] = rig.bufferPosition[u];
    }
    return state;
}

bool SameRecordedBody(const RigidBody& a, const RigidBody& b) {
    return SameBits(a.frame, b.frame) && SameBits(a.momentum, b.momentum) && SameBits(a.angularMomentum, b.angularMomentum);
}

bool SameVelocities(const RigidBody& a, const RigidBody& b) {
    return SameBits(a.velocity, b.velocity) && SameBits(a.angularVelocity, b.angularVelocity);
}

void ExpectRecordedState(const CarRig& rig, const CarState& expected) {
    EXPECT_TRUE(SameRecordedBody(rig.chassisBody, expected.chassis));
    EXPECT_TRUE(SameBits(rig.steerValue, expected.steer.steerValue));
    EXPECT_TRUE(SameBits(rig.steerSpare, expected.steer.steerSpare));
    for (int u = 0; u < 4; ++u) {
        EXPECT_TRUE(SameRecordedBody(rig.wheelBodies[u], expected.wheels[u])) << u;
        EXPECT_TRUE(SameBits(rig.bufferPosition[u], expected.buffers[u])) << u;
    }
}

TEST(FreshRecordedMotion, IsNotValid) {
    const RecordedMotion motion;
    EXPECT_FALSE(motion.valid);
    EXPECT_EQ(motion.frames, 0);
}

TEST(RecordedMotionInit, StoresTheAssemblyAtTheMostNegativeTick) {
    TestRandom random(test::TestSeed(51));
    const auto rig = test::RandomCar(random);
    RecordedMotion motion;

    motion.Init(4, rig->chassisBody, rig->wheelBodies);

    EXPECT_TRUE(motion.valid);
    EXPECT_EQ(motion.frames, 1);
    EXPECT_EQ(motion.unitCount, 4);
    EXPECT_EQ(motion.times[0], kFirstTick);
    EXPECT_TRUE(SameBits(motion.chassis[0].frame, rig->chassisBody.frame));
    EXPECT_TRUE(SameBits(motion.chassis[0].angularMomentum, rig->chassisBody.angularMomentum));
    for (std::size_t u = 0; u < 4; ++u) {
        EXPECT_TRUE(SameBits(motion.wheels[u][0].frame, rig->wheelBodies[u].frame)) << u;
        EXPECT_TRUE(SameBits(motion.wheels[u][0].momentum, rig->wheelBodies[u].momentum)) << u;
    }
}

TEST(RecordedMotionInit, StartsWithSteeringAndDashpotsAtZeroWhateverTheCarHas) {
    TestRandom random(test::TestSeed(52));
    const auto rig = test::RandomCar(random);  // which steers, and whose dashpots are out
    rig->InitMotion();
    EXPECT_EQ(rig->motion.steer[0].steerValue, 0.0);
    EXPECT_EQ(rig->motion.steer[0].steerSpare, 0.0);
    for (std::size_t u = 0; u < 4; ++u) EXPECT_EQ(rig->motion.buffers[u][0], 0.0) << u;
}

TEST(RecordedMotionInit, DropsTheRecordingBefore) {
    TestRandom random(test::TestSeed(53));
    const auto rig = test::RandomRun(random, 30, 0, 32);
    rig->motion.Init(2, rig->chassisBody, rig->wheelBodies);
    EXPECT_EQ(rig->motion.frames, 1);
    EXPECT_EQ(rig->motion.unitCount, 2);
    EXPECT_EQ(rig->motion.times.size(), 1u);
    EXPECT_TRUE(rig->motion.wheels[3].empty());
}

TEST(RecordedMotionInit, HasRoomForFiveHundredFrames) {
    RecordedMotion motion;
    motion.Init(0, {}, {});
    EXPECT_EQ(motion.capacity, 500);
}

TEST(RecordedMotionRelease, DropsEverything) {
    TestRandom random(test::TestSeed(54));
    const auto rig = test::RandomRun(random, 30, 0, 32);
    rig->motion.Release();
    EXPECT_FALSE(rig->motion.valid);
    EXPECT_EQ(rig->motion.frames, 0);
    EXPECT_TRUE(rig->motion.chassis.empty());
    EXPECT_TRUE(rig->motion.wheels[0].empty());
    EXPECT_EQ(rig->motion.chassis.Room().size(), 0u);  // an unlocked car gives its memory back
}

TEST(RecordedMotionRelease, ChangesNothingWhereThereIsNoRecording) {
    RecordedMotion motion;
    motion.frames = 3;
    motion.capacity = 7;
    motion.unitCount = 2;
    motion.times.GrowRoom(3);
    for (const TimeValue tick : {1, 2, 3}) motion.times.push_back(tick);

    motion.Release();

    EXPECT_FALSE(motion.valid);
    EXPECT_EQ(motion.frames, 3);
    EXPECT_EQ(motion.capacity, 7);
    EXPECT_EQ(motion.unitCount, 2);
    EXPECT_EQ(motion.times, (std::vector<TimeValue>{1, 2, 3}));
}

TEST(RecordedMotionRelease, MayBeCalledAgainAndAgain) {
    RecordedMotion motion = MotionAt({0, 32});
    for (int i = 0; i < 4; ++i) motion.Release();
    EXPECT_FALSE(motion.valid);
    motion.Init(0, {}, {});
    EXPECT_EQ(motion.frames, 1);
}

TEST(RecordedMotionStore, AnswersWithTheNumberOfFrames) {
    RecordedMotion motion = MotionAt({});
    EXPECT_EQ(motion.Store(0, {}, {}, {}, {}), 2);
    EXPECT_EQ(motion.Store(32, {}, {}, {}, {}), 3);
    EXPECT_EQ(motion.times, (std::vector<TimeValue>{kFirstTick, 0, 32}));
}

TEST(RecordedMotionStore, FiveHundredAndFirstFrameGrowsByFiveHundredAndKeepsEveryBit) {
    TestRandom random(test::TestSeed(55)), again = random;
    const auto rig = test::RandomRun(random, 500, 0, 32), twin = test::RandomRun(again, 500, 0, 32);
    const RecordedMotion& before = twin->motion;
    ASSERT_EQ(rig->motion.capacity, 500);

    RandomState(random, *rig);
    EXPECT_EQ(rig->Store(500 * 32), 501);

    const RecordedMotion& after = rig->motion;
    EXPECT_EQ(after.capacity, 1000);
    for (std::size_t f = 0; f < 500; ++f) {
        ASSERT_EQ(after.times[f], before.times[f]) << f;
        ASSERT_TRUE(SameBits(after.steer[f], before.steer[f])) << f;
        ASSERT_TRUE(SameBits(after.chassis[f], before.chassis[f])) << f;
        for (std::size_t u = 0; u < 4; ++u) {
            ASSERT_TRUE(SameBits(after.wheels[u][f], before.wheels[u][f])) << f;
            ASSERT_TRUE(SameBits(after.buffers[u][f], before.buffers[u][f])) << f;
        }
    }
    EXPECT_EQ(after.times[500], 500 * 32);
    EXPECT_TRUE(SameBits(after.chassis[500].frame, rig->chassisBody.frame));
}

TEST(RecordedMotionStore, GrowsByTheSameRoomEachTime) {
    RecordedMotion motion = MotionAt({});
    std::vector<std::int32_t> capacities = {motion.capacity};
    for (TimeValue tick = 0; tick < 2000; ++tick) {
        motion.Store(tick, {}, {}, {}, {});
        if (motion.capacity != capacities.back()) {
            EXPECT_EQ(motion.frames, capacities.back() + 1);
            capacities.push_back(motion.capacity);
        }
    }
    EXPECT_EQ(capacities, (std::vector<std::int32_t>{500, 1000, 1500, 2000, 2500}));
}

TEST(FindFrame, OneFrameAnswersForAllTime) {
    const RecordedMotion motion = MotionAt({});
    for (const TimeValue tick : {kFirstTick, -1, 0, 1, kLastTick}) EXPECT_EQ(motion.FindFrame(tick), 0) << tick;
}

TEST(FindFrame, TickBeforeEveryDrivenFrameIsThatOfTheAssembly) {
    const RecordedMotion motion = MotionAt({160, 192, 224});
    for (const TimeValue tick : {kFirstTick, -1, 0, 159}) EXPECT_EQ(motion.FindFrame(tick), 0) << tick;
}

TEST(FindFrame, TickOfAFrameIsThatFrame) {
    const RecordedMotion motion = MotionAt({160, 192, 224});
    EXPECT_EQ(motion.FindFrame(160), 1);
    EXPECT_EQ(motion.FindFrame(191), 1);
    EXPECT_EQ(motion.FindFrame(192), 2);
    EXPECT_EQ(motion.FindFrame(224), 3);
}

TEST(FindFrame, TickBeyondTheEndIsTheLastFrame) {
    const RecordedMotion motion = MotionAt({160, 192, 224});
    EXPECT_EQ(motion.FindFrame(225), 3);
    EXPECT_EQ(motion.FindFrame(kLastTick), 3);
}

TEST(FindFrame, AgreesWithLookingThroughAllFrames) {
    TestRandom random(test::TestSeed(56));
    int exact = 0, between = 0, beyond = 0, before = 0;
    for (int round = 0; round < test::TestRounds(300); ++round) {
        std::vector<TimeValue> ticks;
        TimeValue tick = random.Int(-5000, 5000);
        for (int n = random.Int(0, 60); n > 0; --n) ticks.push_back(tick += random.Int(1, 300));
        const RecordedMotion motion = MotionAt(ticks);
        for (int i = 0; i < 200; ++i) {
            const TimeValue asked = random.Int(-6000, 16000);
            std::int32_t expected = 0;
            for (std::int32_t f = 0; f < motion.frames; ++f) {
                if (motion.times[std::size_t(f)] <= asked) expected = f;
            }
            ASSERT_EQ(motion.FindFrame(asked), expected) << "tick " << asked << " in " << ::testing::PrintToString(ticks);
            if (motion.times[std::size_t(expected)] == asked) {
                ++exact;
            } else if (expected == motion.frames - 1) {
                ++beyond;
            } else {
                ++(expected == 0 ? before : between);
            }
        }
    }
    EXPECT_GT(exact, 50);
    EXPECT_GT(before, 1000);
    EXPECT_GT(between, 1000);
    EXPECT_GT(beyond, 1000);
}

TEST(Rewind, PutsBackEveryStoredBit) {
    TestRandom random(test::TestSeed(57));
    const auto rig = test::RandomCar(random);
    rig->InitMotion();
    std::vector<CarState> states;
    for (int f = 0; f < 20; ++f) {
        test::RandomState(random, *rig);
        states.push_back(StateOf(*rig));
        EXPECT_EQ(rig->Store(f * 32), f + 2);
    }
    for (int f = 19; f >= 0; --f) {
        test::RandomState(random, *rig);  // drive on into something else
        EXPECT_EQ(rig->Rewind(f * 32), f + 2);
        ExpectRecordedState(*rig, states[std::size_t(f)]);
    }
}

TEST(Rewind, LeavesVelocitiesAsTheyAre) {
    TestRandom random(test::TestSeed(58));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    test::RandomState(random, *rig);
    const CarState before = StateOf(*rig);

    rig->Rewind(64);

    EXPECT_TRUE(SameVelocities(rig->chassisBody, before.chassis));
    for (int u = 0; u < 4; ++u) EXPECT_TRUE(SameVelocities(rig->wheelBodies[u], before.wheels[u])) << u;
    EXPECT_FALSE(SameRecordedBody(rig->chassisBody, before.chassis));
}

TEST(Rewind, TouchesNoWheelBeyondTheRecording) {
    TestRandom random(test::TestSeed(59));
    const auto rig = test::RandomRun(random, 3, 0, 32);
    rig->wheelBodies[4].momentum = {1, 2, 3};
    rig->bufferPosition[4] = 7.0;
    rig->Rewind(0);
    EXPECT_EQ(rig->wheelBodies[4].momentum.y, 2.0);
    EXPECT_EQ(rig->bufferPosition[4], 7.0);
}

TEST(Rewind, ForgetsEveryLaterFrame) {
    TestRandom random(test::TestSeed(60));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    rig->Rewind(96);
    EXPECT_EQ(rig->motion.frames, 5);
    EXPECT_EQ(rig->motion.FindFrame(kLastTick), 4);
}

TEST(Rewind, TickBetweenTwoFramesTakesTheEarlier) {
    TestRandom random(test::TestSeed(61));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    EXPECT_EQ(rig->Rewind(96 + 31), 5);
}

TEST(Rewind, BeforeTheFirstDrivenFrameLeavesTheAssemblyOnly) {
    TestRandom random(test::TestSeed(62));
    const auto rig = test::RandomCar(random);
    const CarState assembled = StateOf(*rig);
    rig->InitMotion();
    for (const TimeValue tick : {160, 192, 224}) {
        test::RandomState(random, *rig);
        rig->Store(tick);
    }

    EXPECT_EQ(rig->Rewind(159), 1);

    EXPECT_EQ(rig->motion.frames, 1);
    EXPECT_TRUE(SameRecordedBody(rig->chassisBody, assembled.chassis));
    EXPECT_EQ(rig->steerValue, 0.0);
    EXPECT_EQ(rig->bufferPosition[0], 0.0);
}

TEST(Rewind, HalfASampleBeforeATickFindsTheLastFrameStrictlyBeforeIt) {
    // Samples 32 ticks apart, five to a frame: driving the frame at 320 again must not keep the sample at 320.
    TestRandom random(test::TestSeed(63));
    const auto rig = test::RandomRun(random, 16, 0, 32);
    rig->Rewind(320 - 32 / 2);
    EXPECT_EQ(rig->motion.times.back(), 288);
}

TEST(Rewind, StoringGoesOnInPlaceOfWhatWasForgotten) {
    TestRandom random(test::TestSeed(64));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    rig->Rewind(96);
    test::RandomState(random, *rig);

    EXPECT_EQ(rig->Store(128), 6);

    EXPECT_EQ(rig->motion.times, (std::vector<TimeValue>{kFirstTick, 0, 32, 64, 96, 128}));
    EXPECT_TRUE(SameBits(rig->motion.wheels[3][5].frame, rig->wheelBodies[3].frame));
}

TEST(Rewind, DoesNotShrinkTheRoom) {
    TestRandom random(test::TestSeed(65));
    const auto rig = test::RandomRun(random, 501, 0, 32);
    rig->Rewind(0);
    EXPECT_EQ(rig->motion.capacity, 1000);
}

TEST(TicksBetween, WrapsInThirtyTwoBits) {
    EXPECT_EQ(TicksBetween(100, 132), 32);
    EXPECT_EQ(TicksBetween(132, 100), -32);
    EXPECT_EQ(TicksBetween(kFirstTick, 0), kFirstTick);
    EXPECT_EQ(TicksBetween(kFirstTick, 32), kFirstTick + 32);
    EXPECT_EQ(TicksBetween(kFirstTick, -1), kLastTick);
}

}  // namespace
}  // namespace tavrik
