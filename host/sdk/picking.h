#pragma once
/// The mouse of a view, as far as picking goes.

#include "host/sdk/pickmode.h"

namespace tavrik_host {

/// Clicks on a node while a pick mode is on. A mode that has what it wants ends.
/// @param node  null: on nothing
/// @return whether the mode took it
bool ClickNode(INode* node);
/// The right button, which ends a mode that wants to.
void RightClickView();

}  // namespace tavrik_host
