#pragma once
/// The panel, set by what people type.

#include <string>
#include <string_view>

#include "host/sdk/panel_controls.h"

namespace tavrik_host {

/// Sets a control of the open panel by words such as "Length=50cm", "Dummy Size.X=120", "Bike Driving=on", "1023=press".
///
/// In front of "=" stand a control's label, its parameter's name, what is written on a button, or its number; before that,
/// where several go by it, the title of its page or group and a dot. Case doesn't count. Behind it stands a number (lengths in
/// scene units, or with mm, cm, m; times in frames, or with s), on or off, the text of a choice, the name of a node or none, or
/// press.
///
/// @param told     on true: what came of it, one line
/// @param problem  on false: one sentence
bool SetByWords(std::string_view words, std::string& told, std::string& problem);

}  // namespace tavrik_host
