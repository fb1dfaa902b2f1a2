#include "tracks/track_trail.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/tracks/rolled_wheel.h"

namespace tavrik {
namespace {

using test::Ask;
using test::LockedWheels;
using test::Roll;
using test::TrailOf;

TrackParams Visible() { return {1.0f, 1.0f, 20, 1.0f, 1.0f}; }

TEST(TrackTrail, WithoutARecordingIsNotBuilt) {
    EXPECT_EQ(TrailOf(CarRig())->built, 0u);
    const auto locked = LockedWheels();
    EXPECT_EQ(TrailOf(*locked)->built, 0u);  // the pose of the assembly alone
}

TEST(TrackTrail, BuiltAnewFromNothingForgetsWhatItHeld) {
    const auto rig = LockedWheels();
    Roll(*rig, 20, 20.0);
    TrackTrail trail;
    std::string notice;
    trail.Build(*rig, notice);
    ASSERT_EQ(trail.built, 1u);
    rig->ResetMotion();
    trail.Build(*rig, notice);
    EXPECT_EQ(trail.built, 0u);
    EXPECT_TRUE(trail.segments.empty());
}

TEST(TrackTrail, ReleaseEmptiesIt) {
    const auto rig = LockedWheels();
    Roll(*rig, 20, 20.0);
    const auto trail = TrailOf(*rig);
    trail->Release();
    EXPECT_EQ(trail->built, 0u);
    EXPECT_EQ(trail->Bytes(), 0u);
}

TEST(TrackTrail, AWheelAtRestLeavesNoSegmentAndOnlyWhite) {
    const auto rig = LockedWheels();
    Roll(*rig, 100, 0.0);
    const auto trail = TrailOf(*rig);
    EXPECT_EQ(trail->built, 1u);
    EXPECT_EQ(trail->count, 0);
    ASSERT_TRUE(trail->root.IsLeaf());
    const auto answer = Ask(*trail, {0, 0, -29.0f}, 100'000, Visible());
    EXPECT_EQ(answer.value, 1.0f);
    EXPECT_EQ(LengthSquared(answer.bump), 0.0f);
}

TEST(TrackTrail, AWheelThatSpinsOnTheSpotLeavesSegmentsOfOneStep) {
    const auto rig = LockedWheels();
    for (int f = 1; f <= 20; ++f) {
        rig->wheelBodies[0].frame = test::RolledTo({0, 0, 0}, 1.1 * f);
        rig->Store(f * 32);
    }
    const auto trail = TrailOf(*rig);
    ASSERT_GT(trail->count, 10);
    for (const TrackSegment& segment : trail->segments) EXPECT_EQ(segment.steps, 1);
    EXPECT_LT(Ask(*trail, {0, 0, -29.0f}, 100'000, Visible()).value, 1.0f);
}

TEST(TrackTrail, TwoCarsHaveTrailsOfTheirOwn) {
    const auto one = LockedWheels(), other = LockedWheels();
    other->wheelBodies[0].frame.row[3].x = 500.0;
    other->InitMotion();
    Roll(*one, 20, 20.0);
    Roll(*other, 20, 20.0);
    const auto trail = TrailOf(*one), otherTrail = TrailOf(*other);
    EXPECT_LT(Ask(*trail, {0, 200, -29.0f}, 100'000, Visible()).value, 0.9f);
    EXPECT_EQ(Ask(*trail, {500, 200, -29.0f}, 100'000, Visible()).value, 1.0f);
    EXPECT_EQ(Ask(*otherTrail, {0, 200, -29.0f}, 100'000, Visible()).value, 1.0f);
    EXPECT_LT(Ask(*otherTrail, {500, 200, -29.0f}, 100'000, Visible()).value, 0.9f);
}

TEST(TrackTrail, RootIsTheCubeAroundAllSegments) {
    const auto rig = LockedWheels();
    Roll(*rig, 10, 20.0, /*rolls=*/false);
    const auto trail = TrailOf(*rig);
    const Point3 size = trail->cube.Width();
    EXPECT_EQ(size.y, 260.0f);  // ten steps of 20 and a radius at both ends
    EXPECT_EQ(size.x, 260.0f);
    EXPECT_EQ(size.z, 260.0f);
    for (const TrackSegment& segment : trail->segments) EXPECT_TRUE(trail->cube.Contains(segment.bound));
}

/// Visits the leaves with their boxes and depths.
template <typename Visit>
void ForEachLeaf(const TrackTrail& trail, const TrackCell& cell, const Box3& box, int depth, Visit visit) {
    if (cell.IsLeaf()) return visit(cell, box, depth);
    for (unsigned k = 0; k < 8; ++k) ForEachLeaf(trail, trail.cells[cell.first].child[k], ChildBox(box, k), depth + 1, visit);
}

TEST(TrackTrail, LeavesAreSmallOrHoldFewSegments) {
    const auto rig = LockedWheels(4);
    for (int u = 0; u < 4; ++u) rig->wheelBodies[u].frame.row[3] = {u % 2 * 150.0, u / 2 * 260.0, 0.0};
    rig->InitMotion();
    Roll(*rig, 400, 17.0);
    const auto trail = TrailOf(*rig);
    int small = 0, few = 0;
    ForEachLeaf(*trail, trail->root, trail->cube, 0, [&](const TrackCell& leaf, const Box3& box, int depth) {
        const bool isSmall = box.Width().x <= 30.0f, isFew = int(leaf.count) <= depth;
        EXPECT_TRUE(isSmall || isFew);
        EXPECT_GT(box.Width().x, 15.0f * 0.999f);
        small += isSmall ? 1 : 0;
        few += isFew ? 1 : 0;
    });
    EXPECT_GT(small, 0);
    EXPECT_GT(few, 0);
}

TEST(TrackTrail, EverySegmentIsInEachLeafThatItsBoundTouches) {
    const auto rig = LockedWheels(2);
    rig->wheelBodies[1].frame.row[3].x = 150.0;
    rig->InitMotion();
    Roll(*rig, 60, 17.0);
    const auto trail = TrailOf(*rig);
    ForEachLeaf(*trail, trail->root, trail->cube, 0, [&](const TrackCell& leaf, const Box3& box, int) {
        const auto list = std::span(trail->lists).subspan(leaf.first, leaf.count);
        ASSERT_TRUE(std::ranges::is_sorted(list));
        const Box3 inner = {box.pmin + Point3{0.01f, 0.01f, 0.01f}, box.pmax - Point3{0.01f, 0.01f, 0.01f}};
        for (std::uint32_t i = 0; i < std::uint32_t(trail->count); ++i) {
            if (!inner.Intersects(trail->segments[i].bound)) continue;
            EXPECT_TRUE(std::ranges::binary_search(list, i));
        }
    });
}

TEST(TrackTrail, APointOnACentrePlaneIsTheLowChilds) {
    const auto rig = LockedWheels();
    Roll(*rig, 40, 20.0);
    const auto trail = TrailOf(*rig);
    const Point3 centre = trail->cube.Center();
    ASSERT_FALSE(trail->root.IsLeaf());
    const auto leaf = trail->LeafAt(centre);
    const float ulp = std::nextafter(centre.y, -1e9f);
    const auto below = trail->LeafAt({centre.x, ulp, centre.z}),
               above = trail->LeafAt({centre.x, std::nextafter(centre.y, 1e9f), centre.z});
    EXPECT_EQ(leaf.data(), below.data());
    EXPECT_NE(leaf.data(), above.data());
    // Segments that touch the plane are in both.
    const auto touchesPlane = [&](std::uint32_t i) {
        const Box3& bound = trail->segments[i].bound;
        return bound.pmin.y <= centre.y && bound.pmax.y >= centre.y;
    };
    std::vector<std::uint32_t> low, high;
    std::ranges::copy_if(below, std::back_inserter(low), touchesPlane);
    std::ranges::copy_if(above, std::back_inserter(high), touchesPlane);
    EXPECT_FALSE(low.empty());
    EXPECT_EQ(low, high);
}

TEST(TrackTrail, APointOutsideOfTheRootFindsNothing) {
    const auto rig = LockedWheels();
    Roll(*rig, 40, 20.0);
    const auto trail = TrailOf(*rig);
    for (const Point3& away : {Point3{0, 1e6f, 0}, Point3{-1e6f, 0, 0}, Point3{1e30f, 1e30f, -1e30f}}) {
        EXPECT_EQ(Ask(*trail, away, 100'000, Visible()).value, 1.0f);
    }
}

TEST(TrackTrail, TwoHundredWheelsAllLeaveTracks) {
    const auto rig = LockedWheels(kMaxComponents);
    for (int u = 0; u < kMaxComponents; ++u) rig->wheelBodies[u].frame.row[3].x = u * 40.0;
    rig->InitMotion();
    Roll(*rig, 1'200, 20.0);
    const auto trail = TrailOf(*rig);
    EXPECT_EQ(trail->wheels.size(), 200u);
    EXPECT_GT(trail->count, 150'000);
    const TimeValue end = 1'200 * 32;
    for (const int u : {0, 77, 199}) {
        EXPECT_LT(Ask(*trail, {float(u) * 40.0f, 20'000.0f, -29.0f}, end, Visible()).value, 0.9f) << u;
        EXPECT_EQ(Ask(*trail, {float(u) * 40.0f + 20.0f, 20'000.0f, -29.0f}, end, Visible()).value, 1.0f) << u;
    }
}

TEST(TrackTrail, StretchesThatAreNotFiniteAreLeftOutWithAWord) {
    const auto rig = LockedWheels();
    Roll(*rig, 10, 20.0);
    rig->motion.wheels[0][5].frame.row[3].y = std::numeric_limits<double>::quiet_NaN();
    rig->motion.wheels[0][8].frame.row[3].y = 1e300;
    TrackTrail trail;
    std::string notice;
    trail.Build(*rig, notice);
    EXPECT_EQ(trail.built, 1u);
    EXPECT_GT(trail.count, 3);
    EXPECT_LT(trail.count, 10);
    EXPECT_NE(notice.find("not finite"), std::string::npos) << notice;
    EXPECT_LT(trail.cube.Width().x, 300.0f);
    EXPECT_TRUE(std::isfinite(Ask(trail, {0, 60, -29.0f}, 100'000, Visible()).value));
}

TEST(TrackTrail, AJumpIsLeftOutWithAWord) {
    const auto rig = LockedWheels();
    Roll(*rig, 5, 20.0);
    const int before = TrailOf(*rig)->count;
    rig->wheelBodies[0].frame.row[3].x = 5e6;
    rig->Store(1000);
    TrackTrail trail;
    std::string notice;
    trail.Build(*rig, notice);
    EXPECT_EQ(trail.count, before);
    EXPECT_EQ(
        notice,
        "The tyre tracks have 1 gap where the recorded wheels jump farther than a wheel can roll; drive again from before "
        "that time.");
    EXPECT_LT(trail.cube.Width().x, 1000.0f);
}

TEST(TrackTrail, AWheelWithoutASizeLeavesNothing) {
    const auto rig = LockedWheels();
    rig->units[0].Radius = 0.0;
    Roll(*rig, 5, 20.0);
    const auto trail = TrailOf(*rig);
    EXPECT_EQ(trail->built, 1u);
    EXPECT_EQ(trail->count, 0);
}

/// A trail of bounds alone, all in one box.
TrackTrail TrailOfBounds(int count, float radius, const Box3& bound, const Box3& box) {
    TrackTrail trail;
    std::vector<std::uint32_t> list;
    for (int i = 0; i < count; ++i) {
        TrackSegment& segment = trail.segments.emplace_back();
        segment.Radius = radius;
        segment.bound = bound;
        list.push_back(std::uint32_t(i));
    }
    trail.cube = box;
    trail.root = BuildCell(trail, list, box, 0);
    return trail;
}

TEST(TrackTrail, ABoundThatOnlyTouchesACentrePlaneIsInBothHalves) {
    const Box3 box = {{-8, -8, -8}, {8, 8, 8}};
    for (const Box3& bound : {Box3{{0, 0, 0}, {5, 5, 5}}, Box3{{-5, -5, -5}, {0, 0, 0}}}) {
        const TrackTrail trail = TrailOfBounds(1, 9.0f, bound, box);
        ASSERT_FALSE(trail.root.IsLeaf());
        for (const TrackCell& child : trail.cells[0].child) EXPECT_EQ(child.count, 1u);
    }
    const TrackTrail trail = TrailOfBounds(1, 9.0f, {{0.001f, -5, -5}, {5, 5, -0.001f}}, box);
    EXPECT_TRUE(trail.LeafAt({-1, 1, -1}).empty());
    EXPECT_TRUE(trail.LeafAt({1, 1, 1}).empty());
    EXPECT_EQ(trail.LeafAt({1, 1, -1}).size(), 1u);
    EXPECT_EQ(trail.LeafAt({1, -1, -1}).size(), 1u);
}

TEST(TrackTrail, FarOutWhereHalvesCannotBeToldApartACellIsALeaf) {
    // Numbers lie 64 apart there, and half of that is rounded up from an odd one: a lower half would be the cell itself.
    const float low = 8e8f + 64.0f;
    for (const float side : {64.0f, 256.0f}) {
        const Box3 box = {{low, low, low}, {low + side, low + side, low + side}};
        const TrackTrail trail = TrailOfBounds(60, 0.001f, box, box);
        EXPECT_LT(trail.cells.size(), 1'000u);
        EXPECT_FALSE(trail.LeafAt(box.pmax).empty());
    }
}

TEST(TrackTrail, StoresFramesWithinItsBoundOnly) {
    const auto rig = LockedWheels();
    Roll(*rig, 50, 20.0);
    const auto all = TrailOf(*rig), some = TrailOf(*rig, 20 * 1024), none = TrailOf(*rig, 0);
    EXPECT_EQ(none->inverseFrames.size(), 0u);
    EXPECT_GT(some->inverseFrames.size(), 0u);
    EXPECT_LE(some->inverseFrames.size() * sizeof(Matrix3), 20u * 1024);
    std::size_t wanted = 0;
    for (const TrackSegment& segment : all->segments) wanted += std::size_t(segment.steps) + 1;
    EXPECT_EQ(all->inverseFrames.size(), wanted);
}

}  // namespace
}  // namespace tavrik
