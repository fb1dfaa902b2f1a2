#include "host/sdk/panel_pages.h"

namespace {

int held = 0;

/// A handle to a control, for as long as somebody holds it.
class Button final : public ICustButton {
 public:
    explicit Button(HWND control) : control_(control) { ++held; }
    Button(const Button&) = delete;
    Button& operator=(const Button&) = delete;
    ~Button() override { --held; }
    HWND GetHwnd() override { return control_; }
    void Enable(BOOL enable) override { EnableWindow(control_, enable); }
    void Disable() override { EnableWindow(control_, FALSE); }
    BOOL IsEnabled() override { return IsWindowEnabled(control_); }
    void SetText(const MCHAR* text) override { SetWindowTextW(control_, text); }
    void SetType(CustButType type) override { control_->isCheckButton = type == CBT_CHECK; }
    void SetCheck(BOOL checked) override {
        control_->checked = checked != FALSE;
        tavrik_host::PanelChanged();
    }
    BOOL IsChecked() override { return control_->checked ? TRUE : FALSE; }
    void SetHighlightColor(COLORREF color) override { control_->highlight = color; }

 private:
    HWND control_;
};

}  // namespace

ICustButton* GetICustButton(HWND control) {
    return control == nullptr || control->page == nullptr ? nullptr : new Button(control);
}

void ReleaseICustButton(ICustButton* button) { delete button; }

int tavrik_host::HeldButtons() { return held; }
