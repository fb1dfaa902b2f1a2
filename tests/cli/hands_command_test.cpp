// The commands around a driver's hands: event scripts, bindings, and the pictures of drive window and damper stand.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

class HandsCommand : public testing::Test {
 protected:
    void SetUp() override {
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ASSERT_EQ(Run({"ground", "plane", "--size", "200", "--triangles", "200", "--out", "plane.obj"}).status, 0);
    }
    ProgramResult Run(const std::vector<std::string>& arguments) const { return RunTavrik(folder.path(), arguments); }
    ProgramResult Drive(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"drive", "--ground", "plane.obj"});
        return Run(arguments);
    }
    std::string Telemetry(const std::string& input, const std::string& seconds) const {
        EXPECT_EQ(Drive({"--input", input, "--seconds", seconds, "--telemetry", "t.csv"}).status, 0);
        return FileBytes(folder / "t.csv");
    }
    std::filesystem::path BindingsFile() const { return folder / "config/Norvane/TavrikControls.cfg"; }

    TempFolder folder;
};

TEST_F(HandsCommand, AKeyHeldDownDrivesAsAFullPedalDoes) {
    folder.Write("keys.txt", "0, key-down W\n0.5, key-up W\n");
    folder.Write("rows.csv", "0, 0, 1, 0, 0, 0\n0.5, 0, 0, 0, 0, 0\n");
    EXPECT_EQ(Telemetry("keys.txt", "1"), Telemetry("rows.csv", "1"));
}

TEST_F(HandsCommand, AnotherBindingMakesAnotherKeyDrive) {
    folder.Write("w.txt", "0, key-down W\n");
    folder.Write("t.txt", "0, key-down T\n");
    const std::string before = Telemetry("w.txt", "0.5");
    ASSERT_EQ(Run({"controls", "set", "CtrlKbdThrottle", "T"}).status, 0);
    EXPECT_EQ(Telemetry("t.txt", "0.5"), before);
    EXPECT_NE(Telemetry("w.txt", "0.5"), before);
}

TEST_F(HandsCommand, AStoppedRunIsAsLongAsItWasDriven) {
    folder.Write("stop.txt", "0, key-down W\n0.5, key-up ENTER\n");
    const ProgramResult result = Drive({"--input", "stop.txt", "--seconds", "2"});
    EXPECT_NE(result.out.find("15 frames, 75 samples, 0.50 s"), std::string::npos) << result.out;
}

TEST_F(HandsCommand, AnUnpluggedPadEndsTheRunWithANotice) {
    folder.Write("pad.txt", "0, pad RY 1\n0.4, pad-lost\n");
    const ProgramResult result = Drive({"--input", "pad.txt", "--seconds", "2", "--out", "a.glb"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_NE(result.out.find("unplugged at second 0.40"), std::string::npos) << result.out;
}

TEST_F(HandsCommand, AnUnknownKeyNameEndsInOneSentence) {
    folder.Write("bad.txt", "0, key-down FOO\n");
    const ProgramResult result = Drive({"--input", "bad.txt", "--out", "a.glb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("bad.txt: line 1: there is no key \"FOO\""), std::string::npos) << result.error;
    EXPECT_EQ(folder.List(), "bad.txt plane.obj");
}

TEST_F(HandsCommand, AnEventInThePastEndsInOneSentence) {
    folder.Write("bad.txt", "1, click\n0.5, click\n");
    const ProgramResult result = Drive({"--input", "bad.txt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("bad.txt: line 2: its time"), std::string::npos) << result.error;
}

TEST_F(HandsCommand, BindingsOfAFolderInTheirFilesPlaceStopTheRun) {
    std::filesystem::create_directories(BindingsFile());
    folder.Write("w.txt", "0, key-down W\n");
    const ProgramResult result = Drive({"--input", "w.txt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("this is no plain file"), std::string::npos) << result.error;
}

TEST_F(HandsCommand, AShortBindingsFileGivesItsLastValueToTheRest) {
    std::filesystem::create_directories(BindingsFile().parent_path());
    folder.Write("config/Norvane/TavrikControls.cfg", std::string("T\0\0\0", 4));
    const ProgramResult result = Run({"controls"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("CtrlKbdNitro         Nitro:       T"), std::string::npos) << result.out;
}

TEST_F(HandsCommand, ControlsShowTheBindingsOfANewUser) {
    const ProgramResult result = Run({"controls"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("CtrlKbdThrottle      Throttle:    W"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("Not saved yet in"), std::string::npos) << result.out;
    EXPECT_FALSE(std::filesystem::exists(BindingsFile()));
}

TEST_F(HandsCommand, AChangedBindingIsSavedAndShown) {
    EXPECT_EQ(Run({"controls", "set", "ctrlkbdnitro", "n"}).status, 0);
    EXPECT_EQ(std::filesystem::file_size(BindingsFile()), 64u);
    EXPECT_NE(Run({"controls"}).out.find("CtrlKbdNitro         Nitro:       N\n"), std::string::npos);
}

TEST_F(HandsCommand, AChoiceIsMadeByItsName) {
    EXPECT_EQ(Run({"controls", "set", "CtrlJoyThrottleCtrl", "left trigger"}).status, 0);
    EXPECT_NE(Run({"controls"}).out.find("Left Trigger"), std::string::npos);
}

TEST_F(HandsCommand, ResetGivesTheFirstBindingsBack) {
    ASSERT_EQ(Run({"controls", "set", "CtrlKbdNitro", "N"}).status, 0);
    EXPECT_EQ(Run({"controls", "reset"}).status, 0);
    EXPECT_NE(Run({"controls"}).out.find("CtrlKbdNitro         Nitro:       SH"), std::string::npos);
}

TEST_F(HandsCommand, AKeyThatIsTakenIsRefusedAndNothingIsSaved) {
    const ProgramResult result = Run({"controls", "set", "CtrlKbdNitro", "W"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("W is already taken by CtrlKbdThrottle"), std::string::npos) << result.error;
    EXPECT_FALSE(std::filesystem::exists(BindingsFile()));
}

TEST_F(HandsCommand, EscapeCannotBeBound) {
    const ProgramResult result = Run({"controls", "set", "CtrlKbdNitro", "ESC"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("ESC can't be bound"), std::string::npos) << result.error;
}

TEST_F(HandsCommand, UnknownNamesAreToldFromEachOther) {
    EXPECT_NE(Run({"controls", "set", "Nitro", "N"}).error.find("no control \"Nitro\""), std::string::npos);
    EXPECT_NE(Run({"controls", "set", "CtrlKbdNitro", "FOO"}).error.find("no key \"FOO\""), std::string::npos);
    EXPECT_NE(Run({"controls", "set", "CtrlJoyNitro", "FOO"}).error.find("no button \"FOO\""), std::string::npos);
    EXPECT_NE(Run({"controls", "set", "CtrlJoyPort", "9"}).error.find("takes one of"), std::string::npos);
}

TEST_F(HandsCommand, HudPaintsThePictureOfASecond) {
    folder.Write("w.txt", "0, key-down W\n");
    const ProgramResult result = Run({"hud", "--ground", "plane.obj", "--input", "w.txt", "--at", "1", "--out", "hud.png"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(FileBytes(folder / "hud.png").starts_with("\x89PNG"));
}

TEST_F(HandsCommand, HudOfAnotherSecondIsAnotherPicture) {
    for (const char* second : {"0.5", "2"}) {
        ASSERT_EQ(Run({"hud", "--ground", "plane.obj", "--at", second, "--out", std::string(second) + ".png"}).status, 0);
    }
    EXPECT_NE(FileBytes(folder / "0.5.png"), FileBytes(folder / "2.png"));
}

TEST_F(HandsCommand, StandPaintsThePictureOfItsRun) {
    EXPECT_EQ(Run({"stand", "--seconds", "1", "--out", "stand.png"}).status, 0);
    EXPECT_TRUE(FileBytes(folder / "stand.png").starts_with("\x89PNG"));
}

TEST_F(HandsCommand, AStandWithoutOilStillPaints) {
    EXPECT_EQ(Run({"stand", "--seconds", "1", "--oil", "0", "--mass", "0", "--out", "stand.png"}).status, 0);
}

TEST_F(HandsCommand, PicturesRefuseOtherEndings) {
    const ProgramResult result = Run({"stand", "--out", "stand.jpg"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.error.find("ends in .png"), std::string::npos) << result.error;
}

}  // namespace
}  // namespace tavrik::test
