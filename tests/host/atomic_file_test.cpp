#include "host/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <utility>

#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

std::string Refusal(const std::filesystem::path& target) {
    std::string problem;
    EXPECT_FALSE(WriteFileAtomically(target, "new", problem));
    EXPECT_FALSE(CanWriteFile(target, problem));
    EXPECT_TRUE(problem.starts_with(target.string() + ": ") && problem.ends_with(".")) << problem;
    return problem;
}

TEST(AtomicFile, ReplacesWhatStoodThere) {
    const TempFolder folder;
    const auto file = folder.Write("a.txt", "old");
    std::string problem;
    ASSERT_TRUE(WriteFileAtomically(file, "new", problem)) << problem;
    EXPECT_EQ(FileBytes(file), "new");
    EXPECT_EQ(folder.List(), "a.txt");
}

TEST(AtomicFile, ShowsNothingBeforeTheCommit) {
    const TempFolder folder;
    const auto file = folder.Write("a.txt", "old");
    std::string problem;
    PendingFile pending;
    ASSERT_TRUE(pending.Stage(file, "new", problem)) << problem;
    EXPECT_EQ(FileBytes(file), "old");
    ASSERT_TRUE(pending.Commit(problem)) << problem;
    EXPECT_EQ(FileBytes(file), "new");
}

TEST(AtomicFile, LeavesNothingWhenItIsNeverCommitted) {
    const TempFolder folder;
    std::string problem;
    {
        PendingFile pending;
        ASSERT_TRUE(pending.Stage(folder / "a.txt", "new", problem)) << problem;
        PendingFile moved = std::move(pending);
        EXPECT_NE(folder.List(), "");
    }
    EXPECT_EQ(folder.List(), "");
}

TEST(AtomicFile, TriesATargetWithoutTouchingIt) {
    const TempFolder folder;
    const auto file = folder.Write("a.txt", "old");
    std::string problem;
    EXPECT_TRUE(CanWriteFile(file, problem)) << problem;
    EXPECT_TRUE(CanWriteFile(folder / "b.txt", problem)) << problem;
    EXPECT_EQ(FileBytes(file), "old");
    EXPECT_EQ(folder.List(), "a.txt");
}

TEST(AtomicFile, FollowsALinkAndKeepsIt) {
    const TempFolder folder;
    const auto file = folder.Write("a.txt", "old");
    std::filesystem::create_symlink("a.txt", folder / "link.txt");
    std::string problem;
    ASSERT_TRUE(WriteFileAtomically(folder / "link.txt", "new", problem)) << problem;
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.txt"));
    EXPECT_EQ(FileBytes(file), "new");
}

TEST(AtomicFile, KeepsThePermissionsOfTheFileBefore) {
    const TempFolder folder;
    const auto file = folder.Write("a.txt", "old");
    ::chmod(file.c_str(), 0640);
    std::string problem;
    ASSERT_TRUE(WriteFileAtomically(file, "new", problem)) << problem;
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(AtomicFileRefuses, AMissingFolder) {
    const TempFolder folder;
    EXPECT_NE(Refusal(folder / "no/a.txt").find("there is no folder"), std::string::npos);
}

TEST(AtomicFileRefuses, AFileInPlaceOfAFolder) {
    const TempFolder folder;
    folder.Write("a.txt", "old");
    Refusal(folder / "a.txt/b.txt");
    EXPECT_EQ(FileBytes(folder / "a.txt"), "old");
}

TEST(AtomicFileRefuses, AFolderInPlaceOfAFile) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "a.txt");
    EXPECT_NE(Refusal(folder / "a.txt").find("a folder of that name"), std::string::npos);
    EXPECT_EQ(folder.List(), "a.txt");
}

TEST(AtomicFileRefuses, ADeviceWhichARenameWouldDestroy) {
    EXPECT_NE(Refusal("/dev/full").find("device"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST(AtomicFileRefuses, AFileSystemThatTakesNoFiles) { Refusal("/proc/tavrik.txt"); }

TEST(AtomicFileRefuses, NamesThatAreNone) {
    std::string problem;
    EXPECT_FALSE(WriteFileAtomically("", "new", problem));
    EXPECT_FALSE(WriteFileAtomically("folder/", "new", problem));
    EXPECT_FALSE(WriteFileAtomically(std::string(300, 'a'), "new", problem));
}

}  // namespace
}  // namespace tavrik::test
