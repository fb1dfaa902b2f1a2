#include "rig/gizmos/gizmos.h"

#include <cmath>

#include "solver/random_stream.h"
#include "tests/rig/gizmos/gizmo_support.h"

namespace gizmo_test {
namespace {

using namespace tavrik;

void ExpectBox(const Box3& box, const Point3& low, const Point3& high) {
    EXPECT_TRUE(Near(box.pmin, low, 1e-3f));
    EXPECT_TRUE(Near(box.pmax, high, 1e-3f));
}

// -------------------------------------------------------------------------------------------------------------------- chassis

constexpr std::size_t kBox = 12, kArrow = 27, kMark = 65;

TEST(ChassisLines, AreABoxAnArrowAndAMarkInTheirOrder) {
    const GizmoLines lines = ChassisLines(70, 200, 50, -0.7f);
    ASSERT_EQ(lines.size(), kBox + kArrow + kMark);
    ExpectBox(BoxOf(lines), {-70, -200, -50}, {70, 200, 50});
    for (std::size_t i = kBox; i < lines.size(); ++i) EXPECT_EQ(lines[i].from.z, 0.0f);
    EXPECT_EQ(lines[kBox + kArrow].from, (Point3{14, -126, 0}));
}

TEST(ChassisLines, TheMarkStandsSeventyPerCentBehindTheMiddleByDefault) {
    const GizmoLines lines = ChassisLines(70, 200, 50, -0.7f);
    EXPECT_EQ(CountLines(lines, {-42, -140, 0}, {42, -140, 0}), 1);
    EXPECT_EQ(CountLines(lines, {0, -182, 0}, {0, -98, 0}), 1);
}

TEST(ChassisLines, WithoutAShiftTheMarkStandsInTheMiddle) {
    const GizmoLines lines = ChassisLines(70, 200, 50, 0);
    EXPECT_EQ(CountLines(lines, {-42, 0, 0}, {42, 0, 0}), 1);
    EXPECT_EQ(CountLines(lines, {0, -42, 0}, {0, 42, 0}), 1);
}

TEST(DirectionArrow, HasItsTipAtItsSize) {
    GizmoLines lines;
    DrawDirectionArrow(lines, 200);
    ASSERT_EQ(lines.size(), kArrow);
    ExpectBox(BoxOf(lines), {-30, 0, 0}, {30, 200, 0});
    for (const float side : {-1.0f, 1.0f}) {
        EXPECT_EQ(CountLines(lines, {30 * side, 100, 0}, {0, 200, 0}), 1);
        EXPECT_EQ(CountLines(lines, {30 * side, 100, 0}, {10 * side, 120, 0}), 1);
        EXPECT_EQ(CountLines(lines, {10 * side, 120, 0}, {20 * side, 20, 0}), 1);
    }
    EXPECT_EQ(CountLines(lines, {0, 0, 0}, {0, 20, 0}), 1);
}

TEST(DirectionArrow, ItsFootIsACurveOfTwentyLines) {
    GizmoLines lines;
    DrawDirectionArrow(lines, 200);
    EXPECT_TRUE(IsChain(lines, 6, 20));
    EXPECT_EQ(lines[6].from, (Point3{20, 20, 0}));
    EXPECT_TRUE(Near(lines[15].to, {0, 30, 0}));
    EXPECT_TRUE(Near(lines[25].to, {-20, 20, 0}));
}

TEST(RotationMark, HasTwoRingsOfThreeQuartersOpenInFront) {
    GizmoLines lines;
    DrawRotationMark(lines, 1, 100);
    ASSERT_EQ(lines.size(), kMark);
    const struct {
        std::size_t first, count;
        float w;
        Point3 from, to;
    } kArcs[] = {
        {0, 10, 2, {1, 1, 0}, {1, -1, 0}},    {10, 10, 2, {1, -1, 0}, {-1, -1, 0}},
        {20, 10, 2, {-1, 1, 0}, {-1, -1, 0}}, {30, 5, 3, {1, 1, 0}, {1, -1, 0}},  // coarser than the others
        {35, 10, 3, {1, -1, 0}, {-1, -1, 0}}, {45, 10, 3, {-1, 1, 0}, {-1, -1, 0}},
    };
    const Point3 centre{0, 100, 0};
    for (const auto& [first, count, w, from, to] : kArcs) {
        EXPECT_TRUE(IsChain(lines, first, count)) << first;
        EXPECT_TRUE(Near(lines[first].from, centre + from * w)) << first;
        EXPECT_TRUE(Near(lines[first + count - 1].to, centre + to * w)) << first;
        for (std::size_t i = first; i < first + count; ++i) {
            EXPECT_NEAR(Length(lines[i].to - centre), w * std::sqrt(2.0f), 1e-4f);  // the ellipses are circles
        }
    }
}

TEST(RotationMark, EndsInAnArrowOnEitherSide) {
    GizmoLines lines;
    DrawRotationMark(lines, 1, 100);
    for (const float s : {-1.0f, 1.0f}) {
        EXPECT_EQ(CountLines(lines, {s, 101, 0}, {2 * s, 102, 0}), 1);
        EXPECT_EQ(CountLines(lines, {s, 101, 0}, {s, 104, 0}), 1);
        EXPECT_EQ(CountLines(lines, {s, 104, 0}, {4 * s, 104, 0}), 1);
        EXPECT_EQ(CountLines(lines, {3 * s, 103, 0}, {4 * s, 104, 0}), 1);
    }
    EXPECT_EQ(CountLines(lines, {-6, 100, 0}, {6, 100, 0}), 1);
    EXPECT_EQ(CountLines(lines, {0, 94, 0}, {0, 106, 0}), 1);
}

// ------------------------------------------------------------------------------------------------------------ wheel and sphere

TEST(WheelLines, AreThreeRingsFourSectionsAndAnArrow) {
    const GizmoLines lines = WheelLines(33, 12);
    ASSERT_EQ(lines.size(), 3u * 100 + 4 * 100 + 5);
    for (std::size_t chain = 0; chain < 7; ++chain) EXPECT_TRUE(IsChain(lines, chain * 100, 100)) << chain;
    const Box3 box = BoxOf(lines);
    ExpectBox({{box.pmin.x, box.pmin.y, box.pmin.z}, {box.pmax.x, box.pmax.y, 0}}, {-33, -33, -12}, {33, 33, 0});
    EXPECT_EQ(box.pmax.z, 24.0f);  // the arrow
}

TEST(WheelLines, TheRingsLieOnBothRimsAndTheTread) {
    const GizmoLines lines = WheelLines(33, 12);
    const Point3 starts[] = {{0, 21, -12}, {0, 33, 0}, {0, 21, 12}};
    for (std::size_t ring = 0; ring < 3; ++ring) {
        EXPECT_TRUE(Near(lines[ring * 100].from, starts[ring]));
        const Point3 quarter = lines[ring * 100 + 24].to;  // from Y towards X
        EXPECT_TRUE(Near(quarter, {starts[ring].y, 0, starts[ring].z}));
        EXPECT_TRUE(Near(lines[ring * 100 + 99].to, starts[ring]));
    }
}

TEST(WheelLines, ASectionRunsFromRimToRimOverSquareShoulders) {
    const GizmoLines lines = WheelLines(33, 12);
    const Point3 outward[] = {{0, 1, 0}, {1, 0, 0}, {0, -1, 0}, {-1, 0, 0}};
    for (std::size_t k = 0; k < 4; ++k) {
        const std::size_t first = 300 + k * 100;
        EXPECT_TRUE(Near(lines[first].from, outward[k] * 21.0f + Point3{0, 0, -12}));
        EXPECT_TRUE(Near(lines[first + 50].from, outward[k] * 33.0f));
        EXPECT_TRUE(Near(lines[first + 99].to, outward[k] * 21.0f + Point3{0, 0, 12}));
        // At b = 45 degrees s^4 + c^4 is a half, so s = c = sin(b) * 2^(1/4).
        const float shoulder = 12.0f * std::sqrt(0.5f) * std::sqrt(std::sqrt(2.0f));
        EXPECT_TRUE(Near(lines[first + 75].from, outward[k] * (21.0f + shoulder) + Point3{0, 0, shoulder}));
    }
}

TEST(WheelLines, SinglePrecisionIsKeptInEachStep) {
    const GizmoLines lines = WheelLines(33, 12);
    const float b = 17.0f / 100.0f * 3.1415927f, theta = 1.0f / 2.0f * 3.1415927f;
    float s = std::sin(b), c = std::cos(b);
    const float n = std::sqrt(std::sqrt(s * s * s * s + c * c * c * c));
    s /= n;
    c /= n;
    const float rho = (33.0f - 12.0f) + c * 12.0f;
    EXPECT_EQ(lines[400 + 50 + 17].from, (Point3{std::sin(theta) * rho, std::cos(theta) * rho, s * 12.0f}));
}

TEST(WheelLines, AnArrowOnTheAxleShowsTheOutside) {
    const GizmoLines lines = WheelLines(33, 10);
    EXPECT_EQ(CountLines(lines, {0, 0, 0}, {0, 0, 20}), 1);
    for (const Point3& head : {Point3{3, 0, 15}, Point3{-3, 0, 15}, Point3{0, 3, 15}, Point3{0, -3, 15}}) {
        EXPECT_EQ(CountLines(lines, head, {0, 0, 20}), 1);
    }
}

TEST(WheelLines, AWheelThatIsWiderThanItsRadiusTurnsInsideOut) {
    const GizmoLines lines = WheelLines(10, 25);
    ASSERT_EQ(lines.size(), 705u);
    EXPECT_TRUE(Near(lines[0].from, {0, -15, -25}));  // the rim is beyond the axle
    EXPECT_TRUE(Near(lines[100].from, {0, 10, 0}));   // the tread is not
}

TEST(SphereLines, AreThreeGreatCirclesOfThirtyTwoLines) {
    const GizmoLines lines = SphereLines(50);
    ASSERT_EQ(lines.size(), 96u);
    ExpectBox(BoxOf(lines), {-50, -50, -50}, {50, 50, 50});
    for (std::size_t i = 0; i < 96; ++i) {
        EXPECT_NEAR(Length(lines[i].to), 50.0f, 1e-4f);
        EXPECT_EQ(lines[i].to[i / 32], 0.0f);  // across X, then Y, then Z
    }
}

// ------------------------------------------------------------------------------------------------------------------ couplings

TEST(HitchLines, AreABallACollarAStemAndABar) {
    const GizmoLines lines = HitchLines(50);
    ASSERT_EQ(lines.size(), 3u * 40 + 20 + 4 * 40 + 2 * 20 + 4);
    for (std::size_t i = 0; i < 120; ++i) EXPECT_NEAR(Length(lines[i].to), 50.0f, 1e-4f);
    for (std::size_t i = 120; i < 140; ++i) EXPECT_NEAR(Length(lines[i].to), 25.0f, 1e-4f);
}

TEST(HitchLines, FillTheirBox) { ExpectBox(BoxOf(HitchLines(50)), {-50, -50, -125}, {50, 250, 50}); }

TEST(HitchLines, TheStemLeadsFromTheCollarIntoTheBar) {
    const GizmoLines lines = HitchLines(50);
    for (std::size_t arc = 0; arc < 4; ++arc) {
        const std::size_t first = 140 + arc * 40;
        EXPECT_TRUE(IsChain(lines, first, 40));
        EXPECT_NEAR(Length(lines[first].from), 25.0f, 1e-4f);
        EXPECT_EQ(lines[first].from.z, 0.0f);
        const Point3 end = lines[first + 39].to;
        EXPECT_NEAR(end.y, 100.0f, 1e-3f);
        EXPECT_NEAR(Length(end - Point3{0, 100, -100}), 25.0f, 1e-3f);
        EXPECT_EQ(CountLines(lines, end, end + Point3{0, 150, 0}), 1);  // goes on as an edge of the bar
    }
}

TEST(TongueLines, AreACupInACageOnABeam) {
    const GizmoLines lines = TongueLines(50);
    ASSERT_EQ(lines.size(), 40u + 4 * 20 + 4 * 20 + 11);
    for (std::size_t i = 0; i < 120; ++i) EXPECT_NEAR(Length(lines[i].to), 50.0f, 1e-4f);
    for (std::size_t i = 120; i < 200; ++i) {
        EXPECT_NEAR(std::hypot(lines[i].to.x, lines[i].to.y), 60.0f, 1e-4f);
        EXPECT_NEAR(lines[i].to.z, i < 160 ? 0.0f : 60.0f, 1e-4f);
    }
}

TEST(TongueLines, FillTheirBox) { ExpectBox(BoxOf(TongueLines(50)), {-60, -300, 0}, {60, 60, 60}); }

TEST(TongueLines, TheBeamIsClosedBehind) {
    const GizmoLines lines = TongueLines(50);
    for (const float z : {0.0f, 60.0f}) {
        for (const float x : {-60.0f, 60.0f}) EXPECT_EQ(CountLines(lines, {x, 0, z}, {x, -300, z}), 1);
        EXPECT_EQ(CountLines(lines, {-60, -300, z}, {60, -300, z}), 1);
    }
    for (const float x : {-60.0f, 60.0f}) EXPECT_EQ(CountLines(lines, {x, -300, 0}, {x, -300, 60}), 1);
}

// ------------------------------------------------------------------------------------------------------------- push and start

GizmoLines Push(float size, RandomStream& random) {
    return PushLines(size, [&] { return random.Rand01(); });
}

TEST(PushLines, AreABallABurstAndAnArrow) {
    RandomStream random(kBurstSeed);
    const GizmoLines lines = Push(10, random);
    ASSERT_EQ(lines.size(), 96u + 64 + 9);
    for (std::size_t i = 0; i < 96; ++i) EXPECT_NEAR(Length(lines[i].to - Point3{0, -30, 0}), 10.0f, 1e-4f);
}

TEST(PushLines, TheArrowPointsAlongY) {
    RandomStream random(kBurstSeed);
    const GizmoLines lines = Push(10, random);
    const Point3 tip{0, 70, 0}, corners[] = {{10, 40, 0}, {0, 40, 10}, {-10, 40, 0}, {0, 40, -10}};
    EXPECT_EQ(CountLines(lines, {0, 0, 0}, tip), 1);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(CountLines(lines, corners[i], tip), 1);
        EXPECT_EQ(CountLines(lines, corners[i], corners[(i + 1) % 4]), 1);  // the square of its base
    }
}

TEST(PushLines, EachRayComesFromTwoNumbersInTurn) {
    RandomStream random;
    const double numbers[] = {0.25, 0.5};
    random.Feed(numbers);
    const GizmoLines lines = Push(2, random);
    for (int i = 0; i < 8; ++i) {
        for (int j = 0; j < 8; ++j) {
            const float a = (float(j) + 0.25f) / 4.0f * 3.1415927f, p = (float(i) + 0.5f) / 16.0f * 3.1415927f;
            const Point3 direction{std::sin(a) * std::sin(p), std::cos(p), std::cos(a) * std::sin(p)};
            const float reach = 1.2f + 2.0f * ((1.7f - p) * (1.7f - p));
            const Point3 in = direction * 1.2f, out = direction * reach;
            const GizmoLine& ray = lines[std::size_t(96 + i * 8 + j)];
            EXPECT_EQ(ray.from, (Point3{in.x * 2.0f, (in.y - 3.0f) * 2.0f, in.z * 2.0f}));
            EXPECT_EQ(ray.to, (Point3{out.x * 2.0f, (out.y - 3.0f) * 2.0f, out.z * 2.0f}));
        }
    }
}

TEST(PushLines, RaysLeaveTheFrontHalfAndAreLongestStraightAhead) {
    RandomStream random(kBurstSeed);
    const GizmoLines lines = Push(1, random);
    const Point3 middle{0, -3, 0};
    for (std::size_t i = 96; i < 160; ++i) {
        EXPECT_NEAR(Length(lines[i].from - middle), 1.2f, 1e-5f);
        EXPECT_GT(lines[i].from.y, -3.0f);
        if (i >= 104) {
            EXPECT_LT(lines[i].to.y, lines[i - 8].to.y);
        }  // the next ring is flatter
    }
}

TEST(PushLines, TheSameSeedGivesTheSameRays) {
    RandomStream a(kBurstSeed), b(kBurstSeed);
    const GizmoLines first = Push(10, a), second = Push(10, b);
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].from, second[i].from);
        EXPECT_EQ(first[i].to, second[i].to);
    }
}

TEST(PushLines, OfNoSizeCollapseToAPoint) {
    RandomStream random(kBurstSeed);
    const GizmoLines lines = Push(0, random);
    EXPECT_EQ(lines.size(), 169u);
    EXPECT_TRUE(IsPoint(lines, {0, 0, 0}));
}

TEST(StartLines, AreTheArrowOfTheChassis) {
    GizmoLines arrow;
    DrawDirectionArrow(arrow, 100);
    const GizmoLines lines = StartLines(100);
    ASSERT_EQ(lines.size(), arrow.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].from, arrow[i].from);
        EXPECT_EQ(lines[i].to, arrow[i].to);
    }
    EXPECT_NEAR(BoxOf(lines).pmax.y, 100.0f, 1e-4f);
}

TEST(StartLines, OfNoSizeCollapseToTheOrigin) {
    EXPECT_EQ(StartLines(0).size(), kArrow);
    EXPECT_TRUE(IsPoint(StartLines(0), {0, 0, 0}));
}

}  // namespace
}  // namespace gizmo_test
