#pragma once

#include <max.h>

#include "drive/controller_setup.h"

namespace tavrik_plugin {

inline tavrik::WindowId WindowIdOf(HWND window) { return reinterpret_cast<tavrik::WindowId>(window); }
inline HWND WindowOf(tavrik::WindowId id) { return reinterpret_cast<HWND>(id); }

/// The controls of an open page, by way of the window system's calls.
tavrik::RolloutLayer& RolloutControls();

}  // namespace tavrik_plugin
