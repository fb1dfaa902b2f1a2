#pragma once
/// Animations of a glTF file as keys of the host's transform controller.

#include <cstddef>
#include <map>

#include "host/gltf_meshes.h"
#include "host/scene_records.h"

namespace tavrik_host {

/// How a file's seconds become ticks.
struct FileTime {
    int ticksPerFrame;
    TimeValue secondZero;  // tick of second 0
};

/// Whether an animation's channel moves a node; others, of morph weights above all, stay what they are.
bool MovesNode(const Json& channel);

/// The motion of nodes, by their number in the file. Where several animations move a node in the same way, the first one
/// counts. Refuses (`SceneFault`) what is damaged.
/// @param wanted  whether a node's motion is asked for
std::map<std::size_t, PrsRecord> ReadKeys(const GltfFile& gltf, GltfNumbers& numbers, const std::vector<bool>& wanted,
                                          double metresPerUnit, const FileTime& time);

}  // namespace tavrik_host
