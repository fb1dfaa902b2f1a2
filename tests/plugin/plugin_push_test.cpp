// Cars that are pushed.

#include "host/sdk/param_block.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginPush : public PluginScene {
 public:
    PluginPush() {
        Set(push, 6, car.master);
        Set(push, 2, 2.0f);
        Set(push, 3, 0);
        MakeReady(car, ground);
    }
    /// Lets the car roll, nobody driving. @return its recording
    std::unique_ptr<tavrik::RecordedMotion> Roll(int frames) {
        Press(*car.master, kAnimation, kResetAnimation);
        GetCOREInterface()->SetTime(0);
        Press(*car.master, kDriving, kDrive);
        if (windows.TimerRuns()) Enter();
        Enter();
        DriveFrames(frames);
        return MotionOf(*car.master);
    }
    /// The tick of the first sample in which the two runs differ.
    static TimeValue FirstDifference(const tavrik::RecordedMotion& a, const tavrik::RecordedMotion& b) {
        EXPECT_EQ(a.frames, b.frames);
        for (std::size_t f = 0; f < std::size_t(a.frames); ++f) {
            const tavrik::DPoint3 &p = a.chassis[f].momentum, &q = b.chassis[f].momentum;
            if (p.x != q.x || p.y != q.y || p.z != q.z) return a.times[f];
        }
        return TIME_PosInfinity;
    }
    static double Speed(const tavrik::RecordedMotion& motion) { return motion.chassis.back().momentum.y / 1250.0; }

    Car car = AddCar();
    INode& push = AddNode(kPushClass, At(0, 0, 51));
    INode& ground = AddGround();
};

TEST_F(PluginPush, PushesAlongItsYAxis) {
    const double speed = Speed(*Roll(10));
    EXPECT_GT(speed, 100.0);
    Set(push, 2, -2.0f);
    EXPECT_LT(Speed(*Roll(10)), -100.0);
}

TEST_F(PluginPush, APushForNobodyOrAnotherCarDoesNothing) {
    Set(push, 6, static_cast<INode*>(nullptr));
    const auto none = Roll(6);
    Set(push, 6, &AddNode(kMasterClass, At(0, 5000, 0)));
    EXPECT_EQ(FirstDifference(*none, *Roll(6)), TIME_PosInfinity);
    Set(push, 6, car.master);
    EXPECT_EQ(FirstDifference(*none, *Roll(6)), 0);
}

TEST_F(PluginPush, ActsFromItsStartThroughItsEnd) {
    Set(push, 3, 800);
    Set(push, 4, 0.1f);  // 480 ticks
    const auto whole = Roll(10);
    Set(push, 4, 0.0999f);
    const auto shorter = Roll(10);
    Set(push, 2, 0.0f);
    const auto none = Roll(10);
    EXPECT_EQ(FirstDifference(*none, *whole), 800);
    EXPECT_EQ(FirstDifference(*shorter, *whole), 1280);
}

TEST_F(PluginPush, OneTickLaterIsOneSampleLater) {
    Set(push, 3, 801);
    const auto later = Roll(8);
    Set(push, 2, 0.0f);
    EXPECT_EQ(FirstDifference(*Roll(8), *later), 832);
}

TEST_F(PluginPush, AFullPercentageIsTheWholeForce) {
    Set(push, 2, 10.0f);
    Set(push, 4, 100.0f);
    const auto single = Roll(4);
    Set(push, 1, 1);
    Set(push, 5, 100.0f);
    EXPECT_EQ(FirstDifference(*single, *Roll(4)), TIME_PosInfinity);
    Set(push, 5, 0.0f);
    const auto nothing = Roll(4);
    Set(push, 2, 0.0f);
    EXPECT_EQ(FirstDifference(*nothing, *Roll(4)), TIME_PosInfinity);
}

TEST_F(PluginPush, AnAnimatedPercentageIsReadAtEachSample) {
    Set(push, 1, 1);
    const auto nothing = Roll(8);
    auto& block = dynamic_cast<tavrik_host::ParamBlock&>(BlockOf(push));
    ASSERT_TRUE(block.SetKeys(5, {{640, 0.0f}, {672, 50.0f}}));
    EXPECT_EQ(FirstDifference(*nothing, *Roll(8)), 672);
}

TEST_F(PluginPush, TurnsWithItsNode) {
    Matrix3 sideways = At(0, 0, 51);  // Y along the world's X
    sideways.SetRow(0, Point3(0, -1, 0));
    sideways.SetRow(1, Point3(1, 0, 0));
    Move(push, sideways);
    const auto motion = Roll(3);
    EXPECT_GT(motion->chassis.back().momentum.x, 1250.0 * 10.0);
}

TEST_F(PluginPush, MovedInARunItActsFromWhereItIsNow) {
    Set(push, 4, 100.0f);
    const auto straight = Roll(8);
    Press(*car.master, kAnimation, kResetAnimation);
    GetCOREInterface()->SetTime(0);
    Press(*car.master, kDriving, kDrive);
    if (windows.TimerRuns()) Enter();
    Enter();
    DriveFrames(4);
    Move(push, At(30, 0, 51));
    DriveFrames(4);
    EXPECT_EQ(FirstDifference(*straight, *MotionOf(*car.master)), 640);
}

TEST_F(PluginPush, DeletedInARunItPushesNoMore) {
    Set(push, 4, 780.0f / 4800.0f);  // up to the last sample of five frames
    const auto wanted = Roll(10);
    Set(push, 4, 100.0f);
    Press(*car.master, kAnimation, kResetAnimation);
    GetCOREInterface()->SetTime(0);
    Press(*car.master, kDriving, kDrive);
    if (windows.TimerRuns()) Enter();
    Enter();
    DriveFrames(5);
    GetCOREInterface()->DeleteNode(&push);
    DriveFrames(5);
    EXPECT_EQ(FirstDifference(*wanted, *MotionOf(*car.master)), TIME_PosInfinity);
}

TEST_F(PluginPush, MorePushesThanFitDriveNothing) {
    for (int i = 0; i < 100; ++i) Set(AddNode(kPushClass, At(0, 0, 51)), 6, car.master);
    Press(*car.master, kDriving, kDrive);
    Enter();
    DriveFrames(3);
    EXPECT_LE(MotionOf(*car.master)->frames, 16);
}

TEST_F(PluginScene, ANewPushActsFromTick4000Through8800WithTenMillion) {
    Car body = AddBody({0, 0, 3500});
    Set(AddNode(kPushClass, At(0, 0, 3500)), 6, body.master);
    MakeReady(body, AddGround());
    Press(*body.master, kDriving, kDrive);
    Enter();
    DriveFrames(57);
    const auto motion = MotionOf(*body.master);
    ASSERT_EQ(motion->frames, 57 * 5 + 1);
    int pushed = 0;
    for (std::size_t f = 1; f < std::size_t(motion->frames); ++f) {
        const TimeValue tick = motion->times[f];
        const double gain = motion->chassis[f].momentum.y - motion->chassis[f - 1].momentum.y;
        if (tick < 4000 || tick > 8800) {
            EXPECT_EQ(gain, 0.0) << tick;
            continue;
        }
        // A step delivers the share of a force that its ten passes weigh.
        EXPECT_NEAR(gain, 1e7 * 0.9717524751 * 32.0 / 4800.0, 1e-4) << tick;
        ++pushed;
    }
    EXPECT_EQ(pushed, 151);
}

}  // namespace
}  // namespace plugin_test
