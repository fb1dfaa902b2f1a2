#include "drive/virtual_desktop.h"

#include <cstdio>
#include <utility>

#include "drive/input_modes.h"
#include "drive/window_messages.h"

namespace tavrik {
namespace {

constexpr std::uint32_t kJoyErrUnplugged = 167, kErrorDeviceNotConnected = 1167;
constexpr WindowId kOnlyWindow = 1;

std::uint64_t PackPoint(float x, float y) {
    return std::uint64_t(std::uint16_t(std::int16_t(x))) | std::uint64_t(std::uint16_t(std::int16_t(y))) << 16;
}

std::uint64_t PackWheel(std::int32_t delta) { return std::uint64_t(std::uint16_t(std::int16_t(delta))) << 16; }

}  // namespace

WindowId VirtualWindows::CreateDialogWindow(WindowKind, WindowMessages& receiver) {
    receiver_ = &receiver;
    return kOnlyWindow;
}

void VirtualWindows::DestroyWindow(WindowId) {
    receiver_ = nullptr;
    timerRuns_ = false;
}

void VirtualWindows::Send(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) {
    if (receiver_ != nullptr) receiver_->HandleMessage(message, wParam, lParam);
}

void VirtualWindows::ShowMessageBox(WindowId, std::string_view text, std::string_view, std::uint32_t) {
    messages.emplace_back(text);
}

std::uint32_t VirtualPad::joyGetPos(std::uint32_t, JoyInfo&) { return kJoyErrUnplugged; }

std::uint32_t VirtualPad::XInputGetState(std::int32_t user, XInputState& answer) {
    if (!plugged || user != 0) return kErrorDeviceNotConnected;
    answer.Gamepad = state;
    return 0;
}

ScriptedHands::ScriptedHands(const EventScript* script, VirtualWindows& windows, VirtualPad& pad,
                             std::function<void(double)> scrub)
    : script_(script), windows_(windows), pad_(pad), scrub_(std::move(scrub)) {
    byGamepad_ = script != nullptr && DrivingTypeOf(*script) == kDriveByGamepad;
    pad_.plugged = byGamepad_;
}

void ScriptedHands::PlayUntil(double seconds) {
    while (script_ != nullptr && next_ < script_->events.size() && script_->events[next_].seconds <= seconds) {
        Play(script_->events[next_++]);
    }
}

void ScriptedHands::Play(const DriverEvent& event) {
    switch (event.kind) {
        case DriverEventKind::KeyDown:
            windows_.Send(kWmKeyDown, std::uint64_t(event.code), 0);
            break;
        case DriverEventKind::KeyUp:
            windows_.Send(kWmKeyUp, std::uint64_t(event.code), 0);
            break;
        case DriverEventKind::MouseMove:
            windows_.Send(kWmMouseMove, 0, PackPoint(event.x, event.y));
            break;
        case DriverEventKind::MouseWheel:
            windows_.Send(kWmMouseWheel, PackWheel(event.code), 0);
            break;
        case DriverEventKind::RightButtonDown:
            windows_.Send(kWmRButtonDown, 0, 0);
            break;
        case DriverEventKind::RightButtonUp:
            windows_.Send(kWmRButtonUp, 0, 0);
            break;
        case DriverEventKind::Click:
            windows_.Send(kWmActivate, kWaClickActive, 0);
            break;
        case DriverEventKind::LoseFocus:
            windows_.Send(kWmActivate, kWaInactive, 0);
            break;
        case DriverEventKind::Scrub:
            scrub_(double(event.x));
            break;
        case DriverEventKind::PadChange:
            pad_.plugged = true;
            pad_.state = event.pad;
            break;
        case DriverEventKind::PadLost: {
            pad_.plugged = false;
            if (!byGamepad_ || !windows_.TimerRuns()) break;
            windows_.Send(kWmKeyUp, std::uint64_t(kVkEscape), 0);
            char text[96];
            std::snprintf(text, sizeof text, "The gamepad was unplugged at second %.2f; the run stopped there.", event.seconds);
            notice_ = text;
            break;
        }
    }
}

}  // namespace tavrik
