#include "studio/driving/drive_desk.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "drive/window_messages.h"
#include "host/rig_objects.h"
#include "host/sdk/desktop.h"
#include "host/sdk/panels.h"
#include "rig/parameter_tables.h"
#include "tests/studio/driving_scene.h"

namespace tavrik_studio {
namespace {

class DriveDeskTest : public test::DrivingScene {};

TEST_F(DriveDeskTest, KeysDriveTheCarAndTheTimeFollows) {
    OpenDrive();
    QSignalSpy times(&editor, &Editor::TimeChanged), views(&editor, &Editor::ViewChanged);
    const Point3 start = CarAt(0);
    Enter();
    EXPECT_TRUE(desk.IsRunning());
    Press(Qt::Key_W);
    ASSERT_TRUE(WaitForFrames(40));
    Release(Qt::Key_W);
    Enter();
    EXPECT_FALSE(desk.IsRunning());
    const Point3 way = CarAt(editor.Time()) - start;
    EXPECT_GT(Length(way), 50.0f);  // cm in more than a second at full throttle
    EXPECT_GE(times.size(), 40);
    EXPECT_GE(views.size(), 40);
}

TEST_F(DriveDeskTest, NothingMovesBeforeEnterAndAfterIt) {
    OpenDrive();
    Press(Qt::Key_W);
    QTest::qWait(60);
    EXPECT_EQ(editor.Time(), 0);
    Release(Qt::Key_W);
    Enter();
    ASSERT_TRUE(WaitForFrames(3));
    Enter();
    const TimeValue stopped = editor.Time();
    QTest::qWait(60);
    EXPECT_EQ(editor.Time(), stopped);
}

TEST_F(DriveDeskTest, EscapeStopsAndTheWindowStays) {
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(2));
    Press(Qt::Key_Escape);
    Release(Qt::Key_Escape);
    EXPECT_FALSE(desk.IsRunning());
    EXPECT_TRUE(Face().isVisible());
}

TEST_F(DriveDeskTest, OneUndoBringsTheOldRecordingAndTheOldTimeBack) {
    OpenDrive();
    Enter();
    Press(Qt::Key_W);
    ASSERT_TRUE(WaitForFrames(10));
    desk.StopRun();
    const std::string first = Recording();
    editor.SetTime(2 * GetTicksPerFrame());
    Enter();
    Press(Qt::Key_S);
    ASSERT_TRUE(WaitForFrames(8));
    desk.StopRun();
    ASSERT_NE(Recording(), first);
    EXPECT_EQ(editor.UndoText(), "Drive");
    panel.reset();
    editor.Undo();
    EXPECT_EQ(Recording(), first);
    EXPECT_EQ(editor.Time(), 2 * GetTicksPerFrame());
}

TEST_F(DriveDeskTest, ARunCanBeMadeAgain) {
    OpenDrive();
    Enter();
    Press(Qt::Key_W);
    ASSERT_TRUE(WaitForFrames(6));
    desk.StopRun();
    const std::string driven = Recording();
    panel.reset();
    editor.Undo();
    ASSERT_NE(Recording(), driven);
    editor.Redo();
    EXPECT_EQ(Recording(), driven);
}

TEST_F(DriveDeskTest, ARunIsOneChangeHoweverLong) {
    OpenDrive();
    const std::uint64_t before = editor.Revision();
    Enter();
    ASSERT_TRUE(WaitForFrames(5));
    EXPECT_EQ(editor.Revision(), before);
    EXPECT_NE(editor.UndoText(), "Drive");
    desk.StopRun();
    EXPECT_EQ(editor.Revision(), before + 1);
    EXPECT_TRUE(editor.IsModified());
}

TEST_F(DriveDeskTest, EndOfTheRangeStopsTheRun) {
    OpenDrive();
    const Interval range = GetCOREInterface()->GetAnimRange();
    editor.SetTime(range.End() - 4 * GetTicksPerFrame());
    QSignalSpy stopped(&desk, &DriveDesk::RunStopped);
    Enter();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !desk.IsRunning(); }, 20'000));
    EXPECT_EQ(editor.Time(), range.End());
    EXPECT_EQ(editor.UndoText(), "Drive");
    EXPECT_TRUE(stopped.size() == 1 || stopped.wait());
}

TEST_F(DriveDeskTest, ClosingThePagesStopsTheRunAndKeepsWhatWasDriven) {
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(4));
    panel.reset();
    EXPECT_FALSE(desk.IsRunning());
    EXPECT_EQ(desk.Windows().Face(tavrik::WindowKind::Drive), nullptr);
    EXPECT_EQ(editor.UndoText(), "Drive");
}

TEST_F(DriveDeskTest, DeletingTheCarInMidRunTellsNobodyBeforeItIsGone) {
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(2));
    bool told = false;
    const auto listen = [&] { told = true; };
    QObject::connect(&editor, &Editor::StateChanged, &desk, listen);
    GetCOREInterface()->DeleteNode(&Master());
    EXPECT_FALSE(desk.IsRunning());
    EXPECT_FALSE(told);
    QCoreApplication::processEvents();
    EXPECT_TRUE(told);
}

TEST_F(DriveDeskTest, ANewSceneInMidRunIsEmpty) {
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(2));
    desk.StopRun();
    editor.New();
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_EQ(desk.Windows().Face(tavrik::WindowKind::Drive), nullptr);
    EXPECT_TRUE(desk.Windows().AcceleratorsEnabled());
}

TEST_F(DriveDeskTest, ComplaintIsToldOnce) {
    tavrik::TheDesktop().complaint = "The wheel came off.";
    editor.Touch();
    editor.Touch();
    ASSERT_EQ(complaints.size(), 1);
    EXPECT_EQ(complaints[0], "The wheel came off.");
    EXPECT_EQ(tavrik::TheDesktop().complaint, "");
}

TEST_F(DriveDeskTest, CarThatIsNotLockedEndsInABox) {
    panel = std::make_unique<tavrik_host::MasterPanel>(Master());
    panel->Drive();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0], "You didn't setup the Car.\nDo Car Setup.");
    EXPECT_EQ(desk.Windows().Face(tavrik::WindowKind::Drive), nullptr);
}

TEST_F(DriveDeskTest, CarWithoutAGroundEndsInABox) {
    tavrik_host::SetParam(Master(), tavrik::MasterParam::Surface_Node, static_cast<INode*>(nullptr));
    panel = std::make_unique<tavrik_host::MasterPanel>(Master());
    panel->LockComponents();
    panel->Drive();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0], "You didn't select \"Surface Object\" or\n didn't press \"Update Surface\" button.");
}

TEST_F(DriveDeskTest, ASecondPressOpensNoSecondWindow) {
    OpenDrive();
    const FaceWindow* const first = &Face();
    panel->Drive();
    EXPECT_EQ(&Face(), first);
}

TEST_F(DriveDeskTest, ShortcutsRestWhileTheWindowIsOpenAndWorkAgainAfterIt) {
    QSignalSpy changes(&desk, &DriveDesk::AcceleratorsChanged);
    OpenDrive();
    EXPECT_FALSE(desk.Windows().AcceleratorsEnabled());
    Enter();
    Enter();
    EXPECT_FALSE(desk.Windows().AcceleratorsEnabled());
    Face().close();
    EXPECT_TRUE(desk.Windows().AcceleratorsEnabled());
    ASSERT_EQ(changes.size(), 2);
    EXPECT_FALSE(changes[0][0].toBool());
    EXPECT_TRUE(changes[1][0].toBool());
}

TEST_F(DriveDeskTest, TurningTheWheelDownAndUpChangesTheGear) {
    OpenDrive();
    Enter();
    const QPointF middle(150.0, 50.0);
    const auto turn = [&](int delta) {
        QWheelEvent event(middle, Face().mapToGlobal(middle), {}, {0, delta}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&Face(), &event);
    };
    turn(-120);
    Press(Qt::Key_W);
    ASSERT_TRUE(WaitForFrames(40));
    desk.StopRun();
    const TimeValue end = editor.Time();
    const Point3 way = CarAt(end) - CarAt(0);
    EXPECT_LT(DotProd(way, CarForward()), -20.0f);
}

TEST_F(DriveDeskTest, AKeyForACaptureIsBoundAndTheKeyBehindTheButtonIsNot) {
    panel = std::make_unique<tavrik_host::MasterPanel>(Master());
    constexpr MapID kControllerSetup = 4;
    constexpr int kBindThrottle = 2000;
    PressButton(kControllerSetup, kBindThrottle);
    FaceWindow* const prompt = desk.Windows().Face(tavrik::WindowKind::Prompt);
    ASSERT_NE(prompt, nullptr);
    QTest::keyRelease(prompt, Qt::Key_Return);
    EXPECT_EQ(desk.Windows().Face(tavrik::WindowKind::Prompt), prompt);
    QTest::keyClick(prompt, Qt::Key_J);
    EXPECT_EQ(desk.Windows().Face(tavrik::WindowKind::Prompt), nullptr);
    EXPECT_EQ(tavrik_host::IntParam(Master(), tavrik::MasterParam::CtrlKbdThrottle), 74);
    EXPECT_TRUE(desk.Windows().AcceleratorsEnabled());
}

TEST_F(DriveDeskTest, ReportTellsWhereTheTimeWent) {
    EXPECT_EQ(desk.ProfileReport(), "Nothing was driven.\n");
    OpenDrive();
    Enter();
    ASSERT_TRUE(WaitForFrames(5));
    desk.StopRun();
    EXPECT_GE(desk.Profile().Ticks(), 5);
    EXPECT_GT(desk.Profile().FramesPerSecond(), 0.0);
    for (const char* const row : {"solver", "views", "display", "a second"}) {
        EXPECT_TRUE(desk.ProfileReport().contains(row)) << desk.ProfileReport().toStdString();
    }
}

}  // namespace
}  // namespace tavrik_studio
