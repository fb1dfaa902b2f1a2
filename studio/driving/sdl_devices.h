#pragma once
/// Gamepads and steering wheels as they are plugged in.

#include <SDL.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "drive/devices.h"

namespace tavrik_studio {

/// Known gamepads are XInput users 0..3, in the order in which they came; a user keeps its number until its pad is unplugged.
/// All controllers are joysticks: wheels and whatever else is no known gamepad come first, as they have no other way to be
/// read. Joysticks are counted anew as some come and go, except while their order is held.
///
/// One to a process, on one thread. Devices are looked for, and looked at, with each question.
class SdlDevices final : public tavrik::Devices {
 public:
    SdlDevices();
    ~SdlDevices() override;
    SdlDevices(const SdlDevices&) = delete;
    SdlDevices& operator=(const SdlDevices&) = delete;

    /// While held, a joystick keeps its number, and that of one that went stays empty. For a run: nobody wants to find another
    /// wheel in his hands at full speed.
    void HoldOrder(bool hold);
    /// How many are plugged in now.
    int Joysticks();
    int Gamepads();

    std::uint32_t joyGetPos(std::uint32_t id, tavrik::JoyInfo& info) override;
    std::uint32_t XInputGetState(std::int32_t user, tavrik::XInputState& state) override;

 private:
    struct CloseDevice {
        void operator()(SDL_Joystick* joystick) const { SDL_JoystickClose(joystick); }
        void operator()(SDL_GameController* pad) const { SDL_GameControllerClose(pad); }
    };
    struct Joystick {
        std::unique_ptr<SDL_Joystick, CloseDevice> device;  // null: it went while the order was held
        SDL_JoystickID id = -1;
        bool isGamepad = false;
    };
    struct Gamepad {
        std::unique_ptr<SDL_GameController, CloseDevice> device;
        SDL_JoystickID id = -1;
        tavrik::XInputState last{};
    };

    void Poll();
    void DropUnplugged();
    void TakeNew();
    void Open(int index);
    void Sort();

    bool works_ = false, isHeld_ = false;
    std::vector<Joystick> joysticks_;
    std::array<Gamepad, tavrik::kXInputUsers> gamepads_;
};

}  // namespace tavrik_studio
