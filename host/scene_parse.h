#pragma once

#include "host/gltf_meshes.h"
#include "host/scene_records.h"

namespace tavrik_host {

/// Reads an opened file to records, with or without our extension. Refuses (`SceneFault`) whatever the scene couldn't take, so
/// that what is left to go wrong is what plug-ins say to their own data.
SceneRecords ParseScene(const GltfFile& gltf, GltfNumbers& numbers);

/// The parts of it. Settings, objects and controllers; nothing without our extension.
void ParseExtension(const GltfFile& gltf, SceneRecords& records);
/// Nodes of the scene that the file shows, with objects and controllers for those that our extension says nothing of.
void ParseNodes(const GltfFile& gltf, GltfNumbers& numbers, SceneRecords& records);

}  // namespace tavrik_host
