#include "studio/window/main_window.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QSettings>
#include <QTest>

#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "studio/dialogs/doctor_dock.h"
#include "studio/dialogs/garage_dialog.h"
#include "studio/dialogs/import_ground_dialog.h"
#include "studio/dialogs/rig_wizard_dialog.h"
#include "studio/panel/number_box.h"
#include "tests/host/temp_folder.h"
#include "tests/support/ground_meshes.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik::test::TempFolder;
using tavrik_host::AllNodes;

class Window : public testing::Test {
 protected:
    Window() {
        QSettings().clear();
        window.askToSave = [this] { return answer; };
        window.show();
    }

    void Put(ObjectClass objectClass) {
        Change change(window.TheEditor(), "Create");
        tavrik_host::AddRigNode(objectClass, Matrix3(TRUE));
        change.Keep();
        window.TheEditor().TouchNodes();
        QTest::qWait(1);
    }
    void OpenGarage(const char* name) {
        ASSERT_TRUE(window.TheCommands().Run("file.garage"));
        auto* const garage = window.findChild<GarageDialog*>();
        ASSERT_NE(garage, nullptr);
        for (int row = 0; row < garage->List().count(); ++row) {
            if (garage->List().item(row)->text().contains(name, Qt::CaseInsensitive)) garage->List().setCurrentRow(row);
        }
        QTest::mouseClick(&garage->OpenButton(), Qt::LeftButton);
        delete garage;
        ASSERT_FALSE(tavrik_host::NodesOf(ObjectClass::Tavrik).empty()) << window.Notices().Sentence().toStdString();
    }
    FaceWindow& Face() { return *window.Desk().Windows().Face(tavrik::WindowKind::Drive); }
    /// Drives so many frames with a key held.
    void DriveFrames(int frames, Qt::Key key) {
        const TimeValue goal = window.TheEditor().Time() + frames * GetTicksPerFrame();
        QTest::keyClick(&Face(), Qt::Key_Return);
        QTest::keyPress(&Face(), key);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.TheEditor().Time() >= goal; }, 60000));
        QTest::keyRelease(&Face(), key);
        QTest::keyClick(&Face(), Qt::Key_Return);
    }
    static Point3 CarAt(TimeValue tick) { return tavrik_host::NodesOf(ObjectClass::Chassis)[0]->GetNodeTM(tick).GetTrans(); }

    TempFolder folder;
    CloseAnswer answer = CloseAnswer::Discard;
    MainWindow window{folder / "autosave"};
};

TEST_F(Window, SaysInItsTitleWhatIsOpenAndWhetherItIsChanged) {
    EXPECT_TRUE(window.windowTitle().startsWith("Untitled"));
    EXPECT_FALSE(window.isWindowModified());
    Put(ObjectClass::Wheel);
    EXPECT_TRUE(window.isWindowModified());
    ASSERT_TRUE(window.SaveFile(folder / "car.glb"));
    EXPECT_TRUE(window.windowTitle().startsWith("car.glb"));
    EXPECT_FALSE(window.isWindowModified());
}

TEST_F(Window, SelectsInTheTreeWhatIsSelectedInTheSceneAndBack) {
    Put(ObjectClass::Wheel);
    Put(ObjectClass::Chassis);
    INode* const wheel = AllNodes()[0];
    window.TheEditor().Select(wheel);
    EXPECT_TRUE(window.Tree().ItemOf(*wheel)->isSelected());
    window.Tree().clearSelection();
    window.Tree().ItemOf(*AllNodes()[1])->setSelected(true);
    EXPECT_EQ(window.TheEditor().Current(), AllNodes()[1]);
    EXPECT_FALSE(tavrik_host::Pages().empty());
}

TEST_F(Window, ShowsNumbersOnThePanelAsPeopleWriteThem) {
    Put(ObjectClass::Wheel);
    tavrik_host::SetParam(*AllNodes()[0], tavrik::WheelParam::Ruggedness, 1e6f);
    window.TheEditor().Select(AllNodes()[0]);
    QTest::qWait(20);
    QStringList texts;
    for (const NumberBox* const box : window.Panel().findChildren<NumberBox*>()) texts += box->text();
    EXPECT_TRUE(texts.contains("1000000")) << texts.join(", ").toStdString();
}

TEST_F(Window, RenamesInTheTree) {
    Put(ObjectClass::Wheel);
    window.Tree().ItemOf(*AllNodes()[0])->setText(0, "front left");
    EXPECT_STREQ(AllNodes()[0]->GetName(), L"front left");
    window.TheCommands().Run("edit.undo");
    EXPECT_STRNE(AllNodes()[0]->GetName(), L"front left");
}

TEST_F(Window, DeletesAndBringsBackByCommands) {
    Put(ObjectClass::Wheel);
    EXPECT_FALSE(window.TheCommands().Run("edit.delete"));  // nothing is selected
    window.TheEditor().Select(AllNodes()[0]);
    EXPECT_TRUE(window.TheCommands().Run("edit.delete"));
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_TRUE(window.TheCommands().Run("edit.undo"));
    EXPECT_EQ(AllNodes().size(), 1u);
}

TEST_F(Window, DuplicatesWithParameters) {
    Put(ObjectClass::Wheel);
    tavrik_host::SetParam(*AllNodes()[0], tavrik::WheelParam::Radius, 37.5f);
    window.TheEditor().Select(AllNodes()[0]);
    ASSERT_TRUE(window.TheCommands().Run("edit.duplicate"));
    ASSERT_EQ(AllNodes().size(), 2u);
    EXPECT_EQ(tavrik_host::FloatParam(*AllNodes()[1], tavrik::WheelParam::Radius), 37.5f);
    EXPECT_TRUE(AllNodes()[1]->Selected());
}

TEST_F(Window, ShowsWhyAFileCannotBeOpened) {
    EXPECT_FALSE(window.OpenFile(folder.Write("bad.glb", "no scene")));
    EXPECT_TRUE(window.Notices().Sentence().contains("bad.glb"));
}

TEST_F(Window, KeepsAChangedSceneWhenTheUserThinksAgain) {
    Put(ObjectClass::Wheel);
    answer = CloseAnswer::Cancel;
    window.TheCommands().Run("file.new");
    EXPECT_EQ(AllNodes().size(), 1u);
    EXPECT_FALSE(window.close());
    answer = CloseAnswer::Discard;
    window.TheCommands().Run("file.new");
    EXPECT_TRUE(AllNodes().empty());
}

TEST_F(Window, SavesUnderTheNameThatTheUserGives) {
    Put(ObjectClass::Wheel);
    window.askForFile = [this](bool) { return folder / "asked.glb"; };
    EXPECT_TRUE(window.TheCommands().Run("file.save"));
    EXPECT_TRUE(std::filesystem::exists(folder / "asked.glb"));
    EXPECT_EQ(QSettings().value("recentFiles").toStringList().front().toStdString(), (folder / "asked.glb").string());
}

TEST_F(Window, OffersWhatACrashLeftBehind) {
    QString problem;
    Put(ObjectClass::Wheel);
    std::filesystem::create_directories(folder / "old");
    ASSERT_TRUE(window.TheEditor().Save(folder / "old" / "1.glb", problem));
    std::filesystem::rename(folder / "old" / "1.glb", folder / "old" / "999999999.glb");
    window.TheCommands().Run("file.new");
    // A window of the next session.
    for (const RescuedScene& scene : Autosave::Rescued(folder / "old")) {
        ASSERT_TRUE(window.TheEditor().Recover(scene.copy, scene.file, problem)) << problem.toStdString();
    }
    EXPECT_EQ(AllNodes().size(), 1u);
    EXPECT_TRUE(window.isWindowModified());
}

TEST_F(Window, SaysThatThereIsNothingToDrive) {
    EXPECT_FALSE(window.OpenDrive());
    EXPECT_TRUE(window.Notices().Sentence().contains("no car"));
}

TEST_F(Window, DrivesByKeysAndGoesBackToTheRunBefore) {
    OpenGarage("car");
    ASSERT_TRUE(window.OpenDrive());
    DriveFrames(30, Qt::Key_W);
    const TimeValue end = window.TheEditor().Time();
    const Point3 first = CarAt(end);
    EXPECT_GT(Length(first - CarAt(0)), 10.0f);
    window.TheEditor().SetTime(0);
    DriveFrames(30, Qt::Key_S);
    EXPECT_NE(CarAt(end), first);
    window.Desk().Windows().SendToDrive(0x0010, 0);  // the window closes
    ASSERT_TRUE(window.TheCommands().Run("edit.undo"));
    EXPECT_EQ(CarAt(end), first);
}

TEST_F(Window, DrivesOnFromAnEarlierFrame) {
    OpenGarage("car");
    ASSERT_TRUE(window.OpenDrive());
    DriveFrames(40, Qt::Key_W);
    const Point3 kept = CarAt(19 * GetTicksPerFrame());
    window.Time().SetFrame(20);
    EXPECT_EQ(window.TheEditor().Time(), 20 * GetTicksPerFrame());
    DriveFrames(10, Qt::Key_W);
    EXPECT_EQ(CarAt(19 * GetTicksPerFrame()), kept);
    EXPECT_GE(window.TheEditor().Time(), 30 * GetTicksPerFrame());
}

TEST_F(Window, FollowsTheCarWhileItDrives) {
    OpenGarage("car");
    ASSERT_TRUE(window.OpenDrive());
    QTest::keyClick(&Face(), Qt::Key_Return);
    ASSERT_TRUE(window.Desk().IsRunning());
    ASSERT_NE(window.Views().Main().Followed(), nullptr);
    EXPECT_EQ(tavrik_host::ClassOf(*window.Views().Main().Followed()), ObjectClass::Chassis);
    QTest::keyClick(&Face(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.Views().Main().Followed() == nullptr; }));
}

TEST_F(Window, TellsWhereTheTimeOfARunGoes) {
    OpenGarage("car");
    ASSERT_TRUE(window.OpenDrive());
    DriveFrames(20, Qt::Key_W);
    EXPECT_GE(window.Desk().Profile().Ticks(), 20);
    const QString report = window.Desk().ProfileReport();
    for (const char* part : {"solver", "views", "display", "all"}) EXPECT_TRUE(report.contains(part)) << part;
}

TEST_F(Window, LeavesKeysToTheCarWhileTheDriveWindowIsOpen) {
    OpenGarage("car");
    window.TheCommands().Run("edit.select_all");
    const std::size_t nodes = AllNodes().size();
    ASSERT_TRUE(window.OpenDrive());
    QTest::keyClick(&window, Qt::Key_Delete);
    EXPECT_EQ(AllNodes().size(), nodes);
}

TEST_F(Window, PlaysTheTimelineToItsEnd) {
    Put(ObjectClass::Wheel);
    GetCOREInterface()->SetAnimRange(Interval(0, 5 * GetTicksPerFrame()));
    window.Time().Play();
    EXPECT_TRUE(window.Time().IsPlaying());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window.Time().IsPlaying(); }, 10000));
    EXPECT_EQ(window.Time().Frame(), 5);
}

TEST_F(Window, ListsWhatTheDoctorFinds) {
    Put(ObjectClass::Tavrik);
    ASSERT_TRUE(window.TheCommands().Run("drive.doctor"));
    EXPECT_TRUE(window.Doctor().isVisible());
    EXPECT_GT(window.Doctor().Table().rowCount(), 0);
}

TEST_F(Window, OpensEveryDialogOfTheFileMenu) {
    OpenGarage("car");
    for (const char* name : {"file.import_ground", "file.sample_ground", "file.import_car", "file.garage", "file.export_film",
                             "file.render", "file.bake_tracks"}) {
        ASSERT_TRUE(window.TheCommands().Run(name)) << name;
        auto* const dialog = window.findChild<QDialog*>(QString(), Qt::FindDirectChildrenOnly);
        ASSERT_NE(dialog, nullptr) << name;
        EXPECT_FALSE(dialog->windowTitle().isEmpty()) << name;
        delete dialog;
    }
}

}  // namespace
}  // namespace tavrik_studio
