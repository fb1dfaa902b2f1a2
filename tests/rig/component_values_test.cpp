#include "rig/component_values.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;

SuspensionUnit UnitWithFactor(float factor) {
    SuspensionValues suspension = DefaultSuspensionValues();
    suspension.Ruggedness_Factor = factor;
    return MakeUnit(DefaultWheelValues(), suspension, IdentityDMatrix3(), 0);
}

TEST(DefaultValues, NewChassis) {
    const ChassisValues values = DefaultChassisValues();
    EXPECT_EQ(values.Width, 70.0f);
    EXPECT_EQ(values.Length, 200.0f);
    EXPECT_EQ(values.Height, 50.0f);
    EXPECT_EQ(values.Mass, 1000.0f);
    EXPECT_EQ(values.Solidity, 2500000.0f);
    EXPECT_EQ(values.Rotation_Center_Shift, -70.0f);
}

TEST(DefaultValues, NewSuspension) {
    const SuspensionValues values = DefaultSuspensionValues();
    EXPECT_EQ(values.Suspension_Type, kWishbone);
    EXPECT_EQ(values.Length, 50.0f);
    EXPECT_EQ(values.Wheel_Shift, 0.0f);
    EXPECT_EQ(values.Ruggedness_Factor, 1.0f);
    EXPECT_EQ(values.Ruggedness, 50000.0f);
    EXPECT_EQ(values.Damping, 5000.0f);
    EXPECT_EQ(values.Shift, 10.0f);
    EXPECT_EQ(values.Buffer_Ruggedness, 100000.0f);
    EXPECT_EQ(values.Top_Stop, 10.0f);
    EXPECT_EQ(values.Bottom_Stop, -15.0f);
    EXPECT_EQ(values.Drive, 0);
    EXPECT_EQ(values.Steering, 0);
    EXPECT_EQ(values.Handbrake, 0);
}

TEST(DefaultValues, NewWheel) {
    const WheelValues values = DefaultWheelValues();
    EXPECT_EQ(values.Radius, 50.0f);
    EXPECT_EQ(values.Width, 15.0f);
    EXPECT_EQ(values.Mass, 50.0f);
    EXPECT_EQ(values.Ruggedness, 500000.0f);
    EXPECT_EQ(values.Grip, 1.0f);
}

TEST(DefaultValues, NewSphereSlidesMoreThanAWheel) {
    const SphereValues values = DefaultSphereValues();
    EXPECT_EQ(values.Radius, 50.0f);
    EXPECT_EQ(values.Ruggedness, 500000.0f);
    EXPECT_EQ(values.Grip, 0.3f);
}

TEST(MakeChassisParams, WidensEachValueToItsOwnField) {
    const ChassisParams params = MakeChassisParams(
        {.Width = 1.1f, .Length = 2.2f, .Height = 3.3f, .Mass = 4.4f, .Solidity = 5.5f, .Rotation_Center_Shift = 6.6f});
    EXPECT_EQ(params.Width, double(1.1f));
    EXPECT_EQ(params.Length, double(2.2f));
    EXPECT_EQ(params.Height, double(3.3f));
    EXPECT_EQ(params.Mass, double(4.4f));
    EXPECT_EQ(params.Solidity, double(5.5f));
}

TEST(MakeChassisParams, PercentBecomesARatioInSinglePrecision) {
    ChassisValues values = DefaultChassisValues();
    values.Rotation_Center_Shift = -70.0f;
    EXPECT_EQ(MakeChassisParams(values).RotationCenterShift, double(-0.7f));  // not -0.7: the scene's values are single
}

TEST(MakeUnit, WidensEachValueToItsOwnField) {
    const WheelValues wheel = {.Radius = 1.1f, .Width = 2.2f, .Mass = 3.3f, .Ruggedness = 4.4f, .Grip = 5.5f};
    const SuspensionValues suspension = {.Suspension_Type = kTelescopic,
                                         .Length = 6.6f,
                                         .Wheel_Shift = 7.7f,
                                         .Ruggedness_Factor = 1.0f,
                                         .Ruggedness = 8.8f,
                                         .Damping = 9.9f,
                                         .Shift = 10.1f,
                                         .Buffer_Ruggedness = 11.1f,
                                         .Top_Stop = 12.1f,
                                         .Bottom_Stop = -13.1f,
                                         .Drive = 1,
                                         .Steering = 2,
                                         .Handbrake = 3};
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3] = {1.0, 2.0, 3.0};

    const SuspensionUnit unit = MakeUnit(wheel, suspension, frame, 4711);

    EXPECT_EQ(unit.Radius, double(1.1f));
    EXPECT_EQ(unit.Width, double(2.2f));
    EXPECT_EQ(unit.Mass, double(3.3f));
    EXPECT_EQ(unit.wheelRuggedness, double(4.4f));
    EXPECT_EQ(unit.Grip, double(5.5f));
    EXPECT_EQ(unit.Length, double(6.6f));
    EXPECT_EQ(unit.Wheel_Shift, double(7.7f));
    EXPECT_EQ(unit.Ruggedness, double(8.8f));
    EXPECT_EQ(unit.Damping, double(9.9f));
    EXPECT_EQ(unit.Shift, double(10.1f));
    EXPECT_EQ(unit.Buffer_Ruggedness, double(11.1f));
    EXPECT_EQ(unit.Top_Stop, double(12.1f));
    EXPECT_EQ(unit.Bottom_Stop, double(-13.1f));
    EXPECT_EQ(unit.Suspension_Type, kTelescopic);
    EXPECT_EQ(unit.Drive, 1);
    EXPECT_EQ(unit.Steering, 2);
    EXPECT_EQ(unit.Handbrake, 3);
    EXPECT_EQ(unit.wheelHandle, 4711u);
    EXPECT_TRUE(SameBits(unit.frame, frame));
}

TEST(MakeUnit, FactorOfFourDoublesDampingAndQuadruplesBothSprings) {
    const SuspensionUnit plain = UnitWithFactor(1.0f), stiff = UnitWithFactor(4.0f);
    EXPECT_EQ(stiff.Ruggedness, 4.0 * plain.Ruggedness);
    EXPECT_EQ(stiff.Buffer_Ruggedness, 4.0 * plain.Buffer_Ruggedness);
    EXPECT_EQ(stiff.Damping, 2.0 * plain.Damping);
}

TEST(MakeUnit, FactorLeavesTyreAndLengthsAlone) {
    const SuspensionUnit plain = UnitWithFactor(1.0f), stiff = UnitWithFactor(4.0f);
    EXPECT_EQ(stiff.wheelRuggedness, plain.wheelRuggedness);
    EXPECT_EQ(stiff.wheelDamping, plain.wheelDamping);
    EXPECT_EQ(stiff.Shift, plain.Shift);
}

TEST(MakeUnit, FactorIsWorkedInWithSinglePrecision) {
    SuspensionValues suspension = DefaultSuspensionValues();
    suspension.Ruggedness_Factor = 1.1f;
    suspension.Ruggedness = 50001.3f;
    suspension.Damping = 4999.7f;
    suspension.Buffer_Ruggedness = 100003.1f;

    const SuspensionUnit unit = MakeUnit(DefaultWheelValues(), suspension, IdentityDMatrix3(), 0);

    const float root = std::sqrt(1.1f);
    EXPECT_EQ(unit.Ruggedness, double(50001.3f * 1.1f));
    EXPECT_EQ(unit.Damping, double(4999.7f * root));
    EXPECT_EQ(unit.Buffer_Ruggedness, double(100003.1f * 1.1f));
    // The numbers are such that double precision would have given others.
    EXPECT_NE(unit.Ruggedness, double(50001.3f) * double(1.1f));
    EXPECT_NE(float(unit.Damping), float(double(4999.7f) * std::sqrt(double(1.1f))));
    EXPECT_NE(unit.Buffer_Ruggedness, double(100003.1f) * double(1.1f));
}

TEST(MakeUnit, TyreDampingIsTenTimesTheRootOfItsStiffness) {
    const SuspensionUnit unit = UnitWithFactor(1.0f);
    EXPECT_EQ(unit.wheelDamping, std::sqrt(500000.0) * 10.0);
    EXPECT_NEAR(unit.wheelDamping, 7071.0678, 1e-4);
    EXPECT_NE(unit.wheelDamping, double(float(unit.wheelDamping)));  // double precision all the way
}

TEST(MakeSphere, WidensEachValueToItsOwnField) {
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3] = {1.0, 2.0, 3.0};
    const CollisionSphere sphere = MakeSphere({.Radius = 1.1f, .Ruggedness = 2.2f, .Grip = 0.3f}, frame);
    EXPECT_EQ(sphere.Radius, double(1.1f));
    EXPECT_EQ(sphere.Ruggedness, double(2.2f));
    EXPECT_EQ(sphere.Grip, double(0.3f));
    EXPECT_TRUE(SameBits(sphere.frame, frame));
}

TEST(MakeSphere, DampingIsTwentyTimesTheRootOfItsStiffness) {
    const CollisionSphere sphere = MakeSphere(DefaultSphereValues(), IdentityDMatrix3());
    EXPECT_EQ(sphere.damping, std::sqrt(500000.0) * 20.0);
    EXPECT_NEAR(sphere.damping, 14142.1356, 1e-4);
}

}  // namespace
}  // namespace tavrik
