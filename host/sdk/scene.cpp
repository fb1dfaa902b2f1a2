#include "host/sdk/scene.h"

#include <algorithm>
#include <cassert>
#include <unordered_set>

#include "host/sdk/node_watch.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

void Gather(INode& node, std::vector<INode*>& nodes) {
    for (int i = 0; i < node.NumberOfChildren(); ++i) {
        INode* const child = node.GetChildNode(i);
        nodes.push_back(child);
        Gather(*child, nodes);
    }
}

}  // namespace

Scene& TheScene() {
    // Never destroyed: nodes that are left at the end may need classes of libraries that are gone by then.
    static auto* const scene = new Scene;
    return *scene;
}

Scene::Scene() {
    root_ = new HostNode(0, L"Scene Root");
    nodes_.push_back(nullptr);
    ReplaceReference(0, root_);
}

HostNode* Scene::Find(ULONG handle) const {
    const auto found = byHandle_.find(handle);
    return found == byHandle_.end() ? nullptr : found->second;
}

HostNode* Scene::AddNode(const std::wstring& name, INode* parent, ULONG handle) {
    if (handle == kAnyHandle) {
        while (nextHandle == kAnyHandle || Find(nextHandle) != nullptr) ++nextHandle;
        handle = nextHandle++;
    } else {
        if (Find(handle) != nullptr) return nullptr;
        nextHandle = std::max(nextHandle, handle + 1);
    }
    auto* const node = new HostNode(handle, name);
    byHandle_[handle] = node;
    const auto place = std::find(nodes_.begin() + std::ptrdiff_t(firstFree_), nodes_.end(), nullptr) - nodes_.begin();
    if (place == std::ptrdiff_t(nodes_.size())) nodes_.push_back(nullptr);
    firstFree_ = std::size_t(place) + 1;
    ReplaceReference(int(place), node);
    node->ReplaceReference(HostNode::kController, NewDefaultMatrix3Controller());
    node->ReplaceReference(HostNode::kParent, parent == nullptr ? root_ : parent);
    return node;
}

void Scene::DeleteNode(INode& node) {
    if (node.IsRootNode() != 0) return;
    if (PanelNode() == &node) ClosePanel();
    while (node.NumberOfChildren() > 0) {
        // Whatever depends on the grandparent through the parent can't be depended on by it.
        [[maybe_unused]] const int attached = node.GetParentNode()->AttachChild(node.GetChildNode(0));
        assert(attached != 0);
    }
    ForgetNode(&node);
    node.DeleteMe();
}

std::wstring Scene::UniqueName(const std::wstring& stem) {
    std::unordered_set<std::wstring> taken;
    for (HostNode* node : nodes_) {
        if (node != nullptr) taken.insert(node->GetName());
    }
    for (int number = 1;; ++number) {
        const std::wstring digits = std::to_wstring(number);
        std::wstring name = stem + std::wstring(digits.size() < 3 ? 3 - digits.size() : 0, L'0') + digits;
        if (!taken.contains(name)) return name;
    }
}

RefResult Scene::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message != REFMSG_TARGET_DELETED) return REF_SUCCEED;
    auto* const node = static_cast<HostNode*>(hTarget);  // whatever the scene holds is one, and still whole
    std::erase(selection, node);
    byHandle_.erase(node->GetHandle());
    return REF_SUCCEED;
}

void Scene::SetReference(int i, RefTargetHandle target) {
    nodes_[std::size_t(i)] = static_cast<HostNode*>(target);
    if (target == nullptr) firstFree_ = std::min(firstFree_, std::size_t(i));
}

void ResetScene() {
    Scene& scene = TheScene();
    ClosePanel();
    const std::vector<INode*> nodes = AllNodes();
    // Children first, so that none is moved to another parent just before its end.
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) scene.DeleteNode(**node);
    static_cast<SceneSettings&>(scene) = {};
    PanelChanged();
}

void SetTicksPerFrame(int ticks) {
    assert(ticks > 0);
    TheScene().ticksPerFrame = ticks;
    PanelChanged();
}

double MetresPerUnit() { return TheScene().metresPerUnit; }

void SetMetresPerUnit(double metres) {
    assert(metres > 0.0);
    TheScene().metresPerUnit = metres;
    PanelChanged();
}

INode* CreateNode(Object* object, const std::wstring& name, INode* parent, ULONG handle) {
    HostNode* const node = TheScene().AddNode(name, parent, handle);
    if (node != nullptr && object != nullptr) node->ReplaceReference(HostNode::kObject, object);
    return node;
}

ULONG NextHandle() { return TheScene().nextHandle; }

void SetNextHandle(ULONG handle) { TheScene().nextHandle = handle; }

std::vector<INode*> AllNodes() {
    std::vector<INode*> nodes;
    Gather(TheScene().Root(), nodes);
    return nodes;
}

int RedrawCount() { return TheScene().redraws; }

}  // namespace tavrik_host
