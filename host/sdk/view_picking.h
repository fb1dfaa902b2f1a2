#pragma once
/// A mouse in a view: what it is on, what it selects, and what it picks for whoever asked for a node.

#include <vector>

#include "host/sdk/iparamb2.h"
#include "host/sdk/line_view.h"

namespace tavrik_host {

/// The nearest node at a pixel: an object by its lines, a few pixels beside them too, a mesh by its triangles.
/// @param filter  which nodes are asked; a node that isn't hides none behind it
/// @return null where there is none
INode* NodeAt(LineView& view, TimeValue t, IPoint2 m, const LineView::Filter& filter = {});

/// All nodes in a rectangle, the nearest first.
/// @param a, b      two opposite corners
/// @param crossing  touching it is enough, else a node must lie in it as a whole
std::vector<INode*> NodesIn(LineView& view, TimeValue t, IPoint2 a, IPoint2 b, bool crossing,
                            const LineView::Filter& filter = {});

enum class SelectHow { Replace, Add, Remove };
/// Selects them, or takes them out of what is selected.
void SelectNodes(const std::vector<INode*>& nodes, SelectHow how = SelectHow::Replace);

// While a plug-in has set a pick mode, a click means what that mode says.
/// Whether the mode would take what is at a pixel: so that the mouse can show it.
bool CanClick(LineView& view, IPoint2 m, int flags = 0);
/// Clicks there. A mode that has what it wants ends. @return whether the mode took it
bool ClickView(LineView& view, IPoint2 m, int flags = 0);

/// Whether a parameter that holds a node takes this one, as its validator says. Nothing is set.
bool TakesNode(IParamBlock2& block, ParamID id, INode& node);
/// Sets such a parameter to the nearest node at a pixel that it takes.
/// @return that node; null, with nothing changed, where there is none
INode* PickParamNode(LineView& view, TimeValue t, IPoint2 m, IParamBlock2& block, ParamID id);

}  // namespace tavrik_host
