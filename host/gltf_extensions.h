#pragma once

#include <string_view>

namespace tavrik {

/// Whether a glTF file that requires an extension can be read by one who doesn't know it: it changes how a surface looks, but
/// not where it is.
bool IsHarmlessExtension(std::string_view name);

}  // namespace tavrik
