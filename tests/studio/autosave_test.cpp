#include "studio/model/autosave.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSignalSpy>
#include <string>

#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "studio/model/editor.h"
#include "tests/host/temp_folder.h"

namespace tavrik_studio {
namespace {

using tavrik::test::TempFolder;

void AddWheel(Editor& editor) {
    Change change(editor, "Create");
    tavrik_host::AddRigNode(tavrik::ObjectClass::Wheel, Matrix3(TRUE));
    change.Keep();
}

/// The number of a process that is over.
std::string DeadSession() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    int status = 0;
    ::waitpid(child, &status, 0);
    return std::to_string(child);
}

TEST(Autosave, WritesNothingForASceneThatIsSaved) {
    const TempFolder folder;
    Editor editor;
    Autosave autosave(editor, folder.path());
    autosave.SaveNow();
    autosave.Wait();
    EXPECT_EQ(folder.List(), "");
}

TEST(Autosave, KeepsACopyThatComesBackWhole) {
    const TempFolder folder;
    Editor editor;
    Autosave autosave(editor, folder.path());
    AddWheel(editor);
    autosave.SaveNow();
    autosave.Wait();
    const std::string copy = std::to_string(::getpid()) + ".glb";
    EXPECT_EQ(folder.List(), copy + " " + std::to_string(::getpid()) + ".txt");
    QString problem;
    ASSERT_TRUE(editor.Recover(folder / copy, "/somewhere/car.glb", problem)) << problem.toStdString();
    EXPECT_EQ(tavrik_host::AllNodes().size(), 1u);
    EXPECT_TRUE(editor.IsModified());
    EXPECT_EQ(editor.File(), "/somewhere/car.glb");
}

TEST(Autosave, RemovesTheCopyWhenTheSceneIsSaved) {
    const TempFolder folder, other;
    Editor editor;
    Autosave autosave(editor, folder.path());
    AddWheel(editor);
    autosave.SaveNow();
    QString problem;
    ASSERT_TRUE(editor.Save(other / "a.glb", problem));
    EXPECT_EQ(folder.List(), "");
}

TEST(Autosave, RemovesTheCopyAtTheEndOfASession) {
    const TempFolder folder;
    Editor editor;
    {
        Autosave autosave(editor, folder.path());
        AddWheel(editor);
        autosave.SaveNow();
    }
    EXPECT_EQ(folder.List(), "");
}

TEST(Autosave, FindsCopiesOfSessionsThatCrashed) {
    const TempFolder folder;
    const std::string dead = DeadSession();
    folder.Write(dead + ".glb", "x");
    folder.Write(dead + ".txt", "/home/me/car.glb");
    folder.Write(std::to_string(::getpid()) + ".glb", "of a running session");
    const auto rescued = Autosave::Rescued(folder.path());
    ASSERT_EQ(rescued.size(), 1u);
    EXPECT_EQ(rescued[0].copy, folder / (dead + ".glb"));
    EXPECT_EQ(rescued[0].file, "/home/me/car.glb");
    Autosave::Remove(rescued[0]);
    EXPECT_EQ(folder.List(), std::to_string(::getpid()) + ".glb");
}

TEST(Autosave, FindsNothingWhereNoFolderIs) { EXPECT_TRUE(Autosave::Rescued("/nowhere/at/all").empty()); }

TEST(Autosave, SaysWhyItCannotWrite) {
    const TempFolder folder;
    Editor editor;
    Autosave autosave(editor, folder.Write("file", "in the way"));
    QSignalSpy failed(&autosave, &Autosave::Failed);
    AddWheel(editor);
    autosave.SaveNow();
    autosave.Wait();
    ASSERT_EQ(failed.count(), 1);
    EXPECT_TRUE(failed[0][0].toString().contains("file"));
}

}  // namespace
}  // namespace tavrik_studio
