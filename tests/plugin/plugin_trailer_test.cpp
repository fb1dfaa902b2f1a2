// Cars that are hitched together.

#include <cmath>

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
// the joint alone, between bodies in free fall

constexpr double kStepSeconds = 32.0 / 4800.0 / 30.0;  // a sample is 32 ticks and 30 steps

/// What a step does with two bodies in one line and a spring between them.
struct PlainPair {
    double gap, speed = 0.0, momentum = 0.0;  // of the rear body seen from the front one; of the front one

    void Step(double stiffness, double damping) {
        gap += speed * kStepSeconds;
        for (double w = kStepSeconds * 0.3, pass = 0; pass < 10; ++pass, w *= 0.7) {
            momentum += (speed * damping + gap * stiffness) * w;
            speed = -2.0 * momentum / kBodyMass;
        }
    }
};

/// A row of bodies in free fall. They are locked far from each other, and start where hitch and tongue meet, or apart.
class PluginCoupled : public PluginScene {
 public:
    struct Link {
        Car body;
        INode *hitch, *tongue;
    };
    /// @param apart  from each hitch to the tongue behind it, at the start
    void Build(const Point3& apart) {
        for (int i = 0; i < 3; ++i) {
            const float x = 1000.0f * float(i);
            const Point3 start = Point3(0, -500, 0) * float(i) + apart * float(i) + Point3(0, 0, 3000);
            const Link& link = row.emplace_back(Link{AddBody({x, 0, 3000}), &AddNode(kHitchClass, At(x, -250, 3000)),
                                                     &AddNode(kTongueClass, At(x, 250, 3000))});
            Set(*link.body.master, kStartNode, &AddNode(kStartClass, At(start.x, start.y, start.z)));
            MakeReady(link.body, ground);
        }
    }
    void Hitch(std::size_t front, std::size_t behind) { Set(*row[front].hitch, 2, row[behind].tongue); }
    void Fall(int frames) {
        Press(*row[0].body.master, kDriving, kDrive);
        Enter();
        DriveFrames(frames);
    }
    int Frames(std::size_t which) { return MotionOf(*row[which].body.master)->frames; }
    tavrik::MotionSample Last(std::size_t which) { return MotionOf(*row[which].body.master)->chassis.back(); }
    /// The momentum that gravity alone gives a body in a number of frames.
    double Fallen(int frames) {
        return -double(FloatOf(*row[0].body.master, 1)) * kBodyMass * 0.9717524751 * kStepSeconds * 30.0 * 5.0 * frames;
    }

    INode& ground = AddGround();
    std::vector<Link> row;
};

TEST_F(PluginCoupled, PointsThatMeetOnBodiesThatMoveAlikeFeelNothingAtAll) {
    Build({0, 0, 0});
    Hitch(0, 1);
    Fall(5);
    for (const std::size_t i : {0u, 1u}) {
        ASSERT_EQ(Frames(i), 26);
        const tavrik::MotionSample body = Last(i);
        EXPECT_EQ(body.momentum.x, 0.0);
        EXPECT_EQ(body.momentum.y, 0.0);
        EXPECT_NEAR(body.momentum.z, Fallen(5), 1e-4);
        EXPECT_EQ(Length(body.angularMomentum), 0.0);
    }
}

TEST_F(PluginCoupled, AChainTakesEachCarAlongOnce) {
    Build({0, 0, 0});
    Hitch(0, 1);
    Hitch(1, 2);
    Fall(5);
    for (const std::size_t i : {0u, 1u, 2u}) {
        ASSERT_EQ(Frames(i), 26);
        EXPECT_NEAR(Last(i).momentum.z, Fallen(5), 1e-4);  // who is in the world twice falls twice as fast
    }
}

TEST_F(PluginCoupled, ARingTakesEachCarAlongOnce) {
    Build({0, 0, 0});
    for (const std::size_t i : {0u, 1u, 2u}) Hitch(i, (i + 1) % 3);
    Fall(1);
    tavrik::DPoint3 sum{};
    for (const std::size_t i : {0u, 1u, 2u}) {
        ASSERT_EQ(Frames(i), 6);
        sum += Last(i).momentum;
    }
    EXPECT_NEAR(sum.z, 3.0 * Fallen(1), 1e-4);
    EXPECT_GT(Last(2).momentum.y, 1000.0);  // the first one, far ahead of it, pulls
}

TEST_F(PluginCoupled, AnEmptyConnectionPullsNothing) {
    Build({0, -10, 0});
    Fall(3);
    EXPECT_EQ(Last(0).momentum.y, 0.0);
    EXPECT_EQ(Frames(1), 1);
}

TEST_F(PluginCoupled, ANewHitchPullsOnceAndIsDampedAfterItsRuggedness) {
    Build({0, -10, 0});
    Hitch(0, 1);
    ASSERT_EQ(FloatOf(*row[0].hitch, 1), 500000.0f);
    Fall(6);
    const auto motion = MotionOf(*row[0].body.master);
    PlainPair plain{-10.0};
    ASSERT_EQ(motion->frames, 31);
    for (std::size_t f = 1; f < 31; ++f) {
        for (int i = 0; i < 30; ++i) plain.Step(500000.0, 14142.1356);
        EXPECT_NEAR(motion->chassis[f].momentum.y, plain.momentum, 1e-3) << f;  // of 80000 at most
    }
    EXPECT_LT(std::abs(plain.gap), 5.0);
}

TEST_F(PluginCoupled, BothKeepTheirMomentumTogether) {
    Build({7, -13, 11});
    Hitch(0, 1);
    Fall(4);
    const tavrik::DPoint3 a = Last(0).momentum, b = Last(1).momentum;
    for (const double part : {a.x, a.y, a.z - Fallen(4)}) EXPECT_GT(std::abs(part), 100.0);
    EXPECT_NEAR(a.x + b.x, 0.0, 1e-9);
    EXPECT_NEAR(a.y + b.y, 0.0, 1e-9);
    EXPECT_NEAR(a.z + b.z, 2.0 * Fallen(4), 1e-3);
}

}  // namespace
}  // namespace plugin_test
