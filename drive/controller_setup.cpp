#include "drive/controller_setup.h"

#include <bit>
#include <cassert>
#include <utility>

#include "drive/key_names.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

constexpr std::uint32_t kKeyboard = 0, kGamepad = 1;  // of `bindingDevice`
constexpr std::int32_t kXInputDriver = 1;
constexpr std::uint64_t kLargestKeyCode = 255;

constexpr ColorRef kPromptColor = 0xC097;  // of the frame and the question
constexpr ColorRef kPromptGround = 0x333333, kTakenColor = 0x180EE0, kAbortColor = 0xC8C8C8;
constexpr std::int32_t kAbortStrip = 15;  // pixels at the bottom
constexpr std::uint32_t kCentred = kTextCenter | kTextVCenter | kTextSingleLine;

const BindingRow* FindControl(std::span<const BindingRow> rows, std::int32_t control) {
    for (const BindingRow& row : rows) {
        if (row.control == control) return &row;
    }
    return nullptr;
}

bool IsAxis(const ChoiceRow& row) {
    return row.param == MasterParam::CtrlJoyWheelCtrl || row.param == MasterParam::CtrlJoyThrottleCtrl;
}

}  // namespace

std::vector<RolloutItem> RolloutItems(const ParamBlock& params) {
    std::vector<RolloutItem> items;
    for (const BindingRow& row : KeyboardBindings()) {
        items.push_back({row.control, std::string(KeyName(params.GetInt(row.param))), true, kNoSelection});
    }
    for (const BindingRow& row : GamepadBindings()) {
        items.push_back({row.control, ButtonName(params.GetInt(row.param)), true, kNoSelection});
    }
    // The multimedia interface knows one joystick, and its sticks have no choice of axes.
    const bool xInput = ResolveDriver(params.GetInt(MasterParam::CtrlJoyDriver)) == kXInputDriver;
    for (const ChoiceRow& row : ControlChoices()) {
        items.push_back({row.control, {}, xInput || row.labelId == 0, params.GetInt(row.param)});
    }
    for (const ChoiceRow& row : ControlChoices()) {
        if (row.labelId != 0) items.push_back({row.labelId, std::string(row.label), xInput, kNoSelection});
    }
    return items;
}

void DrawPrompt(Canvas& canvas, bool taken) {
    const PixelRect client = canvas.GetClientRect();
    canvas.SelectObject(CanvasObject::DcPen);
    canvas.SelectObject(CanvasObject::DcBrush);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);
    canvas.SetDcBrushColor(kPromptGround);
    canvas.SetDcPenColor(kPromptColor);
    canvas.Rectangle(client.left, client.top, client.right, client.bottom);
    canvas.SetTransparentBackground();

    PixelRect top = client, strip = client;
    top.bottom = strip.top = client.bottom - kAbortStrip;
    canvas.SetTextColor(taken ? kTakenColor : kPromptColor);
    canvas.DrawTextLine(taken ? "Key is already taken!" : "Press a key for the action", top, kCentred);
    canvas.SetTextColor(kAbortColor);
    canvas.SelectObject(CanvasObject::Tahoma10);
    canvas.DrawTextLine("Press ESC to abort", strip, kCentred);
}

bool TavrikControllerSetup::RolloutMessage(WindowId window, std::uint32_t message, std::uint64_t wParam) {
    assert(master != nullptr);
    rollout = window;
    if (message == kWmInitDialog) {
        for (const ChoiceRow& row : ControlChoices()) controls_.FillCombo(rollout, row.control, row.choices);
        Refresh();
        return true;
    }
    return message == kWmCommand && Command(std::int32_t(wParam & 0xFFFF), std::uint32_t(wParam >> 16 & 0xFFFF));
}

bool TavrikControllerSetup::Command(std::int32_t control, std::uint32_t notification) {
    if (control == kSaveControl) {
        SaveControls(*master, file_);  // a save that fails leaves the old file, and nobody is stopped for it
        return true;
    }
    if (control == kResetControl) {
        ResetControls(*master);
        Refresh();
        return true;
    }
    for (const ChoiceRow& row : ControlChoices()) {
        if (row.control == control) return notification == kCbnSelChange && TakeChoice(row);
    }
    if (const BindingRow* const row = FindControl(KeyboardBindings(), control)) return StartCapture(row->param, kKeyboard);
    if (const BindingRow* const row = FindControl(GamepadBindings(), control)) return StartCapture(row->param, kGamepad);
    return false;
}

bool TavrikControllerSetup::TakeChoice(const ChoiceRow& changed) {
    for (const ChoiceRow& row : ControlChoices()) {
        // The two axes are read together, whichever of them was changed.
        if (row.param == changed.param || (IsAxis(row) && IsAxis(changed))) {
            master->SetInt(row.param, controls_.GetSelection(rollout, row.control));
        }
    }
    Refresh();
    return true;
}

void TavrikControllerSetup::Refresh() { controls_.Show(rollout, RolloutItems(*master)); }

bool TavrikControllerSetup::StartCapture(std::int32_t param, std::uint32_t device) {
    bindingParam = std::uint32_t(param);
    bindingDevice = device;
    taken = 0;
    if (promptWindow != 0) return true;  // the open prompt now asks for this action; it keeps its picture until the next try
    promptWindow = windows_.CreateDialogWindow(WindowKind::Prompt, *this);
    if (promptWindow == 0) return true;  // with the shortcuts off and no prompt to close, the keyboard would be lost
    windows_.RegisterDlgWnd(promptWindow);
    windows_.DisableAccelerators();
    windows_.SetCapture(promptWindow);
    windows_.SetTimer(promptWindow, kTimerId, kCaptureMilliseconds);
    RedrawPrompt();
    return true;
}

bool TavrikControllerSetup::PromptMessage(std::uint32_t message, std::uint64_t wParam) {
    if (promptWindow == 0) return false;
    switch (message) {
        case kWmKeyUp:
            if (wParam == std::uint64_t(kVkEscape)) {
                EndCapture();
            } else if (bindingDevice == kKeyboard && wParam >= 1 && wParam <= kLargestKeyCode) {
                TryValue(std::int32_t(wParam));
            }
            return true;
        case kWmTimer:
            if (bindingDevice == kGamepad) {
                const std::uint32_t buttons = PressedButtons();
                if (std::has_single_bit(buttons)) TryValue(std::int32_t(buttons));
            }
            return true;
        case kWmPaint:
            DrawPrompt(windows_.BeginPaint(promptWindow), taken != 0);
            windows_.EndPaint(promptWindow);
            return true;
        case kWmClose:
            EndCapture();
            return true;
        default:
            return false;
    }
}

void TavrikControllerSetup::TryValue(std::int32_t value) {
    const auto rows = bindingDevice == kKeyboard ? KeyboardBindings() : GamepadBindings();
    // The row being bound counts too: the key that an action has already is taken as well.
    if (FindHolder(rows, *master, value) != nullptr) {
        taken = 1;
        RedrawPrompt();
        return;
    }
    master->SetInt(std::int32_t(bindingParam), value);
    EndCapture();
}

std::uint32_t TavrikControllerSetup::PressedButtons() {
    if (ResolveDriver(master->GetInt(MasterParam::CtrlJoyDriver)) == kXInputDriver) {
        XInputState state{};
        const std::int32_t user = ResolvePort(master->GetInt(MasterParam::CtrlJoyPort), devices_);
        return devices_.XInputGetState(user, state) == 0 ? state.Gamepad.wButtons : 0;
    }
    JoyInfo info{};
    return devices_.joyGetPos(0, info) == 0 ? info.wButtons : 0;
}

void TavrikControllerSetup::RedrawPrompt() {
    DrawPrompt(windows_.GetDC(promptWindow), taken != 0);
    windows_.ReleaseDC(promptWindow);
}

void TavrikControllerSetup::EndCapture() {
    // Cleared first: a layer that tells of a closing window at once must find no capture to end a second time.
    const WindowId window = std::exchange(promptWindow, 0);
    if (window == 0) return;
    windows_.KillTimer(window, kTimerId);
    windows_.ReleaseCapture();
    windows_.EnableAccelerators();
    windows_.UnRegisterDlgWnd(window);
    windows_.DestroyWindow(window);
    Refresh();
}

}  // namespace tavrik
