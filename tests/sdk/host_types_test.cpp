#include <gtest/gtest.h>

#include <cmath>
#include <concepts>

#include "host/sdk/max.h"
#include "solver/single_maths.h"
#include "tests/sdk/test_target.h"
#include "tests/support/test_random.h"

namespace tavrik_host::test {
namespace {

using tavrik::test::TestRandom;
using tavrik::test::TestRounds;
using tavrik::test::TestSeed;

// Whoever passes FOREVER where a call wants to write doesn't get past this host's compiler.
template <typename T>
concept CanBeNarrowed = std::invocable<void (*)(Interval&), T>;
static_assert(CanBeNarrowed<Interval&>);
static_assert(!CanBeNarrowed<decltype(FOREVER)>);
static_assert(!CanBeNarrowed<decltype(NEVER)>);
// Only a maker itself may store what it refers to.
template <typename T>
concept StoresFromOutside = requires(T& maker) {
    maker.SetReference(0, nullptr);
};
static_assert(!StoresFromOutside<ReferenceMaker>);
static_assert(!std::copyable<TestTarget>);

Matrix3 RandomFrame(TestRandom& random) {
    Matrix3 m;
    for (int row = 0; row < 4; ++row) {
        const float reach = row == 3 ? 500.0f : 2.0f;
        m.SetRow(row, Point3(random.Between(-reach, reach), random.Between(-reach, reach), random.Between(-reach, reach)));
    }
    return m;
}

tavrik::Matrix3 AsRecord(const Matrix3& m) {
    tavrik::Matrix3 record{};
    for (int row = 0; row < 4; ++row) record.row[row] = {m.GetRow(row).x, m.GetRow(row).y, m.GetRow(row).z};
    return record;
}

Matrix3 FromRecord(const tavrik::Matrix3& record) {
    Matrix3 m;
    for (int row = 0; row < 4; ++row) m.SetRow(row, Point3(record.row[row].x, record.row[row].y, record.row[row].z));
    return m;
}

/// Sum of products in double, by the book.
double Entry(const Matrix3& a, const Matrix3& b, int row, int column) {
    double sum = row == 3 ? double(b.GetRow(3)[column]) : 0.0;
    for (int k = 0; k < 3; ++k) sum += double(a.GetRow(row)[k]) * double(b.GetRow(k)[column]);
    return sum;
}

double Determinant(const Matrix3& m) {
    const auto at = [&](int r, int c) { return double(m.GetRow(r)[c]); };
    return at(0, 0) * (at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1)) - at(0, 1) * (at(1, 0) * at(2, 2) - at(1, 2) * at(2, 0)) +
           at(0, 2) * (at(1, 0) * at(2, 1) - at(1, 1) * at(2, 0));
}

TEST(HostMatrix, UnsetOneHoldsNothingButNaNs) {
    const Matrix3 m;
    for (int row = 0; row < 4; ++row) {
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(std::isnan(m.GetRow(row)[i]));
    }
}

TEST(HostMatrix, ProductAgreesWithSumsInDouble) {
    TestRandom random(TestSeed(7));
    for (int i = 0; i < TestRounds(1000); ++i) {
        const Matrix3 a = RandomFrame(random), b = RandomFrame(random), product = a * b;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column) {
                // measured 3.3e-4 over a million: translations reach 500 x 2 x 3
                ASSERT_NEAR(double(product.GetRow(row)[column]), Entry(a, b, row, column), 1e-3);
            }
        }
    }
}

TEST(HostMatrix, ProductWithTheInverseIsTheIdentity) {
    TestRandom random(TestSeed(8));
    int sound = 0;
    for (int i = 0; i < TestRounds(1000); ++i) {
        const Matrix3 a = RandomFrame(random);
        if (std::abs(Determinant(a)) < 1.0) continue;  // nearly flat ones lose digits
        ++sound;
        const Matrix3 inverse = Inverse(a);
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column) {
                // measured over a million: 3.3e-4 in the translation, 1.6e-6 elsewhere
                ASSERT_NEAR(Entry(a, inverse, row, column), row == column ? 1.0 : 0.0, row == 3 ? 1e-3 : 1e-5);
            }
        }
    }
    EXPECT_GT(sound, 500);
}

TEST(HostMatrix, ProductAndInverseHaveTheBitsOfTheRecords) {
    TestRandom random(TestSeed(9));
    for (int i = 0; i < TestRounds(2000); ++i) {
        const Matrix3 a = RandomFrame(random), b = RandomFrame(random);
        ASSERT_TRUE(SameBits(a * b, FromRecord(AsRecord(a) * AsRecord(b))));
        ASSERT_TRUE(SameBits(Inverse(a), FromRecord(tavrik::Inverse(AsRecord(a)))));
    }
}

TEST(HostMatrix, FlatFrameHasTheIdentityForAnInverse) {
    Matrix3 flat(TRUE);
    flat.SetRow(2, Point3(0, 0, 0));
    flat.SetTrans(Point3(1, 2, 3));
    EXPECT_TRUE(SameBits(Inverse(flat), Matrix3(TRUE)));
}

TEST(HostMatrix, QuarterTurnAboutYTakesXToMinusZ) {
    Matrix3 m(TRUE);
    m.SetTrans(Point3(0, 5, 2));
    m.RotateY(1.57079633f);
    EXPECT_NEAR(m.GetRow(0).z, -1.0f, 1e-6f);
    EXPECT_NEAR(m.GetRow(2).x, 1.0f, 1e-6f);
    EXPECT_NEAR(m.GetTrans().x, 2.0f, 1e-6f);
    EXPECT_EQ(m.GetTrans().y, 5.0f);
}

TEST(HostInterval, NarrowsToWhatBothHold) {
    Interval valid = FOREVER;
    valid &= Interval(10, 30);
    valid &= Interval(20, 40);
    EXPECT_EQ(valid, Interval(20, 30));
    valid &= Interval(31, 40);
    EXPECT_TRUE(valid.Empty());
    EXPECT_FALSE(valid.InInterval(TIME_NegInfinity));
}

TEST(HostMesh, CopiesGeometryAndTopologyByChannel) {
    Mesh from, to;
    from.setNumVerts(3);
    for (int i = 0; i < 3; ++i) from.setVert(i, Point3(float(i), 1, 2));
    from.setNumFaces(1);
    from.faces[0].setVerts(0, 1, 2);

    to.DeepCopy(&from, 1u << GEOM_CHAN_NUM);
    EXPECT_EQ(to.numVerts, 3);
    EXPECT_EQ(to.numFaces, 0);
    to.DeepCopy(&from, OBJ_CHANNELS);

    EXPECT_EQ(to.getVert(2), Point3(2, 1, 2));
    ASSERT_EQ(to.numFaces, 1);
    EXPECT_EQ(to.faces[0].getVert(2), 2u);
    EXPECT_NE(to.verts, from.verts);
}

TEST(HostMesh, ForgottenVertexIsANumberToNobody) {
    Mesh mesh;
    EXPECT_TRUE(mesh.setNumVerts(2));
    EXPECT_TRUE(std::isnan(mesh.getVert(1).x));
    EXPECT_FALSE(mesh.setNumVerts(-1));
    EXPECT_EQ(mesh.numVerts, 2);
}

TEST(HostTriObject, ChannelHoldsForItsSpanAndForAnInstantElsewhere) {
    TriObject* const object = CreateNewTriObject();
    object->SetChannelValidity(GEOM_CHAN_NUM, Interval(0, 100));
    EXPECT_EQ(object->ChannelValidity(50, GEOM_CHAN_NUM), Interval(0, 100));
    EXPECT_EQ(object->ChannelValidity(150, GEOM_CHAN_NUM), Interval(150, 150));
    EXPECT_EQ(object->ChannelValidity(150, TOPO_CHAN_NUM), FOREVER);
    object->DeleteMe();
}

TEST(HostTriObject, BoxOfAMovedMeshHoldsItsVertices) {
    TriObject* const object = CreateNewTriObject();
    object->mesh.setNumVerts(2);
    object->mesh.setVert(0, Point3(0, 0, 0));
    object->mesh.setVert(1, Point3(1, 2, 3));
    Matrix3 move(TRUE);
    move.SetTrans(Point3(10, 0, 0));
    Box3 box;
    object->GetDeformBBox(0, box, &move);
    EXPECT_EQ(box.Min(), Point3(10, 0, 0));
    EXPECT_EQ(box.Max(), Point3(11, 2, 3));
    object->DeleteMe();
}

}  // namespace
}  // namespace tavrik_host::test
