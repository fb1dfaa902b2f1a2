#pragma once
/// Who drives: a table of rows, or events that come to the window and the gamepad as a live driver's do.

#include <filesystem>
#include <string>

#include "drive/driver_script.h"
#include "drive/event_script.h"

namespace tavrik {

struct Hands {
    DriverScript rows;   // empty where `events` drive
    EventScript events;  // likewise

    bool ByEvents() const { return !events.events.empty(); }
};

/// @param input    empty: half throttle, straight on
/// @param problem  on false: one sentence that names file and fault
bool ReadHands(const std::filesystem::path& input, Hands& hands, std::string& problem);

}  // namespace tavrik
