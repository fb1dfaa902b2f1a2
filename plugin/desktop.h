#pragma once
/// What surrounds the host: windows, devices, the user's file of key bindings. Each answers at once and for the whole life of
/// the process; where there is nothing behind it, it does nothing.

#include <cstdint>
#include <string_view>

#include "drive/damper_stand.h"
#include "drive/devices.h"
#include "drive/drive_host.h"
#include "drive/file_store.h"
#include "drive/window_layer.h"

namespace tavrik_plugin {

tavrik::WindowLayer& Windows();
tavrik::Devices& Pads();
tavrik::FileStore& ControlsFile();
/// Where the damper stand shows; null where there is no screen for it.
tavrik::StandLayer* StandWindows();

/// Who drives in place of a scene's own target, or null.
tavrik::TargetDriver* Driver();
/// Of the random numbers of the runs to come.
std::uint64_t RunSeed();
/// Whether a run is to end before the first sample that isn't finite.
bool StopsAtBadNumbers();
/// Tells why data was refused or a run was ended. One sentence; a later one takes its place.
void Complain(std::string_view sentence);
/// Shows a message with the stop icon under the product's name.
void ShowError(std::string_view text);

}  // namespace tavrik_plugin
