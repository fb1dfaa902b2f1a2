#pragma once
/// The master's rollouts: which button does what.

#include <max.h>

namespace tavrik_plugin {

class Tavrik;

/// Gives the open rollouts their procedures, and loads the key bindings before they are shown.
void AttachPanels(Tavrik& master);
/// To be called before the rollouts close.
void EndPanels(Tavrik& master);
/// Lets go of a master that is being deleted.
void ForgetMaster(const Tavrik& master);

/// @return its window; whoever opened it unregisters and deletes it
HWND OpenAboutPage(Interface& ip, Tavrik& master);

}  // namespace tavrik_plugin
