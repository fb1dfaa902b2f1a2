#include "rig/suspension_unit.h"

#include <gtest/gtest.h>

#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;
using test::TestRandom;

SuspensionUnit UnitOfType(std::int32_t type) {
    SuspensionUnit unit;
    unit.Suspension_Type = type;
    unit.Length = 38.0;
    unit.Wheel_Shift = 4.0;
    return unit;
}

TEST(RestReach, WishboneAddsItsArmToTheShift) { EXPECT_EQ(RestReach(UnitOfType(kWishbone)), 42.0); }

TEST(RestReach, TelescopicUnitKnowsTheShiftOnly) { EXPECT_EQ(RestReach(UnitOfType(kTelescopic)), 4.0); }

TEST(RestReach, AnyTypeButTheWishboneIsTelescopic) { EXPECT_EQ(RestReach(UnitOfType(7)), 4.0); }

class PlaceWheelOfEachType : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(PlaceWheelOfEachType, TravelAndLateralErrorAreZeroAtRest) {
    TestRandom random(test::TestSeed(31));
    for (int round = 0; round < test::TestRounds(200); ++round) {
        SuspensionUnit unit = UnitOfType(GetParam());
        unit.frame = random.Turn();
        unit.frame.row[3] = random.Vector(200.0);
        RigidBody chassis, wheel;
        chassis.frame = random.Turn();
        chassis.frame.row[3] = random.Vector(1000.0);
        double bufferPosition = 5.0;

        PlaceWheel(unit, chassis, wheel, bufferPosition);

        const DMatrix3 unitWorld = Compose(unit.frame, chassis.frame);
        const DPoint3 way = wheel.frame.row[3] - unitWorld.row[3];
        EXPECT_NEAR(Dot(way, unitWorld.row[0]), 0.0, 1e-11);              // measured 2e-13
        EXPECT_NEAR(Dot(way, unitWorld.row[1]), 0.0, 1e-11);              // measured 2e-13
        EXPECT_NEAR(Dot(way, unitWorld.row[2]), RestReach(unit), 1e-11);  // measured 2e-13
    }
}

TEST_P(PlaceWheelOfEachType, WheelStandsOnItsAxleBesideAStraightChassis) {
    SuspensionUnit unit = UnitOfType(GetParam());
    unit.frame = {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}, {30, 132, -20}}};
    RigidBody chassis, wheel;
    chassis.frame.row[3] = {100, 200, 300};
    double bufferPosition = 0.0;

    PlaceWheel(unit, chassis, wheel, bufferPosition);

    const DMatrix3 expected = {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}, {130 + RestReach(unit), 332, 280}}};
    for (int r = 0; r < 4; ++r) {
        EXPECT_EQ(wheel.frame.row[r].x, expected.row[r].x) << r;
        EXPECT_EQ(wheel.frame.row[r].y, expected.row[r].y) << r;
        EXPECT_EQ(wheel.frame.row[r].z, expected.row[r].z) << r;
    }
}

TEST_P(PlaceWheelOfEachType, WheelKeepsTheUnitsAxes) {
    TestRandom random(test::TestSeed(32));
    SuspensionUnit unit = UnitOfType(GetParam());
    unit.frame = test::RandomFrame(random);
    RigidBody chassis, wheel;
    chassis.frame = test::RandomFrame(random);
    double bufferPosition = 0.0;

    PlaceWheel(unit, chassis, wheel, bufferPosition);

    const DMatrix3 unitWorld = Compose(unit.frame, chassis.frame);
    for (int r = 0; r < 3; ++r) EXPECT_TRUE(SameBits(wheel.frame.row[r], unitWorld.row[r])) << r;
}

INSTANTIATE_TEST_SUITE_P(Types, PlaceWheelOfEachType, ::testing::Values(kWishbone, kTelescopic));

TEST(PlaceWheel, WheelAndDashpotAreAtRest) {
    RigidBody chassis, wheel;
    chassis.momentum = {1, 2, 3};
    chassis.velocity = {1, 2, 3};
    wheel.momentum = wheel.angularMomentum = wheel.velocity = wheel.angularVelocity = {4, 5, 6};
    double bufferPosition = 5.0;

    PlaceWheel(UnitOfType(kWishbone), chassis, wheel, bufferPosition);

    const DPoint3 zero{};
    EXPECT_TRUE(SameBits(wheel.momentum, zero));
    EXPECT_TRUE(SameBits(wheel.angularMomentum, zero));
    EXPECT_TRUE(SameBits(wheel.velocity, zero));
    EXPECT_TRUE(SameBits(wheel.angularVelocity, zero));
    EXPECT_EQ(bufferPosition, 0.0);
}

}  // namespace
}  // namespace tavrik
