// What Windows reads out of the library's file by itself, for the host that stands in for it.

#include "plugin/module.h"
#include "plugin/standin/dialog_templates.h"
#include "plugin/wide_text.h"

namespace {

const MCHAR* FindString(int id) {
    const MCHAR* const text = tavrik_plugin::StringOf(id);
    return *text == 0 ? nullptr : text;
}

}  // namespace

/// Comes first, as the system's entry point does: from now on the library knows itself.
TAVRIK_EXPORT const tavrik_host::LibraryResources* LibResources(HINSTANCE module) {
    static constexpr tavrik_host::LibraryResources kResources = {FindString, tavrik_plugin::FindDialog};
    tavrik_plugin::KeepModuleHandle(module);
    return &kResources;
}
