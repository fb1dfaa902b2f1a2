#include "surface/surface_triangle.h"

#include <gtest/gtest.h>

#include "tests/support/test_random.h"
#include "tests/surface/plain_surface_tree.h"

namespace tavrik {
namespace {

SurfaceTriangle Triangle(const Point3& p0, const Point3& p1, const Point3& p2) {
    SurfaceTriangle triangle;
    SetUpTriangle(p0, p1, p2, triangle);
    return triangle;
}

void ExpectZeroNormal(const SurfaceTriangle& triangle) {
    EXPECT_EQ(triangle.normal.x, 0.0f);
    EXPECT_EQ(triangle.normal.y, 0.0f);
    EXPECT_EQ(triangle.normal.z, 0.0f);
}

TEST(SetUpTriangle, NormalFollowsTheRightHand) {
    const SurfaceTriangle triangle = Triangle({0, 0, 5}, {2, 0, 5}, {0, 2, 5});
    EXPECT_EQ(triangle.normal.x, 0.0f);
    EXPECT_EQ(triangle.normal.y, 0.0f);
    EXPECT_EQ(triangle.normal.z, 1.0f);
    EXPECT_EQ(triangle.planeD, 5.0f);
}

TEST(SetUpTriangle, KeepsTheTwoAxesOfTheLargestPicture) {
    const SurfaceTriangle level = Triangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    EXPECT_EQ(level.axisU, 0u);
    EXPECT_EQ(level.axisV, 1u);
    const SurfaceTriangle acrossX = Triangle({0, 0, 0}, {0, 1, 0}, {0, 0, 1});
    EXPECT_EQ(acrossX.axisU, 1u);
    EXPECT_EQ(acrossX.axisV, 2u);
    const SurfaceTriangle acrossY = Triangle({0, 0, 0}, {0, 0, 1}, {1, 0, 0});
    EXPECT_EQ(acrossY.axisU, 2u);
    EXPECT_EQ(acrossY.axisV, 0u);
}

TEST(SetUpTriangle, EqualPicturesFallThroughToTheLastChoice) {
    const SurfaceTriangle diagonal = Triangle({1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    ASSERT_EQ(diagonal.normal.x, diagonal.normal.y);
    ASSERT_EQ(diagonal.normal.y, diagonal.normal.z);
    EXPECT_EQ(diagonal.axisU, 2u);
    EXPECT_EQ(diagonal.axisV, 0u);
}

TEST(SetUpTriangle, CollinearCornersLeaveAZeroNormal) {
    SurfaceTriangle triangle;
    EXPECT_FALSE(SetUpTriangle({0, 0, 0}, {1, 1, 1}, {3, 3, 3}, triangle));
    ExpectZeroNormal(triangle);
}

TEST(SetUpTriangle, ProductThatUnderflowsLeavesAZeroNormalNotATinyOne) {
    const Point3 p0{0, 0, 0}, p1{1e-12f, 0, 0}, p2{0, 1e-12f, 0};
    ASSERT_GT(Cross(p1 - p0, p2 - p0).z, 0.0f);
    SurfaceTriangle triangle;
    EXPECT_FALSE(SetUpTriangle(p0, p1, p2, triangle));
    ExpectZeroNormal(triangle);
}

TEST(HoldsPointOfPlane, EdgesAndCornersBelongToTheTriangle) {
    const SurfaceTriangle triangle = Triangle({0, 0, 0}, {2, 0, 0}, {0, 2, 0});
    for (const auto& [u, v] : {std::pair{0.0f, 0.0f}, {2.0f, 0.0f}, {0.0f, 2.0f}, {1.0f, 0.0f}, {0.0f, 1.0f}, {1.0f, 1.0f}}) {
        EXPECT_TRUE(HoldsPointOfPlane(triangle, u, v)) << u << ", " << v;
    }
    for (const auto& [u, v] : {std::pair{-0.001f, 0.5f}, {0.5f, -0.001f}, {1.001f, 1.0f}}) {
        EXPECT_FALSE(HoldsPointOfPlane(triangle, u, v)) << u << ", " << v;
    }
}

TEST(SetUpTriangle, AgreesWithThePlainOneBitForBit) {
    test::TestRandom random(test::TestSeed(11));
    const Box3 space{{-50, -900, -3}, {200, 100, 7}};
    for (int i = 0; i < test::TestRounds(5'000); ++i) {
        const Point3 p0 = random.PointIn(space), p1 = random.PointIn(space), p2 = random.PointIn(space);
        const SurfaceTriangle triangle = Triangle(p0, p1, p2);
        test::PlainTriangle plain{{p0, p1, p2}};
        plain.SetUp();
        ASSERT_EQ(triangle.normal.x, plain.normal.x);
        ASSERT_EQ(triangle.normal.y, plain.normal.y);
        ASSERT_EQ(triangle.normal.z, plain.normal.z);
        ASSERT_EQ(triangle.planeD, plain.planeD);
        ASSERT_EQ(int(triangle.axisU), plain.axisU);
        ASSERT_EQ(int(triangle.axisV), plain.axisV);
        for (int k = 0; k < 4; ++k) ASSERT_EQ(triangle.m[k], plain.m[k]);
    }
}

}  // namespace
}  // namespace tavrik
