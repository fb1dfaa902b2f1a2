#include "tracks/track_segment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "solver/double_maths.h"
#include "tests/tracks/rolled_wheel.h"
#include "tracks/track_query.h"

namespace tavrik {
namespace {

using test::kTestRadius;
using test::kTestWidth;
using test::RolledTo;

bool SameBits(const Matrix3& a, const Matrix3& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TrackSegment Rolled(double way, double turn) {
    TrackSegment segment;
    EXPECT_EQ(Init(segment, ToMatrix3(RolledTo({0, 0, 0}, 0)), ToMatrix3(RolledTo({0, way, 0}, turn)), kTestRadius, kTestWidth,
                   0, 0, 160, 7),
              SegmentResult::Good);
    return segment;
}

SegmentResult InitWith(const Matrix3& end, float radius = kTestRadius, float width = kTestWidth) {
    TrackSegment segment;
    return Init(segment, IdentityMatrix3(), end, radius, width, 0, 0, 160, 7);
}

TEST(TrackSegment, HasAStepForEveryFortiethOfItsRadius) {
    EXPECT_EQ(Rolled(0.0, 0.0).steps, 1);
    EXPECT_EQ(Rolled(0.7, 0.0).steps, 1);
    EXPECT_EQ(Rolled(0.8, 0.0).steps, 2);
    EXPECT_EQ(Rolled(30.0, 1.0).steps, 41);
}

TEST(TrackSegment, OfAWheelThatSpinsOnTheSpotHasOneStep) { EXPECT_EQ(Rolled(0.0, 1.5).steps, 1); }

TEST(TrackSegment, KeepsWhatItIsMadeFrom) {
    TrackSegment segment;
    const Matrix3 from = ToMatrix3(RolledTo({1, 2, 3}, 0.1)), to = ToMatrix3(RolledTo({1, 22, 3}, 0.8));
    ASSERT_EQ(Init(segment, from, to, 31.0f, 11.0f, 1, 32, 64, 4711), SegmentResult::Good);
    EXPECT_TRUE(SameBits(segment.startFrame, from));
    EXPECT_TRUE(SameBits(segment.endFrame, to));
    EXPECT_EQ(segment.Radius, 31.0f);
    EXPECT_EQ(segment.Width, 11.0f);
    EXPECT_EQ(segment.sideFlag, 1u);
    EXPECT_EQ(segment.startTime, 32);
    EXPECT_EQ(segment.endTime, 64);
    EXPECT_EQ(segment.wheelHandle, 4711u);
}

TEST(TrackSegment, BoundHoldsTheTyresBoxAtBothEnds) {
    const TrackSegment segment = Rolled(20.0, 0.0);  // axle along X
    EXPECT_EQ(segment.bound.pmin.x, -10.0f);
    EXPECT_EQ(segment.bound.pmax.x, 10.0f);
    EXPECT_EQ(segment.bound.pmin.y, -30.0f);
    EXPECT_EQ(segment.bound.pmax.y, 50.0f);
    EXPECT_EQ(segment.bound.pmin.z, -30.0f);
    EXPECT_EQ(segment.bound.pmax.z, 30.0f);
}

TEST(TrackSegment, FramesOfTheWayHaveAxesOfLengthOne) {
    const TrackSegment segment = Rolled(20.0, 1.2);
    for (std::int32_t i = 0; i <= segment.steps; ++i) {
        const Matrix3 frame = ForwardFrame(segment, i);
        for (int r = 0; r < 3; ++r) EXPECT_LT(std::abs(Length(frame.row[r]) - 1.0f), 1e-6f);
        EXPECT_LT(std::abs(frame.row[3].y - 20.0f * float(i) / float(segment.steps)), 1e-4f);
    }
    EXPECT_TRUE(
        SameBits(ForwardFrame(segment, 0).row[3].y == 0.0f ? segment.startFrame : segment.endFrame, segment.startFrame));
}

TEST(TrackSegment, InverseFrameTakesTheWheelsMiddleToItsOrigin) {
    const TrackSegment segment = Rolled(20.0, 0.7);
    for (std::int32_t i = 0; i <= segment.steps; ++i) {
        const Point3 local = TransformPoint(ForwardFrame(segment, i).row[3], InverseFrame(segment, i));
        EXPECT_LT(Length(local), 1e-4f);
    }
}

TEST(TrackSegment, BetweenTwoFramesElementsAreBlendedOneByOne) {
    const TrackSegment segment = Rolled(10.0, 1.4);  // 14 steps
    const float u = 0.3f, x = u * float(segment.steps), f = x - 4.0f;
    ASSERT_EQ(int(x), 4);
    const Matrix3 a = ForwardFrame(segment, 4), b = ForwardFrame(segment, 5), between = ForwardFrameAt(segment, u);
    for (int r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(between.row[r][c], a.row[r][c] * (1.0f - f) + b.row[r][c] * f);
    }
    EXPECT_LT(Length(between.row[0]), 0.9999f);  // and left as they come out
}

TEST(TrackSegment, StoredFramesGiveTheBitsOfThoseThatAreWorkedOut) {
    test::TestRandom random(test::TestSeed(611));
    for (int round = 0; round < test::TestRounds(200); ++round) {
        DMatrix3 from = random.Turn(), to = random.Turn();
        from.row[3] = random.Vector(5000.0);
        to.row[3] = from.row[3] + random.Vector(30.0);
        TrackSegment segment;
        ASSERT_EQ(Init(segment, ToMatrix3(from), ToMatrix3(to), kTestRadius, kTestWidth, 0, 0, 1, 1), SegmentResult::Good);
        std::vector<Matrix3> stored;
        for (std::int32_t i = 0; i <= segment.steps; ++i) stored.push_back(InverseFrame(segment, i));
        for (int i = 0; i < 50; ++i) {
            const float u = random.Between(0.0f, 0.999999f);
            ASSERT_TRUE(SameBits(InverseFrameAt(segment, stored.data(), u), InverseFrameAt(segment, nullptr, u)))
                << test::Digits(u);
        }
    }
}

TEST(TrackSegment, FramesThatAreNotFiniteAreRefused) {
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1e30f}) {
        for (int r = 0; r < 4; ++r) {
            Matrix3 frame = IdentityMatrix3();
            frame.row[r].y = bad;
            EXPECT_EQ(InitWith(frame), SegmentResult::NotFinite);
            TrackSegment segment;
            EXPECT_EQ(Init(segment, frame, IdentityMatrix3(), 30.0f, 10.0f, 0, 0, 160, 7), SegmentResult::NotFinite);
        }
    }
}

TEST(TrackSegment, SizesThatAreNotFiniteAreRefused) {
    EXPECT_EQ(InitWith(IdentityMatrix3(), std::numeric_limits<float>::infinity()), SegmentResult::NotFinite);
    EXPECT_EQ(InitWith(IdentityMatrix3(), 30.0f, std::numeric_limits<float>::infinity()), SegmentResult::NotFinite);
}

TEST(TrackSegment, AJumpFartherThanAWheelCanGoIsRefused) {
    Matrix3 far = IdentityMatrix3();
    far.row[3].x = 30.0f * 26'000.0f;
    EXPECT_EQ(InitWith(far), SegmentResult::Good);
    far.row[3].x = 30.0f * 26'300.0f;
    EXPECT_EQ(InitWith(far), SegmentResult::TooLong);
}

TEST(TrackSegment, StepsSaturateWhereNoNumberHoldsThem) {
    Matrix3 far = IdentityMatrix3();
    far.row[3].x = 1e9f;
    EXPECT_EQ(InitWith(far, 1e-4f, 1e-4f), SegmentResult::TooLong);
}

/// A way between two frames: mostly one that a wheel rolls, now and then a wild one.
TrackSegment RandomWay(test::TestRandom& random) {
    DMatrix3 from = random.Turn();
    from.row[3] = random.Vector(random.Int(0, 3) == 0 ? 100'000.0 : 1'000.0);
    DMatrix3 to = from;
    const bool wild = random.Int(0, 4) == 0;
    // A turn about the axle, a little steering, and a step that need not lie in the wheel's plane.
    const double roll = random.Between(-2.2, 2.2) * (wild ? 2.0 : 1.0),
                 steer = random.Between(-0.01, 0.01) * (wild ? 30.0 : 1.0);
    const DPoint3 x = from.row[0], y = from.row[1], z = from.row[2];
    to.row[0] = x * std::cos(roll) + y * std::sin(roll);
    to.row[1] = y * std::cos(roll) - x * std::sin(roll);
    const DPoint3 old = to.row[0];
    to.row[0] = Normalize(old * std::cos(steer) + z * std::sin(steer));
    to.row[2] = Normalize(z * std::cos(steer) - old * std::sin(steer));
    to.row[3] = from.row[3] + x * random.Between(-70.0, 70.0) + z * random.Between(-5.0, 5.0);
    TrackSegment segment;
    EXPECT_EQ(Init(segment, ToMatrix3(from), ToMatrix3(to), kTestRadius, kTestWidth, 0, 0, 1, 1), SegmentResult::Good);
    return segment;
}

TEST(MayTouch, NeverTurnsAPointAwayThatTheTyreReaches) {
    test::TestRandom random(test::TestSeed(612));
    const TrackParams params = {1.0f, 1.0f, 40, 1.0f, 1.0f};
    int touched = 0, turnedAway = 0, asked = 0;
    for (int round = 0; round < test::TestRounds(3'000); ++round) {
        const TrackSegment segment = RandomWay(random);
        for (int i = 0; i < 20; ++i) {
            // Near the skin at some place of the way, where it is close.
            const Matrix3 frame = ForwardFrame(segment, random.Int(0, segment.steps));
            const double angle = random.Between(0.0, 6.283), rho = random.Between(25.0, 36.0);
            const Point3 local = {float(rho * std::cos(angle)), float(rho * std::sin(angle)), random.Between(-14.0f, 14.0f)};
            const Point3 point = TransformPoint(local, frame);
            TrackSum sum;
            TrackAccumulate(segment, nullptr, nullptr, point, 1, params, sum);
            const bool reached = sum.value > 0.0f || LengthSquared(sum.bump) > 0.0f;
            if (reached) {
                ASSERT_TRUE(MayTouch(segment, point)) << test::Digits(point);
            }
            touched += reached ? 1 : 0;
            turnedAway += MayTouch(segment, point) ? 0 : 1;
            ++asked;
        }
    }
    EXPECT_GT(touched, asked / 10);
    EXPECT_GT(turnedAway, asked / 40);
}

TEST(MayTouch, TurnsPointsBesideARollingTyreAway) {
    const TrackSegment segment = Rolled(20.0, 20.0 / 30.0);
    EXPECT_TRUE(MayTouch(segment, {0.0f, 10.0f, -29.0f}));
    EXPECT_FALSE(MayTouch(segment, {11.0f, 10.0f, -29.0f}));
    EXPECT_FALSE(MayTouch(segment, {0.0f, 40.0f, -29.0f}));
    EXPECT_FALSE(MayTouch(segment, {0.0f, 10.0f, -32.0f}));
    EXPECT_FALSE(MayTouch(segment, {0.0f, 4000.0f, 0.0f}));
}

}  // namespace
}  // namespace tavrik
