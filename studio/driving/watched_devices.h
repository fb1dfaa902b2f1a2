#pragma once
/// Knows which controller a run is driven with, and whether it still answers.

#include <cstdint>

#include "drive/devices.h"

namespace tavrik_studio {

/// Passes questions on. A pad that stops answering leaves its last throttle behind, which grows from tick to tick, so whoever
/// watches a run ends it before it comes to that.
class WatchedDevices final : public tavrik::Devices {
 public:
    /// @param inner  outlives this
    explicit WatchedDevices(tavrik::Devices& inner) : inner_(inner) {}

    void BeginRun() {
        device_ = Device::None;
        wasAskedInVain_ = false;
    }
    /// Whether the run would be driven by a controller, and there is none.
    bool WasAskedInVain() const { return wasAskedInVain_ && device_ == Device::None; }
    /// Asks anew. @return whether a controller that had answered in this run no longer does
    bool IsLost();

    std::uint32_t joyGetPos(std::uint32_t id, tavrik::JoyInfo& info) override;
    std::uint32_t XInputGetState(std::int32_t user, tavrik::XInputState& state) override;

 private:
    enum class Device : std::uint8_t { None, Joystick, Gamepad };

    tavrik::Devices& inner_;
    Device device_ = Device::None;  // that has answered last
    std::int32_t number_ = 0;
    bool wasAskedInVain_ = false;
};

}  // namespace tavrik_studio
