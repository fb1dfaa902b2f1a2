#pragma once
/// The host writes text in wide characters, files have UTF-8.

#include <string>
#include <string_view>

namespace tavrik_host {

/// What is no character comes out as U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// As above. A zero character ends the text, as it does for the host.
std::wstring FromUtf8(std::string_view text);

}  // namespace tavrik_host
