#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/cli/program.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

/// A folder with a small ground in it, where each test runs the program.
class DriveCommand : public testing::Test {
 protected:
    void SetUp() override {
        const ProgramResult made = RunTavrik(folder.path(), {"ground", "sample", "--triangles", "800", "--out", "ground.obj"});
        ASSERT_EQ(made.status, 0) << made.error;
    }
    ProgramResult Drive(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"drive", "--seconds", "0.5"});
        return RunTavrik(folder.path(), arguments);
    }
    ProgramResult DriveOver(const std::string& ground) const { return Drive({"--ground", ground, "--out", "a.glb"}); }

    /// One sentence on the error output, nothing on the other, the given status, and no file that wasn't there.
    void ExpectRefusal(const ProgramResult& result, int status, const std::string& part) {
        EXPECT_EQ(result.status, status) << result.error;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.error.find(part), std::string::npos) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_TRUE(result.error.ends_with(".\n")) << result.error;
        EXPECT_EQ(folder.List(), before.empty() ? "ground.obj" : before);
    }

    TempFolder folder;
    std::string before;  // what lies in the folder before the program runs, if more than the ground
};

TEST_F(DriveCommand, WritesSceneTelemetryAndPlot) {
    const ProgramResult result = Drive({"--ground", "ground.obj", "--out", "a.glb", "--telemetry", "a.csv", "--plot", "a.svg"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(folder.List(), "a.csv a.glb a.svg ground.obj");
    EXPECT_TRUE(FileBytes(folder / "a.glb").starts_with("glTF"));
    EXPECT_TRUE(FileBytes(folder / "a.csv").starts_with("seconds,"));
    EXPECT_TRUE(FileBytes(folder / "a.svg").starts_with("<svg"));
}

TEST_F(DriveCommand, TellsWhatItDid) {
    const ProgramResult result = Drive({"--ground", "ground.obj"});
    for (const char* part : {"15 frames, 75 samples", "m driven, top speed", "km/h", "times real time"}) {
        EXPECT_NE(result.out.find(part), std::string::npos) << result.out;
    }
}

TEST_F(DriveCommand, GivesTheSameBytesForTheSameSeedAndOthersForAnother) {
    const auto telemetry = [&](const char* seed, const char* name) {
        EXPECT_EQ(Drive({"--ground", "ground.obj", "--seed", seed, "--telemetry", name}).status, 0);
        return FileBytes(folder / name);
    };
    const std::string first = telemetry("5", "a.csv");
    EXPECT_TRUE(first == telemetry("5", "b.csv"));
    EXPECT_FALSE(first == telemetry("6", "c.csv"));
}

TEST_F(DriveCommand, FollowsTheScript) {
    folder.Write("back.csv", "0,0,1,0,0,1\n");
    ASSERT_EQ(Drive({"--ground", "ground.obj", "--input", "back.csv", "--telemetry", "a.csv"}).status, 0);
    const std::string csv = FileBytes(folder / "a.csv");
    const std::string last = csv.substr(csv.rfind('\n', csv.size() - 2) + 1);
    std::string cell = last;
    for (int i = 0; i < 7; ++i) cell = cell.substr(cell.find(',') + 1);
    EXPECT_LT(std::stod(cell), -0.5) << last;  // km/h
}

TEST_F(DriveCommand, StartsWhereItIsTold) {
    ASSERT_EQ(Drive({"--ground", "ground.obj", "--at", "-20,10,90", "--telemetry", "a.csv"}).status, 0);
    const std::string csv = FileBytes(folder / "a.csv");
    std::string row = csv.substr(csv.find('\n') + 1);
    row = row.substr(row.find(',') + 1);
    EXPECT_NEAR(std::stod(row), -2000.0, 1.0);
    row = row.substr(row.find(',') + 1);
    EXPECT_NEAR(std::stod(row), 1000.0, 1.0);
}

TEST_F(DriveCommand, WritesFewerKeysWhenOnlyFramesAreWanted) {
    ASSERT_EQ(Drive({"--ground", "ground.obj", "--out", "a.glb", "--keys", "samples"}).status, 0);
    ASSERT_EQ(Drive({"--ground", "ground.obj", "--out", "b.glb", "--keys", "frames"}).status, 0);
    EXPECT_GT(FileBytes(folder / "a.glb").size(), FileBytes(folder / "b.glb").size());
}

TEST_F(DriveCommand, DrivesOnEveryFormat) {
    const std::pair<const char*, std::string> files[] = {
        {"a.ply", PlyTriangle()},     {"a.stl", StlBinaryTriangle()}, {"a.dae", ColladaTriangle("Z_UP", "1")},
        {"a.3ds", ThreeDsTriangle()}, {"a.fbx", FbxTriangle(2, 100)}, {"a.glb", GlbTriangle()}};
    for (const auto& [name, bytes] : files) {
        folder.Write(name, bytes);
        const ProgramResult result = Drive({"--ground", name, "--unit", "m", "--up", "z"});
        EXPECT_EQ(result.status, 0) << result.error;
    }
}

TEST_F(DriveCommand, IsSilentInAPipe) { EXPECT_EQ(Drive({"--ground", "ground.obj"}).error, ""); }

TEST_F(DriveCommand, ShowsItsProgressOnATerminalAndWipesIt) {
    const ProgramResult result = RunTavrikOnTerminal(folder.path(), {"drive", "--ground", "ground.obj", "--seconds", "0.5"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.error.find("Driving"), std::string::npos);
    EXPECT_NE(result.error.find('%'), std::string::npos);
    EXPECT_TRUE(result.error.ends_with("\r\x1b[K")) << result.error;
}

TEST_F(DriveCommand, HelpsInShort) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"drive", "--help"}, {"ground", "--help"}}) {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, "");
        EXPECT_LT(std::count(result.out.begin(), result.out.end(), '\n'), 36);
    }
    const std::string help = RunTavrik(folder.path(), {"drive", "--help"}).out;
    for (const char* option : {"--ground", "--up", "--unit", "--input", "--seconds", "--fps", "--seed", "--at", "--out",
                               "--telemetry", "--plot", "--keys"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
}

TEST_F(DriveCommand, RefusesAMissingGround) { ExpectRefusal(DriveOver("hill.obj"), 1, "hill.obj: there is no such file"); }

TEST_F(DriveCommand, RefusesAnEmptyGround) {
    folder.Write("hill.obj", "");
    before = "ground.obj hill.obj";
    ExpectRefusal(DriveOver("hill.obj"), 1, "hill.obj: the file is empty");
}

TEST_F(DriveCommand, RefusesAGroundThatIsNoMesh) {
    folder.Write("hill.glb", "Dear diary");
    before = "ground.obj hill.glb";
    ExpectRefusal(DriveOver("hill.glb"), 1, "hill.glb: this is not a glTF file");
}

TEST_F(DriveCommand, RefusesAGroundWithAnIndexOutOfRange) {
    folder.Write("hill.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 90210\n");
    before = "ground.obj hill.obj";
    ExpectRefusal(DriveOver("hill.obj"), 1, "hill.obj: face 1 uses vertex 90210, but there are 3");
}

TEST_F(DriveCommand, RefusesAGroundWithCoordinatesThatAreNotFinite) {
    for (const char* word : {"nan", "inf"}) {
        folder.Write("hill.obj", std::string("v 0 0 0\nv 1 0 ") + word + "\nv 0 1 0\nf 1 2 3\n");
        before = "ground.obj hill.obj";
        ExpectRefusal(DriveOver("hill.obj"), 1, "vertex 2 are not finite");
    }
}

TEST_F(DriveCommand, RefusesAScriptWithABadRow) {
    folder.Write("run.csv", "0,0,0,0,0,0\n1,0,fast,0,0,0\n");
    before = "ground.obj run.csv";
    ExpectRefusal(Drive({"--ground", "ground.obj", "--input", "run.csv", "--out", "a.glb"}), 1,
                  "run.csv: line 2: throttle is \"fast\", not a number");
}

TEST_F(DriveCommand, RefusesAStartBesideTheGround) {
    ExpectRefusal(Drive({"--ground", "ground.obj", "--at", "900,0,0", "--out", "a.glb"}), 1, "there is no ground at x 900 m");
}

TEST_F(DriveCommand, RefusesFoldersThatCanNotBeWritten) {
    const std::string ground = "ground.obj";
    ExpectRefusal(Drive({"--ground", ground, "--out", "no/a.glb"}), 1, "no/a.glb: can't be written, there is no folder no");
    ExpectRefusal(Drive({"--ground", ground, "--telemetry", "ground.obj/a.csv"}), 1, "ground.obj/a.csv: can't be written");
    ExpectRefusal(Drive({"--ground", ground, "--plot", "/proc/a.svg"}), 1, "/proc/a.svg: can't be written");
    ExpectRefusal(Drive({"--ground", ground, "--telemetry", "/dev/full"}), 1, "/dev/full: can't be written");
}

TEST_F(DriveCommand, LeavesOldResultsAloneWhenOneCanNotBeWritten) {
    folder.Write("a.glb", "old");
    before = "a.glb ground.obj";
    ExpectRefusal(Drive({"--ground", "ground.obj", "--out", "a.glb", "--telemetry", "no/a.csv"}), 1, "no/a.csv");
    EXPECT_EQ(FileBytes(folder / "a.glb"), "old");
}

TEST_F(DriveCommand, AnswersWrongUsageWithStatusTwo) {
    const std::string ground = "ground.obj";
    ExpectRefusal(RunTavrik(folder.path(), {}), 2, "--help");
    ExpectRefusal(RunTavrik(folder.path(), {"fly"}), 2, "--help");
    ExpectRefusal(RunTavrik(folder.path(), {"drive"}), 2, "drive takes a scene or a --ground");
    ExpectRefusal(Drive({"--ground", ground, "--nonsense"}), 2, "--nonsense");
    ExpectRefusal(Drive({"--ground", ground, "--up", "x"}), 2, "--up takes one of y, z");
    ExpectRefusal(Drive({"--ground", ground, "--unit", "mile"}), 2, "--unit takes one of");
    ExpectRefusal(Drive({"--ground", ground, "--fps", "7"}), 2, "--fps takes a whole part of 4800");
    ExpectRefusal(Drive({"--ground", ground, "--fps", "29.97"}), 2, "--fps");
    ExpectRefusal(Drive({"--ground", ground, "--fps", "0"}), 2, "--fps");
    ExpectRefusal(Drive({"--ground", ground, "--at", "1,2,3,4"}), 2, "--at takes x,y,heading");
    ExpectRefusal(Drive({"--ground", ground, "--at", "1,nan,3"}), 2, "--at takes x,y,heading");
    ExpectRefusal(Drive({"--ground", ground, "--keys", "all"}), 2, "--keys takes one of");
    ExpectRefusal(Drive({"--ground", ground, "--seed", "many"}), 2, "--seed");
    ExpectRefusal(Drive({"--ground", ground, "--out", "a.png"}), 2, "ends in .glb");
    for (const char* seconds : {"-1", "0", "nan", "1e9", "soon"}) {
        ExpectRefusal(RunTavrik(folder.path(), {"drive", "--ground", ground, "--seconds", seconds}), 2, "--seconds");
    }
}

TEST_F(DriveCommand, NeverWritesOverWhatItReads) {
    folder.Write("run.csv", "0,0,0,0,0,0\n");
    before = "ground.obj run.csv";
    ExpectRefusal(Drive({"--ground", "ground.obj", "--telemetry", "./ground.obj"}), 2, "are the same file");
    ExpectRefusal(Drive({"--ground", "ground.obj", "--input", "run.csv", "--plot", "run.csv"}), 2, "are the same file");
    ExpectRefusal(Drive({"--ground", "ground.obj", "--telemetry", "a.csv", "--plot", "./a.csv"}), 2, "are the same file");
}

TEST(GroundCommand, MakesEveryKindInBothFormats) {
    const TempFolder folder;
    for (const char* kind : {"sample", "hills", "kerb", "plane"}) {
        for (const char* file : {"a.obj", "a.glb"}) {
            const ProgramResult made = RunTavrik(folder.path(), {"ground", kind, "--triangles", "500", "--out", file});
            EXPECT_EQ(made.status, 0) << made.error;
            const ProgramResult driven = RunTavrik(folder.path(), {"drive", "--ground", file, "--seconds", "0.1"});
            EXPECT_EQ(driven.status, 0) << driven.error;
        }
    }
}

TEST(GroundCommand, AnswersWrongUsageWithStatusTwo) {
    const TempFolder folder;
    EXPECT_EQ(RunTavrik(folder.path(), {"ground", "moon", "--out", "a.obj"}).status, 2);
    EXPECT_EQ(RunTavrik(folder.path(), {"ground", "plane", "--out", "a.txt"}).status, 2);
    EXPECT_EQ(RunTavrik(folder.path(), {"ground", "plane", "--out", "a.obj", "--size", "-3"}).status, 2);
    EXPECT_EQ(RunTavrik(folder.path(), {"ground", "plane", "--out", "a.obj", "--triangles", "1"}).status, 2);
    EXPECT_EQ(RunTavrik(folder.path(), {"ground", "plane"}).status, 2);
    EXPECT_EQ(folder.List(), "");
}

}  // namespace
}  // namespace tavrik::test
