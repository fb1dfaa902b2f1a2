#pragma once

#include <string>

namespace tavrik_host {

/// Loads the plug-in `tavrik.dlo` from the file that the environment variable TAVRIK_PLUGIN names, else from beside the running
/// program or from where it was built or installed with it.
///
/// @param problem  on false: one sentence that names the file, or the places where it was looked for
bool LoadTavrikPlugin(std::string& problem);

}  // namespace tavrik_host
