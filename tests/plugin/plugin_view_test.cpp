// What a mouse does in a view: it makes objects, finds them and picks them.

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "host/sdk/create_by_drag.h"
#include "host/sdk/line_view.h"
#include "host/sdk/picking.h"
#include "host/sdk/view_picking.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

using tavrik_host::CreateByDrag;
using tavrik_host::LineView;
using tavrik_host::Pixel;
using tavrik_host::ViewSide;
using tavrik_host::ViewState;
using State = CreateByDrag::State;

/// A flat view in which a pixel is a unit and the origin is at 200, 150.
ViewState Flat(ViewSide side) {
    ViewState view;
    view.width = 400;
    view.height = 300;
    view.distance = 150.0f / std::tan(0.5f * view.lens * 0.017453293f);
    return Seen(view, side);
}

testing::AssertionResult Near(const Point3& found, const Point3& wanted, float tolerance = 0.01f) {
    if (Length(found - wanted) <= tolerance) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '(' << found.x << ' ' << found.y << ' ' << found.z << ") for (" << wanted.x << ' '
                                       << wanted.y << ' ' << wanted.z << ')';
}

class PluginView : public PluginScene {
 public:
    static ClassDesc& ClassOf(Class_ID id) { return *tavrik_host::FindClass(HELPER_CLASS_ID, id); }
    static std::size_t Count() { return tavrik_host::AllNodes().size(); }
    static IPoint2 PixelOf(LineView& view, const Point3& world) {
        Pixel pixel{};
        EXPECT_TRUE(Project(view.Camera(), world, pixel));
        return {int(std::lround(pixel.x)), int(std::lround(pixel.y))};
    }
    /// An object with a size.
    static INode& Sized(Class_ID id, const Matrix3& place) {
        INode& node = AddNode(id, place);
        if (id == kPushClass || id == kStartClass) Set(node, 0, 20.0f);
        return node;
    }

    LineView top{Flat(ViewSide::Top)}, front{Flat(ViewSide::Front)}, right{Flat(ViewSide::Right)};
};

// ------------------------------------------------------------------------------------------------------------------- creation

TEST_F(PluginView, ADragMakesEveryObjectWhereItBeganAndAsLargeAsItWas) {
    const std::map<std::uint64_t, float> kSizes = {
        {kMasterClass.PartA(), 30.0f}, {kChassisClass.PartA(), 30.0f}, {kSuspensionClass.PartA(), 30.0f},
        {kWheelClass.PartA(), 40.0f},  {kSphereClass.PartA(), 50.0f},  {kHitchClass.PartA(), 50.0f},
        {kTongueClass.PartA(), 50.0f}, {kPushClass.PartA(), 40.0f},    {kStartClass.PartA(), 40.0f}};
    for (const Class_ID id : kHelperClasses) {
        CreateByDrag drag(ClassOf(id));
        EXPECT_EQ(drag.Press(top, {210, 130}), State::Dragging);
        EXPECT_EQ(drag.Move(top, {220, 120}), State::Dragging);
        EXPECT_EQ(drag.Release(top, {240, 90}), State::Made);
        ASSERT_NE(drag.Node(), nullptr);
        EXPECT_TRUE(Near(drag.Node()->GetNodeTM(0).GetTrans(), {10, 20, 0}));
        EXPECT_NEAR(FloatOf(*drag.Node(), 0), kSizes.at(id.PartA()), 0.01f);
    }
    EXPECT_EQ(Count(), std::size(kHelperClasses));
}

TEST_F(PluginView, InAFrontViewThingsStandOnThePlaneThatItFaces) {
    CreateByDrag drag(ClassOf(kChassisClass));
    drag.Press(front, {210, 130});
    ASSERT_EQ(drag.Release(front, {240, 90}), State::Made);
    const Matrix3 place = drag.Node()->GetNodeTM(0);
    EXPECT_TRUE(Near(place.GetTrans(), {10, 0, 20}));
    EXPECT_TRUE(Near(place.GetRow(1), {0, 0, 1}));  // its length, along which the mouse went up
    EXPECT_NEAR(FloatOf(*drag.Node(), 0), 30.0f, 0.01f);
    EXPECT_NEAR(FloatOf(*drag.Node(), 1), 40.0f, 0.01f);
}

TEST_F(PluginView, AWheelMadeInASideViewHasItsAxleAcrossTheView) {
    CreateByDrag drag(ClassOf(kWheelClass));
    drag.Press(right, {150, 170});
    ASSERT_EQ(drag.Release(right, {160, 140}), State::Made);
    const Matrix3 place = drag.Node()->GetNodeTM(0);
    EXPECT_TRUE(Near(place.GetTrans(), {0, -50, -20}));
    EXPECT_TRUE(Near(place.GetRow(2), {1, 0, 0}));
}

TEST_F(PluginView, InPerspectiveThingsStandOnTheGroundUnderTheMouse) {
    LineView view(tavrik_host::Seen(ViewState{}, ViewSide::Perspective));
    const IPoint2 from = PixelOf(view, {50, 80, 0}), to = PixelOf(view, {170, 380, 0});
    CreateByDrag drag(ClassOf(kChassisClass));
    drag.Press(view, from);
    ASSERT_EQ(drag.Release(view, to), State::Made);
    EXPECT_TRUE(Near(drag.Node()->GetNodeTM(0).GetTrans(), {50, 80, 0}, 2.0f));  // as near as whole pixels are
    EXPECT_NEAR(FloatOf(*drag.Node(), 0), 120.0f, 3.0f);
    EXPECT_NEAR(FloatOf(*drag.Node(), 1), 300.0f, 3.0f);
}

TEST_F(PluginView, TheObjectGrowsWhileTheMouseMoves) {
    CreateByDrag drag(ClassOf(kSphereClass));
    drag.Press(top, {200, 150});
    for (const int reach : {10, 60, 25}) {
        EXPECT_EQ(drag.Move(top, {200 + reach, 150}), State::Dragging);
        EXPECT_NEAR(FloatOf(*drag.Node(), 0), float(reach), 0.01f);
        EXPECT_TRUE(Near(drag.Node()->GetNodeTM(0).GetTrans(), {0, 0, 0}));
    }
}

TEST_F(PluginView, ASphereLiesOnItsSideUntilTheMouseMoves) {
    CreateByDrag drag(ClassOf(kSphereClass));
    drag.Press(top, {200, 150});
    EXPECT_NEAR(std::abs(drag.Node()->GetNodeTM(0).GetRow(2).x), 1.0f, 1e-4f);
    drag.Move(top, {205, 150});
    EXPECT_TRUE(Near(drag.Node()->GetNodeTM(0).GetRow(2), {0, 0, 1}, 1e-5f));
}

TEST_F(PluginView, ANewObjectIsNamedSelectedAndOpen) {
    CreateByDrag drag(ClassOf(kWheelClass));
    drag.Press(top, {200, 150});
    INode* const node = drag.Node();
    EXPECT_EQ(std::wstring(node->GetName()), L"Wheel_001");
    EXPECT_EQ(node->Selected(), 1);
    EXPECT_EQ(tavrik_host::PanelNode(), node);
}

TEST_F(PluginView, NewObjectsOfDifferentClassesDifferInColour) {
    std::set<DWORD> colours;
    for (const Class_ID id : kHelperClasses) {
        CreateByDrag drag(ClassOf(id));
        drag.Press(top, {200, 150});
        drag.Release(top, {230, 110});
        colours.insert(drag.Node()->GetWireColor());
    }
    EXPECT_EQ(colours.size(), std::size(kHelperClasses));
}

TEST_F(PluginView, AMouseBeforeThePressOnlyPreviewsTheSnap) {
    for (const Class_ID id : kHelperClasses) {
        CreateByDrag drag(ClassOf(id));
        EXPECT_EQ(drag.Move(front, {230, 110}), State::Ready);
        ASSERT_TRUE(front.Preview());
        EXPECT_TRUE(Near(*front.Preview(), {30, 0, 40}));
        EXPECT_EQ(drag.Node(), nullptr);
    }
    EXPECT_EQ(Count(), 0u);
}

TEST_F(PluginView, ARightClickLeavesNothingBehind) {
    for (const Class_ID id : kHelperClasses) {
        CreateByDrag drag(ClassOf(id));
        drag.Press(top, {200, 150});
        drag.Move(top, {230, 110});
        EXPECT_EQ(Count(), 1u);
        EXPECT_EQ(drag.Cancel(), State::Cancelled);
        EXPECT_EQ(drag.Node(), nullptr);
        EXPECT_EQ(drag.Move(top, {250, 110}), State::Cancelled);
        EXPECT_EQ(drag.Release(top, {250, 110}), State::Cancelled);
        EXPECT_EQ(drag.Press(top, {250, 110}), State::Cancelled);
    }
    EXPECT_EQ(Count(), 0u);
    EXPECT_EQ(tavrik_host::PanelNode(), nullptr);
}

TEST_F(PluginView, AClickWithoutADragMakesNothing) {
    for (const Class_ID id : kHelperClasses) {
        CreateByDrag drag(ClassOf(id));
        drag.Press(top, {200, 150});
        EXPECT_EQ(drag.Release(top, {200, 150}), State::Cancelled);
        EXPECT_EQ(Count(), 0u);
    }
}

TEST_F(PluginView, ASphereDrawnStraightUpIsNone) {
    CreateByDrag drag(ClassOf(kSphereClass));
    drag.Press(top, {200, 150});
    drag.Move(top, {200, 100});
    EXPECT_EQ(drag.Release(top, {200, 100}), State::Cancelled);
    EXPECT_EQ(Count(), 0u);
}

TEST_F(PluginView, AFinishedObjectStaysWhateverTheMouseDoesNext) {
    CreateByDrag drag(ClassOf(kWheelClass));
    drag.Press(top, {200, 150});
    drag.Release(top, {210, 120});
    EXPECT_EQ(drag.Move(top, {300, 20}), State::Made);
    EXPECT_EQ(drag.Cancel(), State::Made);
    EXPECT_EQ(Count(), 1u);
    EXPECT_NEAR(FloatOf(*drag.Node(), 0), 30.0f, 0.01f);
}

TEST_F(PluginView, AnObjectThatNobodyFinishesGoesWithItsSession) {
    {
        CreateByDrag drag(ClassOf(kWheelClass));
        drag.Press(top, {200, 150});
        EXPECT_EQ(Count(), 1u);
    }
    EXPECT_EQ(Count(), 0u);
}

TEST_F(PluginView, TheMouseInAnotherViewIsNotLookedAt) {
    CreateByDrag drag(ClassOf(kWheelClass));
    drag.Press(top, {200, 150});
    drag.Move(top, {210, 120});
    EXPECT_EQ(drag.Move(front, {290, 20}), State::Dragging);
    EXPECT_EQ(drag.Release(front, {290, 20}), State::Dragging);
    EXPECT_NEAR(FloatOf(*drag.Node(), 0), 30.0f, 0.01f);
}

TEST_F(PluginView, ANodeThatIsDeletedMeanwhileEndsTheDrag) {
    CreateByDrag drag(ClassOf(kWheelClass));
    drag.Press(top, {200, 150});
    GetCOREInterface()->DeleteNode(drag.Node());
    EXPECT_EQ(drag.Move(top, {210, 120}), State::Cancelled);
    EXPECT_EQ(drag.Node(), nullptr);
}

TEST_F(PluginView, WhatIsNoObjectCantBeDrawn) {
    ClassDesc* const map = tavrik_host::FindClass(TEXMAP_CLASS_ID, kTextureClass);
    ASSERT_NE(map, nullptr);
    CreateByDrag drag(*map);
    EXPECT_EQ(drag.Now(), State::Cancelled);
    EXPECT_EQ(drag.Press(top, {200, 150}), State::Cancelled);
    EXPECT_EQ(Count(), 0u);
}

TEST_F(PluginView, AGridMakesRoundSizes) {
    top.SetGrid(10.0f);
    CreateByDrag drag(ClassOf(kChassisClass));
    drag.Press(top, {203, 148});
    drag.Release(top, {258, 61});
    EXPECT_TRUE(Near(drag.Node()->GetNodeTM(0).GetTrans(), {0, 0, 0}));
    EXPECT_EQ(FloatOf(*drag.Node(), 0), 60.0f);
    EXPECT_EQ(FloatOf(*drag.Node(), 1), 90.0f);
}

// -------------------------------------------------------------------------------------------------------------------- picking

TEST_F(PluginView, EveryObjectIsFoundAtAPixelOfItsLines) {
    for (const ViewSide side : {ViewSide::Perspective, ViewSide::Top, ViewSide::Front, ViewSide::Right}) {
        LineView view(Flat(side));
        for (const Class_ID id : kHelperClasses) {
            INode& node = Sized(id, At(5, 7, 9));
            view.Window().Clear();
            view.DrawNode(0, node);
            const tavrik_host::ViewLine line = view.Window().Lines().back();
            EXPECT_EQ(NodeAt(view, 0, PixelOf(view, (line.from + line.to) * 0.5f)), &node);
            EXPECT_EQ(NodeAt(view, 0, {-5000, -5000}), nullptr);
            GetCOREInterface()->DeleteNode(&node);
        }
    }
}

TEST_F(PluginView, ALockedPartIsFoundWhereTheRecordingPutsIt) {
    const Car car = AddCar();
    MakeReady(car, AddGround());
    Start(car);
    DriveFrames(60);
    LineView view(Flat(ViewSide::Top));
    const auto isWheel = [&](INode& node) { return &node == car.wheels[0]; };
    for (const TimeValue t : {0, 60 * 160}) {
        view.Window().Clear();
        view.DrawNode(t, *car.wheels[0]);
        EXPECT_EQ(NodeAt(view, t, PixelOf(view, view.Window().Lines()[0].from), isWheel), car.wheels[0]);
    }
    EXPECT_GT(Length(PlaceOf(*car.wheels[0], 60 * 160).GetTrans() - PlaceOf(*car.wheels[0], 0).GetTrans()), 5.0f);
}

TEST_F(PluginView, ARectangleSelectsTheObjectsOfAnAxle) {
    INode &left = AddNode(kSphereClass, At(-60, 0, 0)), &right_ = AddNode(kSphereClass, At(60, 0, 0));
    INode& rear = AddNode(kSphereClass, At(0, -140, 0));
    tavrik_host::SelectNodes(NodesIn(top, 0, {50, 80}, {350, 220}, false));
    EXPECT_EQ(left.Selected() * 100 + right_.Selected() * 10 + rear.Selected(), 110);
    tavrik_host::SelectNodes(NodesIn(top, 0, {50, 80}, {350, 260}, true));
    EXPECT_EQ(left.Selected() * 100 + right_.Selected() * 10 + rear.Selected(), 111);
}

TEST_F(PluginView, APickForAParameterTakesWhatItsValidatorLetsThrough) {
    INode& hitch = AddNode(kHitchClass, At(0, 0, 0));
    AddNode(kSphereClass, At(0, 0, 200));  // nearer, but no tongue
    INode& tongue = AddNode(kTongueClass, At(0, 0, 100));
    IParamBlock2& block = BlockOf(hitch);
    EXPECT_EQ(PickParamNode(top, 0, {250, 150}, block, 2), &tongue);
    EXPECT_EQ(block.GetINode(2), &tongue);
    EXPECT_EQ(PickParamNode(top, 0, {5, 5}, block, 2), nullptr);
    EXPECT_EQ(block.GetINode(2), &tongue);                            // as it was
    EXPECT_EQ(PickParamNode(top, 0, {250, 150}, block, 0), nullptr);  // a number takes no node
    EXPECT_TRUE(tavrik_host::TakesNode(block, 2, tongue));
    EXPECT_FALSE(tavrik_host::TakesNode(block, 2, hitch));
}

/// Takes masters, as a map's pick button does.
class PickMasters final : public PickModeCallback, public PickNodeCallback {
 public:
    INode* taken = nullptr;
    BOOL Filter(INode* node) override { return node->GetObjectRef()->ClassID() == kMasterClass ? TRUE : FALSE; }
    BOOL HitTest(IObjParam* ip, HWND window, ViewExp*, IPoint2 m, int) override {
        return ip->PickNode(window, m, this) != nullptr ? TRUE : FALSE;
    }
    BOOL Pick(IObjParam*, ViewExp* view) override {
        taken = view->GetClosestHit();
        return TRUE;
    }
};

TEST_F(PluginView, AClickInAViewGoesToThePickMode) {
    INode& master = AddNode(kMasterClass, At(0, 0, 0));
    AddNode(kSphereClass, At(-30, 0, 300));  // over the master's edge
    PickMasters mode;
    GetCOREInterface()->SetPickMode(&mode);
    EXPECT_FALSE(CanClick(top, {5, 5}));
    EXPECT_FALSE(ClickView(top, {5, 5}));
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), &mode);
    EXPECT_TRUE(CanClick(top, {220, 150}));
    EXPECT_EQ(mode.taken, nullptr);
    EXPECT_TRUE(ClickView(top, {220, 150}));
    EXPECT_EQ(mode.taken, &master);
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), nullptr);
    EXPECT_FALSE(ClickView(top, {220, 150}));  // no mode, no pick
}

}  // namespace
}  // namespace plugin_test
