#include "drive/event_script.h"

#include <algorithm>

#include "drive/input_modes.h"

namespace tavrik {

std::uint32_t DrivingTypeOf(const EventScript& script) {
    const auto holds = [&script](DriverEventKind kind) {
        return std::any_of(script.events.begin(), script.events.end(), [kind](const DriverEvent& e) { return e.kind == kind; });
    };
    if (holds(DriverEventKind::PadChange)) return kDriveByGamepad;
    if (holds(DriverEventKind::MouseMove)) return kDriveByMouse;
    return kDriveByKeyboard;
}

}  // namespace tavrik
