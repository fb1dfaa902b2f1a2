#include "drive/driver_script.h"

#include <gtest/gtest.h>

namespace tavrik {
namespace {

DriverScript TwoRows() {
    DriverScript script;
    script.rows.push_back({.seconds = 1.0, .throttle = 1.0f});
    script.rows.push_back({.seconds = 2.5, .brake = 0.5f});
    return script;
}

TEST(RowAt, BeforeTheFirstRowNothingIsTouched) {
    const DriverRow row = RowAt(TwoRows(), 0.999);
    EXPECT_EQ(row.throttle, 0.0f);
    EXPECT_EQ(row.brake, 0.0f);
}

TEST(RowAt, ARowHoldsFromItsOwnSecondUntilTheNext) {
    EXPECT_EQ(RowAt(TwoRows(), 1.0).throttle, 1.0f);
    EXPECT_EQ(RowAt(TwoRows(), 2.499).throttle, 1.0f);
    EXPECT_EQ(RowAt(TwoRows(), 2.5).throttle, 0.0f);
}

TEST(RowAt, TheLastRowHoldsForEver) { EXPECT_EQ(RowAt(TwoRows(), 1e9).brake, 0.5f); }

TEST(RowAt, AnEmptyScriptTouchesNothing) { EXPECT_EQ(RowAt(DriverScript{}, 5.0).throttle, 0.0f); }

TEST(ApplyRow, AFullPedalAsksForAsMuchAsAKeyHeldDown) {
    DriveInput input;
    ApplyRow({.throttle = 1.0f, .brake = 1.0f}, input);
    EXPECT_EQ(input.throttle, 4.0f);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST(ApplyRow, SteeringIsAShareOfTheLargestAngle) {
    DriveInput input;
    input.rudderAngle = 90.0f;
    ApplyRow({.steering = -0.5f}, input);
    EXPECT_FLOAT_EQ(input.steerTarget, -0.78539819f);
    EXPECT_EQ(input.steerRatio, -0.5f);
}

TEST(ApplyRow, ReverseTurnsTheThrottleRoundAndSetsTheGear) {
    DriveInput input;
    ApplyRow({.throttle = 0.5f, .reverse = true}, input);
    EXPECT_EQ(input.throttle, -2.0f);
    EXPECT_EQ(input.reverse, 1);
}

TEST(ApplyRow, TheHandBrakeAsksForFullPressureWhateverTheFootDoes) {
    DriveInput input;
    ApplyRow({.brake = 1.0f, .handBrake = true}, input);
    EXPECT_EQ(input.brake, 4.0f);
    EXPECT_EQ(input.handBrake, 1);
}

TEST(ApplyRow, LettingGoClearsWhatARowBeforeAskedFor) {
    DriveInput input;
    ApplyRow({.steering = 1.0f, .throttle = 1.0f, .handBrake = true, .reverse = true}, input);
    ApplyRow({}, input);
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.brake, 0.0f);
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.handBrake, 0);
    EXPECT_EQ(input.reverse, 0);
}

}  // namespace
}  // namespace tavrik
