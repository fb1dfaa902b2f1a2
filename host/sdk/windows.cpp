#include "host/sdk/panel_pages.h"

using tavrik_host::PanelWindow;

HWND GetDlgItem(HWND page, int control) {
    if (page == nullptr || page->page != nullptr) return nullptr;  // controls have none of their own
    if (page->layout != nullptr) {
        const auto found = page->controls.find(control);
        return found == page->controls.end() ? nullptr : found->second.get();
    }
    auto& item = page->controls[control];
    if (item == nullptr) {
        item = std::make_unique<PanelWindow>();
        item->id = control;
        item->page = page;
    }
    return item.get();
}

/// @return whether it was disabled before, as every window call of this kind answers
BOOL EnableWindow(HWND window, BOOL enable) {
    if (window == nullptr) return FALSE;
    const bool wasDisabled = !window->enabled;
    window->enabled = enable != FALSE;
    tavrik_host::PanelChanged();
    return wasDisabled ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND window) { return window != nullptr && window->enabled ? TRUE : FALSE; }

BOOL SetWindowTextW(HWND window, const wchar_t* text) {
    if (window == nullptr) return FALSE;
    window->text = text == nullptr ? L"" : text;
    tavrik_host::PanelChanged();
    return TRUE;
}

std::intptr_t SetWindowLongPtrW(HWND window, int index, std::intptr_t value) {
    if (window == nullptr || index != GWLP_USERDATA) return 0;
    return std::exchange(window->userData, value);
}

std::intptr_t GetWindowLongPtrW(HWND window, int index) {
    return window == nullptr || index != GWLP_USERDATA ? 0 : window->userData;
}

namespace {

constexpr LRESULT kComboError = -1;

/// Choosing by message tells nobody: only what the user chooses is a command.
LRESULT SendToControl(PanelWindow& control, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != CB_GETCURSEL) tavrik_host::PanelChanged();
    switch (message) {
        case CB_ADDSTRING:
            control.items.emplace_back(reinterpret_cast<const wchar_t*>(lParam));  // NOLINT: messages carry pointers as numbers
            return LRESULT(control.items.size()) - 1;
        case CB_RESETCONTENT:
            control.items.clear();
            control.selected = -1;
            return 0;
        case CB_SETCURSEL:
            control.selected = wParam < control.items.size() ? int(wParam) : -1;
            return control.selected < 0 ? kComboError : LRESULT(control.selected);
        case CB_GETCURSEL:
            return LRESULT(control.selected);
        default:
            return 0;
    }
}

}  // namespace

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window == nullptr) return 0;
    if (window->page != nullptr) return SendToControl(*window, message, wParam, lParam);
    if (window->userProc != nullptr) {
        const TimeValue now = GetCOREInterface()->GetTime();
        return window->userProc->DlgProc(now, window->map, window, message, wParam, lParam);
    }
    return window->proc == nullptr ? 0 : window->proc(window, message, wParam, lParam);
}
