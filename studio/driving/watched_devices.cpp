#include "studio/driving/watched_devices.h"

namespace tavrik_studio {

bool WatchedDevices::IsLost() {
    tavrik::JoyInfo position{};
    tavrik::XInputState state{};
    switch (device_) {
        case Device::Joystick:
            return inner_.joyGetPos(std::uint32_t(number_), position) != 0;
        case Device::Gamepad:
            return inner_.XInputGetState(number_, state) != 0;
        default:
            return false;
    }
}

std::uint32_t WatchedDevices::joyGetPos(std::uint32_t id, tavrik::JoyInfo& info) {
    const std::uint32_t answer = inner_.joyGetPos(id, info);
    if (answer == 0) {
        device_ = Device::Joystick;
        number_ = std::int32_t(id);
    }
    wasAskedInVain_ = wasAskedInVain_ || answer != 0;
    return answer;
}

std::uint32_t WatchedDevices::XInputGetState(std::int32_t user, tavrik::XInputState& state) {
    const std::uint32_t answer = inner_.XInputGetState(user, state);
    if (answer == 0) {
        device_ = Device::Gamepad;
        number_ = user;
    }
    wasAskedInVain_ = wasAskedInVain_ || answer != 0;
    return answer;
}

}  // namespace tavrik_studio
