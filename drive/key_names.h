#pragma once
/// The short names under which keys and gamepad buttons are shown and typed.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrik {

/// The name of a virtual-key code on a binding's button: "W", "SP", "F12". "UNK" for keys without a name, digits and
/// punctuation among them.
std::string_view KeyName(std::int32_t code);

/// The name of a gamepad value on a binding's button: "A", "RB"; the decimal number for any other than the six named buttons.
std::string ButtonName(std::int32_t value);

/// The virtual-key code that a typed name means: a name as KeyName gives it, a letter, a digit (the key with that digit), a
/// long name such as "SPACE" or "ENTER", or a code from 0x0 to 0xFF in hexadecimal with "0x" in front, for keys without any
/// name. Upper or lower case.
/// @return nothing for any other text, "UNK" among them
std::optional<std::int32_t> KeyCode(std::string_view name);

/// The gamepad value that a typed name means: a name as ButtonName gives it, numbers included. Upper or lower case.
/// @return nothing for any other text
std::optional<std::int32_t> ButtonCode(std::string_view name);

}  // namespace tavrik
