/// Grounds and cars of other people's making, and those of the garage, through the real windows.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "host/rig_objects.h"
#include "rig/parameter_tables.h"
#include "studio/dialogs/garage_dialog.h"
#include "studio/dialogs/import_ground_dialog.h"
#include "studio/dialogs/rig_wizard_dialog.h"
#include "studio/dialogs/sample_ground_dialog.h"
#include "tests/studio/dialogs_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik_host::NodeParam;
using test::DataFile;

constexpr const char* kBump = "ground/medium/bump.obj";
constexpr const char* kTruck = "cars/kenney_starter/vehicle-truck-yellow.glb";

void Click(QPushButton& button) { QTest::mouseClick(&button, Qt::LeftButton); }

class ImportGround : public test::DialogScene {};
class SampleGroundWindow : public test::DialogScene {};
class ImportCar : public test::DialogScene {
 protected:
    /// Waits until the tables follow from the form.
    static void WaitForPlan(const RigWizardDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog.IsPlanDue(); }, 20'000));
    }
    static QString Decided(const RigWizardDialog& dialog, const QString& key) {
        for (int row = 0; row < dialog.Decisions().rowCount(); ++row) {
            if (dialog.Decisions().item(row, 0)->text() == key) return dialog.Decisions().item(row, 1)->text();
        }
        return {};
    }
};
class Garage : public test::DialogScene {};

// ------------------------------------------------------------------------------------------------------------------ grounds

TEST_F(ImportGround, TellsTheSizeInMetres) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.show();
    Picture(dialog, "import_ground");
    EXPECT_FALSE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.Message().Sentence().startsWith("64 × 64 m")) << dialog.Message().Sentence().toStdString();
}

TEST_F(ImportGround, AnotherUnitMakesAnotherSize) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.Unit().SetMetres(0.3048);
    EXPECT_TRUE(dialog.Message().Sentence().startsWith("19.5 × 19.5 m")) << dialog.Message().Sentence().toStdString();
}

TEST_F(ImportGround, AnotherUpAxisTurnsTheGround) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.UpAxis().setCurrentIndex(dialog.UpAxis().findData(int(tavrik::UpAxis::Y)));
    EXPECT_TRUE(dialog.Message().Sentence().contains("64 m high")) << dialog.Message().Sentence().toStdString();
}

TEST_F(ImportGround, ATinyGroundAsksForTheUnit) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.Unit().SetMetres(0.001);
    Picture(dialog, "import_ground_tiny");
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.OkButton().isEnabled());
}

TEST_F(ImportGround, PutsItIntoTheSceneAsOneStep) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.show();
    Click(dialog.OkButton());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_EQ(GroundNodes().size(), 1u);
    EXPECT_EQ(NameOf(*GroundNodes().front()), "bump");
    EXPECT_EQ(editor.Current(), GroundNodes().front());
    editor.Undo();
    EXPECT_TRUE(GroundNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
}

TEST_F(ImportGround, AMasterWithoutAGroundGetsIt) {
    INode& plane = AddPlane();
    INode& master = AddCar(plane);
    tavrik_host::SetParam(master, MasterParam::Surface_Node, static_cast<INode*>(nullptr));
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.accept();
    ASSERT_NE(editor.Current(), nullptr);
    EXPECT_EQ(NodeParam(master, MasterParam::Surface_Node), editor.Current());
}

TEST_F(ImportGround, AMasterWithAGroundKeepsIt) {
    INode& plane = AddPlane();
    INode& master = AddCar(plane);
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.accept();
    EXPECT_EQ(NodeParam(master, MasterParam::Surface_Node), &plane);
}

TEST_F(ImportGround, TellsWhatIsWrongWithAFile) {
    const std::filesystem::path file = folder.Write("broken.obj", "v 0 0 0\nf 1 2 3\n");
    ImportGroundDialog dialog(editor, file);
    dialog.show();
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.Message().Sentence().contains("broken.obj"));
    EXPECT_FALSE(dialog.OkButton().isEnabled());
    dialog.accept();
    EXPECT_TRUE(GroundNodes().empty());
}

TEST_F(ImportGround, EscapeLeavesTheSceneAsItWas) {
    ImportGroundDialog dialog(editor, DataFile(kBump));
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_TRUE(GroundNodes().empty());
}

TEST_F(ImportGround, EnterInTheFileReadsItFirst) {
    ImportGroundDialog dialog(editor, {});
    dialog.show();
    EXPECT_FALSE(dialog.OkButton().isEnabled());
    dialog.File().Edit().setFocus();
    QTest::keyClicks(&dialog.File().Edit(), TextOf(DataFile(kBump)));
    QTest::keyClick(&dialog.File().Edit(), Qt::Key_Return);
    EXPECT_TRUE(dialog.OkButton().isEnabled());
    if (dialog.isVisible()) QTest::keyClick(&dialog.File().Edit(), Qt::Key_Return);
    EXPECT_EQ(GroundNodes().size(), 1u);
}

TEST_F(SampleGroundWindow, AddsAGroundOfTheWantedSize) {
    SampleGroundDialog dialog(editor);
    dialog.show();
    Picture(dialog, "sample_ground");
    dialog.Kind().setCurrentIndex(dialog.Kind().findText("Plane"));
    EXPECT_FALSE(dialog.Seed().isEnabled());
    dialog.Size().setValue(50.0);
    Click(dialog.OkButton());
    ASSERT_EQ(GroundNodes().size(), 1u);
    EXPECT_EQ(editor.UndoText(), "Sample Ground");
    INode& node = *GroundNodes().front();
    const ObjectState state = node.EvalWorldState(0);
    ASSERT_NE(state.obj, nullptr);
    Box3 box;
    state.obj->GetDeformBBox(0, box);
    EXPECT_NEAR(double(box.Width().x), 5000.0, 1.0);
}

// --------------------------------------------------------------------------------------------------------------------- cars

TEST_F(ImportCar, ShowsWhatWasDecidedAndWhy) {
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.show();
    Picture(dialog, "import_car");
    EXPECT_FALSE(dialog.Message().Complains()) << dialog.Message().Sentence().toStdString();
    EXPECT_GT(dialog.Decisions().rowCount(), 4);
    EXPECT_FALSE(Decided(dialog, "forward").isEmpty());
    for (int row = 0; row < dialog.Decisions().rowCount(); ++row) {
        EXPECT_FALSE(dialog.Decisions().item(row, 2)->text().isEmpty()) << row;
    }
    EXPECT_EQ(dialog.Wheels().rowCount(), 4);
    EXPECT_EQ(dialog.Wheels().item(0, 0)->text(), "front left");
}

TEST_F(ImportCar, AnOverrideIsPlannedAnew) {
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.Form().damping->setValue(0.62);
    dialog.Form().frequency->setValue(2.1);
    WaitForPlan(dialog);
    for (int row = 0; row < 4; ++row) EXPECT_EQ(dialog.Wheels().item(row, 3)->text(), "0.62") << row;
    dialog.Form().driven->setText("1");
    dialog.Form().steered->setText("2");
    WaitForPlan(dialog);
    EXPECT_TRUE(dialog.Wheels().item(0, 4)->text().contains("drives"));
    EXPECT_FALSE(dialog.Wheels().item(2, 4)->text().contains("drives"));
    EXPECT_TRUE(dialog.Wheels().item(2, 4)->text().contains("steers"));
}

TEST_F(ImportCar, ACarThatNoFileCanHoldIsRefusedAndTheSceneStays) {
    AddPlane();
    const std::string before = Scene();
    RigWizardDialog dialog(editor, DataFile("cars/sedan/sedan_assembled.glb"));
    dialog.Form().mass->setValue(4000.0);
    WaitForPlan(dialog);
    dialog.show();
    Click(dialog.OkButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.Message().Sentence().contains("Ruggedness")) << dialog.Message().Sentence().toStdString();
    EXPECT_EQ(Scene(), before);
}

TEST_F(ImportCar, PutsTheCarOntoTheGroundAsOneStep) {
    INode& plane = AddPlane();
    const std::string before = Scene();
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.show();
    EXPECT_EQ(dialog.Form().ground->Node(), &plane);
    dialog.Form().name->setText("Yellow");
    dialog.Form().mass->setValue(900.0);
    Click(dialog.OkButton());  // the plan of what was just typed is due
    ASSERT_EQ(dialog.result(), QDialog::Accepted) << dialog.Message().Sentence().toStdString();
    ASSERT_EQ(Count(ObjectClass::Tavrik), 1u);
    INode& master = Only(ObjectClass::Tavrik);
    EXPECT_EQ(NameOf(master), "Yellow");
    EXPECT_EQ(editor.Current(), &master);
    EXPECT_EQ(NodeParam(master, MasterParam::Surface_Node), &plane);
    EXPECT_EQ(Count(ObjectClass::Wheel), 4u);
    EXPECT_GE(GetCOREInterface()->GetAnimRange().End(), 20 * TIME_TICKSPERSEC);
    editor.Undo();
    EXPECT_EQ(Count(ObjectClass::Tavrik), 0u);
    editor.Redo();
    EXPECT_EQ(Count(ObjectClass::Wheel), 4u);
}

TEST_F(ImportCar, ASecondCarStandsBesideTheFirst) {
    AddPlane();
    for (int i = 0; i < 2; ++i) RigWizardDialog(editor, DataFile(kTruck)).accept();
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    ASSERT_EQ(masters.size(), 2u);
    const Point3 apart = masters[1]->GetNodeTM(0).GetTrans() - masters[0]->GetNodeTM(0).GetTrans();
    EXPECT_GT(Length(apart), 300.0f);
}

TEST_F(ImportCar, AnEmptySceneGetsASampleGround) {
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.accept();
    EXPECT_EQ(GroundNodes().size(), 1u);
    EXPECT_EQ(Count(ObjectClass::Tavrik), 1u);
    editor.Undo();
    EXPECT_TRUE(GroundNodes().empty());
}

TEST_F(ImportCar, WordsThatAreNoAxlesAreTold) {
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.show();
    dialog.Form().driven->setText("all");
    WaitForPlan(dialog);
    Picture(dialog, "import_car_complaint");
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_FALSE(dialog.OkButton().isEnabled());
    dialog.Form().driven->setText("none");
    WaitForPlan(dialog);
    EXPECT_FALSE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.OkButton().isEnabled());
}

TEST_F(ImportCar, WheelsThatAreNotThereAreTold) {
    RigWizardDialog dialog(editor, DataFile(kTruck));
    dialog.Form().wheels->setText("no-such-part");
    WaitForPlan(dialog);
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_FALSE(dialog.OkButton().isEnabled());
    dialog.accept();
    EXPECT_EQ(Count(ObjectClass::Tavrik), 0u);
}

TEST_F(ImportCar, AFileThatIsNoModelIsTold) {
    RigWizardDialog dialog(editor, folder.Write("car.glb", "no model"));
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_EQ(dialog.Wheels().rowCount(), 0);
    EXPECT_FALSE(dialog.OkButton().isEnabled());
}

TEST_F(ImportCar, AFileOfPlacesMakesATrain) {
    AddPlane();
    const std::filesystem::path places = folder.Write("places.json", R"({"vehicles": [
        {"name": "Cab", "hitch": [0, 0.7046, -0.9601], "parts": [
            {"name": "TruckCab", "at": [-0.0017, 0.2229, -0.0955]},
            {"name": "Wheel", "at": [-0.5754, 0.2237, 1.0087]}, {"name": "Wheel", "at": [0.572, 0.2237, 1.0087]},
            {"name": "Wheel", "at": [-0.5754, 0.2237, -0.8789]}, {"name": "Wheel", "at": [0.572, 0.2237, -0.8789]}]},
        {"name": "Trailer", "tongue": [0, 0.7046, -0.9601], "parts": [
            {"name": "TruckTrailer", "at": [-0.0017, 0.6379, -2.7812]},
            {"name": "Wheel", "at": [-0.5754, 0.2352, -3.382]}, {"name": "Wheel", "at": [0.572, 0.2352, -3.382]},
            {"name": "Wheel", "at": [-0.5754, 0.2352, -4.314]}, {"name": "Wheel", "at": [0.572, 0.2352, -4.314]}]}]})");
    RigWizardDialog dialog(editor, DataFile("cars/truck_and_trailer/meshes.glb"));
    dialog.show();
    dialog.Form().places->SetPath(places);
    WaitForPlan(dialog);
    ASSERT_FALSE(dialog.Message().Complains()) << dialog.Message().Sentence().toStdString();
    ASSERT_TRUE(dialog.Vehicle().isVisible());
    dialog.Vehicle().setCurrentIndex(1);
    Picture(dialog, "import_train");
    EXPECT_EQ(dialog.Vehicle().currentText(), "Trailer");
    dialog.accept();
    EXPECT_EQ(Count(ObjectClass::Tavrik), 2u);
    EXPECT_EQ(NameOf(*editor.Current()), "Cab");
}

TEST(ParseAxles, TakesNumbersNoneAndNothing) {
    std::optional<std::vector<int>> axles;
    QString problem;
    EXPECT_TRUE(ParseAxles("1, 3", axles, problem));
    EXPECT_EQ(axles, std::vector<int>({1, 3}));
    EXPECT_TRUE(ParseAxles("none", axles, problem));
    EXPECT_EQ(axles, std::vector<int>());
    EXPECT_TRUE(ParseAxles(" ", axles, problem));
    EXPECT_FALSE(axles.has_value());
    EXPECT_FALSE(ParseAxles("1,0", axles, problem));
    EXPECT_TRUE(problem.contains("\"0\""));
}

// ------------------------------------------------------------------------------------------------------------------- garage

TEST_F(Garage, ListsEverySceneWithItsLine) {
    GarageDialog dialog(editor, {});
    dialog.show();
    Picture(dialog, "garage");
    ASSERT_EQ(dialog.List().count(), int(tavrik_host::GarageScenes().size()));
    EXPECT_EQ(dialog.List().item(0)->text(), "The stock car with a box trailer");
}

TEST_F(Garage, OpensASceneInPlaceOfTheOldOne) {
    AddPlane("old");
    int asked = 0;
    GarageDialog dialog(editor, [&asked] { return ++asked == 1; });
    dialog.show();
    dialog.List().setCurrentRow(2);
    QSignalSpy replaced(&editor, &Editor::SceneReplaced);
    Click(dialog.OpenButton());
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(replaced.count(), 1);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(Count(ObjectClass::Tavrik), 1u);
    ASSERT_EQ(GroundNodes().size(), 1u);
    EXPECT_NE(NameOf(*GroundNodes().front()), "old");
    EXPECT_TRUE(editor.IsModified());
    EXPECT_TRUE(editor.File().empty());
}

TEST_F(Garage, KeepsTheSceneThatTheUserWantsToSaveFirst) {
    AddPlane("old");
    GarageDialog dialog(editor, [] { return false; });
    dialog.show();
    Click(dialog.OpenButton());
    EXPECT_TRUE(dialog.isVisible());
    ASSERT_EQ(GroundNodes().size(), 1u);
    EXPECT_EQ(NameOf(*GroundNodes().front()), "old");
}

TEST_F(Garage, PutsAVehicleOntoTheChosenGroundAsOneStep) {
    AddPlane("first");
    INode& second = AddPlane("second");
    GarageDialog dialog(editor, {});
    dialog.show();
    EXPECT_EQ(dialog.Ground().Node(), &second);  // it is selected
    dialog.List().setCurrentRow(3);
    Click(dialog.PutButton());
    ASSERT_EQ(Count(ObjectClass::Tavrik), 1u) << dialog.Message().Sentence().toStdString();
    EXPECT_EQ(NodeParam(Only(ObjectClass::Tavrik), MasterParam::Surface_Node), &second);
    EXPECT_EQ(Count(ObjectClass::Wheel), 6u);
    editor.Undo();
    EXPECT_EQ(Count(ObjectClass::Tavrik), 0u);
    EXPECT_EQ(GroundNodes().size(), 2u);
}

TEST_F(Garage, EverySceneCanBeOpened) {
    for (int row = 0; row < int(tavrik_host::GarageScenes().size()); ++row) {
        GarageDialog dialog(editor, {});
        dialog.List().setCurrentRow(row);
        Click(dialog.OpenButton());
        EXPECT_EQ(dialog.result(), QDialog::Accepted) << row << ": " << dialog.Message().Sentence().toStdString();
        EXPECT_GE(Count(ObjectClass::Tavrik), 1u) << row;
    }
}

TEST_F(Garage, AGroundWithoutRoomLeavesTheSceneAsItWas) {
    INode& plane = AddPlane();
    GarageDialog dialog(editor, {});
    dialog.List().setCurrentRow(int(tavrik_host::GarageScenes().size()) - 1);  // a circuit of a kilometre
    ASSERT_EQ(dialog.Ground().Node(), &plane);
    Click(dialog.PutButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_EQ(Count(ObjectClass::Tavrik), 0u);
    EXPECT_EQ(GroundNodes().size(), 1u);
    EXPECT_EQ(editor.UndoText(), "Ground");
}

}  // namespace
}  // namespace tavrik_studio
