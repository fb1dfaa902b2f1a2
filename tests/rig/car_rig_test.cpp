#include "rig/car_rig.h"

#include <gtest/gtest.h>

#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;
using test::TestRandom;

TEST(FreshCarRig, IsUnlockedAndEmpty) {
    const auto rig = std::make_unique<CarRig>();
    EXPECT_FALSE(rig->motion.valid);
    EXPECT_EQ(rig->unitCount, 0);
    EXPECT_EQ(rig->hitchCount, 0);
    EXPECT_EQ(rig->sphereCount, 0);
    EXPECT_EQ(rig->steerValue, 0.0);
    EXPECT_EQ(rig->steerSpare, 0.0);
    EXPECT_EQ(rig->master, nullptr);
}

TEST(FreshCarRig, HasABodyOfItsOwnUntilTheFirstAssembly) {
    const auto rig = std::make_unique<CarRig>();
    EXPECT_EQ(rig->chassisParams.Length, 180.0);
    EXPECT_EQ(rig->chassisParams.Width, 70.0);
    EXPECT_EQ(rig->chassisParams.Height, 10.0);
    EXPECT_EQ(rig->chassisParams.Mass, 12.0);
    EXPECT_EQ(rig->chassisParams.Solidity, 5000.0);
}

TEST(FreshCarRig, StandsAtTheOriginWithEveryPart) {
    const auto rig = std::make_unique<CarRig>();
    const DMatrix3 identity = IdentityDMatrix3();
    const RigidBody rest;
    EXPECT_TRUE(SameBits(rig->chassisBody, rest));
    EXPECT_TRUE(SameBits(rig->chassisBody.frame, identity));
    for (int i = 0; i < kMaxComponents; ++i) {
        EXPECT_TRUE(SameBits(rig->wheelBodies[i], rest)) << i;
        EXPECT_TRUE(SameBits(rig->units[i].frame, identity)) << i;
        EXPECT_TRUE(SameBits(rig->spheres[i].frame, identity)) << i;
        EXPECT_TRUE(SameBits(rig->hitches[i].frame, identity)) << i;
    }
}

TEST(FreshCarRig, HasNoHitchConnected) {
    const auto rig = std::make_unique<CarRig>();
    for (const HitchSlot& slot : rig->hitches) {
        EXPECT_EQ(slot.partner, nullptr);
        EXPECT_EQ(slot.ownerRig, nullptr);
        EXPECT_EQ(slot.Ruggedness, 0.0);
    }
}

TEST(FreshCarRig, AnimatesNoComponent) {
    const auto rig = std::make_unique<CarRig>();
    for (std::int32_t type = 0; type <= 5; ++type) EXPECT_FALSE(rig->IsAnimated(type, 0)) << type;
    EXPECT_FALSE(rig->IsAnimated(2, 150));
}

TEST(FreshCarRig, HasRoomForTwoHundredOfEachComponent) {
    EXPECT_EQ(kMaxComponents, 200);
    const auto rig = std::make_unique<CarRig>();
    EXPECT_EQ(std::size(rig->units), 200u);
    EXPECT_EQ(std::size(rig->wheelBodies), 200u);
    EXPECT_EQ(std::size(rig->bufferPosition), 200u);
    EXPECT_EQ(std::size(rig->hitches), 200u);
    EXPECT_EQ(std::size(rig->spheres), 200u);
}

TEST(IsAnimated, LooksAtNeitherKindNorCount) {
    TestRandom random(test::TestSeed(41));
    const auto rig = test::RandomCar(random);
    rig->InitMotion();
    for (const std::int32_t type : {0, 2, 5, 8, -1, 1000}) EXPECT_TRUE(rig->IsAnimated(type, 0)) << type;
    EXPECT_TRUE(rig->IsAnimated(2, 150));  // of a car of four units
    EXPECT_TRUE(rig->IsAnimated(2, 199));
    EXPECT_FALSE(rig->IsAnimated(2, 200));
}

TEST(CarRig, LockingStartsARecordingOfOneFrameOfAllItsUnits) {
    TestRandom random(test::TestSeed(42));
    const auto rig = test::RandomCar(random);
    rig->InitMotion();
    EXPECT_TRUE(rig->motion.valid);
    EXPECT_EQ(rig->motion.frames, 1);
    EXPECT_EQ(rig->motion.unitCount, rig->unitCount);
}

TEST(CarRig, UnlockingKeepsCountsAndValues) {
    TestRandom random(test::TestSeed(43));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    const RigidBody chassis = rig->chassisBody, wheel = rig->wheelBodies[2];
    const double steerValue = rig->steerValue;

    rig->ResetMotion();

    EXPECT_FALSE(rig->motion.valid);
    EXPECT_FALSE(rig->IsAnimated(0, 0));
    EXPECT_EQ(rig->unitCount, 4);
    EXPECT_EQ(rig->hitchCount, 3);
    EXPECT_EQ(rig->sphereCount, 2);
    EXPECT_TRUE(SameBits(rig->chassisBody, chassis));
    EXPECT_TRUE(SameBits(rig->wheelBodies[2], wheel));
    EXPECT_EQ(rig->steerValue, steerValue);
}

TEST(CarRig, UnlockingAnUnlockedCarDoesNothing) {
    TestRandom random(test::TestSeed(44));
    const auto rig = test::RandomCar(random);
    const RigidBody chassis = rig->chassisBody;

    for (int i = 0; i < 3; ++i) rig->ResetMotion();

    EXPECT_FALSE(rig->motion.valid);
    EXPECT_EQ(rig->motion.frames, 0);
    EXPECT_EQ(rig->unitCount, 4);
    EXPECT_TRUE(SameBits(rig->chassisBody, chassis));
}

TEST(CarRig, LocksAgainAfterUnlocking) {
    TestRandom random(test::TestSeed(45));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    rig->ResetMotion();
    rig->ResetMotion();

    rig->InitMotion();

    EXPECT_EQ(rig->motion.frames, 1);
    EXPECT_TRUE(SameBits(rig->GetTM(ComponentType::Chassis, 0, 1000), ToMatrix3(rig->chassisBody.frame)));
}

TEST(CarRig, LockingALockedCarLeavesTheAssembledPoseOnly) {
    TestRandom random(test::TestSeed(46));
    const auto rig = test::RandomRun(random, 10, 0, 32);

    rig->InitMotion();

    EXPECT_EQ(rig->motion.frames, 1);
    for (const TimeValue tick : {-5000, 0, 64, 100'000}) {
        EXPECT_TRUE(SameBits(rig->GetTM(ComponentType::Wheel, 1, tick), ToMatrix3(rig->wheelBodies[1].frame))) << tick;
    }
}

TEST(CarRig, AnswersFromItsRecording) {
    TestRandom random(test::TestSeed(47));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    const TimeValue tick = 3 * 32 + 11;
    EXPECT_TRUE(
        SameBits(rig->GetTM(ComponentType::Suspension, 3, tick), rig->motion.Sample(tick, *rig, ComponentType::Suspension, 3)));
    EXPECT_TRUE(SameBits(rig->GetVelocity(tick), rig->motion.VelocityAt(tick, *rig)));
    EXPECT_TRUE(SameBits(rig->GetSteer(tick), rig->motion.SteerAt(tick)));
}

TEST(ClearHitchLinks, UntiesTheSlotsInUseAndKeepsTheirPlaces) {
    TestRandom random(test::TestSeed(48));
    const auto rig = test::RandomCar(random), other = test::RandomCar(random);
    for (HitchSlot& slot : rig->hitches) {
        slot.partner = &other->hitches[0];
        slot.ownerRig = rig.get();
        slot.Ruggedness = 500000.0;
    }
    const DMatrix3 frame = rig->hitches[1].frame;

    rig->ClearHitchLinks();

    for (std::int32_t i = 0; i < rig->hitchCount; ++i) {
        EXPECT_EQ(rig->hitches[i].partner, nullptr) << i;
        EXPECT_EQ(rig->hitches[i].ownerRig, nullptr) << i;
        EXPECT_EQ(rig->hitches[i].Ruggedness, 500000.0) << i;
    }
    EXPECT_TRUE(SameBits(rig->hitches[1].frame, frame));
    EXPECT_EQ(rig->hitches[rig->hitchCount].partner, &other->hitches[0]);  // above the count nothing is touched
}

}  // namespace
}  // namespace tavrik
