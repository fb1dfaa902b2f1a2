#include "surface/surface_neighbourhood.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/ground_meshes.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::Digits;
using test::TestRandom;

Point3 RandomDirection(TestRandom& random) {
    for (;;) {
        const Point3 v = random.PointIn({{-1, -1, -1}, {1, 1, 1}});
        const float length = Length(v);
        if (length > 0.1f && length <= 1.0f) return v / length;
    }
}

/// A point near a random vertex of the mesh, so that about as many segments hit as miss.
Point3 NearGround(const SurfaceTree& tree, TestRandom& random, float away) {
    const std::size_t i = std::size_t(random.Int(0, int(tree.numVerts()) - 1));
    return tree.verts()[i] + RandomDirection(random) * random.Between(0.0f, away);
}

struct Tally {
    int clear = 0, hits = 0;
};

/// Casts segments of many lengths in balls around the ground, axis-parallel ones through vertices among them.
Tally CastEverywhere(const TriangleMesh& mesh, std::uint64_t seed) {
    SurfaceTree tree;
    EXPECT_TRUE(tree.Build(mesh));
    TestRandom random(test::TestSeed(seed));
    const float size = tree.bound().Width().x;
    Tally tally;
    for (int i = 0; i < test::TestRounds(4000); ++i) {
        const float radius = size * 0.5f * std::pow(10.0f, random.Between(-4.0f, -0.5f));
        const Point3 centre = NearGround(tree, random, 2.0f * radius);
        const SurfaceNeighbourhood ground(tree, centre, radius);
        for (int j = 0; j < 12; ++j) {
            const float share = random.Between(0.0f, 1.0f);
            const Point3 origin = centre + RandomDirection(random) * (radius * share);
            const float longest = radius * (1.0f - share);
            const bool alongAxis = random.Int(0, 3) == 0;
            const Point3 axis = {0.0f, 0.0f, random.Int(0, 1) == 0 ? -1.0f : 1.0f};
            const Point3 dir = (alongAxis ? axis : RandomDirection(random)) * (longest * random.Between(0.5f, 1.0f));
            SurfaceRay ray;
            ray.Set(origin, dir, 0.0f, 1.0f);
            const bool clear = ground.ClearReach(origin) > Length(dir);
            const bool hit = tree.Intersect(ray);
            EXPECT_FALSE(clear && hit) << Digits(origin) << " " << Digits(dir) << " in " << Digits(centre) << " " << radius;
            tally.clear += clear ? 1 : 0;
            tally.hits += hit ? 1 : 0;
        }
    }
    return tally;
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentClearThatHitsOnHills) {
    const Tally tally = CastEverywhere(test::HillMesh(20'000), 1);
    EXPECT_GT(tally.clear, 5'000);
    EXPECT_GT(tally.hits, 1'000);
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentClearThatHitsOnTerracesWithVerticalWalls) {
    const Tally tally = CastEverywhere(test::TerraceMesh(40, 250.0f, 3), 2);
    EXPECT_GT(tally.clear, 2'000);
    EXPECT_GT(tally.hits, 1'000);
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentClearThatHitsOnSlivers) {
    const Tally tally = CastEverywhere(test::SliverFanMesh(500, 5'000.0f), 3);
    EXPECT_GT(tally.clear, 2'000);
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentClearThatHitsOnCoplanarDoubles) {
    const Tally tally = CastEverywhere(test::WithDoubles(test::HillMesh(2'000)), 4);
    EXPECT_GT(tally.clear, 2'000);
    EXPECT_GT(tally.hits, 1'000);
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentClearThatHitsOnRealTerrain) {
    TriangleMesh mesh;
    if (!test::ReadRealGround("medium/multilayer-terrain.obj", mesh)) GTEST_SKIP() << "no real data";
    for (Point3& p : mesh.verts) p = p * 100.0f;
    const Tally tally = CastEverywhere(mesh, 5);
    EXPECT_GT(tally.clear, 2'000);
    EXPECT_GT(tally.hits, 1'000);
}

TriangleMesh OneLevelTriangle() { return {{{-1000, -1000, 0}, {1000, -1000, 0}, {0, 1000, 0}}, {{{0, 1, 2}}}}; }

TEST(SurfaceNeighbourhood, ReachesAsFarAsTheNearestPlane) {
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build(OneLevelTriangle()));
    const Point3 place = {300, -500, 40};
    const SurfaceNeighbourhood ground(tree, place, 30.0f);  // within one of the root's children
    EXPECT_NEAR(ground.ClearReach(place), 40.0f, 0.01f);
}

TEST(SurfaceNeighbourhood, ReachesForEverWhereNothingIsNear) {
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build(test::HillMesh(2'000)));
    const SurfaceNeighbourhood ground(tree, {0, 0, 1e6f}, 50.0f);
    EXPECT_EQ(ground.ClearReach({0, 0, 1e6f}), std::numeric_limits<float>::infinity());
}

TEST(SurfaceNeighbourhood, IsSureOfNothingWhereTooManyTrianglesAreNear) {
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build(test::HillMesh(20'000)));
    const SurfaceNeighbourhood ground(tree, {0, 0, 0}, 5'000.0f);
    EXPECT_EQ(ground.ClearReach({0, 0, 4'000.0f}), 0.0f);
}

TEST(SurfaceNeighbourhood, ADegenerateTriangleIsInNobodysWay) {
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build({{{0, 0, 0}, {10, 0, 0}, {20, 0, 0}}, {{{0, 1, 2}}}}));
    const SurfaceNeighbourhood ground(tree, {10, 0, 1}, 5.0f);
    EXPECT_EQ(ground.ClearReach({10, 0, 1}), std::numeric_limits<float>::infinity());
}

TEST(SurfaceNeighbourhood, IsSureOfNothingAtATriangleSoSmallThatItsNormalIsTooLong) {
    // The square of this area's double is 1.44 of the smallest float and rounds to 1 of them: the normal is 1.2 long.
    const float width = 0x1p-37f, depth = float(1.2 * 0x1p-37 / std::sqrt(2.0));
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build({{{0, 0, 0}, {width, 0, 0}, {0, depth, 0}}, {{{0, 1, 2}}}}));
    ASSERT_GT(Length(tree.triangles()[0].normal), 1.1f);

    const float length = width / 4;
    const Point3 origin = {width / 4, depth / 4, length * 0.9f};
    const SurfaceNeighbourhood ground(tree, origin, length);
    SurfaceRay ray;
    ray.Set(origin, {0, 0, -length}, 0.0f, 1.0f);
    EXPECT_TRUE(tree.Intersect(ray));
    EXPECT_LE(ground.ClearReach(origin), length);
}

TEST(SurfaceNeighbourhood, NeverCallsASegmentOfTheSmallestFloatsClearThatHits) {
    // A diagonal through the plane x + y + z = 0. Each of the three products with the normal rounds up to a whole smallest
    // float.
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build({{{1, 0, -1}, {-1, 1, 0}, {0, -1, 1}}, {{{0, 1, 2}}}}));
    const float smallest = std::numeric_limits<float>::denorm_min();
    const Point3 origin = {smallest, smallest, smallest};
    const SurfaceNeighbourhood ground(tree, origin, 1.0f);
    SurfaceRay ray;
    ray.Set(origin, -origin, 0.0f, 1.0f);
    EXPECT_TRUE(tree.Intersect(ray));
    EXPECT_LE(ground.ClearReach(origin), 2 * smallest);
}

TEST(SurfaceNeighbourhood, IsSureOfNothingWhereAWalkMayLeaveACubeBackwards) {
    // The centre by which the root's children are chosen and the wall between them part by a rounding on about every third
    // ground. A segment that starts there and hardly leaves the wall walks backwards, and meets the floor far behind its start.
    int met = 0;
    for (int i = 0; i < 200; ++i) {
        TriangleMesh mesh = OneLevelTriangle();
        for (Point3& p : mesh.verts) p.x += 300.0f + 7.3f * float(i);
        SurfaceTree tree;
        ASSERT_TRUE(tree.Build(mesh));
        const Box3& bound = tree.bound();
        const float wall = bound.pmin.x + (bound.pmax.x - bound.pmin.x) * 0.5f, centre = bound.Center().x;
        if (!(centre > wall)) continue;
        SurfaceRay ray;
        ray.Set({centre, -500.0f, 30.0f}, {1e-7f, 0.0f, 1.0f}, 0.0f, 1.0f);
        const SurfaceNeighbourhood ground(tree, ray.org, 1.1f);
        if (!tree.Intersect(ray)) continue;
        EXPECT_LT(ray.tmax, -20.0f);
        EXPECT_LE(ground.ClearReach(ray.org), 1.0f);
        ++met;
    }
    EXPECT_GT(met, 10);
}

TEST(SurfaceNeighbourhood, APlaceThatIsNoNumberMeetsNothing) {
    SurfaceTree tree;
    ASSERT_TRUE(tree.Build(OneLevelTriangle()));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const SurfaceNeighbourhood ground(tree, {nan, nan, nan}, 50.0f);
    SurfaceRay ray;
    ray.Set({nan, nan, nan}, {0, 0, -1}, 0.0f, 1.0f);
    EXPECT_FALSE(tree.Intersect(ray));
    EXPECT_FALSE(ground.ClearReach({nan, nan, nan}) < 0.0f);
}

}  // namespace
}  // namespace tavrik
