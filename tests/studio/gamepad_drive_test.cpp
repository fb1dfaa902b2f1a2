#include <gtest/gtest.h>

#include <QTest>

#include "drive/input_modes.h"
#include "host/rig_objects.h"
#include "rig/parameter_tables.h"
#include "tests/studio/driving_scene.h"
#include "tests/studio/virtual_pad.h"

namespace tavrik_studio {
namespace {

using tavrik::MasterParam;
using test::VirtualController;

class GamepadDrive : public test::DrivingScene {
 protected:
    void SetUp() override {
        if (desk.Pads().Joysticks() != 0) GTEST_SKIP() << "a real controller is plugged in";
        tavrik_host::SetParam(Master(), MasterParam::Driving_Type, std::int32_t(tavrik::kDriveByGamepad));
    }
    /// After the pages are open: they overwrite the bindings.
    void ReadWith(std::int32_t driver, std::int32_t throttleChoice) {
        tavrik_host::SetParam(Master(), MasterParam::CtrlJoyDriver, driver);
        tavrik_host::SetParam(Master(), MasterParam::CtrlJoyThrottleCtrl, throttleChoice);
    }
    static constexpr std::int32_t kMultimedia = 0, kXInput = 1, kRightTrigger = 3;
};

TEST_F(GamepadDrive, TriggerDrivesTheCar) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    OpenDrive();
    ReadWith(kXInput, kRightTrigger);
    pad.Axis(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 32767);
    Enter();
    ASSERT_TRUE(WaitForFrames(40));
    desk.StopRun();
    EXPECT_GT(DotProd(CarAt(editor.Time()) - CarAt(0), CarForward()), 50.0f);
    EXPECT_TRUE(complaints.isEmpty()) << complaints.join("; ").toStdString();
}

TEST_F(GamepadDrive, UnpluggedPadStopsTheRunWithASentence) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    OpenDrive();
    ReadWith(kXInput, kRightTrigger);
    pad.Axis(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 32767);
    Enter();
    ASSERT_TRUE(WaitForFrames(6));
    pad.Unplug();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !desk.IsRunning(); }));
    const TimeValue stopped = editor.Time();
    QTest::qWait(50);
    EXPECT_EQ(editor.Time(), stopped);
    ASSERT_EQ(complaints.size(), 1);
    const QString second = QString::number(stopped / 4800.0, 'f', 2);
    EXPECT_EQ(complaints[0], "The gamepad was unplugged at second " + second + "; the run stopped there.");
    EXPECT_EQ(editor.UndoText(), "Drive");
}

TEST_F(GamepadDrive, WheelDrivesAndStopsLikewise) {
    VirtualController wheel(SDL_JOYSTICK_TYPE_WHEEL, 3, 10);
    OpenDrive();
    ReadWith(kMultimedia, 0);
    wheel.Axis(1, -32768);  // the stick forward
    Enter();
    ASSERT_TRUE(WaitForFrames(40));
    EXPECT_GT(DotProd(CarAt(editor.Time()) - CarAt(0), CarForward()), 50.0f);
    wheel.Unplug();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !desk.IsRunning(); }));
    EXPECT_EQ(complaints.size(), 1);
}

TEST_F(GamepadDrive, PadPluggedInDuringARunByKeyboardChangesNothing) {
    tavrik_host::SetParam(Master(), MasterParam::Driving_Type, std::int32_t(tavrik::kDriveByKeyboard));
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(3));
    pad.Unplug();
    ASSERT_TRUE(WaitForFrames(8));
    EXPECT_TRUE(desk.IsRunning());
    EXPECT_TRUE(complaints.isEmpty());
}

TEST_F(GamepadDrive, ButtonOfAPadIsCaptured) {
    constexpr MapID kControllerSetup = 4;
    constexpr int kBindBrake = 1019;
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    panel = std::make_unique<tavrik_host::MasterPanel>(Master());
    ReadWith(kXInput, kRightTrigger);
    PressButton(kControllerSetup, kBindBrake);
    ASSERT_NE(desk.Windows().Face(tavrik::WindowKind::Prompt), nullptr);
    pad.Button(SDL_CONTROLLER_BUTTON_LEFTSHOULDER, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.Windows().Face(tavrik::WindowKind::Prompt) == nullptr; }));
    EXPECT_EQ(tavrik_host::IntParam(Master(), MasterParam::CtrlJoyBreak), 256);
    EXPECT_FALSE(desk.IsRunning());
}

TEST_F(GamepadDrive, RunWithoutAPadTellsSoAndStandsStill) {
    OpenDrive();
    ReadWith(kXInput, kRightTrigger);
    Enter();
    ASSERT_TRUE(WaitForFrames(10));
    EXPECT_TRUE(desk.IsRunning());
    ASSERT_EQ(complaints.size(), 1);
    EXPECT_TRUE(complaints[0].startsWith("No gamepad answers"));
}

}  // namespace
}  // namespace tavrik_studio
