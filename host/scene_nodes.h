#pragma once
/// The scene as a rig's assembly sees it, for reports and readings. Nothing in the scene is changed through this view.

#include <map>
#include <memory>
#include <vector>

#include "host/sdk/max.h"
#include "rig/car_rig.h"
#include "rig/scene_node.h"

namespace tavrik_host {

class ViewedNode;

/// Nodes as they are at the moment the view is made. Each stands where its own controller puts it, whatever a recording says.
class SceneView {
 public:
    SceneView();
    ~SceneView();
    SceneView(const SceneView&) = delete;
    SceneView& operator=(const SceneView&) = delete;

    tavrik::SceneNode& Root();
    tavrik::SceneNode& Of(INode& node);
    static INode& HostNode(tavrik::SceneNode& node);
    /// Lets a master's node answer with this rig; not owned.
    void SetRig(INode& master, tavrik::CarRig& rig);

 private:
    friend class ViewedNode;
    ViewedNode& Add(INode& node, ViewedNode* parent);

    std::map<INode*, std::unique_ptr<ViewedNode>> nodes_;
};

}  // namespace tavrik_host
