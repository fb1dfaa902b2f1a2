#include "drive/drive_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "session_fixture.h"
#include "tests/drive/drive_on_hills.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::Bits;
using Calls = std::vector<std::string>;

// Keys as a new master object binds them.
constexpr std::int32_t kW = 87, kA = 65, kD = 68, kS = 83, kSpace = 32, kPageUp = 33, kShift = 16;

constexpr const char* kClickToActivate = "< Click to activate >";
constexpr const char* kEnterToStart = "< Press ENTER to start >";
constexpr const char* kEnterToStop = "< Press ENTER to stop >";

class SessionTest : public testing::Test, protected test::SessionParts {
 protected:
    bool Send(std::uint32_t message, std::uint64_t wParam = 0, std::uint64_t lParam = 0) {
        return session.HandleMessage(message, wParam, lParam);
    }
    DriveInput& input() { return session.input; }
};

class DriveSessionTest : public SessionTest {};
class OpenDrive : public SessionTest {};
class ReadSettings : public SessionTest {};
class StartDrive : public SessionTest {};
class StopDrive : public SessionTest {};
class CloseDrive : public SessionTest {};
class Accelerators : public SessionTest {};
class WindowMessage : public SessionTest {};
class DriveKey : public SessionTest {};
class InputTick : public SessionTest {};
class TickInATick : public SessionTest {};
class TargetDriving : public SessionTest {};
class SessionState : public SessionTest {};

template <typename... Texts>
Calls Made(const Texts&... calls) {
    return {calls...};
}

Calls operator+(Calls a, const Calls& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const Calls kHudRedraw = {"GetDC(1)", "ReleaseDC(1)"};
// What a read of the settings asks the devices, where the port is found by itself and no pad is there.
const Calls kPortScan = {"XInputGetState(0)", "XInputGetState(1)", "XInputGetState(2)", "XInputGetState(3)"};
const Calls kBuildWorld = {"World()", "LinkHitches()", "CollectPushes()"};

// --- a new session

TEST_F(DriveSessionTest, ANewOneIsClosedAndCleared) {
    EXPECT_EQ(session.window, 0u);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(session.active, 0u);
    EXPECT_EQ(session.tick, 0);
    EXPECT_EQ(session.forecast, 0);
    EXPECT_EQ(session.rig, nullptr);
    EXPECT_EQ(session.mousePos.x, 0.0f);
    EXPECT_EQ(session.mouseAnchor.y, 0.0f);
    EXPECT_EQ(windows.calls, Calls{});
}

TEST_F(DriveSessionTest, ANewOneHasAFirstSetOfValues) {
    DriveInput first;
    first.drivingType = 0;
    first.rudderSensitivity = 1000.0f;
    first.throttleSensitivity = 20.0f;
    first.brakeSensitivity = 10.0f;
    first.rudderAngle = 30.0f;
    EXPECT_EQ(Bits(session.input), Bits(first));
    EXPECT_EQ(session.timerPeriod, 20u);
    EXPECT_EQ(session.gamepad.joyDriver, 1);
    EXPECT_EQ(session.gamepad.joyPort, 0);
    EXPECT_EQ(session.gamepad.joySteerAxis, 1);
    EXPECT_EQ(session.gamepad.joyThrottleAxis, 5);
    EXPECT_EQ(session.gamepad.joyBrake, 0u);
    EXPECT_EQ(session.keys.keyThrottle, 0);
}

// --- OpenDrive

TEST_F(OpenDrive, ACarThatIsNotAssembledEndsInAMessageBox) {
    master.rig->ResetMotion();
    master.surface = nullptr;
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(), Made("ShowMessageBox(0, \"You didn't setup the Car.\nDo Car Setup.\", \"Tavrik\", 16)"));
    EXPECT_EQ(session.window, 0u);
    EXPECT_EQ(session.active, 0u);
}

TEST_F(OpenDrive, AGroundThatIsStillNotThereAfterAnUpdateEndsInAMessageBox) {
    master.surface = master.updatedSurface = nullptr;
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(), Made("UpdateSurface()",
                                "ShowMessageBox(0, \"You didn't select \\\"Surface Object\\\" or\n didn't press "
                                "\\\"Update Surface\\\" button.\", \"Tavrik\", 16)"));
    EXPECT_EQ(session.window, 0u);
}

TEST_F(OpenDrive, AMessageBoxBelongsToTheWindowThatIsOpen) {
    Open();
    master.rig->ResetMotion();
    session.OpenDrive();
    ASSERT_EQ(windows.calls.size(), 1u);
    EXPECT_EQ(windows.calls[0].substr(0, 18), "ShowMessageBox(1, ");
}

TEST_F(OpenDrive, AFailedCheckReadsNoSettings) {
    master.rig->ResetMotion();
    session.OpenDrive();
    EXPECT_EQ(session.timerPeriod, 20u);
    EXPECT_EQ(session.rig, nullptr);
}

TEST_F(OpenDrive, MakesItsCallsInOrder) {
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(),
              kPortScan + kBuildWorld +
                  Made("CreateDialogWindow(Drive)", "RegisterDlgWnd(1)", "SetAlpha(1, 229)", "DisableAccelerators()"));
    EXPECT_EQ(session.window, 1u);
    EXPECT_EQ(session.active, 1u);
    EXPECT_EQ(session.running, 0u);
}

TEST_F(OpenDrive, BuildsAMissingGroundFirst) {
    master.surface = nullptr;
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(),
              Made("UpdateSurface()") + kPortScan + kBuildWorld +
                  Made("CreateDialogWindow(Drive)", "RegisterDlgWnd(1)", "SetAlpha(1, 229)", "DisableAccelerators()"));
}

TEST_F(OpenDrive, ReadsTheSettingsBeforeItBuildsTheWorld) {
    bool readBefore = false;
    At("World()", [&] { readBefore = session.timerPeriod == 30 && session.rig == master.rig.get(); });
    session.OpenDrive();
    EXPECT_TRUE(readBefore);
}

TEST_F(OpenDrive, IsActiveBeforeTheAcceleratorsGo) {
    std::uint32_t whileShown = 1, whileTaken = 0;
    windows.onCall = [&](const std::string& call) {
        if (call == "SetAlpha(1, 229)") whileShown = session.active;
        if (call == "DisableAccelerators()") whileTaken = session.active;
    };
    session.OpenDrive();
    EXPECT_EQ(whileShown, 0u);
    EXPECT_EQ(whileTaken, 1u);
}

TEST_F(OpenDrive, PutsTheCarIntoTheWorld) {
    test::SharedWorld().carCount = 0;
    session.OpenDrive();
    ASSERT_EQ(test::SharedWorld().carCount, 1);
    EXPECT_EQ(test::SharedWorld().rigs[0], master.rig.get());
}

TEST_F(OpenDrive, ASecondPressOpensNoSecondWindowAndBuildsTheWorldAnew) {
    Open();  // which takes the car out of the world
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(), kPortScan + kBuildWorld);
    EXPECT_EQ(session.window, 1u);
    EXPECT_EQ(test::SharedWorld().carCount, 1);
}

TEST_F(OpenDrive, ASecondPressReadsTheSettingsAgain) {
    Open();
    Set(MasterParam::Time_Delay, 77);
    session.OpenDrive();
    EXPECT_EQ(session.timerPeriod, 77u);
}

TEST_F(OpenDrive, ASecondPressLeavesALostActivationLost) {
    Open();
    Send(kWmActivate, kWaInactive);
    session.OpenDrive();
    EXPECT_EQ(session.active, 0u);
}

TEST_F(OpenDrive, AfterACloseOpensAnotherWindow) {
    Open();
    session.CloseDrive();
    session.OpenDrive();
    EXPECT_EQ(session.window, 2u);
    EXPECT_EQ(session.active, 1u);
}

TEST_F(OpenDrive, AWindowThatCouldNotBeMadeIsNotTested) {
    windows.canCreate = false;
    session.OpenDrive();
    EXPECT_EQ(TakeCalls(),
              kPortScan + kBuildWorld +
                  Made("CreateDialogWindow(Drive)", "RegisterDlgWnd(0)", "SetAlpha(0, 229)", "DisableAccelerators()"));
    EXPECT_EQ(session.window, 0u);
}

// --- ReadSettings

TEST_F(ReadSettings, TakesTheMastersRig) {
    session.ReadSettings();
    EXPECT_EQ(session.rig, master.rig.get());
}

TEST_F(ReadSettings, CopiesRudderSensitivity) {
    Set(MasterParam::Rudder_Sensitivity, 12.5f);
    session.ReadSettings();
    EXPECT_EQ(input().rudderSensitivity, 12.5f);
}

TEST_F(ReadSettings, LeavesRudderAngleInDegrees) {
    Set(MasterParam::Rudder_Angle, 33.25f);
    session.ReadSettings();
    EXPECT_EQ(input().rudderAngle, 33.25f);
}

TEST_F(ReadSettings, CopiesBikeDrive) {
    Set(MasterParam::Bike_Drive, 1);
    session.ReadSettings();
    EXPECT_EQ(input().bikeDrive, 1u);
}

TEST_F(ReadSettings, CopiesBalanceForce) {
    Set(MasterParam::Balance_Force, 3.5f);
    session.ReadSettings();
    EXPECT_EQ(input().balanceForce, 3.5f);
}

TEST_F(ReadSettings, CopiesThrottleSensitivity) {
    Set(MasterParam::Throttle_Sensitivity, 1234.5f);
    session.ReadSettings();
    EXPECT_EQ(input().throttleSensitivity, 1234.5f);
}

TEST_F(ReadSettings, CopiesBrakeSensitivity) {
    Set(MasterParam::Brake_Sensitivity, 2345.5f);
    session.ReadSettings();
    EXPECT_EQ(input().brakeSensitivity, 2345.5f);
}

TEST_F(ReadSettings, CopiesDifferentialDriveSensitivity) {
    Set(MasterParam::Differencial_Drive_Sensitivity, 456.5f);
    session.ReadSettings();
    EXPECT_EQ(input().differentialSensitivity, 456.5f);
}

TEST_F(ReadSettings, CopiesTimeDelay) {
    Set(MasterParam::Time_Delay, 5);
    session.ReadSettings();
    EXPECT_EQ(session.timerPeriod, 5u);
}

TEST_F(ReadSettings, CopiesEachDrivingType) {
    for (const std::int32_t type : {0, 1, 2, 3}) {
        Set(MasterParam::Driving_Type, type);
        session.ReadSettings();
        EXPECT_EQ(input().drivingType, std::uint32_t(type));
    }
}

TEST_F(ReadSettings, CopiesForecast) {
    Set(MasterParam::Driving_Forecast, 2400);
    session.ReadSettings();
    EXPECT_EQ(session.forecast, 2400);
}

TEST_F(ReadSettings, TurnsDriftSpeedIntoUnitsPerSecond) {
    Set(MasterParam::Max_Drift_Speed, 36.0f);
    session.ReadSettings();
    EXPECT_NEAR(input().maxDriftSpeed, 1000.0f, 1e-4f);  // 36 km/h are 10 m/s; measured 0
}

TEST_F(ReadSettings, TurnsDriftSpeedInDoubleAndRoundsOnce) {
    test::TestRandom random(test::TestSeed(51));
    int apartFromSingle = 0;
    for (int i = 0; i < test::TestRounds(2'000); ++i) {
        const float speed = random.Between(0.0f, 500.0f);
        host.kilometresPerUnit = random.Between(1e-6, 1e-2);
        Set(MasterParam::Max_Drift_Speed, speed);
        session.ReadSettings();
        const volatile double divisor = 3600.0 * host.kilometresPerUnit;
        const volatile double quotient = double(speed) / divisor;
        ASSERT_EQ(input().maxDriftSpeed, float(quotient)) << test::Digits(speed) << ' ' << test::Digits(host.kilometresPerUnit);
        apartFromSingle += float(quotient) != speed / (3600.0f * float(host.kilometresPerUnit));
    }
    EXPECT_GT(apartFromSingle, 0);
}

TEST_F(ReadSettings, CopiesEachKey) {
    Set(MasterParam::CtrlKbdThrottle, 101);
    Set(MasterParam::CtrlKbdLeft, 102);
    Set(MasterParam::CtrlKbdRight, 103);
    Set(MasterParam::CtrlKbdBreak, 104);
    Set(MasterParam::CtrlKbdHandBreak, 105);
    Set(MasterParam::CtrlKbdFwdBkwd, 106);
    Set(MasterParam::CtrlKbdNitro, 107);
    session.ReadSettings();
    EXPECT_EQ(session.keys.keyThrottle, 101);
    EXPECT_EQ(session.keys.keyLeft, 102);
    EXPECT_EQ(session.keys.keyRight, 103);
    EXPECT_EQ(session.keys.keyBrake, 104);
    EXPECT_EQ(session.keys.keyHandBrake, 105);
    EXPECT_EQ(session.keys.keyGear, 106);
    EXPECT_EQ(session.keys.keyNitro, 107);
}

TEST_F(ReadSettings, CopiesEachButtonMask) {
    Set(MasterParam::CtrlJoyBreak, 1);
    Set(MasterParam::CtrlJoyHandBreak, 2);
    Set(MasterParam::CtrlJoyForward, 4);
    Set(MasterParam::CtrlJoyBackward, 8);
    Set(MasterParam::CtrlJoyNitro, std::int32_t(0x80000000u));
    session.ReadSettings();
    EXPECT_EQ(session.gamepad.joyBrake, 1u);
    EXPECT_EQ(session.gamepad.joyHandBrake, 2u);
    EXPECT_EQ(session.gamepad.joyForward, 4u);
    EXPECT_EQ(session.gamepad.joyBackward, 8u);
    EXPECT_EQ(session.gamepad.joyNitro, 0x80000000u);
}

struct Conversion {
    std::int32_t value, result;
};

TEST_F(ReadSettings, TurnsTheWheelsChoiceIntoAnAxis) {
    for (const auto& [value, axis] : {Conversion{0, 1}, {1, 4}, {2, 0}, {3, 1}, {5, 1}, {-1, 1}}) {
        Set(MasterParam::CtrlJoyWheelCtrl, value);
        session.ReadSettings();
        EXPECT_EQ(session.gamepad.joySteerAxis, axis) << value;
    }
}

TEST_F(ReadSettings, TurnsTheThrottlesChoiceIntoAnAxis) {
    for (const auto& [value, axis] : {Conversion{0, 1}, {1, 4}, {2, 2}, {3, 5}, {4, 1}, {5, 1}, {-1, 1}}) {
        Set(MasterParam::CtrlJoyThrottleCtrl, value);
        session.ReadSettings();
        EXPECT_EQ(session.gamepad.joyThrottleAxis, axis) << value;
    }
}

TEST_F(ReadSettings, TakesXInputForADriverOfOneAlone) {
    for (const auto& [value, driver] : {Conversion{0, 0}, {1, 1}, {2, 0}, {10, 0}, {-1, 0}}) {
        Set(MasterParam::CtrlJoyDriver, value);
        session.ReadSettings();
        EXPECT_EQ(session.gamepad.joyDriver, driver) << value;
    }
}

TEST_F(ReadSettings, TurnsThePortsChoiceIntoAUser) {
    for (const auto& [value, user] : {Conversion{1, 0}, {2, 1}, {3, 2}, {4, 3}, {5, 0}, {10, 0}, {-1, 0}}) {
        Set(MasterParam::CtrlJoyPort, value);
        session.ReadSettings();
        EXPECT_EQ(session.gamepad.joyPort, user) << value;
    }
}

TEST_F(ReadSettings, AnAutomaticPortIsScannedAtEachRead) {
    session.ReadSettings();
    EXPECT_EQ(session.gamepad.joyPort, -1);
    devices.pads[2] = test::Pad{};
    session.ReadSettings();
    EXPECT_EQ(session.gamepad.joyPort, 2);
    EXPECT_TRUE(devices.everyStateCameZeroed);
}

TEST_F(ReadSettings, TouchesNothingThatADriverFills) {
    input().steerTarget = 0.1f;
    input().throttle = 0.2f;
    input().brake = 0.3f;
    input().steerRatio = 0.4f;
    input().handBrake = input().reverse = 1;
    input().keyLeftDown = input().keyRightDown = input().keyThrottleDown = input().keyBrakeDown = input().nitro = 1;
    DriveInput expected = session.input;
    session.ReadSettings();
    // What it sets, it sets from the parameters; all else is as it was.
    for (auto field : {&DriveInput::balanceForce, &DriveInput::maxDriftSpeed, &DriveInput::rudderSensitivity,
                       &DriveInput::throttleSensitivity, &DriveInput::brakeSensitivity, &DriveInput::differentialSensitivity,
                       &DriveInput::rudderAngle}) {
        expected.*field = session.input.*field;
    }
    expected.bikeDrive = session.input.bikeDrive;
    expected.drivingType = session.input.drivingType;
    EXPECT_EQ(Bits(session.input), Bits(expected));
}

// --- StartDrive

TEST_F(StartDrive, MakesItsCallsInOrder) {
    Open();
    session.StartDrive();
    EXPECT_EQ(TakeCalls(), kPortScan + Made("DisableAccelerators()", "SetCapture(1)", "SetTimer(1, 1, 30)") + kHudRedraw);
    EXPECT_EQ(session.running, 1u);
}

TEST_F(StartDrive, DoesNothingWhileRunning) {
    OpenAndStart();
    session.tick = 4711;
    Set(MasterParam::Time_Delay, 99);
    session.StartDrive();
    EXPECT_EQ(TakeCalls(), Calls{});
    EXPECT_EQ(session.tick, 4711);
    EXPECT_EQ(session.timerPeriod, 30u);
}

TEST_F(StartDrive, ReadsTheSettingsAfresh) {
    Open();
    Set(MasterParam::Time_Delay, 12);
    Set(MasterParam::CtrlJoyPort, 1);
    session.StartDrive();
    EXPECT_EQ(windows.calls[2], "SetTimer(1, 1, 12)");
}

TEST_F(StartDrive, PutsTheMousesAnchorWhereTheMouseStands) {
    Open();
    MoveMouse(-40, 300);
    session.StartDrive();
    EXPECT_EQ(session.mouseAnchor.x, -40.0f);
    EXPECT_EQ(session.mouseAnchor.y, 300.0f);
    EXPECT_EQ(session.mouseAnchor.z, 0.0f);
}

TEST_F(StartDrive, ClearsDemandsAndKeysAndKeepsGearAndRatio) {
    Open();
    input().steerTarget = input().throttle = input().brake = 1.0f;
    input().steerRatio = 0.7f;
    input().handBrake = input().reverse = 1;
    input().keyLeftDown = input().keyRightDown = input().keyThrottleDown = input().keyBrakeDown = input().nitro = 1;
    session.StartDrive();
    EXPECT_EQ(input().steerTarget, 0.0f);
    EXPECT_EQ(input().throttle, 0.0f);
    EXPECT_EQ(input().brake, 0.0f);
    EXPECT_EQ(input().handBrake, 0);
    EXPECT_EQ(input().keyLeftDown, 0u);
    EXPECT_EQ(input().keyRightDown, 0u);
    EXPECT_EQ(input().keyThrottleDown, 0u);
    EXPECT_EQ(input().keyBrakeDown, 0u);
    EXPECT_EQ(input().nitro, 0u);
    EXPECT_EQ(input().steerRatio, 0.7f);
    EXPECT_EQ(input().reverse, 1);
}

TEST_F(StartDrive, StartsAtTheScenesTimeAsItIsOnceTheMouseIsCaptured) {
    Open();
    host.time = 320;
    At("SetCapture(1)", [&] { host.time = 480; });
    session.StartDrive();
    EXPECT_EQ(session.tick, 480);
}

TEST_F(StartDrive, TakesTheTimeBeforeItSetsTheTimer) {
    Open();
    host.time = 320;
    At("SetTimer(1, 1, 30)", [&] { host.time = 480; });
    session.StartDrive();
    EXPECT_EQ(session.tick, 320);
}

TEST_F(StartDrive, RunsBeforeTheAcceleratorsGo) {
    Open();
    bool running = false;
    At("DisableAccelerators()", [&] { running = session.running != 0; });
    session.StartDrive();
    EXPECT_TRUE(running);
}

// --- StopDrive, CloseDrive

const Calls kStopCalls =
    Made("KillTimer(1, 1)", "EnableAccelerators()", "ReleaseCapture()") + kHudRedraw + Made("RebuildTrails()");

TEST_F(StopDrive, MakesItsCallsInOrder) {
    OpenAndStart();
    session.StopDrive();
    EXPECT_EQ(TakeCalls(), kStopCalls);
    EXPECT_EQ(session.running, 0u);
}

TEST_F(StopDrive, DoesNothingUnlessRunning) {
    Open();
    session.StopDrive();
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(StopDrive, NoLongerRunsWhenTheAcceleratorsComeBack) {
    OpenAndStart();
    bool running = true;
    At("EnableAccelerators()", [&] { running = session.running != 0; });
    session.StopDrive();
    EXPECT_FALSE(running);
}

TEST_F(StopDrive, LeavesWhatTheDriverAskedFor) {
    OpenAndStart();
    KeyDown(kW);
    Tick();
    session.StopDrive();
    EXPECT_EQ(input().throttle, 4.0f);
    EXPECT_EQ(input().keyThrottleDown, 1u);
}

TEST_F(CloseDrive, WhileIdleMakesItsCallsInOrder) {
    Open();
    session.CloseDrive();
    EXPECT_EQ(TakeCalls(), Made("UnRegisterDlgWnd(1)", "DestroyWindow(1)"));
    EXPECT_EQ(session.window, 0u);
    EXPECT_EQ(session.active, 0u);
}

TEST_F(CloseDrive, DuringARunStopsItFirstSoThatTheTrailsComeBeforeTheWindowGoes) {
    OpenAndStart();
    session.CloseDrive();
    EXPECT_EQ(TakeCalls(), kStopCalls + Made("UnRegisterDlgWnd(1)", "DestroyWindow(1)"));
    EXPECT_EQ(session.running, 0u);
}

TEST_F(CloseDrive, DoesNothingWithoutAWindow) {
    session.CloseDrive();
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(CloseDrive, ASecondOneDoesNothing) {
    Open();
    session.CloseDrive();
    windows.calls.clear();
    session.CloseDrive();
    EXPECT_EQ(TakeCalls(), Calls{});
}

// Keyboard shortcuts of the host are counted calls: the window takes one for as long as it ever was open, each run one of its
// own.
TEST_F(Accelerators, StayTakenAwayOnceAfterAWindowWasOpenedAndClosed) {
    session.OpenDrive();
    session.CloseDrive();
    EXPECT_EQ(windows.AcceleratorBalance(), -1);
}

TEST_F(Accelerators, AreTakenByTheWindowAndByTheRun) {
    session.OpenDrive();
    session.StartDrive();
    EXPECT_EQ(windows.AcceleratorBalance(), -2);
}

TEST_F(Accelerators, AStopGivesBackOneOfTheTwo) {
    session.OpenDrive();
    session.StartDrive();
    session.StopDrive();
    EXPECT_EQ(windows.AcceleratorBalance(), -1);
}

TEST_F(Accelerators, AreOneShortForEachWindowHoweverManyRuns) {
    for (int opened = 0; opened < 3; ++opened) {
        session.OpenDrive();
        for (int run = 0; run < 2; ++run) {
            session.StartDrive();
            session.StopDrive();
        }
        session.StartDrive();
        session.CloseDrive();
    }
    EXPECT_EQ(windows.AcceleratorBalance(), -3);
}

TEST_F(Accelerators, ASecondPressOfDriveTakesNone) {
    session.OpenDrive();
    session.OpenDrive();
    EXPECT_EQ(windows.AcceleratorBalance(), -1);
}

// --- window messages

TEST_F(WindowMessage, AMouseMoveIsKeptAsTwoSignedWords) {
    EXPECT_TRUE(Send(kWmMouseMove, 0, 0x8000FFFEu));
    EXPECT_EQ(session.mousePos.x, -2.0f);
    EXPECT_EQ(session.mousePos.y, -32768.0f);
    EXPECT_EQ(session.mousePos.z, 0.0f);
    EXPECT_TRUE(Send(kWmMouseMove, 0, 0x00C87FFFu));
    EXPECT_EQ(session.mousePos.x, 32767.0f);
    EXPECT_EQ(session.mousePos.y, 200.0f);
}

TEST_F(WindowMessage, AMouseMoveLooksAtNothingAboveItsTwoWords) {
    Send(kWmMouseMove, 0, 0xFFFFFFFF00010002u);
    EXPECT_EQ(session.mousePos.x, 2.0f);
    EXPECT_EQ(session.mousePos.y, 1.0f);
}

TEST_F(WindowMessage, AMouseMoveRedrawsNothing) {
    Open();
    Send(kWmMouseMove, 0, 5);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(WindowMessage, AKeyDownRedrawsTheHudWhateverTheKey) {
    Open();
    EXPECT_TRUE(KeyDown(kW));
    EXPECT_TRUE(KeyDown(1));
    EXPECT_EQ(TakeCalls(), kHudRedraw + kHudRedraw);
}

TEST_F(WindowMessage, AKeyUpRedrawsTheHudWhateverTheKey) {
    Open();
    EXPECT_TRUE(KeyUp(kW));
    EXPECT_TRUE(KeyUp(1));
    EXPECT_EQ(TakeCalls(), kHudRedraw + kHudRedraw);
}

TEST_F(WindowMessage, ATimerTicksWhateverItsNumber) {
    OpenAndStart();
    EXPECT_TRUE(Send(kWmTimer, 99));
    EXPECT_EQ(session.tick, 160);
}

TEST_F(WindowMessage, AClickOnTheWindowActivatesAndRedraws) {
    Open();
    session.active = 0;
    EXPECT_TRUE(Send(kWmActivate, kWaClickActive));
    EXPECT_EQ(session.active, 1u);
    EXPECT_EQ(TakeCalls(), kHudRedraw);
}

TEST_F(WindowMessage, LosingActivationRedraws) {
    Open();
    EXPECT_TRUE(Send(kWmActivate, kWaInactive));
    EXPECT_EQ(session.active, 0u);
    EXPECT_EQ(TakeCalls(), kHudRedraw);
}

TEST_F(WindowMessage, ActivationByKeyboardDoesNothing) {
    Open();
    session.active = 0;
    EXPECT_TRUE(Send(kWmActivate, kWaActive));
    EXPECT_EQ(session.active, 0u);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(WindowMessage, APaintDrawsTheHudBetweenItsBrackets) {
    Open();
    windows.CanvasOf(1).calls.clear();
    bool drawnBefore = true, drawn = false;
    windows.onCall = [&](const std::string& call) {
        if (call == "BeginPaint(1)") drawnBefore = !windows.CanvasOf(1).calls.empty();
        if (call == "EndPaint(1)") drawn = !windows.CanvasOf(1).calls.empty();
    };
    EXPECT_TRUE(Send(kWmPaint));
    EXPECT_EQ(TakeCalls(), Made("BeginPaint(1)", "EndPaint(1)"));
    EXPECT_FALSE(drawnBefore);
    EXPECT_TRUE(drawn);
}

TEST_F(WindowMessage, ARedrawPaintsTheWholeHud) {
    Open();
    Send(kWmPaint);
    const Calls painted = windows.CanvasOf(1).Texts();
    windows.CanvasOf(1).calls.clear();
    session.RedrawHud();
    EXPECT_EQ(windows.CanvasOf(1).Texts(), painted);
}

TEST_F(WindowMessage, ACloseClosesTheDrive) {
    Open();
    EXPECT_TRUE(Send(kWmClose));
    EXPECT_EQ(TakeCalls(), Made("UnRegisterDlgWnd(1)", "DestroyWindow(1)"));
}

TEST_F(WindowMessage, TheLeftButtonDragsTheWindowByItsFace) {
    Open();
    EXPECT_TRUE(Send(kWmLButtonDown));
    EXPECT_EQ(TakeCalls(), Made("BeginDrag(1)"));
}

TEST_F(WindowMessage, TheLeftButtonsReleaseDoesNothing) {
    Open();
    const std::string before = Bits(session.input);
    EXPECT_TRUE(Send(kWmLButtonUp));
    EXPECT_EQ(TakeCalls(), Calls{});
    EXPECT_EQ(Bits(session.input), before);
}

TEST_F(WindowMessage, TheRightButtonHoldsTheHandBrakeWithoutARedraw) {
    Open();
    EXPECT_TRUE(Send(kWmRButtonDown));
    EXPECT_EQ(input().handBrake, 1);
    EXPECT_TRUE(Send(kWmRButtonUp));
    EXPECT_EQ(input().handBrake, 0);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(WindowMessage, TheWheelTurnedDownIsBackward) {
    EXPECT_TRUE(Send(kWmMouseWheel, std::uint64_t(std::uint16_t(-120)) << 16));
    EXPECT_EQ(input().reverse, 1);
}

TEST_F(WindowMessage, TheWheelTurnedUpIsForward) {
    input().reverse = 1;
    EXPECT_TRUE(Send(kWmMouseWheel, std::uint64_t(120) << 16));
    EXPECT_EQ(input().reverse, 0);
}

TEST_F(WindowMessage, TheWheelTurnedByNothingIsBackward) {
    Send(kWmMouseWheel, 0);
    EXPECT_EQ(input().reverse, 1);
}

TEST_F(WindowMessage, TheWheelTurnedByOneIsForward) {
    input().reverse = 1;
    Send(kWmMouseWheel, std::uint64_t(1) << 16);
    EXPECT_EQ(input().reverse, 0);
}

TEST_F(WindowMessage, TheWheelLooksNeitherAtHeldKeysNorAbove) {
    input().reverse = 1;
    Send(kWmMouseWheel, 0xFFFFFFFF0078FFFFu);  // 120 in the high word, held keys below
    EXPECT_EQ(input().reverse, 0);
}

TEST_F(WindowMessage, TheWheelRedrawsNothing) {
    Open();
    Send(kWmMouseWheel, 0);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(WindowMessage, AnythingElseIsNotHandled) {
    Open();
    for (const std::uint32_t message : {0u, 1u, kWmInitDialog, kWmCommand, 0x0104u, 0x0207u, 0xFFFFu}) {
        EXPECT_FALSE(Send(message, 13, 13)) << message;
    }
    EXPECT_EQ(TakeCalls(), Calls{});
    EXPECT_EQ(session.running, 0u);
}

// --- keys

TEST_F(DriveKey, ThrottleIsHeldFromDownToUp) {
    Open();
    KeyDown(kW);
    EXPECT_EQ(input().keyThrottleDown, 1u);
    KeyUp(kW);
    EXPECT_EQ(input().keyThrottleDown, 0u);
}

TEST_F(DriveKey, BrakeIsHeldFromDownToUp) {
    Open();
    KeyDown(kS);
    EXPECT_EQ(input().keyBrakeDown, 1u);
    KeyUp(kS);
    EXPECT_EQ(input().keyBrakeDown, 0u);
}

TEST_F(DriveKey, LeftIsHeldFromDownToUp) {
    Open();
    KeyDown(kA);
    EXPECT_EQ(input().keyLeftDown, 1u);
    KeyUp(kA);
    EXPECT_EQ(input().keyLeftDown, 0u);
}

TEST_F(DriveKey, RightIsHeldFromDownToUp) {
    Open();
    KeyDown(kD);
    EXPECT_EQ(input().keyRightDown, 1u);
    KeyUp(kD);
    EXPECT_EQ(input().keyRightDown, 0u);
}

TEST_F(DriveKey, HandBrakeIsHeldFromDownToUp) {
    Open();
    KeyDown(kSpace);
    EXPECT_EQ(input().handBrake, 1);
    KeyUp(kSpace);
    EXPECT_EQ(input().handBrake, 0);
}

TEST_F(DriveKey, NitroIsHeldFromDownToUp) {
    Open();
    KeyDown(kShift);
    EXPECT_EQ(input().nitro, 1u);
    KeyUp(kShift);
    EXPECT_EQ(input().nitro, 0u);
}

TEST_F(DriveKey, GearChangesAtEachDownAndNotAtUp) {
    Open();
    KeyDown(kPageUp);
    EXPECT_EQ(input().reverse, 1);
    KeyUp(kPageUp);
    EXPECT_EQ(input().reverse, 1);
    KeyDown(kPageUp);
    EXPECT_EQ(input().reverse, 0);
}

TEST_F(DriveKey, AHeldGearKeyFlipsAtEachRepeat) {
    Open();
    for (int repeat = 0; repeat < 3; ++repeat) Send(kWmKeyDown, kPageUp, 0x40000000u);
    EXPECT_EQ(input().reverse, 1);
}

TEST_F(DriveKey, AnUnboundKeyChangesNothing) {
    Open();
    const std::string before = Bits(session.input);
    KeyDown(200);
    KeyUp(200);
    EXPECT_EQ(Bits(session.input), before);
}

/// Binds two neighbours in the order of keys to one code: only the first answers.
struct Neighbours {
    std::int32_t first, second;
    std::uint32_t (*firstHeld)(const DriveInput&);
    std::uint32_t (*secondHeld)(const DriveInput&);
};

TEST_F(DriveKey, OfTwoActionsOnOneCodeOnlyTheFirstInTheOrderActs) {
    constexpr auto throttle = [](const DriveInput& in) { return in.keyThrottleDown; };
    constexpr auto brake = [](const DriveInput& in) { return in.keyBrakeDown; };
    constexpr auto left = [](const DriveInput& in) { return in.keyLeftDown; };
    constexpr auto right = [](const DriveInput& in) { return in.keyRightDown; };
    constexpr auto handBrake = [](const DriveInput& in) { return std::uint32_t(in.handBrake); };
    constexpr auto nitro = [](const DriveInput& in) { return in.nitro; };
    constexpr auto gear = [](const DriveInput& in) { return std::uint32_t(in.reverse); };
    const Neighbours order[] = {{MasterParam::CtrlKbdThrottle, MasterParam::CtrlKbdBreak, throttle, brake},
                                {MasterParam::CtrlKbdBreak, MasterParam::CtrlKbdLeft, brake, left},
                                {MasterParam::CtrlKbdLeft, MasterParam::CtrlKbdRight, left, right},
                                {MasterParam::CtrlKbdRight, MasterParam::CtrlKbdHandBreak, right, handBrake},
                                {MasterParam::CtrlKbdHandBreak, MasterParam::CtrlKbdNitro, handBrake, nitro},
                                {MasterParam::CtrlKbdNitro, MasterParam::CtrlKbdFwdBkwd, nitro, gear}};
    for (const Neighbours& pair : order) {
        test::FakeParams fresh;
        fresh.SetInt(pair.first, 200);
        fresh.SetInt(pair.second, 200);
        master.params = fresh;
        Open();
        session.input = {};
        KeyDown(200);
        EXPECT_EQ(pair.firstHeld(session.input), 1u) << pair.first;
        EXPECT_EQ(pair.secondHeld(session.input), 0u) << pair.first;
        KeyUp(200);
        EXPECT_EQ(pair.firstHeld(session.input), 0u) << pair.first;
    }
}

TEST_F(DriveKey, ReleasingACodeOfTwoActionsLeavesTheSecondAlone) {
    Set(MasterParam::CtrlKbdBreak, kW);
    Open();
    input().keyBrakeDown = 1;
    KeyUp(kW);
    EXPECT_EQ(input().keyBrakeDown, 1u);
}

TEST_F(DriveKey, EnterStartsOnItsReleaseAlone) {
    Open();
    KeyDown(kVkReturn);
    EXPECT_EQ(session.running, 0u);
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 1u);
}

TEST_F(DriveKey, EnterStopsOnItsReleaseAlone) {
    OpenAndStart();
    KeyDown(kVkReturn);
    EXPECT_EQ(session.running, 1u);
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 0u);
}

TEST_F(DriveKey, AReleaseOfEnterWithoutItsDownStillToggles) {
    Open();
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 1u);
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 0u);
}

TEST_F(DriveKey, TheReleaseThatStopsRedrawsTheHudOnceMore) {
    OpenAndStart();
    KeyUp(kVkReturn);
    EXPECT_EQ(TakeCalls(), kStopCalls + kHudRedraw);
}

TEST_F(DriveKey, TheReleaseThatStartsRedrawsTheHudOnceMore) {
    Set(MasterParam::CtrlJoyPort, 1);
    Open();
    KeyUp(kVkReturn);
    EXPECT_EQ(TakeCalls(), Made("DisableAccelerators()", "SetCapture(1)", "SetTimer(1, 1, 30)") + kHudRedraw + kHudRedraw);
}

TEST_F(DriveKey, EscapeStopsOnItsRelease) {
    OpenAndStart();
    KeyDown(kVkEscape);
    EXPECT_EQ(session.running, 1u);
    KeyUp(kVkEscape);
    EXPECT_EQ(TakeCalls(), kHudRedraw + kStopCalls + kHudRedraw);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(session.window, 1u);
}

TEST_F(DriveKey, EscapeWhileIdleLeavesTheWindowOpen) {
    Open();
    KeyUp(kVkEscape);
    EXPECT_EQ(TakeCalls(), kHudRedraw);
    EXPECT_EQ(session.window, 1u);
}

TEST_F(DriveKey, AnActionOnEnterIsSetByItsDownAndStaysAsItsReleaseStops) {
    Set(MasterParam::CtrlKbdThrottle, kVkReturn);
    OpenAndStart();
    KeyDown(kVkReturn);
    EXPECT_EQ(input().keyThrottleDown, 1u);
    EXPECT_EQ(session.running, 1u);
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(input().keyThrottleDown, 1u);
}

TEST_F(DriveKey, AnActionOnEnterIsClearedOnlyByTheStartThatItsReleaseMakes) {
    Set(MasterParam::CtrlKbdThrottle, kVkReturn);
    Open();
    KeyDown(kVkReturn);
    EXPECT_EQ(input().keyThrottleDown, 1u);
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 1u);
    EXPECT_EQ(input().keyThrottleDown, 0u);
}

TEST_F(DriveKey, AnActionOnEscapeIsSetByItsDownAndStaysAsItsReleaseStops) {
    Set(MasterParam::CtrlKbdHandBreak, kVkEscape);
    OpenAndStart();
    KeyDown(kVkEscape);
    EXPECT_EQ(input().handBrake, 1);
    KeyUp(kVkEscape);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(input().handBrake, 1);
}

// --- InputTick

const Calls kFrameOnNothing = {"World()"};

Calls ShownFrame(TimeValue tick) { return {"SetTime(" + std::to_string(tick) + ", 1)"}; }
Calls Ending(TimeValue tick) { return {"NotifyMasters()", "RedrawViews(" + std::to_string(tick) + ")"}; }

TEST_F(InputTick, MakesItsCallsInOrder) {
    host.time = 320;
    OpenAndStart();
    Tick();
    EXPECT_EQ(TakeCalls(), ShownFrame(320) + kFrameOnNothing + kHudRedraw + Ending(320));
    EXPECT_EQ(session.tick, 480);
}

TEST_F(InputTick, ReadsThePadFirst) {
    Set(MasterParam::Driving_Type, 2);
    Set(MasterParam::CtrlJoyDriver, 1);
    Set(MasterParam::CtrlJoyPort, 2);
    OpenAndStart();
    Tick();
    EXPECT_EQ(TakeCalls(), Made("XInputGetState(1)") + ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0));
}

TEST_F(InputTick, ReadsTheJoystickFirst) {
    Set(MasterParam::Driving_Type, 2);
    OpenAndStart();
    Tick();
    EXPECT_EQ(TakeCalls(), Made("joyGetPos(0)") + ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0));
}

TEST_F(InputTick, TheLastFrameOfTheRangeIsStillDriven) {
    host.range = {0, 480};
    host.time = 320;
    OpenAndStart();
    Tick();
    EXPECT_EQ(session.tick, 480);
    EXPECT_EQ(session.running, 1u);
}

TEST_F(InputTick, PastTheLastFrameTheSliderGoesToTheEndAndTheRunStops) {
    host.range = {0, 480};
    host.time = 321;
    OpenAndStart();
    Tick();
    EXPECT_EQ(TakeCalls(), ShownFrame(480) + kStopCalls + Ending(480));
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(session.tick, 321);
}

TEST_F(InputTick, ARunStartedAtTheEndStopsAtItsFirstTickWithoutAStep) {
    host.range = {0, 480};
    host.time = 480;
    Open();
    test::SharedWorld().carCount = 0;
    BuildWorld(test::SharedWorld(), *master.rig);
    KeyUp(kVkReturn);
    Tick();
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(host.time, 480);
    EXPECT_EQ(master.rig->motion.frames, 1);
}

TEST_F(InputTick, TheRangesEndIsReadAtEachTick) {
    OpenAndStart();
    Tick();
    host.range.end = 300;
    Tick();
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(host.time, 300);
}

TEST_F(InputTick, FillsTheInputAlsoPastTheEnd) {
    host.range = {0, 100};
    OpenAndStart();
    KeyDown(kW);
    Tick();
    EXPECT_EQ(input().throttle, 4.0f);
}

TEST_F(InputTick, WithoutAGroundTheTickStaysAndTheRunGoesOn) {
    OpenAndStart();
    master.surface = nullptr;
    Tick();
    EXPECT_EQ(TakeCalls(), ShownFrame(0) + kHudRedraw + Ending(0));
    EXPECT_EQ(session.tick, 0);
    EXPECT_EQ(session.running, 1u);
}

TEST_F(InputTick, StoresTheFrameOfTheShownTick) {
    Set(MasterParam::Sample_Step, 1);
    host.time = 160;
    OpenAndStart();
    BuildWorld(test::SharedWorld(), *master.rig);
    Tick();
    ASSERT_EQ(master.rig->motion.frames, 6);
    EXPECT_EQ(master.rig->motion.times[1], 160);
    EXPECT_EQ(master.rig->motion.times[5], 288);
}

TEST_F(InputTick, AFrameWithoutSamplesIsDrivenAsOneOfOne) {
    for (const std::int32_t given : {0, -5}) {  // a program can store what no control lets through
        Set(MasterParam::Frame_Step, given);
        Set(MasterParam::Sample_Step, given);
        host.time = 0;
        OpenAndStart();
        BuildWorld(test::SharedWorld(), *master.rig);
        Tick();
        EXPECT_EQ(master.rig->motion.frames, 2) << given;
        EXPECT_EQ(session.tick, 160) << given;
        session.StopDrive();
    }
}

TEST_F(InputTick, FollowsTheHostsTicksPerFrame) {
    host.ticksPerFrame = 200;
    OpenAndStart();
    Tick();
    Tick();
    EXPECT_EQ(session.tick, 400);
    EXPECT_EQ(host.time, 200);
}

TEST_F(InputTick, RedrawsTheViewsAtTheTimeThatTheHostThenHas) {
    OpenAndStart();
    At("NotifyMasters()", [&] { host.time = 4000; });
    Tick();
    EXPECT_EQ(windows.calls.back(), "RedrawViews(4000)");
}

TEST_F(InputTick, DrivesByMouse) {
    Set(MasterParam::Driving_Type, 0);
    Open();
    MoveMouse(100, 100);
    KeyUp(kVkReturn);
    MoveMouse(1100, -100);
    Tick();
    EXPECT_EQ(input().throttle, 4.0f);
    EXPECT_EQ(input().steerRatio, 1.0f);
}

TEST_F(InputTick, TheMouseStartsFromNothingWhereverItStands) {
    Set(MasterParam::Driving_Type, 0);
    Open();
    MoveMouse(-700, 900);
    KeyUp(kVkReturn);
    Tick();
    EXPECT_EQ(input().throttle, 0.0f);
    EXPECT_EQ(input().brake, 0.0f);
    EXPECT_EQ(input().steerTarget, 0.0f);
}

TEST_F(InputTick, DrivesByKeyboard) {
    OpenAndStart();
    KeyDown(kW);
    KeyDown(kA);
    Tick();
    EXPECT_EQ(input().throttle, 4.0f);
    EXPECT_EQ(input().steerTarget, -LargestSteering(session.input));
}

TEST_F(InputTick, DrivesByGamepad) {
    Set(MasterParam::Driving_Type, 2);
    Set(MasterParam::CtrlJoyDriver, 1);
    Set(MasterParam::CtrlJoyThrottleCtrl, 3);
    devices.pads[1] = test::Pad{.bRightTrigger = 255, .sThumbLX = 32767};
    OpenAndStart();
    Tick();
    EXPECT_EQ(input().throttle, 4.0f);
    EXPECT_EQ(input().steerRatio, 1.0f);
}

TEST_F(InputTick, APadLostDuringTheRunHasItsThrottleSquaredAtEachTick) {
    Set(MasterParam::Driving_Type, 2);
    Set(MasterParam::CtrlJoyDriver, 1);
    Set(MasterParam::CtrlJoyThrottleCtrl, 3);
    devices.pads[0] = test::Pad{.bRightTrigger = 255};
    OpenAndStart();
    Tick();
    devices.pads[0].reset();
    for (const float expected : {16.0f, 256.0f, 65536.0f}) {
        Tick();
        EXPECT_EQ(input().throttle, expected);
    }
    EXPECT_EQ(session.running, 1u);
}

TEST_F(InputTick, AnUnknownDrivingTypeLeavesTheInput) {
    Set(MasterParam::Driving_Type, 7);
    OpenAndStart();
    input().throttle = 0.5f;
    const std::string before = Bits(session.input);
    Tick();
    EXPECT_EQ(Bits(session.input), before);
}

// --- types 3 and 4: a target

TEST_F(TargetDriving, ANodeThatIsNoShapeIsDrivenTo) {
    Set(MasterParam::Driving_Type, 3);
    Open();
    KeyUp(kVkReturn);
    EXPECT_EQ(input().drivingType, kDriveToTarget);
    EXPECT_EQ(std::ranges::count(windows.calls, "BuildPath()"), 0);
}

TEST_F(TargetDriving, AShapeBecomesAPathAsTheRunStarts) {
    Set(MasterParam::Driving_Type, 3);
    Set(MasterParam::CtrlJoyPort, 1);
    master.target.isShape = true;
    Open();
    session.StartDrive();
    EXPECT_EQ(input().drivingType, kDriveAlongPath);
    EXPECT_EQ(TakeCalls(), Made("BuildPath()", "DisableAccelerators()", "SetCapture(1)", "SetTimer(1, 1, 30)") + kHudRedraw);
}

TEST_F(TargetDriving, WithoutATargetTheTypeStays) {
    Set(MasterParam::Driving_Type, 3);
    master.target.hasTarget = false;
    master.target.isShape = true;
    OpenAndStart();
    EXPECT_EQ(input().drivingType, kDriveToTarget);
}

TEST_F(TargetDriving, WithoutADriverInTheHandsPlaceNothingIsFilled) {
    Set(MasterParam::Driving_Type, 3);
    master.hasDriver = false;
    OpenAndStart();
    const std::string before = Bits(session.input);
    Tick();
    EXPECT_EQ(Bits(session.input), before);
    EXPECT_EQ(session.tick, 160);
}

TEST_F(TargetDriving, AShapeIsNoPathForAnotherType) {
    for (const std::int32_t type : {0, 1, 2}) {
        Set(MasterParam::Driving_Type, type);
        master.target.isShape = true;
        OpenAndStart();
        EXPECT_EQ(input().drivingType, std::uint32_t(type));
        session.StopDrive();
    }
}

TEST_F(TargetDriving, OpeningTheWindowMakesNoPath) {
    Set(MasterParam::Driving_Type, 3);
    master.target.isShape = true;
    Open();
    EXPECT_EQ(input().drivingType, kDriveToTarget);
}

TEST_F(TargetDriving, ThePathLastsUntilTheNextStartReadsTheTypeAfresh) {
    Set(MasterParam::Driving_Type, 3);
    master.target.isShape = true;
    OpenAndStart();
    KeyUp(kVkReturn);
    EXPECT_EQ(input().drivingType, kDriveAlongPath);
    master.target.isShape = false;
    KeyUp(kVkReturn);
    EXPECT_EQ(input().drivingType, kDriveToTarget);
}

TEST_F(TargetDriving, ADriveToATargetIsAskedOnceForTheTickAndOnceBeforeEachSample) {
    Set(MasterParam::Driving_Type, 3);
    OpenAndStart();
    Tick();
    const Calls samples(5, "DriveToTarget()");
    EXPECT_EQ(TakeCalls(), Made("DriveToTarget()") + ShownFrame(0) + Made("World()") + samples + kHudRedraw + Ending(0));
}

TEST_F(TargetDriving, ADriveToATargetClearsNothing) {
    Set(MasterParam::Driving_Type, 3);
    OpenAndStart();
    input().brake = 0.3f;
    input().steerRatio = 0.4f;
    input().handBrake = input().reverse = 1;
    input().keyThrottleDown = input().nitro = 1;
    const std::string before = Bits(session.input);
    Tick();
    EXPECT_EQ(Bits(session.input), before);
}

TEST_F(TargetDriving, APathIsAskedOnceForTheTickWithTheDemandsCleared) {
    Set(MasterParam::Driving_Type, 3);
    master.target.isShape = true;
    OpenAndStart();
    input().steerTarget = input().steerRatio = input().throttle = input().brake = 0.5f;
    bool cleared = false;
    master.target.alongPath = [&](DriveSession& asked) {
        const DriveInput& in = asked.input;
        cleared = in.steerTarget == 0.0f && in.steerRatio == 0.0f && in.throttle == 0.0f && in.brake == 0.0f;
        asked.input.steerTarget = 0.25f;
    };
    Tick();
    EXPECT_EQ(TakeCalls(), Made("DriveAlongPath()") + ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0));
    EXPECT_TRUE(cleared);
    EXPECT_EQ(input().steerTarget, 0.25f);
}

TEST_F(TargetDriving, OnAPathTheKeysGiveTheSpeedAndOverruleTheSteering) {
    Set(MasterParam::Driving_Type, 3);
    master.target.isShape = true;
    master.target.alongPath = [](DriveSession& asked) { asked.input.steerTarget = 0.25f; };
    OpenAndStart();
    KeyDown(kW);
    KeyDown(kD);
    Tick();
    EXPECT_EQ(input().throttle, 4.0f);
    EXPECT_EQ(input().steerTarget, LargestSteering(session.input));
}

TEST_F(TargetDriving, WhatIsAskedBeforeASampleStaysInTheInputForTheNextTick) {
    Set(MasterParam::Driving_Type, 3);
    OpenAndStart();
    float asked = 0.0f;
    master.target.toTarget = [&](DriveSession& driven) { driven.input.throttle = asked += 1.0f; };
    Tick();
    EXPECT_EQ(input().throttle, 6.0f);
}

/// The recording of one frame of the stock car, driven to a target that asks for `first` at the tick and for `later` before the
/// samples.
std::uint64_t HashOfTargetFrame(float first, float later) {
    test::SessionParts parts;
    parts.Set(MasterParam::Driving_Type, 3);
    parts.session.OpenDrive();
    parts.KeyUp(kVkReturn);
    bool began = false;
    parts.master.target.toTarget = [&](DriveSession& session) {
        session.input.throttle = began ? later : first;
        began = true;
    };
    parts.Tick();
    return test::HashRecording(parts.master.rig->motion);
}

TEST_F(TargetDriving, WhatIsAskedBeforeASampleDoesNotReachTheFrameUnderWay) {
    EXPECT_EQ(HashOfTargetFrame(4.0f, -5.0f), HashOfTargetFrame(4.0f, 4.0f));
    EXPECT_NE(HashOfTargetFrame(4.0f, -5.0f), HashOfTargetFrame(0.0f, -5.0f));  // what the tick asked for does
}

// --- a tick in a tick

TEST_F(TickInATick, IsDropped) {
    for (const char* call : {"SetTime(0, 1)", "GetDC(1)", "NotifyMasters()", "RedrawViews(0)"}) {
        host.time = 0;
        OpenAndStart();
        At(call, [&] { EXPECT_TRUE(Tick()); });
        Tick();
        EXPECT_EQ(TakeCalls(), ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0)) << call;
        EXPECT_EQ(session.tick, 160) << call;
        session.StopDrive();
    }
}

TEST_F(TickInATick, TheNextTickRunsAgain) {
    OpenAndStart();
    At("RedrawViews(0)", [&] { Tick(); });
    Tick();
    Tick();
    EXPECT_EQ(session.tick, 320);
}

TEST_F(TickInATick, ACloseInsideHappensAtItsEnd) {
    for (const char* call : {"SetTime(0, 1)", "GetDC(1)", "NotifyMasters()", "RedrawViews(0)"}) {
        test::SessionParts parts;
        parts.OpenAndStart();
        parts.At(call, [&] {
            EXPECT_TRUE(parts.session.HandleMessage(kWmClose, 0, 0));
            EXPECT_EQ(parts.session.window, 1u);
        });
        parts.Tick();
        EXPECT_EQ(parts.TakeCalls(), ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0) + kStopCalls +
                                         Made("UnRegisterDlgWnd(1)", "DestroyWindow(1)"))
            << call;
        EXPECT_EQ(parts.session.window, 0u) << call;
        EXPECT_EQ(parts.session.running, 0u) << call;
    }
}

TEST_F(TickInATick, ACloseInsideHappensOnce) {
    OpenAndStart();
    At("SetTime(0, 1)", [&] {
        session.CloseDrive();
        session.CloseDrive();
    });
    Tick();
    EXPECT_EQ(std::ranges::count(windows.calls, "DestroyWindow(1)"), 1);
    session.OpenDrive();
    Tick();
    EXPECT_EQ(session.window, 2u);  // the close that was made is forgotten
}

TEST_F(TickInATick, ACloseInTheTickThatEndsTheRunHappensAtItsEnd) {
    host.range = {0, 100};
    OpenAndStart();
    At("RebuildTrails()", [&] { session.CloseDrive(); });
    Tick();
    EXPECT_EQ(TakeCalls(), ShownFrame(100) + kStopCalls + Ending(100) + Made("UnRegisterDlgWnd(1)", "DestroyWindow(1)"));
}

TEST_F(TickInATick, AStopInsideIsMadeAtOnce) {
    OpenAndStart();
    At("RedrawViews(0)", [&] { KeyUp(kVkEscape); });
    Tick();
    EXPECT_EQ(TakeCalls(), ShownFrame(0) + kFrameOnNothing + kHudRedraw + Ending(0) + kStopCalls + kHudRedraw);
    EXPECT_EQ(session.running, 0u);
}

// --- states and prompts

TEST_F(SessionState, FromClosedToIdleByDrive) {
    session.OpenDrive();
    session.RedrawHud();
    EXPECT_NE(session.window, 0u);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(Prompt(), kEnterToStart);
}

TEST_F(SessionState, ClosedShowsNothing) {
    session.RedrawHud();
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(SessionState, IdleAsksForAClickOnceActivationIsLost) {
    Open();
    Send(kWmActivate, kWaInactive);
    EXPECT_EQ(Prompt(), kClickToActivate);
    EXPECT_NE(session.window, 0u);
}

TEST_F(SessionState, IdleIsActiveAgainAfterAClick) {
    Open();
    Send(kWmActivate, kWaInactive);
    Send(kWmActivate, kWaClickActive);
    EXPECT_EQ(Prompt(), kEnterToStart);
}

TEST_F(SessionState, ActivationByKeyboardKeepsThePromptToClick) {
    Open();
    Send(kWmActivate, kWaInactive);
    Send(kWmActivate, kWaActive);
    session.RedrawHud();
    EXPECT_EQ(Prompt(), kClickToActivate);
}

TEST_F(SessionState, FromIdleToRunningByEnter) {
    Open();
    KeyUp(kVkReturn);
    EXPECT_EQ(session.running, 1u);
    EXPECT_EQ(Prompt(), kEnterToStop);
}

TEST_F(SessionState, FromRunningToIdleByEnter) {
    OpenAndStart();
    KeyUp(kVkReturn);
    EXPECT_EQ(Prompt(), kEnterToStart);
}

TEST_F(SessionState, FromRunningToIdleByEscape) {
    OpenAndStart();
    KeyUp(kVkEscape);
    EXPECT_EQ(Prompt(), kEnterToStart);
}

TEST_F(SessionState, FromRunningToIdleByTheEndOfTheRangeWithoutAMessage) {
    host.range = {0, 100};
    OpenAndStart();
    Tick();
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(Prompt(), kEnterToStart);
    for (const std::string& call : windows.calls) EXPECT_EQ(call.find("ShowMessageBox"), std::string::npos);
}

TEST_F(SessionState, ARunGoesOnDrivingWithoutTheUsersAttention) {
    OpenAndStart();
    KeyDown(kW);
    Send(kWmActivate, kWaInactive);
    Tick();
    EXPECT_EQ(session.running, 1u);
    EXPECT_EQ(session.tick, 160);
    EXPECT_EQ(input().keyThrottleDown, 1u);
    EXPECT_EQ(Prompt(), kClickToActivate);
}

TEST_F(SessionState, ARunIsActiveAgainAfterAClick) {
    OpenAndStart();
    Send(kWmActivate, kWaInactive);
    Send(kWmActivate, kWaClickActive);
    EXPECT_EQ(session.running, 1u);
    EXPECT_EQ(Prompt(), kEnterToStop);
}

TEST_F(SessionState, FromRunningToClosedByTheWindow) {
    OpenAndStart();
    Send(kWmClose);
    EXPECT_EQ(session.window, 0u);
    EXPECT_EQ(session.running, 0u);
    EXPECT_EQ(session.active, 0u);
}

TEST_F(SessionState, TheHudReadsTheSpeedOfTheRecordingAtTheHostsTime) {
    Open();
    for (TimeValue tick = 0; tick <= 320; tick += 32) {
        // 2000 cm/s from tick 160 on: 72 km/h.
        master.rig->chassisBody.momentum = DPoint3{0.0, tick < 160 ? 0.0 : 2000.0, 0.0} * master.rig->chassisParams.Mass;
        master.rig->Store(tick);
    }
    const auto speedShown = [&](TimeValue at) {
        host.time = at;
        windows.CanvasOf(1).calls.clear();
        session.RedrawHud();
        for (const test::CanvasCall& call : windows.CanvasOf(1).calls) {
            if (const auto* text = std::get_if<test::drawn::DrawTextLine>(&call)) return text->text;
        }
        return std::string();
    };
    EXPECT_EQ(speedShown(64), "0");
    const Point3 velocity = master.rig->GetVelocity(256);
    const int expected = int(std::sqrt(double(LengthSquared(velocity))) * 1e-5 * 3600.0);
    EXPECT_EQ(speedShown(256), std::to_string(expected));
    EXPECT_GT(expected, 0);
}

TEST_F(SessionState, EveryCanvasIsGivenBack) {
    OpenAndStart();
    for (int i = 0; i < 3; ++i) Tick();
    Send(kWmPaint);
    session.CloseDrive();
    EXPECT_EQ(windows.OpenCanvases(), 0);
}

}  // namespace
}  // namespace tavrik
