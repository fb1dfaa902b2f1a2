#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/glb_writer.h"
#include "host/scene_json.h"
#include "host/scene_motion.h"

namespace tavrik_host {

/// Our extension at the root of a file, and the numbers in it by which nodes name their objects and controllers. Chunks become
/// buffer views of `glb`. Refuses (`SceneFault`) what a file can't hold.
class ExtensionWriter {
 public:
    /// @param nodes  in the order of the file
    ExtensionWriter(const std::vector<INode*>& nodes, tavrik::GlbWriter& glb);

    Json Root();
    /// Of one node.
    Json Node(INode& node) const;

 private:
    Json WriteThing(ReferenceTarget& thing, const std::string& name, bool isController);
    int NumberOf(ReferenceTarget& thing, std::vector<ReferenceTarget*>& list, std::map<ReferenceTarget*, int>& numbers);

    tavrik::GlbWriter& glb_;
    std::vector<ReferenceTarget*> objects_, controllers_;
    std::map<ReferenceTarget*, int> objectNumbers_, controllerNumbers_;
};

}  // namespace tavrik_host
