#pragma once
/// The motion of a scene as glTF animation has it.

#include <functional>
#include <optional>
#include <vector>

#include "host/scene_axes.h"
#include "host/scene_file.h"

namespace tavrik_host {

/// The nodes of the scene, each before its children, and where the parent of each stands in the list (-1: the root).
struct NodeTree {
    std::vector<INode*> nodes;
    std::vector<int> parents;
};
NodeTree TheNodes();

/// Keys of one node, one after the other, in the file's metres and axes.
struct BakedNode {
    std::size_t node = 0;  // in the tree
    std::vector<float> translations, rotations, scales;
    bool scaleChanges = false;
};

struct BakedMotion {
    std::vector<Placement>
        rest;  // beside the tree's nodes, each in its parent: at the first key, or as they stand without motion
    std::vector<float> seconds;    // of the keys, not negative; empty where nothing moves
    std::vector<BakedNode> nodes;  // those that move within their parents
    TimeValue secondZero = 0;      // its tick
};

/// Plays the scene. The time that it stands at doesn't matter. Refuses (`SceneFault`) frames that are not finite.
/// @param secondZero  tick of second 0; keys that lie before it, and none given, let time begin at the first key
/// @param goesOn      told how much is done, 0..1; where it answers false, the scene is refused. May be null
BakedMotion BakeMotion(const NodeTree& tree, BakedKeys keys, std::optional<TimeValue> secondZero,
                       const std::function<bool(double)>& goesOn = {});

}  // namespace tavrik_host
