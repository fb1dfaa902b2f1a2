// What the mouse and the keys do in a view.

#include "host/sdk/picking.h"
#include "host/sdk/pickmode.h"
#include "host/sdk/view_picking.h"
#include "rig/class_identities.h"
#include "rig/parameter_tables.h"
#include "studio/view/handles.h"
#include "studio/view/node_drag.h"
#include "tests/studio/view_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik_host::AllNodes;
using tavrik_host::ClassOf;
using tavrik_host::ViewSide;
using tavrik_host::ViewState;
using test::Again;
using test::At;
using test::ViewScene;

class ViewMouse : public ViewScene {
 public:
    ViewMouse() { LookDown(); }
    const Point3 grey{0.5f, 0.5f, 0.5f};

    /// Drags a handle of what is selected.
    void DragArm(const Point3& centre, const QPoint& by, HandlePart part) {
        const QPoint middle = PixelOf(centre);
        const QPoint at = part == HandlePart::X   ? middle + QPoint(50, 0)
                          : part == HandlePart::Y ? middle - QPoint(0, 50)
                                                  : middle;
        Drag(at, at + by);
    }
    Point3 PlaceOf(ULONG handle) { return Again(handle)->GetNodeTM(editor.Time()).GetTrans(); }
};

// ------------------------------------------------------------------------------------------------------------------- selecting

TEST_F(ViewMouse, AClickSelectsAMesh) {
    INode& block = AddBlock(Point3(50, 0, 0), 40.0f, grey);
    Click(PixelOf(Point3(50, 10, 0)));
    EXPECT_EQ(editor.Current(), &block);
    Click(PixelOf(Point3(-100, 0, 0)));
    EXPECT_TRUE(editor.Selection().empty());
}

TEST_F(ViewMouse, AClickOnALineSelectsItsObjectAlsoInFrontOfAMesh) {
    AddBlock(Point3(0, 0, 100), 200.0f, grey);
    INode& start = Add(ObjectClass::Start, 0, 0);
    view.Shown().Update();
    const Point3 end = view.Shown().PointsOf(start).front();
    Click(PixelOf(end));
    EXPECT_EQ(editor.Current(), &start);
}

TEST_F(ViewMouse, ShiftAddsAndCtrlTakesOutAndIn) {
    INode& a = AddBlock(Point3(-60, 0, 0), 40.0f, grey);
    INode& b = AddBlock(Point3(60, 0, 0), 40.0f, grey);
    Click(PixelOf(Point3(-60, 0, 0)));
    Click(PixelOf(Point3(60, 0, 0)), Qt::ShiftModifier);
    EXPECT_EQ(editor.Selection(), (std::vector<INode*>{&a, &b}));
    Click(PixelOf(Point3(60, 0, 0)), Qt::ShiftModifier);
    EXPECT_EQ(editor.Selection().size(), 2u);
    Click(PixelOf(Point3(-60, 0, 0)), Qt::ControlModifier);
    EXPECT_EQ(editor.Selection(), std::vector<INode*>{&b});
    Click(PixelOf(Point3(-60, 0, 0)), Qt::ControlModifier);
    EXPECT_EQ(editor.Selection().size(), 2u);
}

TEST_F(ViewMouse, ARectangleToTheRightTakesWhatLiesInItAndOneToTheLeftWhatItTouches) {
    INode& inside = AddBlock(Point3(0, 0, 0), 20.0f, grey);
    INode& half = AddBlock(Point3(60, 0, 0), 40.0f, grey);
    Drag(PixelOf(Point3(-40, 40, 0)), PixelOf(Point3(60, -40, 0)));
    EXPECT_EQ(editor.Selection(), std::vector<INode*>{&inside});
    Drag(PixelOf(Point3(60, -40, 0)), PixelOf(Point3(-40, 40, 0)));
    EXPECT_EQ(editor.Selection().size(), 2u);
    EXPECT_TRUE(half.Selected());
}

TEST_F(ViewMouse, AWindowIsSelectedThroughLikeTheView) {
    // What is seen at a pixel of the picture is what a click there takes.
    INode& block = AddBlock(Point3(0, 0, 0), 100.0f, grey);
    view.SetSide(ViewSide::Perspective);
    view.FrameAll();
    const QPoint corner = PixelOf(Point3(50, 50, 50));
    Click(corner + (PixelOf(Point3(0, 0, 0)) - corner) / 8);
    EXPECT_EQ(editor.Current(), &block);
}

// ---------------------------------------------------------------------------------------------------------------- looking
// about

TEST_F(ViewMouse, TheMiddleButtonTurnsAPerspectiveAndMovesAFlatView) {
    const Point3 target = view.State().target;
    Drag({200, 150}, {240, 150}, {}, Qt::MiddleButton);
    EXPECT_EQ(view.State().pitch, -90.0f);
    EXPECT_NEAR(view.State().target.x, target.x - 40.0f, 0.1f);
    view.SetSide(ViewSide::Perspective);
    const ViewState before = view.State();
    Drag({200, 150}, {240, 150}, {}, Qt::MiddleButton);
    EXPECT_NE(view.State().heading, before.heading);
    EXPECT_EQ(view.State().target, before.target);
    Drag({200, 150}, {240, 150}, Qt::ShiftModifier, Qt::MiddleButton);
    EXPECT_FALSE(view.State().target == before.target);
}

TEST_F(ViewMouse, TheWheelZoomsAtTheMouse) {
    const Point3 at(80, 50, 0);
    const QPoint pixel = PixelOf(at);
    const float distance = view.State().distance;
    QWheelEvent wheel(pixel, view.mapToGlobal(pixel), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &wheel);
    EXPECT_LT(view.State().distance, 0.8f * distance);
    EXPECT_LE((PixelOf(at) - pixel).manhattanLength(), 1);
}

TEST_F(ViewMouse, ToolsLookAboutWithTheLeftButtonAlone) {
    view.SetSide(ViewSide::Perspective);
    const ViewState first = view.State();
    view.SetTool(ViewTool::Orbit);
    Drag({100, 100}, {150, 120});
    EXPECT_NE(view.State().heading, first.heading);
    const ViewState turned = view.State();
    view.SetTool(ViewTool::Pan);
    Drag({100, 100}, {150, 120});
    EXPECT_FALSE(view.State().target == turned.target);
    view.SetTool(ViewTool::Zoom);
    Drag({100, 100}, {150, 100});
    EXPECT_LT(view.State().distance, turned.distance);
    EXPECT_FALSE(editor.CanUndo());
}

TEST_F(ViewMouse, KeysLookAboutToo) {
    view.SetSide(ViewSide::Perspective);
    const ViewState before = view.State();
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_NE(view.State().heading, before.heading);
    QTest::keyClick(&view, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_FALSE(view.State().target == before.target);
    QTest::keyClick(&view, Qt::Key_Plus);
    EXPECT_LT(view.State().distance, before.distance);
}

TEST_F(ViewMouse, CommandsWorkOnTheViewThatHadTheFocusLast) {
    ViewWidget other(editor, commands);
    other.resize(200, 150);
    other.show();
    QTest::mouseClick(&other, Qt::LeftButton, {}, {20, 20});
    ASSERT_TRUE(commands.Run("view.front"));
    EXPECT_EQ(other.ViewName(), "Front");
    EXPECT_EQ(view.ViewName(), "Top");
    QTest::mouseClick(&view, Qt::LeftButton, {}, {20, 20});
    ASSERT_TRUE(commands.Run("view.left"));
    EXPECT_EQ(view.ViewName(), "Left");
}

TEST_F(ViewMouse, EveryCommandOfAViewRuns) {
    int count = 0;
    for (QAction* const action : commands.All()) {
        EXPECT_TRUE(commands.Run(action->objectName())) << action->objectName().toStdString();
        EXPECT_FALSE(action->text().isEmpty());
        ++count;
    }
    EXPECT_EQ(count, 7 + 5 + 7 + 9);
}

// ------------------------------------------------------------------------------------------------------------- move and rotate

TEST_F(ViewMouse, AnArmMovesANodeAlongItsAxisAloneAndUndoBringsItBack) {
    const ULONG handle = AddBlock(Point3(10, 20, 5), 40.0f, grey).GetHandle();
    editor.Select(Again(handle));
    view.SetTool(ViewTool::Move);
    DragArm(Point3(10, 20, 5), {60, 35}, HandlePart::X);
    EXPECT_NEAR(PlaceOf(handle).x, 70.0f, 1e-2f);
    EXPECT_NEAR(PlaceOf(handle).y, 20.0f, 1e-3f);
    EXPECT_NEAR(PlaceOf(handle).z, 5.0f, 1e-3f);
    EXPECT_EQ(editor.UndoText(), "Move");
    editor.Undo();
    EXPECT_NEAR(PlaceOf(handle).x, 10.0f, 1e-4f);
    EXPECT_FALSE(editor.CanUndo());  // it was one step
}

TEST_F(ViewMouse, TheMiddleMovesANodeAcrossTheView) {
    const ULONG handle = AddBlock(Point3(0, 0, 5), 40.0f, grey).GetHandle();
    editor.Select(Again(handle));
    view.SetTool(ViewTool::Move);
    DragArm(Point3(0, 0, 5), {30, 40}, HandlePart::Eye);
    EXPECT_NEAR(PlaceOf(handle).x, 30.0f, 1e-2f);
    EXPECT_NEAR(PlaceOf(handle).y, -40.0f, 1e-2f);
    EXPECT_NEAR(PlaceOf(handle).z, 5.0f, 1e-3f);
}

TEST_F(ViewMouse, ANodeFollowsTheHandAtOnceAndEscTakesItBack) {
    const ULONG handle = AddBlock(Point3(0, 0, 0), 40.0f, grey).GetHandle();
    editor.Select(Again(handle));
    view.SetTool(ViewTool::Move);
    Press(PixelOf(Point3(50, 0, 0)));
    Move(PixelOf(Point3(80, 0, 0)));
    EXPECT_NEAR(PlaceOf(handle).x, 30.0f, 1e-2f);
    Move(PixelOf(Point3(150, 0, 0)));
    EXPECT_NEAR(PlaceOf(handle).x, 100.0f, 1e-2f);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(PlaceOf(handle), Point3(0, 0, 0));
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_FALSE(view.IsBusy());
    Release(PixelOf(Point3(150, 0, 0)));
    EXPECT_EQ(PlaceOf(handle), Point3(0, 0, 0));
}

TEST_F(ViewMouse, AClickOnAHandleChangesNothing) {
    editor.Select(&AddBlock(Point3(0, 0, 0), 40.0f, grey));
    view.SetTool(ViewTool::Move);
    Click(PixelOf(Point3(50, 0, 0)));
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_EQ(editor.Selection().size(), 1u);
}

TEST_F(ViewMouse, SeveralNodesMoveTogetherAndChildrenOnce) {
    INode& parent = Add(ObjectClass::Chassis, -50, 0);
    INode& child = Add(ObjectClass::Wheel, -50, 30);
    INode& other = Add(ObjectClass::Start, 50, 0);
    parent.AttachChild(&child);
    const ULONG handles[] = {parent.GetHandle(), child.GetHandle(), other.GetHandle()};
    editor.Select({&parent, &child, &other});
    view.SetTool(ViewTool::Move);
    DragArm(Point3(0, 0, 0), {0, -25}, HandlePart::Y);
    EXPECT_NEAR(PlaceOf(handles[0]).y, 25.0f, 1e-2f);
    EXPECT_NEAR(PlaceOf(handles[1]).y, 55.0f, 1e-2f);
    EXPECT_NEAR(PlaceOf(handles[2]).y, 25.0f, 1e-2f);
}

TEST_F(ViewMouse, ANodeUnderATurnedParentAndWithItsOwnControlGoesWhereTheHandSays) {
    INode& parent = Add(ObjectClass::Chassis, 0, 0);
    Matrix3 turned(TRUE);
    turned.RotateY(0.7f);
    turned.SetTrans(Point3(-100, 30, 40));
    parent.SetNodeTM(0, turned);
    INode& child = Add(ObjectClass::Wheel, 0, 0, 10);
    parent.AttachChild(&child);
    const tavrik::ClassIdentity* identity = nullptr;
    for (const tavrik::ClassIdentity& candidate : tavrik::ClassIdentities()) {
        if (candidate.superClass == tavrik::kMatrixControlSuperClass) identity = &candidate;
    }
    ASSERT_NE(identity, nullptr);
    auto* const control =
        static_cast<Control*>(CreateInstance(SClass_ID(identity->superClass), Class_ID(identity->id.a, identity->id.b)));
    control->Copy(child.GetTMController());
    ASSERT_TRUE(child.SetTMController(control));
    ASSERT_TRUE(tavrik_host::HasTavrikControl(child));
    const ULONG handle = child.GetHandle();
    ASSERT_NEAR(PlaceOf(handle).z, 10.0f, 1e-3f);
    editor.Select(&child);
    view.SetTool(ViewTool::Move);
    DragArm(Point3(0, 0, 10), {40, 0}, HandlePart::X);
    EXPECT_NEAR(PlaceOf(handle).x, 40.0f, 2e-2f);
    EXPECT_NEAR(PlaceOf(handle).y, 0.0f, 2e-2f);
    EXPECT_NEAR(PlaceOf(handle).z, 10.0f, 2e-2f);
    EXPECT_EQ(said, "");
}

/// Keeps its node at the origin.
class Nailed final : public Control {
 public:
    SClass_ID SuperClassID() override { return SClass_ID(tavrik::kMatrixControlSuperClass); }
    Class_ID ClassID() override { return Class_ID(1, 2); }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
    void Copy(Control*) override {}
};

TEST_F(ViewMouse, ANodeThatDoesntFollowTheHandIsToldOfAndLeavesNothingToUndo) {
    INode& block = AddBlock(Point3(0, 0, 0), 40.0f, grey);
    ASSERT_TRUE(block.SetTMController(new Nailed));
    editor.Select(&block);
    view.SetTool(ViewTool::Move);
    DragArm(Point3(0, 0, 0), {33, 0}, HandlePart::X);
    EXPECT_TRUE(said.startsWith("block can't be moved by hand")) << said.toStdString();
    EXPECT_FALSE(editor.CanUndo());
}

TEST_F(ViewMouse, TheEyeGoesWithAFollowedNode) {
    INode& chassis = Add(ObjectClass::Chassis, 0, 0);
    for (const ViewSide side : {ViewSide::Perspective, ViewSide::Top}) {
        view.SetSide(side);
        view.SetFollow(&chassis);
        Matrix3 place = At(500.0f, 70.0f, 0.0f);
        chassis.SetNodeTM(0, place);
        editor.SetTime(editor.Time() + 160);
        EXPECT_NEAR(view.State().target.x, 500.0f, 1e-2f);
        EXPECT_NEAR(view.State().target.y, 70.0f, 1e-2f);
        view.SetFollow(nullptr);
        place = At(0.0f, 0.0f, 0.0f);
        chassis.SetNodeTM(0, place);
        editor.SetTime(editor.Time() + 160);
        EXPECT_NEAR(view.State().target.x, 500.0f, 1e-2f);
    }
}

TEST_F(ViewMouse, SnappingIsOffUntilItIsAskedFor) {
    const ULONG handle = AddBlock(Point3(0, 0, 0), 40.0f, grey).GetHandle();
    editor.Select(Again(handle));
    view.SetTool(ViewTool::Move);
    DragArm(Point3(0, 0, 0), {33, 0}, HandlePart::X);
    EXPECT_NEAR(PlaceOf(handle).x, 33.0f, 1e-2f);
    view.SetSnap(25.0f);
    DragArm(Point3(33, 0, 0), {33, 0}, HandlePart::X);
    EXPECT_NEAR(PlaceOf(handle).x, 58.0f, 1e-2f);
}

TEST_F(ViewMouse, ARingTurnsANodeAboutItsAxis) {
    const ULONG handle = AddBlock(Point3(0, 0, 0), 40.0f, grey).GetHandle();
    editor.Select(Again(handle));
    view.SetTool(ViewTool::Rotate);
    const QPoint middle = PixelOf(Point3(0, 0, 0));
    const QPoint start = middle + QPoint(54, -54), end = middle + QPoint(-54, -54);  // on the ring about Z
    Drag(start, end);
    const Matrix3 place = Again(handle)->GetNodeTM(0);
    EXPECT_NEAR(place.GetRow(0).y, 1.0f, 0.02f);  // a quarter to the left
    EXPECT_NEAR(place.GetRow(2).z, 1.0f, 1e-3f);
    EXPECT_EQ(editor.UndoText(), "Rotate");
    editor.Undo();
    EXPECT_NEAR(Again(handle)->GetNodeTM(0).GetRow(0).x, 1.0f, 1e-5f);
}

// ---------------------------------------------------------------------------------------------------------------------
// creating

TEST_F(ViewMouse, EveryObjectOfTheRigIsMadeByDragging) {
    constexpr ObjectClass kClasses[] = {ObjectClass::Tavrik, ObjectClass::Chassis, ObjectClass::Suspension,
                                        ObjectClass::Wheel,  ObjectClass::Sphere,  ObjectClass::Hitch,
                                        ObjectClass::Tongue, ObjectClass::Push,    ObjectClass::Start};
    std::size_t count = 0;
    for (const ObjectClass objectClass : kClasses) {
        view.SetCreate(objectClass);
        Drag(PixelOf(Point3(-40, -20, 0)), PixelOf(Point3(-10, 20, 0)));
        ASSERT_EQ(AllNodes().size(), ++count) << int(objectClass);
        INode* const node = editor.Current();
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(ClassOf(*node), objectClass);
        EXPECT_NEAR(node->GetNodeTM(0).GetTrans().x, -40.0f, 0.6f);
        EXPECT_NEAR(node->GetNodeTM(0).GetTrans().y, -20.0f, 0.6f);
        EXPECT_EQ(editor.UndoText(), "Create");
    }
    INode* const sphere = tavrik_host::NodesOf(ObjectClass::Sphere).front();
    EXPECT_NEAR(tavrik_host::FloatParam(*sphere, tavrik::SphereParam::Radius), 50.0f, 1.0f);
}

TEST_F(ViewMouse, ADragInAFrontViewMakesAnObjectThatStandsInThatPlane) {
    view.SetSide(ViewSide::Front);
    view.SetCreate(ObjectClass::Wheel);
    Drag(PixelOf(Point3(0, 0, 50)), PixelOf(Point3(30, 0, 90)));
    ASSERT_EQ(AllNodes().size(), 1u);
    const Matrix3 place = AllNodes()[0]->GetNodeTM(0);
    EXPECT_NEAR(place.GetTrans().z, 50.0f, 0.6f);
    EXPECT_NEAR(std::abs(place.GetRow(2).y), 1.0f, 1e-5f);
    EXPECT_NEAR(tavrik_host::FloatParam(*AllNodes()[0], tavrik::WheelParam::Radius), 40.0f, 1.0f);
}

TEST_F(ViewMouse, WhatWasMadeIsOneStepOfUndo) {
    view.SetCreate(ObjectClass::Wheel);
    Drag(PixelOf(Point3(0, 0, 0)), PixelOf(Point3(30, 40, 0)));
    ASSERT_EQ(AllNodes().size(), 1u);
    editor.Undo();
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
    editor.Redo();
    ASSERT_EQ(AllNodes().size(), 1u);
    EXPECT_NEAR(tavrik_host::FloatParam(*AllNodes()[0], tavrik::WheelParam::Radius), 40.0f, 1.0f);
}

TEST_F(ViewMouse, AClickMakesNothingAndSaysSo) {
    view.SetCreate(ObjectClass::Chassis);
    Click({200, 150});
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_TRUE(said.startsWith("Drag")) << said.toStdString();
}

TEST_F(ViewMouse, ADragThatGivesNoSizeMakesNothingAndSaysSo) {
    view.SetCreate(ObjectClass::Chassis);
    Drag({200, 150}, {240, 150});  // a box without a length
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_TRUE(said.startsWith("Nothing was made")) << said.toStdString();
}

TEST_F(ViewMouse, EscTakesBackWhatIsBeingMadeAndThenEndsTheTool) {
    view.SetCreate(ObjectClass::Sphere);
    Press({200, 150});
    Move({230, 150});
    EXPECT_EQ(AllNodes().size(), 1u);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_TRUE(AllNodes().empty());
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_EQ(view.Tool(), ViewTool::Create);
    Release({230, 150});
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(view.Tool(), ViewTool::Select);
}

TEST_F(ViewMouse, TheRightButtonEndsCreating) {
    view.SetCreate(ObjectClass::Sphere);
    Press({200, 150}, {}, Qt::RightButton);
    EXPECT_EQ(view.Tool(), ViewTool::Select);
}

// ----------------------------------------------------------------------------------------------------------------------
// picking

/// Takes wheels alone, as a pick button with a validator does.
class WheelMode final : public PickModeCallback, public PickNodeCallback {
 public:
    BOOL Filter(INode* node) override { return node != nullptr && ClassOf(*node) == ObjectClass::Wheel ? TRUE : FALSE; }
    BOOL HitTest(IObjParam* ip, HWND window, ViewExp*, IPoint2 m, int) override {
        found = ip->PickNode(window, m, this);
        return found != nullptr ? TRUE : FALSE;
    }
    BOOL Pick(IObjParam*, ViewExp*) override {
        picked = found;
        return TRUE;
    }
    void ExitMode(IObjParam*) override { hasEnded = true; }

    INode *found = nullptr, *picked = nullptr;
    bool hasEnded = false;
};

class ViewPicking : public ViewMouse {
 public:
    ~ViewPicking() override { GetCOREInterface()->ClearPickMode(); }
    QPoint LineOf(INode& node) {
        view.Shown().Update();
        return PixelOf(view.Shown().PointsOf(node).front());
    }
    WheelMode mode;
};

TEST_F(ViewPicking, AModeRefusesWhatItsValidatorRefuses) {
    INode& start = Add(ObjectClass::Start, -100, 0);
    Add(ObjectClass::Wheel, 100, 0);
    GetCOREInterface()->SetPickMode(&mode);
    const QPoint at = LineOf(start);
    Move(at);
    EXPECT_EQ(view.cursor().shape(), Qt::ForbiddenCursor);
    Click(at);
    EXPECT_EQ(mode.picked, nullptr);
    EXPECT_FALSE(mode.hasEnded);
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_TRUE(editor.Selection().empty());
    EXPECT_EQ(said, "This can't be picked for that button.");
}

TEST_F(ViewPicking, AModeTakesWhatItWantsAndEnds) {
    INode& wheel = Add(ObjectClass::Wheel, 100, 0);
    GetCOREInterface()->SetPickMode(&mode);
    const QPoint at = LineOf(wheel);
    Move(at);
    EXPECT_EQ(view.cursor().shape(), Qt::PointingHandCursor);
    Click(at);
    EXPECT_EQ(mode.picked, &wheel);
    EXPECT_TRUE(mode.hasEnded);
    EXPECT_TRUE(editor.Selection().empty());
    EXPECT_EQ(editor.UndoText(), "Pick");
    Move(at + QPoint(1, 0));
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ViewPicking, EscAndTheRightButtonEndAMode) {
    GetCOREInterface()->SetPickMode(&mode);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_TRUE(mode.hasEnded);
    mode.hasEnded = false;
    GetCOREInterface()->SetPickMode(&mode);
    Press({200, 150}, {}, Qt::RightButton);
    EXPECT_TRUE(mode.hasEnded);
}

}  // namespace
}  // namespace tavrik_studio
