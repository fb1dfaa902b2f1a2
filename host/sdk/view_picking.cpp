#include "host/sdk/view_picking.h"

#include "host/sdk/panels.h"
#include "host/sdk/scene.h"

namespace tavrik_host {

INode* NodeAt(LineView& view, TimeValue t, IPoint2 m, const LineView::Filter& filter) {
    const std::vector<INode*> nodes = view.HitScene(t, HITTYPE_POINT, 0, &m, filter);
    return nodes.empty() ? nullptr : nodes.front();
}

std::vector<INode*> NodesIn(LineView& view, TimeValue t, IPoint2 a, IPoint2 b, bool crossing, const LineView::Filter& filter) {
    IPoint2 corners[] = {a, b};
    return view.HitScene(t, HITTYPE_RECT, crossing ? 1 : 0, corners, filter);
}

void SelectNodes(const std::vector<INode*>& nodes, SelectHow how) {
    Interface* const host = GetCOREInterface();
    if (how == SelectHow::Replace) host->ClearNodeSelection(FALSE);
    for (INode* const node : nodes) {
        if (how == SelectHow::Remove) {
            std::erase(TheScene().selection, node);
        } else {
            host->SelectNode(node, 0);
        }
    }
    host->RedrawViews(host->GetTime());
}

bool TakesNode(IParamBlock2& block, ParamID id, INode& node) {
    const ParamDef* const def = block.GetDesc()->FindParam(id);
    if (def == nullptr || def->type != TYPE_INODE) return false;
    PB2Value picked;
    picked.r = &node;
    return def->validator == nullptr || def->validator->Validate(picked, block.GetOwner(), id, 0) != FALSE;
}

INode* PickParamNode(LineView& view, TimeValue t, IPoint2 m, IParamBlock2& block, ParamID id) {
    INode* const node = NodeAt(view, t, m, [&](INode& candidate) { return TakesNode(block, id, candidate); });
    return node != nullptr && PickNode(block, id, node) ? node : nullptr;
}

}  // namespace tavrik_host
