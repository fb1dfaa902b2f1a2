/// The doctor's window: finds, shows, mends, and lets everything be taken back.

#include "studio/dialogs/doctor_dock.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <limits>

#include "host/garage.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/sdk/prs_control.h"
#include "rig/parameter_tables.h"
#include "studio/dialogs/garage_entry.h"
#include "studio/dialogs/scene_grounds.h"
#include "tests/studio/dialogs_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::FindingKind;
using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik_host::FloatParam;
using tavrik_host::NodeParam;
using tavrik_host::SetParam;

constexpr int kPatience = 20'000;  // ms

class DoctorWindow : public test::DialogScene {
 protected:
    DoctorWindow() { dock.resize(420, 480); }

    /// What is shown for the first time looks at the scene by itself.
    void ShowDock() {
        dock.show();
        QCoreApplication::processEvents();
    }
    /// The row of the first finding of a kind, or -1.
    int RowOf(FindingKind kind) const {
        const std::vector<Ailment>& ailments = dock.Doctor().Ailments();
        const auto found = std::ranges::find(ailments, kind, &Ailment::kind);
        return found == ailments.end() ? -1 : int(found - ailments.begin());
    }
    /// Presses the button of a finding that must be there, and waits until it is mended.
    void Mend(FindingKind kind) {
        const int row = RowOf(kind);
        ASSERT_GE(row, 0);
        ASSERT_NE(dock.MendButton(row), nullptr);
        QTest::mouseClick(dock.MendButton(row), Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([&] { return RowOf(kind) < 0 || dock.Summary().Complains(); }, kPatience));
        ASSERT_FALSE(dock.Summary().Complains()) << dock.Summary().Sentence().toStdString();
    }
    /// Looks, mends, and takes it back.
    void ExpectMendable(FindingKind kind) {
        dock.LookAgain();
        const std::string ill = Scene();
        const QString before = editor.UndoText();
        Mend(kind);
        if (HasFatalFailure()) return;
        EXPECT_EQ(RowOf(kind), -1);
        EXPECT_NE(editor.UndoText(), before);
        EXPECT_FALSE(Scene() == ill);
        editor.Undo();
        EXPECT_TRUE(Scene() == ill);
        EXPECT_EQ(editor.UndoText(), before);
        dock.LookAgain();
        EXPECT_GE(RowOf(kind), 0);
    }
    void MoveStart(float up) {
        INode& start = Only(ObjectClass::Start);
        Matrix3 place = start.GetNodeTM(0);
        place.SetTrans(place.GetTrans() + Point3(0.0f, 0.0f, up));
        start.SetNodeTM(0, place);
    }
    static void Scale(INode& node, const Point3& by) {
        Matrix3 place = node.GetNodeTM(0);
        place.SetRow(0, place.GetRow(0) * by.x);
        place.SetRow(1, place.GetRow(1) * by.y);
        place.SetRow(2, place.GetRow(2) * by.z);
        node.SetNodeTM(0, place);
    }

    INode& plane = AddPlane();
    INode& master = AddCar(plane);
    DoctorDock dock{editor};
};

TEST_F(DoctorWindow, FindsNothingWrongWithAGoodCar) {
    ShowDock();
    Picture(dock, "doctor_well");
    EXPECT_EQ(dock.Table().rowCount(), 0);
    EXPECT_EQ(dock.Summary().Sentence(), "Nothing will go wrong with the car.");
}

TEST_F(DoctorWindow, ShowsASentenceForEachFinding) {
    SetParam(Only(ObjectClass::Chassis), tavrik::ChassisParam::Mass, -5.0f);
    MoveStart(200.0f);
    tavrik_host::AddRigNode(ObjectClass::Push, Matrix3(TRUE));
    Scale(Only(ObjectClass::Wheel), {2, 2, 2});
    ShowDock();
    QTest::qWait(50);
    Picture(dock, "doctor_ill");
    ASSERT_GE(dock.Table().rowCount(), 3);
    EXPECT_EQ(std::size_t(dock.Table().rowCount()), dock.Doctor().Ailments().size());
    for (int row = 0; row < dock.Table().rowCount(); ++row) {
        EXPECT_FALSE(dock.Table().item(row, 0)->text().isEmpty());
        EXPECT_FALSE(dock.Table().item(row, 0)->icon().isNull());
    }
    EXPECT_TRUE(dock.Summary().Sentence().endsWith("this will not drive as it is.")) << dock.Summary().Sentence().toStdString();
}

TEST_F(DoctorWindow, AClickSelectsTheCulprit) {
    SetParam(Only(ObjectClass::Chassis), tavrik::ChassisParam::Mass, -5.0f);
    ShowDock();
    editor.Select(&plane);
    const int row = RowOf(FindingKind::OutOfRange);
    ASSERT_GE(row, 0);
    const QRect place = dock.Table().visualItemRect(dock.Table().item(row, 0));
    QTest::mouseClick(dock.Table().viewport(), Qt::LeftButton, {}, place.center());
    EXPECT_EQ(editor.Current(), &Only(ObjectClass::Chassis));
}

TEST_F(DoctorWindow, StandsACarInTheAirOnTheGround) {
    MoveStart(150.0f);
    ExpectMendable(FindingKind::StartInAir);
}

TEST_F(DoctorWindow, LiftsACarOutOfTheGround) {
    MoveStart(-20.0f);
    ExpectMendable(FindingKind::WheelBelowGround);
}

TEST_F(DoctorWindow, GivesACarWithoutAStartOne) {
    SetParam(master, MasterParam::Start_Node, static_cast<INode*>(nullptr));
    GetCOREInterface()->DeleteNode(&Only(ObjectClass::Start));
    for (INode* const node : {&master, &Only(ObjectClass::Chassis)}) {
        Matrix3 place = node->GetNodeTM(0);
        place.SetTrans(place.GetTrans() + Point3(0.0f, 0.0f, 1.0f));
        node->SetNodeTM(0, place);
    }
    for (const ObjectClass part : {ObjectClass::Wheel, ObjectClass::Suspension}) {
        for (INode* const node : tavrik_host::NodesOf(part)) {
            Matrix3 place = node->GetNodeTM(0);
            place.SetTrans(place.GetTrans() + Point3(0.0f, 0.0f, 60.0f));
            node->SetNodeTM(0, place);
        }
    }
    dock.LookAgain();
    Mend(FindingKind::StartInAir);
    ASSERT_EQ(Count(ObjectClass::Start), 1u);
    EXPECT_EQ(NodeParam(Only(ObjectClass::Tavrik), MasterParam::Start_Node), &Only(ObjectClass::Start));
}

TEST_F(DoctorWindow, PicksTheOnlyGround) {
    SetParam(master, MasterParam::Surface_Node, static_cast<INode*>(nullptr));
    ExpectMendable(FindingKind::NoGroundPicked);
}

TEST_F(DoctorWindow, PicksNoGroundOfSeveral) {
    AddPlane("another");
    SetParam(master, MasterParam::Surface_Node, static_cast<INode*>(nullptr));
    dock.LookAgain();
    const int row = RowOf(FindingKind::NoGroundPicked);
    ASSERT_GE(row, 0);
    EXPECT_EQ(dock.MendButton(row), nullptr);
}

TEST_F(DoctorWindow, ClampsAParameterSoThatTheSceneCanBeSavedAgain) {
    QString problem;
    SetParam(Only(ObjectClass::Chassis), tavrik::ChassisParam::Mass, -5.0f);
    ASSERT_FALSE(editor.Save(folder / "scene.glb", problem));
    dock.LookAgain();
    Mend(FindingKind::OutOfRange);
    EXPECT_GT(FloatParam(Only(ObjectClass::Chassis), tavrik::ChassisParam::Mass), 0.0f);
    EXPECT_TRUE(editor.Save(folder / "scene.glb", problem)) << problem.toStdString();
}

TEST_F(DoctorWindow, ClampsANumberThatIsNone) {
    SetParam(Only(ObjectClass::Sphere), tavrik::SphereParam::Grip, std::numeric_limits<float>::infinity());
    dock.LookAgain();
    Mend(FindingKind::OutOfRange);
    EXPECT_EQ(RowOf(FindingKind::OutOfRange), -1);
}

TEST_F(DoctorWindow, ResetsAScaleAndLeavesTheMeshWhereItIs) {
    INode& wheel = Only(ObjectClass::Wheel);
    Scale(wheel, {2, 2, 2});
    ASSERT_GT(wheel.NumberOfChildren(), 0);
    const Matrix3 mesh = wheel.GetChildNode(0)->GetNodeTM(0);
    dock.LookAgain();
    Mend(FindingKind::ScaledNode);
    EXPECT_NEAR(double(Length(Only(ObjectClass::Wheel).GetNodeTM(0).GetRow(2))), 1.0, 1e-5);
    const Matrix3 after = Only(ObjectClass::Wheel).GetChildNode(0)->GetNodeTM(0);
    for (int i = 0; i < 4; ++i) EXPECT_LT(Length(after.GetRow(i) - mesh.GetRow(i)), 1e-3f) << i;
    editor.Undo();
    EXPECT_NEAR(double(Length(Only(ObjectClass::Wheel).GetNodeTM(0).GetRow(2))), 2.0, 1e-5);
}

TEST_F(DoctorWindow, TurnsAMirroredSuspensionWithoutMovingItsWheelOrTravel) {
    INode& suspension = Only(ObjectClass::Suspension);
    Scale(suspension, {1, -1, 1});
    const Matrix3 before = suspension.GetNodeTM(0);
    dock.LookAgain();
    Mend(FindingKind::MirroredNode);
    const Matrix3 after = Only(ObjectClass::Suspension).GetNodeTM(0);
    EXPECT_LT(Length(after.GetRow(0) - before.GetRow(0)), 1e-5f);
    EXPECT_LT(Length(after.GetRow(2) - before.GetRow(2)), 1e-5f);
    EXPECT_LT(Length(after.GetRow(1) + before.GetRow(1)), 1e-5f);
}

TEST_F(DoctorWindow, PicksTheOnlyMasterForAPush) {
    tavrik_host::AddRigNode(ObjectClass::Push, Matrix3(TRUE));
    ExpectMendable(FindingKind::PushNowhere);
}

TEST_F(DoctorWindow, ClearsALinkThatLeadsToNoTongue) {
    Matrix3 place = Only(ObjectClass::Chassis).GetNodeTM(0);
    INode& hitch = tavrik_host::AddRigNode(ObjectClass::Hitch, place);
    SetParam(hitch, tavrik::HitchParam::Connection_Node, &plane);
    ExpectMendable(FindingKind::HitchToNoTongue);
}

TEST_F(DoctorWindow, LocksTheCarOfATongue) {
    QString problem;
    ASSERT_TRUE(OpenGarageScene(editor, *tavrik_host::FindGarageScene("trailer"), problem)) << problem.toStdString();
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    ASSERT_EQ(masters.size(), 2u);
    tavrik_host::MasterPanel(*masters[1]).UnlockComponents();
    dock.LookAgain();
    Mend(FindingKind::HitchUnlocked);
    EXPECT_EQ(RowOf(FindingKind::HitchUnlocked), -1);
}

TEST_F(DoctorWindow, WhatCannotBeMendedIsTakenBackAndTold) {
    INode& wheel = Only(ObjectClass::Wheel);
    Scale(wheel, {2, 2, 2});
    auto* const keyed = dynamic_cast<tavrik_host::PrsControl*>(wheel.GetTMController());
    ASSERT_NE(keyed, nullptr);
    const Point3 place = wheel.GetNodeTM(0).GetTrans();
    keyed->restScale = Point3(2, 2, 2);
    keyed->position.keys.push_back({0, place});
    keyed->KeysChanged();
    dock.LookAgain();
    const std::string ill = Scene();
    const int row = RowOf(FindingKind::ScaledNode);
    ASSERT_GE(row, 0);
    QTest::mouseClick(dock.MendButton(row), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return dock.Summary().Complains(); }, kPatience));
    EXPECT_TRUE(Scene() == ill);
    EXPECT_EQ(editor.UndoText(), "Car");
    EXPECT_GE(RowOf(FindingKind::ScaledNode), 0);
}

TEST_F(DoctorWindow, DoubleFacesAreHarmless) {
    tavrik::TriangleMesh mesh;
    mesh.verts = {{-5000, -5000, 0}, {5000, -5000, 0}, {5000, 5000, 0}, {-5000, 5000, 0}};
    mesh.faces = {{{0, 1, 2}}, {{0, 2, 3}}, {{0, 1, 2}}};
    QString problem;
    INode* const doubled = AddGround(editor, "Ground", mesh, "doubled", problem);
    ASSERT_NE(doubled, nullptr);
    SetParam(Only(ObjectClass::Tavrik), MasterParam::Surface_Node, doubled);
    dock.LookAgain();
    const int row = RowOf(FindingKind::DuplicateFaces);
    ASSERT_GE(row, 0);
    EXPECT_EQ(dock.MendButton(row), nullptr);
    EXPECT_TRUE(dock.Table().item(row, 0)->text().contains("harmless"));
}

TEST_F(DoctorWindow, AnotherSceneEmptiesTheList) {
    MoveStart(150.0f);
    ShowDock();
    ASSERT_GT(dock.Table().rowCount(), 0);
    editor.New();
    EXPECT_EQ(dock.Table().rowCount(), 0);
    QTest::mouseClick(&dock.LookButton(), Qt::LeftButton);
    EXPECT_GE(RowOf(FindingKind::NoMaster), 0);
}

TEST_F(DoctorWindow, AFindingOfANodeThatIsGoneDoesNothing) {
    MoveStart(150.0f);
    ShowDock();
    const int row = RowOf(FindingKind::StartInAir);
    ASSERT_GE(row, 0);
    GetCOREInterface()->DeleteNode(&Only(ObjectClass::Tavrik));
    emit dock.Table().cellActivated(row, 0);
    QTest::mouseClick(dock.MendButton(row), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return dock.Summary().Complains(); }, kPatience));
    EXPECT_EQ(editor.UndoText(), "Car");
}

TEST_F(DoctorWindow, TellsThatTheSceneHasChangedSince) {
    ShowDock();
    AddPlane("later");
    EXPECT_TRUE(dock.Summary().Sentence().endsWith("The scene has changed since then."));
    QTest::mouseClick(&dock.LookButton(), Qt::LeftButton);
    EXPECT_EQ(dock.Summary().Sentence(), "Nothing will go wrong with the car.");
}

}  // namespace
}  // namespace tavrik_studio
