#pragma once
/// What moves the nodes of a locked car. It wraps the controller that the node had, and asks at each evaluation anew who
/// answers.

#include <iparamb2.h>

#include "plugin/sdk_year.h"
#include "rig/car_rig.h"

namespace tavrik_plugin {

class TavrikControl final : public Control {
 public:
    /// @param loading  the host will set both references; else a controller of the host's own is wrapped
    explicit TavrikControl(BOOL loading);
    ~TavrikControl() override;

    void DeleteThis() override { delete this; }
    void TAVRIK_GET_CLASS_NAME(s) override;
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override;
    void BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) override;
    void EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) override;
    int NumSubs() override { return 2; }
    Animatable* SubAnim(int i) override;
    IParamBlock2* GetParamBlock(int) override { return pblock_; }
    IParamBlock2* GetParamBlockByID(BlockID id) override;

    RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                               BOOL propagate) override;
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int i) override;
    // The host keeps both references.
    IOResult Save(ISave*) override { return IO_OK; }
    IOResult Load(ILoad* iload) override { return Control::Load(iload); }
    RefTargetHandle Clone(RemapDir& remap) override;

    void GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method) override;
    void SetValue(TimeValue t, void* val, int commit, GetSetMethod method) override;
    void Copy(Control* from) override;

 protected:
    void SetReference(int i, RefTargetHandle target) override;

 private:
    /// What the block says of the component, and whose recording moves it.
    struct Following {
        const tavrik::CarRig* rig;  // null: the wrapped controller answers
        int objectType, index;
    };
    /// @param valid  narrowed by what was read
    Following Follow(TimeValue t, Interval& valid) const;

    IParamBlock2* pblock_ = nullptr;
    Control* wrapped_ = nullptr;
};

}  // namespace tavrik_plugin
