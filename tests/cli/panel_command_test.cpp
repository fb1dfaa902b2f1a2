#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

using Json = nlohmann::json;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// The first line that holds `part`.
std::string LineWith(const std::string& text, const std::string& part) {
    const std::size_t at = text.find(part);
    if (at == std::string::npos) return "";
    const std::size_t begin = text.rfind('\n', at) + 1;
    return text.substr(begin, text.find('\n', at) - begin);
}

/// A folder with a scene of the stock car on a plane.
class PanelCommand : public testing::Test {
 protected:
    void SetUp() override {
        Expect({"ground", "plane", "--triangles", "800", "--out", "ground.obj"});
        Expect({"new", "--ground", "ground.obj", "--at", "1,2,30", "--out", "scene.glb"});
        nodes_ = Expect({"info", "scene.glb"});
    }
    std::string Expect(const std::vector<std::string>& arguments, int status = 0) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, status) << result.out << result.error;
        return status == 0 ? result.out : result.out + result.error;
    }
    /// Shows or sets the panel of a node.
    std::string Panel(const std::string& node, std::vector<std::string> more = {}, int status = 0) const {
        more.insert(more.begin(), {"panel", "scene.glb", node});
        return Expect(more, status);
    }
    Json Control(const std::string& node, int number, const std::string& file = "scene.glb") const {
        const Json panel = Json::parse(Expect({"panel", file, node, "--json"}));
        for (const Json& page : panel.at("pages")) {
            for (const Json& control : page.at("controls")) {
                if (control.value("number", 0) == number) return control;
            }
        }
        return {};
    }
    /// Of the first unit that the scene tells: the wheel and its suspension.
    std::string Suspension() const {
        const std::string line = LineWith(nodes_, "Unit 0");
        const std::size_t at = line.find(" with ") + 6;
        return line.substr(at, line.find(": ", at) - at);
    }
    std::string Wheel() const {
        const std::string line = LineWith(nodes_, "Unit 0");
        const std::size_t at = line.find_first_not_of(' ', line.find("Unit 0") + 6);
        return line.substr(at, line.find(" with ") - at);
    }

    TempFolder folder;

 private:
    std::string nodes_;
};

TEST_F(PanelCommand, ShowsACarsPagesInOrder) {
    const std::string told = Panel("Stock car");
    std::size_t at = 0;
    for (const char* title : {"\nCar Setup\n", "\nParameters\n", "\nAnimation\n", "\nDriving Parameters\n",
                              "\nController Setup\n", "\nAbout\n", "Tavrik 3.64\n"}) {
        const std::size_t found = told.find(title, at);
        EXPECT_NE(found, std::string::npos) << title << told;
        at = found;
    }
    EXPECT_TRUE(Has(told, "  Dummy Size\n")) << told;
    EXPECT_TRUE(Has(LineWith(told, "Surface:"), "[")) << told;
    EXPECT_TRUE(Has(LineWith(told, "#1095"), "greyed")) << told;
    EXPECT_FALSE(Has(LineWith(told, "#1079"), "greyed")) << told;
    EXPECT_TRUE(Has(LineWith(told, "#1089  "), "") && Has(told, "30 frames (1 s)")) << told;
    EXPECT_TRUE(Has(LineWith(told, "Rudder Angle:"), " degrees")) << told;
    EXPECT_TRUE(Has(LineWith(told, "#1086"), "(x) Use Keyboard")) << told;
}

TEST_F(PanelCommand, ShowsLengthsInMetresToo) { EXPECT_TRUE(Has(LineWith(Panel("Stock car"), "Gravity:"), "980 (9.8 m)")); }

TEST_F(PanelCommand, ShowingLeavesTheSceneAlone) {
    const std::string before = FileBytes(folder / "scene.glb"), files = folder.List();
    Panel("Stock car");
    Panel("Stock car", {"--json"});
    EXPECT_EQ(FileBytes(folder / "scene.glb"), before);
    EXPECT_EQ(folder.List(), files);
}

TEST_F(PanelCommand, JsonTellsParametersAndLimits) {
    const Json control = Control(Wheel(), 1094);
    EXPECT_EQ(control.at("label"), "Grip:");
    EXPECT_EQ(control.at("kind"), "spinner");
    EXPECT_EQ(control.at("parameter").at("name"), "Grip");
    EXPECT_EQ(control.at("low"), 0.0001);
    EXPECT_EQ(control.at("high"), 100.0);
    EXPECT_EQ(control.at("enabled"), true);
}

TEST_F(PanelCommand, SetsEveryKindOfControl) {
    const std::string told = Panel(Suspension(), {"--set", "type=Telescopic", "--set", "Length=55cm", "--set", "Handbrake=on",
                                                  "--set", "Presets=Heavy Track Damper", "--out", "other.glb"});
    EXPECT_TRUE(Has(told, "Set       Length: 55 (0.55 m)\n")) << told;
    EXPECT_EQ(Control(Suspension(), 1122, "other.glb").at("value"), "Telescopic");
    EXPECT_EQ(Control(Suspension(), 1099, "other.glb").at("value"), 55.0);
    EXPECT_EQ(Control(Suspension(), 1102, "other.glb").at("value"), true);
    EXPECT_EQ(Control(Suspension(), 1114, "other.glb").at("value"), 2.0);
    EXPECT_NE(Control(Suspension(), 1099).at("value"), 55.0);
}

TEST_F(PanelCommand, WithoutAnOutTheSceneIsSetInPlace) {
    const std::string before = FileBytes(folder / "scene.glb");
    Panel("Stock car", {"--set", "Dummy_Size.X=321", "--set", "Forecast Frames=2s"});
    EXPECT_EQ(Control("Stock car", 1097).at("value"), 321.0);
    EXPECT_EQ(FileBytes(folder / "scene.glb.bak"), before);
}

TEST_F(PanelCommand, NumbersComeToLieWithinTheirLimits) {
    EXPECT_TRUE(Has(Panel(Wheel(), {"--set", "Grip=1000", "--out", "other.glb"}), "Grip: 100\n"));
}

TEST_F(PanelCommand, PicksNodesByName) {
    Panel("Stock car", {"--set", "Surface=none", "--out", "other.glb"});
    EXPECT_EQ(Control("Stock car", 1022, "other.glb").at("value"), nullptr);
    EXPECT_TRUE(Has(Panel("Stock car", {"--set", "Surface=Nowhere"}, 1), "There is no node \"Nowhere\""));
}

TEST_F(PanelCommand, PressesButtons) {
    const std::string told = Panel("Stock car", {"--set", "1102=press", "--out", "locked.glb"});
    EXPECT_TRUE(Has(told, "Pressed   Update (Lock Components)\n")) << told;
    EXPECT_TRUE(Has(Expect({"info", "locked.glb"}), "Stock car: locked"));
    EXPECT_TRUE(Has(Expect({"panel", "locked.glb", Wheel(), "--motion"}), "Tavrik Controller"));
}

TEST_F(PanelCommand, WhatAMessageBoxSaysIsTheCommandsError) {
    const std::string before = FileBytes(folder / "scene.glb");
    const std::string told = Panel("Stock car", {"--set", "Gravity=900", "--set", "Drive=press"}, 1);
    EXPECT_EQ(told, "You didn't setup the Car. Do Car Setup.\n");
    EXPECT_EQ(FileBytes(folder / "scene.glb"), before);
}

TEST_F(PanelCommand, ButtonsThatOpenWindowsAreRefused) {
    EXPECT_TRUE(Has(Panel("Stock car", {"--set", "Keyboard.Nitro=press"}, 1), "opens a window"));
}

TEST_F(PanelCommand, GreyedControlsAreRefused) {
    EXPECT_TRUE(Has(Panel("Stock car", {"--set", "AutoBalance=3"}, 1), "greyed"));
    Panel("Stock car", {"--set", "Bike Driving=on", "--set", "AutoBalance=3", "--out", "other.glb"});
    EXPECT_EQ(Control("Stock car", 1095, "other.glb").at("value"), 3.0);
}

TEST_F(PanelCommand, FailsInOneSentence) {
    const struct {
        std::string node;
        std::vector<std::string> more;
        const char* part;
    } kWrong[] = {
        {"Nobody", {}, "there is no node \"Nobody\""},
        {"ground", {}, "has no panel"},
        {Wheel(), {"--motion"}, "has no panel"},
        {"Stock car", {"--set", "Wings=2"}, "no control \"Wings\""},
        {"Stock car", {"--set", "Throttle=press"}, "2 controls \"Throttle\""},
        {"Stock car", {"--set", "1089=4"}, "\"Animation.Samples\", \"Driving Parameters.Forecast Frames\""},
        {"Stock car", {"--set", "Gravity"}, "CONTROL=VALUE"},
        {"Stock car", {"--set", "Gravity=much"}, "takes a number"},
        {"Stock car", {"--set", "Gravity=4parsec"}, "takes a number"},
        {"Stock car", {"--set", "Gravity=nan"}, "takes a number"},
        {"Stock car", {"--set", "Bike Driving=perhaps"}, "on or off"},
        {"Stock car", {"--set", "Driving_Type=Use Feet"}, "\"Use Mouse\""},
        {"Stock car", {"--set", "Drive=1"}, "press"},
    };
    const std::string before = FileBytes(folder / "scene.glb");
    for (const auto& [node, more, part] : kWrong) {
        const std::string told = Panel(node, more, 1);
        EXPECT_TRUE(Has(told, part)) << told;
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    }
    EXPECT_EQ(FileBytes(folder / "scene.glb"), before);
}

TEST_F(PanelCommand, WrongUsageIsToldWithTheWayToHelp) {
    EXPECT_TRUE(Has(Panel("Stock car", {"--out", "other.glb"}, 2), "see tavrik panel --help"));
    EXPECT_TRUE(Has(Panel("Stock car", {"--set", "Gravity=1", "--out", "other.obj"}, 2), "see tavrik panel --help"));
    EXPECT_TRUE(Has(Expect({"panel", "--help"}), "CONTROL=VALUE"));
}

}  // namespace
}  // namespace tavrik::test
