#include "host/sdk/node.h"

#include <algorithm>
#include <cassert>

#include "host/sdk/panel_pages.h"
#include "host/sdk/scene.h"

namespace tavrik_host {

HostNode::~HostNode() {
    assert(children_.empty());
    if (parent_ != nullptr) std::erase(parent_->children_, this);
}

void HostNode::SetName(const MCHAR* name) {
    name_ = name;
    PanelChanged();  // it may stand on a button
}

ObjectState HostNode::EvalWorldState(TimeValue t, BOOL) { return object_ == nullptr ? ObjectState() : object_->Eval(t); }

Matrix3 HostNode::GetNodeTM(TimeValue t, Interval* valid) {
    Interval span = FOREVER;
    Matrix3 frame = parent_ == nullptr ? Matrix3(TRUE) : parent_->GetNodeTM(t, &span);
    if (controller_ != nullptr) controller_->GetValue(t, &frame, span, CTRL_RELATIVE);
    if (valid != nullptr) *valid &= span;
    return frame;
}

void HostNode::SetNodeTM(TimeValue t, Matrix3& tm) {
    if (controller_ == nullptr) return;
    SetXFormPacket packet(tm, parent_ == nullptr ? Matrix3(TRUE) : parent_->GetNodeTM(t));
    controller_->SetValue(t, &packet);
}

INode* HostNode::GetChildNode(int i) {
    assert(i >= 0 && i < NumberOfChildren());
    return children_[std::size_t(i)];
}

int HostNode::AttachChild(INode* node, int keepPos) {
    if (node == nullptr || node->IsRootNode() != 0) return 0;
    auto* const child = static_cast<HostNode*>(node);
    if (child->parent_ == this) return 1;
    const TimeValue now = TheScene().time;
    Matrix3 place = child->GetNodeTM(now);
    if (child->ReplaceReference(kParent, this) != REF_SUCCEED) return 0;
    if (keepPos != 0) child->SetNodeTM(now, place);
    child->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    return 1;
}

int HostNode::Selected() {
    const std::vector<INode*>& selection = TheScene().selection;
    return std::find(selection.begin(), selection.end(), this) != selection.end() ? 1 : 0;
}

BOOL HostNode::SetTMController(Control* control) {
    if (control == nullptr || IsRootNode() != 0 || ReplaceReference(kController, control) != REF_SUCCEED) return FALSE;
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    return TRUE;
}

RefTargetHandle HostNode::GetReference(int i) {
    switch (i) {
        case kController:
            return controller_;
        case kObject:
            return object_;
        case kParent:
            return parent_;
        default:
            return nullptr;
    }
}

void HostNode::SetReference(int i, RefTargetHandle target) {
    if (i == kController) controller_ = static_cast<Control*>(target);
    if (i == kObject) object_ = static_cast<Object*>(target);
    if (i != kParent || target == parent_) return;
    if (parent_ != nullptr) std::erase(parent_->children_, this);
    parent_ = static_cast<HostNode*>(target);
    if (parent_ != nullptr) parent_->children_.push_back(this);
}

}  // namespace tavrik_host
