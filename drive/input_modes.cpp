#include "drive/input_modes.h"

#include <algorithm>

namespace tavrik {
namespace {

constexpr float kNitroFactor = 3.0f;
constexpr float kDegreesInHalfTurn = 180.0f, kPi = 3.1415927f;

void ApplyNitro(DriveInput& input) {
    if (input.nitro == 0) return;
    input.throttle *= kNitroFactor;
    input.brake *= kNitroFactor;
    input.steerRatio *= kNitroFactor;
}

void ApplyThrottleKey(DriveInput& input) {
    if (input.keyThrottleDown != 0) input.throttle += kHeldDemand;
    if (input.reverse != 0) input.throttle = -input.throttle;
}

void ApplyBrakeKeys(DriveInput& input) {
    if (input.keyBrakeDown != 0 || input.handBrake != 0) input.brake += kHeldDemand;
}

bool Meets(std::uint32_t buttons, std::uint32_t mask) { return (buttons & mask) != 0; }

void TakeHeldButtons(DriveInput& input, const GamepadBinding& binding, std::uint32_t buttons) {
    input.handBrake = Meets(buttons, binding.joyHandBrake) ? 1 : 0;
    input.nitro = buttons & binding.joyNitro;
    input.keyBrakeDown = buttons & binding.joyBrake;
}

void ReadJoystick(DriveInput& input, const GamepadBinding& binding, Devices& devices) {
    // A joystick that doesn't answer reads as one at rest.
    JoyInfo info = {.wXpos = 32767, .wYpos = 32767, .wZpos = 32767, .wButtons = 0};
    devices.joyGetPos(0, info);
    // With both gears held, forward wins.
    if (Meets(info.wButtons, binding.joyBackward)) input.reverse = 1;
    if (Meets(info.wButtons, binding.joyForward)) input.reverse = 0;
    TakeHeldButtons(input, binding, info.wButtons);
    const float x = float(info.wXpos) / 65535.0f * 2.0f - 1.0f;
    input.steerTarget = x * input.rudderAngle / kDegreesInHalfTurn * kPi;
    input.steerRatio = x;
    input.throttle = -(float(info.wYpos) / 65535.0f * 4.0f - 2.0f);
}

void SteerByPad(DriveInput& input, std::int32_t axis, const XInputGamepad& pad) {
    if (axis == 1) {
        input.steerTarget = input.steerRatio = float(pad.sThumbLX) / 32767.0f;
    } else if (axis == 4) {
        input.steerTarget = input.steerRatio = float(pad.sThumbRX) / 32767.0f;
    } else if (axis == 0 && Meets(pad.wButtons, kDpadLeft)) {
        input.steerTarget = input.steerRatio = -1.0f;
    } else if (axis == 0 && Meets(pad.wButtons, kDpadRight)) {
        input.steerTarget = input.steerRatio = 1.0f;
    }
}

void ThrottleByPad(DriveInput& input, std::int32_t axis, const XInputGamepad& pad) {
    if (axis == 1) input.throttle = float(pad.sThumbLY) / 32767.0f;
    if (axis == 4) input.throttle = float(pad.sThumbRY) / 32767.0f;
    if (axis == 2) input.throttle = float(pad.bLeftTrigger) / 255.0f;
    if (axis == 5) input.throttle = float(pad.bRightTrigger) / 255.0f;
    input.throttle *= 2.0f;
    if (input.throttle < 0.0f) input.throttle = 0.0f;  // only the brake button brakes
}

void ReadXInput(DriveInput& input, const GamepadBinding& binding, Devices& devices) {
    XInputState state{};
    if (devices.XInputGetState(binding.joyPort, state) != 0) return;
    const XInputGamepad& pad = state.Gamepad;
    // With both gears held, backward wins: the other way round than on a joystick.
    if (Meets(pad.wButtons, binding.joyForward)) input.reverse = 0;
    if (Meets(pad.wButtons, binding.joyBackward)) input.reverse = 1;
    TakeHeldButtons(input, binding, pad.wButtons);
    SteerByPad(input, binding.joySteerAxis, pad);
    input.steerTarget = input.steerTarget * LargestSteering(input);
    ThrottleByPad(input, binding.joyThrottleAxis, pad);
}

}  // namespace

float LargestSteering(const DriveInput& input) { return input.rudderAngle / kDegreesInHalfTurn * kPi; }

void FillFromMouse(DriveInput& input, const Point3& mousePos, const Point3& mouseAnchor) {
    const float across = std::clamp((mousePos.x - mouseAnchor.x) * 0.003f, -1.0f, 1.0f);
    input.steerRatio = across;
    input.steerTarget = across * LargestSteering(input);
    const float up = (mouseAnchor.y - mousePos.y) * 0.01f;
    if (up > 0.0f) {
        input.throttle = up * up;
        if (input.reverse != 0) input.throttle = -input.throttle;
        input.brake = 0.0f;
    } else {
        input.brake = up * up;
        input.throttle = 0.0f;
    }
}

void FillFromKeyboard(DriveInput& input) {
    input.steerTarget = input.steerRatio = input.throttle = input.brake = 0.0f;
    if (input.keyLeftDown != 0) {
        input.steerTarget -= LargestSteering(input);
        input.steerRatio = -1.0f;
    }
    if (input.keyRightDown != 0) {
        input.steerTarget += LargestSteering(input);
        input.steerRatio = 1.0f;
    }
    ApplyThrottleKey(input);
    ApplyBrakeKeys(input);
    ApplyNitro(input);
}

void FillFromGamepad(DriveInput& input, const GamepadBinding& binding, Devices& devices) {
    input.steerTarget = 0.0f;
    input.brake = 0.0f;
    if (binding.joyDriver == 1) {
        ReadXInput(input, binding, devices);
    } else {
        ReadJoystick(input, binding, devices);
    }
    const float demand = input.throttle;
    if (demand > 0.0f) {
        input.throttle = demand * demand;
        if (input.reverse != 0) input.throttle = -input.throttle;
    } else {
        input.brake = demand * demand;
        input.throttle = 0.0f;
    }
    ApplyBrakeKeys(input);
    ApplyNitro(input);
}

void ClearBeforePath(DriveInput& input) { input.steerTarget = input.steerRatio = input.throttle = input.brake = 0.0f; }

void FillBesidePath(DriveInput& input) {
    input.steerRatio = 0.0f;
    if (input.keyLeftDown != 0) {
        input.steerTarget = -LargestSteering(input);
        input.steerRatio = -1.0f;
    }
    if (input.keyRightDown != 0) {
        input.steerTarget = LargestSteering(input);
        input.steerRatio = 1.0f;
    }
    ApplyThrottleKey(input);
    ApplyBrakeKeys(input);
    ApplyNitro(input);
}

}  // namespace tavrik
