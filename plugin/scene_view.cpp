#include "plugin/scene_view.h"

#include <cstdlib>

#include "plugin/block_values.h"
#include "plugin/convert.h"
#include "plugin/rig_owner.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

Class_ID ControlClassId() {
    static const Class_ID id = ToHost(tavrik::FindClass("TavrikControl")->id);
    return id;
}

}  // namespace

tavrik::ObjectClass ClassOf(Object* object) {
    return object != nullptr ? tavrik::ObjectClassOf(FromHost(object->ClassID())) : tavrik::ObjectClass::None;
}

tavrik::CarRig* RigOf(Object* object) {
    return ClassOf(object) == tavrik::ObjectClass::Tavrik ? static_cast<RigOwner*>(object)->Rig() : nullptr;
}

IParamBlock2* BlockOf(Animatable* thing) {
    return thing != nullptr ? thing->GetParamBlockByID(BlockID(tavrik::kBlockId)) : nullptr;
}

Control* OurControl(INode& node) {
    Control* const control = node.GetTMController();
    return control != nullptr && control->ClassID() == ControlClassId() ? control : nullptr;
}

// -------------------------------------------------------------------------------------------------------------------- objects

float ObjectView::GetFloat(std::int32_t param, std::int32_t entry) const {
    return FloatOf(BlockOf(TheObject()), param, 0, entry);
}

std::int32_t ObjectView::GetInt(std::int32_t param) const { return IntOf(BlockOf(TheObject()), param); }

tavrik::SceneNode& ObjectView::GetChildNode(std::int32_t) const { std::abort(); }

// ---------------------------------------------------------------------------------------------------------------------- nodes

tavrik::SceneNode* NodeView::GetNode(std::int32_t param) const { return view_.Of(NodeOf(BlockOf(TheObject()), param)); }

tavrik::Matrix3 NodeView::GetObjectTM() const { return FromHost(node_.GetObjectTM(0)); }

tavrik::SceneNode& NodeView::GetChildNode(std::int32_t i) const { return *view_.Of(node_.GetChildNode(i)); }

tavrik::ControlValues NodeView::GetControl() const {
    IParamBlock2* const block = BlockOf(OurControl(node_));
    tavrik::ControlValues values;
    values.Tavrik_Node = view_.Of(NodeOf(block, tavrik::ControlParam::Tavrik_Node));
    values.Object_Type = IntOf(block, tavrik::ControlParam::Object_Type);
    values.Axle_Num = IntOf(block, tavrik::ControlParam::Axle_Num);
    Matrix3 slot(TRUE);
    Interval valid = FOREVER;
    if (block != nullptr) block->GetValue(ParamID(tavrik::ControlParam::Slot_Position), 0, slot, valid);
    values.Slot_Position = FromHost(slot);
    return values;
}

void NodeView::InstallControl() {
    auto* const control = static_cast<Control*>(CreateInstance(CTRL_MATRIX3_CLASS_ID, ControlClassId()));
    if (control == nullptr) return;
    control->Copy(node_.GetTMController());
    node_.SetTMController(control);
}

void NodeView::SetControl(const tavrik::ControlValues& values) {
    IParamBlock2* const block = BlockOf(OurControl(node_));
    if (block == nullptr) return;
    INode* const master = values.Tavrik_Node != nullptr ? &SceneView::HostNode(*values.Tavrik_Node) : nullptr;
    if (block->SetValue(ParamID(tavrik::ControlParam::Tavrik_Node), 0, master) == FALSE) ClearControlMaster();
    SetInt(block, tavrik::ControlParam::Object_Type, values.Object_Type);
    SetInt(block, tavrik::ControlParam::Axle_Num, values.Axle_Num);
    Matrix3 slot = ToHost(values.Slot_Position);
    block->SetValue(ParamID(tavrik::ControlParam::Slot_Position), 0, slot);
}

void NodeView::ClearControlMaster() {
    if (IParamBlock2* const block = BlockOf(OurControl(node_))) {
        block->SetValue(ParamID(tavrik::ControlParam::Tavrik_Node), 0, static_cast<INode*>(nullptr));
    }
}

NodeView* SceneView::Of(INode* node) {
    if (node == nullptr) return nullptr;
    std::unique_ptr<NodeView>& view = nodes_[node];
    if (view == nullptr) view = std::make_unique<NodeView>(*this, *node);
    return view.get();
}

}  // namespace tavrik_plugin
