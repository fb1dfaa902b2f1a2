#include "solver/wheel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

constexpr double kRadius = 30.0, kWidth = 8.0;

SuspensionUnit Tyre() {
    SuspensionUnit unit;
    unit.Radius = kRadius;
    unit.Width = kWidth;
    unit.Mass = 20.0;
    return unit;
}

/// A wheel that rolls along Y, its axle along X and its centre `height` above the ground.
RigidBody StandingWheel(double height) {
    RigidBody wheel;
    wheel.frame = {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, height}}};
    return wheel;
}

using Contacts = ContactPoint[kWheelRays];

void Cast(const RigidBody& wheel, RandomStream& random, Contacts& contacts) {
    WheelRayCast(Tyre(), FlatGround(), wheel, random, contacts);
}

int Hits(const Contacts& contacts) {
    int hits = 0;
    for (const ContactPoint& contact : contacts) hits += contact.hit != 0;
    return hits;
}

TEST(WheelInertia, IsThatOfABoxOfWholeRadiusAndWholeWidth) {
    const BodyInverseInertia inertia = WheelInertia(Tyre(), RigidBody{});
    EXPECT_DOUBLE_EQ(inertia.inverseTensor.row[2].z, 1.0 / (20.0 * 2.0 * kRadius * kRadius));
    EXPECT_DOUBLE_EQ(inertia.inverseTensor.row[0].x, 1.0 / (20.0 * (kRadius * kRadius + kWidth * kWidth)));
    EXPECT_EQ(inertia.inverseMass, 1.0 / 20.0);
}

TEST(WheelRayCast, DrawsTwoNumbers) {
    const std::vector<double> known = {0.1, 0.2, 0.3, 0.4, 0.5};
    RandomStream random;
    random.Feed(known);
    Contacts contacts{};
    Cast(StandingWheel(1000.0), random, contacts);
    EXPECT_EQ(random.Rand01(), 0.3);
}

TEST(WheelRayCast, ARayStraightDownFindsTheDepthOfTheTyre) {
    const std::vector<double> known = {0.0};
    RandomStream random;
    random.Feed(known);
    Contacts contacts{};
    Cast(StandingWheel(kRadius - 2.0), random, contacts);
    // The second ring's fifth ray points from the axle straight to the ground.
    for (int c = 0; c < kWheelRays; ++c) EXPECT_EQ(contacts[c].hit, c == 12 ? 1u : 0u) << c;
    EXPECT_NEAR(contacts[12].depth, 2.0, 1e-5);
    EXPECT_NEAR(contacts[12].direction.z, -1.0, 1e-12);
    EXPECT_NEAR(contacts[12].point.z, 0.0, 1e-5);
    EXPECT_NEAR(contacts[12].point.x, 0.0, 1e-5);
}

TEST(WheelRayCast, TheFirstRingFeelsOneSideOfTheTyreAndTheSecondTheOther) {
    RandomStream random(4);
    int hits[2] = {};
    for (int i = 0; i < 200; ++i) {
        Contacts contacts{};
        Cast(StandingWheel(kRadius - 3.0), random, contacts);
        for (int c = 0; c < kWheelRays; ++c) {
            if (contacts[c].hit == 0) continue;
            const double along = contacts[c].direction.x;
            if (c < 8) {
                EXPECT_LE(along, 0.0);
            } else {
                EXPECT_GE(along, 0.0);
            }
            ++hits[c / 8];
        }
    }
    EXPECT_GT(hits[0], 50);
    EXPECT_GT(hits[1], 50);
}

TEST(WheelRayCast, DirectionsAreOfUnitLengthAndPointIntoTheGround) {
    RandomStream random(5);
    int hits = 0;
    for (int i = 0; i < 500; ++i) {
        Contacts contacts{};
        Cast(StandingWheel(kRadius - 4.0), random, contacts);
        for (const ContactPoint& contact : contacts) {
            if (contact.hit == 0) continue;
            EXPECT_NEAR(Length(contact.direction), 1.0, 1e-12);
            EXPECT_LT(contact.direction.z, 0.0);
            EXPECT_GT(contact.depth, 0.0);
            EXPECT_NEAR(contact.point.z, 0.0, 1e-4);
            ++hits;
        }
    }
    EXPECT_GT(hits, 500);
}

TEST(WheelRayCast, RaysReachToTheSkinAndNoFurther) {
    RandomStream random(6);
    int touched = 0;
    double deepest = 0.0;
    for (int i = 0; i < 2000; ++i) {
        Contacts contacts{};
        Cast(StandingWheel(kRadius + 0.001), random, contacts);
        ASSERT_EQ(Hits(contacts), 0);
        Cast(StandingWheel(kRadius - 0.5), random, contacts);
        touched += Hits(contacts) != 0;
        for (const ContactPoint& contact : contacts) {
            if (contact.hit != 0) deepest = std::max(deepest, contact.depth);
        }
    }
    EXPECT_GT(touched, 300);
    EXPECT_GT(deepest, 0.45);
    // A slanted ray lies deeper than the skin's lowest point, since it meets the ground at an angle.
    EXPECT_LT(deepest, 2.0);
}

TEST(WheelRayCast, AScaledFrameScalesTheWholeTyre) {
    const std::vector<double> known = {0.0};
    RandomStream random;
    random.Feed(known);
    RigidBody wheel = StandingWheel(2.0 * kRadius - 2.0);
    for (int r = 0; r < 3; ++r) wheel.frame.row[r] = wheel.frame.row[r] * 2.0;
    Contacts contacts{};
    Cast(wheel, random, contacts);
    EXPECT_EQ(Hits(contacts), 1);
    EXPECT_NEAR(contacts[12].depth, 2.0, 1e-5);
}

TEST(WheelRayCast, ALeaningFrameStretchesTheTyreWhereItsAxesMeet) {
    // The tyre's X and Y axes are 60 degrees apart, so that between them it stands out by the root of 1.5.
    RigidBody wheel = StandingWheel(1.2 * kRadius);
    const double third = std::acos(-1.0) / 6.0;
    wheel.frame.row[0] = {0, std::sin(third), -std::cos(third)};
    wheel.frame.row[1] = {0, -std::sin(third), -std::cos(third)};
    const std::vector<double> known = {0.0};
    RandomStream random;
    random.Feed(known);
    Contacts contacts{};
    Cast(wheel, random, contacts);
    EXPECT_EQ(Hits(contacts), 1);
    EXPECT_EQ(contacts[9].hit, 1u);
}

TEST(WheelRayCast, ForgetsTheHitsOfTheStepBefore) {
    RandomStream random(7);
    Contacts contacts;
    for (ContactPoint& contact : contacts) contact.hit = 1;
    Cast(StandingWheel(1000.0), random, contacts);
    EXPECT_EQ(Hits(contacts), 0);
}

TEST(WheelRayCast, AWheelBelowTheGroundFindsNothing) {
    RandomStream random(8);
    Contacts contacts{};
    Cast(StandingWheel(-2.0 * kRadius), random, contacts);
    EXPECT_EQ(Hits(contacts), 0);
}

TEST(SlipSpeed, OfAWheelInTheAirIsHuge) {
    const Contacts contacts{};
    EXPECT_EQ(SlipSpeed(RigidBody{}, contacts), double(std::sqrt(1e9f)));
    EXPECT_NEAR(SlipSpeed(RigidBody{}, contacts), 31622.8, 0.1);
}

TEST(SlipSpeed, IsThatOfTheSlowestContact) {
    RigidBody wheel = StandingWheel(kRadius);
    wheel.velocity = {0, 10, 0};
    wheel.angularVelocity = {1, 0, 0};  // at z = 20 below the centre that is 20 forward
    Contacts contacts{};
    contacts[3] = {{0, 0, 10}, {0, 0, -1}, 1.0, 1};
    contacts[9] = {{0, 0, 35}, {0, 0, -1}, 1.0, 1};  // above the centre: 5 backward
    contacts[11] = {{0, 0, 30}, {0, 0, -1}, 1.0, 0};
    EXPECT_EQ(SlipSpeed(wheel, contacts), 5.0);
}

TEST(SlipSpeed, CountsNeitherSinkingNorSlidingAlongTheAxle) {
    RigidBody wheel = StandingWheel(kRadius);
    wheel.velocity = {100, 3, -50};
    Contacts contacts{};
    contacts[0] = {{0, 0, 0}, {0, 0, -1}, 1.0, 1};
    EXPECT_EQ(SlipSpeed(wheel, contacts), 3.0);
}

/// Wheels on both sides of a car, pressed on the ground at rest, driven, the left one hand-braked.
class DriveAndBrakeTest : public testing::Test {
 protected:
    static constexpr int kLeft = 0, kRight = 1;

    void SetUp() override {
        MakeBareCar(*rig, {0, 0, 40});
        rig->unitCount = 2;
        for (int i = 0; i < 2; ++i) {
            const double side = i == kLeft ? -1.0 : 1.0;
            rig->units[i] = Tyre();
            rig->units[i].Suspension_Type = kTelescopic;
            rig->units[i].Drive = 1;
            rig->units[i].Damping = 1000.0;
            rig->units[i].frame = UnitFrameAt(side, {side * 50.0, 0.0, -12.0});
            PlaceWheel(rig->units[i], rig->chassisBody, rig->wheelBodies[i], rig->bufferPosition[i]);
        }
        rig->units[kLeft].Handbrake = 1;
        input.maxDriftSpeed = 100.0f;
        input.throttleSensitivity = 2.0f;
        input.brakeSensitivity = 3.0f;
        input.differentialSensitivity = 5.0f;
    }

    /// Runs the derivation with one made-up contact below each wheel, which slides at `slip`.
    CarRuntime& Run(double slip = 0.0, bool onGround = true) {
        CarRuntime& runtime = EmptyWorld().cars[0];
        StepCar(runtime, *rig, NoGround(), input, 0.0, EmptyWorld().random);
        for (int i = 0; i < 2; ++i) {
            rig->wheelBodies[i].velocity = {0, slip, 0};
            if (onGround) runtime.wheelContacts[i][0] = {{0, 0, -2}, {0, 0, -1}, 2.0, 1};
            DriveAndBrake(runtime, i, input);
        }
        return runtime;
    }

    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    DriveInput input;
};

TEST_F(DriveAndBrakeTest, ThrottleTurnsBothSidesTheSameWay) {
    input.throttle = 4.0f;
    const CarRuntime& runtime = Run();
    EXPECT_EQ(runtime.driveTorque[kLeft].x, 900.0 * 4.0 * 2.0);
    EXPECT_EQ(runtime.driveTorque[kRight].x, 900.0 * 4.0 * 2.0);
}

TEST_F(DriveAndBrakeTest, AnUndrivenWheelGetsNoTorque) {
    input.throttle = 4.0f;
    rig->units[kLeft].Drive = 0;
    EXPECT_EQ(Length(Run().driveTorque[kLeft]), 0.0);
    EXPECT_GT(Length(Run().driveTorque[kRight]), 0.0);
}

TEST_F(DriveAndBrakeTest, AWheelInTheAirIsNotDrivenButBrakes) {
    input.throttle = 4.0f;
    input.brake = 1.0f;
    const CarRuntime& runtime = Run(0.0, /*onGround=*/false);
    EXPECT_EQ(Length(runtime.driveTorque[kRight]), 0.0);
    EXPECT_EQ(runtime.brakeTorque[kRight].x, 900.0 * 1.0 * 3.0);
}

TEST_F(DriveAndBrakeTest, DriveEndsWhereSlidingReachesTheLimit) {
    input.throttle = 4.0f;
    EXPECT_EQ(Length(Run(100.0).driveTorque[kRight]), 0.0);
    EXPECT_GT(Length(Run(99.9999).driveTorque[kRight]), 0.0);
}

TEST_F(DriveAndBrakeTest, TheDifferentialWorksOppositeWaysOnBothSides) {
    input.steerRatio = 1.0f;
    const CarRuntime& runtime = Run();
    EXPECT_EQ(runtime.driveTorque[kLeft].x, 900.0 * 5.0);
    EXPECT_EQ(runtime.driveTorque[kRight].x, -900.0 * 5.0);
}

TEST_F(DriveAndBrakeTest, ReverseTurnsTheDifferentialRound) {
    input.steerRatio = 1.0f;
    input.reverse = 1;
    const CarRuntime& runtime = Run();
    EXPECT_EQ(runtime.driveTorque[kLeft].x, -900.0 * 5.0);
    EXPECT_EQ(runtime.driveTorque[kRight].x, 900.0 * 5.0);
}

TEST_F(DriveAndBrakeTest, TheFootBrakeWorksOnEveryWheel) {
    input.brake = 4.0f;
    const CarRuntime& runtime = Run();
    EXPECT_EQ(std::abs(runtime.brakeTorque[kLeft].x), 900.0 * 4.0 * 3.0);
    EXPECT_EQ(std::abs(runtime.brakeTorque[kRight].x), 900.0 * 4.0 * 3.0);
}

TEST_F(DriveAndBrakeTest, TheHandBrakeReleasesEveryWheelItDoesNotActOn) {
    input.brake = 4.0f;
    input.handBrake = 1;
    const CarRuntime& runtime = Run();
    EXPECT_EQ(std::abs(runtime.brakeTorque[kLeft].x), 900.0 * 4.0 * 3.0);
    EXPECT_EQ(Length(runtime.brakeTorque[kRight]), 0.0);
}

}  // namespace
}  // namespace tavrik::test
