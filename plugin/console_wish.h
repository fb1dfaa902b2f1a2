#pragma once

namespace tavrik_plugin {

/// Whether whoever started the host wants to see what the plug-in prints.
/// @param variable  what NORVANE_SHOW_CONSOLE holds, null where it isn't set: a whole number other than 0 means yes, decimal,
///                  octal (0...) or hexadecimal (0x...); what follows the number doesn't count
bool WantsConsole(const char* variable);

}  // namespace tavrik_plugin
