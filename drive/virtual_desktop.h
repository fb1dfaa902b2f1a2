#pragma once
/// A desktop without a screen: one window, one gamepad, and a script in place of the hands.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "drive/canvas.h"
#include "drive/devices.h"
#include "drive/event_script.h"
#include "drive/window_layer.h"

namespace tavrik {

/// One window that is drawn on `canvas`. What a message box would say is kept in `messages`.
class VirtualWindows final : public WindowLayer {
 public:
    explicit VirtualWindows(Canvas& canvas) : canvas_(canvas) {}
    std::vector<std::string> messages;

    bool IsOpen() const { return receiver_ != nullptr; }
    /// Whether the window's timer runs.
    bool TimerRuns() const { return timerRuns_; }
    /// Hands a message to the window, where there is one.
    void Send(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam);

    WindowId CreateDialogWindow(WindowKind kind, WindowMessages& receiver) override;
    void DestroyWindow(WindowId window) override;
    void RegisterDlgWnd(WindowId) override {}
    void UnRegisterDlgWnd(WindowId) override {}
    void SetAlpha(WindowId, std::uint8_t) override {}
    void SetCapture(WindowId) override {}
    void ReleaseCapture() override {}
    void SetTimer(WindowId, std::uint32_t, std::uint32_t) override { timerRuns_ = true; }
    void KillTimer(WindowId, std::uint32_t) override { timerRuns_ = false; }
    void BeginDrag(WindowId) override {}
    Canvas& GetDC(WindowId) override { return canvas_; }
    void ReleaseDC(WindowId) override {}
    Canvas& BeginPaint(WindowId) override { return canvas_; }
    void EndPaint(WindowId) override {}
    void ShowMessageBox(WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) override;
    void DisableAccelerators() override {}
    void EnableAccelerators() override {}

 private:
    Canvas& canvas_;
    WindowMessages* receiver_ = nullptr;
    bool timerRuns_ = false;
};

/// One XInput pad as user 0, in the state that a script gave it, and no joystick.
class VirtualPad final : public Devices {
 public:
    bool plugged = false;
    XInputGamepad state{};

    std::uint32_t joyGetPos(std::uint32_t id, JoyInfo& info) override;
    std::uint32_t XInputGetState(std::int32_t user, XInputState& answer) override;
};

/// Plays a script into a window and a pad. A pad that is lost in a run by gamepad ends the run: its last throttle would be
/// squared from tick to tick, and nobody wants to ride along with that.
class ScriptedHands {
 public:
    /// @param script  outlives the hands, as do window and pad; null: hands that do nothing
    /// @param scrub   moves the timeline to a second
    ScriptedHands(const EventScript* script, VirtualWindows& windows, VirtualPad& pad, std::function<void(double)> scrub);

    /// Plays all that is due at `seconds` on the script's clock.
    void PlayUntil(double seconds);
    /// What the user has to be told, such as that the gamepad was unplugged; empty where all went well.
    const std::string& Notice() const { return notice_; }

 private:
    void Play(const DriverEvent& event);

    const EventScript* script_;
    VirtualWindows& windows_;
    VirtualPad& pad_;
    std::function<void(double)> scrub_;
    std::size_t next_ = 0;
    bool byGamepad_ = false;
    std::string notice_;
};

}  // namespace tavrik
