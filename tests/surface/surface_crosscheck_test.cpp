// The fast tree against the plain one, bit for bit, and against trying every triangle, on made and on real grounds.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "surface/surface_tree.h"
#include "tests/support/ground_meshes.h"
#include "tests/support/test_random.h"
#include "tests/surface/plain_surface_tree.h"

namespace tavrik {
namespace {

using test::PlainNode;
using test::PlainSurfaceTree;
using test::TestRandom;

std::string Digits(const SurfaceRay& ray) {
    return "org " + test::Digits(ray.org) + " dir " + test::Digits(ray.dir) + " up to " + test::Digits(ray.tmax);
}

SurfaceRay Between(const Point3& from, const Point3& to) {
    SurfaceRay ray;
    ray.Set(from, to - from, 0.0f, 1.0f);
    return ray;
}

// A ground in both forms, and where to ask it.
struct Ground {
    explicit Ground(const TriangleMesh& mesh) : plain(mesh) { EXPECT_TRUE(tree.Build(mesh)); }

    // A point on a random triangle.
    Point3 OnGround(TestRandom& random) const {
        const auto& corner = plain.triangles[std::size_t(random.Int(0, int(plain.triangles.size()) - 1))].corner;
        const float a = random.Between(0.0f, 1.0f), b = random.Between(0.0f, 1.0f - a);
        return corner[0] + (corner[1] - corner[0]) * a + (corner[2] - corner[0]) * b;
    }
    // A wheel's spoke near the ground.
    SurfaceRay Spoke(TestRandom& random) const {
        const float length = random.Between(0.0005f, 0.02f) * tree.bound().Width().x;
        const Box3 near{{-length, -length, -length}, {length, length, length}};
        const Point3 axle = OnGround(random) + random.PointIn(near) * 0.7f;
        return Between(axle, axle + random.PointIn(near));
    }
    // A segment across the cube, its ends now and then outside.
    SurfaceRay Across(TestRandom& random) const {
        const Point3 pad = tree.bound().Width() * 0.1f;
        const Box3 space{tree.bound().pmin - pad, tree.bound().pmax + pad};
        const Point3 from = random.PointIn(space);
        return Between(from, random.PointIn(space));
    }
    // A segment through a corner, an edge or a wall of some leaf, along an axis, a diagonal or anyhow.
    SurfaceRay AtWall(TestRandom& random) const {
        const Point3 ground = OnGround(random);
        const PlainNode* node = plain.root.get();
        for (int depth = random.Int(1, 16); depth > 0 && !node->isLeaf(); --depth) {
            node = node->child[(ground.x > node->centre.x ? 1 : 0) + (ground.y > node->centre.y ? 2 : 0) +
                               (ground.z > node->centre.z ? 4 : 0)]
                       .get();
        }
        Point3 at = node->box.Corner(unsigned(random.Int(0, 7)));
        const int kept = random.Int(1, 7);  // axes on which the segment meets the wall exactly
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if ((kept >> axis & 1) == 0) at[axis] = random.Between(node->box.pmin[axis], node->box.pmax[axis]);
        }
        const float length = (node->box.pmax.x - node->box.pmin.x) * random.Between(0.5f, 6.0f);
        Point3 dir = random.PointIn({{-length, -length, -length}, {length, length, length}});
        if (random.Int(0, 1) == 0) {
            const float dx = float(random.Int(-1, 1)), dy = float(random.Int(-1, 1));
            dir = Point3{dx, dy, float(random.Int(-1, 1))} * length;
        }
        SurfaceRay ray;
        ray.Set(random.Int(0, 2) == 0 ? at : at - dir * 0.5f, dir, 0.0f, 1.0f);
        return ray;
    }
    SurfaceRay AnySegment(TestRandom& random, int i) const {
        return i % 3 == 0 ? Spoke(random) : i % 3 == 1 ? Across(random) : AtWall(random);
    }

    PlainSurfaceTree plain;
    SurfaceTree tree;
};

void ExpectSameAnswersAsPlainTree(const Ground& ground, int leastHits) {
    TestRandom random(test::TestSeed(2026));
    int hits = 0;
    for (int i = 0; i < test::TestRounds(60'000); ++i) {
        const SurfaceRay ray = ground.AnySegment(random, i);
        SurfaceRay fast = ray, plain = ray;
        const bool found = ground.tree.Intersect(fast);
        ASSERT_EQ(found, ground.plain.Intersect(plain)) << Digits(ray);
        if (found) {
            ASSERT_EQ(fast.tmax, plain.tmax) << Digits(ray);
        }
        hits += found;
    }
    EXPECT_GE(hits, leastHits);
}

// How far the point of a hit lies from the nearest wall of its leaf, in roundings of the largest coordinate.
float RoundingsToWall(const Ground& ground, const Point3& q) {
    const PlainNode* node = ground.plain.root.get();
    while (!node->isLeaf()) {
        node =
            node->child[(q.x > node->centre.x ? 1 : 0) + (q.y > node->centre.y ? 2 : 0) + (q.z > node->centre.z ? 4 : 0)].get();
    }
    float nearest = 1e30f, largest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        nearest = std::min({nearest, std::fabs(q[axis] - node->box.pmin[axis]), std::fabs(q[axis] - node->box.pmax[axis])});
        largest = std::max({largest, std::fabs(ground.plain.bound.pmin[axis]), std::fabs(ground.plain.bound.pmax[axis])});
    }
    return nearest / (largest * 0x1p-24f);
}

// The walk may lose a hit whose point lies within a rounding of a wall between leaves, and only such a hit.
struct Lost {
    int asked = 0, hits = 0, lost = 0, lostOffWalls = 0;  // the last one only counts segments that don't aim at walls
    float furthest = 0;
};
Lost CountLostHits(const Ground& ground, int triangleTests) {
    TestRandom random(test::TestSeed(2027));
    Lost lost;
    const int rounds = std::min(40'000, triangleTests / int(ground.plain.triangles.size()));
    for (int i = 0; i < test::TestRounds(rounds); ++i) {
        const SurfaceRay ray = ground.AnySegment(random, i);
        SurfaceRay fast = ray, every = ray;
        const bool found = ground.tree.Intersect(fast), foundAtAll = ground.plain.IntersectEveryTriangle(every);
        ++lost.asked;
        lost.hits += foundAtAll;
        if (found == foundAtAll && (!found || fast.tmax == every.tmax)) continue;
        EXPECT_TRUE(foundAtAll) << Digits(ray);
        if (found) {
            EXPECT_GT(fast.tmax, every.tmax) << Digits(ray);
        }
        ++lost.lost;
        lost.lostOffWalls += i % 3 != 2;
        lost.furthest = std::max(lost.furthest, RoundingsToWall(ground, ray.dir * every.tmax + ray.org));
    }
    return lost;
}

void ExpectLostHitsOnlyAtWalls(const Ground& ground) {
    const Lost lost = CountLostHits(ground, 60'000'000);
    EXPECT_GT(lost.hits, lost.asked / 50);
    EXPECT_LE(lost.furthest, 4.0f);            // measured 1.7 at most
    EXPECT_LE(lost.lostOffWalls, 2);           // measured 0 of 26,000 to 40,000 a ground
    EXPECT_LE(lost.lost, 5 + lost.hits / 30);  // measured 1 hit in 96 at most; a third of the segments aim at walls
}

TEST(SurfaceTreeIntersect, HillsAnswerAsThePlainTree) { ExpectSameAnswersAsPlainTree(Ground(test::HillMesh(5000)), 20'000); }
TEST(SurfaceTreeIntersect, TerracesAnswerAsThePlainTree) {
    ExpectSameAnswersAsPlainTree(Ground(test::TerraceMesh(24, 50, 3)), 20'000);
}
TEST(SurfaceTreeIntersect, SliversAnswerAsThePlainTree) {
    ExpectSameAnswersAsPlainTree(Ground(test::SliverFanMesh(80, 500)), 20'000);
}
TEST(SurfaceTreeIntersect, DoublesAnswerAsThePlainTree) {
    ExpectSameAnswersAsPlainTree(Ground(test::WithDoubles(test::HillMesh(400, 900))), 20'000);
}
TEST(SurfaceTreeIntersect, AnswersAsThePlainTreeWhereWallsAreAsFineAsRounding) {
    TriangleMesh mesh = test::SliverFanMesh(16, 20);
    for (Point3& p : mesh.verts) p = p + Point3{3.0e5f, -7.0e5f, 1.0e5f};
    ExpectSameAnswersAsPlainTree(Ground(mesh), 1'000);
}

TEST(SurfaceTreeIntersect, LosesHitsOnHillsOnlyAtWalls) { ExpectLostHitsOnlyAtWalls(Ground(test::HillMesh(5000))); }
TEST(SurfaceTreeIntersect, LosesHitsOnTerracesOnlyAtWalls) { ExpectLostHitsOnlyAtWalls(Ground(test::TerraceMesh(24, 50, 3))); }
TEST(SurfaceTreeIntersect, LosesHitsOnSliversOnlyAtWalls) { ExpectLostHitsOnlyAtWalls(Ground(test::SliverFanMesh(80, 500))); }
TEST(SurfaceTreeIntersect, LosesHitsOnDoublesOnlyAtWalls) {
    ExpectLostHitsOnlyAtWalls(Ground(test::WithDoubles(test::HillMesh(400, 900))));
}

class RealGround : public testing::TestWithParam<const char*> {
 protected:
    void SetUp() override {
        TriangleMesh mesh;
        if (!test::ReadRealGround(GetParam(), mesh)) GTEST_SKIP() << "no " << GetParam() << " in " << test::DataFolder();
        ASSERT_FALSE(mesh.faces.empty());
        ground_ = std::make_unique<Ground>(mesh);
    }
    std::unique_ptr<Ground> ground_;
};

TEST_P(RealGround, AnswersAsThePlainTree) { ExpectSameAnswersAsPlainTree(*ground_, 10'000); }
TEST_P(RealGround, LosesHitsOnlyAtWalls) { ExpectLostHitsOnlyAtWalls(*ground_); }

INSTANTIATE_TEST_SUITE_P(SurfaceTreeIntersect, RealGround,
                         testing::Values("medium/bump.obj", "medium/multilayer-terrain.obj", "small/test_terrain_irregular.obj",
                                         "small/halfround_100mm.obj"));

}  // namespace
}  // namespace tavrik
