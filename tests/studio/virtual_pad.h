#pragma once
/// A controller that only exists for its program.

#include <SDL.h>

#include <cstdint>

namespace tavrik_studio::test {

class VirtualController {
 public:
    /// @param type  a gamepad, a wheel...
    explicit VirtualController(SDL_JoystickType type, int axes = SDL_CONTROLLER_AXIS_MAX,
                               int buttons = SDL_CONTROLLER_BUTTON_MAX)
        : index_(SDL_JoystickAttachVirtual(type, axes, buttons, 0)) {
        if (index_ >= 0) joystick_ = SDL_JoystickOpen(index_);
    }
    ~VirtualController() { Unplug(); }
    VirtualController(const VirtualController&) = delete;
    VirtualController& operator=(const VirtualController&) = delete;

    bool IsPlugged() const { return joystick_ != nullptr; }
    void Axis(int axis, std::int16_t value) { SDL_JoystickSetVirtualAxis(joystick_, axis, value); }
    void Button(int button, bool down) { SDL_JoystickSetVirtualButton(joystick_, button, down ? 1 : 0); }
    void Unplug() {
        if (joystick_ == nullptr) return;
        const SDL_JoystickID id = SDL_JoystickInstanceID(joystick_);
        SDL_JoystickClose(joystick_);
        joystick_ = nullptr;
        for (int i = SDL_NumJoysticks() - 1; i >= 0; --i) {
            if (SDL_JoystickGetDeviceInstanceID(i) == id) SDL_JoystickDetachVirtual(i);
        }
    }

 private:
    int index_;
    SDL_Joystick* joystick_ = nullptr;
};

}  // namespace tavrik_studio::test
