#include "drive/controls_config.h"

#include <algorithm>
#include <cassert>
#include <vector>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

constexpr BindingRow kKeyboardBindings[] = {
    {MasterParam::CtrlKbdThrottle, 2000, "Throttle:"},    {MasterParam::CtrlKbdLeft, 1010, "Left:"},
    {MasterParam::CtrlKbdRight, 1011, "Right:"},          {MasterParam::CtrlKbdBreak, 1018, "Break:"},
    {MasterParam::CtrlKbdHandBreak, 1020, "Hand Break:"}, {MasterParam::CtrlKbdFwdBkwd, 1012, "Fwd / Bwd:"},
    {MasterParam::CtrlKbdNitro, 1023, "Nitro:"},
};

constexpr BindingRow kGamepadBindings[] = {
    {MasterParam::CtrlJoyForward, 1016, "Forward:"}, {MasterParam::CtrlJoyBackward, 1017, "Backward:"},
    {MasterParam::CtrlJoyBreak, 1019, "Break:"},     {MasterParam::CtrlJoyHandBreak, 1021, "Hand Break:"},
    {MasterParam::CtrlJoyNitro, 1024, "Nitro:"},
};

constexpr std::string_view kDrivers[] = {"Multimedia API", "X-Input"};
constexpr std::string_view kPorts[] = {"Auto", "0", "1", "2", "3"};
constexpr std::string_view kWheelAxes[] = {"Left Stick", "Right Stick", "D-Pad"};
constexpr std::string_view kThrottleAxes[] = {"Left Stick", "Right Stick", "Left Trigger", "Right Trigger"};
constexpr ChoiceRow kChoices[] = {
    {MasterParam::CtrlJoyDriver, 1137, 0, "Driver:", kDrivers, 1},
    {MasterParam::CtrlJoyPort, 1138, 1141, "Port:", kPorts, 0},
    {MasterParam::CtrlJoyWheelCtrl, 1139, 1142, "Wheel:", kWheelAxes, 0},
    {MasterParam::CtrlJoyThrottleCtrl, 1140, 1143, "Throttle:", kThrottleAxes, 1},
};

constexpr std::size_t kSlots = std::size(kKeyboardBindings) + std::size(kGamepadBindings) + std::size(kChoices);
static_assert(kControlsImageSize == kSlots * sizeof(std::int32_t));

/// The parameters in the order of the file. Old files are read by place alone, so this order never changes.
constexpr std::array<std::int32_t, kSlots> SlotParams() {
    std::array<std::int32_t, kSlots> params{};
    std::size_t slot = 0;
    for (const BindingRow& row : kKeyboardBindings) params[slot++] = row.param;
    for (const BindingRow& row : kGamepadBindings) params[slot++] = row.param;
    for (const ChoiceRow& row : kChoices) params[slot++] = row.param;
    return params;
}
constexpr std::array<std::int32_t, kSlots> kSlotParams = SlotParams();

const ParamTable& MasterTable() {
    static const ParamTable& table = *FindParamTable("Tavrik");
    return table;
}

void PutLittleEndian(std::int32_t value, std::span<std::byte, 4> bytes) {
    const auto bits = std::uint32_t(value);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = std::byte(bits >> (8 * i) & 0xFF);
}

std::int32_t GetLittleEndian(std::span<const std::byte, 4> bytes) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) bits |= std::to_integer<std::uint32_t>(bytes[i]) << (8 * i);
    return std::int32_t(bits);
}

}  // namespace

std::span<const BindingRow> KeyboardBindings() { return kKeyboardBindings; }
std::span<const BindingRow> GamepadBindings() { return kGamepadBindings; }
std::span<const ChoiceRow> ControlChoices() { return kChoices; }

std::string_view ControlName(std::int32_t param) {
    assert(std::ranges::find(kSlotParams, param) != kSlotParams.end());
    return FindParam(MasterTable(), param)->name;
}

std::int32_t ResetValue(std::int32_t param) {
    assert(std::ranges::find(kSlotParams, param) != kSlotParams.end());
    for (const ChoiceRow& row : kChoices) {
        if (row.param == param) return row.resetValue;
    }
    return DefaultInt(MasterTable(), param);
}

const BindingRow* FindHolder(std::span<const BindingRow> rows, const ParamBlock& params, std::int32_t value) {
    for (const BindingRow& row : rows) {
        if (params.GetInt(row.param) == value) return &row;
    }
    return nullptr;
}

ControlsImage MakeControlsImage(const ParamBlock& params) {
    ControlsImage image;
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
        PutLittleEndian(params.GetInt(kSlotParams[slot]), std::span(image).subspan(4 * slot).first<4>());
    }
    return image;
}

void ApplyControlsImage(std::span<const std::byte> image, ParamBlock& params) {
    // One integer serves all slots, so that a file which ends early leaves its last value in it. Bytes after the last whole
    // integer don't count.
    std::int32_t value = 0;
    for (const std::int32_t param : kSlotParams) {
        if (image.size() >= 4) {
            value = GetLittleEndian(image.first<4>());
            image = image.subspan(4);
        } else {
            image = {};
        }
        params.SetInt(param, value);
    }
}

FileState LoadControls(FileStore& file, ParamBlock& params) {
    std::vector<std::byte> bytes;
    const FileState state = file.Read(kControlsImageSize, bytes);
    if (state == FileState::Missing) ResetControls(params);
    if (state == FileState::Read) ApplyControlsImage(bytes, params);
    return state;
}

bool SaveControls(const ParamBlock& params, FileStore& file) { return file.Write(MakeControlsImage(params)); }

void ResetControls(ParamBlock& params) {
    for (const std::int32_t param : kSlotParams) params.SetInt(param, ResetValue(param));
}

}  // namespace tavrik
