#include "drive/finite_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "rig/stock_car.h"

namespace tavrik {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kStep = 1.0 / 4500.0;

std::unique_ptr<CarRig> CarWithSamples(int samples) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, IdentityDMatrix3());
    for (int i = 0; i < samples; ++i) rig->Store(32 * i);
    return rig;
}

TEST(FindNonFinite, ASoundRecordingHasNone) {
    const auto rig = CarWithSamples(3);
    NonFiniteSample found;
    EXPECT_FALSE(FindNonFinite(*rig, 0, found));
}

TEST(FindNonFinite, NamesTheWheel) {
    const auto rig = CarWithSamples(3);
    rig->motion.wheels[2][3].momentum.y = kNan;
    NonFiniteSample found;
    ASSERT_TRUE(FindNonFinite(*rig, 1, found));
    EXPECT_EQ(found.frame, 3);
    EXPECT_EQ(found.unit, 2);
}

TEST(FindNonFinite, SeesAnInfiniteDashpotOfAWheel) {
    const auto rig = CarWithSamples(3);
    rig->motion.buffers[1][2] = std::numeric_limits<double>::infinity();
    NonFiniteSample found;
    ASSERT_TRUE(FindNonFinite(*rig, 1, found));
    EXPECT_EQ(found.frame, 2);
    EXPECT_EQ(found.unit, 1);
}

TEST(FindNonFinite, SeesEveryNumberOfTheChassis) {
    for (int number = 0; number < 18; ++number) {
        const auto rig = CarWithSamples(1);
        MotionSample& sample = rig->motion.chassis[1];
        DPoint3* const vectors[] = {&sample.frame.row[0], &sample.frame.row[1], &sample.frame.row[2],
                                    &sample.frame.row[3], &sample.momentum,     &sample.angularMomentum};
        DPoint3& vector = *vectors[number / 3];
        (number % 3 == 0 ? vector.x : number % 3 == 1 ? vector.y : vector.z) = kNan;
        NonFiniteSample found;
        EXPECT_TRUE(FindNonFinite(*rig, 1, found)) << number;
        EXPECT_EQ(found.unit, -1) << number;
    }
}

TEST(FindNonFinite, SeesTheSteering) {
    const auto rig = CarWithSamples(1);
    rig->motion.steer[1].steerValue = kNan;
    NonFiniteSample found;
    EXPECT_TRUE(FindNonFinite(*rig, 1, found));
}

TEST(FindNonFinite, LooksNoEarlierThanItIsAskedTo) {
    const auto rig = CarWithSamples(3);
    rig->motion.chassis[1].momentum.x = kNan;
    NonFiniteSample found;
    EXPECT_FALSE(FindNonFinite(*rig, 2, found));
}

TEST(LikelyCause, NamesTheStiffnessThatTheStepCannotCarry) {
    const auto rig = CarWithSamples(0);
    rig->units[3].wheelRuggedness = 1e12;
    EXPECT_NE(LikelyCause(*rig, kStep).find("Ruggedness of wheel 4"), std::string::npos);
}

TEST(LikelyCause, BlamesNoStiffnessOfASoundCar) {
    const auto rig = CarWithSamples(0);
    EXPECT_EQ(LikelyCause(*rig, kStep).find("Ruggedness"), std::string::npos);
}

}  // namespace
}  // namespace tavrik
