#include "rig/gizmos/gizmo_lines.h"

#include <cmath>

#include "tests/rig/gizmos/gizmo_support.h"

namespace gizmo_test {
namespace {

using namespace tavrik;

TEST(GizmoLines, ALineTakesPointsOrCoordinates) {
    GizmoLines lines;
    DrawLine(lines, {1, 2, 3}, {4, 5, 6});
    DrawLine(lines, 1, 2, 3, 4, 5, 6);
    ASSERT_EQ(lines.size(), 2u);
    for (const GizmoLine& line : lines) {
        EXPECT_EQ(line.from, (Point3{1, 2, 3}));
        EXPECT_EQ(line.to, (Point3{4, 5, 6}));
    }
}

TEST(GizmoLines, ACircleAcrossXStartsUpAndTurnsTowardsY) {
    GizmoLines lines;
    DrawCircleYZ(lines, 1, 2, 3, 10, 4);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_TRUE(IsChain(lines, 0, 4));
    EXPECT_EQ(lines[0].from, (Point3{1, 2, 13}));
    EXPECT_TRUE(Near(lines[0].to, {1, 12, 3}));
    EXPECT_TRUE(Near(lines[1].to, {1, 2, -7}));
    EXPECT_TRUE(Near(lines[3].to, lines[0].from));
}

TEST(GizmoLines, ACircleAcrossYStartsAtXAndTurnsUp) {
    GizmoLines lines;
    DrawCircleXZ(lines, 1, 2, 3, 10, 4);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_TRUE(IsChain(lines, 0, 4));
    EXPECT_EQ(lines[0].from, (Point3{11, 2, 3}));
    EXPECT_TRUE(Near(lines[0].to, {1, 2, 13}));
    EXPECT_TRUE(Near(lines[3].to, lines[0].from));
}

TEST(GizmoLines, ACircleAcrossZStartsAtYAndTurnsTowardsX) {
    GizmoLines lines;
    DrawCircleXY(lines, 1, 2, 3, 10, 4);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_TRUE(IsChain(lines, 0, 4));
    EXPECT_EQ(lines[0].from, (Point3{1, 12, 3}));
    EXPECT_TRUE(Near(lines[0].to, {11, 2, 3}));
    EXPECT_TRUE(Near(lines[3].to, lines[0].from));
}

TEST(GizmoLines, ACirclesPointsAreSinglePrecisionAnglesFromOneOn) {
    GizmoLines lines;
    DrawCircleXY(lines, 0, 0, 0, 7, 32);
    for (int i = 0; i < 32; ++i) {
        const float a = 2.0f * 3.1415927f * float(i + 1) / 32.0f;
        EXPECT_EQ(lines[std::size_t(i)].to, (Point3{0.0f + 7.0f * std::sin(a), 0.0f + 7.0f * std::cos(a), 0}));
    }
}

TEST(GizmoLines, ACircleOfTwoAxesStartsAtTheFirst) {
    GizmoLines lines;
    DrawCircle(lines, {1, 1, 1}, {0, 0, 2}, {3, 0, 0}, 8);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[0].from, (Point3{1, 1, 3}));
    EXPECT_TRUE(Near(lines[1].to, {4, 1, 1}));
    EXPECT_TRUE(Near(lines[7].to, {1, 1, 3}));
}

TEST(GizmoLines, AnArcRunsFromEndToEndAndBulgesTowardsItsCorner) {
    GizmoLines lines;
    DrawArc(lines, {10, 0, 0}, {10, 6, 0}, {0, 6, 0}, 2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(IsChain(lines, 0, 2));
    EXPECT_EQ(lines[0].from, (Point3{10, 0, 0}));
    const float h = std::sqrt(0.5f);
    EXPECT_TRUE(Near(lines[0].to, {10 * h, 6 * h, 0}));
    EXPECT_TRUE(Near(lines[1].to, {0, 6, 0}));
}

TEST(GizmoLines, ABezierRunsFromEndToEndAndIsDrawnToItsControl) {
    GizmoLines lines;
    DrawBezier(lines, {0, 0, 0}, {4, 8, 0}, {8, 0, 0}, 2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(IsChain(lines, 0, 2));
    EXPECT_EQ(lines[0].from, (Point3{0, 0, 0}));
    EXPECT_EQ(lines[0].to, (Point3{4, 4, 0}));
    EXPECT_EQ(lines[1].to, (Point3{8, 0, 0}));
}

TEST(GizmoLines, ABoxHasTwelveEdgesAndIsTwiceItsHalfSizesWide) {
    GizmoLines lines;
    DrawBox(lines, 70, 20, 5);
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(BoxOf(lines).Width(), (Point3{140, 40, 10}));
    for (const GizmoLine& edge : lines) {
        const Point3 d = edge.to - edge.from;
        EXPECT_EQ((d.x != 0) + (d.y != 0) + (d.z != 0), 1);  // along one axis
        EXPECT_EQ(CountLines(lines, edge.from, edge.to), 1);
    }
}

TEST(GizmoLines, AShapeOfNoSegmentsIsNothing) {
    GizmoLines lines;
    DrawCircleXY(lines, 0, 0, 0, 1, 0);
    DrawArc(lines, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, 0);
    EXPECT_TRUE(lines.empty());
}

}  // namespace
}  // namespace gizmo_test
