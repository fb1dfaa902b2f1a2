#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "drive/driver_script.h"

namespace tavrik {

/// Reads a driver's script: one row a line, "seconds, steering, throttle, brake, hand brake, reverse", seconds ascending from 0
/// or later, steering -1 (left) to 1, both pedals 0 to 1, both switches 0 or 1. Blank lines and what follows a `#` are passed
/// over, and so is a first line that begins with a letter: it names the columns.
///
/// @param problem  on false: one sentence with file, line and fault; `script` then stays as it was
bool ReadDriverScript(const std::filesystem::path& file, DriverScript& script, std::string& problem);

/// As `ReadDriverScript`, from text at hand. `name` stands for the file in messages.
bool ReadDriverScriptText(const std::string& name, std::string_view text, DriverScript& script, std::string& problem);

}  // namespace tavrik
