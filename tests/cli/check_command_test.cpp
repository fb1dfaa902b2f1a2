#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// A folder with a scene of the stock car on a plane, as text that a test can change.
class CheckCommand : public testing::Test {
 protected:
    void SetUp() override {
        Expect({"ground", "plane", "--triangles", "800", "--out", "ground.obj"});
        Expect({"new", "--ground", "ground.obj", "--at", "1,2,30", "--out", "scene.gltf"});
    }
    std::string Expect(const std::vector<std::string>& arguments, int status = 0) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, status) << result.out << result.error;
        return status == 0 ? result.out : result.out + result.error;
    }
    std::string Check(int status = 0) const { return Expect({"check", "scene.gltf"}, status); }
    /// Puts `value` in place of that of a parameter: the first one of this name behind `behind`.
    void Set(const std::string& name, const std::string& value, const std::string& behind = "\"NORVANE_tavrik\"") const {
        std::string text = FileBytes(folder / "scene.gltf");
        const std::size_t from = text.find(behind), at = text.find("\"" + name + "\"", from);
        ASSERT_NE(from, std::string::npos) << behind;
        ASSERT_NE(at, std::string::npos) << name;
        const std::size_t begin = text.find(':', at) + 1;
        std::size_t end = begin;
        for (int depth = 0; depth > 0 || (text[end] != ',' && text[end] != '}'); ++end) {
            depth += text[end] == '[' ? 1 : text[end] == ']' ? -1 : 0;
        }
        folder.Write("scene.gltf", text.replace(begin, end - begin, value));
    }

    TempFolder folder;
};

TEST_F(CheckCommand, FindsNothingWrongWithTheStockCar) {
    EXPECT_EQ(Check(), "Checked   nothing will go wrong with the car\n");
    EXPECT_EQ(Expect({"drive", "scene.gltf", "--seconds", "1"}).find("Error"), std::string::npos);
    EXPECT_EQ(Check(), "Checked   nothing will go wrong with the car\n");
}

TEST_F(CheckCommand, FindsNoErrorOnTheSampleGround) {
    Expect({"new", "--out", "scene.gltf"});
    EXPECT_FALSE(Has(Check(), "Error"));
}

TEST_F(CheckCommand, LeavesTheSceneAlone) {
    const std::string before = FileBytes(folder / "scene.gltf"), files = folder.List();
    Check();
    EXPECT_EQ(FileBytes(folder / "scene.gltf"), before);
    EXPECT_EQ(folder.List(), files);
}

TEST_F(CheckCommand, WarnsAndStillSucceedsWhereACarDrivesAnyhow) {
    Set("Grip", "90");
    EXPECT_EQ(Check(), "Checked   nothing will go wrong with the car\n");
    Set("Solidity", "50000000");
    const std::string told = Check();
    EXPECT_TRUE(Has(told, "Warning   The ")) << told;
    EXPECT_TRUE(Has(told, "too stiff")) << told;
    EXPECT_TRUE(Has(told, "Checked   0 errors, ")) << told;
}

TEST_F(CheckCommand, FailsWhereACarHasNoGround) {
    Set("Surface_Node", "null");
    const std::string told = Check(1);
    EXPECT_TRUE(Has(told, "Error     \"Stock car\" has no ground")) << told;
    EXPECT_TRUE(Has(told, "1 error, 0 warnings")) << told;
}

TEST_F(CheckCommand, FailsOnASceneWithoutACar) {
    folder.Write("scene.gltf", R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": []}], "scene": 0})");
    EXPECT_TRUE(Has(Check(1), "no master object"));
}

TEST_F(CheckCommand, FailsWhereNoStepSurvivesASpring) {
    Set("Ruggedness_Factor", "1000000");
    const std::string told = Check(1);
    EXPECT_TRUE(Has(told, "Error     The spring and buffer")) << told;
    EXPECT_TRUE(Has(Expect({"drive", "scene.gltf", "--seconds", "1"}, 1), "no longer a finite number"));
}

TEST_F(CheckCommand, FailsInOneSentenceOnABrokenFile) {
    folder.Write("scene.gltf", "{");
    const std::string told = Check(1);
    EXPECT_TRUE(Has(told, "scene.gltf")) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
}

TEST_F(CheckCommand, TellsOfAGroundWithDoubles) {
    const std::string ground = FileBytes(folder / "ground.obj");
    folder.Write("ground.obj", ground + "f 1 2 2\n" + ground.substr(ground.rfind("\nf ") + 1));
    Expect({"new", "--ground", "ground.obj", "--at", "1,2,30", "--out", "scene.gltf"});
    const std::string told = Check();
    EXPECT_TRUE(Has(told, "1 face that lies on the same corners")) << told;
}

TEST_F(CheckCommand, FindsNoErrorInTheGarage) {
    const std::string list = Expect({"garage", "list"});
    int scenes = 0;
    for (std::size_t at = 0; at < list.size(); at = list.find('\n', at) + 1) {
        const std::string name = list.substr(at, list.find(' ', at) - at);
        Expect({"garage", "make", name, "--out", "scene.gltf"});
        const std::string told = Check();
        EXPECT_FALSE(Has(told, "Error")) << name << ": " << told;
        ++scenes;
    }
    EXPECT_GE(scenes, 3);
}

// ------------------------------------------------------------------------------------------------------------------ settle

/// The number before `word`.
double NumberBefore(const std::string& text, const std::string& word) {
    const std::size_t at = text.find(word);
    if (at == std::string::npos) return std::nan("");
    return std::stod(text.substr(text.rfind(' ', at - 1) + 1));
}

TEST_F(CheckCommand, SettleKeepsTheOldSceneAndTellsHowFarTheCarSank) {
    const std::string before = FileBytes(folder / "scene.gltf");
    const std::string told = Expect({"settle", "scene.gltf"});
    EXPECT_EQ(FileBytes(folder / "scene.gltf.bak"), before);
    EXPECT_TRUE(Has(told, "Settled   Stock car: ")) << told;
    EXPECT_LT(std::abs(NumberBefore(told, " cm, tilted")), 5.0) << told;
    EXPECT_LT(NumberBefore(told, " m/s"), 0.02) << told;
    EXPECT_TRUE(Has(Expect({"info", "scene.gltf"}), "Stock car: unlocked"));
    Check();
}

TEST_F(CheckCommand, SettledCarBarelyMovesWhenItSettlesAgain) {
    Expect({"settle", "scene.gltf"});
    const std::string told = Expect({"settle", "scene.gltf", "--out", "again.gltf"});
    EXPECT_LT(std::abs(NumberBefore(told, " cm, tilted")), 0.5) << told;
    EXPECT_LT(NumberBefore(told, " degrees"), 0.5) << told;
}

TEST_F(CheckCommand, SettleMakesAStartWhereThereIsNone) {
    Set("Start_Node", "null");
    const std::string told = Expect({"settle", "scene.gltf"});
    EXPECT_TRUE(Has(told, ", which is new")) << told;
    EXPECT_FALSE(Has(Expect({"info", "scene.gltf"}), "Start    none"));
    EXPECT_FALSE(Has(Expect({"settle", "scene.gltf"}), ", which is new"));
}

TEST_F(CheckCommand, SettleDropsTheRecording) {
    Expect({"drive", "scene.gltf", "--seconds", "1"});
    Expect({"settle", "scene.gltf"});
    EXPECT_TRUE(Has(Expect({"drive", "scene.gltf", "--from", "0.5"}, 1), "no recording"));
}

TEST_F(CheckCommand, SettleRefusesACarWithoutItsGround) {
    Set("Surface_Node", "null");
    const std::string before = FileBytes(folder / "scene.gltf");
    const std::string told = Expect({"settle", "scene.gltf"}, 1);
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(FileBytes(folder / "scene.gltf"), before);
}

TEST_F(CheckCommand, SettleRefusesACarThatFallsOff) {
    folder.Write("ground.obj", "v -.1 -.1 0\nv .1 -.1 0\nv .1 .1 0\nv -.1 .1 0\nf 1 2 3\nf 1 3 4\n");
    Expect({"new", "--ground", "ground.obj", "--out", "scene.gltf"});
    const std::string told = Expect({"settle", "scene.gltf"}, 1);
    EXPECT_TRUE(Has(told, "fell off")) << told;
}

TEST_F(CheckCommand, SettleRefusesACarThatRestsOnItsBody) {
    folder.Write("ground.obj", "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nf 1 2 3\nf 1 3 4\n");
    Expect({"new", "--ground", "ground.obj", "--out", "scene.gltf"});
    const std::string before = FileBytes(folder / "scene.gltf");
    const std::string told = Expect({"settle", "scene.gltf"}, 1);
    EXPECT_TRUE(Has(told, "not on its wheels")) << told;
    EXPECT_EQ(FileBytes(folder / "scene.gltf"), before);
}

TEST_F(CheckCommand, SettleTakesATrainAlongAndKeepsItLocked) {
    Expect({"garage", "make", "trailer", "--out", "scene.gltf"});
    const std::string told = Expect({"settle", "scene.gltf", "--master", "Tow car"});
    EXPECT_TRUE(Has(told, "Settled   Tow car: ")) << told;
    EXPECT_TRUE(Has(told, "Settled   Trailer: ")) << told;
    const std::string info = Expect({"info", "scene.gltf"});
    EXPECT_TRUE(Has(info, "Tow car: unlocked")) << info;
    EXPECT_TRUE(Has(info, "Trailer: locked, not driven yet")) << info;
    Check();
}

TEST_F(CheckCommand, SettleKeepsPushesOffTheCarAndLeavesThemInTheScene) {
    Expect({"garage", "make", "timed-push", "--out", "scene.gltf"});
    const std::string told = Expect({"settle", "scene.gltf"});
    EXPECT_LT(NumberBefore(told, " m/s"), 0.02) << told;
    EXPECT_EQ(Check(), "Checked   nothing will go wrong with the car\n");
}

TEST_F(CheckCommand, SettleSaysThatAMotorcycleIsBalancedOnlyWhileItIsDriven) {
    Expect({"garage", "make", "motorcycle", "--out", "scene.gltf"});
    const std::string before = FileBytes(folder / "scene.gltf"), files = folder.List();
    // After three seconds it is still falling, after ten it lies there.
    for (const char* seconds : {"3", "10"}) {
        EXPECT_EQ(Expect({"settle", "scene.gltf", "--seconds", seconds}, 1),
                  "scene.gltf: Motorcycle is balanced only while it is driven, so it can't stand by itself; leave its start "
                  "as it is.\n")
            << seconds;
        EXPECT_EQ(FileBytes(folder / "scene.gltf"), before);
        EXPECT_EQ(folder.List(), files);
    }
}

TEST_F(CheckCommand, SettleTellsAMotorcycleThatFallsOffOfItsGround) {
    folder.Write("ground.obj", "v -.1 -.1 0\nv .1 -.1 0\nv .1 .1 0\nv -.1 .1 0\nf 1 2 3\nf 1 3 4\n");
    Expect({"garage", "make", "motorcycle", "--ground", "ground.obj", "--out", "scene.gltf"});
    EXPECT_TRUE(Has(Expect({"settle", "scene.gltf"}, 1), "fell off"));
}

TEST_F(CheckCommand, SettleTakesOnlySensibleTimes) { Expect({"settle", "scene.gltf", "--seconds", "0"}, 2); }

}  // namespace
}  // namespace tavrik::test
