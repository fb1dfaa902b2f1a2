#pragma once
/// The bindings of keys, buttons and axes: which parameters of the master object hold them, where the rollout shows them, and
/// the file that carries them from one scene to the next. The file wins over the scene: whoever opens the rollouts loads first.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "drive/file_store.h"
#include "drive/param_block.h"

namespace tavrik {

/// An action and the key or button that stands for it. Name and default of the parameter are those of the master object's
/// table.
struct BindingRow {
    std::int32_t param;
    std::int32_t control;    // the button that shows the binding and starts its capture
    std::string_view label;  // beside the button
};

/// A parameter that is chosen from a list.
struct ChoiceRow {
    std::int32_t param;
    std::int32_t control;  // the combo box
    std::int32_t labelId;  // of the label; 0 for the choice of the driver, which is always enabled, as the others aren't
    std::string_view label;
    std::span<const std::string_view> choices;  // of the values from 0 on
    std::int32_t resetValue;
};

/// Bound to virtual-key codes; the order is that of the file.
std::span<const BindingRow> KeyboardBindings();
/// Bound to single button bits; the order is that of the file.
std::span<const BindingRow> GamepadBindings();
/// The four choices in the order of the file.
std::span<const ChoiceRow> ControlChoices();

/// The name under which scenes know the parameter. It must be one of the sixteen (asserted).
std::string_view ControlName(std::int32_t param);

/// What ResetControls gives the parameter. It must be one of the sixteen (asserted).
///
/// For the driver and the throttle this is another value than the declared default: XInput and the right stick. Opening the
/// rollouts loads, and a load without a file resets, so a new user meets these values; the declared ones are those of an object
/// whose rollouts were never open.
std::int32_t ResetValue(std::int32_t param);

/// The row whose parameter holds `value`. A value is free when no row of its device holds it; the other device doesn't count.
/// @return null when there is none
const BindingRow* FindHolder(std::span<const BindingRow> rows, const ParamBlock& params, std::int32_t value);

constexpr std::size_t kControlsImageSize = 64;
/// The sixteen parameters as little-endian 32-bit integers, one after the other, and nothing else.
using ControlsImage = std::array<std::byte, kControlsImageSize>;

ControlsImage MakeControlsImage(const ParamBlock& params);

/// Sets the sixteen parameters. Of an image that is too long the front counts. Where it ends early, its last whole integer goes
/// to all parameters that are left, 0 if it hasn't even one.
void ApplyControlsImage(std::span<const std::byte> image, ParamBlock& params);

/// Sets the sixteen parameters from the file, or resets them if there is no file. One that can't be read changes nothing.
/// @return what became of the file, for whoever can tell the user
FileState LoadControls(FileStore& file, ParamBlock& params);

/// Replaces the file.
/// @return false when that fails; the file is then what it was
bool SaveControls(const ParamBlock& params, FileStore& file);

/// Sets the sixteen parameters to their reset values. The file stays as it is until they are saved.
void ResetControls(ParamBlock& params);

}  // namespace tavrik
