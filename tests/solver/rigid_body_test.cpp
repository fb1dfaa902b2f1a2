#include "solver/rigid_body.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

void ExpectSame(const DPoint3& a, const DPoint3& b) {
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
}

TEST(RigidBodyRecord, StartsAtRestAtTheOrigin) {
    const RigidBody body;
    ExpectSame(body.frame.row[0], {1, 0, 0});
    ExpectSame(body.frame.row[1], {0, 1, 0});
    ExpectSame(body.frame.row[2], {0, 0, 1});
    for (const DPoint3& zero : {body.frame.row[3], body.momentum, body.angularMomentum, body.velocity, body.angularVelocity}) {
        ExpectSame(zero, {0, 0, 0});
    }
}

TEST(ApplyForceAt, ThroughTheCentreOfMassChangesMomentumOnly) {
    RigidBody body;
    body.frame.row[3] = {10, 20, 30};
    ApplyForceAt(body, {10, 20, 30}, {1, -2, 3});
    ExpectSame(body.momentum, {1, -2, 3});
    ExpectSame(body.angularMomentum, {0, 0, 0});
}

TEST(ApplyForceAt, BesideTheCentreOfMassTurnsTheBody) {
    RigidBody body;
    body.frame.row[3] = {10, 0, 0};
    ApplyForceAt(body, {12, 0, 0}, {0, 5, 0});
    ExpectSame(body.angularMomentum, {0, 0, 10});
    ApplyTorque(body, {1, 2, 3});
    ExpectSame(body.angularMomentum, {1, 2, 13});
    ExpectSame(body.momentum, {0, 5, 0});
}

TEST(VelocityAt, AddsTheTurnAboutTheCentreOfMass) {
    RigidBody body;
    body.frame.row[3] = {10, 0, 0};
    body.velocity = {0, 0, 7};
    body.angularVelocity = {0, 0, 2};
    ExpectSame(VelocityAt(body, {13, 0, 0}), {0, 6, 7});
}

TEST(IntegrateBody, MomentumOfItsOwnMassMovesABodyOneUnitASecond) {
    RigidBody body;
    body.momentum = {12.5, 0, 0};
    UpdateVelocities(body, CornerInertia({1, 2, 3}, 12.5, body.frame));
    for (int i = 0; i < 1024; ++i) IntegrateBody(body, 1.0 / 1024.0);
    ExpectSame(body.frame.row[3], {1, 0, 0});
}

TEST(IntegrateBody, TurnsInFifthsOfSinglePrecision) {
    RigidBody body;
    body.angularVelocity = {0, 0, 3.0};
    IntegrateBody(body, 0.1);
    const double angle = std::atan2(body.frame.row[0].y, body.frame.row[0].x);
    EXPECT_NEAR(angle, 0.3 * 5.0 * double(0.2f), 1e-15);
    EXPECT_GT(angle - 0.3, 1e-9);  // an exact fifth would give 0.3
    EXPECT_NEAR(angle, 0.3, 1e-8);
}

TEST(IntegrateBody, ThePlaceDoesNotDisturbTheTurn) {
    RigidBody near, far;
    far.frame.row[3] = {1e7, -1e7, 3e6};
    near.angularVelocity = far.angularVelocity = {1, -2, 0.5};
    for (int i = 0; i < 100; ++i) {
        IntegrateBody(near, 1e-3);
        IntegrateBody(far, 1e-3);
    }
    EXPECT_EQ(std::memcmp(near.frame.row, far.frame.row, 3 * sizeof(DPoint3)), 0);
    ExpectSame(far.frame.row[3], {1e7, -1e7, 3e6});
}

TEST(IntegrateBody, ASecondOfTurningKeepsTheFrameOrthonormal) {
    RigidBody body;
    body.angularVelocity = {30, -20, 50};
    for (int i = 0; i < 4500; ++i) IntegrateBody(body, kDt);
    double worst = 0.0;
    for (int r = 0; r < 3; ++r) {
        worst = std::max(worst, std::abs(Length(body.frame.row[r]) - 1.0));
        worst = std::max(worst, std::abs(Dot(body.frame.row[r], body.frame.row[(r + 1) % 3])));
    }
    EXPECT_LT(worst, 1e-10);  // measured 1.3e-12
}

TEST(CornerInertia, OfACubeIsTheSameInEveryOrientation) {
    TestRandom random(TestSeed(11));
    const double h = 7.0, mass = 3.0, expected = 1.0 / (2.0 * mass * h * h);
    for (int i = 0; i < 100; ++i) {
        DMatrix3 frame = random.Turn();
        frame.row[3] = random.Vector(1000.0);
        const BodyInverseInertia inertia = CornerInertia({h, h, h}, mass, frame);
        for (int r = 0; r < 3; ++r) {
            const DPoint3& row = inertia.inverseTensor.row[r];
            const double values[3] = {row.x, row.y, row.z};
            for (int c = 0; c < 3; ++c) EXPECT_NEAR(values[c], r == c ? expected : 0.0, expected * 1e-13);  // measured 2e-15
        }
        EXPECT_EQ(inertia.inverseMass, 1.0 / mass);
    }
}

TEST(CornerInertia, OfABoxIsThatOfItsEightCorners) {
    const BodyInverseInertia inertia = CornerInertia({1, 2, 3}, 5.0, IdentityDMatrix3());
    EXPECT_DOUBLE_EQ(inertia.inverseTensor.row[0].x, 1.0 / (5.0 * (4 + 9)));
    EXPECT_DOUBLE_EQ(inertia.inverseTensor.row[1].y, 1.0 / (5.0 * (1 + 9)));
    EXPECT_DOUBLE_EQ(inertia.inverseTensor.row[2].z, 1.0 / (5.0 * (1 + 4)));
}

TEST(CornerInertia, ThePlaceOfTheBodyPlaysNoPart) {
    TestRandom random(TestSeed(12));
    DMatrix3 frame = random.Turn();
    const BodyInverseInertia here = CornerInertia({1, 2, 3}, 5.0, frame);
    frame.row[3] = {1e9, -1e9, 1e9};
    const BodyInverseInertia there = CornerInertia({1, 2, 3}, 5.0, frame);
    EXPECT_EQ(std::memcmp(&here, &there, sizeof here), 0);
    ExpectSame(there.inverseTensor.row[3], {0, 0, 0});
}

TEST(ResetBody, StandsStillAtTheFrame) {
    TestRandom random(TestSeed(13));
    RigidBody body;
    body.momentum = body.angularMomentum = body.velocity = body.angularVelocity = {1, 2, 3};
    const DMatrix3 frame = random.Turn();
    ResetBody(body, frame);
    EXPECT_EQ(std::memcmp(&body.frame, &frame, sizeof frame), 0);
    for (const DPoint3& zero : {body.momentum, body.angularMomentum, body.velocity, body.angularVelocity}) {
        ExpectSame(zero, {0, 0, 0});
    }
}

TEST(CopyRecordedState, LeavesVelocitiesAsTheyAre) {
    RigidBody from, to;
    from.frame.row[3] = {1, 2, 3};
    from.momentum = {4, 5, 6};
    from.angularMomentum = {7, 8, 9};
    from.velocity = from.angularVelocity = {-1, -1, -1};
    to.velocity = {10, 11, 12};
    to.angularVelocity = {13, 14, 15};

    MotionSample sample;
    CopyRecordedState(sample, from);
    CopyRecordedState(to, sample);

    ExpectSame(to.frame.row[3], {1, 2, 3});
    ExpectSame(to.momentum, {4, 5, 6});
    ExpectSame(to.angularMomentum, {7, 8, 9});
    ExpectSame(to.velocity, {10, 11, 12});
    ExpectSame(to.angularVelocity, {13, 14, 15});
}

}  // namespace
}  // namespace tavrik::test
