#pragma once
/// A driven scene for tests of pictures, and hands that change what is in it.

#include <functional>
#include <string>

#include "host/scene_file.h"

namespace tavrik::test {

/// A drive over a plane: away, rolling freely, then brakes that lock every wheel. Made once for all tests of the program.
const std::string& DrivenScene();

/// The driven scene after somebody has worked on it with other programs. It is the one at hand while `edit` runs; before and
/// after there is none.
std::string EditedScene(const std::function<void(tavrik_host::SceneDocument&)>& edit);

}  // namespace tavrik::test
