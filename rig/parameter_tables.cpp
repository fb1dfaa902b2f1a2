#include "rig/parameter_tables.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <initializer_list>

namespace tavrik {
namespace {

using enum ParamType;

// Nearly every size, mass and stiffness is divided by somewhere, so zero can't be entered.
constexpr float kAboveZero = 0.0001f;

constexpr ParamControl OneControl(ControlKind kind, std::int32_t id, std::string_view label) {
    ParamControl control;
    control.kind = kind;
    control.ids[control.idCount++] = id;
    control.label = label;
    return control;
}

constexpr ParamControl Spinner(EditType edit, std::int32_t editId, std::int32_t spinnerId, std::string_view label) {
    ParamControl control = OneControl(ControlKind::Spinner, editId, label);
    control.ids[control.idCount++] = spinnerId;
    control.edit = edit;
    return control;
}
constexpr ParamControl IntSpin(std::int32_t editId, std::int32_t spinnerId, std::string_view label) {
    return Spinner(EditType::Int, editId, spinnerId, label);
}
constexpr ParamControl FloatSpin(std::int32_t editId, std::int32_t spinnerId, std::string_view label,
                                 std::int32_t labelId = 0) {
    ParamControl control = Spinner(EditType::Float, editId, spinnerId, label);
    control.labelId = labelId;
    return control;
}
constexpr ParamControl WorldSpin(std::int32_t editId, std::int32_t spinnerId, std::string_view label) {
    return Spinner(EditType::Universe, editId, spinnerId, label);
}
constexpr ParamControl TimeSpin(std::int32_t editId, std::int32_t spinnerId, std::string_view label, std::int32_t labelId = 0,
                                float scale = kAutoScale) {
    ParamControl control = Spinner(EditType::Time, editId, spinnerId, label);
    control.labelId = labelId;
    control.scale = scale;
    return control;
}

constexpr ParamControl Parts(ControlKind kind, EditType edit, std::string_view label, std::initializer_list<std::int32_t> ids,
                             std::initializer_list<std::string_view> partLabels) {
    ParamControl control;
    control.kind = kind;
    control.edit = edit;
    control.label = label;
    for (const std::int32_t id : ids) control.ids[control.idCount++] = id;
    for (const std::string_view text : partLabels) control.partLabels[control.partLabelCount++] = text;
    return control;
}
constexpr ParamControl WorldSpins(std::string_view label, std::initializer_list<std::int32_t> ids,
                                  std::initializer_list<std::string_view> partLabels) {
    return Parts(ControlKind::Spinner, EditType::Universe, label, ids, partLabels);
}
constexpr ParamControl Radio(std::string_view label, std::initializer_list<std::int32_t> ids,
                             std::initializer_list<std::string_view> partLabels) {
    return Parts(ControlKind::Radio, EditType::Int, label, ids, partLabels);
}
constexpr ParamControl Check(std::int32_t id, std::string_view label) { return OneControl(ControlKind::CheckBox, id, label); }
constexpr ParamControl MapButton(std::int32_t id, std::string_view label) {
    return OneControl(ControlKind::MapButton, id, label);
}
constexpr ParamControl Pick(std::int32_t id, std::string_view label, NodeValidator validator = NodeValidator::None) {
    ParamControl control = OneControl(ControlKind::PickButton, id, label);
    control.validator = validator;
    return control;
}
/// No control of its own: `label` stands in the dialog that edits the parameter.
constexpr ParamControl LabelOnly(std::string_view label) {
    ParamControl control;
    control.label = label;
    return control;
}

/// A parameter that starts empty: a reference, a matrix, or a number of which no value is declared.
constexpr ParamRow Empty(std::int32_t id, std::string_view name, ParamType type, std::uint32_t flags, std::int32_t rollout,
                         const ParamControl& control) {
    return {.id = id,
            .name = name,
            .type = type,
            .hasDefault = false,
            .hasRange = false,
            .flags = flags,
            .entries = 1,
            .rollout = rollout,
            .defaultValue = 0.0,
            .low = 0.0,
            .high = 0.0,
            .control = control};
}
constexpr ParamRow Number(std::int32_t id, std::string_view name, ParamType type, double value, double low, double high,
                          std::int32_t rollout, const ParamControl& control) {
    ParamRow row = Empty(id, name, type, kParamPlain, rollout, control);
    row.hasDefault = row.hasRange = true;
    row.defaultValue = value;
    row.low = low;
    row.high = high;
    return row;
}
constexpr ParamRow Row(std::int32_t id, std::string_view name, ParamType type, float value, float low, float high,
                       std::int32_t rollout, const ParamControl& control) {
    return Number(id, name, type, double(value), double(low), double(high), rollout, control);
}
constexpr ParamRow Row(std::int32_t id, std::string_view name, std::int32_t value, std::int32_t low, std::int32_t high,
                       std::int32_t rollout, const ParamControl& control) {
    return Number(id, name, Int, double(value), double(low), double(high), rollout, control);
}
constexpr ParamRow Hidden(std::int32_t id, std::string_view name, std::int32_t value, std::int32_t low, std::int32_t high) {
    return Row(id, name, value, low, high, kNoRollout, {});
}
constexpr ParamRow Flag(std::int32_t id, std::string_view name, std::int32_t rollout, const ParamControl& control) {
    ParamRow row = Empty(id, name, Bool, kParamPlain, rollout, control);
    row.hasDefault = true;  // off
    return row;
}
constexpr ParamRow Animatable(ParamRow row) {
    row.flags |= kParamAnimatable;
    return row;
}
constexpr ParamRow Entries(std::int32_t entries, ParamRow row) {
    row.entries = entries;
    return row;
}

// The rows of each table stand in the order in which the host lists the parameters. Some things in them look like slips and are
// kept, because scenes in use were made with them:
// - the five button bits of the gamepad lie far above their own range, and the sizes of push and start position, which the
//   drag that makes them sets, below theirs;
// - Push_Force scales with the scene's units as a length does, and Wheel_Shift, a length, is shown as a plain number;
// - Driving_Forecast is an integer in a time spinner.
// clang-format off

constexpr ParamRollout kMasterRollouts[] = {{130, 23}, {131, 4}, {132, 31}, {124, 32}, {142, 11}};
constexpr ParamRow kMasterRows[] = {
    //  id  name                    type     default   low         high        rollout, control
    Entries(3,
    Row( 0, "Dummy_Size",           WorldTable, 20.0f, kAboveZero, 100000.0f,  0,
        WorldSpins("Dummy Size", {1096, 1097, 1098, 1099, 1100, 1101}, {"X:", "Y:", "Z:"}))),
    Row( 1, "Gravity",              World,     980.0f, kAboveZero, 1000000.0f, 1, WorldSpin(1111, 1112, "Gravity:")),
    Empty(2, "Surface_Node",        Node, kParamNoReference,                   1, Pick(1022, "Surface:")),
    Empty(3, "Start_Node",          Node, kParamNoReference,                   1, Pick(1024, "Start Position:")),
    Row( 4, "Frame_Step",                           5,          2,        100, 2, IntSpin(1033, 1034, "Step/Frame:")),
    Row( 5, "Sample_Step",                         30,          1,       1000, 2, IntSpin(1088, 1089, "Samples:")),
    Row( 6, "Rudder_Sensitivity",   Float,       5.0f, kAboveZero, 1000000.0f, 3, FloatSpin(1074, 1075, "Rudder Sens:")),
    Row( 7, "Rudder_Angle",         Float,      45.0f, kAboveZero, 1000000.0f, 3, FloatSpin(1080, 1081, "Rudder Angle:")),
    Flag(16, "Bike_Drive",                                                     3, Check(1124, "Bike Driving:")),
    Row(17, "Balance_Force",        Float,       2.0f,       0.0f,      10.0f, 3,
        FloatSpin(1094, 1095, "AutoBalance:", /*labelId=*/1125)),
    Row(15, "Differencial_Drive_Sensitivity", Float, 0.0f, 0.0f, 1000000.0f, 3,
        FloatSpin(1096, 1097, "Differential\nDrive Sens:")),
    Row( 8, "Throttle_Sensitivity", Float,    2000.0f, kAboveZero, 1000000.0f, 3, FloatSpin(1078, 1079, "Throttle Sens:")),
    Row( 9, "Brake_Sensitivity",    Float,    2000.0f, kAboveZero, 1000000.0f, 3, FloatSpin(1084, 1085, "Brake Sens:")),
    Row(14, "Max_Drift_Speed",      Float,      10.0f, kAboveZero, 1000000.0f, 3,
        FloatSpin(1092, 1093, "Max Drift\nSpeed km/h:")),
    Row(10, "Time_Delay",                          30,          5,      10000, 3, IntSpin(1082, 1083, "Time delay:")),
    Row(11, "Driving_Type",                         1,          0,          3, 3,
        Radio("", {1086, 1087, 1090, 1091},
              {"Use Mouse", "Use Keyboard", "Use Gamepad / Wheel", "Use Target(Non Spline)/\nPath(Spline)"})),
    Empty(12, "Driving_Target",     Node, kParamPlain,                         3, Pick(1016, "Target/\nPath")),
    Row(13, "Driving_Forecast",                  4800,          0,     100000, 3, TimeSpin(1088, 1089, "Forecast Frames:")),
    // Keys are virtual-key codes: W, S, A, D, space, page up and shift.
    Hidden(18, "CtrlKbdThrottle",                  87,          1,        255),
    Hidden(22, "CtrlKbdBreak",                     83,          1,        255),
    Hidden(19, "CtrlKbdLeft",                      65,          1,        255),
    Hidden(20, "CtrlKbdRight",                     68,          1,        255),
    Hidden(23, "CtrlKbdHandBreak",                 32,          1,        255),
    Hidden(21, "CtrlKbdFwdBkwd",                   33,          1,        255),
    Hidden(24, "CtrlKbdNitro",                     16,          0,        255),
    Hidden(32, "CtrlJoyDriver",                     0,          0,         10),
    Hidden(33, "CtrlJoyPort",                       0,          0,         10),
    Hidden(25, "CtrlJoyForward",                32768,          0,        255),
    Hidden(26, "CtrlJoyBackward",                8192,          0,        255),
    Hidden(27, "CtrlJoyBreak",                  16384,          0,        255),
    Hidden(28, "CtrlJoyHandBreak",               4096,          0,        255),
    Hidden(29, "CtrlJoyNitro",                    512,          0,        255),
    Hidden(30, "CtrlJoyWheelCtrl",                  0,          0,          5),
    Hidden(31, "CtrlJoyThrottleCtrl",               0,          0,          5),
};
constexpr std::int32_t kMasterAttach[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 17, 14, 16};

constexpr ParamRollout kChassisRollouts[] = {{129, 4}};
constexpr ParamRow kChassisRows[] = {
    Row(0, "Width",                 World,      70.0f, kAboveZero,    100000.0f, 0, WorldSpin(1087, 1088, "Width:")),
    Row(1, "Length",                World,     200.0f, kAboveZero,    100000.0f, 0, WorldSpin(1098, 1099, "Length:")),
    Row(2, "Height",                World,      50.0f, kAboveZero,    100000.0f, 0, WorldSpin(1100, 1101, "Height:")),
    Row(5, "Rotation_Center_Shift", Float,     -70.0f, -100000.0f,    100000.0f, 0,
        FloatSpin(1106, 1107, "Rotation Center\nShift (%):")),
    Row(3, "Mass",                  Float,    1000.0f, kAboveZero,    100000.0f, 0, FloatSpin(1089, 1090, "Mass:")),
    Row(4, "Solidity",              Float, 2500000.0f, kAboveZero, 100000000.0f, 0, FloatSpin(1102, 1103, "Solidity:")),
};
constexpr std::int32_t kChassisAttach[] = {0, 1, 2, 5, 3, 4};

constexpr ParamRollout kSuspensionRollouts[] = {{126, 4}};
constexpr ParamRow kSuspensionRows[] = {
    Row(11, "Suspension_Type",                 0,          0,           1, 0,
        Radio("Type:", {1122, 1123}, {"Wishbone", "Telescopic"})),
    Row( 0, "Length",            World,    50.0f, kAboveZero,   100000.0f, 0, WorldSpin(1098, 1099, "Length:")),
    Row(12, "Wheel_Shift",       World,     0.0f, -100000.0f,   100000.0f, 0, FloatSpin(1103, 1104, "Wheel Shift:")),
    Row( 1, "Ruggedness_Factor", Float,     1.0f, kAboveZero, 10000000.0f, 0, FloatSpin(1113, 1114, "Rigidity Factor:")),
    Row( 2, "Ruggedness",        Float, 50000.0f, kAboveZero, 10000000.0f, kNoRollout, LabelOnly("Spring Rigidity:")),
    Row( 3, "Damping",           Float,  5000.0f, kAboveZero, 10000000.0f, kNoRollout, LabelOnly("Oil Damping:")),
    Row( 6, "Shift",             World,    10.0f, -100000.0f,   100000.0f, 0, WorldSpin(1041, 1042, "Damper Shift:")),
    Row(10, "Buffer_Ruggedness", Float, 100000.0f, kAboveZero, 10000000.0f, kNoRollout, LabelOnly("Buffer Rigidity:")),
    Row( 4, "Top_Stop",          World,    10.0f, -100000.0f,   100000.0f, 0, WorldSpin(1037, 1038, "Top Stop:")),
    Row( 5, "Bottom_Stop",       World,   -15.0f, -100000.0f,   100000.0f, 0, WorldSpin(1039, 1040, "Bottom Stop:")),
    Flag(8, "Drive",                                                       0, Check(1100, "Wheel Drive:")),
    Flag(7, "Steering",                                                    0, Check(1101, "Steering Gear:")),
    Flag(9, "Handbrake",                                                   0, Check(1102, "Handbrake:")),
};
constexpr std::int32_t kSuspensionAttach[] = {11, 0, 1, 6, 12, 4, 5, 8, 7, 9};

constexpr ParamRollout kWheelRollouts[] = {{125, 4}};
constexpr ParamRow kWheelRows[] = {
    Row(0, "Radius",     World,     50.0f, kAboveZero,   100000.0f, 0, WorldSpin(1022, 1023, "Radius:")),
    Row(1, "Width",      World,     15.0f, kAboveZero,   100000.0f, 0, WorldSpin(1087, 1088, "Width:")),
    Row(2, "Mass",       Float,     50.0f, kAboveZero,   100000.0f, 0, FloatSpin(1089, 1090, "Mass:")),
    Row(3, "Ruggedness", Float, 500000.0f, kAboveZero, 10000000.0f, 0, FloatSpin(1091, 1092, "Ruggedness:")),
    Row(4, "Grip",       Float,      1.0f, kAboveZero,      100.0f, 0, FloatSpin(1093, 1094, "Grip:")),
    Empty(5, "Pattern_Map", Texmap, kParamPlain,                    0, MapButton(1117, "Tread Pattern")),
};
constexpr std::int32_t kWheelAttach[] = {0, 1, 2, 3, 4, 5};

constexpr ParamRollout kSphereRollouts[] = {{139, 4}};
constexpr ParamRow kSphereRows[] = {
    Row(0, "Radius",     World,     50.0f, kAboveZero,   100000.0f, 0, WorldSpin(1022, 1023, "Radius:")),
    Row(1, "Ruggedness", Float, 500000.0f, kAboveZero, 10000000.0f, 0, FloatSpin(1091, 1092, "Ruggedness:")),
    Row(2, "Grip",       Float,      0.3f,       0.0f, 10000000.0f, 0, FloatSpin(1093, 1094, "Grip:")),
};

constexpr ParamRollout kHitchRollouts[] = {{136, 4}};
constexpr ParamRow kHitchRows[] = {
    Row(0, "Radius",     World,     50.0f, kAboveZero,   100000.0f, 0, WorldSpin(1022, 1023, "Dummy Size:")),
    Row(1, "Ruggedness", Float, 500000.0f, kAboveZero, 10000000.0f, 0, FloatSpin(1091, 1092, "Ruggedness:")),
    Empty(2, "Connection Node", Node, kParamPlain,                  0, Pick(1121, "Connect To:", NodeValidator::Tongue)),
};

constexpr ParamRollout kTongueRollouts[] = {{137, 4}};
constexpr ParamRow kTongueRows[] = {
    Row(0, "Radius",     World,     50.0f, kAboveZero,   100000.0f, 0, WorldSpin(1022, 1023, "Dummy Size:")),
};

constexpr ParamRollout kPushRollouts[] = {{138, 4}};
constexpr ParamRow kPushRows[] = {
    Row(0, "Dummy_Size",     World,  0.0f,   kAboveZero,   100000.0f, 0, WorldSpin(1130, 1103, "Dummy Size:")),
    Row(2, "Push_Force",     World, 10.0f, -10000000.0f, 10000000.0f, 0, WorldSpin(1128, 1101, "Force (Mn):")),
    Row(1, "Push_Type",                 0,            0,           1, 0,
        Radio("Type:", {1122, 1123}, {"Single", "Animatable"})),
    Row(3, "Start_Time",             4000,    -99999999,    99999999, 0,
        TimeSpin(1126, 1131, "Start Frame:", /*labelId=*/1132, /*scale=*/20.0f)),
    Row(4, "Push_Length",    Float,  1.0f,       0.001f, 10000000.0f, 0,
        FloatSpin(1127, 1100, "Length (s):", /*labelId=*/1133)),
    Animatable(
    Row(5, "Push_Anim_Mult", Float,  0.0f, -10000000.0f, 10000000.0f, 0,
        FloatSpin(1129, 1102, "Mult(%):", /*labelId=*/1135))),
    Empty(6, "Tavrik", Node, kParamNoReference,                       0, Pick(1063, "Apply to Tavrik:", NodeValidator::Master)),
};

constexpr ParamRollout kStartRollouts[] = {{133, 4}};
constexpr ParamRow kStartRows[] = {
    Row(0, "Size", World, 0.0f, kAboveZero, 100000.0f, 0, WorldSpin(1063, 1064, "Dummy Size:")),
};

constexpr ParamRollout kControlRollouts[] = {{116, 0}};
constexpr ParamRow kControlRows[] = {
    Empty(0, "Tavrik_Node",   Node,   kParamPlain, kNoRollout, {}),
    Hidden(1, "Object_Type", 0, 0, 8),
    Hidden(2, "Axle_Num",    0, 0, 199),
    Empty(3, "Slot_Position", Matrix, kParamPlain, kNoRollout, {}),
};

constexpr ParamRollout kTrackTexRollouts[] = {{134, 4}};
constexpr ParamRow kTrackTexRows[] = {
    Empty(0, "Frame_Step", Int, kParamPlain, kNoRollout, {}),
    Row(1, "General_Intensity", Float, 0.0f, 0.0f, 1000.0f, 0, FloatSpin(1118, 1119, "General Intensity:")),
    Row(2, "Brake_Intensity",   Float, 1.0f, 0.0f, 1000.0f, 0, FloatSpin(1120, 1121, "Brake Intensity:")),
    Row(3, "Samples",                    20,    1,     200, 0, IntSpin(1122, 1123, "Samples:")),
    Row(4, "Base_Bump",         Float, 1.0f, 0.0f, 1000.0f, 0, FloatSpin(1124, 1125, "Base Bump Intensity:")),
    Row(5, "Pattern_Bump",      Float, 2.0f, 0.0f, 1000.0f, 0, FloatSpin(1126, 1127, "Pattern Bump Intensity:")),
};

constexpr ParamTable kTables[] = {
    {"Tavrik",           kBlockFlagsSeveralRollouts, kMasterRollouts, kMasterRows, kMasterAttach},
    {"ChassisObject",    kBlockFlags, kChassisRollouts,    kChassisRows,    kChassisAttach},
    {"SuspensionObject", kBlockFlags, kSuspensionRollouts, kSuspensionRows, kSuspensionAttach},
    {"WheelObject",      kBlockFlags, kWheelRollouts,      kWheelRows,      kWheelAttach},
    {"CSphereObject",    kBlockFlags, kSphereRollouts,     kSphereRows,     {}},
    {"HitchObject",      kBlockFlags, kHitchRollouts,      kHitchRows,      {}},
    {"TongueObject",     kBlockFlags, kTongueRollouts,     kTongueRows,     {}},
    {"PushObject",       kBlockFlags, kPushRollouts,       kPushRows,       {}},
    {"StartObject",      kBlockFlags, kStartRollouts,      kStartRows,      {}},
    {"TavrikControl",    kBlockFlags, kControlRollouts,    kControlRows,    {}},
    {"TavrikTrackTex",   kBlockFlags, kTrackTexRollouts,   kTrackTexRows,   {}},
};

// clang-format on

}  // namespace

std::span<const ParamTable> ParamTables() { return kTables; }

const ParamTable* FindParamTable(std::string_view className) {
    const auto* const found = std::ranges::find(kTables, className, &ParamTable::className);
    return found != std::end(kTables) ? found : nullptr;
}

const ParamRow* FindParam(const ParamTable& table, std::int32_t id) {
    const auto found = std::ranges::find(table.rows, id, &ParamRow::id);
    return found != table.rows.end() ? &*found : nullptr;
}

float DefaultFloat(const ParamTable& table, std::int32_t id) {
    const ParamRow* const row = FindParam(table, id);
    assert(row != nullptr && row->hasDefault && (row->type == Float || row->type == World || row->type == WorldTable));
    return float(row->defaultValue);
}

std::int32_t DefaultInt(const ParamTable& table, std::int32_t id) {
    const ParamRow* const row = FindParam(table, id);
    assert(row != nullptr && row->hasDefault && (row->type == Int || row->type == Bool));
    return std::int32_t(row->defaultValue);
}

double ClampToRange(const ParamRow& row, double value) {
    if (!row.hasRange) return value;
    return std::isnan(value) ? row.low : std::clamp(value, row.low, row.high);
}

std::string_view WantedClass(NodeValidator validator) {
    switch (validator) {
        case NodeValidator::None:
            return {};
        case NodeValidator::Tongue:
            return "TongueObject";
        case NodeValidator::Master:
            return "Tavrik";
    }
    return {};
}

bool ValidatorAccepts(NodeValidator validator, bool cleared, std::string_view objectClass) {
    const std::string_view wanted = WantedClass(validator);
    return cleared || wanted.empty() || objectClass == wanted;
}

std::string_view ParamString(std::int32_t id) {
    switch (id) {
        case 1:
            return "Tavrik";  // the library itself
        case 4:
            return "Parameters";
        case 11:
            return "Controller Setup";
        case 23:
            return "Car Setup";
        case 31:
            return "Animation";
        case 32:
            return "Driving Parameters";
        default:
            return {};
    }
}

}  // namespace tavrik
