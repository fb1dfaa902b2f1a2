// Dragging new objects into a view.

#include <cmath>

#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

/// Looks down on the ground plane; a pixel is a unit.
class View final : public ViewExp {
 public:
    int previews = 0;
    Point3 SnapPoint(const IPoint2& in, IPoint2&, Matrix3*, DWORD) override { return {float(in.x), float(in.y), 0.0f}; }
    void SnapPreview(const IPoint2&, IPoint2&, Matrix3*, DWORD) override { ++previews; }
    bool IsAlive() const override { return true; }
};

class PluginCreate : public PluginScene {
 public:
    /// A press at one pixel, then the message at another. @return what the second one was answered with
    int Drag(Class_ID id, IPoint2 from, IPoint2 to, int message = MOUSE_POINT) {
        node = &AddNode(id, Matrix3(TRUE));
        CreateMouseCallBack* const callback = node->GetObjectRef()->GetCreateMouseCallBack();
        first = callback->proc(&view, MOUSE_POINT, 0, 0, from, placeAtFirst);
        place = placeAtFirst;
        return callback->proc(&view, message, 1, 0, to, place);
    }

    View view;
    INode* node = nullptr;
    int first = 99;
    Matrix3 placeAtFirst{TRUE}, place{TRUE};
};

TEST_F(PluginCreate, AMasterGrowsFromItsMiddleAndIsAsHighAsWide) {
    EXPECT_EQ(Drag(kMasterClass, {10, 20}, {40, -60}), CREATE_STOP);
    EXPECT_EQ(first, CREATE_CONTINUE);
    EXPECT_EQ(FloatOf(*node, kDummySize, 0), 30.0f);
    EXPECT_EQ(FloatOf(*node, kDummySize, 1), 80.0f);
    EXPECT_EQ(FloatOf(*node, kDummySize, 2), 30.0f);
    EXPECT_EQ(place.GetTrans(), Point3(10, 20, 0));
}

TEST_F(PluginCreate, AChassisIsThreeTenthsAsHighAsWide) {
    EXPECT_EQ(Drag(kChassisClass, {0, 0}, {100, 300}), CREATE_STOP);
    EXPECT_EQ(FloatOf(*node, 0), 100.0f);
    EXPECT_EQ(FloatOf(*node, 1), 300.0f);
    EXPECT_FLOAT_EQ(FloatOf(*node, 2), 30.0f);
}

TEST_F(PluginCreate, ASuspensionIsInProportion) {
    EXPECT_EQ(Drag(kSuspensionClass, {0, 0}, {-100, 7}), CREATE_STOP);
    EXPECT_EQ(FloatOf(*node, 0), 100.0f);
    EXPECT_FLOAT_EQ(FloatOf(*node, 4), 20.0f);
    EXPECT_FLOAT_EQ(FloatOf(*node, 5), -20.0f);
    EXPECT_FLOAT_EQ(FloatOf(*node, 6), 10.0f);
}

TEST_F(PluginCreate, AWheelTakesRadiusAlongYAndWidthAlongX) {
    EXPECT_EQ(Drag(kWheelClass, {0, 0}, {-12, 33}), CREATE_STOP);
    EXPECT_EQ(FloatOf(*node, 0), 33.0f);
    EXPECT_EQ(FloatOf(*node, 1), 12.0f);
}

TEST_F(PluginCreate, SpheresHitchesAndTonguesTakeTheWholeDistance) {
    for (const Class_ID id : {kSphereClass, kHitchClass, kTongueClass}) {
        EXPECT_EQ(Drag(id, {0, 0}, {3, 4}), CREATE_STOP);
        EXPECT_EQ(FloatOf(*node, 0), 5.0f);
    }
}

TEST_F(PluginCreate, PushesAndStartsTakeTheDistanceAlongY) {
    for (const Class_ID id : {kPushClass, kStartClass}) {
        EXPECT_EQ(Drag(id, {5, 5}, {5, -20}), CREATE_STOP);
        EXPECT_EQ(FloatOf(*node, 0), 25.0f);
    }
}

TEST_F(PluginCreate, AClickWithoutADragMakesNothing) {
    for (const Class_ID id : kHelperClasses) EXPECT_EQ(Drag(id, {8, 9}, {8, 9}), CREATE_ABORT);
}

TEST_F(PluginCreate, ADragAlongOneAxisMakesNoBoxOrWheel) {
    for (const Class_ID id : {kMasterClass, kChassisClass, kWheelClass}) {
        EXPECT_EQ(Drag(id, {0, 0}, {50, 0}), CREATE_ABORT);
        EXPECT_EQ(Drag(id, {0, 0}, {0, 50}), CREATE_ABORT);
    }
}

TEST_F(PluginCreate, ADragStraightAlongYMakesNothingThatLooksAtX) {
    for (const Class_ID id : {kSuspensionClass, kSphereClass, kHitchClass, kTongueClass}) {
        EXPECT_EQ(Drag(id, {0, 0}, {0, 4}), CREATE_ABORT);
        EXPECT_EQ(Drag(id, {0, 0}, {4, 0}), CREATE_STOP);
    }
}

TEST_F(PluginCreate, ADragStraightAlongXMakesNothingThatLooksAtY) {
    for (const Class_ID id : {kPushClass, kStartClass}) {
        EXPECT_EQ(Drag(id, {0, 0}, {4, 0}), CREATE_ABORT);
        EXPECT_EQ(Drag(id, {0, 0}, {0, 4}), CREATE_STOP);
    }
}

TEST_F(PluginCreate, AMoveShowsTheSizeAndGoesOn) {
    for (const Class_ID id : kHelperClasses) EXPECT_EQ(Drag(id, {0, 0}, {30, 40}, MOUSE_MOVE), CREATE_CONTINUE);
    EXPECT_EQ(FloatOf(*node, 0), 50.0f);  // the last one is a sphere
    for (const Class_ID id : kHelperClasses) EXPECT_EQ(Drag(id, {3, 3}, {3, 3}, MOUSE_MOVE), CREATE_CONTINUE);
}

TEST_F(PluginCreate, AnAbortAborts) {
    for (const Class_ID id : kHelperClasses) EXPECT_EQ(Drag(id, {0, 0}, {30, 40}, MOUSE_ABORT), CREATE_ABORT);
}

TEST_F(PluginCreate, OtherMessagesGoOn) {
    for (const Class_ID id : kHelperClasses) {
        for (const int message : {MOUSE_DBLCLICK, MOUSE_INIT, MOUSE_UNINIT}) {
            EXPECT_EQ(Drag(id, {0, 0}, {30, 40}, message), CREATE_CONTINUE);
        }
    }
    EXPECT_EQ(view.previews, 0);
}

TEST_F(PluginCreate, AFreeMovePreviewsTheSnap) {
    for (const Class_ID id : kHelperClasses) {
        view.previews = 0;
        EXPECT_EQ(Drag(id, {0, 0}, {30, 40}, MOUSE_FREEMOVE), CREATE_CONTINUE);
        EXPECT_EQ(view.previews, 1);
    }
}

TEST_F(PluginCreate, SpheresAndHitchesLieOnTheirSideUntilTheMouseMoves) {
    for (const Class_ID id : {kSphereClass, kHitchClass}) {
        Drag(id, {7, 8}, {17, 8}, MOUSE_MOVE);
        EXPECT_NEAR(std::abs(placeAtFirst.GetRow(0).z), 1.0f, 1e-5f);
        EXPECT_NEAR(std::abs(placeAtFirst.GetRow(2).x), 1.0f, 1e-5f);
        EXPECT_EQ(placeAtFirst.GetRow(1), Point3(0, 1, 0));
        EXPECT_EQ(placeAtFirst.GetTrans(), Point3(7, 8, 0));
        EXPECT_EQ(place.GetRow(0), Point3(1, 0, 0));
        EXPECT_EQ(place.GetRow(2), Point3(0, 0, 1));
    }
}

TEST_F(PluginCreate, EverythingElseStandsUprightFromTheStart) {
    for (const Class_ID id : kHelperClasses) {
        if (id == kSphereClass || id == kHitchClass) continue;
        Drag(id, {7, 8}, {17, 18}, MOUSE_MOVE);
        EXPECT_EQ(placeAtFirst, At(7, 8, 0));
    }
}

TEST_F(PluginCreate, AMouseThatOutlivesItsObjectMakesNothing) {
    Drag(kWheelClass, {0, 0}, {30, 40}, MOUSE_MOVE);
    CreateMouseCallBack* const callback = node->GetObjectRef()->GetCreateMouseCallBack();
    GetCOREInterface()->DeleteNode(node);
    EXPECT_EQ(callback->proc(&view, MOUSE_POINT, 1, 0, {60, 80}, place), CREATE_ABORT);
}

}  // namespace
}  // namespace plugin_test
