#pragma once
/// A drive session without a screen: a virtual clock, timeline, window and gamepad, and a script in place of the hands.

#include <cstdint>
#include <string>
#include <vector>

#include "drive/canvas.h"
#include "drive/drive_session.h"
#include "drive/driver_script.h"
#include "drive/event_script.h"
#include "drive/param_block.h"

namespace tavrik {

/// A timeline that only remembers where it stands.
class VirtualHost final : public DriveHost {
 public:
    TimeValue time = 0;
    TimeRange range{};
    std::int32_t ticksPerFrame = 160;
    double metresPerUnit = 0.01;

    TimeValue GetTime() const override { return time; }
    void SetTime(TimeValue tick, bool) override { time = tick; }
    TimeRange GetAnimRange() const override { return range; }
    std::int32_t GetTicksPerFrame() const override { return ticksPerFrame; }
    double GetMasterScale(std::int32_t unit) const override;
    void RedrawViews(TimeValue) override {}
    void NotifyMasters() override {}
};

/// One window that is drawn on `canvas`. What a message box would say is kept in `messages`.
class VirtualWindows final : public WindowLayer {
 public:
    explicit VirtualWindows(Canvas& canvas) : canvas_(canvas) {}
    std::vector<std::string> messages;

    WindowId CreateDialogWindow(WindowKind) override { return 1; }
    void DestroyWindow(WindowId) override {}
    void RegisterDlgWnd(WindowId) override {}
    void UnRegisterDlgWnd(WindowId) override {}
    void SetAlpha(WindowId, std::uint8_t) override {}
    void SetCapture(WindowId) override {}
    void ReleaseCapture() override {}
    void SetTimer(WindowId, std::uint32_t, std::uint32_t) override {}
    void KillTimer(WindowId, std::uint32_t) override {}
    void BeginDrag(WindowId) override {}
    Canvas& GetDC(WindowId) override { return canvas_; }
    void ReleaseDC(WindowId) override {}
    Canvas& BeginPaint(WindowId) override { return canvas_; }
    void EndPaint(WindowId) override {}
    void ShowMessageBox(WindowId, std::string_view text, std::string_view, std::uint32_t) override {
        messages.emplace_back(text);
    }
    void DisableAccelerators() override {}
    void EnableAccelerators() override {}

 private:
    Canvas& canvas_;
};

/// One XInput pad as user 0, in the state that a script gave it, and no joystick.
class VirtualPad final : public Devices {
 public:
    bool plugged = false;
    XInputGamepad state{};

    std::uint32_t joyGetPos(std::uint32_t id, JoyInfo& info) override;
    std::uint32_t XInputGetState(std::int32_t user, XInputState& answer) override;
};

/// What a virtual run drives and who drives it. Nothing is owned.
struct VirtualRunSetup {
    CarWorld* world = nullptr;
    CarRig* rig = nullptr;                 // locked
    const SurfaceTree* surface = nullptr;  // built
    ParamBlock* params = nullptr;          // of the master object
    Canvas* canvas = nullptr;              // of the drive window
    const DriverScript* rows = nullptr;    // in the hands' place; null where `events` are the hands
    const EventScript* events = nullptr;
    std::int32_t ticksPerFrame = 160;
    std::int32_t frames = 600;  // the animation range, from tick 0
    double metresPerUnit = 0.01;
    std::uint64_t seed = 1;
};

/// Opens a drive window, presses ENTER, and then lets script and timer run on one virtual clock: one frame's time from tick to
/// tick, whether the car is being driven or not.
class VirtualRun final : private SessionMaster, private TargetDriver {
 public:
    explicit VirtualRun(const VirtualRunSetup& setup);

    /// Opens the window and starts. @return false with what the message box says
    bool Start(std::string& problem);
    /// Gives the session the events that are due, then its timer's tick.
    ///
    /// @return false when a number in the new samples is not finite: `problem` says at which second, of which body, and what
    ///         likely caused it; the recording ends before the first bad sample
    bool Tick(std::string& problem);

    /// Seconds on the clock.
    double Seconds() const;
    const DriveSession& Session() const { return session_; }
    /// Draws the drive window's face once more.
    void Redraw() { session_.RedrawHud(); }
    /// What the owner of the session has to tell, such as a gamepad that was unplugged; empty where all went well.
    const std::string& Notice() const { return notice_; }

 private:
    CarRig& Rig() override { return *setup_.rig; }
    const ParamBlock& Params() const override { return *setup_.params; }
    const SurfaceTree& Surface() const override { return *setup_.surface; }
    void UpdateSurface() override {}
    CarWorld& World() override { return *setup_.world; }
    WorldScene* Scene() override { return nullptr; }
    void RebuildTrails() override {}
    TargetDriver* Target() override { return setup_.rows != nullptr ? this : nullptr; }

    bool HasTarget() const override { return true; }
    bool TargetIsShape() const override { return false; }
    void BuildPath() override {}
    void DriveToTarget(DriveSession& session) override;
    void DriveAlongPath(DriveSession&) override {}

    void Deliver(const DriverEvent& event);

    VirtualRunSetup setup_;
    VirtualHost host_;
    VirtualWindows windows_;
    VirtualPad pad_;
    DriveSession session_;
    std::int32_t ticks_ = 0;
    std::size_t nextEvent_ = 0;
    std::string notice_;
};

}  // namespace tavrik
