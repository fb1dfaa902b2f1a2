#include "solver/push_force.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

TEST(PushVector, PointsAlongTheSecondRowInSinglePrecision) {
    TestPush source;
    source.frame = [](TimeValue) { return Matrix3{{{1, 0, 0}, {0.1f, 0.7f, -0.3f}, {0, 0, 1}, {5, 6, 7}}}; };
    source.size = [](TimeValue) { return 1e7f; };
    const DPoint3 f = PushVector({&source, nullptr}, 0.0);
    EXPECT_EQ(f.x, double(0.1f * 1e7f));
    EXPECT_EQ(f.y, double(0.7f * 1e7f));
    EXPECT_EQ(f.z, double(-0.3f * 1e7f));
    EXPECT_NE(f.y, double(0.7f) * 1e7);  // a double product would keep more digits
}

TEST(PushVector, AsksForTheTickTruncatedTowardsZero) {
    std::vector<TimeValue> asked;
    TestPush source;
    source.frame = [&](TimeValue tick) { return asked.push_back(tick), IdentityMatrix3(); };
    for (const double time : {1.0, 0.99999, -0.0001, -0.0003, 1e9, -1e9, std::nan("")}) PushVector({&source, nullptr}, time);
    EXPECT_EQ(asked, (std::vector<TimeValue>{4800, 4799, 0, -1, 2147483647, -2147483647 - 1, 0}));
}

TEST(PushVector, ANegativeSizePullsTheOtherWay) {
    TestPush source;
    source.size = [](TimeValue) { return -3.0f; };
    EXPECT_EQ(PushVector({&source, nullptr}, 0.0).y, -3.0);
}

TEST(ApplyPush, ActsAtThePlaceOfThePushAndSoTurnsTheBody) {
    RigidBody body;
    TestPush source;
    source.frame = [](TimeValue) {
        Matrix3 frame = IdentityMatrix3();
        frame.row[3] = {2, 0, 0};
        return frame;
    };
    source.size = [](TimeValue) { return 10.0f; };
    ApplyPush({&source, &body}, 0.0, 0.5);
    EXPECT_EQ(body.momentum.y, 5.0);
    EXPECT_EQ(body.angularMomentum.z, 10.0);
}

TEST(ApplyPush, KeepsTheWeightInFull) {
    RigidBody body;
    TestPush source;
    source.size = [](TimeValue) { return 3.0f; };
    const double w = kDt * 0.3;
    ASSERT_NE(w, double(float(w)));
    ApplyPush({&source, &body}, 0.0, w);
    EXPECT_EQ(body.momentum.y, 3.0 * w);
}

TEST(ApplyPush, AStepDeliversTheShareThatEveryForceDoes) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 0});
    TestPush source;
    source.size = [](TimeValue) { return 1e6f; };
    CarWorld& world = EmptyWorld();
    world.rigs[world.carCount++] = rig.get();
    world.pushes[world.pushCount++] = {&source, &rig->chassisBody};
    WorldStep(world, 0.0, kDt, NoGround(), 0.0, DriveInput{});
    EXPECT_NEAR(rig->chassisBody.momentum.y, kWeightSum * 1e6 * kDt, 1e-9);
}

}  // namespace
}  // namespace tavrik::test
