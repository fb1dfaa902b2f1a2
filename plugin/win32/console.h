#pragma once

namespace tavrik_plugin {

/// A window for what the plug-in prints, where the user's environment asks for one.
void OpenConsole();
/// Lets it go, if there is one.
void CloseConsole();

}  // namespace tavrik_plugin
