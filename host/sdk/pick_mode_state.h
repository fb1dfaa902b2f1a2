#pragma once
/// The bodies of the host interface's calls about pick modes.

#include "host/sdk/pickmode.h"

namespace tavrik_host {

/// @param mode  null ends the present one
void SetMode(PickModeCallback* mode);
PickModeCallback* CurrentMode();
/// @return null where nothing lies that `filter` lets through
INode* NodeUnderMouse(PickNodeCallback* filter);

}  // namespace tavrik_host
