#include "drive/cruise_keys.h"

#include <gtest/gtest.h>

namespace tavrik::test {
namespace {

TEST(CruiseKeys, PressTheThrottleUntilTheSpeedIsReached) {
    CruiseKeys keys(1000.0);
    EXPECT_TRUE(keys.Decide(0.0).throttle);
    EXPECT_TRUE(keys.Decide(995.0).throttle);  // once pressed, it stays so
    EXPECT_FALSE(keys.Decide(1000.0).throttle);
}

TEST(CruiseKeys, LetTheCarRollWithinTheBand) {
    CruiseKeys keys(1000.0);
    keys.Decide(1000.0);
    for (const double speed : {995.0, 1005.0, 1029.0}) {
        EXPECT_FALSE(keys.Decide(speed).throttle) << speed;
        EXPECT_FALSE(keys.Decide(speed).brake) << speed;
    }
}

TEST(CruiseKeys, BrakeACarThatIsTooFastDownToTheSpeed) {
    CruiseKeys keys(1000.0);
    EXPECT_TRUE(keys.Decide(1031.0).brake);
    EXPECT_TRUE(keys.Decide(1010.0).brake);
    EXPECT_FALSE(keys.Decide(1000.0).brake);
}

TEST(CruiseKeys, NeverPressBothPedals) {
    CruiseKeys keys(1000.0);
    for (const double speed : {0.0, 1100.0, 900.0, 1040.0, 995.0, 985.0, 2000.0, -5.0}) {
        const CruisePedals pedals = keys.Decide(speed);
        EXPECT_FALSE(pedals.throttle && pedals.brake) << speed;
    }
}

TEST(CruiseKeys, PressTheThrottleOfACarThatRollsBack) {
    CruiseKeys keys(1000.0);
    EXPECT_TRUE(keys.Decide(-300.0).throttle);
}

}  // namespace
}  // namespace tavrik::test
