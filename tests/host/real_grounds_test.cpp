#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "host/mesh_import.h"
#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

/// Meshes that others made, with their triangles counted by other tools.
struct RealMesh {
    const char* file;
    std::size_t triangles;
};

std::string NameOf(const testing::TestParamInfo<RealMesh>& test) {
    std::string name = std::filesystem::path(test.param.file).stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

class RealGrounds : public testing::TestWithParam<RealMesh> {};

TEST_P(RealGrounds, ComeInWithAllTheirTriangles) {
    const std::filesystem::path file = std::filesystem::path(DataFolder()) / GetParam().file;
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no real input data at " << DataFolder();
    TriangleMesh ground;
    std::string problem;
    ASSERT_TRUE(ReadGround(file, {}, ground, problem)) << problem;
    EXPECT_EQ(ground.faces.size(), GetParam().triangles);
}

INSTANTIATE_TEST_SUITE_P(
    Files, RealGrounds,
    testing::Values(RealMesh{"ground/small/test_terrain_irregular.obj", 187}, RealMesh{"ground/small/halfround_100mm.obj", 44},
                    RealMesh{"ground/small/track-corner.glb", 1136}, RealMesh{"ground/small/track-bump.glb", 166},
                    RealMesh{"ground/small/track-straight.glb", 106}, RealMesh{"ground/medium/bump.obj", 7938},
                    RealMesh{"ground/medium/bump_YUP.obj", 7938}, RealMesh{"ground/medium/multilayer-terrain.obj", 22797},
                    RealMesh{"ground/medium/town_geometry.glb", 30477}, RealMesh{"cars/milk_truck/CesiumMilkTruck.glb", 3624},
                    RealMesh{"cars/sedan/sedan_assembled.glb", 75314}, RealMesh{"cars/sedan/sedan_chassis_vis.obj", 39170}),
    &NameOf);

TEST(RealGround, IsTheSameFromAZUpAndAYUpFile) {
    const std::filesystem::path folder = std::filesystem::path(DataFolder()) / "ground/medium";
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no real input data at " << DataFolder();
    TriangleMesh zUp, yUp;
    std::string problem;
    ASSERT_TRUE(ReadGround(folder / "bump.obj", {}, zUp, problem)) << problem;
    GroundImport import;
    import.up = UpAxis::Y;
    ASSERT_TRUE(ReadGround(folder / "bump_YUP.obj", import, yUp, problem)) << problem;
    ASSERT_EQ(zUp.faces.size(), yUp.faces.size());
    ASSERT_EQ(zUp.verts.size(), yUp.verts.size());
    // The two files list the same posts, 101.6 apart, in another order.
    const auto post = [](const Point3& v) { return std::pair(std::lround(v.x / 50.0f), std::lround(v.y / 50.0f)); };
    std::map<std::pair<long, long>, float> heights;
    for (const Point3& v : yUp.verts) heights[post(v)] = v.z;
    ASSERT_EQ(heights.size(), yUp.verts.size());
    for (const Point3& v : zUp.verts) {
        ASSERT_TRUE(heights.contains(post(v))) << v.x << " " << v.y;
        ASSERT_NEAR(double(heights[post(v)]), double(v.z), 1e-3);
    }
}

TEST(RealGround, OfATileHasTheSizeThatItsNodesScaleItTo) {
    const std::filesystem::path file = std::filesystem::path(DataFolder()) / "ground/small/track-bump.glb";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no real input data at " << DataFolder();
    TriangleMesh ground;
    std::string problem;
    ASSERT_TRUE(ReadGround(file, {}, ground, problem)) << problem;
    Box3 box = EmptyBox3();
    for (const Point3& v : ground.verts) box.Include(v);
    EXPECT_NEAR(double(box.Width().x), 340.0, 10.0);
    EXPECT_NEAR(double(box.Width().y), 340.0, 10.0);
}

}  // namespace
}  // namespace tavrik::test
