// Windows loads the library here. Built only there.

#include <max.h>
// Behind the host's headers, which bring it in their own way.
#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "plugin/console_wish.h"
#include "plugin/module.h"
#include "plugin/win32/console.h"

namespace tavrik_plugin {

void OpenConsole() {
    if (!WantsConsole(std::getenv("NORVANE_SHOW_CONSOLE"))) return;
    if (AllocConsole() == 0 && AttachConsole(ATTACH_PARENT_PROCESS) == 0) return;
    // What can't be reopened stays as it was: nothing else hangs on it.
    (void)std::freopen("conin$", "r", stdin);
    (void)std::freopen("conout$", "w", stdout);
    (void)std::freopen("conout$", "w", stderr);
}

void CloseConsole() { FreeConsole(); }

}  // namespace tavrik_plugin

BOOL WINAPI DllMain(HINSTANCE module, ULONG reason, LPVOID) {
    // At every call, so that threads which come and go find it as well.
    tavrik_plugin::OpenConsole();
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    tavrik_plugin::KeepModuleHandle(module);
    DisableThreadLibraryCalls(module);
    return TRUE;
}
