#include "host/sdk/picking.h"

#include "host/sdk/pick_mode_state.h"
#include "host/sdk/view_picking.h"

namespace tavrik_host {
namespace {

PickModeCallback* current = nullptr;
INode* underMouse = nullptr;

/// The view that was clicked into.
class ClickedView final : public ViewExp {
 public:
    Point3 SnapPoint(const IPoint2&, IPoint2&, Matrix3*, DWORD) override { return {0, 0, 0}; }
    void SnapPreview(const IPoint2&, IPoint2&, Matrix3*, DWORD) override {}
    bool IsAlive() const override { return true; }
    INode* GetClosestHit() override { return underMouse; }
};

}  // namespace

void SetMode(PickModeCallback* mode) {
    if (current == mode) return;
    PickModeCallback* const before = current;
    current = mode;
    if (before != nullptr) before->ExitMode(GetCOREInterface());
    if (current == mode && mode != nullptr) mode->EnterMode(GetCOREInterface());
}

PickModeCallback* CurrentMode() { return current; }

INode* NodeUnderMouse(HWND window, IPoint2 m, PickNodeCallback* filter) {
    const auto lets = [filter](INode& node) { return filter == nullptr || filter->Filter(&node) != FALSE; };
    if (LineView* const view = ViewOf(window)) return NodeAt(*view, GetCOREInterface()->GetTime(), m, lets);
    return underMouse != nullptr && lets(*underMouse) ? underMouse : nullptr;
}

namespace {

/// @return whether the present mode took what lies there
bool Click(ViewExp& view, IPoint2 m, int flags) {
    PickModeCallback* const mode = current;
    if (mode == nullptr) return false;
    Interface* const host = GetCOREInterface();
    const bool hit = mode->HitTest(host, view.GetHWnd(), &view, m, flags) != FALSE;
    const bool done = hit && mode->Pick(host, &view) != FALSE;
    if (done && current == mode) SetMode(nullptr);
    return hit;
}

}  // namespace

bool ClickNode(INode* node) {
    ClickedView view;
    underMouse = node;
    const bool hit = Click(view, IPoint2(0, 0), 0);
    underMouse = nullptr;
    return hit;
}

bool CanClick(LineView& view, IPoint2 m, int flags) {
    return current != nullptr && current->HitTest(GetCOREInterface(), view.GetHWnd(), &view, m, flags) != FALSE;
}

bool ClickView(LineView& view, IPoint2 m, int flags) { return Click(view, m, flags); }

void RightClickView() {
    PickModeCallback* const mode = current;
    if (mode == nullptr) return;
    ClickedView view;
    if (mode->RightClick(GetCOREInterface(), &view) != FALSE && current == mode) SetMode(nullptr);
}

}  // namespace tavrik_host
