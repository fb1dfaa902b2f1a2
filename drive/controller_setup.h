#pragma once
/// The rollout "Controller Setup": it shows the bindings, saves and resets them, and captures a key or button for each.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drive/controls_config.h"
#include "drive/devices.h"
#include "drive/file_store.h"
#include "drive/param_block.h"
#include "drive/window_layer.h"

namespace tavrik {

constexpr std::int32_t kSaveControl = 1022, kResetControl = 1025;
constexpr std::string_view kSaveText = "Save", kResetText = "Reset";
constexpr std::string_view kKeyboardTitle = "Keyboard", kGamepadTitle = "Gamepad";  // of the groups

constexpr std::uint32_t kCbnSelChange = 1;           // notification of a combo box, high word of kWmCommand's first parameter
constexpr std::int32_t kNoSelection = -1;            // nothing chosen, or not a combo box
constexpr std::uint32_t kCaptureMilliseconds = 100;  // between two looks at the buttons

/// What one control of the rollout shows.
struct RolloutItem {
    std::int32_t control;
    std::string text;  // of a button or label; empty for a combo box
    bool enabled;
    std::int32_t selection;  // of a combo box; beyond its choices it shows none. kNoSelection for the rest
};

/// What the controls of the rollout show for these parameters: the binding buttons of the keyboard, those of the gamepad, the
/// combo boxes, the labels beside them that are enabled along with them.
std::vector<RolloutItem> RolloutItems(const ParamBlock& params);

/// Draws the prompt of a capture over the whole canvas.
/// @param taken  the last try hit a key or button in use
void DrawPrompt(Canvas& canvas, bool taken);

/// The controls of an open rollout, by their numbers.
class RolloutLayer {
 public:
    virtual ~RolloutLayer() = default;
    /// Puts `choices` in place of what the combo box lists.
    virtual void FillCombo(WindowId rollout, std::int32_t control, std::span<const std::string_view> choices) = 0;
    /// The chosen line of a combo box, counted from 0, or kNoSelection.
    virtual std::int32_t GetSelection(WindowId rollout, std::int32_t control) const = 0;
    virtual void Show(WindowId rollout, std::span<const RolloutItem> items) = 0;
};

/// One serves all master objects. A capture is open while `promptWindow` isn't 0. Belongs to the thread of the user interface.
class TavrikControllerSetup final : public WindowMessages {
 public:
    /// All must outlive the setup.
    TavrikControllerSetup(WindowLayer& windows, RolloutLayer& controls, Devices& devices, FileStore& file)
        : windows_(windows), controls_(controls), devices_(devices), file_(file) {}

    ParamBlock* master = nullptr;     // of the object being edited; its owner sets it before the rollout opens
    WindowId rollout = 0;             // of the last message
    WindowId promptWindow = 0;        // 0 is none
    std::uint32_t bindingParam = 0;   // being bound
    std::uint32_t bindingDevice = 0;  // 0 keyboard, 1 gamepad
    std::uint32_t taken = 0;          // 1: the last try hit a value in use

    /// Takes a message of the rollout: kWmInitDialog, or kWmCommand with control and notification in the low and the high word
    /// of `wParam`. `master` must be set (asserted).
    /// @return whether it meant anything
    bool RolloutMessage(WindowId window, std::uint32_t message, std::uint64_t wParam);

    /// Takes a message of the prompt: kWmKeyUp, kWmTimer, kWmPaint or kWmClose. Key codes outside of 1..255 are no keys and
    /// pass.
    /// @return whether it was for the prompt; a late one, after the end of the capture, isn't
    bool PromptMessage(std::uint32_t message, std::uint64_t wParam);

    /// The prompt's messages come in here.
    bool HandleMessage(std::uint32_t message, std::uint64_t wParam, std::uint64_t) override {
        return PromptMessage(message, wParam);
    }

    /// Shows the parameters on the rollout.
    void Refresh();

    /// Closes the prompt if it is open and refreshes. For an owner whose rollout or master object goes away; the messages do it
    /// by themselves.
    void EndCapture();

 private:
    bool Command(std::int32_t control, std::uint32_t notification);
    bool TakeChoice(const ChoiceRow& changed);
    bool StartCapture(std::int32_t param, std::uint32_t device);
    void TryValue(std::int32_t value);
    std::uint32_t PressedButtons();
    void RedrawPrompt();

    WindowLayer& windows_;
    RolloutLayer& controls_;
    Devices& devices_;
    FileStore& file_;
};

}  // namespace tavrik
