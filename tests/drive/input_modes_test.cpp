#include "drive/input_modes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "session_fixture.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::Bits;
using test::TestRandom;
using test::TestRounds;
using test::TestSeed;

/// An input that no mode has filled yet: what a mode leaves alone can be told from what it clears.
DriveInput Stale() {
    DriveInput input;
    input.rudderAngle = 40.0f;
    input.steerTarget = 0.11f;
    input.throttle = 0.22f;
    input.brake = 0.33f;
    input.steerRatio = 0.44f;
    return input;
}

// --- mouse

/// The mouse `dx` pixels right of where the run began and `dy` below.
DriveInput MouseAt(float dx, float dy, bool reverse = false) {
    DriveInput input = Stale();
    input.reverse = reverse ? 1 : 0;
    FillFromMouse(input, {120.0f + dx, 50.0f + dy, 0.0f}, {120.0f, 50.0f, 0.0f});
    return input;
}

TEST(FillFromMouse, AtItsAnchorAsksForNothing) {
    const DriveInput input = MouseAt(0, 0);
    EXPECT_EQ(input.brake, 0.0f);
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 0.0f);
}

TEST(FillFromMouse, HundredPixelsUpIsAThrottleOfOne) { EXPECT_EQ(MouseAt(0, -100).throttle, 1.0f); }

TEST(FillFromMouse, TwoHundredPixelsUpIsAThrottleOfFour) { EXPECT_EQ(MouseAt(0, -200).throttle, 4.0f); }

TEST(FillFromMouse, TwoHundredPixelsDownIsABrakeOfFourWithoutThrottle) {
    const DriveInput input = MouseAt(0, 200);
    EXPECT_EQ(input.brake, 4.0f);
    EXPECT_EQ(input.throttle, 0.0f);
}

TEST(FillFromMouse, UpReleasesTheBrake) { EXPECT_EQ(MouseAt(0, -10).brake, 0.0f); }

TEST(FillFromMouse, ThousandPixelsAsideIsFullLockExactly) {
    EXPECT_EQ(MouseAt(1000, 0).steerRatio, 1.0f);
    EXPECT_EQ(MouseAt(-1000, 0).steerRatio, -1.0f);
}

TEST(FillFromMouse, FullLockIsTheLargestAngleToTheRight) {
    const DriveInput input = MouseAt(1000, 0);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

TEST(FillFromMouse, ThrottleHasNoLimit) { EXPECT_EQ(MouseAt(0, -10000).throttle, 10000.0f); }

TEST(FillFromMouse, ReverseTurnsTheThrottleRound) { EXPECT_EQ(MouseAt(0, -200, true).throttle, -4.0f); }

TEST(FillFromMouse, ReverseLeavesTheBrakeAlone) { EXPECT_EQ(MouseAt(0, 200, true).brake, 4.0f); }

TEST(FillFromMouse, HasNoNitro) {
    DriveInput input = Stale();
    input.nitro = 1;
    FillFromMouse(input, {1000.0f, -200.0f, 0.0f}, {0.0f, 0.0f, 0.0f});
    EXPECT_EQ(input.throttle, 4.0f);
    EXPECT_EQ(input.steerRatio, 1.0f);
}

TEST(FillFromMouse, TheHandBrakeAddsNoBrake) {
    DriveInput input = Stale();
    input.handBrake = 1;
    FillFromMouse(input, {0, 0, 0}, {0, 0, 0});
    EXPECT_EQ(input.brake, 0.0f);
    EXPECT_EQ(input.handBrake, 1);
}

// --- keyboard

TEST(FillFromKeyboard, NoKeyClearsEverything) {
    DriveInput input = Stale();
    FillFromKeyboard(input);
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 0.0f);
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.brake, 0.0f);
}

TEST(FillFromKeyboard, LeftIsFullLockToTheLeft) {
    DriveInput input = Stale();
    input.keyLeftDown = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.steerTarget, -LargestSteering(input));
    EXPECT_EQ(input.steerRatio, -1.0f);
}

TEST(FillFromKeyboard, RightIsFullLockToTheRight) {
    DriveInput input = Stale();
    input.keyRightDown = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
    EXPECT_EQ(input.steerRatio, 1.0f);
}

TEST(FillFromKeyboard, BothSidesSteerStraightWithTheRatioOfTheRight) {
    DriveInput input = Stale();
    input.keyLeftDown = input.keyRightDown = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 1.0f);
}

TEST(FillFromKeyboard, ThrottleIsFour) {
    DriveInput input = Stale();
    input.keyThrottleDown = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.throttle, 4.0f);
}

TEST(FillFromKeyboard, ThrottleWithNitroInReverseIsMinusTwelve) {
    DriveInput input = Stale();
    input.keyThrottleDown = input.nitro = 1;
    input.reverse = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.throttle, -12.0f);
}

TEST(FillFromKeyboard, BrakeAndHandBrakeTogetherAreStillFour) {
    DriveInput input = Stale();
    input.keyBrakeDown = 1;
    input.handBrake = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST(FillFromKeyboard, TheHandBrakeAloneBrakesWithFour) {
    DriveInput input = Stale();
    input.handBrake = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST(FillFromKeyboard, NitroTriplesBrakeAndRatioButNotTheAngle) {
    DriveInput input = Stale();
    input.keyBrakeDown = input.keyRightDown = input.nitro = 1;
    FillFromKeyboard(input);
    EXPECT_EQ(input.brake, 12.0f);
    EXPECT_EQ(input.steerRatio, 3.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

// --- beside a path

DriveInput BesidePath(DriveInput input, float fromPath) {
    ClearBeforePath(input);
    input.steerTarget = fromPath;
    input.steerRatio = 0.9f;  // whatever a path leaves there is not to stay
    FillBesidePath(input);
    return input;
}

TEST(ClearBeforePath, ClearsTheFourDemands) {
    DriveInput input = Stale();
    ClearBeforePath(input);
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 0.0f);
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.brake, 0.0f);
}

TEST(FillBesidePath, WithoutAKeyThePathSteersAndTheCarRolls) {
    const DriveInput input = BesidePath(Stale(), 0.125f);
    EXPECT_EQ(input.steerTarget, 0.125f);
    EXPECT_EQ(input.steerRatio, 0.0f);
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.brake, 0.0f);
}

TEST(FillBesidePath, LeftOverrulesThePath) {
    DriveInput input = Stale();
    input.keyLeftDown = 1;
    input = BesidePath(input, 0.125f);
    EXPECT_EQ(input.steerTarget, -LargestSteering(input));
    EXPECT_EQ(input.steerRatio, -1.0f);
}

TEST(FillBesidePath, RightOverrulesThePath) {
    DriveInput input = Stale();
    input.keyRightDown = 1;
    input = BesidePath(input, -0.125f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
    EXPECT_EQ(input.steerRatio, 1.0f);
}

TEST(FillBesidePath, RightOverrulesLeft) {
    DriveInput input = Stale();
    input.keyLeftDown = input.keyRightDown = 1;
    input = BesidePath(input, 0.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
    EXPECT_EQ(input.steerRatio, 1.0f);
}

TEST(FillBesidePath, TheKeysGiveTheSpeed) {
    DriveInput input = Stale();
    input.keyThrottleDown = input.keyBrakeDown = 1;
    input.handBrake = input.reverse = 1;
    input = BesidePath(input, 0.0f);
    EXPECT_EQ(input.throttle, -4.0f);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST(FillBesidePath, NitroTriplesAllButTheAngle) {
    DriveInput input = Stale();
    input.keyThrottleDown = input.keyBrakeDown = input.keyLeftDown = input.nitro = 1;
    input = BesidePath(input, 0.0f);
    EXPECT_EQ(input.throttle, 12.0f);
    EXPECT_EQ(input.brake, 12.0f);
    EXPECT_EQ(input.steerRatio, -3.0f);
    EXPECT_EQ(input.steerTarget, -LargestSteering(input));
}

// --- gamepads

struct FillFromGamepadTest : testing::Test {
    enum : std::uint32_t { kForward = 0x8000, kBackward = 0x2000, kBrake = 0x4000, kHandBrake = 0x1000, kNitro = 0x200 };

    FillFromGamepadTest() {
        binding.joyForward = kForward;
        binding.joyBackward = kBackward;
        binding.joyBrake = kBrake;
        binding.joyHandBrake = kHandBrake;
        binding.joyNitro = kNitro;
        binding.joyThrottleAxis = 5;
    }

    void Fill() { FillFromGamepad(input, binding, devices); }
    void FillFromPad(const test::Pad& pad) {
        devices.pads[0] = pad;
        Fill();
    }
    void FillFromJoystick(std::uint32_t x, std::uint32_t y, std::uint32_t buttons = 0) {
        binding.joyDriver = 0;
        devices.joystick = JoyInfo{.wXpos = x, .wYpos = y, .wZpos = 32767, .wButtons = buttons};
        Fill();
    }

    test::FakeWindows log;
    test::FakeDevices devices{log};
    GamepadBinding binding;
    DriveInput input = Stale();
};

class FillFromXInputTest : public FillFromGamepadTest {};
class FillFromJoystickTest : public FillFromGamepadTest {};
class FillFromLostPadTest : public FillFromGamepadTest {};

TEST_F(FillFromXInputTest, AsksThePadOfItsPortOnceWithACleanRecord) {
    binding.joyPort = 3;
    devices.pads[3] = test::Pad{};
    Fill();
    EXPECT_EQ(log.calls, (std::vector<std::string>{"XInputGetState(3)"}));
    EXPECT_TRUE(devices.everyStateCameZeroed);
}

TEST_F(FillFromXInputTest, AxisZeroSteersByTheLeftOfTheDpad) {
    binding.joySteerAxis = 0;
    FillFromPad({.wButtons = kDpadLeft});
    EXPECT_EQ(input.steerRatio, -1.0f);
    EXPECT_EQ(input.steerTarget, -LargestSteering(input));
}

TEST_F(FillFromXInputTest, AxisZeroSteersByTheRightOfTheDpad) {
    binding.joySteerAxis = 0;
    FillFromPad({.wButtons = kDpadRight});
    EXPECT_EQ(input.steerRatio, 1.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

TEST_F(FillFromXInputTest, TheLeftOfTheDpadGoesBeforeItsRight) {
    binding.joySteerAxis = 0;
    FillFromPad({.wButtons = kDpadLeft | kDpadRight});
    EXPECT_EQ(input.steerRatio, -1.0f);
}

TEST_F(FillFromXInputTest, AxisZeroWithoutAKeySteersStraightAndKeepsTheRatio) {
    binding.joySteerAxis = 0;
    FillFromPad({.sThumbLX = 20000, .sThumbRX = 20000});
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 0.44f);
}

TEST_F(FillFromXInputTest, AxisOneSteersByTheLeftStick) {
    binding.joySteerAxis = 1;
    FillFromPad({.sThumbLX = 32767, .sThumbRX = -5});
    EXPECT_EQ(input.steerRatio, 1.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

TEST_F(FillFromXInputTest, AxisFourSteersByTheRightStick) {
    binding.joySteerAxis = 4;
    FillFromPad({.sThumbLX = -5, .sThumbRX = 32767});
    EXPECT_EQ(input.steerRatio, 1.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

TEST_F(FillFromXInputTest, TheCodesOfTheTriggersDoNotSteer) {
    for (const std::int32_t axis : {2, 5}) {
        input = Stale();
        binding.joySteerAxis = axis;
        FillFromPad({.wButtons = kDpadLeft, .bLeftTrigger = 255, .bRightTrigger = 255, .sThumbLX = 9, .sThumbRX = 9});
        EXPECT_EQ(input.steerTarget, 0.0f) << axis;
        EXPECT_EQ(input.steerRatio, 0.44f) << axis;
    }
}

TEST_F(FillFromXInputTest, TheFarthestLeftOfAStickIsJustBelowMinusOne) {
    FillFromPad({.sThumbLX = -32768});
    EXPECT_EQ(input.steerRatio, -32768.0f / 32767.0f);
    EXPECT_LT(input.steerRatio, -1.0f);
}

TEST_F(FillFromXInputTest, ThrottleAxisOneIsTheLeftStick) {
    binding.joyThrottleAxis = 1;
    FillFromPad({.bLeftTrigger = 9, .bRightTrigger = 9, .sThumbLY = 32767, .sThumbRY = 9});
    EXPECT_EQ(input.throttle, 4.0f);
}

TEST_F(FillFromXInputTest, ThrottleAxisFourIsTheRightStick) {
    binding.joyThrottleAxis = 4;
    FillFromPad({.bLeftTrigger = 9, .bRightTrigger = 9, .sThumbLY = 9, .sThumbRY = 32767});
    EXPECT_EQ(input.throttle, 4.0f);
}

TEST_F(FillFromXInputTest, ThrottleAxisTwoIsTheLeftTrigger) {
    binding.joyThrottleAxis = 2;
    FillFromPad({.bLeftTrigger = 255, .bRightTrigger = 9, .sThumbLY = 9, .sThumbRY = 9});
    EXPECT_EQ(input.throttle, 4.0f);
}

TEST_F(FillFromXInputTest, ThrottleAxisFiveIsTheRightTrigger) {
    binding.joyThrottleAxis = 5;
    FillFromPad({.bLeftTrigger = 9, .bRightTrigger = 255, .sThumbLY = 9, .sThumbRY = 9});
    EXPECT_EQ(input.throttle, 4.0f);
}

TEST_F(FillFromXInputTest, AFullTriggerInReverseIsMinusFour) {
    for (const std::int32_t axis : {2, 5}) {
        binding.joyThrottleAxis = axis;
        FillFromPad({.wButtons = kBackward, .bLeftTrigger = 255, .bRightTrigger = 255});
        EXPECT_EQ(input.throttle, -4.0f) << axis;
    }
}

TEST_F(FillFromXInputTest, ThrottleAxisZeroDoublesAndSquaresTheThrottleOfTheTickBefore) {
    binding.joyThrottleAxis = 0;
    input.throttle = 0.75f;
    FillFromPad({.bLeftTrigger = 255, .bRightTrigger = 255, .sThumbLY = 9, .sThumbRY = 9});
    EXPECT_EQ(input.throttle, 2.25f);
}

TEST_F(FillFromXInputTest, HalfDeflectionIsAQuarterOfTheDemand) {
    binding.joyThrottleAxis = 1;
    FillFromPad({.sThumbLY = 16384});
    EXPECT_NEAR(input.throttle, 1.0f, 1e-4f);  // measured 6e-5: half of 32767 is no whole number
}

TEST_F(FillFromXInputTest, AStickPulledBackNeitherDrivesNorBrakes) {
    for (const std::int32_t axis : {1, 4}) {
        binding.joyThrottleAxis = axis;
        FillFromPad({.sThumbLY = -32768, .sThumbRY = -32768});
        EXPECT_EQ(input.throttle, 0.0f) << axis;
        EXPECT_EQ(input.brake, 0.0f) << axis;
    }
}

TEST_F(FillFromXInputTest, TheForwardButtonEndsReverse) {
    input.reverse = 1;
    FillFromPad({.wButtons = kForward});
    EXPECT_EQ(input.reverse, 0);
}

TEST_F(FillFromXInputTest, TheBackwardButtonSetsReverse) {
    FillFromPad({.wButtons = kBackward});
    EXPECT_EQ(input.reverse, 1);
}

TEST_F(FillFromXInputTest, WithBothGearsHeldBackwardWins) {
    for (const std::uint8_t before : {std::uint8_t{0}, std::uint8_t{1}}) {
        input.reverse = before;
        FillFromPad({.wButtons = kForward | kBackward});
        EXPECT_EQ(input.reverse, 1);
    }
}

TEST_F(FillFromXInputTest, NoGearButtonKeepsTheGear) {
    for (const std::uint8_t before : {std::uint8_t{0}, std::uint8_t{1}}) {
        input.reverse = before;
        FillFromPad({});
        EXPECT_EQ(input.reverse, before);
    }
}

TEST_F(FillFromXInputTest, TheBrakeButtonIsHeldAsItsMaskAndBrakesWithFour) {
    FillFromPad({.wButtons = kBrake});
    EXPECT_EQ(input.keyBrakeDown, kBrake);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST_F(FillFromXInputTest, TheBrakeButtonLeavesTheThrottleAlone) {
    FillFromPad({.wButtons = kBrake, .bRightTrigger = 255});
    EXPECT_EQ(input.throttle, 4.0f);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST_F(FillFromXInputTest, TheHandBrakeButtonSetsTheFlagAndBrakesWithFour) {
    FillFromPad({.wButtons = kHandBrake});
    EXPECT_EQ(input.handBrake, 1);
    EXPECT_EQ(input.brake, 4.0f);
}

TEST_F(FillFromXInputTest, BrakeAndHandBrakeTogetherAreStillFour) {
    FillFromPad({.wButtons = kBrake | kHandBrake});
    EXPECT_EQ(input.brake, 4.0f);
}

TEST_F(FillFromXInputTest, TheNitroButtonIsHeldAsItsMaskAndTriplesAllButTheAngle) {
    FillFromPad({.wButtons = kNitro | kBrake, .bRightTrigger = 255, .sThumbLX = 32767});
    EXPECT_EQ(input.nitro, kNitro);
    EXPECT_EQ(input.throttle, 12.0f);
    EXPECT_EQ(input.brake, 12.0f);
    EXPECT_EQ(input.steerRatio, 3.0f);
    EXPECT_EQ(input.steerTarget, LargestSteering(input));
}

TEST_F(FillFromXInputTest, ReleasedButtonsClearTheirFlags) {
    input.handBrake = 1;
    input.nitro = input.keyBrakeDown = 1;
    FillFromPad({});
    EXPECT_EQ(input.handBrake, 0);
    EXPECT_EQ(input.nitro, 0u);
    EXPECT_EQ(input.keyBrakeDown, 0u);
}

TEST_F(FillFromXInputTest, AnyButtonOfAMaskOfSeveralIsEnough) {
    binding.joyHandBrake = kHandBrake | 1;
    FillFromPad({.wButtons = 1});
    EXPECT_EQ(input.handBrake, 1);
}

TEST_F(FillFromJoystickTest, AsksJoystickZeroWhateverThePort) {
    binding.joyPort = 3;
    FillFromJoystick(0, 0);
    EXPECT_EQ(log.calls, (std::vector<std::string>{"joyGetPos(0)"}));
}

TEST_F(FillFromJoystickTest, PushedForwardIsAThrottleOfFour) {
    FillFromJoystick(32767, 0);
    EXPECT_EQ(input.throttle, 4.0f);
    EXPECT_EQ(input.brake, 0.0f);
}

TEST_F(FillFromJoystickTest, PulledBackIsABrakeOfFourWithoutThrottle) {
    FillFromJoystick(32767, 65535);
    EXPECT_EQ(input.brake, 4.0f);
    EXPECT_EQ(input.throttle, 0.0f);
}

TEST_F(FillFromJoystickTest, PulledBackWithTheBrakeButtonAddsUp) {
    FillFromJoystick(32767, 65535, kBrake);
    EXPECT_EQ(input.brake, 8.0f);
}

TEST_F(FillFromJoystickTest, ForwardInReverseIsMinusFour) {
    FillFromJoystick(32767, 0, kBackward);
    EXPECT_EQ(input.throttle, -4.0f);
}

TEST_F(FillFromJoystickTest, BothEndsOfTheWheelAreFullLock) {
    FillFromJoystick(0, 32767);
    EXPECT_EQ(input.steerRatio, -1.0f);
    EXPECT_EQ(input.steerTarget, -input.rudderAngle / 180.0f * 3.1415927f);
    FillFromJoystick(65535, 32767);
    EXPECT_EQ(input.steerRatio, 1.0f);
    EXPECT_EQ(input.steerTarget, input.rudderAngle / 180.0f * 3.1415927f);
}

TEST_F(FillFromJoystickTest, WithBothGearsHeldForwardWins) {
    for (const std::uint8_t before : {std::uint8_t{0}, std::uint8_t{1}}) {
        input.reverse = before;
        FillFromJoystick(32767, 32767, kForward | kBackward);
        EXPECT_EQ(input.reverse, 0);
    }
}

TEST_F(FillFromJoystickTest, OneGearButtonSetsItsGear) {
    FillFromJoystick(32767, 32767, kBackward);
    EXPECT_EQ(input.reverse, 1);
    FillFromJoystick(32767, 32767, kForward);
    EXPECT_EQ(input.reverse, 0);
}

TEST_F(FillFromJoystickTest, ButtonsAreHeldAsTheirMasks) {
    FillFromJoystick(32767, 0, kBrake | kHandBrake | kNitro);
    EXPECT_EQ(input.keyBrakeDown, kBrake);
    EXPECT_EQ(input.handBrake, 1);
    EXPECT_EQ(input.nitro, kNitro);
    EXPECT_EQ(input.throttle, 12.0f);
    EXPECT_EQ(input.brake, 12.0f);
}

TEST_F(FillFromJoystickTest, ButtonsAboveTheSixteenthCount) {
    binding.joyBrake = 0x80000000u;
    FillFromJoystick(32767, 0, 0x80000000u);
    EXPECT_EQ(input.keyBrakeDown, 0x80000000u);
}

TEST_F(FillFromJoystickTest, OneThatIsNotThereReadsAsOneAtRest) {
    binding.joyDriver = 0;
    input.handBrake = 1;
    Fill();
    EXPECT_NEAR(input.steerTarget, 0.0f, 1e-4f);  // measured 1.1e-5: 32767 lies half a step off the middle
    EXPECT_NEAR(input.throttle, 0.0f, 1e-8f);     // measured 1e-9
    EXPECT_EQ(input.brake, 0.0f);
    EXPECT_EQ(input.handBrake, 0);
}

TEST_F(FillFromLostPadTest, SquaresTheLastThrottleAtEachTick) {
    input.throttle = 1.5f;
    for (const float expected : {2.25f, 5.0625f, 25.62890625f}) {
        Fill();
        EXPECT_EQ(input.throttle, expected);
    }
}

TEST_F(FillFromLostPadTest, AThrottleOfOneStays) {
    input.throttle = 1.0f;
    for (int i = 0; i < 5; ++i) Fill();
    EXPECT_EQ(input.throttle, 1.0f);
}

TEST_F(FillFromLostPadTest, AThrottleOfZeroStays) {
    input.throttle = 0.0f;
    for (int i = 0; i < 5; ++i) Fill();
    EXPECT_EQ(input.throttle, 0.0f);
    EXPECT_EQ(input.brake, 0.0f);
}

TEST_F(FillFromLostPadTest, ASmallThrottleDecays) {
    input.throttle = 0.5f;
    Fill();
    Fill();
    EXPECT_EQ(input.throttle, 0.0625f);
}

TEST_F(FillFromLostPadTest, ARunawayThrottleEndsAtInfinityAndNotInATrap) {
    input.throttle = 4.0f;
    for (int i = 0; i < 40; ++i) Fill();
    EXPECT_EQ(input.throttle, std::numeric_limits<float>::infinity());
}

TEST_F(FillFromLostPadTest, ANegativeThrottleBecomesBrakeOnce) {
    input.throttle = -3.0f;
    input.reverse = 1;
    Fill();
    EXPECT_EQ(input.brake, 9.0f);
    EXPECT_EQ(input.throttle, 0.0f);
    Fill();
    EXPECT_EQ(input.brake, 0.0f);
}

TEST_F(FillFromLostPadTest, SteersStraightAndKeepsTheRatio) {
    Fill();
    EXPECT_EQ(input.steerTarget, 0.0f);
    EXPECT_EQ(input.steerRatio, 0.44f);
}

TEST_F(FillFromLostPadTest, HeldButtonsStayAsTheyWere) {
    input.throttle = 1.0f;
    input.keyBrakeDown = kBrake;
    input.nitro = kNitro;
    Fill();
    EXPECT_EQ(input.brake, 12.0f);
    EXPECT_EQ(input.throttle, 3.0f);
}

TEST_F(FillFromLostPadTest, PortMinusOneIsAPadThatIsNotThere) {
    binding.joyPort = -1;
    devices.pads = {test::Pad{}, test::Pad{}, test::Pad{}, test::Pad{}};
    input.throttle = 1.5f;
    Fill();
    EXPECT_EQ(input.throttle, 2.25f);
}

// --- all arithmetic, bit for bit

TEST(LargestSteering, DividesFirstAndMultipliesThen) {
    TestRandom random(TestSeed(41));
    for (int i = 0; i < TestRounds(10'000); ++i) {
        DriveInput input;
        input.rudderAngle = random.Between(0.0f, 90.0f);
        const volatile float turns = input.rudderAngle / 180.0f;
        ASSERT_EQ(LargestSteering(input), turns * 3.1415927f) << test::Digits(input.rudderAngle);
    }
}

/// Any float in single precision: each step of a calculation is rounded on its own, whatever the compiler would like to do.
float Round(float value) {
    volatile float rounded = value;
    return rounded;
}

float PlainA(const DriveInput& input) { return Round(Round(input.rudderAngle / 180.0f) * 3.1415927f); }

void PlainNitro(DriveInput& input) {
    if (input.nitro) {
        input.throttle = Round(input.throttle * 3.0f);
        input.brake = Round(input.brake * 3.0f);
        input.steerRatio = Round(input.steerRatio * 3.0f);
    }
}

void PlainMouse(DriveInput& input, const Point3& pos, const Point3& anchor) {
    float s = Round(Round(pos.x - anchor.x) * 0.003f);
    if (s < -1.0f) s = -1.0f;
    if (s > 1.0f) s = 1.0f;
    input.steerTarget = s;
    input.steerRatio = s;
    input.steerTarget = Round(s * PlainA(input));
    input.throttle = Round(Round(anchor.y - pos.y) * 0.01f);
    if (input.throttle > 0.0f) {
        input.throttle = Round(input.throttle * input.throttle);
        if (input.reverse) input.throttle = -input.throttle;
        input.brake = 0.0f;
    } else {
        input.brake = Round(input.throttle * input.throttle);
        input.throttle = 0.0f;
    }
}

void PlainKeyboard(DriveInput& input) {
    input.steerTarget = 0.0f;
    input.steerRatio = 0.0f;
    input.throttle = 0.0f;
    input.brake = 0.0f;
    if (input.keyLeftDown) {
        input.steerTarget = Round(input.steerTarget - PlainA(input));
        input.steerRatio = -1.0f;
    }
    if (input.keyRightDown) {
        input.steerTarget = Round(input.steerTarget + PlainA(input));
        input.steerRatio = 1.0f;
    }
    if (input.keyThrottleDown) input.throttle = Round(input.throttle + 4.0f);
    if (input.reverse) input.throttle = -input.throttle;
    if (input.keyBrakeDown || input.handBrake) input.brake = Round(input.brake + 4.0f);
    PlainNitro(input);
}

void PlainPath(DriveInput& input, float fromPath) {
    input.throttle = 0.0f;
    input.brake = 0.0f;
    input.steerTarget = fromPath;
    input.steerRatio = 0.0f;
    if (input.keyLeftDown) {
        input.steerTarget = Round(Round(-input.rudderAngle / 180.0f) * 3.1415927f);
        input.steerRatio = -1.0f;
    }
    if (input.keyRightDown) {
        input.steerTarget = PlainA(input);
        input.steerRatio = 1.0f;
    }
    if (input.keyThrottleDown) input.throttle = Round(input.throttle + 4.0f);
    if (input.reverse) input.throttle = -input.throttle;
    if (input.keyBrakeDown || input.handBrake) input.brake = Round(input.brake + 4.0f);
    PlainNitro(input);
}

void PlainButtons(DriveInput& input, const GamepadBinding& binding, std::uint32_t b) {
    input.handBrake = (b & binding.joyHandBrake) ? 1 : 0;
    input.nitro = b & binding.joyNitro;
    input.keyBrakeDown = b & binding.joyBrake;
}

void PlainJoystick(DriveInput& input, const GamepadBinding& binding, const JoyInfo& info) {
    if (info.wButtons & binding.joyBackward) input.reverse = 1;
    if (info.wButtons & binding.joyForward) input.reverse = 0;
    PlainButtons(input, binding, info.wButtons);
    const float x = Round(Round(Round(float(info.wXpos) / 65535.0f) * 2.0f) - 1.0f);
    input.steerTarget = Round(Round(Round(x * input.rudderAngle) / 180.0f) * 3.1415927f);
    input.steerRatio = x;
    input.throttle = -Round(Round(Round(float(info.wYpos) / 65535.0f) * 4.0f) - 2.0f);
}

void PlainXInput(DriveInput& input, const GamepadBinding& binding, const test::Pad& pad) {
    const std::uint32_t b = pad.wButtons;
    if (b & binding.joyForward) input.reverse = 0;
    if (b & binding.joyBackward) input.reverse = 1;
    PlainButtons(input, binding, b);
    switch (binding.joySteerAxis) {
        case 1:
            input.steerTarget = input.steerRatio = Round(float(pad.sThumbLX) / 32767.0f);
            break;
        case 4:
            input.steerTarget = input.steerRatio = Round(float(pad.sThumbRX) / 32767.0f);
            break;
        case 0:
            if (b & 4) {
                input.steerTarget = input.steerRatio = -1.0f;
            } else if (b & 8) {
                input.steerTarget = input.steerRatio = 1.0f;
            }
            break;
        default:
            break;
    }
    input.steerTarget = Round(input.steerTarget * PlainA(input));
    switch (binding.joyThrottleAxis) {
        case 1:
            input.throttle = Round(float(pad.sThumbLY) / 32767.0f);
            break;
        case 4:
            input.throttle = Round(float(pad.sThumbRY) / 32767.0f);
            break;
        case 2:
            input.throttle = Round(float(pad.bLeftTrigger) / 255.0f);
            break;
        case 5:
            input.throttle = Round(float(pad.bRightTrigger) / 255.0f);
            break;
        default:
            break;
    }
    input.throttle = Round(input.throttle * 2.0f);
    if (input.throttle < 0.0f) input.throttle = 0.0f;
}

void PlainGamepad(DriveInput& input, const GamepadBinding& binding, const JoyInfo& joystick,
                  const std::optional<test::Pad>& pad) {
    input.steerTarget = 0.0f;
    input.brake = 0.0f;
    if (binding.joyDriver == 0) {
        PlainJoystick(input, binding, joystick);
    } else if (pad) {
        PlainXInput(input, binding, *pad);
    }
    if (input.throttle > 0.0f) {
        input.throttle = Round(input.throttle * input.throttle);
        if (input.reverse) input.throttle = -input.throttle;
    } else {
        input.brake = Round(input.throttle * input.throttle);
        input.throttle = 0.0f;
    }
    if (input.keyBrakeDown || input.handBrake) input.brake = Round(input.brake + 4.0f);
    PlainNitro(input);
}

DriveInput AnyInput(TestRandom& random) {
    DriveInput input;
    input.rudderAngle = random.Between(0.0f, 90.0f);
    input.steerTarget = random.Between(-2.0f, 2.0f);
    input.throttle = random.Between(-5.0f, 5.0f);
    input.brake = random.Between(0.0f, 5.0f);
    input.steerRatio = random.Between(-3.0f, 3.0f);
    input.handBrake = std::uint8_t(random.Int(0, 1));
    input.reverse = std::uint8_t(random.Int(0, 1));
    input.keyLeftDown = std::uint32_t(random.Int(0, 1));
    input.keyRightDown = std::uint32_t(random.Int(0, 1));
    input.keyThrottleDown = std::uint32_t(random.Int(0, 1));
    input.keyBrakeDown = std::uint32_t(random.Int(0, 1));
    input.nitro = std::uint32_t(random.Int(0, 1));
    return input;
}

TEST(FillFromMouse, IsThePlainArithmeticBitForBit) {
    TestRandom random(TestSeed(42));
    for (int i = 0; i < TestRounds(20'000); ++i) {
        const DriveInput before = AnyInput(random);
        const Point3 pos = {float(random.Int(-32768, 32767)), float(random.Int(-32768, 32767)), 0.0f};
        const Point3 anchor = {float(random.Int(0, 400)) + pos.x * float(random.Int(0, 1)), float(random.Int(0, 200)), 0.0f};
        DriveInput filled = before, plain = before;
        FillFromMouse(filled, pos, anchor);
        PlainMouse(plain, pos, anchor);
        ASSERT_EQ(Bits(filled), Bits(plain)) << test::Digits(pos) << ' ' << test::Digits(anchor) << '\n' << Bits(before);
    }
}

TEST(FillFromKeyboard, IsThePlainArithmeticBitForBit) {
    TestRandom random(TestSeed(43));
    for (int i = 0; i < TestRounds(5'000); ++i) {
        const DriveInput before = AnyInput(random);
        DriveInput filled = before, plain = before;
        FillFromKeyboard(filled);
        PlainKeyboard(plain);
        ASSERT_EQ(Bits(filled), Bits(plain)) << Bits(before);
    }
}

TEST(FillBesidePath, IsThePlainArithmeticBitForBit) {
    TestRandom random(TestSeed(44));
    for (int i = 0; i < TestRounds(5'000); ++i) {
        const DriveInput before = AnyInput(random);
        const float fromPath = random.Between(-1.0f, 1.0f);
        DriveInput filled = before, plain = before;
        ClearBeforePath(filled);
        filled.steerTarget = fromPath;
        FillBesidePath(filled);
        PlainPath(plain, fromPath);
        ASSERT_EQ(Bits(filled), Bits(plain)) << test::Digits(fromPath) << '\n' << Bits(before);
    }
}

TEST_F(FillFromGamepadTest, IsThePlainArithmeticBitForBit) {
    TestRandom random(TestSeed(45));
    constexpr std::int32_t kAxes[] = {0, 1, 2, 4, 5};
    int lost = 0, joysticks = 0;
    for (int i = 0; i < TestRounds(50'000); ++i) {
        const auto anyBits = [&] { return std::uint32_t(random.Bits() & random.Bits() & random.Bits()); };
        const DriveInput before = AnyInput(random);
        binding = {.joyDriver = random.Int(0, 1),
                   .joyPort = 0,
                   .joySteerAxis = kAxes[random.Int(0, 4)],
                   .joyThrottleAxis = kAxes[random.Int(0, 4)],
                   .joyBrake = anyBits(),
                   .joyHandBrake = anyBits(),
                   .joyForward = anyBits(),
                   .joyBackward = anyBits(),
                   .joyNitro = anyBits()};
        devices.joystick = JoyInfo{.wXpos = std::uint32_t(random.Int(0, 65535)),
                                   .wYpos = std::uint32_t(random.Int(0, 65535)),
                                   .wZpos = 0,
                                   .wButtons = anyBits()};
        devices.pads[0].reset();
        if (random.Int(0, 7) != 0) {
            devices.pads[0] = test::Pad{.wButtons = std::uint16_t(anyBits()),
                                        .bLeftTrigger = std::uint8_t(random.Int(0, 255)),
                                        .bRightTrigger = std::uint8_t(random.Int(0, 255)),
                                        .sThumbLX = std::int16_t(random.Int(-32768, 32767)),
                                        .sThumbLY = std::int16_t(random.Int(-32768, 32767)),
                                        .sThumbRX = std::int16_t(random.Int(-32768, 32767)),
                                        .sThumbRY = std::int16_t(random.Int(-32768, 32767))};
        }
        lost += binding.joyDriver == 1 && !devices.pads[0];
        joysticks += binding.joyDriver == 0;

        DriveInput filled = before, plain = before;
        FillFromGamepad(filled, binding, devices);
        PlainGamepad(plain, binding, *devices.joystick, devices.pads[0]);
        ASSERT_EQ(Bits(filled), Bits(plain)) << "round " << i << " driver " << binding.joyDriver << '\n' << Bits(before);
    }
    EXPECT_GT(lost, 0);
    EXPECT_GT(joysticks, 0);
}

}  // namespace
}  // namespace tavrik
