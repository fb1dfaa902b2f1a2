#pragma once
/// An object with one parameter of each kind and two rollouts, for tests of blocks and pages.

#include <functional>

#include "host/sdk/istdplug.h"
#include "host/sdk/param_block.h"

namespace edited {

enum : ParamID { kSize, kGravity, kSurface, kTarget, kButton, kFlag, kMult, kSlot, kMap, kOther, kKind, kGuest, kUnknown = 99 };

/// Takes no node but the one it was told, and counts how often it was asked.
class OnlyThisNode final : public PBValidator {
 public:
    using PBValidator::Validate;
    BOOL Validate(PB2Value& v) override {
        ++asked;
        return v.r == nullptr || v.r == welcome ? TRUE : FALSE;
    }
    INode* welcome = nullptr;
    int asked = 0;
};
OnlyThisNode& GuestValidator();

ClassDesc2& Class();
ParamBlockDesc2& Table();

class EditedObject final : public HelperObject {
 public:
    EditedObject();
    EditedObject(const EditedObject&) = delete;
    EditedObject& operator=(const EditedObject&) = delete;
    ~EditedObject() override { DeleteAllRefsFromMe(); }

    IParamBlock2* block = nullptr;
    int changes = 0;  // that it was told of
    std::function<void()> onChange;
    int begun = 0, ended = 0;                      // editing
    ParamMap2UserDlgProc* procOfSecond = nullptr;  // put on the second rollout as it opens
    bool withAbout = false;                        // opens a page of its own, meant to stand last
    HWND about = nullptr;
    Animatable *cameFrom = nullptr, *wentTo = nullptr;

    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage message, BOOL) override {
        if (message != REFMSG_CHANGE) return REF_SUCCEED;
        ++changes;
        if (onChange) onChange();
        return REF_SUCCEED;
    }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return block; }
    RefTargetHandle Clone(RemapDir& remap) override;
    void BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) override;
    void EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) override;
    Class_ID ClassID() override { return Class().ClassID(); }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    void InitNodeName(MSTR& s) override { s = L"Edited"; }

 protected:
    void SetReference(int, RefTargetHandle target) override { block = static_cast<IParamBlock2*>(target); }
};

}  // namespace edited
