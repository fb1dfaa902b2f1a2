// The stand-in host's view: where its lines are, and what a mouse finds.

#include "host/sdk/line_view.h"

#include <gtest/gtest.h>

namespace {

using tavrik_host::LineView;
using tavrik_host::LineWindow;
using tavrik_host::ViewCamera;

/// Looks down from 100 units; a unit is two pixels, and the origin is in the middle.
ViewCamera FromAbove() {
    ViewCamera camera;
    camera.frame.SetTrans(Point3(0, 0, 100));
    camera.scale = 2.0f;
    camera.centre = IPoint2(160, 120);
    return camera;
}
ViewCamera Perspective() {
    ViewCamera camera = FromAbove();
    camera.perspective = true;
    camera.scale = 200.0f;  // at 100 units the same two pixels to a unit
    return camera;
}

void DrawLine(LineWindow& window, Point3 a, Point3 b) {
    Point3 ends[2] = {a, b};
    window.startSegments();
    window.polyline(2, ends, nullptr, nullptr, FALSE, nullptr);
    window.endSegments();
}

bool Hits(LineWindow& window, int type, int crossing, std::vector<IPoint2> points, Point3 a, Point3 b) {
    HitRegion region;
    MakeHitRegion(region, type, crossing, 4, points.data());
    window.setHitRegion(&region);
    window.setRndLimits(window.getRndLimits() | GW_PICK);
    window.clearHitCode();
    DrawLine(window, a, b);
    const bool hit = window.checkHitCode() != FALSE;
    window.setRndLimits(window.getRndLimits() & ~GW_PICK);
    return hit;
}

TEST(LineWindow, KeepsLinesInTheWorldWithTheirColour) {
    LineWindow window(FromAbove());
    Matrix3 place(TRUE);
    place.SetTrans(Point3(10, 0, 0));
    window.setTransform(place);
    window.setColor(LINE_COLOR, 0.25f, 0.5f, 1.0f);
    window.setColor(FILL_COLOR, 0.0f, 0.0f, 0.0f);
    DrawLine(window, {0, 0, 0}, {1, 2, 3});
    ASSERT_EQ(window.Lines().size(), 1u);
    EXPECT_EQ(window.Lines()[0].from, Point3(10, 0, 0));
    EXPECT_EQ(window.Lines()[0].to, Point3(11, 2, 3));
    EXPECT_EQ(window.Lines()[0].color.g, 0.5f);
    EXPECT_TRUE(window.getTransform() == place);
}

TEST(LineWindow, ClosesALineThatIsToBeClosed) {
    LineWindow window(FromAbove());
    Point3 corners[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    window.startSegments();
    window.polyline(3, corners, nullptr, nullptr, TRUE, nullptr);
    window.endSegments();
    ASSERT_EQ(window.Lines().size(), 3u);
    EXPECT_EQ(window.Lines()[2].from, Point3(0, 1, 0));
    EXPECT_EQ(window.Lines()[2].to, Point3(0, 0, 0));
}

TEST(LineWindow, DropsLinesThatComeBetweenNoStartAndEnd) {
    LineWindow window(FromAbove());
    Point3 ends[2] = {{0, 0, 0}, {1, 0, 0}};
    window.polyline(2, ends, nullptr, nullptr, FALSE, nullptr);
    EXPECT_TRUE(window.Lines().empty());
}

TEST(LineWindow, APointHitsALineUpToItsPixelsAway) {
    for (const ViewCamera& camera : {FromAbove(), Perspective()}) {
        LineWindow window(camera);
        const Point3 a(-10, 5, 0), b(10, 5, 0);  // 140..180 pixels across, 110 down
        EXPECT_TRUE(Hits(window, HITTYPE_POINT, 0, {{160, 110}}, a, b));
        EXPECT_TRUE(Hits(window, HITTYPE_POINT, 0, {{160, 114}}, a, b));
        EXPECT_FALSE(Hits(window, HITTYPE_POINT, 0, {{160, 115}}, a, b));
        EXPECT_TRUE(Hits(window, HITTYPE_POINT, 0, {{184, 110}}, a, b));
        EXPECT_FALSE(Hits(window, HITTYPE_POINT, 0, {{185, 110}}, a, b));
        EXPECT_TRUE(window.Lines().empty());  // nothing of it is drawn
    }
}

TEST(LineWindow, ARectangleHoldsWholeThingsUnlessItOnlyHasToCrossThem) {
    LineWindow window(FromAbove());
    const Point3 a(-10, 5, 0), b(10, 5, 0);
    EXPECT_TRUE(Hits(window, HITTYPE_RECT, 0, {{190, 100}, {130, 120}}, a, b));
    EXPECT_FALSE(Hits(window, HITTYPE_RECT, 0, {{150, 100}, {200, 120}}, a, b));
    EXPECT_TRUE(Hits(window, HITTYPE_RECT, 1, {{150, 100}, {200, 120}}, a, b));
    EXPECT_TRUE(Hits(window, HITTYPE_RECT, 1, {{155, 100}, {165, 120}}, a, b));  // neither end is in it
    EXPECT_FALSE(Hits(window, HITTYPE_RECT, 1, {{150, 111}, {200, 120}}, a, b));
}

TEST(LineWindow, ACircleHoldsAndCrossesLikewise) {
    LineWindow window(FromAbove());
    const Point3 a(-10, 0, 0), b(10, 0, 0);
    EXPECT_TRUE(Hits(window, HITTYPE_CIRCLE, 0, {{160, 120}, {181, 120}}, a, b));
    EXPECT_FALSE(Hits(window, HITTYPE_CIRCLE, 0, {{160, 120}, {170, 120}}, a, b));
    EXPECT_TRUE(Hits(window, HITTYPE_CIRCLE, 1, {{160, 120}, {170, 120}}, a, b));
    EXPECT_FALSE(Hits(window, HITTYPE_CIRCLE, 1, {{160, 140}, {170, 140}}, a, b));
}

TEST(LineWindow, WhatIsBehindAPerspectiveEyeIsNotHit) {
    LineWindow window(Perspective());
    EXPECT_FALSE(Hits(window, HITTYPE_POINT, 0, {{160, 120}}, {-1, 0, 101}, {1, 0, 101}));
    EXPECT_TRUE(Hits(window, HITTYPE_POINT, 0, {{160, 120}}, {0, 0, 99}, {0, 0, 200}));  // its visible end
}

TEST(LineWindow, TheNearestLineGivesTheDistance) {
    for (const ViewCamera& camera : {FromAbove(), Perspective()}) {
        LineWindow window(camera);
        Hits(window, HITTYPE_POINT, 0, {{160, 120}}, {-1, 0, 0}, {1, 0, 0});
        const DWORD low = window.getHitDistance();
        Hits(window, HITTYPE_POINT, 0, {{160, 120}}, {-1, 0, 50}, {1, 0, 50});
        EXPECT_LT(window.getHitDistance(), low);
    }
}

TEST(LineView, SnapsToThePlaneThroughTheOrigin) {
    for (const ViewCamera& camera : {FromAbove(), Perspective()}) {
        LineView view(camera);
        IPoint2 out(0, 0);
        const Point3 p = view.SnapPoint(IPoint2(180, 90), out);
        EXPECT_FLOAT_EQ(p.x, 10.0f);
        EXPECT_FLOAT_EQ(p.y, 15.0f);
        EXPECT_FLOAT_EQ(p.z, 0.0f);
        EXPECT_EQ(out, IPoint2(180, 90));
    }
}

TEST(LineView, KnowsNoNearestHitWithoutAHit) {
    LineView view(FromAbove());
    EXPECT_EQ(view.GetClosestHit(), nullptr);
}

}  // namespace
