#pragma once
/// A recorded set of hands: which key, mouse or gamepad event happens at which second. It drives the same code that a live
/// driver does.

#include <cstdint>
#include <vector>

#include "drive/devices.h"

namespace tavrik {

enum class DriverEventKind : std::uint8_t {
    KeyDown,     // `code` is the virtual-key code
    KeyUp,       // likewise
    MouseMove,   // to `x`, `y`, pixels in the drive window
    MouseWheel,  // by `code`: below 1 is backward
    RightButtonDown,
    RightButtonUp,
    Click,  // on the window, which activates it
    LoseFocus,
    Scrub,      // the timeline to `x` seconds
    PadChange,  // the gamepad's state becomes `pad`
    PadLost,    // the gamepad is unplugged
};

struct DriverEvent {
    double seconds = 0.0;  // since the start of the script
    DriverEventKind kind = DriverEventKind::KeyDown;
    std::int32_t code = 0;
    float x = 0.0f, y = 0.0f;
    XInputGamepad pad{};
};

/// Events in ascending order of time.
struct EventScript {
    std::vector<DriverEvent> events;
};

/// The driving type that a script needs: by gamepad where one appears in it, else by mouse where the mouse moves, else by
/// keyboard.
std::uint32_t DrivingTypeOf(const EventScript& script);

}  // namespace tavrik
