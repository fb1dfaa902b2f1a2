#include "samples/road_ground.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "surface/surface_tree.h"

namespace tavrik::test {
namespace {

double HeightAt(const SurfaceTree& surface, double x, double y) {
    SurfaceRay ray;
    ray.Set({float(x * 100), float(y * 100), 5000.0f}, {0.0f, 0.0f, -10000.0f}, 0.0f, 1.0f);
    return surface.Intersect(ray) ? 50.0 - 100.0 * double(ray.tmax) : std::numeric_limits<double>::quiet_NaN();
}

TriangleMesh Made(const RoadLine& line, const RoadGround& wanted) {
    TriangleMesh mesh;
    std::string problem;
    EXPECT_TRUE(MakeRoadGround(line, wanted, mesh, problem)) << problem;
    return mesh;
}

TEST(SampleCircuit, ClosesOnItself) {
    const RoadLine circuit = SampleCircuit();
    ASSERT_TRUE(circuit.closed);
    // The way back to the origin is the rest of the straight that the lap begins on.
    EXPECT_NEAR(circuit.points.back().x, 0.0, 1e-9);
    EXPECT_NEAR(circuit.points.back().y, -43.75, 1e-9);
    EXPECT_NEAR(LengthOf(circuit), 985.9, 0.5);
}

TEST(SampleCircuit, TurnsNowhereTighterThanACarCan) {
    const RoadLine circuit = SampleCircuit();
    for (std::size_t i = 0; i < circuit.Pieces(); ++i) EXPECT_GT(Distance(circuit.points[i], circuit.EndOf(i)), 3.0);
}

TEST(RoadGround, CoversRoadAndVergeAlongTheWholeLine) {
    const RoadLine line = SampleCircuit();
    for (const double hills : {0.0, 6.0}) {
        SurfaceTree surface;
        ASSERT_TRUE(surface.Build(Made(line, {.bankPercent = 4, .hillMetres = hills})));
        for (const RoadPoint& p : Divided(line, 3.0).points) {
            for (const double aside : {-15.0, 0.0, 15.0}) {
                EXPECT_TRUE(std::isfinite(HeightAt(surface, p.x + aside, p.y))) << p.x << ' ' << p.y;
            }
        }
    }
}

TEST(RoadGround, IsLevelWithoutHillsAndBank) {
    for (const Point3& v : Made(SampleCircuit(), {}).verts) ASSERT_EQ(v.z, 0.0f);
}

TEST(RoadGround, LeansIntoCurvesToBothSides) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(Made(SampleCircuit(), {.bankPercent = 10})));
    // The middle of the first curve, which turns right about (37.5, 175), and of the third, which turns left about (162.5,
    // 162.5).
    const auto slope = [&](RoadPoint middle, double radius, RoadPoint way) {
        const double r = std::sqrt(0.5);
        const double outer = HeightAt(surface, middle.x + way.x * (radius + 3) * r, middle.y + way.y * (radius + 3) * r);
        const double inner = HeightAt(surface, middle.x + way.x * (radius - 3) * r, middle.y + way.y * (radius - 3) * r);
        return (outer - inner) / 6.0;
    };
    EXPECT_NEAR(slope({37.5, 175.0}, 37.5, {-1, 1}), 0.10, 0.02);  // outside is up
    EXPECT_NEAR(slope({162.5, 162.5}, 25.0, {-1, -1}), 0.10, 0.03);
    EXPECT_NEAR(HeightAt(surface, 3.0, 80.0) - HeightAt(surface, -3.0, 80.0), 0.0, 1e-3);  // and straights are level
}

TEST(RoadGround, TheRoadIsLevelAcrossWhereTheLandIsHilly) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(Made(SampleCircuit(), {.hillMetres = 10})));
    double lowest = 100.0, highest = -100.0;
    for (double y = 10.0; y < 165.0; y += 5.0) {
        EXPECT_NEAR(HeightAt(surface, -2.5, y), HeightAt(surface, 2.5, y), 0.02);
        lowest = std::min(lowest, HeightAt(surface, 0.0, y));
        highest = std::max(highest, HeightAt(surface, 0.0, y));
    }
    EXPECT_GT(highest - lowest, 0.5);
}

TEST(RoadGround, AnOpenLineHasEnds) {
    const RoadLine line{{{0, 0}, {100, 0}}, false};
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(Made(line, {})));
    EXPECT_TRUE(std::isfinite(HeightAt(surface, -10.0, 0.0)));
    EXPECT_FALSE(std::isfinite(HeightAt(surface, -60.0, 0.0)));
}

TEST(RoadGround, ALineAsLargeAsACountryIsRefused) {
    TriangleMesh mesh;
    std::string problem;
    EXPECT_FALSE(MakeRoadGround({{{-1e4, -1e4}, {1e4, 1e4}}, false}, {}, mesh, problem));
    EXPECT_NE(problem.find("20 x 20 km"), std::string::npos) << problem;
}

}  // namespace
}  // namespace tavrik::test
