#include "studio/model/editor.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "host/rig_objects.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"
#include "tests/host/temp_folder.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik::test::TempFolder;
using tavrik_host::AddRigNode;
using tavrik_host::AllNodes;

Matrix3 At(float x) {
    Matrix3 place(TRUE);
    place.SetTrans(Point3(x, 0.0f, 0.0f));
    return place;
}

INode& Add(Editor& editor, ObjectClass objectClass, float x = 0.0f) {
    Change change(editor, "Create");
    INode& node = AddRigNode(objectClass, At(x));
    change.Keep();
    return node;
}

TEST(Editor, BeginsWithNothing) {
    const Editor editor;
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.IsModified());
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_TRUE(editor.File().empty());
}

TEST(Editor, TakesAChangeBackAndMakesItAgain) {
    Editor editor;
    const ULONG handle = Add(editor, ObjectClass::Wheel, 7.0f).GetHandle();
    EXPECT_EQ(editor.UndoText(), "Create");
    editor.Undo();
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_EQ(editor.RedoText(), "Create");
    editor.Redo();
    ASSERT_EQ(AllNodes().size(), 1u);
    EXPECT_EQ(AllNodes()[0]->GetHandle(), handle);
    EXPECT_EQ(AllNodes()[0]->GetNodeTM(0).GetTrans(), Point3(7.0f, 0.0f, 0.0f));
}

TEST(Editor, GivesParametersBackBitForBit) {
    Editor editor;
    INode& wheel = Add(editor, ObjectClass::Wheel);
    const float before = tavrik_host::FloatParam(wheel, tavrik::WheelParam::Radius);
    {
        Change change(editor, "Radius");
        tavrik_host::SetParam(wheel, tavrik::WheelParam::Radius, 31.123457f);
        change.Keep();
    }
    editor.Undo();
    EXPECT_EQ(tavrik_host::FloatParam(*AllNodes()[0], tavrik::WheelParam::Radius), before);
    editor.Redo();
    EXPECT_EQ(tavrik_host::FloatParam(*AllNodes()[0], tavrik::WheelParam::Radius), 31.123457f);
}

TEST(Editor, RestoresTheSceneWhenAChangeIsNotKept) {
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    {
        const Change change(editor, "Delete");
        GetCOREInterface()->DeleteNode(AllNodes()[0]);
    }
    EXPECT_EQ(AllNodes().size(), 1u);
    EXPECT_EQ(editor.UndoText(), "Create");
}

TEST(Editor, MakesOneStepOfChangesWithinAChange) {
    Editor editor;
    {
        Change all(editor, "Rig");
        Add(editor, ObjectClass::Wheel);
        Add(editor, ObjectClass::Chassis);
        all.Keep();
    }
    EXPECT_EQ(editor.UndoText(), "Rig");
    editor.Undo();
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
}

TEST(Editor, MakesOneStepOfChangesOfOneNameInARow) {
    Editor editor;
    INode& wheel = Add(editor, ObjectClass::Wheel);
    const float before = tavrik_host::FloatParam(wheel, tavrik::WheelParam::Radius);
    for (const float radius : {40.0f, 41.0f, 42.0f}) {
        Change change(editor, "Radius", "wheel.radius");
        tavrik_host::SetParam(wheel, tavrik::WheelParam::Radius, radius);
        change.Keep();
    }
    editor.Undo();
    EXPECT_EQ(tavrik_host::FloatParam(*AllNodes()[0], tavrik::WheelParam::Radius), before);
    EXPECT_EQ(editor.UndoText(), "Create");
}

TEST(Editor, MakesNoStepOfAChangeThatChangedNothing) {
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    {
        Change change(editor, "Press");
        change.KeepIfChanged();
    }
    EXPECT_EQ(editor.UndoText(), "Create");
    {
        Change change(editor, "Rename");
        AllNodes()[0]->SetName(L"other");
        change.KeepIfChanged();
    }
    EXPECT_EQ(editor.UndoText(), "Rename");
}

TEST(Editor, DropsWhatWasTakenBackWhenSomethingNewHappens) {
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    editor.Undo();
    Add(editor, ObjectClass::Chassis);
    EXPECT_FALSE(editor.CanRedo());
}

TEST(Editor, FindsTheSelectionAgainAfterAWayBack) {
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    editor.Select(&Add(editor, ObjectClass::Chassis));
    const ULONG selected = editor.Current()->GetHandle();
    Add(editor, ObjectClass::Start);
    editor.Undo();
    ASSERT_NE(editor.Current(), nullptr);
    EXPECT_EQ(editor.Current()->GetHandle(), selected);
    EXPECT_EQ(editor.Selection().size(), 1u);
}

TEST(Editor, OpensThePanelOfANodeSelectedAlone) {
    Editor editor;
    INode& wheel = Add(editor, ObjectClass::Wheel);
    INode& chassis = Add(editor, ObjectClass::Chassis);
    editor.Select(&wheel);
    EXPECT_FALSE(tavrik_host::Pages().empty());
    editor.Select({&wheel, &chassis});
    EXPECT_EQ(editor.Current(), nullptr);
    EXPECT_EQ(editor.Selection().size(), 2u);
    EXPECT_TRUE(tavrik_host::Pages().empty());
}

TEST(Editor, SavesAndOpens) {
    const TempFolder folder;
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    EXPECT_TRUE(editor.IsModified());
    QString problem;
    ASSERT_TRUE(editor.Save(folder / "a.glb", problem)) << problem.toStdString();
    EXPECT_FALSE(editor.IsModified());
    editor.New();
    EXPECT_TRUE(AllNodes().empty());
    ASSERT_TRUE(editor.Open(folder / "a.glb", problem)) << problem.toStdString();
    EXPECT_EQ(AllNodes().size(), 1u);
    EXPECT_EQ(editor.File(), folder / "a.glb");
    EXPECT_FALSE(editor.IsModified());
    EXPECT_FALSE(editor.CanUndo());
}

TEST(Editor, IsModifiedByAWayBackFromTheSavedState) {
    const TempFolder folder;
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    QString problem;
    ASSERT_TRUE(editor.Save(folder / "a.glb", problem));
    editor.Undo();
    EXPECT_TRUE(editor.IsModified());
}

TEST(Editor, KeepsTheSceneWhenAFileCannotBeOpened) {
    const TempFolder folder;
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    QString problem;
    EXPECT_FALSE(editor.Open(folder.Write("bad.glb", "nothing"), problem));
    EXPECT_TRUE(problem.contains("bad.glb"));
    EXPECT_EQ(AllNodes().size(), 1u);
    EXPECT_TRUE(editor.CanUndo());
}

TEST(Editor, TellsWhoHoldsNodesThatTheyAreGone) {
    Editor editor;
    Add(editor, ObjectClass::Wheel);
    QSignalSpy replaced(&editor, &Editor::SceneReplaced);
    editor.Undo();
    EXPECT_EQ(replaced.count(), 1);
}

TEST(Editor, KeepsTheTimeWithinTheRange) {
    Editor editor;
    editor.SetTime(-160);
    EXPECT_EQ(editor.Time(), 0);
    editor.SetTime(1000000);
    EXPECT_EQ(editor.Time(), GetCOREInterface()->GetAnimRange().End());
}

}  // namespace
}  // namespace tavrik_studio
