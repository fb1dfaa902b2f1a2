#include "surface/box_clip.h"

#include <gtest/gtest.h>

#include "tests/support/test_random.h"
#include "tests/surface/plain_surface_tree.h"

namespace tavrik {
namespace {

unsigned Touched(const Point3& p0, const Point3& p1, const Point3& p2, const Box3& parent) {
    const Point3 corner[3] = {p0, p1, p2};
    return ChildrenTouched(corner, WallsOfChildren(parent));
}

const Box3 kCube{{0, 0, 0}, {2, 2, 2}};

TEST(ChildrenTouched, TriangleWithinAChildTouchesThatOneOnly) {
    EXPECT_EQ(Touched({1.2f, 0.2f, 1.2f}, {1.4f, 0.2f, 1.2f}, {1.2f, 0.4f, 1.4f}, kCube), 1u << 5);
}

TEST(ChildrenTouched, TriangleOnTheSplitPlaneBelongsToBothSides) {
    EXPECT_EQ(Touched({0.2f, 0.2f, 1}, {0.8f, 0.2f, 1}, {0.2f, 0.8f, 1}, kCube), (1u << 0) | (1u << 4));
}

TEST(ChildrenTouched, CornerThatOnlyTouchesAWallBelongsToTheOtherSideToo) {
    EXPECT_EQ(Touched({1, 0.5f, 0.5f}, {0.5f, 0.2f, 0.5f}, {0.5f, 0.8f, 0.5f}, kCube), (1u << 0) | (1u << 1));
}

TEST(ChildrenTouched, TriangleThatCutsACornerOffStaysOutOfTheOppositeChild) {
    // Its own box reaches into child 0, the triangle doesn't.
    const unsigned touched = Touched({1.7f, 0.5f, 0.5f}, {1.7f, 1.7f, 0.5f}, {0.5f, 1.7f, 0.5f}, kCube);
    EXPECT_EQ(touched, (1u << 1) | (1u << 2) | (1u << 3));
}

TEST(ChildrenTouched, TriangleAroundTheCubeTouchesAllChildrenThatItsPlaneCuts) {
    EXPECT_EQ(Touched({-50, -50, 0.5f}, {100, -50, 0.5f}, {-50, 100, 0.5f}, kCube), 0x0Fu);
}

TEST(ChildBox, LiesWhereHalfTheSideIsAddedToTheLowerWall) {
    test::TestRandom random(test::TestSeed(12));
    int moved = 0;
    for (int i = 0; i < test::TestRounds(2'000); ++i) {
        const Point3 pmin = random.PointIn({{-900, -900, -900}, {900, 900, 900}});
        const float side = random.Between(0.01f, 300.0f);
        const Box3 parent{pmin, pmin + Point3{side, side, side}};
        for (int child = 0; child < 8; ++child) {
            const Box3 box = ChildBox(WallsOfChildren(parent), unsigned(child)), plain = test::PlainChildBox(parent, child);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                ASSERT_EQ(box.pmin[axis], plain.pmin[axis]);
                ASSERT_EQ(box.pmax[axis], plain.pmax[axis]);
            }
            moved += child == 7 && box.pmax.x != parent.pmax.x;
        }
    }
    EXPECT_GT(moved, 0);  // an upper wall is not always its parent's
}

// Corners on a coarse lattice meet walls and edges exactly; corners close to one line make slivers.
Point3 Corner(test::TestRandom& random, int kind, const Point3& before) {
    const Box3 space{{-3, -3, -3}, {5, 5, 5}};
    if (kind == 0) return random.PointIn(space);
    if (kind == 1) {
        const float x = float(random.Int(-3, 6)) * 0.5f, y = float(random.Int(-3, 6)) * 0.5f;
        return {x, y, float(random.Int(-3, 6)) * 0.5f};
    }
    return before + Point3{1, 1, 1} * random.Between(-2.0f, 2.0f) + random.PointIn({{0, 0, 0}, {1e-6f, 1e-6f, 1e-6f}});
}

TEST(ChildrenTouched, AgreesWithCuttingForEachChildAlone) {
    test::TestRandom random(test::TestSeed(13));
    int partly = 0, mostPlaces = 0;
    for (int i = 0; i < test::TestRounds(60'000); ++i) {
        const int kind = i % 3;
        Point3 corner[3] = {Corner(random, kind == 2 ? 0 : kind, {}), {}, {}};
        corner[1] = Corner(random, kind, corner[0]);
        corner[2] = Corner(random, kind, corner[1]);
        const unsigned touched = ChildrenTouched(corner, WallsOfChildren(kCube));
        unsigned plain = 0;
        for (int child = 0; child < 8; ++child) {
            plain |= unsigned(test::PlainTouches(corner, test::PlainChildBox(kCube, child), &mostPlaces)) << child;
        }
        ASSERT_EQ(touched, plain) << test::Digits(corner[0]) << test::Digits(corner[1]) << test::Digits(corner[2]);
        partly += touched != 0 && touched != 0xFF;
    }
    EXPECT_GT(partly, 10'000);
    EXPECT_GE(mostPlaces, 11);  // ten points and the closing copy do come up
}

}  // namespace
}  // namespace tavrik
