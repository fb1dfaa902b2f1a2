#pragma once
/// The map that paints tyre tracks. So far it holds its settings alone: it has nothing to paint with.

#include <imtl.h>
#include <iparamb2.h>

#include "plugin/sdk_year.h"

namespace tavrik_plugin {

class TavrikTrackTex final : public Texmap {
 public:
    TavrikTrackTex();
    ~TavrikTrackTex() override;

    void DeleteThis() override { delete this; }
    void TAVRIK_GET_CLASS_NAME(s) override;
    SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
    Class_ID ClassID() override;
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return pblock_; }
    MSTR TAVRIK_SUB_ANIM_NAME override;
    int NumParamBlocks() override { return 1; }
    IParamBlock2* GetParamBlock(int) override { return pblock_; }
    IParamBlock2* GetParamBlockByID(BlockID id) override;

    RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                               BOOL propagate) override;
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return pblock_; }
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    void SetReference(int, RefTargetHandle target) override { pblock_ = static_cast<IParamBlock2*>(target); }

 private:
    IParamBlock2* pblock_ = nullptr;
};

}  // namespace tavrik_plugin
