// Each table against a listing of its own, one line to a parameter: number, name, type, flags, default, range, rollout, control
// and its numbers, label with [its parts] and (its number). A line here that changes breaks scenes that are in use.

#include <gtest/gtest.h>

#include <charconv>
#include <string>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

/// The shortest digits that name this single-precision number and no other.
std::string SingleText(double value) {
    EXPECT_EQ(value, double(float(value))) << "a limit finer than its parameter";
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, float(value), std::chars_format::fixed);
    return {text, end.ptr};
}

std::string NumberText(const ParamRow& row, double value) {
    const bool whole = row.type == ParamType::Int || row.type == ParamType::Bool;
    return whole ? std::to_string(std::int64_t(value)) : SingleText(value);
}

std::string TypeText(const ParamRow& row) {
    switch (row.type) {
        case ParamType::Float:
            return "float";
        case ParamType::Int:
            return "int";
        case ParamType::Bool:
            return "bool";
        case ParamType::World:
            return "world";
        case ParamType::Texmap:
            return "texmap";
        case ParamType::Node:
            return "node";
        case ParamType::Matrix:
            return "matrix";
        case ParamType::WorldTable:
            return "world[" + std::to_string(row.entries) + "]";
    }
    return "?";
}

std::string FlagsText(const ParamRow& row) {
    switch (row.flags) {
        case kParamPlain:
            return "-";
        case kParamAnimatable:
            return "animatable";
        case kParamNoReference:
            return "no reference";
        default:
            return "?";
    }
}

std::string EditText(EditType edit) {
    switch (edit) {
        case EditType::Int:
            return "int";
        case EditType::Float:
            return "float";
        case EditType::Universe:
            return "universe";
        case EditType::Time:
            return "time";
    }
    return "?";
}

std::string KindText(const ParamControl& control) {
    switch (control.kind) {
        case ControlKind::None:
            return "none";
        case ControlKind::Spinner:
            return "spin " + EditText(control.edit);
        case ControlKind::Radio:
            return "radio";
        case ControlKind::CheckBox:
            return "check";
        case ControlKind::PickButton:
            return "pick";
        case ControlKind::MapButton:
            return "map";
    }
    return "?";
}

std::string ControlText(const ParamControl& control) {
    std::string text = KindText(control);
    for (std::int32_t i = 0; i < control.idCount; ++i) {
        const bool spinner = control.kind == ControlKind::Spinner && i % 2 == 1;
        text += (spinner ? "/" : " ") + std::to_string(control.ids[i]);
    }
    if (control.scale != kAutoScale) text += " scale " + SingleText(double(control.scale));
    if (control.validator == NodeValidator::Tongue) text += " tongue";
    if (control.validator == NodeValidator::Master) text += " master";
    return text;
}

std::string LabelText(const ParamControl& control) {
    std::string text(control.label);
    for (std::int32_t i = 0; i < control.partLabelCount; ++i) text += "[" + std::string(control.partLabels[i]) + "]";
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n')) text.replace(at, 1, "\\n");
    if (control.labelId != 0) text += " (" + std::to_string(control.labelId) + ")";
    return text;
}

std::string RowText(const ParamRow& row) {
    std::string text = std::to_string(row.id) + " | " + std::string(row.name) + " | " + TypeText(row) + " | " + FlagsText(row);
    text += " | " + (row.hasDefault ? NumberText(row, row.defaultValue) : "none");
    text += " | " + (row.hasRange ? NumberText(row, row.low) + ".." + NumberText(row, row.high) : "none");
    text += " | " + (row.rollout == kNoRollout ? "-" : std::to_string(row.rollout));
    text += " | " + ControlText(row.control) + " |";
    const std::string label = LabelText(row.control);
    return label.empty() ? text : text + " " + label;
}

/// All rows of one class, a line break before each and one at the end.
std::string Listing(std::string_view className) {
    const ParamTable* const table = FindParamTable(className);
    if (table == nullptr) return "no such table";
    std::string text = "\n";
    for (const ParamRow& row : table->rows) text += RowText(row) + "\n";
    return text;
}

TEST(ParameterListing, MasterIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("Tavrik"), R"(
0 | Dummy_Size | world[3] | - | 20 | 0.0001..100000 | 0 | spin universe 1096/1097 1098/1099 1100/1101 | Dummy Size[X:][Y:][Z:]
1 | Gravity | world | - | 980 | 0.0001..1000000 | 1 | spin universe 1111/1112 | Gravity:
2 | Surface_Node | node | no reference | none | none | 1 | pick 1022 | Surface:
3 | Start_Node | node | no reference | none | none | 1 | pick 1024 | Start Position:
4 | Frame_Step | int | - | 5 | 2..100 | 2 | spin int 1033/1034 | Step/Frame:
5 | Sample_Step | int | - | 30 | 1..1000 | 2 | spin int 1088/1089 | Samples:
6 | Rudder_Sensitivity | float | - | 5 | 0.0001..1000000 | 3 | spin float 1074/1075 | Rudder Sens:
7 | Rudder_Angle | float | - | 45 | 0.0001..1000000 | 3 | spin float 1080/1081 | Rudder Angle:
16 | Bike_Drive | bool | - | 0 | none | 3 | check 1124 | Bike Driving:
17 | Balance_Force | float | - | 2 | 0..10 | 3 | spin float 1094/1095 | AutoBalance: (1125)
15 | Differencial_Drive_Sensitivity | float | - | 0 | 0..1000000 | 3 | spin float 1096/1097 | Differential\nDrive Sens:
8 | Throttle_Sensitivity | float | - | 2000 | 0.0001..1000000 | 3 | spin float 1078/1079 | Throttle Sens:
9 | Brake_Sensitivity | float | - | 2000 | 0.0001..1000000 | 3 | spin float 1084/1085 | Brake Sens:
14 | Max_Drift_Speed | float | - | 10 | 0.0001..1000000 | 3 | spin float 1092/1093 | Max Drift\nSpeed km/h:
10 | Time_Delay | int | - | 30 | 5..10000 | 3 | spin int 1082/1083 | Time delay:
11 | Driving_Type | int | - | 1 | 0..3 | 3 | radio 1086 1087 1090 1091 | )"
                                 R"([Use Mouse][Use Keyboard][Use Gamepad / Wheel][Use Target(Non Spline)/\nPath(Spline)]
12 | Driving_Target | node | - | none | none | 3 | pick 1016 | Target/\nPath
13 | Driving_Forecast | int | - | 4800 | 0..100000 | 3 | spin time 1088/1089 | Forecast Frames:
18 | CtrlKbdThrottle | int | - | 87 | 1..255 | - | none |
22 | CtrlKbdBreak | int | - | 83 | 1..255 | - | none |
19 | CtrlKbdLeft | int | - | 65 | 1..255 | - | none |
20 | CtrlKbdRight | int | - | 68 | 1..255 | - | none |
23 | CtrlKbdHandBreak | int | - | 32 | 1..255 | - | none |
21 | CtrlKbdFwdBkwd | int | - | 33 | 1..255 | - | none |
24 | CtrlKbdNitro | int | - | 16 | 0..255 | - | none |
32 | CtrlJoyDriver | int | - | 0 | 0..10 | - | none |
33 | CtrlJoyPort | int | - | 0 | 0..10 | - | none |
25 | CtrlJoyForward | int | - | 32768 | 0..255 | - | none |
26 | CtrlJoyBackward | int | - | 8192 | 0..255 | - | none |
27 | CtrlJoyBreak | int | - | 16384 | 0..255 | - | none |
28 | CtrlJoyHandBreak | int | - | 4096 | 0..255 | - | none |
29 | CtrlJoyNitro | int | - | 512 | 0..255 | - | none |
30 | CtrlJoyWheelCtrl | int | - | 0 | 0..5 | - | none |
31 | CtrlJoyThrottleCtrl | int | - | 0 | 0..5 | - | none |
)");
}

TEST(ParameterListing, ChassisIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("ChassisObject"), R"(
0 | Width | world | - | 70 | 0.0001..100000 | 0 | spin universe 1087/1088 | Width:
1 | Length | world | - | 200 | 0.0001..100000 | 0 | spin universe 1098/1099 | Length:
2 | Height | world | - | 50 | 0.0001..100000 | 0 | spin universe 1100/1101 | Height:
5 | Rotation_Center_Shift | float | - | -70 | -100000..100000 | 0 | spin float 1106/1107 | Rotation Center\nShift (%):
3 | Mass | float | - | 1000 | 0.0001..100000 | 0 | spin float 1089/1090 | Mass:
4 | Solidity | float | - | 2500000 | 0.0001..100000000 | 0 | spin float 1102/1103 | Solidity:
)");
}

TEST(ParameterListing, SuspensionIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("SuspensionObject"), R"(
11 | Suspension_Type | int | - | 0 | 0..1 | 0 | radio 1122 1123 | Type:[Wishbone][Telescopic]
0 | Length | world | - | 50 | 0.0001..100000 | 0 | spin universe 1098/1099 | Length:
12 | Wheel_Shift | world | - | 0 | -100000..100000 | 0 | spin float 1103/1104 | Wheel Shift:
1 | Ruggedness_Factor | float | - | 1 | 0.0001..10000000 | 0 | spin float 1113/1114 | Rigidity Factor:
2 | Ruggedness | float | - | 50000 | 0.0001..10000000 | - | none | Spring Rigidity:
3 | Damping | float | - | 5000 | 0.0001..10000000 | - | none | Oil Damping:
6 | Shift | world | - | 10 | -100000..100000 | 0 | spin universe 1041/1042 | Damper Shift:
10 | Buffer_Ruggedness | float | - | 100000 | 0.0001..10000000 | - | none | Buffer Rigidity:
4 | Top_Stop | world | - | 10 | -100000..100000 | 0 | spin universe 1037/1038 | Top Stop:
5 | Bottom_Stop | world | - | -15 | -100000..100000 | 0 | spin universe 1039/1040 | Bottom Stop:
8 | Drive | bool | - | 0 | none | 0 | check 1100 | Wheel Drive:
7 | Steering | bool | - | 0 | none | 0 | check 1101 | Steering Gear:
9 | Handbrake | bool | - | 0 | none | 0 | check 1102 | Handbrake:
)");
}

TEST(ParameterListing, WheelIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("WheelObject"), R"(
0 | Radius | world | - | 50 | 0.0001..100000 | 0 | spin universe 1022/1023 | Radius:
1 | Width | world | - | 15 | 0.0001..100000 | 0 | spin universe 1087/1088 | Width:
2 | Mass | float | - | 50 | 0.0001..100000 | 0 | spin float 1089/1090 | Mass:
3 | Ruggedness | float | - | 500000 | 0.0001..10000000 | 0 | spin float 1091/1092 | Ruggedness:
4 | Grip | float | - | 1 | 0.0001..100 | 0 | spin float 1093/1094 | Grip:
5 | Pattern_Map | texmap | - | none | none | 0 | map 1117 | Tread Pattern
)");
}

TEST(ParameterListing, SphereIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("CSphereObject"), R"(
0 | Radius | world | - | 50 | 0.0001..100000 | 0 | spin universe 1022/1023 | Radius:
1 | Ruggedness | float | - | 500000 | 0.0001..10000000 | 0 | spin float 1091/1092 | Ruggedness:
2 | Grip | float | - | 0.3 | 0..10000000 | 0 | spin float 1093/1094 | Grip:
)");
}

TEST(ParameterListing, HitchIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("HitchObject"), R"(
0 | Radius | world | - | 50 | 0.0001..100000 | 0 | spin universe 1022/1023 | Dummy Size:
1 | Ruggedness | float | - | 500000 | 0.0001..10000000 | 0 | spin float 1091/1092 | Ruggedness:
2 | Connection Node | node | - | none | none | 0 | pick 1121 tongue | Connect To:
)");
}

TEST(ParameterListing, TongueIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("TongueObject"), R"(
0 | Radius | world | - | 50 | 0.0001..100000 | 0 | spin universe 1022/1023 | Dummy Size:
)");
}

TEST(ParameterListing, PushIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("PushObject"), R"(
0 | Dummy_Size | world | - | 0 | 0.0001..100000 | 0 | spin universe 1130/1103 | Dummy Size:
2 | Push_Force | world | - | 10 | -10000000..10000000 | 0 | spin universe 1128/1101 | Force (Mn):
1 | Push_Type | int | - | 0 | 0..1 | 0 | radio 1122 1123 | Type:[Single][Animatable]
3 | Start_Time | int | - | 4000 | -99999999..99999999 | 0 | spin time 1126/1131 scale 20 | Start Frame: (1132)
4 | Push_Length | float | - | 1 | 0.001..10000000 | 0 | spin float 1127/1100 | Length (s): (1133)
5 | Push_Anim_Mult | float | animatable | 0 | -10000000..10000000 | 0 | spin float 1129/1102 | Mult(%): (1135)
6 | Tavrik | node | no reference | none | none | 0 | pick 1063 master | Apply to Tavrik:
)");
}

TEST(ParameterListing, StartPositionIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("StartObject"), R"(
0 | Size | world | - | 0 | 0.0001..100000 | 0 | spin universe 1063/1064 | Dummy Size:
)");
}

TEST(ParameterListing, ControllerIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("TavrikControl"), R"(
0 | Tavrik_Node | node | - | none | none | - | none |
1 | Object_Type | int | - | 0 | 0..8 | - | none |
2 | Axle_Num | int | - | 0 | 0..199 | - | none |
3 | Slot_Position | matrix | - | none | none | - | none |
)");
}

TEST(ParameterListing, TrackTextureIsAsScenesKnowIt) {
    EXPECT_EQ(Listing("TavrikTrackTex"), R"(
0 | Frame_Step | int | - | none | none | - | none |
1 | General_Intensity | float | - | 0 | 0..1000 | 0 | spin float 1118/1119 | General Intensity:
2 | Brake_Intensity | float | - | 1 | 0..1000 | 0 | spin float 1120/1121 | Brake Intensity:
3 | Samples | int | - | 20 | 1..200 | 0 | spin int 1122/1123 | Samples:
4 | Base_Bump | float | - | 1 | 0..1000 | 0 | spin float 1124/1125 | Base Bump Intensity:
5 | Pattern_Bump | float | - | 2 | 0..1000 | 0 | spin float 1126/1127 | Pattern Bump Intensity:
)");
}

}  // namespace
}  // namespace tavrik
