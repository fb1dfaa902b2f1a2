// Pick buttons of pages: a click on a node of the scene gives it to the button's parameter.

#include "host/sdk/panel_pages.h"
#include "host/sdk/pick_mode_state.h"
#include "host/sdk/pickmode.h"

namespace tavrik_host {
namespace {

bool Takes(IParamBlock2& block, const ParamDef& def, INode* node) {
    if (def.validator == nullptr) return true;
    PB2Value picked;
    picked.r = node;
    return def.validator->Validate(picked, block.GetOwner(), def.ID, 0) != FALSE;
}

/// While a pick button waits. There is one mouse, so there is one of these.
class ParamPicking final : public PickModeCallback, public PickNodeCallback {
 public:
    void Start(PanelWindow& page, PanelWindow& button, ParamID id) {
        page_ = &page;
        button_ = &button;
        id_ = id;
        SetMode(this);
    }
    bool IsFor(const PanelWindow& button) const { return CurrentMode() == this && button_ == &button; }
    bool IsOn(const PanelWindow& page) const { return CurrentMode() == this && page_ == &page; }

    BOOL Filter(INode* node) override {
        IParamBlock2* const block = BlockOfPage(*page_);
        const ParamDef* const def = block == nullptr ? nullptr : block->GetDesc()->FindParam(id_);
        return node != nullptr && def != nullptr && Takes(*block, *def, node) ? TRUE : FALSE;
    }
    BOOL HitTest(IObjParam* ip, HWND hWnd, ViewExp*, IPoint2 m, int) override {
        return ip->PickNode(hWnd, m, this) == nullptr ? FALSE : TRUE;
    }
    BOOL Pick(IObjParam*, ViewExp* vpt) override {
        IParamBlock2* const block = BlockOfPage(*page_);
        if (block != nullptr) PickNode(*block, id_, vpt->GetClosestHit());
        return TRUE;
    }
    BOOL RightClick(IObjParam*, ViewExp*) override { return TRUE; }
    void EnterMode(IObjParam*) override { Check(true); }
    void ExitMode(IObjParam*) override { Check(false); }
    PickNodeCallback* GetFilter() override { return this; }

 private:
    void Check(bool checked) {
        button_->checked = checked;
        PanelChanged();
    }

    PanelWindow *page_ = nullptr, *button_ = nullptr;  // good while the mode is on
    ParamID id_ = 0;
};

ParamPicking& ThePicking() {
    static auto* const picking = new ParamPicking;  // the last page may close when the program's own statics have gone
    return *picking;
}

}  // namespace

void EndPicking(const PanelWindow& page) {
    if (ThePicking().IsOn(page)) SetMode(nullptr);
}

void TogglePicking(PanelWindow& page, PanelWindow& button, ParamID id) {
    const bool wasOn = ThePicking().IsFor(button);
    SetMode(nullptr);
    if (!wasOn) ThePicking().Start(page, button, id);
}

bool PickNode(IParamBlock2& block, ParamID id, INode* node) {
    const ParamDef* def = block.GetDesc()->FindParam(id);
    if (def == nullptr || def->type != TYPE_INODE || !Takes(block, *def, node)) return false;
    return block.SetValue(id, 0, node) != FALSE;
}

}  // namespace tavrik_host
