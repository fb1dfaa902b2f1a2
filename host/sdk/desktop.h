#pragma once
/// What surrounds the host: windows, devices, the user's files, and whoever takes the wheel in the user's place. Each program
/// supplies its own; a plug-in asks for them here where there is no window system to call.

#include <cstdint>
#include <string>

#include "drive/devices.h"
#include "drive/drive_host.h"
#include "drive/file_store.h"
#include "drive/window_layer.h"

namespace tavrik {

class StandLayer;  // see drive/damper_stand.h

struct Desktop {
    // Nothing is owned; each outlives the scene.
    WindowLayer* windows = nullptr;
    Devices* devices = nullptr;
    FileStore* controls = nullptr;   // the key bindings
    StandLayer* stand = nullptr;     // the dialog with the damper stand; null: its button does nothing
    TargetDriver* driver = nullptr;  // drives in place of the scene's own target; null: that one drives
    std::uint64_t seed = 1;          // of the random numbers of the runs to come
    bool stopAtBadNumbers = false;   // end a run, and its recording, before the first sample that isn't finite
    std::string complaint;           // why a plug-in refused data or ended a run, one sentence; whoever reads it clears it
};

/// The one of this process. Its pointers are null until a program has set them.
Desktop& TheDesktop();

}  // namespace tavrik
