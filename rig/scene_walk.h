#pragma once
/// The order in which everything here looks at a scene: depth first, a node before its children, children in their own order.

#include <cstdint>
#include <vector>

#include "rig/scene_node.h"

namespace tavrik {

/// Visits `root` and everything below it until `visit` answers false. Uses no stack of calls, so a chain of nodes may be as
/// long as memory allows. The tree must not change meanwhile.
///
/// @param visit  bool(SceneNode&): whether to go on
template <typename Visit>
void WalkScene(SceneNode& root, Visit visit) {
    std::vector<SceneNode*> waiting = {&root};  // the next one is the last
    while (!waiting.empty()) {
        SceneNode& node = *waiting.back();
        waiting.pop_back();
        if (!visit(node)) return;
        for (std::int32_t i = node.NumberOfChildren(); i-- > 0;) waiting.push_back(&node.GetChildNode(i));
    }
}

/// The first node whose object is the master that owns `rig`; null if there is none.
SceneNode* FindMasterNode(SceneNode& root, const CarRig& rig);

}  // namespace tavrik
