#include "plugin/pick_master.h"

#include <max.h>

#include "plugin/scene_view.h"
#include "plugin/track_texture.h"

namespace tavrik_plugin {
namespace {

/// There is one mouse, so there is one of these.
class PickTavrikNode final : public PickModeCallback, public PickNodeCallback {
 public:
    TavrikTrackTex* texture = nullptr;  // that asked last

    BOOL Filter(INode* node) override {
        return node != nullptr && ClassOf(node->GetObjectRef()) == tavrik::ObjectClass::Tavrik ? TRUE : FALSE;
    }
    BOOL HitTest(IObjParam* ip, HWND hWnd, ViewExp*, IPoint2 m, int) override {
        return Filter(ip->PickNode(hWnd, m, GetFilter()));
    }
    BOOL Pick(IObjParam*, ViewExp* vpt) override {
        INode* const node = vpt->GetClosestHit();
        // Several nodes may lie upon each other, and the nearest need not be the one that was let through.
        if (texture != nullptr && Filter(node) != FALSE) texture->TakeMaster(*node);
        return TRUE;
    }
    BOOL RightClick(IObjParam*, ViewExp*) override { return TRUE; }
    void EnterMode(IObjParam*) override {
        if (texture != nullptr) texture->CheckPickButton(true);
    }
    void ExitMode(IObjParam*) override {
        if (texture != nullptr) texture->CheckPickButton(false);
    }
    PickNodeCallback* GetFilter() override { return this; }
};

PickTavrikNode& ThePicker() {
    static auto& picker = *new PickTavrikNode;  // never freed: the host may hold it to its very end
    return picker;
}

}  // namespace

void PickMasterFor(TavrikTrackTex& texture) {
    PickTavrikNode& picker = ThePicker();
    Interface* const host = GetCOREInterface();
    // Another map may have asked before, whose button is to come up again.
    if (picker.texture != &texture && host->GetCurPickMode() == &picker) host->ClearPickMode();
    picker.texture = &texture;
    host->SetPickMode(&picker);
}

void ForgetPicker(const TavrikTrackTex& texture) {
    PickTavrikNode& picker = ThePicker();
    if (picker.texture != &texture) return;
    picker.texture = nullptr;
    Interface* const host = GetCOREInterface();
    if (host->GetCurPickMode() == &picker) host->ClearPickMode();
}

}  // namespace tavrik_plugin
