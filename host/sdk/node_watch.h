#pragma once
/// Values that point at nodes without being references: they have to hear when a node goes.

#include <vector>

class INode;

namespace tavrik_host {

/// Something that holds such values. It is on the list of those who are told for as long as it lives.
class NodeWatcher {
 public:
    NodeWatcher();
    NodeWatcher(const NodeWatcher&) = delete;
    NodeWatcher& operator=(const NodeWatcher&) = delete;
    virtual ~NodeWatcher();
    /// Called while `node` is still whole, just before it goes. Every value that points there has to be cleared.
    virtual void ForgetNode(INode* node) = 0;
};

/// Tells all watchers. They may come and go meanwhile: one that goes is not called any more, one that comes isn't either.
void ForgetNode(INode* node);

}  // namespace tavrik_host
