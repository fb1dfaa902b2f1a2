#include "plugin/control.h"

#include "plugin/classes.h"
#include "plugin/convert.h"
#include "plugin/scene_view.h"
#include "plugin/wide_text.h"
#include "rig/parameter_tables.h"
#include "rig/playback_rule.h"

namespace tavrik_plugin {
namespace {

using Param = tavrik::ControlParam;

constexpr int kBlockReference = tavrik::kBlockReference, kWrappedReference = 1;

RigClassDesc& TheClass() { return ClassNamed("TavrikControl"); }

/// What a node has by default, unless an artist has made our class that: then it would wrap itself without end.
Control* NewWrapped() {
    ClassDesc* const byDefault = GetDefaultController(CTRL_MATRIX3_CLASS_ID);
    if (byDefault == nullptr || byDefault->ClassID() != TheClass().ClassID()) return NewDefaultMatrix3Controller();
    return static_cast<Control*>(CreateInstance(CTRL_MATRIX3_CLASS_ID, Class_ID(PRS_CONTROL_CLASS_ID, 0)));
}

}  // namespace

TavrikControl::TavrikControl(BOOL loading) {
    TheClass().MakeAutoParamBlocks(this);
    if (loading == FALSE) ReplaceReference(kWrappedReference, NewWrapped());
}

TavrikControl::~TavrikControl() { DeleteAllRefsFromMe(); }

void TavrikControl::TAVRIK_GET_CLASS_NAME(s) { s = WideText(TheClass().Identity().getClassName); }

Class_ID TavrikControl::ClassID() { return TheClass().ClassID(); }

void TavrikControl::BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) {
    TheClass().BeginEditParams(ip, this, flags, prev);
}

void TavrikControl::EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) {
    TheClass().EndEditParams(ip, this, flags, next);
}

Animatable* TavrikControl::SubAnim(int i) {
    if (i == kBlockReference) return pblock_;
    return wrapped_;
}

IParamBlock2* TavrikControl::GetParamBlockByID(BlockID id) {
    return pblock_ != nullptr && pblock_->ID() == id ? pblock_ : nullptr;
}

RefResult TavrikControl::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message == REFMSG_TARGET_DELETED) {
        if (hTarget == pblock_) pblock_ = nullptr;
        if (hTarget == wrapped_) wrapped_ = nullptr;
    }
    return REF_SUCCEED;
}

RefTargetHandle TavrikControl::GetReference(int i) {
    if (i == kBlockReference) return pblock_;
    return i == kWrappedReference ? wrapped_ : nullptr;
}

void TavrikControl::SetReference(int i, RefTargetHandle target) {
    if (i == kBlockReference) {
        pblock_ = static_cast<IParamBlock2*>(target);
    } else if (i == kWrappedReference) {
        wrapped_ = static_cast<Control*>(target);
    }
}

RefTargetHandle TavrikControl::Clone(RemapDir& remap) {
    auto* const copy = new TavrikControl(TRUE);
    copy->ReplaceReference(kBlockReference, remap.CloneRef(pblock_));
    copy->ReplaceReference(kWrappedReference, remap.CloneRef(wrapped_));
    BaseClone(this, copy, remap);
    return copy;
}

TavrikControl::Following TavrikControl::Follow(TimeValue t, Interval& valid) const {
    INode* master = nullptr;
    if (pblock_ != nullptr) pblock_->GetValue(ParamID(Param::Tavrik_Node), t, master, valid);
    Object* const object = master != nullptr ? master->GetObjectRef() : nullptr;
    const tavrik::CarRig* const rig = RigOf(object);
    if (rig == nullptr) return {nullptr, 0, 0};
    int objectType = 0, index = 0;
    Interval ignored = FOREVER;
    pblock_->GetValue(ParamID(Param::Object_Type), t, objectType, ignored);
    pblock_->GetValue(ParamID(Param::Axle_Num), t, index, ignored);
    const bool follows = tavrik::FollowsRecording(ClassOf(object), rig, objectType, index);
    return {follows ? rig : nullptr, objectType, index};
}

void TavrikControl::GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method) {
    const Following following = Follow(t, valid);
    if (following.rig == nullptr) {
        if (wrapped_ != nullptr) wrapped_->GetValue(t, val, valid, method);
        return;
    }
    // The recording is in world space: what a parent would have put in front doesn't count.
    *static_cast<Matrix3*>(val) = ToHost(tavrik::AnswerTM(*following.rig, following.objectType, following.index, t));
    valid.SetInstant(t);
}

void TavrikControl::SetValue(TimeValue t, void* val, int commit, GetSetMethod method) {
    Interval ignored = FOREVER;
    if (Follow(t, ignored).rig != nullptr || wrapped_ == nullptr) return;  // a locked node can't be moved by hand
    wrapped_->SetValue(t, val, commit, method);
}

void TavrikControl::Copy(Control* from) {
    // Of another one of ours it takes what that one wraps, so there never are two layers.
    Control* const inner = from != nullptr && from->ClassID() == ClassID() ? static_cast<TavrikControl*>(from)->wrapped_ : from;
    if (inner != nullptr) {
        DefaultRemapDir remap;
        ReplaceReference(kWrappedReference, remap.CloneRef(inner));
    }
    NotifyDependents(FOREVER, 0, REFMSG_CHANGE);
    NotifyDependents(FOREVER, 0, REFMSG_CONTROLREF_CHANGE);
}

}  // namespace tavrik_plugin
