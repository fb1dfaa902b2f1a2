#include "solver/hitch_joint.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

HitchJoint JointBetween(RigidBody& a, RigidBody& b) { return {&a, &b, {0, -10, 0}, {0, 10, 0}, 500.0, 30.0}; }

TEST(ApplyJoint, PointsThatCoincideAndBodiesThatMoveAlikeFeelExactlyNothing) {
    RigidBody a, b;
    b.frame.row[3] = {0, -20, 0};
    a.velocity = b.velocity = {3, 4, 5};
    ApplyJoint(JointBetween(a, b), 1e-4);
    for (const RigidBody* body : {&a, &b}) {
        EXPECT_EQ(Length(body->momentum), 0.0);
        EXPECT_EQ(Length(body->angularMomentum), 0.0);
    }
}

TEST(ApplyJoint, PullsTogetherWhatHasParted) {
    RigidBody a, b;
    b.frame.row[3] = {0, -23, 0};  // three units apart
    ApplyJoint(JointBetween(a, b), 0.5);
    EXPECT_EQ(a.momentum.y, -3.0 * 500.0 * 0.5);
    EXPECT_EQ(b.momentum.y, 3.0 * 500.0 * 0.5);
}

TEST(ApplyJoint, DampsTheSpeedBetweenThePoints) {
    RigidBody a, b;
    b.frame.row[3] = {0, -20, 0};
    b.velocity = {0, 0, 2};
    ApplyJoint(JointBetween(a, b), 1.0);
    EXPECT_EQ(a.momentum.z, 60.0);
    EXPECT_EQ(b.momentum.z, -60.0);
}

TEST(ApplyJoint, KeepsTheMomentumOfBothBodiesTogether) {
    TestRandom random(TestSeed(21));
    for (int i = 0; i < 1000; ++i) {
        RigidBody a, b;
        a.frame = random.Turn();
        b.frame = random.Turn();
        a.frame.row[3] = random.Vector(100.0);
        b.frame.row[3] = random.Vector(100.0);
        a.velocity = random.Vector(50.0);
        b.angularVelocity = random.Vector(3.0);
        const HitchJoint joint = {&a, &b, random.Vector(20.0), random.Vector(20.0), 500.0, 30.0};
        ApplyJoint(joint, 1e-3);
        EXPECT_EQ(Length(a.momentum + b.momentum), 0.0);
        EXPECT_GT(Length(a.momentum), 0.0);
    }
}

TEST(ApplyJoint, LetsBothBodiesTurnFreelyAboutThePoint) {
    RigidBody a, b;
    b.frame.row[3] = {0, -20, 0};
    a.angularVelocity = {1, 2, 3};
    // The centre of `a` moves as its turn about the joint demands.
    a.velocity = -Cross(a.angularVelocity, DPoint3{0, -10, 0});
    ApplyJoint(JointBetween(a, b), 1.0);
    EXPECT_EQ(Length(a.momentum), 0.0);
    EXPECT_EQ(Length(b.angularMomentum), 0.0);
}

TEST(ApplyJoint, FindsItsPointsAfreshEachTime) {
    RigidBody a, b;
    b.frame.row[3] = {0, -20, 0};
    const HitchJoint joint = JointBetween(a, b);
    ApplyJoint(joint, 1.0);
    b.frame.row[3] = {0, -21, 0};
    ApplyJoint(joint, 1.0);
    EXPECT_EQ(b.momentum.y, 500.0);
}

}  // namespace
}  // namespace tavrik::test
