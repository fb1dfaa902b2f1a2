// The parts of a view that need no picture.

#include <gtest/gtest.h>

#include <cmath>

#include "studio/view/chase_camera.h"
#include "studio/view/draw_pace.h"
#include "studio/view/eye_frame.h"
#include "studio/view/handles.h"
#include "studio/view/view_grid.h"

namespace tavrik_studio {
namespace {

using tavrik_host::CameraOf;
using tavrik_host::Pixel;
using tavrik_host::ViewSide;
using tavrik_host::ViewState;

TEST(EyeFrame, PutsPointsAtTheSamePixelsAsTheMouseLooksForThem) {
    for (const bool perspective : {true, false}) {
        ViewState state;
        state.width = 401;
        state.height = 299;
        state.heading = 33.0f;
        state.pitch = -21.0f;
        state.target = Point3(50, -20, 10);
        state.perspective = perspective;
        const Point3 points[] = {{50, -20, 10}, {200, 100, 0}, {-90, 30, 150}, {10, 10, -70}};
        const EyeFrame eye = EyeFrameOf(state, points);
        for (const Point3& p : points) {
            float c[4];
            for (int k = 0; k < 4; ++k)
                c[k] = p.x * eye.clip[k] + p.y * eye.clip[4 + k] + p.z * eye.clip[8 + k] + eye.clip[12 + k];
            Pixel pixel{};
            ASSERT_TRUE(Project(CameraOf(state), p, pixel));
            EXPECT_NEAR((c[0] / c[3] + 1.0f) * 0.5f * 401.0f, pixel.x, 0.01f);
            EXPECT_NEAR((1.0f - c[1] / c[3]) * 0.5f * 299.0f, pixel.y, 0.01f);
            EXPECT_GT(c[2] / c[3], -1.0f);
            EXPECT_LT(c[2] / c[3], 1.0f);
        }
    }
}

TEST(EyeFrame, LeavesOutBoxesBesideAndBehind) {
    const ViewState state = Seen(ViewState(), ViewSide::Perspective);
    const EyeFrame eye = EyeFrameOf(state, {});
    const Box3 box(Point3(-10, -10, -10), Point3(10, 10, 10));
    Matrix3 place(TRUE);
    EXPECT_TRUE(eye.MaySee(box, place));
    place.SetTrans(CameraOf(state).frame.GetRow(0) * 2000.0f);
    EXPECT_FALSE(eye.MaySee(box, place));
    place.SetTrans(CameraOf(state).frame.GetRow(2) * 3000.0f);
    EXPECT_FALSE(eye.MaySee(box, place));
}

TEST(ViewGrid, KeepsItsLinesApartAtEveryDistance) {
    ViewState state = Seen(ViewState(), ViewSide::Top);
    for (const float distance : {1.0f, 30.0f, 700.0f, 5e4f}) {
        state.distance = distance;
        const float pixels = GridWidthFor(state) / UnitsPerPixel(CameraOf(state), distance);
        EXPECT_GE(pixels, 13.9f);
        EXPECT_LT(pixels, 141.0f);
    }
}

TEST(ViewGrid, LiesInThePlaneThatAFlatViewFaces) {
    ViewPicture picture;
    picture.state = Seen(ViewState(), ViewSide::Front);
    const ViewGrid grid = GridOf(picture);
    ASSERT_FALSE(grid.fine.empty());
    for (const GridLine& line : grid.fine) EXPECT_NEAR(line.from.y, 0.0f, 1e-3f);
}

TEST(DrawPace, TakesLessEffortWhereAMovingViewIsSlowAndAllOfItAtRest) {
    DrawPace pace;
    EXPECT_EQ(pace.Next(true).coarse, 1);
    pace.Took(80.0);
    EXPECT_GT(pace.Next(true).coarse, 1);
    for (int i = 0; i < 10; ++i) {
        pace.Next(true);
        pace.Took(80.0);
    }
    EXPECT_FALSE(pace.Next(true).boxes);
    EXPECT_EQ(pace.Next(false).coarse, 1);
    EXPECT_FALSE(pace.Next(false).boxes);
    EXPECT_GT(pace.Next(false).samples, 1);
}

TEST(DrawPace, DrawsBoxesOnlyWhereNothingElseWouldMove) {
    DrawPace pace;
    for (int i = 0; i < 10; ++i) {
        pace.Next(true);
        pace.Took(DrawPace::kHopeless + 1.0);
    }
    EXPECT_TRUE(pace.Next(true).boxes);
}

TEST(DrawPace, PicturesAtRestSayNothingAboutMovingOnes) {
    DrawPace pace;
    pace.Next(false);
    pace.Took(500.0);
    EXPECT_EQ(pace.Level(), 0);
}

TEST(DrawPace, SmoothsLessWhereEvenAPictureAtRestTakesLongAgainAndAgain) {
    DrawPace pace;
    const auto rest = [&pace](double milliseconds) {
        pace.Next(false);
        pace.Took(milliseconds);
    };
    for (int i = 0; i < 10; ++i) {
        rest(900.0);
        rest(100.0);
    }
    EXPECT_EQ(pace.Next(false).samples, 4);
    for (int i = 0; i < 10; ++i) rest(900.0);
    EXPECT_EQ(pace.Next(false).samples, 1);
    EXPECT_EQ(pace.Next(false).coarse, 1);
}

TEST(DrawPace, ComesBackWhereThereIsTimeAndTriesInVainLessAndLessOften) {
    DrawPace pace;
    pace.Next(true);
    pace.Took(80.0);
    int pictures[3] = {};
    for (int& count : pictures) {
        while (pace.Level() > 0) {
            pace.Next(true);
            pace.Took(5.0);
            ++count;
        }
        pace.Next(true);
        pace.Took(80.0);
    }
    EXPECT_GT(pictures[0], 1);
    EXPECT_GT(pictures[1], pictures[0]);
    EXPECT_GT(pictures[2], pictures[1]);
}

Matrix3 Heading(float degrees, float x = 0.0f) {
    const float a = degrees * 0.017453293f;
    Matrix3 place(TRUE);
    place.SetRow(0, Point3(std::cos(a), -std::sin(a), 0));
    place.SetRow(1, Point3(std::sin(a), std::cos(a), 0));
    place.SetTrans(Point3(x, 0, 0));
    return place;
}

TEST(ChaseCamera, GoesAlongAtOnceAndTurnsSoftly) {
    ChaseCamera chase;
    ViewState state;
    chase.Start(state, Heading(350.0f), 0);
    chase.Update(state, Heading(20.0f, 500.0f), 160);
    EXPECT_EQ(state.target.x, 500.0f);
    const float turned = std::remainder(state.heading - 350.0f, 360.0f);
    EXPECT_GT(turned, 0.5f);  // the short way round
    EXPECT_LT(turned, 15.0f);
    for (int tick = 320; tick < 20000; tick += 160) chase.Update(state, Heading(20.0f, 500.0f), tick);
    EXPECT_NEAR(std::remainder(state.heading - 20.0f, 360.0f), 0.0f, 0.1f);
}

TEST(ChaseCamera, IsTheSameInOneStepAndInMany) {
    ChaseCamera one, many;
    ViewState a, b;
    one.Start(a, Heading(0.0f), 0);
    many.Start(b, Heading(0.0f), 0);
    one.Update(a, Heading(40.0f), 1600);
    for (int tick = 100; tick <= 1600; tick += 100) many.Update(b, Heading(40.0f), tick);
    EXPECT_NEAR(a.heading, b.heading, 0.01f);
}

TEST(ChaseCamera, KeepsTheUsersOwnTurn) {
    ChaseCamera chase;
    ViewState state;
    chase.Start(state, Heading(0.0f), 0);
    state.heading += 90.0f;
    state.distance = 77.0f;
    chase.Update(state, Heading(0.0f, 10.0f), 160);
    EXPECT_EQ(state.heading, 90.0f);
    EXPECT_EQ(state.distance, 77.0f);
}

TEST(ChaseCamera, TakesAJumpInTimeAtOnce) {
    ChaseCamera chase;
    ViewState state;
    chase.Start(state, Heading(0.0f), 10000);
    chase.Update(state, Heading(90.0f), 0);
    EXPECT_NEAR(state.heading, 90.0f, 1e-3f);
}

class HandleTest : public testing::Test {
 public:
    HandleTest() {
        state = Seen(ViewState(), ViewSide::Perspective);
        handles.centre = Point3(120, 40, -30);
    }
    Pixel At(const Point3& p) const {
        Pixel pixel{};
        Project(CameraOf(state), p, pixel);
        return pixel;
    }
    float Unit() const { return UnitsPerPixel(CameraOf(state), DepthOf(CameraOf(state), handles.centre)); }

    ViewState state;
    Handles handles;
};

TEST_F(HandleTest, AreFoundWhereTheyAreDrawn) {
    const auto at = [this](const Point3& off) { return HandleAt(handles, CameraOf(state), At(handles.centre + off * Unit())); };
    EXPECT_EQ(at({60, 0, 0}), HandlePart::X);
    EXPECT_EQ(at({0, 60, 0}), HandlePart::Y);
    EXPECT_EQ(at({0, 0, 60}), HandlePart::Z);
    EXPECT_EQ(at({30, 30, 0}), HandlePart::XY);
    EXPECT_EQ(at({0, 0, 0}), HandlePart::Eye);
    EXPECT_EQ(at({-60, -60, 0}), HandlePart::None);
    handles.kind = HandleKind::Rotate;
    EXPECT_EQ(at({0, 0, 0}), HandlePart::None);
    const Point3 eye = Normalize(CameraOf(state).frame.GetTrans() - handles.centre);
    const Point3 front = Normalize(Point3(eye.x, eye.y, 0));
    EXPECT_EQ(at(front * kHandleRing), HandlePart::Z);
    EXPECT_EQ(at(front * -kHandleRing), HandlePart::None);  // its far half
}

TEST_F(HandleTest, ThatPointAtTheEyeAreNotThere) {
    state = Seen(ViewState(), ViewSide::Top);
    state.target = handles.centre;
    for (const HandleShape& shape : ShapesOf(handles, CameraOf(state))) {
        EXPECT_NE(shape.part, HandlePart::Z);
        EXPECT_NE(shape.part, HandlePart::YZ);
    }
}

TEST_F(HandleTest, AnArmFollowsTheMouseExactly) {
    for (const Point3& axis : {Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1)}) {
        const HandlePart part = axis.x > 0.0f ? HandlePart::X : axis.y > 0.0f ? HandlePart::Y : HandlePart::Z;
        const Pixel from = At(handles.centre + axis * 20.0f), to = At(handles.centre + axis * 73.0f);
        const Point3 by = DraggedBy(handles, part, CameraOf(state), from, to);
        EXPECT_NEAR(Length(by - axis * 53.0f), 0.0f, 0.2f);
    }
}

TEST_F(HandleTest, ASquareMovesInItsPlaneAlone) {
    const Pixel from = At(handles.centre + Point3(25, 25, 0)), to = At(handles.centre + Point3(65, -10, 0));
    const Point3 by = DraggedBy(handles, HandlePart::XY, CameraOf(state), from, to);
    EXPECT_NEAR(Length(by - Point3(40, -35, 0)), 0.0f, 0.05f);
    EXPECT_NEAR(by.z, 0.0f, 1e-3f);
}

TEST_F(HandleTest, StepsAreMultiplesOfTheGrid) {
    const Pixel from = At(handles.centre), to = At(handles.centre + Point3(47, 0, 0));
    EXPECT_NEAR(DraggedBy(handles, HandlePart::X, CameraOf(state), from, to, 10.0f).x, 50.0f, 1e-3f);
}

TEST_F(HandleTest, AMouseAboveTheHorizonMovesNothing) {
    const Point3 by = DraggedBy(handles, HandlePart::XY, CameraOf(state), At(handles.centre), {320.0f, -2000.0f});
    EXPECT_EQ(by, Point3(0, 0, 0));
}

TEST_F(HandleTest, ARingTurnsByTheAngleThatTheMouseGoes) {
    const Pixel from = At(handles.centre + Point3(70, 0, 0)), to = At(handles.centre + Point3(0, 70, 0));
    const HandleTurn turn = TurnedBy(handles, HandlePart::Z, CameraOf(state), from, to);
    EXPECT_NEAR(turn.angle, 1.5707963f, 1e-3f);
    Matrix3 place(TRUE);
    place.SetTrans(handles.centre + Point3(10, 0, 0));
    const Matrix3 turned = Turned(place, turn, handles.centre);
    EXPECT_NEAR(Length(turned.GetTrans() - (handles.centre + Point3(0, 10, 0))), 0.0f, 0.02f);
    EXPECT_NEAR(turned.GetRow(0).y, 1.0f, 1e-3f);
}

}  // namespace
}  // namespace tavrik_studio
