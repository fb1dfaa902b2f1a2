#pragma once
/// Gamepads and steering wheels, as the two classic interfaces report them.

#include <cstdint>

namespace tavrik {

/// A joystick of the multimedia interface. Axes run from 0 to 65535, 32767 or so at rest, Y growing towards the driver.
struct JoyInfo {
    std::uint32_t wXpos, wYpos, wZpos;
    std::uint32_t wButtons;  // one bit a button
};

struct XInputGamepad {
    std::uint16_t wButtons;  // one bit a button
    std::uint8_t bLeftTrigger, bRightTrigger;
    std::int16_t sThumbLX, sThumbLY, sThumbRX, sThumbRY;  // right and up are positive
};

struct XInputState {
    std::uint32_t dwPacketNumber;
    XInputGamepad Gamepad;
};

constexpr std::uint32_t kDpadLeft = 4, kDpadRight = 8;  // bits of XInputGamepad::wButtons
constexpr std::int32_t kXInputUsers = 4;

class Devices {
 public:
    virtual ~Devices() = default;
    /// @return 0 when the joystick answered
    virtual std::uint32_t joyGetPos(std::uint32_t id, JoyInfo& info) = 0;
    /// @param user  0..3; any other number is a pad that isn't there
    /// @return 0 when the pad answered
    virtual std::uint32_t XInputGetState(std::int32_t user, XInputState& state) = 0;
};

/// Which of the two interfaces a setting means: 1 is XInput, anything else the multimedia joystick.
std::int32_t ResolveDriver(std::int32_t value);

/// Which XInput user a setting means: 1..4 are users 0..3, 0 is the first pad that answers or -1, anything else user 0.
std::int32_t ResolvePort(std::int32_t value, Devices& devices);

}  // namespace tavrik
