#include "wizard/step_limits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "rig/stock_car.h"
#include "tests/solver/solver_scene.h"
#include "wizard/tyre_sink.h"

namespace tavrik::test {
namespace {

TEST(StepLimit, IsTheStiffnessWhoseSwingTakesHalfARadianAStep) {
    const double k = StepLimitStiffness(20.0, kDt);
    EXPECT_NEAR(kDt * std::sqrt(k / 20.0), kMostSpringRatio, 1e-12);
    EXPECT_NEAR(StepLimitDamping(20.0, kDt) * kDt / 20.0, kMostDampingRatio, 1e-12);
}

TEST(StepLimit, OfTheHubCountsItsLever) {
    SuspensionUnit unit;
    unit.Mass = 20.0;
    unit.Radius = 30.0;
    unit.Width = 10.0;
    const double straight = MassAtHub(unit, 1e9);
    EXPECT_NEAR(straight, 20.0, 1e-4);
    unit.Wheel_Shift = 30.0;
    EXPECT_LT(MassAtHub(unit, 1e9), 0.6 * straight);
}

TEST(StepLimits, PassTheStockCar) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, FrameAt({0, 0, 0}));
    const auto checks = StepLimits(rig->chassisParams, std::span(rig->units, 4), std::span(rig->spheres, 8), kDt);
    for (const StepCheck& check : checks) EXPECT_LE(check.ratio, check.limit) << check.what << " " << check.unit;
}

TEST(StepLimits, NameAWheelThatIsTooLightForItsTyre) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, FrameAt({0, 0, 0}));
    rig->units[2].Mass = 1.0;
    const auto checks = StepLimits(rig->chassisParams, std::span(rig->units, 4), {}, kDt);
    EXPECT_TRUE(std::any_of(checks.begin(), checks.end(), [](const StepCheck& check) {
        return check.what == "tyre's damping" && check.unit == 2 && check.ratio > check.limit;
    }));
    EXPECT_FALSE(std::any_of(checks.begin(), checks.end(), [](const StepCheck& check) {
        return check.what == "tyre's damping" && check.unit == 1 && check.ratio > check.limit;
    }));
}

TEST(TyreForce, GrowsWithTheSink) {
    EXPECT_EQ(TyreForce(32.0, 10.0, 0.0), 0.0);
    double before = 0.0;
    for (const double sink : {0.2, 0.5, 1.0, 2.0}) {
        const double force = TyreForce(32.0, 10.0, sink);
        EXPECT_GT(force, before);
        before = force;
    }
}

TEST(TyreSink, IsWhatTheStockCarSinksInBy) {
    auto rig = std::make_unique<CarRig>();
    SettleStockCar(*rig, FlatGround());
    // A quarter of the car on each tyre, nearly enough; the car has 1338 in all.
    const double sink = TyreSink(32.0, 10.0, 1e6, 1338.0 / 4.0 * kGravity);
    double measured = 0.0;
    for (int i = 0; i < 4; ++i) measured += (32.0 - rig->wheelBodies[i].frame.row[3].z) / 4.0;
    EXPECT_NEAR(sink, measured, 0.1);
}

}  // namespace
}  // namespace tavrik::test
