// The query on small grounds whose answer can be told by hand, and on rays that are no proper segments.

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "surface/surface_tree.h"
#include "tests/support/ground_meshes.h"
#include "tests/support/test_random.h"
#include "tests/surface/plain_surface_tree.h"

namespace tavrik {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

SurfaceRay Ray(const Point3& org, const Point3& dir, float tmin = 0.0f, float tmax = 1.0f) {
    SurfaceRay ray;
    ray.Set(org, dir, tmin, tmax);
    return ray;
}

SurfaceTree BuiltTree(const TriangleMesh& mesh) {
    SurfaceTree tree;
    EXPECT_TRUE(tree.Build(mesh));
    return tree;
}

// A level square of side 100 at height 8, and two single vertices that make the cube reach from about 0 to 128.
TriangleMesh LevelGround() {
    return {{{0, 0, 8}, {100, 0, 8}, {100, 100, 8}, {0, 100, 8}, {0, 0, 0}, {128, 128, 128}}, {{{0, 1, 2}}, {{0, 2, 3}}}};
}

TEST(SurfaceTreeIntersect, TellsWhereASegmentMeetsTheGround) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 12}, {0, 0, -16});
    ASSERT_TRUE(tree.Intersect(ray));
    EXPECT_EQ(ray.tmax, 0.25f);
}

TEST(SurfaceTreeIntersect, BothSidesAreSolid) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 4}, {0, 0, 16});
    ASSERT_TRUE(tree.Intersect(ray));
    EXPECT_EQ(ray.tmax, 0.25f);
}

TEST(SurfaceTreeIntersect, SegmentThatEndsShortOfTheGroundMisses) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 100}, {5, 5, -91});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, SegmentThatEndsOnATriangleHitsAtOne) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 16}, {0, 0, -8});
    ASSERT_TRUE(tree.Intersect(ray));
    EXPECT_EQ(ray.tmax, 1.0f);
}

TEST(SurfaceTreeIntersect, SegmentThatStartsOnATriangleHitsAtZero) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 8}, {0, 0, 8});
    ASSERT_TRUE(tree.Intersect(ray));
    EXPECT_EQ(ray.tmax, 0.0f);
}

TEST(SurfaceTreeIntersect, RayInThePlaneOfATriangleMisses) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({10, 20, 8}, {40, 3, 0});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, SegmentThatLeavesTheCubeMisses) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 60}, {0, 0, 500});
    EXPECT_FALSE(tree.Intersect(ray));
    ray = Ray({30, 20, 60}, {900, 800, 0});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, SegmentFromOutsideIsCutToTheCube) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({30, 20, 1032}, {0, 0, -2048});
    ASSERT_TRUE(tree.Intersect(ray));
    EXPECT_EQ(ray.tmax, 0.5f);
    ray = Ray({-900, 20, 4}, {0, 0, 16});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, SegmentThatOnlyGrazesTheCubeMisses) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    SurfaceRay ray = Ray({tree.bound().pmin.x - 8, 20, 8}, {8, 0, 0});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, NearestOfSeveralFloorsWins) {
    TriangleMesh mesh = LevelGround();
    for (const float z : {40.0f, 24.0f, 72.0f}) {
        const std::uint32_t first = std::uint32_t(mesh.verts.size());
        mesh.verts.insert(mesh.verts.end(), {{0, 0, z}, {100, 0, z}, {100, 100, z}, {0, 100, z}});
        mesh.faces.insert(mesh.faces.end(), {{{first, first + 1, first + 2}}, {{first, first + 2, first + 3}}});
    }
    const SurfaceTree tree = BuiltTree(mesh);
    SurfaceRay down = Ray({60, 20, 88}, {0, 0, -128}), up = Ray({60, 20, 16}, {0, 0, 64});
    ASSERT_TRUE(tree.Intersect(down));
    EXPECT_EQ(down.tmax, 0.125f);
    ASSERT_TRUE(tree.Intersect(up));
    EXPECT_EQ(up.tmax, 0.125f);
}

TEST(SurfaceTreeIntersect, NearestOfSeveralTrianglesInOneLeafWins) {
    // So close together that no wall parts them before the sixteenth level.
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {1024, 1024, 1024}};
    for (int i = 0; i < 40; ++i) {
        const float z = 300.0f + 0.0001f * float((i * 17) % 40);
        const std::uint32_t first = std::uint32_t(mesh.verts.size());
        mesh.verts.insert(mesh.verts.end(), {{300, 300, z}, {300.002f, 300, z}, {300, 300.002f, z}});
        mesh.faces.push_back({{first, first + 1, first + 2}});
    }
    const SurfaceTree tree = BuiltTree(mesh);
    const test::PlainSurfaceTree plain(mesh);
    SurfaceRay ray = Ray({300.0004f, 300.0004f, 301}, {0, 0, -2}), all = ray;
    ASSERT_TRUE(tree.Intersect(ray));
    ASSERT_TRUE(plain.IntersectEveryTriangle(all));
    EXPECT_EQ(ray.tmax, all.tmax);
}

TEST(SurfaceTreeIntersect, TriangleWithoutAreaIsNeverHit) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {50, 50, 50}, {100, 100, 100}};
    mesh.faces = {{{0, 1, 2}}};
    const SurfaceTree tree = BuiltTree(mesh);
    test::TestRandom random(test::TestSeed(31));
    for (int i = 0; i < test::TestRounds(1'000); ++i) {
        const float at = random.Between(1.0f, 99.0f);
        const Point3 from = random.PointIn(tree.bound());
        SurfaceRay ray = Ray(from, (Point3{at, at, at} - from) * 2.0f);
        ASSERT_FALSE(tree.Intersect(ray)) << test::Digits(from);
    }
}

TEST(SurfaceTreeIntersect, TriangleWhoseProductUnderflowsIsNeverHit) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {1e-12f, 0, 0}, {0, 1e-12f, 0}};
    mesh.faces = {{{0, 1, 2}}};
    const SurfaceTree tree = BuiltTree(mesh);
    SurfaceRay ray = Ray({1e-13f, 1e-13f, 5e-13f}, {0, 0, -1e-12f});
    EXPECT_FALSE(tree.Intersect(ray));
}

TEST(SurfaceTreeIntersect, MeshWithoutFacesIsNeverHit) {
    const SurfaceTree tree = BuiltTree({{{0, 0, 0}, {100, 100, 100}}, {}});
    SurfaceRay ray = Ray({-50, 50, 50}, {500, 1, 1});
    EXPECT_FALSE(tree.Intersect(ray));
    const SurfaceTree empty = BuiltTree({});
    ray = Ray({0, 0, 0}, {1, 1, 1});
    EXPECT_FALSE(empty.Intersect(ray));
}

TEST(SurfaceTreeIntersect, SegmentOfNoLengthMisses) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    for (const float tmax : {1.0f, 1e30f, kInfinity}) {
        SurfaceRay ray = Ray({30, 20, 8}, {0, 0, 0}, 0.0f, tmax);
        EXPECT_FALSE(tree.Intersect(ray));
    }
}

TEST(SurfaceTreeIntersect, RaysAlongSplitPlanesEnd) {
    const TriangleMesh mesh = test::HillMesh(2000);
    const SurfaceTree tree = BuiltTree(mesh);
    const test::PlainSurfaceTree plain(mesh);
    const Point3 centre = plain.root->centre, wall = plain.root->child[0]->box.pmax;
    for (const Point3& on : {centre, wall}) {
        for (const Point3& dir :
             {Point3{9000, 0, 0}, {-9000, 0, 0}, {0, 9000, 0}, {0, 0, -9000}, {9000, -9000, 0}, {9000, 9000, 9000}}) {
            SurfaceRay fast = Ray(on, dir), slow = fast;
            const bool found = tree.Intersect(fast);
            ASSERT_EQ(found, plain.Intersect(slow));
            if (found) {
                ASSERT_EQ(fast.tmax, slow.tmax);
            }
        }
    }
}

TEST(SurfaceTreeIntersect, RayWithAnyNaNHitsNothing) {
    const SurfaceTree tree = BuiltTree(LevelGround());
    for (int place = 0; place < 8; ++place) {
        for (const bool fromOutside : {false, true}) {
            SurfaceRay ray = Ray({30, 20, fromOutside ? 1032.0f : 12.0f}, {1, 2, fromOutside ? -2048.0f : -16.0f});
            SurfaceRay whole = ray;
            ASSERT_TRUE(tree.Intersect(whole));
            if (place < 3) ray.org[std::size_t(place)] = kNaN;
            if (place >= 3 && place < 6) ray.dir[std::size_t(place - 3)] = kNaN;
            if (place == 6) ray.tmin = kNaN;
            if (place == 7) ray.tmax = kNaN;
            EXPECT_FALSE(tree.Intersect(ray)) << place;
        }
    }
}

TEST(SurfaceTreeIntersect, EndsForEveryMixtureOfExtremeNumbersAsThePlainWalkDoes) {
    const TriangleMesh mesh = test::HillMesh(60, 400);
    const SurfaceTree tree = BuiltTree(mesh);
    const test::PlainSurfaceTree plain(mesh);
    const float extremes[] = {0.0f,   -0.0f,   1.0f,  -30.0f, 1e-38f,    -1e-38f,    1e-45f,
                              1e-29f, -1e-28f, 1e30f, -1e38f, kInfinity, -kInfinity, kNaN};
    test::TestRandom random(test::TestSeed(32));
    const auto pick = [&] { return extremes[random.Int(0, int(std::size(extremes)) - 1)]; };
    int endless = 0;
    for (int i = 0; i < test::TestRounds(20'000); ++i) {
        const float ox = pick(), oy = pick(), oz = pick(), dx = pick(), dy = pick(), dz = pick();
        SurfaceRay fast =
            Ray({ox, oy, oz}, {dx, dy, dz}, random.Int(0, 3) == 0 ? pick() : 0.0f, random.Int(0, 1) == 0 ? kInfinity : pick());
        const SurfaceRay asked = fast;
        SurfaceRay slow = fast;
        const bool found = tree.Intersect(fast);
        if (i % 64 != 0 && asked.tmax > 1e29f) continue;  // a plain walk in circles takes its million steps
        int steps = 0;
        const bool plainFound = plain.Intersect(slow, &steps);
        if (steps > test::PlainSurfaceTree::kMostSteps) {
            ++endless;
            ASSERT_FALSE(found);
            continue;
        }
        ASSERT_EQ(found, plainFound) << test::Digits(asked.org) << test::Digits(asked.dir);
        if (found) {
            ASSERT_EQ(fast.tmax, slow.tmax);
        }
    }
    EXPECT_GT(endless, 0);  // there are rays on which the plain walk goes in circles
}

TEST(SurfaceTreeIntersect, ManyThreadsMayAskAtOnce) {
    const SurfaceTree tree = BuiltTree(test::HillMesh(2000));
    const auto count = [&tree] {
        test::TestRandom random(33);
        int hits = 0;
        for (int i = 0; i < 2'000; ++i) {
            const Point3 from = random.PointIn(tree.bound());
            SurfaceRay ray = Ray(from, random.PointIn(tree.bound()) - from);
            hits += tree.Intersect(ray);
        }
        return hits;
    };
    const int expected = count();
    std::vector<int> hits(4);
    std::vector<std::thread> threads;
    for (int& h : hits) threads.emplace_back([&h, &count] { h = count(); });
    for (std::thread& thread : threads) thread.join();
    for (const int h : hits) EXPECT_EQ(h, expected);
}

}  // namespace
}  // namespace tavrik
