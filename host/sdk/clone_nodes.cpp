#include <algorithm>
#include <cassert>

#include "host/sdk/scene.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

std::wstring WithoutNumber(const std::wstring& name) {
    const std::size_t last = name.find_last_not_of(L"0123456789");
    return last == std::wstring::npos ? std::wstring() : name.substr(0, last + 1);
}

/// What a node outside of the group uses too is an instance, and stays one.
ReferenceTarget* CloneOwn(ReferenceTarget* thing, std::span<INode* const> group, RemapDir& remap) {
    if (thing == nullptr) return nullptr;
    const auto& makers = thing->Dependents();
    const bool shared = std::any_of(makers.begin(), makers.end(), [&](ReferenceMaker* maker) {
        auto* const node = dynamic_cast<INode*>(maker);
        return node != nullptr && std::find(group.begin(), group.end(), node) == group.end();
    });
    return shared ? thing : remap.CloneRef(thing);
}

}  // namespace

std::vector<INode*> CloneNodes(std::span<INode* const> nodes) {
    Scene& scene = TheScene();
    DefaultRemapDir remap;
    std::vector<INode*> clones;
    // All nodes before anything that they carry, so that every link among them finds its clone at once.
    for (INode* node : nodes) {
        assert(node->IsRootNode() == 0 && remap.FindMapping(node) == nullptr);
        HostNode* const clone = scene.AddNode(scene.UniqueName(WithoutNumber(node->GetName())), nullptr, kAnyHandle);
        clone->SetWireColor(node->GetWireColor());
        remap.AddEntry(node, clone);
        clones.push_back(clone);
    }
    for (std::size_t i = 0; i < clones.size(); ++i) {
        clones[i]->ReplaceReference(HostNode::kParent, nodes[i]->GetParentNode());  // the directory mends it
        clones[i]->ReplaceReference(HostNode::kObject, CloneOwn(nodes[i]->GetObjectRef(), nodes, remap));
    }
    for (std::size_t i = 0; i < clones.size(); ++i) {
        ReferenceTarget* const control = CloneOwn(nodes[i]->GetTMController(), nodes, remap);
        clones[i]->ReplaceReference(HostNode::kController, control);
    }
    return clones;
}

}  // namespace tavrik_host
