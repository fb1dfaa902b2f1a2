#pragma once
/// How a driver's hands fill the `DriveInput` of one tick. A key or button held asks for 4; nitro makes that three times as
/// much. Analogue demands are squared, so that 2 at full deflection gives the 4 of a key. All arithmetic is single precision.
/// There is no smoothing and no dead zone: the steering slews in the solver.

#include <cstdint>

#include "drive/devices.h"
#include "solver/drive_input.h"
#include "solver/single_maths.h"

namespace tavrik {

/// The driving types of `DriveInput::drivingType`.
constexpr std::uint32_t kDriveByMouse = 0, kDriveByKeyboard = 1, kDriveByGamepad = 2, kDriveToTarget = 3, kDriveAlongPath = 4;

/// What a key or button held down asks for, of throttle and of brake.
constexpr float kHeldDemand = 4.0f;

/// Which device, axes and buttons a gamepad drives with. Buttons are masks.
struct GamepadBinding {
    std::int32_t joyDriver = 1;        // 0 the multimedia joystick, 1 XInput
    std::int32_t joyPort = 0;          // XInput user, -1 when no pad was found
    std::int32_t joySteerAxis = 1;     // 0 D-pad, 1 left stick, 4 right stick
    std::int32_t joyThrottleAxis = 5;  // 0 none, 1 left stick, 4 right stick, 2 left trigger, 5 right trigger
    std::uint32_t joyBrake = 0, joyHandBrake = 0, joyForward = 0, joyBackward = 0, joyNitro = 0;
};

/// The largest steering angle of `input`, radians.
float LargestSteering(const DriveInput& input);

/// The mouse is a joystick about the spot where the run was started, 333 pixels to full lock.
/// @param mousePos, mouseAnchor  pixels, y growing downwards
void FillFromMouse(DriveInput& input, const Point3& mousePos, const Point3& mouseAnchor);

void FillFromKeyboard(DriveInput& input);

/// A pad that doesn't answer leaves the throttle of the last tick, which is squared again.
void FillFromGamepad(DriveInput& input, const GamepadBinding& binding, Devices& devices);

/// Clears the demands before a path sets the steering.
void ClearBeforePath(DriveInput& input);
/// The keys beside a path: they give the speed, and overrule its steering.
void FillBesidePath(DriveInput& input);

}  // namespace tavrik
