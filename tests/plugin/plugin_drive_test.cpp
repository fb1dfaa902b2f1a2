// Driving a car in the scene.

#include <cmath>

#include "drive/window_messages.h"
#include "host/sdk/desktop.h"
#include "tests/plugin/change_counter.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

/// Passes everything on, and counts.
class CountingWindows final : public tavrik::WindowLayer {
 public:
    explicit CountingWindows(tavrik::WindowLayer& windows) : windows_(windows) {}
    int opened = 0, destroyed = 0, disabled = 0, enabled = 0, captured = 0, released = 0;
    std::uint32_t period = 0;
    int alpha = 0;

    tavrik::WindowId CreateDialogWindow(tavrik::WindowKind kind, tavrik::WindowMessages& receiver) override {
        ++opened;
        return windows_.CreateDialogWindow(kind, receiver);
    }
    void DestroyWindow(tavrik::WindowId window) override {
        ++destroyed;
        windows_.DestroyWindow(window);
    }
    void RegisterDlgWnd(tavrik::WindowId) override {}
    void UnRegisterDlgWnd(tavrik::WindowId) override {}
    void SetAlpha(tavrik::WindowId, std::uint8_t value) override { alpha = value; }
    void SetCapture(tavrik::WindowId) override { ++captured; }
    void ReleaseCapture() override { ++released; }
    void SetTimer(tavrik::WindowId window, std::uint32_t timer, std::uint32_t milliseconds) override {
        period = milliseconds;
        windows_.SetTimer(window, timer, milliseconds);
    }
    void KillTimer(tavrik::WindowId window, std::uint32_t timer) override { windows_.KillTimer(window, timer); }
    void BeginDrag(tavrik::WindowId) override {}
    tavrik::Canvas& GetDC(tavrik::WindowId window) override { return windows_.GetDC(window); }
    void ReleaseDC(tavrik::WindowId) override {}
    tavrik::Canvas& BeginPaint(tavrik::WindowId window) override { return windows_.BeginPaint(window); }
    void EndPaint(tavrik::WindowId) override {}
    void ShowMessageBox(tavrik::WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) override {
        EXPECT_EQ(title, "Tavrik");
        EXPECT_EQ(flags, 16u);
        windows_.ShowMessageBox(owner, text, title, flags);
    }
    void DisableAccelerators() override { ++disabled; }
    void EnableAccelerators() override { ++enabled; }

 private:
    tavrik::WindowLayer& windows_;
};

class PluginDrive : public PluginScene {
 public:
    PluginDrive() {
        tavrik::TheDesktop().windows = &counted;
        MakeReady(car, ground);
    }
    /// How far forward the car is at a tick.
    float Forward(TimeValue t) const { return PlaceOf(*car.chassis, t).GetTrans().y; }
    static TimeValue Now() { return GetCOREInterface()->GetTime(); }
    void OpenDrive() { Press(*car.master, kDriving, kDrive); }

    CountingWindows counted{windows};
    Car car = AddCar();
    INode& ground = AddGround();
};

TEST_F(PluginDrive, AFrameOfSamplesIsRecordedAtEachTick) {
    Start(car);
    DriveFrames(3);
    const auto motion = MotionOf(*car.master);
    ASSERT_EQ(motion->frames, 16);
    for (int f = 1; f < 16; ++f) EXPECT_EQ(motion->times[std::size_t(f)], (f - 1) * 32);
}

TEST_F(PluginDrive, TheThrottleKeyDrivesTheCarForward) {
    Start(car);
    DriveFrames(30);
    EXPECT_GT(Forward(29 * 160), 50.0f);
    EXPECT_LT(std::abs(PlaceOf(*car.chassis, 29 * 160).GetTrans().z - 51.0f), 30.0f);
}

TEST_F(PluginDrive, WithoutAKeyTheCarStaysPut) {
    OpenDrive();
    Enter();
    DriveFrames(15);
    EXPECT_LT(std::abs(Forward(15 * 160)), 1.0f);
}

TEST_F(PluginDrive, TheSteeringKeyTurnsTheCar) {
    Start(car);
    KeyDown(68);
    DriveFrames(40);
    EXPECT_GT(PlaceOf(*car.chassis, 39 * 160).GetTrans().x, 5.0f);
}

TEST_F(PluginDrive, EveryPartShowsTheRecordingOnTheTimeline) {
    Start(car);
    DriveFrames(30);
    const auto motion = MotionOf(*car.master);
    const int f = 100;
    const TimeValue t = motion->times[f];
    for (std::size_t u = 0; u < car.wheels.size(); ++u) {
        const tavrik::DPoint3& p = motion->wheels[u][f].frame.row[3];
        const Point3 wanted(float(p.x), float(p.y), float(p.z));
        EXPECT_LT(Length(PlaceOf(*car.wheels[u], t).GetTrans() - wanted), 1e-3f);
        EXPECT_LT(Length(PlaceOf(*car.suspensions[u], t).GetTrans() - wanted), 1e-3f);
    }
    Matrix3 slot;
    Interval valid = FOREVER;
    ControlBlockOf(*car.spheres[0]).GetValue(kSlotPosition, 0, slot, valid);
    EXPECT_LT(Length(PlaceOf(*car.spheres[0], t).GetTrans() - (slot * PlaceOf(*car.chassis, t)).GetTrans()), 1e-2f);
}

TEST_F(PluginDrive, BeyondItsEndTheRecordingStandsStill) {
    Start(car);
    DriveFrames(10);
    const Matrix3 last = PlaceOf(*car.chassis, 9 * 160 + 4 * 32);
    EXPECT_EQ(PlaceOf(*car.chassis, 10'000), last);
    EXPECT_EQ(PlaceOf(*car.chassis, TIME_PosInfinity), last);
}

TEST_F(PluginDrive, TheSliderShowsTheFrameThatWasDriven) {
    Start(car);
    for (int frame = 0; frame < 4; ++frame) {
        DriveFrames(1);
        EXPECT_EQ(Now(), frame * 160);
    }
}

TEST_F(PluginDrive, ARunStartsAtTheSlidersTime) {
    GetCOREInterface()->SetTime(800);
    Start(car);
    DriveFrames(1);
    const auto motion = MotionOf(*car.master);
    ASSERT_EQ(motion->frames, 6);
    EXPECT_EQ(motion->times[1], 800);
}

TEST_F(PluginDrive, ViewsAreRedrawnAtEachTick) {
    Start(car);
    const int before = tavrik_host::RedrawCount();
    DriveFrames(5);
    EXPECT_GE(tavrik_host::RedrawCount() - before, 5);
}

TEST_F(PluginDrive, AtTheEndOfTheRangeTheRunStops) {
    GetCOREInterface()->SetAnimRange(Interval(0, 160 * 6 + 10));
    Start(car);
    DriveFrames(6);
    EXPECT_TRUE(windows.TimerRuns());
    DriveFrames(1);
    EXPECT_FALSE(windows.TimerRuns());
    EXPECT_TRUE(windows.IsOpen());
    EXPECT_EQ(Now(), 160 * 6 + 10);
    EXPECT_EQ(MotionOf(*car.master)->frames, 31);
}

TEST_F(PluginDrive, AStartAtTheEndStopsBeforeAnyStep) {
    for (const TimeValue start : {16'000, 15'841, 20'000}) {
        GetCOREInterface()->SetTime(start);
        Start(car);
        DriveFrames(1);
        EXPECT_FALSE(windows.TimerRuns()) << start;
        EXPECT_EQ(Now(), 16'000) << start;
        EXPECT_EQ(MotionOf(*car.master)->frames, 1) << start;
    }
}

TEST_F(PluginDrive, AWholeRangeOutgrowsTheFirstRoomAndKeepsEverySample) {
    Start(car);
    DriveFrames(50);
    const auto half = MotionOf(*car.master);
    DriveFrames(51);
    EXPECT_FALSE(windows.TimerRuns());
    const auto whole = MotionOf(*car.master);
    EXPECT_EQ(whole->frames, 501);
    EXPECT_EQ(whole->capacity, 1000);
    for (std::size_t f = 0; f < 251; ++f) {
        ASSERT_EQ(whole->times[f], half->times[f]) << f;
        ASSERT_EQ(whole->chassis[f].frame.row[3].y, half->chassis[f].frame.row[3].y) << f;
        ASSERT_EQ(whole->wheels[3][f].momentum.x, half->wheels[3][f].momentum.x) << f;
    }
}

TEST_F(PluginDrive, TheSameRunTwiceIsTheSameBitForBit) {
    Start(car);
    DriveFrames(20);
    const std::string first = RecordingOf(*car.master);
    Press(*car.master, kAnimation, kResetAnimation);
    GetCOREInterface()->SetTime(0);
    Start(car);
    DriveFrames(20);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
}

TEST_F(PluginDrive, AResetOfTheAnimationKeepsTheAssembledPoseAlone) {
    const Matrix3 pose = PlaceOf(*car.chassis);
    Start(car);
    DriveFrames(20);
    Press(*car.master, kAnimation, kResetAnimation);
    EXPECT_EQ(MotionOf(*car.master)->frames, 1);
    for (const TimeValue t : {-480, 0, 160, 16'000}) EXPECT_EQ(PlaceOf(*car.chassis, t), pose);
    EXPECT_TRUE(windows.messages.empty());
}

TEST_F(PluginDrive, ABreakInTheRunLeavesNoTrace) {
    Start(car);
    DriveFrames(24);
    const std::string unbroken = RecordingOf(*car.master);
    Press(*car.master, kAnimation, kResetAnimation);
    GetCOREInterface()->SetTime(0);
    Start(car);
    DriveFrames(10);
    Enter();
    EXPECT_FALSE(windows.TimerRuns());
    GetCOREInterface()->SetTime(10 * 160);
    Enter();
    KeyDown(87);
    DriveFrames(14);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), unbroken));
}

TEST_F(PluginDrive, DrivingOnFromAnEarlierTimeForgetsWhatCameAfter) {
    Start(car);
    DriveFrames(20);
    Enter();
    GetCOREInterface()->SetTime(5 * 160);
    Enter();
    DriveFrames(1);
    EXPECT_EQ(MotionOf(*car.master)->frames, 1 + 6 * 5);
}

TEST_F(PluginDrive, DrivingOnFromBeforeEverythingForgetsAll) {
    GetCOREInterface()->SetAnimRange(Interval(-1600, 16'000));
    Start(car);
    DriveFrames(10);
    Enter();
    GetCOREInterface()->SetTime(-1600);
    Enter();
    DriveFrames(1);
    const auto motion = MotionOf(*car.master);
    EXPECT_EQ(motion->frames, 6);
    EXPECT_EQ(motion->times[1], -1600);
}

// ----------------------------------------------------------------------------------------------------------------------
// session

TEST_F(PluginDrive, ASecondPressOpensNoSecondWindow) {
    OpenDrive();
    OpenDrive();
    EXPECT_EQ(counted.opened, 1);
    EXPECT_TRUE(windows.IsOpen());
    EXPECT_EQ(counted.alpha, 229);
}

TEST_F(PluginDrive, ASecondPressInARunGoesOnWithIt) {
    Start(car);
    DriveFrames(5);
    OpenDrive();
    EXPECT_TRUE(windows.TimerRuns());
    DriveFrames(5);
    EXPECT_EQ(MotionOf(*car.master)->frames, 51);
}

TEST_F(PluginDrive, AcceleratorsAreCountedInTheirOddWay) {
    OpenDrive();
    EXPECT_EQ(counted.disabled, 1);
    Enter();
    EXPECT_EQ(counted.disabled, 2);
    EXPECT_EQ(counted.captured, 1);
    Enter();
    EXPECT_EQ(counted.enabled, 1);
    EXPECT_EQ(counted.released, 1);
    windows.Send(tavrik::kWmClose, 0, 0);
    EXPECT_EQ(counted.disabled, 2);
    EXPECT_EQ(counted.enabled, 1);
    EXPECT_EQ(counted.destroyed, 1);
}

TEST_F(PluginDrive, TheTimerRunsAtThePeriodOfTheStart) {
    OpenDrive();
    Set(*car.master, 10, 55);
    Enter();
    EXPECT_EQ(counted.period, 55u);
}

TEST_F(PluginDrive, EnterActsOnItsReleaseAlone) {
    OpenDrive();
    KeyDown(13);
    EXPECT_FALSE(windows.TimerRuns());
    KeyUp(13);
    EXPECT_TRUE(windows.TimerRuns());
    KeyUp(13);
    EXPECT_FALSE(windows.TimerRuns());
}

TEST_F(PluginDrive, EscapeStopsAndNeverStarts) {
    OpenDrive();
    KeyUp(27);
    EXPECT_FALSE(windows.TimerRuns());
    Enter();
    KeyUp(27);
    EXPECT_FALSE(windows.TimerRuns());
    EXPECT_TRUE(windows.IsOpen());
}

TEST_F(PluginDrive, ClosingTheWindowEndsTheRun) {
    Start(car);
    DriveFrames(2);
    windows.Send(tavrik::kWmClose, 0, 0);
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_FALSE(windows.TimerRuns());
    DriveFrames(2);
    EXPECT_EQ(MotionOf(*car.master)->frames, 11);
}

TEST_F(PluginDrive, ClosingThePagesEndsTheRun) {
    Start(car);
    DriveFrames(2);
    tavrik_host::ClosePanel();
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_FALSE(windows.TimerRuns());
}

TEST_F(PluginDrive, LosingTheUsersAttentionDoesNotEndTheRun) {
    Start(car);
    windows.Send(tavrik::kWmActivate, tavrik::kWaInactive, 0);
    DriveFrames(20);
    EXPECT_TRUE(windows.TimerRuns());
    EXPECT_GT(Forward(19 * 160), 10.0f);  // the key that was down stays down
}

TEST_F(PluginDrive, AKeyBoundToEnterDrivesAsWell) {
    OpenDrive();
    Set(*car.master, kKeyThrottle, 13);
    Enter();
    KeyDown(13);
    DriveFrames(30);
    EXPECT_GT(Forward(29 * 160), 50.0f);
    KeyUp(13);
    EXPECT_FALSE(windows.TimerRuns());
}

TEST_F(PluginDrive, OfTwoActionsOnOneKeyTheFirstActs) {
    OpenDrive();
    Set(*car.master, 22, 87);  // the brake
    Enter();
    KeyDown(87);
    DriveFrames(30);
    EXPECT_GT(Forward(29 * 160), 50.0f);
}

TEST_F(PluginDrive, AWheelThatDidNotTurnDrivesBackward) {
    OpenDrive();
    Enter();
    windows.Send(tavrik::kWmMouseWheel, 0, 0);
    KeyDown(87);
    DriveFrames(30);
    EXPECT_LT(Forward(29 * 160), -50.0f);
}

TEST_F(PluginDrive, AGamepadDrives) {
    OpenDrive();
    Set(*car.master, kDrivingType, 2);
    Set(*car.master, 31, 3);  // throttle on the right trigger
    pad.plugged = true;
    pad.state.bRightTrigger = 255;
    Enter();
    DriveFrames(30);
    EXPECT_GT(Forward(29 * 160), 50.0f);
}

TEST_F(PluginDrive, ATargetThatIsNotThereDrivesNothing) {
    OpenDrive();
    Set(*car.master, kDrivingType, 3);
    Enter();
    DriveFrames(10);
    EXPECT_TRUE(windows.TimerRuns());
    EXPECT_EQ(MotionOf(*car.master)->frames, 51);
    EXPECT_LT(std::abs(Forward(9 * 160)), 1.0f);
}

TEST_F(PluginDrive, UnlockingEndsTheRun) {
    Start(car);
    DriveFrames(3);
    Press(*car.master, kCarSetup, kUnlock);
    DriveFrames(3);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), std::string(4, '\0')));
}

TEST_F(PluginDrive, AStartAfterUnlockingIsHarmless) {
    Start(car);
    DriveFrames(3);
    Press(*car.master, kCarSetup, kUnlock);
    Enter();
    windows.Send(tavrik::kWmTimer, 1, 0);
    Enter();
    windows.Send(tavrik::kWmTimer, 1, 0);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), std::string(4, '\0')));
    Move(*car.chassis, At(1, 2, 3));
    EXPECT_EQ(PlaceOf(*car.chassis), At(1, 2, 3));
}

TEST_F(PluginDrive, AFailedLockInARunIsHarmless) {
    Start(car);
    DriveFrames(3);
    Set(*car.master, kDummySize, 0.5f, 0);
    Move(*car.master, At(300, 0, 0));
    Press(*car.master, kCarSetup, kLock);
    EXPECT_EQ(windows.messages.size(), 1u);
    Enter();
    windows.Send(tavrik::kWmTimer, 1, 0);
    windows.Send(tavrik::kWmTimer, 1, 0);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), std::string(4, '\0')));
}

TEST_F(PluginDrive, LockingAnewInARunRestartsTheRecording) {
    Start(car);
    DriveFrames(3);
    Press(*car.master, kCarSetup, kLock);
    EXPECT_EQ(MotionOf(*car.master)->frames, 1);
    DriveFrames(2);
    const auto motion = MotionOf(*car.master);
    EXPECT_TRUE(motion->valid);
    EXPECT_EQ(motion->unitCount, 4);
}

TEST_F(PluginDrive, ARunThatGoesWrongStopsWithASentenceWhereThatIsWanted) {
    tavrik::TheDesktop().stopAtBadNumbers = true;
    Start(car);
    Set(*car.master, 1, std::numeric_limits<float>::infinity());  // gravity
    DriveFrames(3);
    EXPECT_FALSE(windows.TimerRuns());
    EXPECT_NE(tavrik::TheDesktop().complaint, "");
    const auto motion = MotionOf(*car.master);
    for (const tavrik::MotionSample& sample : motion->chassis) EXPECT_TRUE(std::isfinite(sample.momentum.z));
}

// ------------------------------------------------------------------------------------------------------------------ two
// masters

TEST_F(PluginDrive, AnotherCarStandsStillWhileThisOneIsDriven) {
    const Car other = AddCar({1500, 0, 0});
    MakeReady(other, ground);
    const std::string before = RecordingOf(*other.master);
    Start(car);
    DriveFrames(20);
    EXPECT_TRUE(SameBytes(RecordingOf(*other.master), before));
    EXPECT_EQ(MotionOf(*car.master)->frames, 101);
}

TEST_F(PluginDrive, OpeningAnotherMastersPagesEndsTheRun) {
    const Car other = AddCar({1500, 0, 0});
    Start(car);
    DriveFrames(2);
    tavrik_host::OpenPanel(*other.master);
    EXPECT_FALSE(windows.IsOpen());
}

TEST_F(PluginDrive, TwoCarsDrivenInTurnKeepTheirOwnRecordings) {
    const Car other = AddCar({1500, 0, 0});
    MakeReady(other, ground);
    Start(car);
    DriveFrames(10);
    const std::string first = RecordingOf(*car.master);
    GetCOREInterface()->SetTime(0);
    Start(other);
    DriveFrames(15);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
    EXPECT_EQ(MotionOf(*other.master)->frames, 76);
}

TEST_F(PluginDrive, EveryMastersDependentsHearOfEachTick) {
    INode& other = AddNode(kMasterClass, At(3000, 0, 0));
    Start(car);
    const ChangeCounter own(car.master->GetObjectRef()), others(other.GetObjectRef()), part(car.wheels[0]);
    DriveFrames(3);
    EXPECT_EQ(own.changes, 3);
    EXPECT_EQ(others.changes, 3);
    EXPECT_GE(part.changes, 3);
}

TEST_F(PluginDrive, LockingAndUnlockingAreToldToDependents) {
    const ChangeCounter ear(car.wheels[0]);
    Press(*car.master, kCarSetup, kUnlock);
    EXPECT_GT(ear.changes, 0);
    const int before = ear.changes;
    Press(*car.master, kCarSetup, kLock);
    EXPECT_GT(ear.changes, before);
}

}  // namespace
}  // namespace plugin_test
