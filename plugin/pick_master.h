#pragma once

namespace tavrik_plugin {

class TavrikTrackTex;

/// Gives the mouse to whoever picks a master for a map; right-clicking gives it back.
void PickMasterFor(TavrikTrackTex& texture);
/// Ends that, if it is this map's: it is about to go.
void ForgetPicker(const TavrikTrackTex& texture);

}  // namespace tavrik_plugin
