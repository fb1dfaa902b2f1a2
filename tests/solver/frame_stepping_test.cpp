#include "solver/frame_stepping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "rig/recording_bytes.h"
#include "rig/stock_car.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

/// One stock car in the world and a master that drives it.
class DriveTickTest : public testing::Test {
 protected:
    void SetUp() override {
        MakeStockCar(*rig, FrameAt({0, 0, StockCarStandingHeight() + 30.0}));
        CarWorld& world = EmptyWorld();
        world.rigs[world.carCount++] = rig.get();
        master.world = &world;
        master.surface = &Hills();
        input.throttle = 4.0f;
        input.steerTarget = 0.2f;
    }

    void DriveFrames(int count) {
        for (int i = 0; i < count; ++i) DriveTick(master, tick, input);
    }

    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    TestMaster master;
    DriveInput input = StockInput();
    TimeValue tick = 0;
};

TEST_F(DriveTickTest, AFrameStoresItsSamplesAtTheirTicks) {
    DriveFrames(2);
    EXPECT_EQ(tick, 320);
    EXPECT_EQ(master.samples, 10);
    EXPECT_EQ(rig->motion.times, (std::vector<TimeValue>{kBeforeAllTime, 0, 32, 64, 96, 128, 160, 192, 224, 256, 288}));
}

TEST_F(DriveTickTest, ASampleIsMadeOfStepsThatAllSeeTheSameTime) {
    std::map<TimeValue, int> asked;
    TestPush push;
    push.frame = [&](TimeValue at) { return ++asked[at], IdentityMatrix3(); };
    master.world->pushes[master.world->pushCount++] = {&push, &rig->chassisBody};
    tick = 1600;
    DriveFrames(1);
    // Ten passes a step, thirty steps a sample.
    EXPECT_EQ(asked, (std::map<TimeValue, int>{{1600, 300}, {1632, 300}, {1664, 300}, {1696, 300}, {1728, 300}}));
}

TEST_F(DriveTickTest, TicksOfSamplesAreCutDownToWholeOnes) {
    master.ticksPerFrame = 101;
    master.frameStep = 3;
    DriveFrames(2);
    EXPECT_EQ(rig->motion.times, (std::vector<TimeValue>{kBeforeAllTime, 0, 33, 67, 101, 134, 168}));
}

TEST_F(DriveTickTest, StepsTogetherLastAsLongAsTheFrame) {
    master.surface = &NoGround();
    for (const auto& [frameStep, sampleStep, ticks] : {std::tuple(5, 30, 160), {3, 7, 100}, {1, 1, 1}, {7, 11, 4800}}) {
        MakeBareCar(*rig, {0, 0, 0});
        rig->ResetMotion();
        rig->InitMotion();
        master.frameStep = frameStep;
        master.sampleStep = sampleStep;
        master.ticksPerFrame = ticks;
        tick = 0;
        DriveFrames(1);
        EXPECT_NEAR(rig->chassisBody.velocity.z, -kWeightSum * kGravity * ticks / 4800.0, 1e-7) << frameStep;
    }
}

TEST_F(DriveTickTest, TheLastFrameThatFitsIsDrivenAndNoneAfterIt) {
    master.rangeEnd = 1000;
    tick = 840;
    DriveFrames(1);
    EXPECT_EQ(tick, 1000);
    EXPECT_EQ(rig->motion.frames, 6);

    tick = 841;
    DriveFrames(1);
    EXPECT_EQ(tick, 841);
    EXPECT_EQ(rig->motion.frames, 6);
    EXPECT_EQ(master.samples, 5);
}

TEST_F(DriveTickTest, WithoutAGroundNothingMoves) {
    const SurfaceTree unbuilt;
    auto before = std::make_unique<CarRig>();
    MakeStockCar(*before, rig->chassisBody.frame);
    for (const SurfaceTree* surface : {static_cast<const SurfaceTree*>(nullptr), &unbuilt}) {
        master.surface = surface;
        DriveFrames(1);
        EXPECT_EQ(tick, 0);
        EXPECT_EQ(rig->motion.frames, 1);
        EXPECT_EQ(FirstDifference(*rig, *before), "");
    }
}

TEST_F(DriveTickTest, EverySampleIsTheStateAtItsEnd) {
    DriveFrames(1);
    const std::size_t last = std::size_t(rig->motion.frames) - 1;
    EXPECT_EQ(std::memcmp(&rig->motion.chassis[last].frame, &rig->chassisBody.frame, sizeof(DMatrix3)), 0);
    EXPECT_EQ(rig->motion.steer[last].steerValue, rig->steerValue);
    EXPECT_EQ(rig->motion.buffers[2][last], rig->bufferPosition[2]);
}

TEST_F(DriveTickTest, WhatTheSessionChangesBeforeASampleIsNotItsInputYet) {
    // A session keeps an input of its own and hands over a copy.
    DriveInput session = input;
    auto other = std::make_unique<CarRig>();
    MakeStockCar(*other, rig->chassisBody.frame);
    DriveFrames(1);

    master.world->rigs[0] = other.get();
    master.beforeSample = [&] { session.throttle = -4.0f; };
    TimeValue otherTick = 0;
    const DriveInput handed = session;
    DriveTick(master, otherTick, handed);
    EXPECT_EQ(FirstDifference(*rig, *other), "");
    EXPECT_EQ(session.throttle, -4.0f);
}

TEST_F(DriveTickTest, AFrameGoesOnFromTheRecordingAndNotFromWhereTheCarStands) {
    DriveFrames(3);
    const DMatrix3 place = rig->chassisBody.frame;
    rig->chassisBody.frame.row[3].x += 1000.0;  // the artist has dragged the car about meanwhile
    DriveFrames(1);
    EXPECT_LT(std::abs(rig->chassisBody.frame.row[3].x - place.row[3].x), 100.0);
}

TEST_F(DriveTickTest, DrivingAgainFromAnEarlierFrameDropsWhatCameAfter) {
    DriveFrames(10);
    tick = 480;
    DriveFrames(1);
    EXPECT_EQ(rig->motion.frames, 1 + 4 * 5);
    EXPECT_EQ(rig->motion.times.back(), 480 + 128);
}

TEST_F(DriveTickTest, AFrameBetweenSamplesGoesOnFromTheOneHalfASampleBack) {
    DriveFrames(4);
    tick = 500;  // 20 ticks after a sample, which is more than half of 32
    DriveFrames(1);
    ASSERT_EQ(rig->motion.times.size(), 22u);
    EXPECT_EQ(rig->motion.times[16], 480);
    EXPECT_EQ(rig->motion.times[17], 500);
}

TEST_F(DriveTickTest, BothCarsOfAWorldAreStored) {
    auto trailer = std::make_unique<CarRig>();
    MakeBareCar(*trailer, {0, -1000, 200});
    trailer->InitMotion();
    master.world->rigs[master.world->carCount++] = trailer.get();
    DriveFrames(1);
    EXPECT_EQ(trailer->motion.frames, 6);
    EXPECT_EQ(trailer->motion.times, rig->motion.times);
}

template <typename T>
bool SameBits(const FrameArray<T>& a, const FrameArray<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

bool SameMotion(const RecordedMotion& a, const RecordedMotion& b) {
    if (!SameBits(a.chassis, b.chassis) || !SameBits(a.steer, b.steer) || !SameBits(a.times, b.times)) return false;
    for (int u = 0; u < a.unitCount; ++u) {
        if (!SameBits(a.wheels[u], b.wheels[u]) || !SameBits(a.buffers[u], b.buffers[u])) return false;
    }
    return a.unitCount == b.unitCount && a.frames == b.frames;
}

TEST_F(DriveTickTest, DrivenOnAfterARewindMatchesTheUnbrokenRun) {
    DriveFrames(40);
    const RecordedMotion unbroken = rig->motion;
    for (const TimeValue from : {160 * 39, 160 * 17, 160}) {
        tick = from;
        RewindCars(*master.world, tick - 16);
        RefreshVelocities(*rig);
        while (tick < 160 * 40) DriveFrames(1);
        EXPECT_TRUE(SameMotion(rig->motion, unbroken)) << from;
    }
}

TEST_F(DriveTickTest, DrivenOnAfterALoadMatchesTheUnbrokenRun) {
    DriveFrames(20);
    auto loaded = std::make_unique<CarRig>();
    MakeStockCar(*loaded, IdentityDMatrix3());
    loaded->motion = rig->motion;
    const TimeValue pause = tick;
    DriveFrames(20);

    master.world->rigs[0] = loaded.get();
    tick = pause;
    RewindCars(*master.world, tick - 16);
    RefreshVelocities(*loaded);
    DriveFrames(20);
    EXPECT_TRUE(SameMotion(loaded->motion, rig->motion));
    EXPECT_EQ(FirstDifference(*loaded, *rig), "");
}

/// A run that is saved after twenty frames and driven on by a car that has never moved.
class SavedRun : public DriveTickTest, public testing::WithParamInterface<TimeValue> {
 protected:
    /// A new car of the same parameters in the driven car's place, with the recording of `image`.
    std::unique_ptr<CarRig> Load(const std::string& image, bool stale) {
        auto loaded = std::make_unique<CarRig>();
        MakeStockCar(*loaded, FrameAt({500, 300, 4000}));
        std::string problem;
        EXPECT_TRUE(LoadRecording(image, loaded->motion, problem)) << problem;
        loaded->velocitiesStale = stale;
        master.world->rigs[0] = loaded.get();
        return loaded;
    }
};

TEST_P(SavedRun, DrivenOnMatchesTheUnbrokenRun) {
    // The frame to go on from: the last one, which the rewind loses nothing at, and earlier ones.
    const TimeValue pause = GetParam();
    DriveFrames(20);
    const std::string saved = SaveRecording(rig->motion);
    DriveFrames(20);

    const auto loaded = Load(saved, /*stale=*/true);
    tick = pause;
    while (tick < 160 * 40) DriveFrames(1);
    EXPECT_TRUE(SameMotion(loaded->motion, rig->motion));
    EXPECT_EQ(FirstDifference(*loaded, *rig), "");
    EXPECT_EQ(SaveRecording(loaded->motion), SaveRecording(rig->motion));
    EXPECT_FALSE(loaded->velocitiesStale);
}

INSTANTIATE_TEST_SUITE_P(Pauses, SavedRun, testing::Values(160 * 20, 160 * 19, 160 * 7));

TEST_F(SavedRun, FromItsLastFrameNeedsItsVelocitiesDerivedAnew) {
    DriveFrames(20);
    const std::string saved = SaveRecording(rig->motion);
    const TimeValue pause = tick;
    DriveFrames(1);

    const auto unrefreshed = Load(saved, /*stale=*/false);
    tick = pause;
    DriveFrames(1);
    EXPECT_FALSE(SameMotion(unrefreshed->motion, rig->motion));
}

TEST_F(SavedRun, OnlyTheLoadedCarOfAWorldDerivesItsVelocitiesAnew) {
    const auto other = std::make_unique<CarRig>();
    MakeStockCar(*other, rig->chassisBody.frame);
    master.world->rigs[master.world->carCount++] = other.get();
    // A speed that belongs to no momentum: a wheel whose speed is derived anew stands still.
    rig->wheelBodies[0].velocity = other->wheelBodies[0].velocity = {48, 0, 0};
    const double x = rig->wheelBodies[0].frame.row[3].x;
    rig->velocitiesStale = true;
    master.frameStep = master.sampleStep = master.ticksPerFrame = 1;  // one step
    DriveFrames(1);
    EXPECT_EQ(rig->wheelBodies[0].frame.row[3].x, x);
    EXPECT_NEAR(other->wheelBodies[0].frame.row[3].x, x + 0.01, 1e-9);
}

TEST_F(DriveTickTest, AFrameThatIsNotDrivenLeavesVelocitiesStale) {
    rig->velocitiesStale = true;
    master.rangeEnd = 159;
    DriveFrames(1);
    EXPECT_TRUE(rig->velocitiesStale);
}

TEST_F(DriveTickTest, ARunHangsOnTheSeed) {
    DriveFrames(10);
    const RecordedMotion first = rig->motion;
    tick = 0;
    master.world->random.Seed(2);
    RewindCars(*master.world, -1);
    RefreshVelocities(*rig);
    DriveFrames(10);
    EXPECT_FALSE(SameMotion(rig->motion, first));

    tick = 0;
    master.world->random.Seed(1);
    RewindCars(*master.world, -1);
    RefreshVelocities(*rig);
    DriveFrames(10);
    EXPECT_TRUE(SameMotion(rig->motion, first));
}

TEST_F(DriveTickTest, RewindingLeavesVelocitiesAsTheyWere) {
    DriveFrames(5);
    const DPoint3 velocity = rig->chassisBody.velocity, turning = rig->wheelBodies[0].angularVelocity;
    RewindCars(*master.world, 0);
    EXPECT_EQ(rig->motion.frames, 2);
    EXPECT_EQ(std::memcmp(&rig->chassisBody.velocity, &velocity, sizeof velocity), 0);
    EXPECT_EQ(std::memcmp(&rig->wheelBodies[0].angularVelocity, &turning, sizeof turning), 0);
}

TEST_F(DriveTickTest, StoreCarsAppendsThePresentState) {
    rig->chassisBody.frame.row[3].x = 1234.5;
    rig->steerValue = 0.25;
    rig->steerSpare = 7.0;
    rig->bufferPosition[1] = 3.5;
    StoreCars(*master.world, 77);
    EXPECT_EQ(rig->motion.times.back(), 77);
    EXPECT_EQ(rig->motion.chassis.back().frame.row[3].x, 1234.5);
    EXPECT_EQ(rig->motion.steer.back().steerValue, 0.25);
    EXPECT_EQ(rig->motion.steer.back().steerSpare, 7.0);
    EXPECT_EQ(rig->motion.buffers[1].back(), 3.5);
}

}  // namespace
}  // namespace tavrik::test
