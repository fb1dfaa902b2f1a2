#pragma once

#include <max.h>

#include <string>
#include <string_view>

namespace tavrik_plugin {

/// Plain ASCII in the host's wide characters.
std::wstring Widen(std::string_view text);
/// The way back, for messages: what isn't ASCII becomes UTF-8.
std::string Narrow(const MCHAR* text);

/// The same for texts that live as long as the process, such as names in tables: the host keeps pointers to them.
const MCHAR* WideText(std::string_view text);
/// Entry of the string table, such as the title of a rollout; empty for one that nothing reads.
const MCHAR* StringOf(int id);

}  // namespace tavrik_plugin
