#include "solver/chassis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

/// A bare car whose chassis Z axis leans so that SteerAngle sees `lean`.
std::unique_ptr<CarRig> LeaningCar(double lean) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 0});
    rig->chassisBody.frame.row[2] = {lean, 0, 1};
    return rig;
}

DriveInput BikeInput(float balance) {
    DriveInput input;
    input.bikeDrive = 1;
    input.balanceForce = balance;
    return input;
}

TEST(SteerAngle, FollowsTheDriver) {
    const auto rig = LeaningCar(0.3);
    rig->steerValue = 0.25;
    EXPECT_EQ(SteerAngle(*rig, DriveInput{}), 0.25);
}

TEST(SteerAngle, StraightAheadIsTheLeastAngleToTheLeft) {
    const auto rig = LeaningCar(0.0);
    EXPECT_EQ(SteerAngle(*rig, DriveInput{}), -1e-5);
}

TEST(SteerAngle, IsNeverSmallerThanTheLeastAngle) {
    const auto rig = LeaningCar(0.0);
    for (const auto& [value, angle] : {std::pair(1e-9, 1e-5), {9.9e-6, 1e-5}, {-1e-9, -1e-5}, {1e-5, 1e-5}, {-2e-5, -2e-5}}) {
        rig->steerValue = value;
        EXPECT_EQ(SteerAngle(*rig, DriveInput{}), angle) << value;
    }
}

TEST(SteerAngle, AnUprightBikeSteersTheOtherWay) {
    const auto rig = LeaningCar(0.0);
    rig->steerValue = 0.2;
    EXPECT_EQ(SteerAngle(*rig, BikeInput(2.0f)), -0.2);
}

TEST(SteerAngle, AStandingBikeSteersIntoItsLean) {
    const auto rig = LeaningCar(0.1);
    EXPECT_DOUBLE_EQ(SteerAngle(*rig, BikeInput(2.0f)), 0.2);
}

TEST(SteerAngle, BalancingFadesWithSpeedForwardAndBackward) {
    const auto rig = LeaningCar(0.1);
    for (const double sign : {1.0, -1.0}) {
        rig->chassisBody.velocity = {0, sign * 10.0 * rig->chassisParams.Length, 0};
        EXPECT_NEAR(SteerAngle(*rig, BikeInput(2.0f)), 0.1, 1e-9);  // the single-precision tenth is 1.5e-9 too large
    }
    rig->chassisBody.velocity = {1e6, 0, 1e6};  // across the bike, that isn't speed
    EXPECT_DOUBLE_EQ(SteerAngle(*rig, BikeInput(2.0f)), 0.2);
}

CarRuntime& Derived(const CarRig& rig) {
    CarRuntime& runtime = EmptyWorld().cars[0];
    SteeringGeometry(runtime, rig, DriveInput{});
    return runtime;
}

TEST(SteeringGeometry, StraightAheadTheCentreLiesFarOut) {
    const auto rig = LeaningCar(0.0);
    const double length = rig->chassisParams.Length;
    const CarRuntime& runtime = Derived(*rig);
    EXPECT_EQ(runtime.steerAngle, -1e-5);
    EXPECT_NEAR(runtime.rotationCenter.x, -1.4 * length / 1e-5, 1.0);
}

TEST(SteeringGeometry, WithoutShiftTheCentreLiesOnTheChassisXAxis) {
    const auto rig = LeaningCar(0.0);
    rig->chassisBody.frame = FrameAt({100, 200, 300});
    rig->chassisParams.RotationCenterShift = 0.0;
    rig->steerValue = 0.5;
    const CarRuntime& runtime = Derived(*rig);
    EXPECT_DOUBLE_EQ(runtime.rotationCenter.x, 100.0 + 1.4 * 200.0 / std::tan(0.5));
    EXPECT_EQ(runtime.rotationCenter.y, 200.0);
    EXPECT_EQ(runtime.rotationCenter.z, 300.0);
}

TEST(SteeringGeometry, TheShiftIsARatioOfTheLength) {
    const auto rig = LeaningCar(0.0);
    rig->chassisParams.RotationCenterShift = -0.7;
    rig->steerValue = -0.5;
    EXPECT_EQ(Derived(*rig).rotationCenter.y, -0.7 * 200.0);
    EXPECT_LT(Derived(*rig).rotationCenter.x, 0.0);
}

TEST(ChassisInFlight, KeepsItsAngularMomentumExactlyWhileItsTurningChanges) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 0});
    const DPoint3 spin = {2e7, 3e6, -1e7};
    rig->chassisBody.angularMomentum = spin;
    RefreshVelocities(*rig);
    const DPoint3 turning = rig->chassisBody.angularVelocity;
    DriveAlone(*rig, NoGround(), DriveInput{}, 0.5);
    EXPECT_EQ(rig->chassisBody.angularMomentum.x, spin.x);
    EXPECT_EQ(rig->chassisBody.angularMomentum.y, spin.y);
    EXPECT_EQ(rig->chassisBody.angularMomentum.z, spin.z);
    EXPECT_GT(Length(rig->chassisBody.angularVelocity - turning), 0.1);
}

}  // namespace
}  // namespace tavrik::test
