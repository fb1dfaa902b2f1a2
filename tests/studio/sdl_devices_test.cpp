#include "studio/driving/sdl_devices.h"

#include <gtest/gtest.h>

#include "studio/driving/watched_devices.h"
#include "tests/studio/virtual_pad.h"

namespace tavrik_studio {
namespace {

using test::VirtualController;

constexpr std::uint32_t kUnplugged = 167, kNotConnected = 1167;

class SdlDevicesTest : public testing::Test {
 protected:
    SdlDevicesTest() {
        if (devices.Joysticks() != 0) skip = true;  // a controller of the machine's own would count along
    }
    void SetUp() override {
        if (skip) GTEST_SKIP() << "a real controller is plugged in";
    }
    tavrik::XInputGamepad Pad(std::int32_t user = 0) {
        tavrik::XInputState state{};
        EXPECT_EQ(devices.XInputGetState(user, state), 0u);
        return state.Gamepad;
    }
    tavrik::JoyInfo Joy(std::uint32_t id = 0) {
        tavrik::JoyInfo info{};
        EXPECT_EQ(devices.joyGetPos(id, info), 0u);
        return info;
    }

    SdlDevices devices;
    bool skip = false;
};

TEST_F(SdlDevicesTest, NothingAnswersWhereNothingIsPluggedIn) {
    tavrik::XInputState state{};
    tavrik::JoyInfo info{};
    for (const std::int32_t user : {-1, 0, 3, 4}) EXPECT_EQ(devices.XInputGetState(user, state), kNotConnected) << user;
    EXPECT_EQ(devices.joyGetPos(0, info), kUnplugged);
}

TEST_F(SdlDevicesTest, GamepadIsAUserAndAJoystick) {
    const VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    ASSERT_TRUE(pad.IsPlugged()) << SDL_GetError();
    EXPECT_EQ(devices.Gamepads(), 1);
    EXPECT_EQ(devices.Joysticks(), 1);
    EXPECT_EQ(Pad().wButtons, 0);
    EXPECT_EQ(Joy().wButtons, 0u);
}

TEST_F(SdlDevicesTest, WheelIsAJoystickAlone) {
    const VirtualController wheel(SDL_JOYSTICK_TYPE_WHEEL, 3, 10);
    ASSERT_TRUE(wheel.IsPlugged());
    EXPECT_EQ(devices.Gamepads(), 0);
    EXPECT_EQ(devices.Joysticks(), 1);
}

TEST_F(SdlDevicesTest, ButtonsOfAPadHaveTheirClassicBits) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    const std::pair<int, int> bits[] = {
        {SDL_CONTROLLER_BUTTON_A, 4096},           {SDL_CONTROLLER_BUTTON_B, 8192},
        {SDL_CONTROLLER_BUTTON_X, 16384},          {SDL_CONTROLLER_BUTTON_Y, 32768},
        {SDL_CONTROLLER_BUTTON_LEFTSHOULDER, 256}, {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, 512},
        {SDL_CONTROLLER_BUTTON_DPAD_UP, 1},        {SDL_CONTROLLER_BUTTON_DPAD_DOWN, 2},
        {SDL_CONTROLLER_BUTTON_DPAD_LEFT, 4},      {SDL_CONTROLLER_BUTTON_DPAD_RIGHT, 8},
        {SDL_CONTROLLER_BUTTON_START, 16},         {SDL_CONTROLLER_BUTTON_BACK, 32},
        {SDL_CONTROLLER_BUTTON_LEFTSTICK, 64},     {SDL_CONTROLLER_BUTTON_RIGHTSTICK, 128},
    };
    for (const auto& [button, bit] : bits) {
        pad.Button(button, true);
        EXPECT_EQ(Pad().wButtons, bit) << button;
        pad.Button(button, false);
    }
}

TEST_F(SdlDevicesTest, SticksPointUpwardsAndReachBothEnds) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    EXPECT_EQ(Pad().sThumbLY, 0);
    pad.Axis(SDL_CONTROLLER_AXIS_LEFTY, -32768);
    pad.Axis(SDL_CONTROLLER_AXIS_RIGHTY, 32767);
    pad.Axis(SDL_CONTROLLER_AXIS_LEFTX, 32767);
    pad.Axis(SDL_CONTROLLER_AXIS_RIGHTX, -32768);
    EXPECT_EQ(Pad().sThumbLY, 32767);
    EXPECT_EQ(Pad().sThumbRY, -32767);
    EXPECT_EQ(Pad().sThumbLX, 32767);
    EXPECT_EQ(Pad().sThumbRX, -32768);
}

TEST_F(SdlDevicesTest, TriggersGoFromNothingTo255) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    pad.Axis(SDL_CONTROLLER_AXIS_TRIGGERLEFT, -32768);
    pad.Axis(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 32767);
    EXPECT_EQ(Pad().bLeftTrigger, 0);
    EXPECT_EQ(Pad().bRightTrigger, 255);
}

TEST_F(SdlDevicesTest, PacketNumberMovesOnlyWithThePad) {
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    tavrik::XInputState first{}, second{}, third{};
    devices.XInputGetState(0, first);
    devices.XInputGetState(0, second);
    EXPECT_EQ(first.dwPacketNumber, second.dwPacketNumber);
    pad.Button(SDL_CONTROLLER_BUTTON_A, true);
    devices.XInputGetState(0, third);
    EXPECT_NE(third.dwPacketNumber, second.dwPacketNumber);
}

TEST_F(SdlDevicesTest, JoystickAxesRunFromNothingTo65535) {
    VirtualController wheel(SDL_JOYSTICK_TYPE_WHEEL, 3, 10);
    EXPECT_EQ(Joy().wXpos, 32768u);
    wheel.Axis(0, -32768);
    wheel.Axis(1, 32767);
    wheel.Axis(2, 1000);
    wheel.Button(3, true);
    const tavrik::JoyInfo info = Joy();
    EXPECT_EQ(info.wXpos, 0u);
    EXPECT_EQ(info.wYpos, 65535u);
    EXPECT_EQ(info.wZpos, 33768u);
    EXPECT_EQ(info.wButtons, 8u);
}

TEST_F(SdlDevicesTest, WheelComesBeforeAPadThatWasThereFirst) {
    const VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    EXPECT_EQ(devices.Joysticks(), 1);
    VirtualController wheel(SDL_JOYSTICK_TYPE_WHEEL, 3, 10);
    wheel.Axis(0, 12345);
    EXPECT_EQ(Joy(0).wXpos, 12345u + 32768u);
}

TEST_F(SdlDevicesTest, HeldOrderLeavesTheDriverItsWheel) {
    VirtualController wheel(SDL_JOYSTICK_TYPE_WHEEL, 3, 10), other(SDL_JOYSTICK_TYPE_WHEEL, 3, 10);
    other.Axis(0, 111);
    devices.HoldOrder(true);
    wheel.Unplug();
    tavrik::JoyInfo info{};
    EXPECT_EQ(devices.joyGetPos(0, info), kUnplugged);
    EXPECT_EQ(Joy(1).wXpos, 111u + 32768u);
    devices.HoldOrder(false);
    EXPECT_EQ(Joy(0).wXpos, 111u + 32768u);
}

TEST_F(SdlDevicesTest, PadKeepsItsUserWhenAnotherOneGoes) {
    VirtualController first(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    EXPECT_EQ(devices.Gamepads(), 1);
    VirtualController second(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    EXPECT_EQ(devices.Gamepads(), 2);
    second.Button(SDL_CONTROLLER_BUTTON_A, true);
    first.Unplug();
    tavrik::XInputState state{};
    EXPECT_EQ(devices.XInputGetState(0, state), kNotConnected);
    EXPECT_EQ(Pad(1).wButtons, 4096);
    EXPECT_EQ(tavrik::ResolvePort(0, devices), 1);
    const VirtualController again(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    EXPECT_EQ(Pad(0).wButtons, 0);
}

TEST_F(SdlDevicesTest, FifthPadIsNoUser) {
    std::vector<std::unique_ptr<VirtualController>> pads;
    for (int i = 0; i < 5; ++i) pads.push_back(std::make_unique<VirtualController>(SDL_JOYSTICK_TYPE_GAMECONTROLLER));
    EXPECT_EQ(devices.Gamepads(), 4);
    EXPECT_EQ(devices.Joysticks(), 5);
}

TEST_F(SdlDevicesTest, WatchedPadIsLostOnlyOnceItHasAnswered) {
    WatchedDevices watched(devices);
    tavrik::XInputState state{};
    watched.BeginRun();
    watched.XInputGetState(0, state);
    EXPECT_FALSE(watched.IsLost());
    EXPECT_TRUE(watched.WasAskedInVain());
    VirtualController pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);
    watched.XInputGetState(0, state);
    EXPECT_FALSE(watched.IsLost());
    EXPECT_FALSE(watched.WasAskedInVain());
    pad.Unplug();
    EXPECT_TRUE(watched.IsLost());
    watched.BeginRun();
    EXPECT_FALSE(watched.IsLost());
}

}  // namespace
}  // namespace tavrik_studio
