#include "host/sdk/panel_pages.h"
#include "host/sdk/param_block.h"

namespace {

/// The block of `obj` with this table, or null.
IParamBlock2* BlockOf(ReferenceMaker& obj, const ParamBlockDesc2& desc) {
    if (desc.ref_no < 0) return obj.GetParamBlockByID(desc.ID);
    if (desc.ref_no >= obj.NumRefs()) return nullptr;
    auto* block = dynamic_cast<IParamBlock2*>(obj.GetReference(desc.ref_no));
    return block != nullptr && block->GetDesc() == &desc ? block : nullptr;
}

}  // namespace

void ClassDesc2::MakeAutoParamBlocks(ReferenceMaker* owner) {
    for (ParamBlockDesc2* desc : blocks_) {
        if ((desc->flags & P_AUTO_CONSTRUCT) == 0) continue;
        auto* block = new tavrik_host::ParamBlock(*desc);
        if (owner->ReplaceReference(desc->ref_no, block) == REF_FAIL) block->MaybeAutoDelete();
    }
}

void ClassDesc2::BeginEditParams(IObjParam*, ReferenceMaker* obj, ULONG, Animatable*) {
    for (const ParamBlockDesc2* desc : blocks_) {
        IParamBlock2* block = BlockOf(*obj, *desc);
        if (block != nullptr) tavrik_host::OpenMapPages(*block);
    }
}

void ClassDesc2::EndEditParams(IObjParam*, ReferenceMaker* obj, ULONG, Animatable*) {
    for (const ParamBlockDesc2* desc : blocks_) {
        IParamBlock2* block = BlockOf(*obj, *desc);
        if (block != nullptr) tavrik_host::CloseMapPages(*block);
    }
}
