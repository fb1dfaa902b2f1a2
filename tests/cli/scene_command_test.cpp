#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

/// A folder with a scene of the stock car in it, where each test runs the program.
class SceneCommand : public testing::Test {
 protected:
    void SetUp() override {
        Expect({"ground", "plane", "--triangles", "800", "--out", "ground.obj"});
        Expect({"new", "--ground", "ground.obj", "--at", "1,2,30", "--out", "scene.glb"});
    }
    std::string Expect(const std::vector<std::string>& arguments) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.out;
    }
    /// One sentence on the error output, exit status 1, and no file is another than before.
    void ExpectRefusal(const std::vector<std::string>& arguments, const std::string& part) const {
        const std::string files = folder.List(), scene = FileBytes(folder / "scene.glb");
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 1) << result.error;
        EXPECT_NE(result.error.find(part), std::string::npos) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_TRUE(result.error.ends_with(".\n")) << result.error;
        EXPECT_EQ(folder.List(), files);
        EXPECT_EQ(FileBytes(folder / "scene.glb"), scene);
    }
    std::string Info() const { return Expect({"info", "scene.glb"}); }

    TempFolder folder;
};

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(SceneCommand, NewMakesAnUnlockedStockCarOnTheGround) {
    const std::string info = Info();
    for (const char* part : {"Car       Stock car: unlocked", "Surface  ground: ", "Unit 0", "Unit 3", "steered", "driven"}) {
        EXPECT_TRUE(Has(info, part)) << info;
    }
    EXPECT_EQ(Has(info, "Unit 4"), false) << info;
    EXPECT_EQ(Has(info, "Note"), false) << info;
}

TEST_F(SceneCommand, DriveSavesTheRecordingInTheScene) {
    const std::string told = Expect({"drive", "scene.glb", "--seconds", "1"});
    EXPECT_TRUE(Has(told, "30 frames, 150 samples")) << told;
    EXPECT_TRUE(Has(Info(), "recording of 150 samples from 0.00 to 0.99 s")) << Info();
    EXPECT_TRUE(Has(folder.List(), "scene.glb.bak"));
}

TEST_F(SceneCommand, DrivingOnGivesTheFileOfADriveThatNeverStopped) {
    const std::vector<std::string> hands = {"--input", "hands.csv"};
    folder.Write("hands.csv", "0, 0, 1, 0, 0, 0\n0.7, 0.6, 0.8, 0, 0, 0\n1.2, -0.4, 0, 0.5, 0, 0\n");
    Expect({"drive", "scene.glb", "--seconds", "2", "--out", "whole.glb", "--input", "hands.csv"});
    Expect({"drive", "scene.glb", "--seconds", "1", "--out", "half.glb", "--input", "hands.csv"});
    Expect({"drive", "half.glb", "--from", "1", "--seconds", "1", "--input", "hands.csv"});
    EXPECT_TRUE(FileBytes(folder / "half.glb") == FileBytes(folder / "whole.glb"));
}

TEST_F(SceneCommand, DrivingOnFromTheMiddleDropsWhatCameAfter) {
    Expect({"drive", "scene.glb", "--seconds", "2"});
    Expect({"drive", "scene.glb", "--from", "0.5", "--seconds", "0.5"});
    EXPECT_TRUE(Has(Info(), "recording of 150 samples from 0.00 to 0.99 s")) << Info();
}

TEST_F(SceneCommand, ANewDriveStartsFromTheStartAgain) {
    Expect({"drive", "scene.glb", "--seconds", "1", "--telemetry", "a.csv"});
    Expect({"drive", "scene.glb", "--seconds", "1", "--telemetry", "b.csv"});
    EXPECT_EQ(FileBytes(folder / "a.csv"), FileBytes(folder / "b.csv"));
}

TEST_F(SceneCommand, ResetUnlocksAndTheNextDriveIsTheSame) {
    Expect({"drive", "scene.glb", "--seconds", "0.5", "--telemetry", "a.csv"});
    EXPECT_TRUE(Has(Expect({"reset", "scene.glb"}), "whose recording of 75 samples is gone"));
    EXPECT_TRUE(Has(Info(), "Stock car: unlocked")) << Info();
    Expect({"drive", "scene.glb", "--seconds", "0.5", "--telemetry", "b.csv"});
    EXPECT_EQ(FileBytes(folder / "a.csv"), FileBytes(folder / "b.csv"));
}

TEST_F(SceneCommand, EventsDriveTheScenesCarByKeys) {
    folder.Write("keys.txt", "0.0, key-down W\n");
    Expect({"drive", "scene.glb", "--seconds", "1.5", "--input", "keys.txt", "--telemetry", "keys.csv"});
    folder.Write("rows.csv", "0, 0, 1, 0, 0, 0\n");
    Expect({"drive", "scene.glb", "--seconds", "1.5", "--input", "rows.csv", "--telemetry", "rows.csv.csv"});
    EXPECT_EQ(FileBytes(folder / "keys.csv"), FileBytes(folder / "rows.csv.csv"));
}

TEST_F(SceneCommand, BakeWritesAFilmWithoutTheRig) {
    Expect({"drive", "scene.glb", "--seconds", "0.5"});
    Expect({"bake", "scene.glb", "--out", "film.glb"});
    const std::string film = FileBytes(folder / "film.glb");
    EXPECT_TRUE(film.starts_with("glTF"));
    EXPECT_TRUE(Has(film, "\"animations\""));
    EXPECT_FALSE(Has(film, "NORVANE_tavrik"));
}

TEST_F(SceneCommand, InfoTellsWhatARigLeavesOut) {
    Expect({"new", "--ground", "ground.obj", "--out", "scene.gltf"});
    // A box that reaches just over the chassis' own place leaves wheels, suspensions and spheres outside.
    std::string text = FileBytes(folder / "scene.gltf");
    const std::size_t at = text.find('[', text.find("\"Dummy_Size\""));
    ASSERT_NE(at, std::string::npos);
    folder.Write("scene.gltf", text.replace(at, text.find(']', at) + 1 - at, "[1, 1, 1]"));
    const std::string info = Expect({"info", "scene.gltf"});
    EXPECT_FALSE(Has(info, "Unit 0")) << info;
    EXPECT_TRUE(Has(info, "Wheel_001")) << info;
    EXPECT_TRUE(Has(info, "outside")) << info;
}

TEST_F(SceneCommand, WrongScenesAreRefusedInOneSentence) {
    ExpectRefusal({"drive", "none.glb"}, "none.glb");
    ExpectRefusal({"drive", "scene.glb", "--master", "Nobody"}, "\"Nobody\"");
    ExpectRefusal({"drive", "scene.glb", "--from", "1"}, "no recording");
    folder.Write("short.glb", FileBytes(folder / "scene.glb").substr(0, 5000));
    ExpectRefusal({"info", "short.glb"}, "short.glb");
    folder.Write("plain.gltf", R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": []}], "scene": 0})");
    ExpectRefusal({"drive", "plain.gltf"}, "no car");
}

TEST_F(SceneCommand, AStartBeyondTheRecordingIsRefused) {
    Expect({"drive", "scene.glb", "--seconds", "1"});
    ExpectRefusal({"drive", "scene.glb", "--from", "1.5"}, "ends at second 1.00");
}

TEST_F(SceneCommand, GroundOptionsDontGoWithAScene) {
    const ProgramResult result = RunTavrik(folder.path(), {"drive", "scene.glb", "--ground", "ground.obj"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(Has(result.error, "--ground is for drives without a scene")) << result.error;
}

TEST_F(SceneCommand, AnUnwritableOutputIsToldBeforeTheDrive) {
    ExpectRefusal({"drive", "scene.glb", "--out", "nowhere/scene.glb"}, "nowhere");
}

}  // namespace
}  // namespace tavrik::test
