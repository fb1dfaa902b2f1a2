#include "solver/contact.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavrik {
namespace {

constexpr double kStiffness = 100.0, kDamping = 10.0;

ContactPoint GroundBelow(double depth) { return {{0, 0, -5}, {0, 0, -1}, depth, 1}; }

void Press(RigidBody& body, const ContactPoint& ground, double friction = 1.0, double w = 1.0) {
    ContactForces(body, {&ground, 1}, kStiffness, kDamping, friction, w);
}

TEST(ContactForces, ABodyAtRestIsPushedOutByItsDepth) {
    RigidBody body;
    Press(body, GroundBelow(1.0));
    EXPECT_EQ(body.momentum.z, kStiffness);
    EXPECT_EQ(body.momentum.x, 0.0);
    EXPECT_EQ(body.momentum.y, 0.0);
}

TEST(ContactForces, SinkingAddsDamping) {
    RigidBody body;
    body.velocity = {0, 0, -3};
    Press(body, GroundBelow(1.0));
    EXPECT_EQ(body.momentum.z, kStiffness + 3.0 * kDamping);
}

TEST(ContactForces, GroundNeverPullsABodyThatLeavesFast) {
    RigidBody body;
    body.velocity = {0, 0, 100};
    Press(body, GroundBelow(1.0));
    EXPECT_EQ(body.momentum.z, 0.0);
}

TEST(ContactForces, AForceOfExactlyZeroDoesNothing) {
    RigidBody body;
    body.velocity = {5, 0, 10};  // leaves just as fast as the ground pushes; a push of zero has no friction either
    Press(body, GroundBelow(1.0));
    EXPECT_EQ(body.momentum.x, 0.0);
    EXPECT_EQ(body.momentum.z, 0.0);
}

TEST(ContactForces, WithoutSlidingThereIsOnlyTheNormalImpulse) {
    RigidBody body;
    body.velocity = {0, 0, -1};
    Press(body, GroundBelow(1.0), /*friction=*/5.0);
    EXPECT_EQ(body.momentum.x, 0.0);
    EXPECT_EQ(body.momentum.y, 0.0);
    EXPECT_GT(body.momentum.z, 0.0);
}

TEST(ContactForces, FrictionWorksFullyAgainstSlidingHoweverSlow) {
    for (const double speed : {1e-12, 1.0, 1e6}) {
        RigidBody body;
        body.velocity = {0.6 * speed, 0.8 * speed, 0};
        Press(body, GroundBelow(1.0), /*friction=*/0.5);
        EXPECT_NEAR(body.momentum.x, -0.3 * kStiffness, 1e-12);
        EXPECT_NEAR(body.momentum.y, -0.4 * kStiffness, 1e-12);
        EXPECT_EQ(body.momentum.z, kStiffness);
    }
}

TEST(ContactForces, FrictionMayExceedTheLoad) {
    RigidBody body;
    body.velocity = {1, 0, 0};
    Press(body, GroundBelow(1.0), /*friction=*/3.0);
    EXPECT_EQ(body.momentum.x, -3.0 * kStiffness);
}

TEST(ContactForces, ATurningBodySlidesAtThePointNotAtItsCentre) {
    RigidBody body;
    body.angularVelocity = {2, 0, 0};  // at (0, 0, -5) that moves along +y
    Press(body, GroundBelow(1.0), /*friction=*/1.0);
    EXPECT_EQ(body.momentum.y, -kStiffness);
    EXPECT_EQ(body.angularMomentum.x, -5.0 * kStiffness);  // and slows the turn
}

TEST(ContactForces, AMissedRayIsNotLookedAt) {
    RigidBody body;
    ContactPoint stale = GroundBelow(std::nan(""));
    stale.hit = 0;
    Press(body, stale);
    EXPECT_EQ(body.momentum.z, 0.0);
}

TEST(ContactForces, TheWeightScalesTheImpulse) {
    RigidBody body;
    Press(body, GroundBelow(1.0), 1.0, 0.25);
    EXPECT_EQ(body.momentum.z, 0.25 * kStiffness);
}

TEST(ContactForces, EveryContactOfAPassSeesTheSameVelocity) {
    const ContactPoint grounds[2] = {GroundBelow(1.0), GroundBelow(1.0)};
    RigidBody body;
    body.velocity = {0, 0, -3};
    ContactForces(body, grounds, kStiffness, kDamping, 1.0, 1.0);
    EXPECT_EQ(body.momentum.z, 2.0 * (kStiffness + 3.0 * kDamping));
    EXPECT_EQ(body.velocity.z, -3.0);
}

}  // namespace
}  // namespace tavrik
