/// A person's first hour with the studio, from an empty scene to a film, by the same clicks and keys.

#include <gtest/gtest.h>

#include <QSettings>
#include <QTest>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "host/rig_objects.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"
#include "studio/dialogs/doctor_dock.h"
#include "studio/dialogs/export_film_dialog.h"
#include "studio/dialogs/import_ground_dialog.h"
#include "studio/dialogs/rig_wizard_dialog.h"
#include "studio/window/main_window.h"
#include "tests/host/temp_folder.h"
#include "tests/support/test_random.h"

namespace tavrik_studio {
namespace {

using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik_host::NodesOf;

constexpr const char* kGround = "ground/medium/bump.obj";
constexpr const char* kCar = "cars/sedan/";
constexpr int kFramesToDrive = 300;  // ten seconds

/// The one model in a folder of the data.
std::filesystem::path ModelIn(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".glb" || entry.path().extension() == ".gltf") return entry.path();
    }
    return {};
}

class FirstHour : public testing::Test {
 protected:
    void SetUp() override {
        data = tavrik::test::DataFolder();
        if (!std::filesystem::exists(data / kGround)) GTEST_SKIP() << "no real input data at " << data;
        QSettings().clear();
        window = std::make_unique<MainWindow>(folder / "autosave");
        window->askToSave = [] { return CloseAnswer::Discard; };
        window->resize(1280, 720);
        window->show();
    }

    template <typename Dialog>
    Dialog& Open(const char* command) {
        EXPECT_TRUE(window->TheCommands().Run(command));
        return *window->findChild<Dialog*>();
    }
    template <typename Dialog>
    void Ok(Dialog& dialog) {
        Picture(dialog, dialog.metaObject()->className());
        QTest::mouseClick(&dialog.OkButton(), Qt::LeftButton);
        EXPECT_EQ(dialog.result(), int(QDialog::Accepted)) << dialog.Message().Sentence().toStdString();
        delete &dialog;
    }
    /// Kept where TAVRIK_PICTURES says, for people to look at.
    static void Picture(QWidget& widget, const QString& name) {
        if (const char* const to = std::getenv("TAVRIK_PICTURES")) {
            QTest::qWait(600);
            widget.grab().save(QString("%1/%2.png").arg(to, QString(name).remove("tavrik_studio::")));
        }
    }
    Editor& TheEditor() { return window->TheEditor(); }
    FaceWindow& Face() { return *window->Desk().Windows().Face(tavrik::WindowKind::Drive); }
    void WaitForFrame(int frame) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return window->Time().Frame() >= frame; }, 120'000)) << window->Time().Frame();
    }
    static INode& Chassis() { return *NodesOf(ObjectClass::Chassis)[0]; }
    static Point3 CarAt(int frame) { return Chassis().GetNodeTM(frame * GetTicksPerFrame()).GetTrans(); }
    void PressPanelButton(const QString& text) {
        for (QPushButton* const button : window->Panel().findChildren<QPushButton*>()) {
            if (button->text() == text) return QTest::mouseClick(button, Qt::LeftButton);
        }
        FAIL() << "no button " << text.toStdString();
    }

    const tavrik::test::TempFolder folder;
    std::filesystem::path data;
    std::unique_ptr<MainWindow> window;
};

TEST_F(FirstHour, GoesFromAnEmptySceneToAFilm) {
    window->TheCommands().Run("file.new");

    auto& ground = Open<ImportGroundDialog>("file.import_ground");
    ground.File().SetPath(data / kGround);
    Ok(ground);
    ASSERT_EQ(tavrik_host::AllNodes().size(), 1u);

    auto& wizard = Open<RigWizardDialog>("file.import_car");
    wizard.Form().model->SetPath(ModelIn(data / kCar));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !wizard.IsPlanDue() && wizard.OkButton().isEnabled(); }, 60'000))
        << wizard.Message().Sentence().toStdString();
    Ok(wizard);
    ASSERT_EQ(NodesOf(ObjectClass::Wheel).size(), 4u);

    window->TheCommands().Run("drive.doctor");
    Picture(window->Doctor(), "doctor");
    EXPECT_TRUE(window->Doctor().isVisible());

    // The artist's two buttons, on the panel.
    TheEditor().Select(NodesOf(ObjectClass::Tavrik)[0]);
    QTest::qWait(20);
    PressPanelButton("Update Surface");
    PressPanelButton("Update (Lock Components)");
    ASSERT_TRUE(tavrik_host::HasTavrikControl(Chassis()));
    Picture(*window, "locked");
    PressPanelButton("Drive");
    ASSERT_NE(window->Desk().Windows().Face(tavrik::WindowKind::Drive), nullptr);

    GetCOREInterface()->SetAnimRange(Interval(0, 2 * kFramesToDrive * GetTicksPerFrame()));
    QTest::keyClick(&Face(), Qt::Key_Return);
    // Short taps: the hill is a small one.
    for (int frame = 0; frame < kFramesToDrive; frame += 50) {
        QTest::keyPress(&Face(), Qt::Key_W);
        WaitForFrame(frame + 8);
        QTest::keyRelease(&Face(), Qt::Key_W);
        QTest::keyPress(&Face(), Qt::Key_A);
        WaitForFrame(frame + 50);
        QTest::keyRelease(&Face(), Qt::Key_A);
    }
    Picture(*window, "driving");
    Picture(Face(), "drive_window");
    QTest::keyClick(&Face(), Qt::Key_Return);
    EXPECT_FALSE(window->Desk().IsRunning());
    EXPECT_GT(Length(CarAt(60) - CarAt(0)), 100.0f);

    // Scrubbed back, and driven on from there.
    const Point3 kept = CarAt(100), dropped = CarAt(250);
    window->Time().SetFrame(120);
    QTest::keyClick(&Face(), Qt::Key_Return);
    QTest::keyPress(&Face(), Qt::Key_D);
    WaitForFrame(260);
    QTest::keyRelease(&Face(), Qt::Key_D);
    QTest::keyClick(&Face(), Qt::Key_Return);
    EXPECT_EQ(CarAt(100), kept);
    EXPECT_NE(CarAt(250), dropped);
    const Point3 end = CarAt(260);

    ASSERT_TRUE(window->SaveFile(folder / "hour.glb"));
    window->TheCommands().Run("file.new");
    EXPECT_TRUE(tavrik_host::AllNodes().empty());
    ASSERT_TRUE(window->OpenFile(folder / "hour.glb"));
    EXPECT_EQ(CarAt(260), end);
    Picture(*window, "reopened");

    auto& film = Open<ExportFilmDialog>("file.export_film");
    film.File().SetPath(folder / "film.glb");
    Picture(film, "film");
    QTest::mouseClick(&film.StartButton(), Qt::LeftButton);
    EXPECT_FALSE(film.Message().Complains()) << film.Message().Sentence().toStdString();
    delete &film;
    ASSERT_TRUE(std::filesystem::exists(folder / "film.glb"));
    const std::string check = "node " TAVRIK_TOOLS_FOLDER "/validate_gltf.mjs '" + (folder / "film.glb").string() + "' >&2";
    if (!std::filesystem::exists(TAVRIK_TOOLS_FOLDER "/node_modules")) GTEST_SKIP() << "the film's checker isn't installed";
    EXPECT_EQ(std::system(check.c_str()), 0);
}

}  // namespace
}  // namespace tavrik_studio
