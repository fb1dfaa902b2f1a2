#pragma once

#include <functional>

namespace tavrik_studio {

using GlFunction = void (*)();
/// Finds a function of a graphics library by its name. Answers null for one that isn't there.
using GlLoader = std::function<GlFunction(const char*)>;

}  // namespace tavrik_studio
