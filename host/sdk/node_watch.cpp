#include "host/sdk/node_watch.h"

#include <algorithm>

namespace tavrik_host {
namespace {

/// Never destroyed: watchers of static life may outlast any other static.
std::vector<NodeWatcher*>& Watchers() {
    static auto* const watchers = new std::vector<NodeWatcher*>;
    return *watchers;
}

}  // namespace

NodeWatcher::NodeWatcher() { Watchers().push_back(this); }

NodeWatcher::~NodeWatcher() { std::erase(Watchers(), this); }

void ForgetNode(INode* node) {
    const std::vector<NodeWatcher*> told = Watchers();
    for (NodeWatcher* watcher : told) {
        const std::vector<NodeWatcher*>& living = Watchers();
        if (std::find(living.begin(), living.end(), watcher) != living.end()) watcher->ForgetNode(node);
    }
}

}  // namespace tavrik_host
