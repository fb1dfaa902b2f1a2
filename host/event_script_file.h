#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "drive/event_script.h"

namespace tavrik {

/// Whether a driver's input holds events (a word in its second column) and not rows of numbers.
bool LooksLikeEvents(std::string_view text);

/// Reads a script of events, one a line: "seconds, event", seconds ascending. Events are
///
///     key-down NAME     key-up NAME            names as `tavrik controls` shows them, or ENTER, SPACE, ESC, digits
///     mouse X Y                                pixels in the drive window
///     wheel DELTA                              120 up (forward), -120 down (backward)
///     right-down        right-up               the mouse's right button: hand brake
///     click             leave                  the window gets or loses the user's attention
///     scrub SECONDS                            the timeline, while the run is stopped
///     pad CONTROL VALUE ...                    LX LY RX RY -1..1, LT RT 0..1, buttons A B X Y LB RB UP DOWN LEFT RIGHT 0 or 1
///     pad-lost                                 the gamepad is unplugged
///
/// Controls of the pad that an event doesn't name stay as they were. Blank lines and what follows a `#` are passed over.
///
/// @param name     stands for the file in messages
/// @param problem  on false: one sentence with file, line and fault; `script` then stays as it was
bool ReadEventScriptText(const std::string& name, std::string_view text, EventScript& script, std::string& problem);

}  // namespace tavrik
