#include "rig/scene_walk.h"

namespace tavrik {

SceneNode* FindMasterNode(SceneNode& root, const CarRig& rig) {
    SceneNode* found = nullptr;
    WalkScene(root, [&](SceneNode& node) {
        if (node.Rig() == &rig) found = &node;
        return found == nullptr;
    });
    return found;
}

}  // namespace tavrik
