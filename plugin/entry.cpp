// What the host looks up in the library.

#include <max.h>

#include "plugin/classes.h"
#include "plugin/module.h"
#include "plugin/node_walk.h"
#include "plugin/scene_view.h"
#include "plugin/wheel_object.h"
#include "plugin/wide_text.h"
#ifdef _WIN32
#include "plugin/win32/console.h"
#endif

namespace tavrik_plugin {
namespace {

/// Before a render every wheel samples its tread. Only what a node carries itself counts, whatever is stacked on it.
void OnPreRender(void*, NotifyInfo*) {
    WalkNodes([](INode& node) {
        Object* const object = node.GetObjectRef();
        if (ClassOf(object) == tavrik::ObjectClass::Wheel) static_cast<WheelObject*>(object)->BuildPattern();
    });
}

}  // namespace
}  // namespace tavrik_plugin

TAVRIK_EXPORT const TCHAR* LibDescription() { return tavrik_plugin::StringOf(tavrik::kDescriptionString); }

TAVRIK_EXPORT int LibNumberClasses() { return int(tavrik_plugin::Classes().size()); }

TAVRIK_EXPORT ClassDesc* LibClassDesc(int i) {
    return i >= 0 && i < LibNumberClasses() ? tavrik_plugin::Classes()[std::size_t(i)] : nullptr;
}

TAVRIK_EXPORT ULONG LibVersion() { return tavrik::kLibraryVersion; }

TAVRIK_EXPORT int LibInitialize() {
    RegisterNotification(tavrik_plugin::OnPreRender, nullptr, NOTIFY_PRE_RENDER);
    return 1;
}

TAVRIK_EXPORT int LibShutdown() {
#ifdef _WIN32
    tavrik_plugin::CloseConsole();
#endif
    return 1;
}
