#include "host/sdk/imtl.h"
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

/// A map's rollouts in the material editor.
class MapPages final : public IAutoMParamDlg {
 public:
    MapPages(ClassDesc2& desc, ReferenceTarget& map) : desc_(desc), map_(&map) { Open(); }
    Class_ID ClassID() override { return desc_.ClassID(); }
    void SetThing(ReferenceTarget* thing) override {
        Close();
        map_ = thing;
        Open();
    }
    ReferenceTarget* GetThing() override { return map_; }
    void SetTime(TimeValue) override {}
    void ReloadDialog() override {}
    void ActivateDlg(BOOL) override {}
    void DeleteThis() override {
        Close();
        delete this;
    }

 private:
    void Open() {
        if (map_ != nullptr) desc_.BeginEditParams(GetCOREInterface(), map_, 0, nullptr);
    }
    void Close() {
        if (map_ != nullptr) desc_.EndEditParams(GetCOREInterface(), map_, 0, nullptr);
    }

    ClassDesc2& desc_;
    ReferenceTarget* map_;
};

}  // namespace

IAutoMParamDlg* ClassDesc2::CreateParamDlgs(HWND, IMtlParams*, ReferenceTarget* obj) {
    return obj == nullptr ? nullptr : new MapPages(*this, *obj);
}

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
