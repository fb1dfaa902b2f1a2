#include "plugin/track_texture.h"

#include "plugin/classes.h"
#include "plugin/wide_text.h"

namespace tavrik_plugin {
namespace {

RigClassDesc& TheClass() { return ClassNamed("TavrikTrackTex"); }

}  // namespace

TavrikTrackTex::TavrikTrackTex() { TheClass().MakeAutoParamBlocks(this); }

TavrikTrackTex::~TavrikTrackTex() { DeleteAllRefsFromMe(); }

void TavrikTrackTex::TAVRIK_GET_CLASS_NAME(s) { s = WideText(TheClass().Identity().className); }

Class_ID TavrikTrackTex::ClassID() { return TheClass().ClassID(); }

MSTR TavrikTrackTex::TAVRIK_SUB_ANIM_NAME { return StringOf(tavrik::kParametersString); }

IParamBlock2* TavrikTrackTex::GetParamBlockByID(BlockID id) {
    return pblock_ != nullptr && pblock_->ID() == id ? pblock_ : nullptr;
}

RefResult TavrikTrackTex::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message == REFMSG_TARGET_DELETED && hTarget == pblock_) pblock_ = nullptr;
    return REF_SUCCEED;
}

RefTargetHandle TavrikTrackTex::Clone(RemapDir& remap) {
    auto* const copy = new TavrikTrackTex;
    copy->ReplaceReference(0, remap.CloneRef(pblock_));
    BaseClone(this, copy, remap);
    return copy;
}

}  // namespace tavrik_plugin
