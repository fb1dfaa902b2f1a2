#include "samples/sample_ground.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "surface/surface_tree.h"

namespace tavrik::test {
namespace {

constexpr SampleGroundKind kKinds[] = {SampleGroundKind::Plane, SampleGroundKind::Kerb, SampleGroundKind::Hills,
                                       SampleGroundKind::Course};

/// Fowler, Noll and Vo's hash of all vertices and faces.
std::uint64_t Hash(const TriangleMesh& mesh) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    const auto add = [&](const void* data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) hash = (hash ^ static_cast<const unsigned char*>(data)[i]) * 0x100000001b3u;
    };
    add(mesh.verts.data(), mesh.verts.size() * sizeof(Point3));
    add(mesh.faces.data(), mesh.faces.size() * sizeof(MeshFace));
    return hash;
}

/// Height of the topmost ground, NaN where there is none.
double HeightAt(const SurfaceTree& surface, float x, float y) {
    SurfaceRay ray;
    ray.Set({x, y, 5000.0f}, {0.0f, 0.0f, -10000.0f}, 0.0f, 1.0f);
    return surface.Intersect(ray) ? 5000.0 - 10000.0 * double(ray.tmax) : std::numeric_limits<double>::quiet_NaN();
}

TEST(SampleGround, HasAboutAsManyTrianglesAsAskedFor) {
    for (const int wanted : {200, 20'000}) {
        for (const SampleGroundKind kind : {SampleGroundKind::Plane, SampleGroundKind::Kerb, SampleGroundKind::Hills}) {
            const double count = double(MakeSampleGround({kind, 300.0, wanted, 1}).faces.size());
            EXPECT_NEAR(count / wanted, 1.0, 0.25);
        }
    }
}

TEST(SampleGround, BuildsASurfaceOfEveryKind) {
    for (const SampleGroundKind kind : kKinds) {
        SurfaceTree surface;
        std::string problem;
        EXPECT_TRUE(surface.Build(MakeSampleGround({kind, 300.0, 20'000, 1}), {}, problem)) << problem;
    }
}

TEST(SampleGround, IsLevelWhereTheCarStarts) {
    for (const SampleGroundKind kind : kKinds) {
        SurfaceTree surface;
        ASSERT_TRUE(surface.Build(MakeSampleGround({kind, 300.0, 20'000, 1})));
        for (const float x : {-90.5f, 90.5f}) {
            for (const float y : {-201.5f, 199.5f}) EXPECT_NEAR(HeightAt(surface, x, y), 0.0, 2e-3);
        }
    }
}

TEST(SampleGround, StepsUpAtTheKerb) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(MakeSampleGround({SampleGroundKind::Kerb, 300.0, 20'000, 1})));
    EXPECT_NEAR(HeightAt(surface, 13, 1990), 0.0, 2e-3);
    EXPECT_NEAR(HeightAt(surface, 13, 2010), 12.0, 2e-3);
}

TEST(SampleGround, RollsByMetresAndHasNoCliffs) {
    const TriangleMesh mesh = MakeSampleGround({SampleGroundKind::Hills, 300.0, 20'000, 1});
    float low = 0, high = 0;
    double steepest = 0;
    for (const Point3& v : mesh.verts) {
        low = std::min(low, v.z);
        high = std::max(high, v.z);
    }
    for (const MeshFace& face : mesh.faces) {
        const Point3 n = Cross(mesh.verts[face.v[1]] - mesh.verts[face.v[0]], mesh.verts[face.v[2]] - mesh.verts[face.v[0]]);
        ASSERT_GT(n.z, 0.0f) << "faces run counter-clockwise seen from above";
        steepest = std::max(steepest, std::hypot(double(n.x), double(n.y)) / double(n.z));
    }
    EXPECT_GT(high - low, 300.0f);
    EXPECT_LT(steepest, 0.6);
}

TEST(SampleGround, RaisesTheBumpsOfTheCourseAboveTheHills) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(MakeSampleGround({SampleGroundKind::Course, 300.0, 20'000, 1})));
    double highest = 0;
    for (float y = 1380; y < 1520; y += 1.3f) highest = std::max(highest, HeightAt(surface, 31.7f, y));
    EXPECT_NEAR(highest, 7.0, 0.2);
}

TEST(SampleGround, ChangesItsHillsWithTheSeed) {
    EXPECT_NE(Hash(MakeSampleGround({SampleGroundKind::Hills, 300.0, 2'000, 1})),
              Hash(MakeSampleGround({SampleGroundKind::Hills, 300.0, 2'000, 2})));
}

// Only additions, products, quotients and square roots go into a ground, so no library and no compiler moves these bits.
TEST(SampleGround, IsTheSameBitForBit) {
    EXPECT_EQ(Hash(MakeSampleGround({SampleGroundKind::Course, 300.0, 20'000, 1})), 5618831146220213004u);
}

}  // namespace
}  // namespace tavrik::test
