// The field over a path: its value near and far, how paths become pieces and cells, and what it makes of damaged paths.

#include "surface/path_field.h"

#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>

#include "tests/support/test_random.h"
#include "tests/surface/plain_path_field.h"

namespace tavrik {
namespace {

using test::Digits;
using test::PlainPathField;
using test::TestRandom;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

PolyShape OneLine(std::vector<Point3> points, bool closed = false) { return {{{std::move(points), closed}}}; }

/// A closed road with bends and hills.
PolyShape Road(int points, float radius = 10000.0f) {
    PolyLine line;
    line.closed = true;
    for (int i = 0; i < points; ++i) {
        const double angle = 6.283185307179586 * i / points;
        const double r = double(radius) * (1.0 + 0.2 * std::sin(5.0 * angle));
        line.points.push_back({float(r * std::cos(angle)), float(r * std::sin(angle)), 300.0f * float(std::sin(3.0 * angle))});
    }
    return {{line}};
}

/// Lines anyhow in a box, some of them along axes and walls.
PolyShape RandomShape(TestRandom& random, int pieces) {
    PolyShape shape;
    const Box3 space{{-100, -100, -100}, {100, 100, 100}};
    while (pieces > 0) {
        PolyLine line;
        line.closed = random.Int(0, 3) == 0;
        const int points = random.Int(0, 40);
        Point3 at = random.PointIn(space);
        const float stride = random.Between(0.1f, 60.0f);
        for (int i = 0; i < points; ++i) {
            line.points.push_back(at);
            Point3 step = random.PointIn({{-stride, -stride, -stride}, {stride, stride, stride}});
            if (random.Int(0, 4) == 0) step = {step.x, 0, 0};
            if (random.Int(0, 30) == 0) step = {0, 0, 0};
            at = at + step;
        }
        pieces -= points;
        shape.lines.push_back(std::move(line));
    }
    return shape;
}

PathField FieldOver(const PolyShape& shape) {
    PathField field;
    field.BuildFromPolyShape(shape);
    return field;
}

void ForEachNode(const PathFieldNode& node, int depth, const std::function<void(const PathFieldNode&, int)>& look) {
    look(node, depth);
    for (std::size_t i = 0; !node.isLeaf() && i < 8; ++i) ForEachNode(node.child[i], depth + 1, look);
}

bool SameBits(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// Answers with a shape, or with none.
class FixedSource final : public PathSource {
 public:
    explicit FixedSource(const PolyShape* shape) : shape_(shape) {}
    bool MakePolyShape(PolyShape& shape) override {
        if (shape_ != nullptr) shape = *shape_;
        return shape_ != nullptr;
    }

 private:
    const PolyShape* shape_;
};

TEST(PathField, ShapeWithoutPointsIsBuiltAndFeltNowhere) {
    const PathField field = FieldOver({});

    ASSERT_TRUE(field.built());
    EXPECT_TRUE(field.root()->isLeaf());
    EXPECT_EQ(field.root()->count, 0);
    EXPECT_EQ(field.root()->totalLength, 0.0f);
    EXPECT_EQ(field.root()->box.pmin.x, -1.0f);
    EXPECT_EQ(field.root()->box.pmax.z, 1.0f);
    for (const Point3 point : {Point3{0, 0, 0}, Point3{1, 2, 3}, Point3{1e9f, 0, 0}}) EXPECT_EQ(field.FieldAt(point), 0.0);
}

TEST(PathField, LineOfOnePointGivesNoPieceWhileOpen) { EXPECT_EQ(FieldOver(OneLine({{1, 2, 3}})).root()->count, 0); }

TEST(PathField, SinglePieceLiesInTheRootAndItsFieldIsExact) {
    const PathField field = FieldOver(OneLine({{0, 0, 0}, {3, 4, 0}}));

    ASSERT_TRUE(field.root()->isLeaf());
    ASSERT_EQ(field.root()->count, 1);
    EXPECT_EQ(field.root()->segments[0].length, 5.0f);
    const Point3 point{1, -2, 3};
    EXPECT_NEAR(field.FieldAt(point), test::FieldByQuadrature({0, 0, 0}, {3, 4, 0}, point, 2000), 1e-7);
}

TEST(PathField, MidwayAboveAPieceOfLengthTwoAtHeightOneItIsTheRootOfTwo) {
    const PathField field = FieldOver(OneLine({{-1, 0, 0}, {1, 0, 0}}));

    EXPECT_DOUBLE_EQ(field.FieldAt({0, 0, 1}), std::sqrt(2.0));
}

TEST(PathField, ClosedLineOfPointsHasAsManyPiecesAndAnOpenOneOneLess) {
    const std::vector<Point3> corners{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}};
    const auto pieces = [](const PathField& field) {
        // A triangle splits at the root; what counts is how many pieces went in, which its length tells.
        return field.root()->totalLength;
    };
    EXPECT_FLOAT_EQ(pieces(FieldOver(OneLine(corners))), 20.0f);
    EXPECT_FLOAT_EQ(pieces(FieldOver(OneLine(corners, true))), 20.0f + std::sqrt(200.0f));
    EXPECT_EQ(FieldOver(OneLine({{1, 1, 1}}, true)).root()->count, 1);
    EXPECT_EQ(FieldOver(OneLine({{1, 1, 1}, {2, 1, 1}})).root()->count, 1);
}

TEST(PathField, RootIsACubeWithUnevenMargins) {
    const PathField field = FieldOver(OneLine({{0, 0, 0}, {20, 4, 2}}));

    const Box3& box = field.root()->box;
    const float up = 10.0f * 1.1f, down = 10.0f * 1.05f;
    EXPECT_EQ(box.pmax.x, 10.0f + up);
    EXPECT_EQ(box.pmax.y, 2.0f + up);
    EXPECT_EQ(box.pmax.z, 1.0f + up);
    EXPECT_EQ(box.pmin.x, 10.0f - down);
    EXPECT_EQ(box.pmin.y, 2.0f - down);
    EXPECT_EQ(box.pmin.z, 1.0f - down);
    const float radius = (box.pmax.x - box.pmin.x) * 0.5f;
    EXPECT_EQ(field.root()->radiusSquared, radius * radius);
    EXPECT_EQ(field.root()->centre.x, (box.pmin.x + box.pmax.x) * 0.5f);
}

TEST(PathField, NodeSplitsWhileItHasMoreThanEToTheDepthPieces) {
    const PathField field = FieldOver(Road(3000));
    int inner = 0, deepest = 0;
    ForEachNode(*field.root(), 0, [&](const PathFieldNode& node, int depth) {
        deepest = std::max(deepest, depth);
        inner += node.isLeaf() ? 0 : 1;
        if (node.isLeaf()) {
            EXPECT_LE(double(node.count), std::exp(depth) + 1e-3);
        }
        if (!node.isLeaf()) {
            EXPECT_EQ(node.segments, nullptr);
        }
    });
    EXPECT_GT(inner, 20);
    EXPECT_GE(deepest, 4);
}

TEST(PathField, NodeOfOnePieceMoreThanItsDepthAllowsSplits) {
    // Two pieces split a root, and 2 is not above e, so that children keep two.
    const PathField field = FieldOver(OneLine({{0, 0, 0}, {1, 0.5f, 0.3f}, {2, 0.1f, 0.1f}}));
    ASSERT_FALSE(field.root()->isLeaf());
    for (std::size_t i = 0; i < 8; ++i) EXPECT_TRUE(field.root()->child[i].isLeaf());
}

TEST(PathField, CellsLengthsAddUpToThePath) {
    const PathField field = FieldOver(Road(3000));
    double leaves = 0.0;
    ForEachNode(*field.root(), 0, [&](const PathFieldNode& node, int) {
        if (node.isLeaf()) leaves += double(node.totalLength);
    });
    EXPECT_NEAR(leaves / double(field.root()->totalLength), 1.0, 1e-4);  // measured 2e-6
}

TEST(PathField, EqualsThePlainOneBitForBitOnRoadsAndRandomLines) {
    TestRandom random(test::TestSeed(23));
    int split = 0, notANumber = 0;
    for (int round = 0; round < test::TestRounds(60); ++round) {
        const PolyShape shape = round % 6 == 0 ? Road(random.Int(3, 1500)) : RandomShape(random, random.Int(0, 400));
        const PathField field = FieldOver(shape);
        const PlainPathField plain(shape);
        split += field.root()->isLeaf() ? 0 : 1;
        const Box3& box = field.root()->box;
        const Point3 wide = box.Width() * 3.0f;
        for (int i = 0; i < 300; ++i) {
            Point3 point = random.PointIn(box);
            if (i % 3 == 0) point = random.PointIn({box.pmin - wide, box.pmax + wide});
            if (i % 7 == 0 && !plain.pieces.empty()) {
                point = plain.pieces[std::size_t(random.Int(0, int(plain.pieces.size()) - 1))].b;  // on the path itself
            }
            const double fast = field.FieldAt(point), slow = plain.FieldAt(point);
            notANumber += std::isfinite(slow) ? 0 : 1;
            ASSERT_TRUE(SameBits(fast, slow)) << Digits(point) << ": " << Digits(fast) << " and " << Digits(slow);
        }
    }
    EXPECT_GT(split, 20);
    EXPECT_GT(notANumber, 10);
}

TEST(PathField, IsTheIntegralOfTheInverseCubeAlongThePiece) {
    TestRandom random(test::TestSeed(24));
    for (int i = 0; i < test::TestRounds(500); ++i) {
        const Box3 space{{-10, -10, -10}, {10, 10, 10}};
        const Point3 a = random.PointIn(space), b = random.PointIn(space),
                     point = random.PointIn({{-15, -15, 3}, {15, 15, 30}});
        const PathSegment piece = MakePathSegment(a, b);
        const Point3 p = point - a, h = p - piece.dir * Dot(p, piece.dir);
        if (LengthSquared(h) < 1.0f) continue;  // single precision tells little of the perpendicular there
        const double exact = test::FieldByQuadrature(a, b, point, 4000);
        ASSERT_NEAR(FieldOfSegment(piece, point) / exact, 1.0, 5e-4) << Digits(a) << Digits(b) << Digits(point);
    }
}

TEST(PathField, GrowsWithoutBoundTowardsTheLine) {
    const PathField field = FieldOver(Road(400));
    const Point3 on = field.root()->box.Center();
    const PolyShape road = Road(400);
    const Point3 middle = (road.lines[0].points[7] + road.lines[0].points[8]) * 0.5f;
    double before = 0.0;
    for (const float height : {4000.0f, 1000.0f, 200.0f, 50.0f, 10.0f, 1.0f, 0.1f}) {
        const double value = field.FieldAt(middle + Point3{0, 0, height});
        EXPECT_GT(value, before) << height;
        before = value;
    }
    EXPECT_GT(before, 10.0);
    EXPECT_TRUE(std::isfinite(field.FieldAt(on)));
}

TEST(PathField, LumpIsTheOpenedSumWithinWhatThreeHalfWidthsAllow) {
    // A cell of half width w closes at r > 3 w. No point of it is farther from its centre than sqrt(3) w, so each of its
    // pieces counts between (r / (r + sqrt(3) w))^3 and (r / (r - sqrt(3) w))^3 of what the lump makes of it: 0.256 to 13.
    const double near = std::pow(3.0 / (3.0 - std::sqrt(3.0)), 3.0), far = std::pow(3.0 / (3.0 + std::sqrt(3.0)), 3.0);
    TestRandom random(test::TestSeed(25));
    const PolyShape shape = Road(1000);
    const PathField field = FieldOver(shape);
    const PlainPathField plain(shape);
    double least = 1e9, most = 0.0;
    for (int i = 0; i < test::TestRounds(2000); ++i) {
        const Point3 point = random.PointIn({{-60000, -60000, -60000}, {60000, 60000, 60000}});
        const double ratio = plain.OpenedSum(point) / field.FieldAt(point);
        least = std::min(least, ratio);
        most = std::max(most, ratio);
    }
    EXPECT_GT(least, far);
    EXPECT_LT(most, near);
    EXPECT_GT(least, 0.5);  // measured 0.89; the bound is for pieces that all lie in one corner
    EXPECT_LT(most, 2.0);   // measured 1.22
}

TEST(PathField, FarFromASplitTreeItIsTheWholeLengthOverTheCubeOfTheDistance) {
    const PathField field = FieldOver(Road(500));
    ASSERT_FALSE(field.root()->isLeaf());
    const Point3 centre = field.root()->centre;
    const double r = 500000.0;

    const double value = field.FieldAt(centre + Point3{float(r), 0, 0});

    EXPECT_NEAR(value * r * r * r / double(field.root()->totalLength), 1.0, 1e-6);
}

TEST(PathField, LumpBeginsBeyondThreeHalfWidthsAndNotAtThem) {
    // Two pieces far from the centre of their cube; all numbers are exact, so the limit is met to the bit.
    PathField field = FieldOver(OneLine({{0, 0, 0}, {1, 0.25f, 0.125f}, {1, 1, 1}}));
    const PathFieldNode& root = *field.root();
    ASSERT_FALSE(root.isLeaf());
    const float limit = 3.0f * std::sqrt(root.radiusSquared);
    const auto lump = [&](float x) {
        const double r = std::sqrt((double(root.centre.x + x) - double(root.centre.x)) *
                                   (double(root.centre.x + x) - double(root.centre.x)));
        return double(root.totalLength) / (r * r * r);
    };
    const float outside = limit * 1.001f, inside = limit * 0.999f;
    EXPECT_NEAR(field.FieldAt(root.centre + Point3{outside, 0, 0}) / lump(outside), 1.0, 1e-12);
    EXPECT_GT(std::abs(field.FieldAt(root.centre + Point3{inside, 0, 0}) / lump(inside) - 1.0), 1e-4);
}

TEST(PathField, PieceAlongACellWallIsLostFromTheCellsBesideIt) {
    // The wall is at the middle of the root; a line that lies in it is strictly inside of none.
    const PolyShape bend = OneLine({{0, 0.3f, 0.7f}, {8, 7.1f, 6.3f}, {0.5f, 8, 2}});
    const PathField probe = FieldOver(bend);
    const float wall = probe.root()->box.pmin.x + (probe.root()->box.pmax.x - probe.root()->box.pmin.x) * 0.5f;
    // The third piece lies in the wall; it doesn't change the root's box.
    PolyShape shape = bend;
    shape.lines.push_back({{{wall, 2, 3}, {wall, 5, 3.5f}}, false});
    const PathField field = FieldOver(shape);

    double leaves = 0.0;
    ForEachNode(*field.root(), 0, [&](const PathFieldNode& node, int) {
        if (node.isLeaf()) leaves += double(node.totalLength);
    });

    const double lost = double(field.root()->totalLength) - leaves;
    EXPECT_NEAR(lost, std::sqrt(9.0 + 0.25), 1e-4);
    const double beside = field.FieldAt({wall, 3.5f, 3.35f});
    EXPECT_LT(beside, 40.0);  // a gap: with the piece it would be 200 more
}

TEST(PathField, LineThroughAnEdgeOfABoxMissesIt) {
    const Box3 box{{0, 0, 0}, {1, 1, 1}};
    PathSegment part;
    EXPECT_FALSE(ClipSegment(MakePathSegment({-1, 1, 0.5f}, {1, -1, 0.5f}), box, part));
    EXPECT_FALSE(ClipSegment(MakePathSegment({-1, -1, -1}, {2, 2, 2}), box, part)) << "through two corners";
    EXPECT_TRUE(ClipSegment(MakePathSegment({-1, 0.5f, 0.5f}, {2, 0.5f, 0.5f}), box, part));
    EXPECT_EQ(part.length, 1.0f);
    EXPECT_EQ(part.a.x, 0.0f);
    EXPECT_EQ(part.b.x, 1.0f);
}

TEST(PathField, PieceThatStopsBeforeABoxOrStartsBehindItIsOut) {
    const Box3 box{{0, 0, 0}, {1, 1, 1}};
    PathSegment part;
    EXPECT_FALSE(ClipSegment(MakePathSegment({-3, 0.5f, 0.5f}, {-1, 0.5f, 0.5f}), box, part));
    EXPECT_FALSE(ClipSegment(MakePathSegment({2, 0.5f, 0.5f}, {3, 0.5f, 0.5f}), box, part));
    ASSERT_TRUE(ClipSegment(MakePathSegment({0.25f, 0.5f, 0.5f}, {0.75f, 0.5f, 0.5f}), box, part));
    EXPECT_EQ(part.a.x, 0.25f);
    EXPECT_EQ(part.b.x, 0.75f);
}

TEST(PathField, PathPointOnAWallLeavesAPieceWithoutLengthWhoseFieldIsNoNumber) {
    PathSegment part;
    ASSERT_TRUE(ClipSegment(MakePathSegment({1, 0.5f, 0.5f}, {2, 0.5f, 0.5f}), {{0, 0, 0}, {1, 1, 1}}, part));

    EXPECT_EQ(part.length, 0.0f);
    EXPECT_FALSE(FieldOfSegment(part, {5, 5, 5}) > 0.0);
}

TEST(PathField, OnTheLineOfAPieceItIsNotFinite) {
    const PathField field = FieldOver(OneLine({{0, 0, 0}, {4, 0, 0}}));
    EXPECT_FALSE(std::isfinite(field.FieldAt({2, 0, 0})));
    EXPECT_FALSE(std::isfinite(field.FieldAt({0, 0, 0})));
}

TEST(PathField, BuildFailsWithoutASplineAndForgetsTheOneBefore) {
    PathField field = FieldOver(Road(10));
    FixedSource none(nullptr);

    EXPECT_FALSE(field.Build(&none));

    EXPECT_FALSE(field.built());
    EXPECT_EQ(field.FieldAt({1, 2, 3}), 0.0);
    EXPECT_FALSE(field.Build(nullptr));
}

TEST(PathField, BuildReplacesTheOneBefore) {
    PathField field = FieldOver(Road(50));
    const PolyShape line = OneLine({{-1, 0, 0}, {1, 0, 0}});
    FixedSource source(&line);

    EXPECT_TRUE(field.Build(&source));

    EXPECT_DOUBLE_EQ(field.FieldAt({0, 0, 1}), std::sqrt(2.0));
    field.Release();
    EXPECT_FALSE(field.built());
}

TEST(PathField, BadPointsNeitherCrashNorHang) {
    const float big = 3e38f;
    const PolyShape shapes[] = {OneLine({{kNaN, kNaN, kNaN}, {kNaN, 0, 0}}, true),
                                OneLine({{0, 0, 0}, {kNaN, 1, 2}, {5, 5, 5}, {6, 7, kNaN}, {9, 9, 9}}),
                                OneLine({{-big, -big, -big}, {big, big, big}, {big, -big, big}}, true),
                                OneLine(std::vector<Point3>(500, Point3{3, 3, 3}), true),
                                OneLine({{INFINITY, 0, 0}, {0, 0, 0}, {0, -INFINITY, 1}, {2, 2, 2}})};
    for (const PolyShape& shape : shapes) {
        const PathField field = FieldOver(shape);
        EXPECT_TRUE(field.built());
        for (const Point3 point : {Point3{1, 2, 3}, Point3{3, 3, 3}, Point3{kNaN, 0, 0}, Point3{big, big, -big}}) {
            (void)field.FieldAt(point);
        }
    }
}

TEST(PathField, GoodPiecesBesidePiecesThatAreNoNumbersAreFelt) {
    PolyShape shape = Road(200);
    shape.lines.push_back({{{1, 1, kNaN}, {2, 2, 2}}, false});
    const double damaged = FieldOver(shape).FieldAt({12000, 0, 50}), whole = FieldOver(Road(200)).FieldAt({12000, 0, 50});
    EXPECT_NEAR(damaged / whole, 1.0, 1e-3);
}

TEST(PathField, ManyPiecesOnOneLineEndInTimeAndKeepTheirField) {
    // To and fro on one line: every cell along it holds all of them, and the leaf rule alone would go down twelve levels.
    constexpr int kTimes = 60'000;
    PolyLine line;
    for (int i = 0; i <= kTimes; ++i) line.points.push_back(i % 2 == 0 ? Point3{0, 0, 0} : Point3{900, 500, 300});
    const auto start = std::chrono::steady_clock::now();

    const PathField field = FieldOver({{line}});

    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), 60.0);  // measured 0.5 s; a tree without bound would hold 3e8 pieces
    std::size_t held = 0;
    ForEachNode(*field.root(), 0, [&](const PathFieldNode& node, int) { held += std::size_t(node.count); });
    EXPECT_LT(held, std::size_t(10'000'000));
    const double one = FieldOver(OneLine({{0, 0, 0}, {900, 500, 300}})).FieldAt({450, 250, 160});
    EXPECT_NEAR(field.FieldAt({450, 250, 160}) / (one * kTimes), 1.0, 0.02);
}

TEST(PathField, StarOfPiecesThroughOneSpotEnds) {
    TestRandom random(test::TestSeed(26));
    PolyShape shape;
    for (int i = 0; i < 20'000; ++i) {
        const Point3 arm = random.PointIn({{-100, -100, -100}, {100, 100, 100}});
        shape.lines.push_back({{arm, -arm}, false});
    }
    const PathField field = FieldOver(shape);
    EXPECT_GT(field.FieldAt({0.5f, 0.25f, 0.125f}), 0.0);
}

}  // namespace
}  // namespace tavrik
