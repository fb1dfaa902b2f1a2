#pragma once
/// The dialog "Additional Damper Settings": nine spinners beside a damper that works live on a running-in stand, so that an
/// artist can tune a suspension by looking at it.

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <thread>

#include "drive/canvas.h"
#include "drive/damper_model.h"
#include "drive/param_block.h"
#include "drive/window_layer.h"
#include "rig/parameter_tables.h"
#include "solver/random_stream.h"

namespace tavrik {

class DamperStand;

/// A spinner of the dialog, with the edit field that shows its value.
class StandSpinner {
 public:
    virtual ~StandSpinner() = default;
    virtual void SetLimits(float low, float high) = 0;
    /// The step grows with the value.
    virtual void SetAutoScale(bool on) = 0;
    virtual void LinkToEdit(std::int32_t edit, EditType type) = 0;
    /// @param notify  whether the dialog is told by a message
    virtual void SetValue(float value, bool notify) = 0;
    virtual float GetFVal() = 0;
};

/// What the stand needs of windows. All but Sleep and DestroyIOffScreenBuf is called from the dialog's thread.
class StandLayer {
 public:
    virtual ~StandLayer() = default;
    /// Runs a modal dialog over the host's main window. Its messages, kWmInitDialog first, go to `stand.HandleMessage`.
    /// @return what EndDialog was given; anything but kStandSetup where there was no dialog
    virtual std::int32_t RunDialog(std::int32_t dialogTemplate, DamperStand& stand) = 0;
    virtual void EndDialog(WindowId dialog, std::int32_t result) = 0;
    /// Lets the host's message loop serve the window.
    virtual void RegisterDlgWnd(WindowId window) = 0;
    virtual void UnRegisterDlgWnd(WindowId window) = 0;
    /// Good until it is released.
    virtual StandSpinner& GetISpinner(WindowId dialog, std::int32_t control) = 0;
    virtual void ReleaseISpinner(StandSpinner& spinner) = 0;
    /// A buffer that covers a control. It is drawn on, and shown, from the stand's thread, which the dialog's thread waits for
    /// as it closes: Blit must not wait for the dialog's thread.
    /// @return null where there is none to be had: the stand then runs unseen
    virtual OffScreenCanvas* CreateIOffScreenBuf(WindowId dialog, std::int32_t control, ColorRef background) = 0;
    /// From the stand's thread, while the dialog still stands.
    virtual void DestroyIOffScreenBuf(OffScreenCanvas& buffer) = 0;
    /// The canvas isn't drawn on: the stand's own thread does all drawing.
    virtual void BeginPaint(WindowId window) = 0;
    virtual void EndPaint(WindowId window) = 0;
    /// Holds up the calling thread, which is the stand's.
    virtual void Sleep(std::int32_t milliseconds) = 0;
};

// The dialog: 436 x 268 dialog units, a static bitmap in the lower left corner.
constexpr std::string_view kStandTitle = "Additional Damper Settings";
constexpr std::int32_t kStandDialog = 128, kStandBitmap = 124;  // template and resource
constexpr std::int32_t kStandFrameControl = 1115, kStandSetupControl = 1014, kStandCancelControl = 1013;
constexpr std::string_view kStandSetupText = "Setup", kStandCancelText = "Cancel";
constexpr std::int32_t kStandCancel = 0, kStandSetup = 1;  // how it ends

// Messages of the host's controls; the low word of the first parameter is the control.
constexpr std::uint32_t kCcSpinnerButtonUp = 1626, kWmCustEditEnter = 1709;

constexpr std::int32_t kMetres = 5;  // number of a unit for GetMasterScale

/// One setting of the dialog.
struct StandRow {
    std::int32_t spinner, edit;  // controls
    std::string_view label;
    std::atomic<float> DamperStand::*field;
    float low, high;  // what can be typed or spun
    std::string_view group;
};

constexpr std::size_t kStandRows = 9;
/// In the order in which the spinners are set up.
std::span<const StandRow, kStandRows> StandRows();

/// Closed while `window` is 0, open with a dialog. Everything is called from the dialog's thread; while the stand is open a
/// thread of its own draws and simulates, and has `model`, `random` and `offscreen` for itself. The two share the nine settings
/// and `window`, which are atomic: a setting that changes within a pass is seen in the next one.
class DamperStand {
 public:
    /// @param GetMasterScale  how much of a unit, by its number, one scene unit is; asked at once, for metres
    explicit DamperStand(const std::function<double(std::int32_t)>& GetMasterScale);
    ~DamperStand();
    DamperStand(const DamperStand&) = delete;
    DamperStand& operator=(const DamperStand&) = delete;

    DamperModel model;                                 // begins anew with each opening
    std::atomic<WindowId> window = 0;                  // the dialog; the thread runs while it is set
    std::array<StandSpinner*, kStandRows> spinners{};  // in the order of StandRows, null when closed
    OffScreenCanvas* offscreen = nullptr;              // over the dialog's frame
    ParamBlock* pblock = nullptr;                      // of the suspension
    StandLayer* core = nullptr;
    // The stand's own settings: they stay as last set.
    std::atomic<float> mass = 400.0f;
    std::atomic<float> knollRate = 1.0f;  // knolls a second
    std::atomic<float> holeRate = 1.0f;   // holes a second
    std::atomic<float> gravity;           // scene units/s^2
    // The suspension's: read with each opening, written by "Setup".
    std::atomic<float> rigidityFactor = 0.0f;
    std::atomic<float> springRigidity = 0.0f;
    std::atomic<float> oilDamping = 0.0f;
    std::atomic<float> damperShift = 0.0f;  // scene units
    std::atomic<float> bufferRigidity = 0.0f;
    float sizeScale = 0.0f;  // scene units to a stand unit; set while no thread runs
    RandomStream random;     // of the road; each opening begins with the same seed

    /// Runs the dialog and comes back when it is closed. "Setup" writes the five settings of the suspension to its block,
    /// "Cancel" nothing. Does nothing where the dialog is open.
    ///
    /// @param block   the suspension's, numbered by SuspensionParam
    /// @param layer   both stay the caller's and outlive the dialog
    void OpenStand(ParamBlock& block, StandLayer& layer);

    /// Answers a message of the dialog.
    /// @param dialog          the window that it came to
    /// @param message         its number, see window_messages.h and above
    /// @param wParam, lParam  its two parameters
    /// @return false where the message isn't one of the stand's
    ///
    /// One that closes the dialog lets the thread end first, which takes as long as a pass and its sleep.
    bool HandleMessage(WindowId dialog, std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam);

    /// The settings as they stand; any thread may ask.
    DamperSettings Settings() const;

 private:
    void Initialize(WindowId dialog);
    bool TakeValue(std::int32_t control);
    void CleanUp();
    void Close(std::int32_t result);
    void Run();

    bool open_ = false;  // from the first line of OpenStand to its last
    std::thread thread_;
};

}  // namespace tavrik
