#include "plugin/module.h"

namespace tavrik_plugin {
namespace {

HINSTANCE moduleHandle = nullptr;

}  // namespace

HINSTANCE ModuleHandle() { return moduleHandle; }
void KeepModuleHandle(HINSTANCE handle) { moduleHandle = handle; }

}  // namespace tavrik_plugin
