#pragma once

#include <max.h>

#include "surface/surface_tree.h"

namespace tavrik_plugin {

/// Builds the ground from a node's mesh as it is at time 0, whatever the time of the scene. The tree stays as it was where
/// there is no node, it has no mesh, or its mesh can't be a ground; the user hears of the last.
void CaptureSurface(INode* node, tavrik::SurfaceTree& tree);

}  // namespace tavrik_plugin
