#include "solver/double_maths.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

DMatrix3 RandomMatrix(TestRandom& random) {
    return {{random.Vector(3.0), random.Vector(3.0), random.Vector(3.0), random.Vector(100.0)}};
}

void ExpectSame(const DPoint3& a, const DPoint3& b) {
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
}

void ExpectNear(const DPoint3& a, const DPoint3& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

TEST(DPoint3Maths, CrossFollowsTheRightHand) {
    ExpectSame(Cross(DPoint3{1, 0, 0}, DPoint3{0, 1, 0}), {0, 0, 1});
    ExpectSame(Cross(DPoint3{0, 1, 0}, DPoint3{0, 0, 1}), {1, 0, 0});
    ExpectSame(Cross(DPoint3{0, 0, 1}, DPoint3{1, 0, 0}), {0, 1, 0});
}

TEST(DPoint3Maths, DotAndLengthSumFromTheLeft) {
    // From the right, or with fewer roundings, the ones would survive.
    EXPECT_EQ(Dot(DPoint3{1e16, 1, -1e16}, DPoint3{1, 1, 1}), 0.0);
    EXPECT_EQ(Length(DPoint3{3, 4, 12}), 13.0);
}

TEST(DPoint3Maths, NormalizeDividesEachComponentByTheLength) {
    TestRandom random(TestSeed(1));
    int reciprocalWouldDiffer = 0;
    for (int i = 0; i < 1000; ++i) {
        const DPoint3 a = random.Vector(10.0);
        const double length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
        const DPoint3 unit = Normalize(a);
        ASSERT_EQ(unit.x, a.x / length) << Digits(a);
        ASSERT_EQ(unit.y, a.y / length) << Digits(a);
        ASSERT_EQ(unit.z, a.z / length) << Digits(a);
        reciprocalWouldDiffer += unit.x != a.x * (1.0 / length);
    }
    EXPECT_GT(reciprocalWouldDiffer, 100);
}

TEST(DPoint3Maths, NormalizeOfZeroIsZero) { ExpectSame(Normalize(DPoint3{0, 0, 0}), {0, 0, 0}); }

TEST(TransformPoint, OfTheXAxisIsRowZeroPlusRowThree) {
    TestRandom random(TestSeed(2));
    const DMatrix3 m = RandomMatrix(random);
    ExpectSame(TransformPoint({1, 0, 0}, m), m.row[0] + m.row[3]);
}

TEST(TransformPoint, SumsFromTheLeft) {
    const DMatrix3 m = {{{1e16, 0, 0}, {1, 0, 0}, {-1e16, 0, 0}, {0, 0, 0}}};
    EXPECT_EQ(TransformPoint({1, 1, 1}, m).x, 0.0);
}

TEST(Compose, WithTheIdentityChangesNothing) {
    TestRandom random(TestSeed(3));
    const DMatrix3 m = RandomMatrix(random);
    const DMatrix3 before = Compose(IdentityDMatrix3(), m), after = Compose(m, IdentityDMatrix3());
    for (int r = 0; r < 4; ++r) {
        ExpectSame(before.row[r], m.row[r]);
        ExpectSame(after.row[r], m.row[r]);
    }
}

TEST(Compose, AppliesTheLeftFrameFirst) {
    TestRandom random(TestSeed(4));
    for (int i = 0; i < 100; ++i) {
        const DMatrix3 a = RandomMatrix(random), b = RandomMatrix(random);
        const DPoint3 p = random.Vector(10.0);
        ExpectNear(TransformPoint(p, Compose(a, b)), TransformPoint(TransformPoint(p, a), b), 1e-11);  // measured 3e-13
    }
}

TEST(RotateZ, ByAQuarterTurnsXToYAndYToMinusX) {
    DMatrix3 m = IdentityDMatrix3();
    RotateZ(m, std::acos(0.0));
    ExpectNear(m.row[0], {0, 1, 0}, 1e-15);
    ExpectNear(m.row[1], {-1, 0, 0}, 1e-15);
    ExpectSame(m.row[2], {0, 0, 1});
}

TEST(RotateX, ByAQuarterTurnsYToZAndZToMinusY) {
    DMatrix3 m = IdentityDMatrix3();
    RotateX(m, std::acos(0.0));
    ExpectSame(m.row[0], {1, 0, 0});
    ExpectNear(m.row[1], {0, 0, 1}, 1e-15);
    ExpectNear(m.row[2], {0, -1, 0}, 1e-15);
}

TEST(RotateY, ByAQuarterTurnsZToXAndXToMinusZ) {
    DMatrix3 m = IdentityDMatrix3();
    RotateY(m, std::acos(0.0));
    ExpectNear(m.row[0], {0, 0, -1}, 1e-15);
    ExpectSame(m.row[1], {0, 1, 0});
    ExpectNear(m.row[2], {1, 0, 0}, 1e-15);
}

TEST(RotateXYZ, LeaveThePlaceAlone) {
    TestRandom random(TestSeed(5));
    DMatrix3 m = RandomMatrix(random);
    const DPoint3 place = m.row[3];
    RotateX(m, 0.3);
    RotateY(m, -1.1);
    RotateZ(m, 2.2);
    ExpectSame(m.row[3], place);
}

TEST(RotateXYZ, TurnAboutTheWorldAxesNotTheFramesOwn) {
    DMatrix3 m = IdentityDMatrix3();
    RotateZ(m, std::acos(0.0));  // its X axis now points along world Y
    RotateX(m, std::acos(0.0));  // about world X that goes up; about its own X it would stay
    ExpectNear(m.row[0], {0, 0, 1}, 1e-15);
}

TEST(Inverse, UndoesTheMatrix) {
    TestRandom random(TestSeed(6));
    int tested = 0;
    for (int i = 0; i < 1000; ++i) {
        const DMatrix3 m = RandomMatrix(random);
        if (std::abs(Dot(m.row[0], Cross(m.row[1], m.row[2]))) < 0.5) continue;
        DMatrix3 inverse = m;
        Inverse(inverse);
        const DPoint3 p = random.Vector(10.0);
        ExpectNear(TransformPoint(TransformPoint(p, m), inverse), p, 1e-9);  // measured 5e-12
        ++tested;
    }
    EXPECT_GT(tested, 800);
}

TEST(Inverse, DividesEachCofactorByTheDeterminant) {
    DMatrix3 m = {{{3, 0, 0}, {0, 7, 0}, {0, 0, 11}, {3, 7, 11}}};
    Inverse(m);
    // 77 / 231 is a rounding away from 1 / 3 only by chance; both sides are spelled as quotients.
    ExpectSame(m.row[0], {77.0 / 231.0, 0, 0});
    ExpectSame(m.row[1], {0, 33.0 / 231.0, 0});
    ExpectSame(m.row[2], {0, 0, 21.0 / 231.0});
    ExpectNear(m.row[3], {-1, -1, -1}, 1e-15);
}

TEST(Inverse, OfASingularMatrixIsNotFinite) {
    DMatrix3 m = {{{1, 2, 3}, {2, 4, 6}, {0, 0, 1}, {0, 0, 0}}};
    Inverse(m);
    EXPECT_FALSE(std::isfinite(m.row[0].x));
}

TEST(Matrix3Crossings, WidenExactlyAndNarrowOnce) {
    const Matrix3 m = {{{0.1f, 0.2f, 0.3f}, {1e-30f, 1e30f, -0.0f}, {1, 2, 3}, {1234.567f, -5.0f, 0.7f}}};
    const Matrix3 back = ToMatrix3(FromMatrix3(m));
    for (std::size_t r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(back.row[r][c], m.row[r][c]);
    }
    EXPECT_EQ(FromMatrix3(m).row[0].x, 0.10000000149011612);
    DMatrix3 wide = IdentityDMatrix3();
    wide.row[3].y = 0.1;
    EXPECT_EQ(ToMatrix3(wide).row[3].y, 0.1f);
}

TEST(WithoutTranslation, KeepsTheAxes) {
    TestRandom random(TestSeed(7));
    const DMatrix3 m = RandomMatrix(random);
    const DMatrix3 turn = WithoutTranslation(m);
    for (int r = 0; r < 3; ++r) ExpectSame(turn.row[r], m.row[r]);
    ExpectSame(turn.row[3], {0, 0, 0});
}

}  // namespace
}  // namespace tavrik::test
