#include "solver/sphere.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <vector>

#include "rig/component_values.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

using Contacts = ContactPoint[kSphereRays];

CollisionSphere Ball(double radius) {
    CollisionSphere sphere;
    sphere.Radius = radius;
    sphere.Ruggedness = 4e5;
    sphere.damping = std::sqrt(sphere.Ruggedness) * 20.0;
    sphere.Grip = 0.3;
    return sphere;
}

RigidBody ChassisAt(double height) {
    RigidBody chassis;
    chassis.frame = FrameAt({0, 0, height});
    return chassis;
}

int Hits(const Contacts& contacts) {
    int hits = 0;
    for (const ContactPoint& contact : contacts) hits += contact.hit != 0;
    return hits;
}

TEST(RandomFrame, IsOrthonormalAndRightHanded) {
    RandomStream random(2);
    for (int i = 0; i < 1000; ++i) {
        const DMatrix3 frame = RandomFrame(random);
        for (int r = 0; r < 3; ++r) {
            EXPECT_NEAR(Length(frame.row[r]), 1.0, 1e-15);
            EXPECT_NEAR(Dot(frame.row[r], frame.row[(r + 1) % 3]), 0.0, 1e-15);
        }
        EXPECT_NEAR(Dot(Cross(frame.row[0], frame.row[1]), frame.row[2]), 1.0, 1e-14);
        EXPECT_EQ(Length(frame.row[3]), 0.0);
    }
}

TEST(RandomFrame, PrefersNoDirection) {
    RandomStream random(3);
    DPoint3 sums[3] = {};
    const int rounds = 20'000;
    for (int i = 0; i < rounds; ++i) {
        const DMatrix3 frame = RandomFrame(random);
        for (int r = 0; r < 3; ++r) sums[r] += frame.row[r];
    }
    for (const DPoint3& sum : sums) EXPECT_LT(Length(sum) / rounds, 0.02);  // measured 0.009 at most
}

TEST(RandomFrame, DrawsAgainWhatLiesOutsideTheShell) {
    // The first vector is (-0.5, -0.5, 0.5); before the second, one too short and one too long are thrown away.
    const std::vector<double> known = {0.25, 0.25, 0.75, 0.5, 0.5, 0.625, 0.0, 0.0, 0.0, 0.0, 0.5, 0.5, 0.875};
    RandomStream random;
    random.Feed(known);
    const DMatrix3 frame = RandomFrame(random);
    EXPECT_EQ(random.Rand01(), 0.875);
    const double third = 1.0 / std::sqrt(3.0);
    EXPECT_NEAR(frame.row[0].x, -third, 1e-15);
    EXPECT_NEAR(frame.row[0].z, third, 1e-15);
    EXPECT_LT(frame.row[1].x, 0.0);  // from (-1, 0, 0)
}

TEST(RandomFrame, TheShellOwnsBothItsFaces) {
    // Square lengths of exactly 0.5 and exactly 1.
    const std::vector<double> known = {0.75, 0.75, 0.5, 1.0, 0.5, 0.5, 0.375};
    RandomStream random;
    random.Feed(known);
    RandomFrame(random);
    EXPECT_EQ(random.Rand01(), 0.375);
}

TEST(SphereRayCast, ABallAboveTheGroundTouchesNothing) {
    RandomStream random(4);
    Contacts contacts;
    for (ContactPoint& contact : contacts) contact.hit = 1;
    SphereRayCast(Ball(20.0), FlatGround(), ChassisAt(20.1), random, contacts);
    EXPECT_EQ(Hits(contacts), 0);
}

TEST(SphereRayCast, OnlyRaysThatReachTheGroundHitIt) {
    RandomStream random(5);
    std::set<int> counts;
    for (int i = 0; i < 500; ++i) {
        Contacts contacts{};
        SphereRayCast(Ball(20.0), FlatGround(), ChassisAt(10.0), random, contacts);
        for (const ContactPoint& contact : contacts) {
            if (contact.hit == 0) continue;
            EXPECT_LE(contact.direction.z, -0.5 + 1e-5);
            EXPECT_NEAR(Length(contact.direction), 1.0, 1e-6);
            EXPECT_NEAR(contact.depth, 20.0 - 10.0 / -contact.direction.z, 1e-4);
            EXPECT_NEAR(contact.point.z, 0.0, 1e-5);
        }
        counts.insert(Hits(contacts));
    }
    // Of twelve evenly spread directions about a quarter reach the ground; the number depends on the turn.
    EXPECT_GE(*counts.begin(), 1);
    EXPECT_LE(*counts.rbegin(), 6);
    EXPECT_GT(counts.size(), 1u);
}

TEST(SphereRayCast, TheSpheresOwnTurnPlaysNoPart) {
    TestRandom turns(TestSeed(31));
    CollisionSphere plain = Ball(20.0), turned = plain;
    turned.frame = turns.Turn();
    turned.frame.row[3] = plain.frame.row[3] = {3, 4, 5};
    RandomStream first(6), second(6);
    Contacts a{}, b{};
    SphereRayCast(plain, FlatGround(), ChassisAt(5.0), first, a);
    SphereRayCast(turned, FlatGround(), ChassisAt(5.0), second, b);
    EXPECT_GT(Hits(a), 0);
    EXPECT_EQ(std::memcmp(a, b, sizeof a), 0);
}

TEST(SphereRayCast, TheCentreIsCarriedByTheChassis) {
    CollisionSphere sphere = Ball(20.0);
    sphere.frame.row[3] = {0, 50, 0};
    RigidBody chassis = ChassisAt(60.0);
    RotateX(chassis.frame, -std::acos(0.0));  // nose down: the ball is 50 below the centre of mass
    RandomStream random(7);
    Contacts contacts{};
    SphereRayCast(sphere, FlatGround(), chassis, random, contacts);
    EXPECT_GT(Hits(contacts), 0);
}

TEST(SphereRayCast, ABallWhoseCentreIsFarBelowTheGroundFindsNothing) {
    RandomStream random(8);
    Contacts contacts{};
    SphereRayCast(Ball(20.0), FlatGround(), ChassisAt(-21.0), random, contacts);
    EXPECT_EQ(Hits(contacts), 0);
}

TEST(SphereRayCast, TwoEqualDrawsLeaveAFrameThatIsNotSquareAndRaysBeyondTheBall) {
    // Both vectors come out as (1, 1, 8) / sqrt(66), since what rounding leaves of their difference points that way too.
    const std::vector<double> known = {0.54931640625, 0.54931640625, 0.89453125};
    RandomStream random;
    random.Feed(known);
    Contacts contacts{};
    SphereRayCast(Ball(20.0), FlatGround(), ChassisAt(23.0), random, contacts);
    EXPECT_EQ(Hits(contacts), 1);
    EXPECT_NEAR(contacts[4].depth, 20.0 * (1.0 - 23.0 / (20.0 * 1.249338 * 8.0 / std::sqrt(66.0))), 1e-4);
}

std::unique_ptr<CarRig> CarOnBalls(double height) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, height});
    for (const double x : {-50.0, 50.0}) {
        for (const double y : {-100.0, 100.0}) {
            CollisionSphere sphere = Ball(20.0);
            sphere.frame.row[3] = {x, y, 0.0};
            rig->spheres[rig->sphereCount++] = sphere;
        }
    }
    return rig;
}

TEST(SpheresOfACar, AboveTheGroundTheChassisFeelsNothing) {
    const auto balls = CarOnBalls(200.0);
    auto bare = std::make_unique<CarRig>();
    MakeBareCar(*bare, {0, 0, 200.0});
    DriveAlone(*balls, FlatGround(), DriveInput{}, 0.2);
    DriveAlone(*bare, FlatGround(), DriveInput{}, 0.2);
    EXPECT_EQ(FirstDifference(*balls, *bare), "");
}

TEST(SpheresOfACar, CarryItOnTheGround) {
    const auto rig = CarOnBalls(30.0);
    DriveAlone(*rig, FlatGround(), DriveInput{}, 2.0);
    EXPECT_TRUE(IsFinite(*rig));
    EXPECT_NEAR(rig->chassisBody.frame.row[3].z, 18.0, 1.0);  // measured 17.98: the balls sink in by 2
    EXPECT_LT(Speed(*rig), 10.0);                             // measured 0.25
}

TEST(SpheresOfACar, FrictionSlowsASlidingBody) {
    const auto rig = CarOnBalls(19.0);
    rig->chassisBody.momentum = {0, 500.0 * 1000.0, 0};
    RefreshVelocities(*rig);
    DriveAlone(*rig, FlatGround(), DriveInput{}, 0.5);
    const double lost = 500.0 - rig->chassisBody.velocity.y;
    // Grip * gravity * time takes 147 at least. Rays at a slant have to press harder to carry the same weight, and friction
    // goes with the pressure.
    EXPECT_GT(lost, 147.0);  // measured 250
    EXPECT_LT(lost, 350.0);
    EXPECT_NEAR(rig->chassisBody.velocity.x, 0.0, 10.0);  // measured 0.8
}

TEST(SpheresOfACar, WithoutThemABodyFallsThroughTheGround) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 50.0});
    DriveAlone(*rig, FlatGround(), DriveInput{}, 1.0);
    EXPECT_LT(rig->chassisBody.frame.row[3].z, -300.0);
}

TEST(DefaultSphereValues, ASphereGripsByThreeTenths) {
    EXPECT_EQ(MakeSphere(DefaultSphereValues(), IdentityDMatrix3()).Grip, double(0.3f));
}

}  // namespace
}  // namespace tavrik::test
