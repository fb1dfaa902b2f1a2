#pragma once
/// What the things of a glTF file say of each other by number.

#include "host/scene_json.h"

namespace tavrik_host {

/// Checks the numbers of meshes, skins, cameras, materials, textures, images and samplers, which the host only passes on: what
/// comes in wrong would go out wrong. Refuses (`SceneFault`) what points at nothing. Accessors, buffer views and nodes are
/// others' business.
void CheckLinks(const Json& json);

}  // namespace tavrik_host
