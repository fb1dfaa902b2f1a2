#pragma once

#include <max.h>

namespace tavrik_plugin {

/// This library, for whoever loads resources from it. Null until the system's entry point has told it.
HINSTANCE ModuleHandle();
void KeepModuleHandle(HINSTANCE handle);

}  // namespace tavrik_plugin

// Before each function that the host looks up by name.
#ifdef _WIN32
#define TAVRIK_EXPORT extern "C" __declspec(dllexport)
#else
#define TAVRIK_EXPORT extern "C" __attribute__((visibility("default")))
#endif
