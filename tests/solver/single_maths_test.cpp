#include "solver/single_maths.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "solver/double_maths.h"
#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

Point3 RandomPoint(TestRandom& random, float largest) { return ToPoint3(random.Vector(double(largest))); }

Matrix3 RandomMatrix(TestRandom& random) {
    return {{RandomPoint(random, 3), RandomPoint(random, 3), RandomPoint(random, 3), RandomPoint(random, 100)}};
}

float At(const Point3& p, int axis) { return p[std::size_t(axis)]; }

bool SameBits(const Matrix3& a, const Matrix3& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(Matrix3Product, EachElementSumsFromTheLeftAndThenAddsTheTranslation) {
    TestRandom random(TestSeed(1));
    int otherOrderWouldDiffer = 0;
    for (int round = 0; round < TestRounds(1000); ++round) {
        const Matrix3 a = RandomMatrix(random), b = RandomMatrix(random);
        const Matrix3 product = a * b;
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < 3; ++c) {
                const float x = a.row[r].x * At(b.row[0], c), y = a.row[r].y * At(b.row[1], c),
                            z = a.row[r].z * At(b.row[2], c);
                const float sum = (x + y) + z;
                const float expected = r == 3 ? sum + At(b.row[3], c) : sum;
                ASSERT_EQ(At(product.row[r], c), expected) << r << " " << c;
                otherOrderWouldDiffer += sum != x + (y + z);
            }
        }
    }
    EXPECT_GT(otherOrderWouldDiffer, 100);
}

TEST(Matrix3Product, AppliesTheLeftFrameFirst) {
    const Matrix3 turn = {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0}}};  // a quarter about Z
    const Matrix3 move = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 0, 0}}};
    const Point3 turnedThenMoved = TransformPoint({1, 0, 0}, turn * move),
                 movedThenTurned = TransformPoint({1, 0, 0}, move * turn);
    EXPECT_EQ(turnedThenMoved.x, 10.0f);
    EXPECT_EQ(turnedThenMoved.y, 1.0f);
    EXPECT_EQ(movedThenTurned.x, 0.0f);
    EXPECT_EQ(movedThenTurned.y, 11.0f);
}

TEST(Matrix3Product, IdentityChangesNothingOnEitherSide) {
    TestRandom random(TestSeed(2));
    for (int round = 0; round < TestRounds(100); ++round) {
        const Matrix3 m = RandomMatrix(random);
        EXPECT_TRUE(SameBits(m * IdentityMatrix3(), m));
        EXPECT_TRUE(SameBits(IdentityMatrix3() * m, m));
    }
}

/// Cofactor of element (r, c): rows and columns taken in a ring, so that no sign is needed.
float Cofactor(const Matrix3& m, int r, int c) {
    const Point3 &p = m.row[(r + 1) % 3], &q = m.row[(r + 2) % 3];
    return At(p, (c + 1) % 3) * At(q, (c + 2) % 3) - At(p, (c + 2) % 3) * At(q, (c + 1) % 3);
}

TEST(Matrix3Inverse, DividesEachCofactorByTheDeterminant) {
    TestRandom random(TestSeed(3));
    int reciprocalWouldDiffer = 0;
    for (int round = 0; round < TestRounds(1000); ++round) {
        const Matrix3 m = RandomMatrix(random), inverse = Inverse(m);
        const float det = (m.row[0].x * Cofactor(m, 0, 0) + m.row[1].x * Cofactor(m, 1, 0)) + m.row[2].x * Cofactor(m, 2, 0);
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_EQ(At(inverse.row[r], c), Cofactor(m, c, r) / det) << r << " " << c;
                reciprocalWouldDiffer += At(inverse.row[r], c) != Cofactor(m, c, r) * (1.0f / det);
            }
        }
    }
    EXPECT_GT(reciprocalWouldDiffer, 100);
}

TEST(Matrix3Inverse, TranslationIsTheOldOneSentThroughTheInverseAndTurnedBack) {
    TestRandom random(TestSeed(4));
    for (int round = 0; round < TestRounds(1000); ++round) {
        const Matrix3 m = RandomMatrix(random), inverse = Inverse(m);
        const Point3 t = m.row[3];
        for (int c = 0; c < 3; ++c) {
            const float sum = (t.x * At(inverse.row[0], c) + t.y * At(inverse.row[1], c)) + t.z * At(inverse.row[2], c);
            ASSERT_EQ(At(inverse.row[3], c), -sum);
        }
    }
}

TEST(Matrix3Inverse, UndoesATurnAMoveAndAScale) {
    TestRandom random(TestSeed(5));
    for (int round = 0; round < TestRounds(1000); ++round) {
        Matrix3 m = ToMatrix3(random.Turn());
        for (int r = 0; r < 3; ++r) m.row[r] = m.row[r] * random.Between(0.5f, 2.0f);
        m.row[3] = RandomPoint(random, 100);
        const Matrix3 both = m * Inverse(m), identity = IdentityMatrix3();
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < 3; ++c) ASSERT_NEAR(At(both.row[r], c), At(identity.row[r], c), 2e-6f);  // measured 4e-7
        }
    }
}

TEST(Matrix3Inverse, OfTheIdentityIsTheIdentity) {
    const Matrix3 inverse = Inverse(IdentityMatrix3());
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) EXPECT_EQ(At(inverse.row[r], c), r == c ? 1.0f : 0.0f);
    }
}

TEST(Matrix3Inverse, OfAFlatFrameIsTheIdentity) {
    Matrix3 flat = IdentityMatrix3();
    flat.row[1] = {0, 0, 0};
    flat.row[3] = {5, 6, 7};
    EXPECT_TRUE(SameBits(Inverse(flat), IdentityMatrix3()));
    const Matrix3 inPlane = {{{1, 2, 3}, {2, 4, 6}, {0, 0, 1}, {0, 0, 0}}};
    EXPECT_TRUE(SameBits(Inverse(inPlane), IdentityMatrix3()));
}

TEST(FindInverse, LeavesItsResultAloneWhereThereIsNone) {
    const Matrix3 before = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}}};
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    for (const float size : {0.0f, 1e-20f, 1e13f, 1e30f, inf, nan}) {
        Matrix3 inverse = before, m = IdentityMatrix3();
        for (int r = 0; r < 3; ++r) m.row[r] = m.row[r] * size;
        EXPECT_FALSE(FindInverse(m, inverse)) << size;
        EXPECT_TRUE(SameBits(inverse, before)) << size;
    }
}

TEST(FindInverse, TakesFramesThatAreVerySmallOrLarge) {
    for (const float size : {1e-10f, 1e-3f, 1e3f, 1e10f}) {
        Matrix3 inverse, m = IdentityMatrix3();
        for (int r = 0; r < 3; ++r) m.row[r] = m.row[r] * size;
        ASSERT_TRUE(FindInverse(m, inverse)) << size;
        EXPECT_NEAR(inverse.row[1].y * size, 1.0f, 1e-6f) << size;
    }
}

}  // namespace
}  // namespace tavrik::test
