#include "tests/plugin/golden_blocks.h"

#include <cwchar>
#include <initializer_list>

#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

constexpr int kFloat = 0, kInt = 1, kFlag = 4, kLength = 7, kTexmap = 15, kNode = 17, kMatrix = 20, kLengths = 0x807;
constexpr int kAsInt = 0, kAsFloat = 1, kAsLength = 2, kAsTime = 6;
constexpr int kAnimatable = 1, kNoReference = 0x100;

GoldenControl Spin(int map, int edit, std::vector<int> ids, float scale = -1.0f) {
    return {Kind::Spinner, map, edit, std::move(ids), scale};
}
GoldenControl Buttons(int map, std::vector<int> ids) { return {Kind::Radio, map, 0, std::move(ids)}; }
GoldenControl CheckBox(int map, int id) { return {Kind::Check, map, 0, {id}}; }
GoldenControl PickButton(int map, int id, bool picky = false) { return {Kind::Pick, map, 0, {id}, -1.0f, picky}; }
GoldenControl MapButton(int id) { return {Kind::Map, 0, 0, {id}}; }

/// A number with default, range and perhaps a control.
GoldenParam Number(int id, const wchar_t* name, int type, double byDefault, double low, double high, GoldenControl control = {},
                   int flags = 0) {
    return {id, name, type, flags, byDefault, low, high, std::move(control)};
}
GoldenParam Flag(int id, const wchar_t* name, GoldenControl control) {
    return {id, name, kFlag, 0, 0.0, {}, {}, std::move(control)};
}
GoldenParam Other(int id, const wchar_t* name, int type, int flags = 0, GoldenControl control = {}) {
    return {id, name, type, flags, {}, {}, {}, std::move(control)};
}
/// A table of three.
GoldenParam Three(GoldenParam param) {
    param.entries = 3;
    return param;
}

std::vector<GoldenParam> MasterParams() {
    return {
        Three(Number(0, L"Dummy_Size", kLengths, 20, 0.0001, 100000, Spin(0, kAsLength, {1096, 1097, 1098, 1099, 1100, 1101}))),
        Number(1, L"Gravity", kLength, 980, 0.0001, 1000000, Spin(1, kAsLength, {1111, 1112})),
        Other(2, L"Surface_Node", kNode, kNoReference, PickButton(1, 1022)),
        Other(3, L"Start_Node", kNode, kNoReference, PickButton(1, 1024)),
        Number(4, L"Frame_Step", kInt, 5, 2, 100, Spin(2, kAsInt, {1033, 1034})),
        Number(5, L"Sample_Step", kInt, 30, 1, 1000, Spin(2, kAsInt, {1088, 1089})),
        Number(6, L"Rudder_Sensitivity", kFloat, 5, 0.0001, 1000000, Spin(3, kAsFloat, {1074, 1075})),
        Number(7, L"Rudder_Angle", kFloat, 45, 0.0001, 1000000, Spin(3, kAsFloat, {1080, 1081})),
        Flag(16, L"Bike_Drive", CheckBox(3, 1124)),
        Number(17, L"Balance_Force", kFloat, 2, 0, 10, Spin(3, kAsFloat, {1094, 1095})),
        Number(15, L"Differencial_Drive_Sensitivity", kFloat, 0, 0, 1000000, Spin(3, kAsFloat, {1096, 1097})),
        Number(8, L"Throttle_Sensitivity", kFloat, 2000, 0.0001, 1000000, Spin(3, kAsFloat, {1078, 1079})),
        Number(9, L"Brake_Sensitivity", kFloat, 2000, 0.0001, 1000000, Spin(3, kAsFloat, {1084, 1085})),
        Number(14, L"Max_Drift_Speed", kFloat, 10, 0.0001, 1000000, Spin(3, kAsFloat, {1092, 1093})),
        Number(10, L"Time_Delay", kInt, 30, 5, 10000, Spin(3, kAsInt, {1082, 1083})),
        Number(11, L"Driving_Type", kInt, 1, 0, 3, Buttons(3, {1086, 1087, 1090, 1091})),
        Other(12, L"Driving_Target", kNode, 0, PickButton(3, 1016)),
        Number(13, L"Driving_Forecast", kInt, 4800, 0, 100000, Spin(3, kAsTime, {1088, 1089})),
        Number(18, L"CtrlKbdThrottle", kInt, 87, 1, 255),
        Number(22, L"CtrlKbdBreak", kInt, 83, 1, 255),
        Number(19, L"CtrlKbdLeft", kInt, 65, 1, 255),
        Number(20, L"CtrlKbdRight", kInt, 68, 1, 255),
        Number(23, L"CtrlKbdHandBreak", kInt, 32, 1, 255),
        Number(21, L"CtrlKbdFwdBkwd", kInt, 33, 1, 255),
        Number(24, L"CtrlKbdNitro", kInt, 16, 0, 255),
        Number(32, L"CtrlJoyDriver", kInt, 0, 0, 10),
        Number(33, L"CtrlJoyPort", kInt, 0, 0, 10),
        Number(25, L"CtrlJoyForward", kInt, 32768, 0, 255),
        Number(26, L"CtrlJoyBackward", kInt, 8192, 0, 255),
        Number(27, L"CtrlJoyBreak", kInt, 16384, 0, 255),
        Number(28, L"CtrlJoyHandBreak", kInt, 4096, 0, 255),
        Number(29, L"CtrlJoyNitro", kInt, 512, 0, 255),
        Number(30, L"CtrlJoyWheelCtrl", kInt, 0, 0, 5),
        Number(31, L"CtrlJoyThrottleCtrl", kInt, 0, 0, 5),
    };
}

std::vector<GoldenParam> WheelParams() {
    return {
        Number(0, L"Radius", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1022, 1023})),
        Number(1, L"Width", kLength, 15, 0.0001, 100000, Spin(0, kAsLength, {1087, 1088})),
        Number(2, L"Mass", kFloat, 50, 0.0001, 100000, Spin(0, kAsFloat, {1089, 1090})),
        Number(3, L"Ruggedness", kFloat, 500000, 0.0001, 10000000, Spin(0, kAsFloat, {1091, 1092})),
        Number(4, L"Grip", kFloat, 1, 0.0001, 100, Spin(0, kAsFloat, {1093, 1094})),
        Other(5, L"Pattern_Map", kTexmap, 0, MapButton(1117)),
    };
}

std::vector<GoldenParam> SuspensionParams() {
    return {
        Number(11, L"Suspension_Type", kInt, 0, 0, 1, Buttons(0, {1122, 1123})),
        Number(0, L"Length", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1098, 1099})),
        Number(12, L"Wheel_Shift", kLength, 0, -100000, 100000, Spin(0, kAsFloat, {1103, 1104})),
        Number(1, L"Ruggedness_Factor", kFloat, 1, 0.0001, 10000000, Spin(0, kAsFloat, {1113, 1114})),
        Number(2, L"Ruggedness", kFloat, 50000, 0.0001, 10000000),
        Number(3, L"Damping", kFloat, 5000, 0.0001, 10000000),
        Number(6, L"Shift", kLength, 10, -100000, 100000, Spin(0, kAsLength, {1041, 1042})),
        Number(10, L"Buffer_Ruggedness", kFloat, 100000, 0.0001, 10000000),
        Number(4, L"Top_Stop", kLength, 10, -100000, 100000, Spin(0, kAsLength, {1037, 1038})),
        Number(5, L"Bottom_Stop", kLength, -15, -100000, 100000, Spin(0, kAsLength, {1039, 1040})),
        Flag(8, L"Drive", CheckBox(0, 1100)),
        Flag(7, L"Steering", CheckBox(0, 1101)),
        Flag(9, L"Handbrake", CheckBox(0, 1102)),
    };
}

std::vector<GoldenParam> ControlParams() {
    return {
        Other(0, L"Tavrik_Node", kNode),
        Number(1, L"Object_Type", kInt, 0, 0, 8),
        Number(2, L"Axle_Num", kInt, 0, 0, 199),
        Other(3, L"Slot_Position", kMatrix),
    };
}

std::vector<GoldenParam> ChassisParams() {
    return {
        Number(0, L"Width", kLength, 70, 0.0001, 100000, Spin(0, kAsLength, {1087, 1088})),
        Number(1, L"Length", kLength, 200, 0.0001, 100000, Spin(0, kAsLength, {1098, 1099})),
        Number(2, L"Height", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1100, 1101})),
        Number(5, L"Rotation_Center_Shift", kFloat, -70, -100000, 100000, Spin(0, kAsFloat, {1106, 1107})),
        Number(3, L"Mass", kFloat, 1000, 0.0001, 100000, Spin(0, kAsFloat, {1089, 1090})),
        Number(4, L"Solidity", kFloat, 2500000, 0.0001, 100000000, Spin(0, kAsFloat, {1102, 1103})),
    };
}

std::vector<GoldenParam> StartParams() {
    return {Number(0, L"Size", kLength, 0, 0.0001, 100000, Spin(0, kAsLength, {1063, 1064}))};
}

std::vector<GoldenParam> TextureParams() {
    return {
        Other(0, L"Frame_Step", kInt),
        Number(1, L"General_Intensity", kFloat, 0, 0, 1000, Spin(0, kAsFloat, {1118, 1119})),
        Number(2, L"Brake_Intensity", kFloat, 1, 0, 1000, Spin(0, kAsFloat, {1120, 1121})),
        Number(3, L"Samples", kInt, 20, 1, 200, Spin(0, kAsInt, {1122, 1123})),
        Number(4, L"Base_Bump", kFloat, 1, 0, 1000, Spin(0, kAsFloat, {1124, 1125})),
        Number(5, L"Pattern_Bump", kFloat, 2, 0, 1000, Spin(0, kAsFloat, {1126, 1127})),
    };
}

std::vector<GoldenParam> HitchParams() {
    return {
        Number(0, L"Radius", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1022, 1023})),
        Number(1, L"Ruggedness", kFloat, 500000, 0.0001, 10000000, Spin(0, kAsFloat, {1091, 1092})),
        Other(2, L"Connection Node", kNode, 0, PickButton(0, 1121, true)),
    };
}

std::vector<GoldenParam> TongueParams() {
    return {Number(0, L"Radius", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1022, 1023}))};
}

std::vector<GoldenParam> PushParams() {
    return {
        Number(0, L"Dummy_Size", kLength, 0, 0.0001, 100000, Spin(0, kAsLength, {1130, 1103})),
        Number(2, L"Push_Force", kLength, 10, -10000000, 10000000, Spin(0, kAsLength, {1128, 1101})),
        Number(1, L"Push_Type", kInt, 0, 0, 1, Buttons(0, {1122, 1123})),
        Number(3, L"Start_Time", kInt, 4000, -99999999, 99999999, Spin(0, kAsTime, {1126, 1131}, 20.0f)),
        Number(4, L"Push_Length", kFloat, 1, 0.001, 10000000, Spin(0, kAsFloat, {1127, 1100})),
        Number(5, L"Push_Anim_Mult", kFloat, 0, -10000000, 10000000, Spin(0, kAsFloat, {1129, 1102}), kAnimatable),
        Other(6, L"Tavrik", kNode, kNoReference, PickButton(0, 1063, true)),
    };
}

std::vector<GoldenParam> SphereParams() {
    return {
        Number(0, L"Radius", kLength, 50, 0.0001, 100000, Spin(0, kAsLength, {1022, 1023})),
        Number(1, L"Ruggedness", kFloat, 500000, 0.0001, 10000000, Spin(0, kAsFloat, {1091, 1092})),
        Number(2, L"Grip", kFloat, 0.3, 0, 10000000, Spin(0, kAsFloat, {1093, 1094})),
    };
}

}  // namespace

const std::vector<GoldenBlock>& GoldenBlocks() {
    constexpr SClass_ID kHelper = 0x50, kController = 0x9008, kTexture = 0xC10;
    static const auto& blocks = *new std::vector<GoldenBlock>{
        {L"Tavrik",
         kHelper,
         kMasterClass,
         38,
         {{0, 130, 23}, {1, 131, 4}, {2, 132, 31}, {3, 124, 32}, {4, 142, 11}},
         MasterParams()},
        {L"Wheel", kHelper, kWheelClass, 6, {{0, 125, 4}}, WheelParams()},
        {L"Suspension", kHelper, kSuspensionClass, 6, {{0, 126, 4}}, SuspensionParams()},
        {L"TavrikControl", kController, kControlClass, 6, {{0, 116, 0}}, ControlParams()},
        {L"Chassis", kHelper, kChassisClass, 6, {{0, 129, 4}}, ChassisParams()},
        {L"Start Position", kHelper, kStartClass, 6, {{0, 133, 4}}, StartParams()},
        {L"TavrikTrackTexture", kTexture, kTextureClass, 6, {{0, 134, 4}}, TextureParams()},
        {L"Trailer Hitch", kHelper, kHitchClass, 6, {{0, 136, 4}}, HitchParams()},
        {L"Trailer Tongue", kHelper, kTongueClass, 6, {{0, 137, 4}}, TongueParams()},
        {L"Push", kHelper, kPushClass, 6, {{0, 138, 4}}, PushParams()},
        {L"Col. Sphere", kHelper, kSphereClass, 6, {{0, 139, 4}}, SphereParams()},
    };
    return blocks;
}

const GoldenBlock& GoldenBlockOf(const wchar_t* className) {
    for (const GoldenBlock& block : GoldenBlocks()) {
        if (std::wcscmp(block.className, className) == 0) return block;
    }
    std::abort();
}

}  // namespace plugin_test
