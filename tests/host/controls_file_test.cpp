#include "host/controls_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>

#include "drive/controls_config.h"
#include "drive/table_params.h"
#include "tests/host/temp_folder.h"

namespace tavrik {
namespace {

using test::TempFolder;

std::vector<std::byte> Bytes(std::string_view text) {
    const auto* data = reinterpret_cast<const std::byte*>(text.data());
    return {data, data + text.size()};
}

/// Sets a variable of the environment and puts it back.
class WithEnvironment {
 public:
    WithEnvironment(const char* name, const char* value) : name_(name) {
        const char* old = std::getenv(name);
        if (old != nullptr) old_ = old;
        had_ = old != nullptr;
        if (value != nullptr) {
            ::setenv(name, value, 1);
        } else {
            ::unsetenv(name);
        }
    }
    ~WithEnvironment() {
        if (had_) {
            ::setenv(name_, old_.c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }
    WithEnvironment(const WithEnvironment&) = delete;
    WithEnvironment& operator=(const WithEnvironment&) = delete;

 private:
    const char* name_;
    std::string old_;
    bool had_;
};

TEST(ControlsFile, LiesUnderTheConfigurationFolder) {
    const WithEnvironment folder("XDG_CONFIG_HOME", "/some/config");
    EXPECT_EQ(ControlsFile().Path(), "/some/config/Norvane/TavrikControls.cfg");
}

TEST(ControlsFile, LiesUnderTheHomeFolderWhereNoOtherIsConfigured) {
    const WithEnvironment folder("XDG_CONFIG_HOME", nullptr);
    const WithEnvironment home("HOME", "/home/someone");
    EXPECT_EQ(ControlsFile().Path(), "/home/someone/.config/Norvane/TavrikControls.cfg");
}

TEST(ControlsFile, ARelativeConfigurationFolderCountsForNothing) {
    const WithEnvironment folder("XDG_CONFIG_HOME", "config");
    const WithEnvironment home("HOME", "/home/someone");
    EXPECT_EQ(ControlsFile().Path(), "/home/someone/.config/Norvane/TavrikControls.cfg");
}

TEST(ControlsFile, ReadsBackWhatItWroteAndMakesItsFolder) {
    const TempFolder folder;
    ControlsFile file(folder / "deep/Norvane/TavrikControls.cfg");
    ASSERT_TRUE(file.Write(Bytes("hands"))) << file.Problem();
    std::vector<std::byte> bytes;
    EXPECT_EQ(file.Read(64, bytes), FileState::Read);
    EXPECT_EQ(bytes, Bytes("hands"));
}

TEST(ControlsFile, ReadsNoFurtherThanItIsAskedTo) {
    const TempFolder folder;
    ControlsFile file(folder.Write("a.cfg", std::string(100'000, 'x')));
    std::vector<std::byte> bytes;
    EXPECT_EQ(file.Read(64, bytes), FileState::Read);
    EXPECT_EQ(bytes.size(), 64u);
}

TEST(ControlsFile, ReadsTheFrontOfAFileOfManyGigabytesAtOnce) {
    const TempFolder folder;
    const std::filesystem::path path = folder.Write("a.cfg", "front");
    std::filesystem::resize_file(path, 5'000'000'000u);  // a hole: it takes no room
    ControlsFile file(path);
    std::vector<std::byte> bytes;
    EXPECT_EQ(file.Read(5, bytes), FileState::Read);
    EXPECT_EQ(bytes, Bytes("front"));
}

TEST(ControlsFile, SaysMissingWhereThereIsNoFileAndNoFolder) {
    const TempFolder folder;
    std::vector<std::byte> bytes;
    EXPECT_EQ(ControlsFile(folder / "none").Read(64, bytes), FileState::Missing);
    EXPECT_EQ(ControlsFile(folder / "none/none").Read(64, bytes), FileState::Missing);
}

TEST(ControlsFile, RefusesAFolderInItsPlace) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "a.cfg");
    ControlsFile file(folder / "a.cfg");
    std::vector<std::byte> bytes;
    EXPECT_EQ(file.Read(64, bytes), FileState::Unreadable);
    EXPECT_NE(file.Problem().find("a.cfg: this is no plain file"), std::string::npos) << file.Problem();
}

TEST(ControlsFile, RefusesAPipeInItsPlaceWithoutWaitingForIt) {
    const TempFolder folder;
    ASSERT_EQ(::mkfifo((folder / "a.cfg").c_str(), 0600), 0);
    ControlsFile file(folder / "a.cfg");
    std::vector<std::byte> bytes;
    EXPECT_EQ(file.Read(64, bytes), FileState::Unreadable);
}

TEST(ControlsFile, AFolderThatCannotBeMadeEndsInASentence) {
    ControlsFile file("/proc/none/Norvane/TavrikControls.cfg");
    EXPECT_FALSE(file.Write(Bytes("hands")));
    EXPECT_NE(file.Problem().find("/proc/none/Norvane: the folder can't be made"), std::string::npos) << file.Problem();
}

TEST(ControlsFile, AFailedWriteLeavesTheOldFile) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "a.cfg");  // a folder can't be replaced by a file
    folder.Write("a.cfg/kept", "old");
    ControlsFile file(folder / "a.cfg");
    EXPECT_FALSE(file.Write(Bytes("hands")));
    EXPECT_EQ(test::FileBytes(folder / "a.cfg/kept"), "old");
    EXPECT_EQ(folder.List(), "a.cfg");
}

TEST(ControlsFile, BindingsSurviveTheWayThroughIt) {
    const TempFolder folder;
    ControlsFile file(folder / "TavrikControls.cfg");
    TableParams saved(*FindParamTable("Tavrik"));
    ResetControls(saved);
    saved.SetInt(MasterParam::CtrlKbdNitro, 78);
    ASSERT_TRUE(SaveControls(saved, file));
    EXPECT_EQ(std::filesystem::file_size(file.Path()), kControlsImageSize);

    TableParams loaded(*FindParamTable("Tavrik"));
    EXPECT_EQ(LoadControls(file, loaded), FileState::Read);
    EXPECT_EQ(loaded.GetInt(MasterParam::CtrlKbdNitro), 78);
    EXPECT_EQ(loaded.GetInt(MasterParam::CtrlJoyDriver), 1);
}

}  // namespace
}  // namespace tavrik
