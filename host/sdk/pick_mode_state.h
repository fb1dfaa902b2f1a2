#pragma once
/// The bodies of the host interface's calls about pick modes.

#include "host/sdk/pickmode.h"

namespace tavrik_host {

/// @param mode  null ends the present one
void SetMode(PickModeCallback* mode);
PickModeCallback* CurrentMode();
/// The nearest node at a pixel of a view's window, or the one that is being clicked by hand.
/// @param filter  which nodes may be picked; those that may not hide none behind them. Null: all
/// @return null where there is none
INode* NodeUnderMouse(HWND window, IPoint2 m, PickNodeCallback* filter);

}  // namespace tavrik_host
