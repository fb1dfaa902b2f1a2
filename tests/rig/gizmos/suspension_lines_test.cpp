#include "rig/gizmos/suspension_lines.h"

#include <cmath>

#include "rig/gizmos/wishbone_lines.h"
#include "rig/suspension_unit.h"
#include "tests/rig/gizmos/gizmo_support.h"

namespace gizmo_test {
namespace {

using namespace tavrik;

constexpr float kLength = 50.0f;

bool Fits(const GizmoLines& lines, float length) {
    const Box3 bound{{-length, -length, -length}, {length, length, length}};
    return bound.Contains(BoxOf(lines));
}

TEST(HubCarrierLines, AreMountsARingAShaftWithTwoJointsAndAnArrow) {
    const GizmoLines lines = HubCarrierLines(kLength);
    constexpr std::size_t kMounts = 4 * 3 * 20, kRing = 80, kBalls = 2 * 3 * 40, kStrips = 5 + 3, kRings = 2 * 20;
    ASSERT_EQ(lines.size(), kMounts + kRing + kBalls + kStrips + kRings + 4 + 1 + 4);
    EXPECT_TRUE(IsChain(lines, kMounts, kRing));
    for (std::size_t i = kMounts; i < kMounts + kRing; ++i) EXPECT_NEAR(Length(lines[i].to), 7.5f, 1e-4f);
    for (std::size_t i = 0; i < kBalls; ++i) {
        const Point3 middle{0, 0, i < kBalls / 2 ? 10.0f : -20.0f};
        EXPECT_NEAR(Length(lines[kMounts + kRing + i].to - middle), 3.0f, 1e-4f);
    }
}

TEST(HubCarrierLines, ItsArrowReachesAFifthOfTheLengthOutward) {
    const GizmoLines lines = HubCarrierLines(kLength);
    EXPECT_EQ(CountLines(lines, {0, 0, 0}, {0, 0, 10}), 1);
    for (const Point3& head : {Point3{2.5f, 0, 7.5f}, Point3{-2.5f, 0, 7.5f}, Point3{0, 2.5f, 7.5f}, Point3{0, -2.5f, 7.5f}}) {
        EXPECT_EQ(CountLines(lines, head, {0, 0, 10}), 1);
    }
}

TEST(HubCarrierLines, GrowWithTheLength) {
    const GizmoLines small = HubCarrierLines(1), large = HubCarrierLines(64);
    ASSERT_EQ(small.size(), large.size());
    for (std::size_t i = 0; i < small.size(); ++i) EXPECT_TRUE(Near(small[i].to * 64.0f, large[i].to)) << i;
}

TEST(SuspensionReach, AnIdleWishboneReachesFromTheBodyToTheWheel) {
    const SuspensionReach reach = IdleReach(kWishbone, kLength);
    EXPECT_EQ(reach.from, (Point3{0, 0, -50}));
    EXPECT_EQ(reach.to, (Point3{0, 0, 0}));
}

TEST(SuspensionReach, AnIdleStrutStandsAtTheOrigin) {
    const SuspensionReach reach = IdleReach(kTelescopic, kLength);
    EXPECT_EQ(reach.from, (Point3{0, 0, 0}));
    EXPECT_EQ(reach.to, (Point3{0, 0, 0}));
}

TEST(MovingPartLines, AStrutIsTwoDrumsAtEitherEndOfItsTravel) {
    const GizmoLines lines = MovingPartLines(kTelescopic, kLength, IdleReach(kTelescopic, kLength));
    EXPECT_TRUE(IsChain(lines, 0, 40));
    for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(lines[i].to.x, 50.0f);
    EXPECT_TRUE(IsChain(lines, 44, 60));
    for (std::size_t i = 44; i < 104; ++i) EXPECT_EQ(lines[i].to.x, -50.0f);
    EXPECT_TRUE(Fits(lines, kLength));
}

TEST(MovingPartLines, ALiveStrutIsDrawnOutByItsTravel) {
    const GizmoLines lines = MovingPartLines(kTelescopic, kLength, LiveReach({7, 0, -3}));
    EXPECT_EQ(lines[0].from.x, 57.0f);
    EXPECT_EQ(lines[0].from.y, 0.0f);  // whatever the axle's length is, it stands upright over the object
    EXPECT_EQ(lines[44].from.x, -50.0f);
}

TEST(MovingPartLines, WishbonesFitTheBoxOfTheirObject) {
    const GizmoLines lines = MovingPartLines(kWishbone, kLength, IdleReach(kWishbone, kLength));
    const Box3 box = BoxOf(lines);
    EXPECT_GT(box.pmin.x, -50.0f);
    EXPECT_LT(box.pmax.x, 50.0f);
    EXPECT_GT(box.pmin.y, -50.0f);
    EXPECT_LT(box.pmax.y, 50.0f);
    EXPECT_LT(box.pmax.z, 50.0f);
    EXPECT_GT(box.pmin.z, -50.0f - 0.1f * kLength);  // the bushes are as thick as they are
}

TEST(MovingPartLines, LiveWishbonesLookLikeIdleOnesInTheSamePlace) {
    // Idle ones are drawn from the body, live ones from the wheel.
    const GizmoLines idle = MovingPartLines(kWishbone, kLength, IdleReach(kWishbone, kLength));
    const GizmoLines live = MovingPartLines(kWishbone, kLength, LiveReach({0, 0, -kLength}));
    ASSERT_EQ(idle.size(), live.size());
    for (std::size_t i = 0; i < idle.size(); ++i) {
        EXPECT_EQ(idle[i].from, live[i].from);
        EXPECT_EQ(idle[i].to, live[i].to);
    }
}

TEST(MovingPartLines, ALiveWishboneEndsAtTheBody) {
    const Point3 body{8, 1, -47};
    const GizmoLines lines = MovingPartLines(kWishbone, kLength, LiveReach(body));
    const Box3 box = BoxOf(lines);
    EXPECT_LT(box.pmin.z, -47.0f);
    EXPECT_GT(box.pmin.z, -47.0f - 0.2f * kLength);
    EXPECT_GT(box.pmax.z, 0.0f);
}

TEST(MovingPartLines, OfNoLengthCollapseToAPoint) {
    for (const std::int32_t type : {kWishbone, kTelescopic}) {
        EXPECT_TRUE(IsPoint(MovingPartLines(type, 0, IdleReach(type, 0)), {0, 0, 0}));
    }
    EXPECT_TRUE(IsPoint(HubCarrierLines(0), {0, 0, 0}));
}

TEST(WishboneLines, CountTheirCurvesLinesEyesBushesAndTubes) {
    GizmoLines lines;
    constexpr std::size_t n = 10;
    DrawWishbone(lines, {0, 0, -50}, {0, 0, 0}, 50, int(n));
    EXPECT_EQ(lines.size(), 20 * n + 16 + 8 * n + 9 * n + 2 * (2 * n + 4));
}

TEST(WishboneLines, AreTheSameOnBothSidesAndFaces) {
    GizmoLines lines;
    DrawWishbone(lines, {0, 0, -50}, {0, 0, 0}, 50, 10);
    const Box3 box = BoxOf(lines);
    EXPECT_NEAR(box.pmin.y, -box.pmax.y, 1e-4f);
    EXPECT_NEAR(box.pmin.x, -box.pmax.x, 1e-4f);
    EXPECT_GT(box.pmax.y, kWishboneHalfPivot * 50);  // wide at the pivot
    EXPECT_NEAR(box.pmax.z, 5.0f, 1e-4f);            // the eye reaches beyond the joint
}

TEST(WishboneLines, StayFiniteWhereTheyHaveNoDirection) {
    for (const Point3& joint : {Point3{0, 0, 0}, Point3{50, 0, 0}}) {
        GizmoLines lines;
        DrawWishbone(lines, {0, 0, 0}, joint, 50, 10);
        for (const GizmoLine& line : lines) EXPECT_TRUE(std::isfinite(Length(line.to)) && std::isfinite(Length(line.from)));
    }
}

}  // namespace
}  // namespace gizmo_test
