#pragma once
/// A drive session without a scene: a virtual clock, timeline and desktop, and a script in place of the hands.

#include <cstdint>
#include <string>

#include "drive/canvas.h"
#include "drive/drive_session.h"
#include "drive/driver_script.h"
#include "drive/event_script.h"
#include "drive/param_block.h"
#include "drive/virtual_desktop.h"

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
    const std::string& Notice() const { return hands_.Notice(); }

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

    VirtualRunSetup setup_;
    VirtualHost host_;
    VirtualWindows windows_;
    VirtualPad pad_;
    ScriptedHands hands_;
    DriveSession session_;
    std::int32_t ticks_ = 0;
};

}  // namespace tavrik
