#pragma once

#include <max.h>

#include <vector>

namespace tavrik_plugin {

/// Visits every node of the host's scene from its root: depth first, a node before its children, children in their own order.
/// Uses no stack of calls, so a chain of nodes may be as long as memory allows. The tree must not change meanwhile.
///
/// @param visit  void(INode&)
template <typename Visit>
void WalkNodes(Visit visit) {
    std::vector<INode*> waiting = {GetCOREInterface()->GetRootNode()};  // the next one is the last
    while (!waiting.empty()) {
        INode* const node = waiting.back();
        waiting.pop_back();
        if (node == nullptr) continue;
        visit(*node);
        for (int i = node->NumberOfChildren(); i-- > 0;) waiting.push_back(node->GetChildNode(i));
    }
}

}  // namespace tavrik_plugin
