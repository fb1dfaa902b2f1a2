// The model of the car that both drivers roll on, and what a candidate costs.

#include "drive/rollout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "drive/bicycle_step.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::TestRandom;

constexpr float kLength = 180.0f;

Matrix3 FrameAt(const Point3& place, float heading) {
    const float c = std::cos(heading), s = std::sin(heading);
    return {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}, place}};
}

Matrix3 RandomFrame(TestRandom& random) {
    Matrix3 frame = ToMatrix3(random.Turn());
    frame.row[3] = random.PointIn({{-2000, -2000, -200}, {2000, 2000, 200}});
    return frame;
}

bool SameBits(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// ---- The model of the car

TEST(BicycleStep, WithStraightWheelsGoesStraightAhead) {
    Matrix3 frame = FrameAt({10, 20, 30}, 0.0f);
    BicycleStep(frame, kLength, 0.0f, 50.0f);
    EXPECT_EQ(frame.row[1].y, 1.0f);
    EXPECT_NEAR(frame.row[3].y, 70.0f, 1e-4);
    EXPECT_EQ(frame.row[3].x, 10.0f);
}

TEST(BicycleStep, TurnsTowardsTheWheelsAndFollowsTheNewDirection) {
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    BicycleStep(frame, kLength, 0.5f, 60.0f);
    //   rear end at -0.7 L, front end of the rod at (sin, cos) * distance + 1.4 L before it
    const double forward = std::cos(0.5) * 60.0 + 1.4 * 180.0, side = std::sin(0.5) * 60.0, rod = std::hypot(forward, side);
    EXPECT_NEAR(frame.row[1].x, side / rod, 1e-6);
    EXPECT_NEAR(frame.row[1].y, forward / rod, 1e-6);
    EXPECT_NEAR(frame.row[3].x, side / rod * (60.0 + 126.0), 1e-4);
    EXPECT_NEAR(frame.row[3].y, forward / rod * (60.0 + 126.0) - 126.0, 1e-4);
}

TEST(BicycleStep, LeavesTheUpAxisAndKeepsTheOthersAtRightAngles) {
    TestRandom random(test::TestSeed(1));
    for (int i = 0; i < test::TestRounds(200); ++i) {
        Matrix3 frame = RandomFrame(random);
        const Point3 up = frame.row[2];
        BicycleStep(frame, kLength, random.Between(-1.0f, 1.0f), random.Between(-100.0f, 100.0f));
        EXPECT_EQ(Length(frame.row[2] - up), 0.0f);
        EXPECT_NEAR(Dot(frame.row[0], frame.row[1]), 0.0, 1e-5);
        EXPECT_NEAR(Length(frame.row[1]), 1.0, 1e-5);
    }
}

// ---- Rollouts

TEST(RolloutToTarget, FiftyStepsCoverTheWholeWay) {
    Point3 targets[kTargetSamples] = {};
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    RolloutToTarget(targets, frame, 0.0f, 1000.0f, kLength);
    EXPECT_NEAR(frame.row[3].y, 1000.0f, 0.1);
}

TEST(RolloutToTarget, SumsTheSquaredDistancesOfTheFirstFiftySamplesWithoutHeight) {
    Point3 targets[kTargetSamples];
    for (int i = 0; i < kTargetSamples; ++i) targets[i] = {3.0f, float(i + 1) * 2.0f + 4.0f, 1000.0f * float(i)};
    for (int i = kRolloutSteps; i < kTargetSamples; ++i) targets[i].x = 1e6f;  // never looked at
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    EXPECT_NEAR(RolloutToTarget(targets, frame, 0.0f, 100.0f, kLength), 50.0f * 25.0f, 0.5);
}

TEST(RolloutAlongPath, SumsTheInversesOfTheFieldAtEveryTenthStepFromTheFirst) {
    PathField path;
    path.BuildFromPolyShape({{{{{-500, 0, 0}, {-500, 2000, 0}}, false}}});
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    const double cost = RolloutAlongPath(path, frame, 0.0f, 1000.0f, kLength);
    double wanted = 0.0;
    for (const float y : {20.0f, 220.0f, 420.0f, 620.0f, 820.0f}) wanted += 1.0 / path.FieldAt({0, y, 0});
    EXPECT_NEAR(cost / wanted, 1.0, 1e-4);
}

TEST(RolloutAlongPath, WithoutAFieldCostsNothing) {
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    EXPECT_EQ(RolloutAlongPath({}, frame, 0.1f, 1000.0f, kLength), 0.0);
}

TEST(RolloutAlongPath, StepsWhoseFieldIsNoNumberDoNotCount) {
    PathField path;
    path.BuildFromPolyShape({{{{{5, 5, 5}, {5, 5, 5}}, false}}});  // a piece of no length
    Matrix3 frame = FrameAt({0, 0, 0}, 0.0f);
    EXPECT_EQ(RolloutAlongPath(path, frame, 0.1f, 1000.0f, kLength), 0.0);
}

std::vector<Candidate> RandomCandidates(TestRandom& random) {
    std::vector<Candidate> candidates(std::size_t(random.Int(1, 101)));
    for (Candidate& candidate : candidates) candidate = {random.Between(-3.0f, 3.0f), random.Between(-500.0f, 2500.0f)};
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    if (random.Int(0, 3) == 0) candidates.front() = {kInfinity, 0.0f};
    if (random.Int(0, 3) == 0) candidates.back().distance = 1e30f;
    return candidates;
}

TEST(RolloutsToTarget, EqualTheOneByOneRolloutBitForBit) {
    TestRandom random(test::TestSeed(2));
    int noNumber = 0;
    for (int round = 0; round < test::TestRounds(200); ++round) {
        Matrix3 start = RandomFrame(random);
        if (round % 20 == 0) start.row[0] = start.row[1];  // a frame that nothing undoes
        Point3 targets[kTargetSamples];
        for (Point3& target : targets) target = random.PointIn({{-3000, -3000, -100}, {3000, 3000, 100}});
        const std::vector<Candidate> candidates = RandomCandidates(random);
        std::vector<float> costs(candidates.size());
        RolloutsToTarget(targets, start, candidates, kLength, costs);
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            Matrix3 frame = start;
            const float plain = RolloutToTarget(targets, frame, candidates[i].angle, candidates[i].distance, kLength);
            noNumber += std::isnan(plain) ? 1 : 0;
            ASSERT_TRUE(SameBits(double(costs[i]), double(plain))) << test::Digits(costs[i]) << " " << test::Digits(plain);
        }
    }
    EXPECT_GT(noNumber, 10);
}

TEST(RolloutsAlongPath, EqualTheOneByOneRolloutBitForBit) {
    TestRandom random(test::TestSeed(3));
    PathField path;
    PolyLine road;
    road.closed = true;
    for (int i = 0; i < 500; ++i) {
        const float angle = 6.2831853f * float(i) / 500.0f;
        road.points.push_back({100.0f + 2000.0f * std::cos(angle), 200.0f + 2000.0f * std::sin(angle), 0});
    }
    path.BuildFromPolyShape({{road}});
    double most = 0.0;
    for (int round = 0; round < test::TestRounds(40); ++round) {
        const Matrix3 start = RandomFrame(random);
        const std::vector<Candidate> candidates = RandomCandidates(random);
        std::vector<double> costs(candidates.size());
        RolloutsAlongPath(path, start, candidates, kLength, costs);
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            Matrix3 frame = start;
            const double plain = RolloutAlongPath(path, frame, candidates[i].angle, candidates[i].distance, kLength);
            most = std::max(most, plain);
            ASSERT_TRUE(SameBits(costs[i], plain)) << test::Digits(costs[i]) << " " << test::Digits(plain);
        }
    }
    EXPECT_GT(most, 0.0);
}

}  // namespace
}  // namespace tavrik
