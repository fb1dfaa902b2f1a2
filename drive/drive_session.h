#pragma once
/// One interactive run: the drive window's messages become held keys and mouse positions, and each tick of its timer reads the
/// driver, drives one scene frame and shows the result.

#include <cstdint>

#include "drive/devices.h"
#include "drive/drive_host.h"
#include "drive/input_modes.h"
#include "drive/window_layer.h"
#include "solver/drive_input.h"
#include "surface/path_field.h"

namespace tavrik {

/// The keys that drive, as virtual-key codes, in the order in which a pressed key is looked for.
struct KeyBinding {
    std::int32_t keyThrottle = 0, keyBrake = 0, keyLeft = 0, keyRight = 0, keyHandBrake = 0, keyGear = 0, keyNitro = 0;
};

/// Closed while `window` is 0; idle with a window; running while `running` is set. All calls come from one thread. A host that
/// serves messages inside of a redraw may call back in: a tick inside of a tick is dropped, and a close inside of a tick is
/// made at its end.
class DriveSession final : public WindowMessages {
 public:
    /// The four stay the caller's and outlive the session.
    DriveSession(SessionMaster& master, DriveHost& core, WindowLayer& windows, Devices& devices);
    /// Stops a run and closes the window.
    ~DriveSession() override;
    DriveSession(const DriveSession&) = delete;
    DriveSession& operator=(const DriveSession&) = delete;

    DriveInput input;                // copied whole for each tick
    PathField path;                  // the road, built by the driver as a run starts whose target is a spline
    CarRig* rig = nullptr;           // the master's, refreshed by ReadSettings
    WindowId window = 0;             // the drive window
    std::uint32_t running = 0;       // flag: the timer runs and the car moves
    std::uint32_t active = 0;        // flag: the window has the user's attention; decides the prompt alone
    TimeValue tick = 0;              // of the next frame to drive
    std::int32_t forecast = 0;       // how far a target driver looks ahead, ticks
    std::uint32_t timerPeriod = 20;  // milliseconds
    Point3 mousePos{};               // in the window, pixels; z is 0
    Point3 mouseAnchor{};            // where the mouse stood as the run began
    KeyBinding keys;
    GamepadBinding gamepad;

    /// Opens the drive window and builds the car's world, from the button "Drive". A car that isn't assembled, or a ground that
    /// isn't there, ends in a message box.
    void OpenDrive();
    /// Takes over what the artist set. Runs as a window opens and again at each start.
    void ReadSettings();
    void StartDrive();
    void StopDrive();
    void CloseDrive();
    /// The timer's body: reads the driver, drives one frame, shows it. At the end of the animation range the run stops.
    void InputTick();
    void RedrawHud();

    /// Answers a message of the drive window.
    bool HandleMessage(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) override;

    SessionMaster& master() { return master_; }
    DriveHost& core() { return core_; }

 private:
    void FillInput();
    void AdvanceTimeline(const bool& alive);
    void DriveOneFrame();
    void DrawHudOn(Canvas& canvas);
    void KeyDown(std::int32_t key);
    void KeyUp(std::int32_t key);
    void Activate(std::uint64_t how);

    SessionMaster& master_;
    DriveHost& core_;
    WindowLayer& windows_;
    Devices& devices_;
    bool* inTick_ = nullptr;  // set within a tick, which looks there whether the session is still alive
    bool closeAfterTick_ = false;
};

}  // namespace tavrik
