#pragma once
/// The library's dialogs, as a resource file holds them on Windows.

#include "host/sdk/dialog_template.h"

namespace tavrik_plugin {

/// @return null for a number that no dialog has. What it returns lives as long as the process
const tavrik_host::DialogTemplate* FindDialog(int number);

}  // namespace tavrik_plugin
