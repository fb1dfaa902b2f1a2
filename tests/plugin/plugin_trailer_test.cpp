// Cars that are hitched together, and cars that are pushed.

#include "host/sdk/param_block.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

const std::string kNoRecording(4, '\0');

/// Two cars in a row. Hitch and tongue stand 22 units apart, each in the box of its own car alone.
class PluginHitched : public PluginScene {
 public:
    PluginHitched() {
        Set(hitch, 2, &tongue);
        MakeReady(trailer, ground);
        MakeReady(car, ground);
    }
    int Frames(const Car& which) { return MotionOf(*which.master)->frames; }
    /// How far the joint is torn apart at a tick.
    float Gap(TimeValue t) const { return Length(PlaceOf(hitch, t).GetTrans() - PlaceOf(tongue, t).GetTrans()); }

    Car car = AddCar();
    Car trailer = AddCar({0, -580, 0});
    INode& hitch = AddNode(kHitchClass, At(0, -279, 51));
    INode& tongue = AddNode(kTongueClass, At(0, -301, 51));
    INode& ground = AddGround();
};

TEST_F(PluginHitched, HitchAndTongueAreLockedToTheirCars) {
    EXPECT_EQ(ControlBlockOf(hitch).GetINode(kControlMaster), car.master);
    EXPECT_EQ(ControlBlockOf(tongue).GetINode(kControlMaster), trailer.master);
    for (INode* node : {&hitch, &tongue}) {
        EXPECT_EQ(ControlBlockOf(*node).GetInt(kObjectType), 4);
        EXPECT_EQ(ControlBlockOf(*node).GetInt(kAxleNum), 0);
    }
}

TEST_F(PluginHitched, OneDriverMovesBothCars) {
    Start(car);
    DriveFrames(60);
    EXPECT_EQ(Frames(car), 301);
    EXPECT_EQ(Frames(trailer), 301);
    const TimeValue end = 59 * 160;
    EXPECT_GT(PlaceOf(*car.chassis, end).GetTrans().y, 100.0f);
    EXPECT_GT(PlaceOf(*trailer.chassis, end).GetTrans().y, -580.0f + 100.0f);
    EXPECT_LT(Gap(end), 15.0f);
}

TEST_F(PluginHitched, TheTrailerCanPullTheCar) {
    Start(trailer);
    DriveFrames(10);
    EXPECT_EQ(Frames(car), 51);
    EXPECT_EQ(Frames(trailer), 51);
}

TEST_F(PluginHitched, AnEmptyConnectionTiesNothing) {
    Set(hitch, 2, static_cast<INode*>(nullptr));
    Start(car);
    DriveFrames(5);
    EXPECT_EQ(Frames(car), 26);
    EXPECT_EQ(Frames(trailer), 1);
}

TEST_F(PluginHitched, ATrailerThatIsNotLockedStaysBehind) {
    Press(*trailer.master, kCarSetup, kUnlock);
    Start(car);
    DriveFrames(5);
    EXPECT_EQ(Frames(car), 26);
    EXPECT_TRUE(SameBytes(RecordingOf(*trailer.master), kNoRecording));
}

TEST_F(PluginHitched, TheConnectionCountsFromTheNextPressOfDrive) {
    Start(car);
    DriveFrames(5);
    Set(hitch, 2, static_cast<INode*>(nullptr));
    DriveFrames(5);
    EXPECT_EQ(Frames(trailer), 51);
    Press(*car.master, kDriving, kDrive);
    DriveFrames(5);
    EXPECT_EQ(Frames(car), 76);
    EXPECT_EQ(Frames(trailer), 51);
}

TEST_F(PluginHitched, TheSameRunTwiceIsTheSameBitForBit) {
    Start(car);
    DriveFrames(15);
    const std::string first = RecordingOf(*car.master), second = RecordingOf(*trailer.master);
    Press(*trailer.master, kAnimation, kResetAnimation);
    Press(*car.master, kAnimation, kResetAnimation);
    GetCOREInterface()->SetTime(0);
    Start(car);
    DriveFrames(15);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
    EXPECT_TRUE(SameBytes(RecordingOf(*trailer.master), second));
}

TEST_F(PluginHitched, DeletingTheTrailersMasterInARunEndsIt) {
    Start(car);
    DriveFrames(5);
    GetCOREInterface()->DeleteNode(trailer.master);
    DriveFrames(5);
    EXPECT_EQ(Frames(car), 26);
    EXPECT_EQ(ControlBlockOf(tongue).GetINode(kControlMaster), nullptr);
    GetCOREInterface()->SetTime(0);
    Start(car);
    DriveFrames(2);
    EXPECT_EQ(Frames(car), 11);
}

TEST_F(PluginHitched, DeletingTheCarsMasterInARunEndsIt) {
    Start(car);
    DriveFrames(5);
    GetCOREInterface()->DeleteNode(car.master);
    EXPECT_FALSE(windows.IsOpen());
    GetCOREInterface()->SetTime(0);
    Start(trailer);
    DriveFrames(2);
    EXPECT_EQ(Frames(trailer), 11);
}

TEST_F(PluginHitched, UnlockingTheTrailerInARunIsHarmless) {
    Start(car);
    DriveFrames(5);
    Press(*trailer.master, kCarSetup, kUnlock);
    DriveFrames(5);
    EXPECT_TRUE(SameBytes(RecordingOf(*trailer.master), kNoRecording));
    EXPECT_EQ(Frames(car), 26);
}

TEST_F(PluginHitched, DeletingTheTongueInARunLeavesTheJointForThisRun) {
    Start(car);
    DriveFrames(5);
    GetCOREInterface()->DeleteNode(&tongue);
    EXPECT_EQ(BlockOf(hitch).GetINode(2), nullptr);
    DriveFrames(5);
    EXPECT_EQ(Frames(trailer), 51);
}

// ------------------------------------------------------------------------------------------------------------------------
// pushes

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

}  // namespace
}  // namespace plugin_test
