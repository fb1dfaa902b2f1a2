#include "host/car_placement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "samples/sample_ground.h"

namespace tavrik::test {
namespace {

constexpr DPoint3 kWheels[] = {{-76, 132, 0}, {76, 132, 0}, {-76, -138, 0}, {76, -138, 0}};
constexpr double kStanding = 51.0;

/// A square of 100 m with height `slope` * y.
TriangleMesh Ramp(float slope) {
    const float side = 5000.0f;
    TriangleMesh mesh;
    for (const float y : {-side, side}) {
        for (const float x : {-side, side}) mesh.verts.push_back({x, y, y * slope});
    }
    mesh.faces = {{{0, 1, 3}}, {{0, 3, 2}}};
    return mesh;
}

DMatrix3 Stand(const TriangleMesh& mesh, const CarSpot& spot) {
    SurfaceTree surface;
    EXPECT_TRUE(surface.Build(mesh));
    DMatrix3 frame = IdentityDMatrix3();
    std::string problem;
    EXPECT_TRUE(StandOnGround(surface, spot, kWheels, kStanding, frame, problem)) << problem;
    return frame;
}

TEST(StandOnGround, PutsTheCarLevelOnAPlane) {
    const DMatrix3 frame = Stand(Ramp(0), {100, 200, 0});
    EXPECT_NEAR(frame.row[3].x, 100, 1e-9);
    EXPECT_NEAR(frame.row[3].y, 200, 1e-9);
    EXPECT_NEAR(frame.row[3].z, kStanding, 1e-2);
    EXPECT_NEAR(frame.row[1].y, 1.0, 1e-9);
}

TEST(StandOnGround, TurnsClockwiseFromTheYAxis) {
    const DMatrix3 frame = Stand(Ramp(0), {0, 0, 90});
    EXPECT_NEAR(frame.row[1].x, 1.0, 1e-9);   // the front looks along +X
    EXPECT_NEAR(frame.row[0].y, -1.0, 1e-9);  // and the right side along -Y
}

TEST(StandOnGround, LeansWithASlope) {
    const DMatrix3 frame = Stand(Ramp(0.3f), {0, 0, 0});
    EXPECT_NEAR(frame.row[1].z / frame.row[1].y, 0.3, 1e-4);
    EXPECT_NEAR(Dot(frame.row[0], frame.row[1]), 0.0, 1e-12);
    EXPECT_NEAR(Dot(Cross(frame.row[0], frame.row[1]), frame.row[2]), 1.0, 1e-12);
    EXPECT_NEAR(Dot(frame.row[3], frame.row[2]), kStanding, 0.05);  // above the slope, not above the level
    const DMatrix3 across = Stand(Ramp(0.3f), {0, 0, 90});
    EXPECT_NEAR(across.row[0].z / across.row[0].y, 0.3, 1e-4);
}

TEST(StandOnGround, StaysLevelOverAnEdge) {
    const DMatrix3 frame = Stand(Ramp(0.3f), {0, 4950, 0});  // the front wheels are beyond the ground
    EXPECT_EQ(frame.row[2].z, 1.0);
    EXPECT_GT(frame.row[3].z, kStanding + 0.3 * 4900);
}

TEST(StandOnGround, StaysLevelOnAWall) { EXPECT_EQ(Stand(Ramp(1.5f), {0, 0, 0}).row[2].z, 1.0); }

TEST(StandOnGround, RefusesASpotWithoutGround) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(Ramp(0)));
    DMatrix3 frame;
    std::string problem;
    EXPECT_FALSE(StandOnGround(surface, {6000, 0, 0}, kWheels, kStanding, frame, problem));
    EXPECT_EQ(problem,
              "there is no ground at x 60 m, y 0 m to put the car on; it lies within x -50.0 to 50.0 m, y -50.0 to 50.0 m");
}

TEST(MiddleOfGround, IsTheMiddleOfTheBoxWhereThereIsGround) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(MakeSampleGround({SampleGroundKind::Hills, 100, 800, 1})));
    const CarSpot spot = MiddleOfGround(surface);
    EXPECT_EQ(spot.x, 0.0);
    EXPECT_EQ(spot.y, 0.0);
}

TEST(MiddleOfGround, FindsGroundBesideAHole) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {1000, 0, 0}, {0, 1000, 0}, {5000, 5000, 0}, {5100, 5000, 0}, {5000, 5100, 0}};
    mesh.faces = {{{0, 1, 2}}, {{3, 4, 5}}};
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(mesh));
    const CarSpot spot = MiddleOfGround(surface);
    double z = 1;
    EXPECT_TRUE(GroundBelow(surface, spot.x, spot.y, z));
    EXPECT_NEAR(z, 0.0, 1e-2);
}

}  // namespace
}  // namespace tavrik::test
