// Views: where the world's points are in them, how a mouse turns and moves them, and what it is on.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/sdk/line_shape.h"
#include "host/sdk/line_view.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "host/sdk/view_state.h"
#include "host/sdk/wire_colors.h"

namespace {

using namespace tavrik_host;

testing::AssertionResult Near(const Point3& found, const Point3& wanted, float tolerance = 1e-3f) {
    if (Length(found - wanted) <= tolerance) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '(' << found.x << ' ' << found.y << ' ' << found.z << ") for (" << wanted.x << ' '
                                       << wanted.y << ' ' << wanted.z << ')';
}

constexpr ViewSide kSides[] = {ViewSide::Perspective, ViewSide::Top,  ViewSide::Bottom, ViewSide::Front,
                               ViewSide::Back,        ViewSide::Left, ViewSide::Right};

ViewState View(ViewSide side) {
    ViewState view;
    view.width = 400;
    view.height = 300;
    view.target = Point3(10, -20, 30);
    view.distance = 500.0f;
    return Seen(view, side);
}

Pixel At(const ViewState& view, const Point3& p) {
    Pixel pixel{};
    EXPECT_TRUE(Project(CameraOf(view), p, pixel));
    return pixel;
}

// --------------------------------------------------------------------------------------------------------------------- camera

TEST(ViewCamera, TheTargetIsInTheMiddleOfEveryView) {
    for (const ViewSide side : kSides) {
        const Pixel pixel = At(View(side), {10, -20, 30});
        EXPECT_NEAR(pixel.x, 200.0f, 1e-3f);
        EXPECT_NEAR(pixel.y, 150.0f, 1e-3f);
    }
}

TEST(ViewCamera, NamedViewsLookAlongTheAxesOfTheWorld) {
    const struct {
        ViewSide side;
        Point3 right, up;
    } kWanted[] = {
        {ViewSide::Top, {1, 0, 0}, {0, 1, 0}},   {ViewSide::Bottom, {1, 0, 0}, {0, -1, 0}},
        {ViewSide::Front, {1, 0, 0}, {0, 0, 1}}, {ViewSide::Back, {-1, 0, 0}, {0, 0, 1}},
        {ViewSide::Left, {0, -1, 0}, {0, 0, 1}}, {ViewSide::Right, {0, 1, 0}, {0, 0, 1}},
    };
    for (const auto& [side, right, up] : kWanted) {
        const ViewCamera camera = CameraOf(View(side));
        EXPECT_EQ(camera.frame.GetRow(0), right);
        EXPECT_EQ(camera.frame.GetRow(1), up);
        EXPECT_EQ(camera.frame.GetRow(2), CrossProd(right, up));
        EXPECT_FALSE(camera.perspective);
    }
}

TEST(ViewCamera, UnprojectingAPixelLeadsBackToIt) {
    for (const ViewSide side : kSides) {
        const ViewCamera camera = CameraOf(View(side));
        for (const Pixel pixel : {Pixel{0, 0}, Pixel{333, 12}, Pixel{200, 299}}) {
            const Point3 world = Unproject(camera, pixel, 321.0f);
            EXPECT_NEAR(DepthOf(camera, world), 321.0f, 0.01f);
            Pixel back{};
            ASSERT_TRUE(Project(camera, world, back));
            EXPECT_NEAR(back.x, pixel.x, 0.01f);
            EXPECT_NEAR(back.y, pixel.y, 0.01f);
        }
    }
}

TEST(ViewCamera, WhatIsSeenAtAPixelLiesOnItsRay) {
    for (const ViewSide side : kSides) {
        const ViewCamera camera = CameraOf(View(side));
        const Pixel pixel{37, 210};
        const ViewRay ray = RayThrough(camera, pixel);
        EXPECT_NEAR(Length(ray.direction), 1.0f, 1e-5f);
        const Point3 p = Unproject(camera, pixel, 250.0f), off = p - ray.origin;
        EXPECT_TRUE(Near(ray.origin + ray.direction * DotProd(off, ray.direction), p, 0.01f));
    }
}

TEST(ViewCamera, NothingBehindAPerspectiveEyeHasAPixel) {
    Pixel pixel{};
    const ViewCamera camera = CameraOf(View(ViewSide::Perspective));
    EXPECT_FALSE(Project(camera, camera.frame.GetTrans() + camera.frame.GetRow(2) * 10.0f, pixel));
    const ViewCamera flat = CameraOf(View(ViewSide::Top));
    EXPECT_TRUE(Project(flat, flat.frame.GetTrans() + flat.frame.GetRow(2) * 10.0f, pixel));
}

TEST(ViewCamera, AFlatViewShowsAsMuchAsTheOtherDoesAtItsTarget) {
    ViewState view = View(ViewSide::Perspective);
    const float unit = UnitsPerPixel(CameraOf(view), view.distance);
    view.perspective = false;
    EXPECT_NEAR(UnitsPerPixel(CameraOf(view), 0.0f), unit, 1e-4f);
}

// ------------------------------------------------------------------------------------------------------------------ the mouse

TEST(ViewState, OrbitingKeepsTheTargetAndTheDistance) {
    for (const ViewSide side : kSides) {
        const ViewState view = Orbited(View(side), 123, -45);
        EXPECT_NEAR(Length(CameraOf(view).frame.GetTrans() - view.target), 500.0f, 0.01f);
        EXPECT_TRUE(Near(view.target, {10, -20, 30}));
    }
}

TEST(ViewState, ThingsFollowAMouseThatOrbits) {
    const ViewState view = Seen({}, ViewSide::Front), turned = Orbited(view, 20, 0), tilted = Orbited(view, 0, 20);
    const Point3 near(0, -100, 0);  // in front of the target
    EXPECT_GT(At(turned, near).x, At(view, near).x);
    EXPECT_GT(At(tilted, near).y, At(view, near).y);
}

TEST(ViewState, NoOrbitGoesOverThePole) {
    EXPECT_EQ(Orbited(View(ViewSide::Perspective), 0, 1e5f).pitch, -90.0f);
    EXPECT_EQ(Orbited(View(ViewSide::Perspective), 0, -1e5f).pitch, 90.0f);
}

TEST(ViewState, AFullTurnLeadsBack) {
    const ViewState view = Orbited(View(ViewSide::Front), 900, 0);
    EXPECT_NEAR(view.heading, 0.0f, 1e-3f);
    EXPECT_GE(Orbited(View(ViewSide::Front), -30, 0).heading, 0.0f);
}

TEST(ViewState, PanningTakesThePictureAlongWithTheMouse) {
    for (const ViewSide side : kSides) {
        const ViewState view = View(side);
        const Pixel pixel = At(Panned(view, 30, -12), view.target);
        EXPECT_NEAR(pixel.x, 230.0f, 0.01f);
        EXPECT_NEAR(pixel.y, 138.0f, 0.01f);
    }
}

TEST(ViewState, ZoomingLeavesWhatIsUnderTheMouseThere) {
    for (const ViewSide side : kSides) {
        const ViewState view = View(side);
        const Pixel mouse{320, 60};
        const Point3 under = Unproject(CameraOf(view), mouse, view.distance);
        for (const float factor : {2.0f, 0.3f}) {
            const ViewState zoomed = Zoomed(view, factor, mouse);
            EXPECT_NEAR(zoomed.distance, 500.0f / factor, 0.1f);
            EXPECT_NEAR(At(zoomed, under).x, mouse.x, 0.05f);
            EXPECT_NEAR(At(zoomed, under).y, mouse.y, 0.05f);
        }
    }
}

TEST(ViewState, AZoomThatIsNoneChangesNothing) {
    for (const float factor : {0.0f, -1.0f, NAN, INFINITY}) {
        EXPECT_EQ(Zoomed(View(ViewSide::Top), factor, {0, 0}).distance, 500.0f);
    }
}

TEST(ViewState, AFramedViewShowsAllPointsAndIsFilledByThem) {
    const Point3 points[] = {{100, 50, 0}, {-40, 300, 70}, {20, -10, 200}, {0, 0, -30}};
    for (const ViewSide side : kSides) {
        const ViewState view = Framed(View(side), points, 0.1f);
        float most = 0.0f;
        for (const Point3& p : points) {
            const Pixel pixel = At(view, p);
            EXPECT_GE(pixel.x, 39.0f);
            EXPECT_LE(pixel.x, 361.0f);
            EXPECT_GE(pixel.y, 29.0f);
            EXPECT_LE(pixel.y, 271.0f);
            most = std::max({most, std::abs(pixel.x - 200.0f) / 200.0f, std::abs(pixel.y - 150.0f) / 150.0f});
        }
        EXPECT_NEAR(most, 0.8f, 0.02f);
    }
}

TEST(ViewState, NothingToFrameChangesNothing) { EXPECT_TRUE(Near(Framed(View(ViewSide::Top), {}).target, {10, -20, 30})); }

TEST(GridPlane, IsTheOneThatAFlatViewFaces) {
    const Matrix3 front = GridPlaneOf(View(ViewSide::Front));
    EXPECT_EQ(front.GetRow(0), Point3(1, 0, 0));
    EXPECT_EQ(front.GetRow(1), Point3(0, 0, 1));
    EXPECT_EQ(front.GetRow(2), Point3(0, -1, 0));
    EXPECT_EQ(front.GetTrans(), Point3(0, 0, 0));
    EXPECT_TRUE(GridPlaneOf(View(ViewSide::Top)) == Matrix3(TRUE));
}

TEST(GridPlane, IsTheGroundInPerspectiveAndAskew) {
    EXPECT_TRUE(GridPlaneOf(View(ViewSide::Perspective)) == Matrix3(TRUE));
    EXPECT_TRUE(GridPlaneOf(Orbited(View(ViewSide::Front), 10, 10)) == Matrix3(TRUE));
}

// ----------------------------------------------------------------------------------------------------------------------- snap

TEST(LineView, AMouseSnapsToThePlaceOfItsPixelInTheGridPlane) {
    for (const ViewSide side : kSides) {
        const ViewState state = View(side);
        LineView view(state);
        IPoint2 out(0, 0);
        const Point3 p = view.SnapPoint(IPoint2(150, 170), out);
        EXPECT_EQ(p.z, 0.0f);
        const Pixel pixel = At(state, p * view.Plane());
        EXPECT_NEAR(pixel.x, 150.0f, 0.05f);
        EXPECT_NEAR(pixel.y, 170.0f, 0.05f);
    }
}

TEST(LineView, AMouseAboveTheHorizonSnapsFarAwayInItsDirection) {
    ViewState state = View(ViewSide::Perspective);
    state.pitch = 0.0f;
    state.heading = 0.0f;
    LineView view(state);
    IPoint2 out(0, 0);
    const Point3 p = view.SnapPoint(IPoint2(200, 10), out);
    EXPECT_TRUE(std::isfinite(p.x) && p.y > 1e4f && p.z == 0.0f);
}

TEST(LineView, AGridTakesPointsToItsCrossings) {
    LineView view(View(ViewSide::Front));
    view.SetGrid(25.0f);
    IPoint2 out(0, 0);
    const Point3 p = view.SnapPoint(IPoint2(213, 101), out);
    EXPECT_EQ(std::fmod(p.x, 25.0f), 0.0f);
    EXPECT_EQ(std::fmod(p.y, 25.0f), 0.0f);
    IPoint2 again(0, 0);
    EXPECT_EQ(view.SnapPoint(out, again), p);  // where it says that the crossing is
}

TEST(LineView, APlaneOfTheCallersOwnIsTaken) {
    LineView view(View(ViewSide::Top));
    Matrix3 plane(TRUE);
    plane.SetTrans(Point3(100, 0, 0));
    IPoint2 out(0, 0);
    EXPECT_TRUE(Near(view.SnapPoint(IPoint2(200, 150), out, &plane), {-90, -20, 0}));
}

TEST(LineView, APreviewIsWhereItWouldSnap) {
    LineView view(View(ViewSide::Front));
    EXPECT_FALSE(view.Preview());
    IPoint2 m(200, 150);
    view.SnapPreview(m, m);
    ASSERT_TRUE(view.Preview());
    EXPECT_TRUE(Near(*view.Preview(), {10, 0, 30}));
}

TEST(LineView, EachHasAWindowOfItsOwnAsLongAsItLives) {
    HWND window = nullptr;
    {
        LineView one(View(ViewSide::Top)), other(View(ViewSide::Top));
        window = one.GetHWnd();
        EXPECT_NE(window, other.GetHWnd());
        EXPECT_EQ(ViewOf(window), &one);
        EXPECT_EQ(ViewOf(other.GetHWnd()), &other);
    }
    EXPECT_EQ(ViewOf(window), nullptr);
    EXPECT_EQ(ViewOf(nullptr), nullptr);
}

// -------------------------------------------------------------------------------------------------------------------- picking

class ViewPicking : public testing::Test {
 protected:
    ViewPicking() { ResetScene(); }
    ~ViewPicking() override { ResetScene(); }

    /// A square of two triangles, `half` wide to each side, that faces up.
    static INode* AddSquare(const Point3& at, float half, const wchar_t* name = L"Square") {
        TriObject* const object = CreateNewTriObject();
        object->mesh.setNumVerts(4);
        object->mesh.setNumFaces(2);
        const Point3 corners[] = {{-half, -half, 0}, {half, -half, 0}, {half, half, 0}, {-half, half, 0}};
        for (int i = 0; i < 4; ++i) object->mesh.setVert(i, corners[i]);
        object->mesh.faces[0].setVerts(0, 1, 2);
        object->mesh.faces[1].setVerts(0, 2, 3);
        INode* const node = CreateNode(object, name);
        Matrix3 place(TRUE);
        place.SetTrans(at);
        node->SetNodeTM(0, place);
        return node;
    }
    static INode* AddLine(const std::vector<Point3>& points) {
        auto* const object = new LineShape;
        object->lines.push_back({points, false});
        return CreateNode(object, L"Line");
    }
    /// From above; a pixel is a unit, the origin at 200, 150.
    static ViewState FromAbove(bool perspective) {
        ViewState state;
        state.width = 400;
        state.height = 300;
        state.pitch = -90.0f;
        state.perspective = perspective;
        state.distance = 150.0f / std::tan(0.5f * state.lens * 0.017453293f);
        return state;
    }
};

TEST_F(ViewPicking, AMeshIsHitWhereItsTrianglesAreAndNowhereElse) {
    INode* const square = AddSquare({0, 0, 0}, 50);
    for (const bool perspective : {false, true}) {
        LineView view(FromAbove(perspective));
        EXPECT_EQ(NodeAt(view, 0, {210, 160}), square);
        EXPECT_EQ(NodeAt(view, 0, {152, 102}), square);
        EXPECT_EQ(NodeAt(view, 0, {148, 150}), nullptr);
        EXPECT_EQ(NodeAt(view, 0, {252, 150}), nullptr);
    }
}

TEST_F(ViewPicking, AMeshIsHitFromItsBackToo) {
    INode* const square = AddSquare({0, 0, 0}, 50);
    ViewState state = FromAbove(true);
    state.pitch = 90.0f;
    LineView view(state);
    EXPECT_EQ(NodeAt(view, 0, {210, 160}), square);
}

TEST_F(ViewPicking, AMeshFromItsEdgeIsNotHit) {
    AddSquare({0, 0, 0}, 50);
    ViewState state = FromAbove(false);
    state.pitch = 0.0f;
    LineView view(state);
    EXPECT_EQ(NodeAt(view, 0, {210, 150}), nullptr);
}

TEST_F(ViewPicking, OfTwoMeshesTheNearerIsHit) {
    INode *const low = AddSquare({0, 0, 0}, 100), *const high = AddSquare({0, 0, 40}, 20);
    for (const bool perspective : {false, true}) {
        LineView view(FromAbove(perspective));
        EXPECT_EQ(NodeAt(view, 0, {200, 150}), high);
        EXPECT_EQ(view.GetClosestHit(), high);
        EXPECT_EQ(NodeAt(view, 0, {260, 150}), low);
    }
}

TEST_F(ViewPicking, AGroundThatReachesBehindTheEyeHidesNothingInFrontOfIt) {
    // Its nearest corner is nearer than anything, but not what the mouse is on.
    AddSquare({0, 0, 0}, 100000);
    INode* const sign = AddSquare({0, 0, 30}, 40);
    ViewState state = FromAbove(true);
    state.pitch = -30.0f;
    LineView view(state);
    Pixel pixel{};
    ASSERT_TRUE(Project(view.Camera(), {0, 0, 30}, pixel));
    EXPECT_EQ(NodeAt(view, 0, {int(pixel.x), int(pixel.y)}), sign);
    EXPECT_EQ(NodeAt(view, 0, {200, 280})->GetName(), std::wstring(L"Square"));
}

TEST_F(ViewPicking, ALineOnAMeshIsHitBeforeIt) {
    AddSquare({0, 0, 0}, 100);
    INode* const line = AddLine({{-50, 0, 5}, {50, 0, 5}});
    for (const bool perspective : {false, true}) {
        LineView view(FromAbove(perspective));
        EXPECT_EQ(NodeAt(view, 0, {210, 152}), line);
        EXPECT_NE(NodeAt(view, 0, {210, 160}), line);
    }
}

TEST_F(ViewPicking, ALongLinesHitIsAsFarAwayAsThePlaceThatIsHit) {
    const INode* const slope = AddLine({{-100, 0, 80}, {100, 0, -80}});  // over the square at one end, below it at the other
    INode* const square = AddSquare({0, 0, 0}, 100);
    for (const bool perspective : {false, true}) {
        LineView view(FromAbove(perspective));
        Pixel high{}, low{};
        ASSERT_TRUE(Project(view.Camera(), {-50, 0, 40}, high) && Project(view.Camera(), {50, 0, -40}, low));
        EXPECT_EQ(NodeAt(view, 0, {int(high.x), int(high.y)}), slope);
        EXPECT_EQ(NodeAt(view, 0, {int(low.x), int(low.y)}), square);
    }
}

TEST_F(ViewPicking, AFilterLooksThroughWhatItRefuses) {
    INode *const low = AddSquare({0, 0, 0}, 100), *const high = AddSquare({0, 0, 40}, 20);
    LineView view(FromAbove(true));
    EXPECT_EQ(NodeAt(view, 0, {200, 150}, [high](INode& node) { return &node != high; }), low);
    EXPECT_EQ(NodeAt(view, 0, {200, 150}, [](INode&) { return false; }), nullptr);
}

TEST_F(ViewPicking, ARectangleTakesMeshesThatItHoldsOrCrosses) {
    INode *const inside = AddSquare({-60, 0, 0}, 20), *const across = AddSquare({60, 0, 0}, 20);
    INode* const around = AddSquare({0, 0, -10}, 149);
    for (const bool perspective : {false, true}) {
        LineView view(FromAbove(perspective));
        EXPECT_EQ(NodesIn(view, 0, {100, 100}, {260, 200}, false), std::vector<INode*>{inside});
        const std::vector<INode*> crossed = NodesIn(view, 0, {260, 200}, {100, 100}, true);
        EXPECT_EQ(crossed.size(), 3u);
        EXPECT_NE(std::ranges::find(crossed, across), crossed.end());
        // A rectangle within a triangle touches it, without touching an edge.
        EXPECT_EQ(NodesIn(view, 0, {200, 250}, {210, 260}, true), std::vector<INode*>{around});
    }
}

TEST_F(ViewPicking, WhatReachesBehindThePerspectiveEyeIsInNoRectangleAsAWhole) {
    AddSquare({0, 0, 0}, 100000);
    ViewState state = FromAbove(true);
    state.pitch = -30.0f;
    LineView view(state);
    EXPECT_TRUE(NodesIn(view, 0, {-100000, -100000}, {100000, 100000}, false).empty());
    EXPECT_EQ(NodesIn(view, 0, {100, 200}, {200, 280}, true).size(), 1u);
}

TEST_F(ViewPicking, SelectingReplacesAddsAndRemoves) {
    INode *const a = AddSquare({0, 0, 0}, 1), *const b = AddSquare({0, 0, 0}, 1), *const c = AddSquare({0, 0, 0}, 1);
    const auto state = [&] { return a->Selected() * 100 + b->Selected() * 10 + c->Selected(); };
    SelectNodes({a, b});
    EXPECT_EQ(state(), 110);
    SelectNodes({b, c}, SelectHow::Add);
    EXPECT_EQ(state(), 111);
    EXPECT_EQ(GetCOREInterface()->GetSelNodeCount(), 3);
    SelectNodes({a, c}, SelectHow::Remove);
    EXPECT_EQ(state(), 10);
    SelectNodes({c});
    EXPECT_EQ(state(), 1);
    SelectNodes({});
    EXPECT_EQ(state(), 0);
}

TEST_F(ViewPicking, TheHostsOwnPickAsksTheViewOfTheWindow) {
    INode *const low = AddSquare({0, 0, 0}, 100), *const high = AddSquare({0, 0, 40}, 20);
    class Refuses final : public PickNodeCallback {
     public:
        explicit Refuses(INode* node) : node_(node) {}
        BOOL Filter(INode* node) override { return node != node_ ? TRUE : FALSE; }

     private:
        INode* node_;
    } refuses(high);
    LineView view(FromAbove(true)), other(Seen({}, ViewSide::Bottom));
    Interface* const host = GetCOREInterface();
    EXPECT_EQ(host->PickNode(view.GetHWnd(), {200, 150}), high);
    EXPECT_EQ(host->PickNode(view.GetHWnd(), {200, 150}, &refuses), low);
    EXPECT_EQ(view.GetClosestHit(), low);
    EXPECT_EQ(host->PickNode(view.GetHWnd(), {2, 2}), nullptr);
    EXPECT_EQ(host->PickNode(nullptr, {200, 150}), nullptr);
}

TEST_F(ViewPicking, ALineIsDrawnInItsNodesColourAndWhiteWhenSelected) {
    INode* const line = AddLine({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    line->SetWireColor(0x0000FF);
    LineView view(FromAbove(true));
    view.DrawScene(0);
    ASSERT_EQ(view.Window().Lines().size(), 2u);
    EXPECT_EQ(view.Window().Lines()[1].color.r, 1.0f);
    EXPECT_EQ(view.Window().Lines()[1].color.g, 0.0f);
    SelectNodes({line});
    view.DrawScene(0);
    EXPECT_EQ(view.Window().Lines()[3].color.g, 1.0f);
}

TEST(WireColors, AreTheSameForAllOfOneClass) {
    EXPECT_EQ(WireColorOf({1, 2}), WireColorOf({1, 2}));
    EXPECT_NE(WireColorOf({0x795B5018, 0x46716D27}), WireColorOf({0x3D5B5E1A, 0x47F7793F}));
}

}  // namespace
