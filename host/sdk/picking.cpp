#include "host/sdk/picking.h"

#include "host/sdk/pick_mode_state.h"

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

INode* NodeUnderMouse(PickNodeCallback* filter) {
    return underMouse != nullptr && (filter == nullptr || filter->Filter(underMouse) != FALSE) ? underMouse : nullptr;
}

bool ClickNode(INode* node) {
    PickModeCallback* const mode = current;
    if (mode == nullptr) return false;
    ClickedView view;
    underMouse = node;
    Interface* const host = GetCOREInterface();
    const bool hit = mode->HitTest(host, nullptr, &view, IPoint2(0, 0), 0) != FALSE;
    const bool done = hit && mode->Pick(host, &view) != FALSE;
    underMouse = nullptr;
    if (done && current == mode) SetMode(nullptr);
    return hit;
}

void RightClickView() {
    PickModeCallback* const mode = current;
    if (mode == nullptr) return;
    ClickedView view;
    if (mode->RightClick(GetCOREInterface(), &view) != FALSE && current == mode) SetMode(nullptr);
}

}  // namespace tavrik_host
