#include "host/sdk/panel_pages.h"

namespace {

int held = 0;

/// A handle to a control, for as long as somebody holds it.
class Spinner final : public ISpinnerControl {
 public:
    explicit Spinner(HWND control) : control_(control) { ++held; }
    Spinner(const Spinner&) = delete;
    Spinner& operator=(const Spinner&) = delete;
    ~Spinner() override { --held; }
    HWND GetHwnd() override { return control_; }
    void Enable(BOOL enable) override { EnableWindow(control_, enable); }
    void Disable() override { EnableWindow(control_, FALSE); }
    BOOL IsEnabled() override { return IsWindowEnabled(control_); }

 private:
    HWND control_;
};

}  // namespace

ISpinnerControl* GetISpinner(HWND control) {
    return control == nullptr || control->page == nullptr ? nullptr : new Spinner(control);
}

void ReleaseISpinner(ISpinnerControl* spinner) { delete spinner; }

int tavrik_host::HeldSpinners() { return held; }
