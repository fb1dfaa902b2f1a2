#include "plugin/rollout_controls.h"

#include "plugin/wide_text.h"

namespace tavrik_plugin {
namespace {

class PageControls final : public tavrik::RolloutLayer {
 public:
    void FillCombo(tavrik::WindowId rollout, std::int32_t control, std::span<const std::string_view> choices) override {
        const HWND combo = GetDlgItem(WindowOf(rollout), control);
        SendMessageW(combo, CB_RESETCONTENT, 0, 0);
        for (const std::string_view choice : choices) {
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(WideText(choice)));
        }
    }

    std::int32_t GetSelection(tavrik::WindowId rollout, std::int32_t control) const override {
        return std::int32_t(SendMessageW(GetDlgItem(WindowOf(rollout), control), CB_GETCURSEL, 0, 0));
    }

    void Show(tavrik::WindowId rollout, std::span<const tavrik::RolloutItem> items) override {
        for (const tavrik::RolloutItem& item : items) {
            const HWND control = GetDlgItem(WindowOf(rollout), item.control);
            if (item.text.empty()) {
                SendMessageW(control, CB_SETCURSEL, WPARAM(item.selection), 0);
            } else {
                SetWindowTextW(control, Widen(item.text).c_str());
            }
            EnableWindow(control, item.enabled ? TRUE : FALSE);
        }
    }
};

}  // namespace

tavrik::RolloutLayer& RolloutControls() {
    static PageControls controls;
    return controls;
}

}  // namespace tavrik_plugin
