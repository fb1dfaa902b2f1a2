#include "host/scene_nodes.h"

#include <cassert>

#include "host/rig_objects.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

constexpr int kWrappedReference = 1;

tavrik::Matrix3 ToRecord(const Matrix3& frame) {
    tavrik::Matrix3 record;
    for (int i = 0; i < 4; ++i) {
        const Point3 row = frame.GetRow(i);
        record.row[i] = {row.x, row.y, row.z};
    }
    return record;
}

/// The controller that a node has of its own, below what the plug-in put over it.
Control* OwnController(INode& node) {
    Control* control = node.GetTMController();
    if (control == nullptr || !HasTavrikControl(node)) return control;
    return dynamic_cast<Control*>(control->GetReference(kWrappedReference));
}

}  // namespace

class ViewedNode final : public tavrik::SceneNode {
 public:
    ViewedNode(SceneView& view, INode& node, const ViewedNode* parent) : view_(view), node_(node), place_(TRUE) {
        if (parent != nullptr) place_ = parent->place_;
        Interval valid = FOREVER;
        if (Control* own = OwnController(node); own != nullptr) own->GetValue(0, &place_, valid, CTRL_RELATIVE);
    }

    tavrik::ObjectClass Class() const override { return ClassOf(node_); }
    float GetFloat(std::int32_t param, std::int32_t entry) const override { return FloatParam(node_, param, entry); }
    std::int32_t GetInt(std::int32_t param) const override { return IntParam(node_, param); }
    tavrik::SceneNode* GetNode(std::int32_t param) const override { return Find(NodeParam(node_, param)); }
    tavrik::CarRig* Rig() const override { return rig; }
    tavrik::Matrix3 GetObjectTM() const override { return ToRecord(place_); }
    std::int32_t NumberOfChildren() const override { return std::int32_t(children.size()); }
    tavrik::SceneNode& GetChildNode(std::int32_t i) const override { return *children[std::size_t(i)]; }
    std::uint32_t GetHandle() const override { return node_.GetHandle(); }
    bool HasControl() const override { return HasTavrikControl(node_); }
    tavrik::ControlValues GetControl() const override;
    void InstallControl() override { assert(false); }
    void SetControl(const tavrik::ControlValues&) override { assert(false); }
    void ClearControlMaster() override { assert(false); }

    INode& Host() const { return node_; }
    std::vector<ViewedNode*> children;
    tavrik::CarRig* rig = nullptr;

 private:
    tavrik::SceneNode* Find(INode* node) const {
        const auto found = view_.nodes_.find(node);
        return found == view_.nodes_.end() ? nullptr : found->second.get();
    }

    SceneView& view_;
    INode& node_;
    Matrix3 place_;
};

tavrik::ControlValues ViewedNode::GetControl() const {
    using tavrik::ControlParam;
    IParamBlock2& block = *node_.GetTMController()->GetParamBlockByID(BlockID(tavrik::kBlockId));
    tavrik::ControlValues values;
    values.Tavrik_Node = Find(block.GetINode(ControlParam::Tavrik_Node));
    values.Object_Type = block.GetInt(ControlParam::Object_Type);
    values.Axle_Num = block.GetInt(ControlParam::Axle_Num);
    Matrix3 slot(TRUE);
    Interval valid = FOREVER;
    block.GetValue(ControlParam::Slot_Position, 0, slot, valid);
    values.Slot_Position = ToRecord(slot);
    return values;
}

SceneView::SceneView() {
    Add(*GetCOREInterface()->GetRootNode(), nullptr);
    for (INode* node : AllNodes()) Add(*node, nodes_.at(node->GetParentNode()).get());
}

SceneView::~SceneView() = default;

ViewedNode& SceneView::Add(INode& node, ViewedNode* parent) {
    auto viewed = std::make_unique<ViewedNode>(*this, node, parent);
    ViewedNode& added = *viewed;
    nodes_[&node] = std::move(viewed);
    if (parent != nullptr) parent->children.push_back(&added);
    return added;
}

tavrik::SceneNode& SceneView::Root() { return Of(*GetCOREInterface()->GetRootNode()); }
tavrik::SceneNode& SceneView::Of(INode& node) { return *nodes_.at(&node); }
INode& SceneView::HostNode(tavrik::SceneNode& node) { return static_cast<ViewedNode&>(node).Host(); }
void SceneView::SetRig(INode& master, tavrik::CarRig& rig) { nodes_.at(&master)->rig = &rig; }

}  // namespace tavrik_host
