// What stands on the pages of every class, in which order and under which names.

#include <sstream>
#include <tuple>

#include "host/sdk/imtl.h"
#include "host/sdk/picking.h"
#include "tests/plugin/open_panel.h"

namespace plugin_test {
namespace {

const char* Letter(ControlKind kind) {
    switch (kind) {
        case ControlKind::StaticText:
            return "static";
        case ControlKind::Spinner:
            return "spin";
        case ControlKind::CheckBox:
            return "check";
        case ControlKind::RadioGroup:
            return "radio";
        case ControlKind::Button:
            return "button";
        case ControlKind::CheckButton:
            return "check button";
        case ControlKind::PickButton:
            return "pick";
        case ControlKind::MapButton:
            return "map";
        case ControlKind::ComboBox:
            return "combo";
        default:
            return "?";
    }
}

/// Kind, number, label or what is written on it; group in brackets in front, radio buttons behind.
std::string Line(const PanelControl& control) {
    std::ostringstream line;
    if (!control.group.empty()) line << '[' << Narrow(control.group) << "] ";
    line << Letter(control.kind) << ' ' << control.id << ' ';
    if (control.edit != 0) line << "edit " << control.edit << ' ';
    if (control.labelId != 0) line << "label " << control.labelId << ' ';
    line << '"' << Narrow(control.label.empty() ? control.text : control.label) << '"';
    for (const auto& button : control.buttons) line << ' ' << button.id << " \"" << Narrow(button.label) << '"';
    return line.str();
}

using Lines = std::vector<std::string>;
Lines LinesOf(const PanelPage& page) {
    Lines lines;
    for (const PanelControl& control : page.controls) lines.push_back(Line(control));
    return lines;
}

class PluginPanelLayout : public PluginPanel {};

TEST_F(PluginPanelLayout, AMastersPagesHoldTheirControlsInOrder) {
    Open(kMasterClass);
    const std::vector<PanelPage> panel = ReadPanel();
    ASSERT_EQ(panel.size(), 6u);
    std::vector<std::wstring> titles;
    for (const PanelPage& page : panel) titles.push_back(page.title);
    EXPECT_EQ(titles, (std::vector<std::wstring>{L"Car Setup", L"Parameters", L"Animation", L"Driving Parameters",
                                                 L"Controller Setup", L"About"}));
    EXPECT_EQ(LinesOf(panel[0]), (Lines{"[Dummy Size] spin 1097 edit 1096 \"X:\"", "[Dummy Size] spin 1099 edit 1098 \"Y:\"",
                                        "[Dummy Size] spin 1101 edit 1100 \"Z:\"", "button 1102 \"Update (Lock Components)\"",
                                        "button 1103 \"Reset (Unlock Components)\""}));
    EXPECT_EQ(LinesOf(panel[1]), (Lines{"spin 1112 edit 1111 \"Gravity:\"", "pick 1022 \"Surface:\"",
                                        "button 1023 \"Update Surface\"", "pick 1024 \"Start Position:\""}));
    EXPECT_EQ(LinesOf(panel[2]), (Lines{"spin 1034 edit 1033 \"Step/Frame:\"", "spin 1089 edit 1088 \"Samples:\"",
                                        "button 1107 \"Reset Animation\""}));
    EXPECT_EQ(
        LinesOf(panel[3]),
        (Lines{"spin 1075 edit 1074 \"Rudder Sens:\"", "spin 1081 edit 1080 \"Rudder Angle:\"", "check 1124 \"Bike Driving:\"",
               "spin 1095 edit 1094 label 1125 \"AutoBalance:\"", "spin 1097 edit 1096 \"Differential|Drive Sens:\"",
               "spin 1079 edit 1078 \"Throttle Sens:\"", "spin 1085 edit 1084 \"Brake Sens:\"",
               "spin 1093 edit 1092 \"Max Drift|Speed km/h:\"", "spin 1083 edit 1082 \"Time delay:\"",
               "radio 1086 \"\" 1086 \"Use Mouse\" 1087 \"Use Keyboard\" 1090 \"Use Gamepad / Wheel\" "
               "1091 \"Use Target(Non Spline)/|Path(Spline)\"",
               "pick 1016 \"Target/|Path\"", "spin 1089 edit 1088 \"Forecast Frames:\"", "button 1015 \"Drive\""}));
    EXPECT_EQ(
        LinesOf(panel[4]),
        (Lines{"[Keyboard] button 2000 \"Throttle:\"", "[Keyboard] button 1010 \"Left:\"", "[Keyboard] button 1011 \"Right:\"",
               "[Keyboard] button 1018 \"Break:\"", "[Keyboard] button 1020 \"Hand Break:\"",
               "[Keyboard] button 1012 \"Fwd / Bwd:\"", "[Keyboard] button 1023 \"Nitro:\"", "[Gamepad] combo 1137 \"Driver:\"",
               "[Gamepad] combo 1138 label 1141 \"Port:\"", "[Gamepad] combo 1139 label 1142 \"Wheel:\"",
               "[Gamepad] combo 1140 label 1143 \"Throttle:\"", "[Gamepad] button 1016 \"Forward:\"",
               "[Gamepad] button 1017 \"Backward:\"", "[Gamepad] button 1019 \"Break:\"",
               "[Gamepad] button 1021 \"Hand Break:\"", "[Gamepad] button 1024 \"Nitro:\"", "button 1022 \"Save\"",
               "button 1025 \"Reset\""}));
    ASSERT_EQ(panel[5].controls.size(), 1u);
    EXPECT_EQ(Line(panel[5].controls[0]).substr(0, 28), "static 1108 \"Tavrik 3.64~|~|");
}

TEST_F(PluginPanelLayout, EveryPartsPageHoldsItsControlsInOrder) {
    const std::vector<std::pair<Class_ID, Lines>> kPages = {
        {kChassisClass,
         {"spin 1088 edit 1087 \"Width:\"", "spin 1099 edit 1098 \"Length:\"", "spin 1101 edit 1100 \"Height:\"",
          "spin 1107 edit 1106 \"Rotation Center|Shift (%):\"", "spin 1090 edit 1089 \"Mass:\"",
          "spin 1103 edit 1102 \"Solidity:\""}},
        {kSuspensionClass,
         {"radio 1122 \"Type:\" 1122 \"Wishbone\" 1123 \"Telescopic\"", "spin 1099 edit 1098 \"Length:\"",
          "spin 1104 edit 1103 \"Wheel Shift:\"", "combo 1110 \"Presets:\"", "spin 1114 edit 1113 \"Rigidity Factor:\"",
          "spin 1042 edit 1041 \"Damper Shift:\"", "spin 1038 edit 1037 \"Top Stop:\"", "spin 1040 edit 1039 \"Bottom Stop:\"",
          "button 1013 \"Additional Damper Settings\"", "check 1100 \"Wheel Drive:\"", "check 1101 \"Steering Gear:\"",
          "check 1102 \"Handbrake:\""}},
        {kWheelClass,
         {"spin 1023 edit 1022 \"Radius:\"", "spin 1088 edit 1087 \"Width:\"", "spin 1090 edit 1089 \"Mass:\"",
          "spin 1092 edit 1091 \"Ruggedness:\"", "spin 1094 edit 1093 \"Grip:\"", "map 1117 \"Tread Pattern\""}},
        {kSphereClass,
         {"spin 1023 edit 1022 \"Radius:\"", "spin 1092 edit 1091 \"Ruggedness:\"", "spin 1094 edit 1093 \"Grip:\""}},
        {kHitchClass,
         {"spin 1023 edit 1022 \"Dummy Size:\"", "spin 1092 edit 1091 \"Ruggedness:\"", "pick 1121 \"Connect To:\""}},
        {kTongueClass, {"spin 1023 edit 1022 \"Dummy Size:\""}},
        {kPushClass,
         {"spin 1103 edit 1130 \"Dummy Size:\"", "spin 1101 edit 1128 \"Force (Mn):\"",
          "radio 1122 \"Type:\" 1122 \"Single\" 1123 \"Animatable\"", "spin 1131 edit 1126 label 1132 \"Start Frame:\"",
          "spin 1100 edit 1127 label 1133 \"Length (s):\"", "spin 1102 edit 1129 label 1135 \"Mult(%):\"",
          "pick 1063 \"Apply to Tavrik:\""}},
        {kStartClass, {"spin 1064 edit 1063 \"Dummy Size:\""}},
    };
    for (const auto& [id, lines] : kPages) {
        Open(id);
        const std::vector<PanelPage> panel = ReadPanel();
        ASSERT_EQ(panel.size(), 1u) << lines[0];
        EXPECT_EQ(panel[0].title, L"Parameters") << lines[0];
        EXPECT_EQ(LinesOf(panel[0]), lines);
    }
}

TEST_F(PluginPanelLayout, ALockedNodesControllerShowsItsName) {
    const Car car = AddCar();
    Press(*car.master, kCarSetup, kLock);
    ASSERT_TRUE(tavrik_host::OpenMotionPanel(*car.chassis));
    std::vector<PanelPage> panel = ReadPanel();
    ASSERT_EQ(panel.size(), 1u);
    EXPECT_EQ(panel[0].title, L"");
    EXPECT_EQ(panel[0].window->dialog, 116);
    EXPECT_EQ(LinesOf(panel[0]), Lines{"static 0 \"Tavrik Controller\""});
    tavrik_host::OpenPanel(*car.chassis);  // from its motion to itself
    panel = ReadPanel();
    ASSERT_EQ(panel.size(), 1u);
    EXPECT_EQ(panel[0].window->dialog, 129);
}

TEST_F(PluginPanelLayout, ATrackTexturesPageHoldsItsControlsInOrder) {
    auto* const texture = static_cast<Texmap*>(CreateInstance(TEXMAP_CLASS_ID, kTextureClass));
    ParamDlg* const dialog = texture->CreateParamDlg(nullptr, nullptr);
    const std::vector<PanelPage> panel = ReadPanel();
    ASSERT_EQ(panel.size(), 1u);
    EXPECT_EQ(panel[0].title, L"Parameters");
    EXPECT_EQ(LinesOf(panel[0]),
              (Lines{"check button 1116 \"Tavrik Object:\"", "spin 1119 edit 1118 \"General Intensity:\"",
                     "spin 1121 edit 1120 \"Brake Intensity:\"", "spin 1123 edit 1122 \"Samples:\"",
                     "spin 1125 edit 1124 \"Base Bump Intensity:\"", "spin 1127 edit 1126 \"Pattern Bump Intensity:\""}));
    EXPECT_EQ(panel[0].controls[0].text, L"None");
    EXPECT_TRUE(SetControl(*panel[0].window, 1123, 500));
    EXPECT_EQ(texture->GetParamBlockByID(0)->GetInt(3), 200);
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    EXPECT_TRUE(ClickControl(*panel[0].window, 1116));
    EXPECT_TRUE(ReadControl(*panel[0].window, 1116)->checked);
    EXPECT_EQ(ReadControl(*panel[0].window, 1116)->highlight, 0xC0FF80u);
    EXPECT_TRUE(tavrik_host::ClickNode(&master));
    EXPECT_EQ(ReadControl(*panel[0].window, 1116)->text, master.GetName());
    EXPECT_STREQ(tavrik_host::FindDialogTemplate(134)->controls[0].text, L"Setup (Lock Components)");
    dialog->DeleteThis();
    EXPECT_TRUE(ReadPanel().empty());
    texture->DeleteThis();
}

TEST_F(PluginPanelLayout, AControllerThatIsTakenAwayTakesItsPageAlong) {
    const Car car = AddCar();
    Press(*car.master, kCarSetup, kLock);
    tavrik_host::OpenMotionPanel(*car.chassis);
    car.chassis->SetTMController(NewDefaultMatrix3Controller());
    EXPECT_TRUE(ReadPanel().empty());
    tavrik_host::ClosePanel();
    EXPECT_EQ(tavrik_host::PanelNode(), nullptr);
}

TEST_F(PluginPanelLayout, AWindowOfItsOwnHasATemplateToo) {
    const tavrik_host::DialogTemplate* stand = tavrik_host::FindDialogTemplate(128);
    ASSERT_NE(stand, nullptr);
    EXPECT_STREQ(stand->title, L"Additional Damper Settings");
    EXPECT_EQ(stand->width, 436);
    EXPECT_EQ(stand->height, 268);
    Lines lines;
    for (const auto& control : stand->controls) {
        lines.push_back(Narrow(control.group) + "/" + std::to_string(control.id) + "," + std::to_string(control.edit) + "/" +
                        Narrow(control.label) + Narrow(control.text));
    }
    EXPECT_EQ(lines,
              (Lines{"/1115,0/", "Running-in Stand Setting/1094,1093/Road Knoll Rate:",
                     "Running-in Stand Setting/1096,1095/Road Hole Rate:",
                     "Running-in Stand Setting/1090,1089/Mass per Damper:", "Running-in Stand Setting/1112,1111/Gravity:",
                     "Damper Setting/1114,1113/Rigidity Factor:", "Damper Setting/1092,1091/Spring Rigidity:",
                     "Damper Setting/1036,1035/Oil Damping:", "Damper Setting/1042,1041/Damper Shift:",
                     "Damper Setting/1044,1043/Buffer Rigidity:", "/124,0/", "/1014,0/Setup", "/1013,0/Cancel"}));
    for (const auto& [number, width, height] : {std::tuple{140, 150, 25}, std::tuple{123, 200, 70}}) {
        const tavrik_host::DialogTemplate* window = tavrik_host::FindDialogTemplate(number);
        ASSERT_NE(window, nullptr) << number;
        EXPECT_EQ(window->width, width);
        EXPECT_EQ(window->height, height);
        EXPECT_TRUE(window->controls.empty());
    }
    EXPECT_EQ(tavrik_host::FindDialogTemplate(9999), nullptr);
}

TEST_F(PluginPanelLayout, APageHasNoOtherControlsThanItsTemplates) {
    Open(kPushClass);
    EXPECT_NE(GetDlgItem(&Page(), 1131), nullptr);
    EXPECT_NE(GetDlgItem(&Page(), 1132), nullptr);
    EXPECT_EQ(GetDlgItem(&Page(), 1015), nullptr);
    EXPECT_FALSE(ReadControl(Page(), 1015));
}

}  // namespace
}  // namespace plugin_test
