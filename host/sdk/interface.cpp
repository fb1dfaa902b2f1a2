#include <algorithm>
#include <cassert>

#include "host/sdk/max.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/pick_mode_state.h"
#include "host/sdk/scene.h"
#include "host/sdk/standin.h"
#include "host/sdk/wire_colors.h"

namespace tavrik_host {
namespace {

class HostInterface final : public Interface {
 public:
    INode* GetRootNode() override { return &TheScene().Root(); }
    INode* GetINodeByHandle(ULONG handle) override { return TheScene().Find(handle); }
    TimeValue GetTime() override { return TheScene().time; }
    void SetTime(TimeValue t, BOOL redraw) override {
        TheScene().time = t;
        PanelChanged();
        if (redraw != FALSE) RedrawViews(t, REDRAW_NORMAL, nullptr);
    }
    Interval GetAnimRange() override { return TheScene().range; }
    void SetAnimRange(Interval range) override {
        assert(range.Start() <= range.End());
        TheScene().range = range;
    }
    void RedrawViews(TimeValue, DWORD, ReferenceTarget*) override { ++TheScene().redraws; }
    void* CreateInstance(SClass_ID sclass, Class_ID id) override { return ::CreateInstance(sclass, id); }
    INode* CreateObjectNode(Object* object) override {
        if (object == nullptr) return nullptr;
        MSTR stem;
        object->InitNodeName(stem);
        INode* const node = CreateNode(object, TheScene().UniqueName(stem.data()));
        node->SetWireColor(WireColorOf(object->ClassID()));
        return node;
    }
    void DeleteNode(INode* node, BOOL redraw, BOOL) override {
        if (node == nullptr) return;
        TheScene().DeleteNode(*node);
        if (redraw != FALSE) RedrawViews(GetTime(), REDRAW_NORMAL, nullptr);
    }
    int GetSelNodeCount() override { return int(TheScene().selection.size()); }
    INode* GetSelNode(int i) override {
        assert(i >= 0 && i < GetSelNodeCount());
        return TheScene().selection[std::size_t(i)];
    }
    void SelectNode(INode* node, int clearSel) override {
        if (clearSel != 0) TheScene().selection.clear();
        if (node != nullptr && node->IsRootNode() == 0 && node->Selected() == 0) TheScene().selection.push_back(node);
    }
    void ClearNodeSelection(BOOL redraw) override {
        TheScene().selection.clear();
        if (redraw != FALSE) RedrawViews(GetTime(), REDRAW_NORMAL, nullptr);
    }
    HWND AddRollupPage(HINSTANCE instance, const MCHAR* dlgTemplate, DLGPROC proc, const MCHAR* title, LPARAM param,
                       DWORD rollUpFlags, int category) override {
        return AddPage(instance, dlgTemplate, proc, title, param, rollUpFlags, category);
    }
    void DeleteRollupPage(HWND page) override { DeletePage(page); }
    void RegisterDlgWnd(HWND window) override { RegisterPage(window); }
    int UnRegisterDlgWnd(HWND window) override { return UnregisterPage(window); }
    void SetPickMode(PickModeCallback* mode) override { SetMode(mode); }
    void ClearPickMode() override { SetMode(nullptr); }
    PickModeCallback* GetCurPickMode() override { return CurrentMode(); }
    INode* PickNode(HWND window, IPoint2 m, PickNodeCallback* filt) override { return NodeUnderMouse(window, m, filt); }
};

}  // namespace
}  // namespace tavrik_host

Interface* GetCOREInterface() {
    static tavrik_host::HostInterface host;
    return &host;
}

void* CreateInstance(SClass_ID sclass, Class_ID id) {
    ClassDesc* const desc = tavrik_host::FindClass(sclass, id);
    return desc == nullptr ? nullptr : desc->Create(FALSE);
}

int GetTicksPerFrame() { return tavrik_host::TheScene().ticksPerFrame; }
