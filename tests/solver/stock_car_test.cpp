/// What the whole solver makes of an everyday car: weight on springs, driving, braking, turning, rolling over.

#include "rig/stock_car.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

enum Wheel { kFrontLeft, kFrontRight, kBackLeft, kBackRight };

class StockCar : public testing::Test {
 protected:
    void SetUp() override { world.rigs[world.carCount++] = rig.get(); }
    const RigidBody& Body() const { return rig->chassisBody; }
    DPoint3 Place() const { return Body().frame.row[3]; }
    /// Turning angle to the left, radians.
    double Heading() const { return std::atan2(-Body().frame.row[1].x, Body().frame.row[1].y); }
    /// How fast the tyre's tread moves backward under the car when it rolls forward, unit/s.
    double TreadSpeed(int wheel) const {
        return -Dot(rig->wheelBodies[wheel].angularVelocity, Body().frame.row[0]) * rig->units[wheel].Radius;
    }
    /// The car sets off at `velocity`, wheels and all.
    void Launch(const DPoint3& velocity) {
        rig->chassisBody.momentum = velocity * rig->chassisParams.Mass;
        for (int i = 0; i < rig->unitCount; ++i) rig->wheelBodies[i].momentum = velocity * rig->units[i].Mass;
        RefreshVelocities(*rig);
    }
    void Drive(double seconds) {
        const int steps = int(std::lround(seconds / kDt));
        for (int i = 0; i < steps; ++i) WorldStep(world, i * kDt, kDt, *ground, kGravity, input);
    }

    CarWorld& world = EmptyWorld();  // just `rig` in it, also after it settled
    const SurfaceTree* ground = &FlatGround();
    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    DriveInput input = StockInput();
};

TEST_F(StockCar, DroppedOnAPlaneItComesToRest) {
    MakeStockCar(*rig, FrameAt({0, 0, StockCarStandingHeight() + 40.0}));
    Drive(4.0);
    const DPoint3 place = Place();
    EXPECT_NEAR(place.x, 0.0, 1.0);                       // measured 0.14
    EXPECT_NEAR(place.y, 0.0, 15.0);                      // measured 5.1: free to roll, it creeps
    EXPECT_NEAR(place.z, StockCarStandingHeight(), 0.2);  // measured 0.02
    EXPECT_GT(Body().frame.row[2].z, 0.9999);
    EXPECT_LT(Speed(*rig), 5.0);  // measured 2.1
    Drive(2.0);
    EXPECT_LT(Length(Place() - place), 12.0);  // measured 4.5
}

TEST_F(StockCar, AtRestTheSpringsCarryTheWeightByItsLevers) {
    // Levers of the axles about the centre of mass share the body's weight between them, halves of it left and right:
    //   front load = M g * back / (front + back) / 2        travel = load / k - Shift
    SettleStockCar(*rig, *ground);
    const double front = rig->units[kFrontLeft].frame.row[3].y, back = -rig->units[kBackLeft].frame.row[3].y;
    const double weight = rig->chassisParams.Mass * kGravity;
    double travel[4] = {}, buffer[4] = {}, height = 0.0;
    const int steps = 9000;
    for (int s = 0; s < steps; ++s) {
        WorldStep(world, s * kDt, kDt, *ground, kGravity, input);
        height += Place().z / steps;
        for (int i = 0; i < 4; ++i) {
            travel[i] += world.cars[0].travel[i] / steps;
            buffer[i] += rig->bufferPosition[i] / steps;
        }
    }
    for (int i = 0; i < 4; ++i) {
        const SuspensionUnit& unit = rig->units[i];
        const double load = weight * (i < kBackLeft ? back : front) / (front + back) / 2.0;
        EXPECT_NEAR(travel[i], load / unit.Ruggedness - unit.Shift, 0.05) << i;  // measured 0.007
        EXPECT_NEAR(buffer[i], travel[i], 0.01) << i;                            // the dashpot has followed; measured 0.0012
    }
    // Both axles together carry the whole weight; what single wheels carry swings with their rays.
    double carried = 0.0;
    for (int i = 0; i < 4; ++i) carried += (travel[i] + rig->units[i].Shift) * rig->units[i].Ruggedness;
    EXPECT_NEAR(carried / weight, 1.0, 5e-4);            // measured 5e-5
    EXPECT_NEAR(height, StockCarStandingHeight(), 0.1);  // measured 0.03 less
}

TEST_F(StockCar, DrivesStraight) {
    SettleStockCar(*rig, *ground);
    input.throttle = 4.0f;
    Drive(5.0);
    EXPECT_GT(Place().y, 1000.0);           // measured 1590
    EXPECT_GT(Body().velocity.y, 400.0);    // measured 555
    EXPECT_LT(std::abs(Place().x), 6.0);    // measured 1.1
    EXPECT_LT(std::abs(Heading()), 0.005);  // measured 8e-4
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(TreadSpeed(i) / Body().velocity.y, 1.0, 0.1) << i;
}

TEST_F(StockCar, BrakesToAStopAndStays) {
    SettleStockCar(*rig, *ground);
    Launch({0, 600, 0});
    Drive(0.5);
    input.brake = 4.0f;
    Drive(2.0);
    const DPoint3 place = Place();
    EXPECT_LT(Speed(*rig), 2.0);  // measured 0.2
    Drive(3.0);
    EXPECT_LT(Length(Place() - place), 0.5);  // measured 0.04
    EXPECT_LT(Speed(*rig), 2.0);              // measured 0.3
}

TEST_F(StockCar, ReverseDrivesBackwards) {
    SettleStockCar(*rig, *ground);
    input.reverse = 1;
    input.throttle = -4.0f;
    Drive(2.0);
    EXPECT_LT(Place().y, -150.0);  // measured -284
    EXPECT_LT(Body().velocity.y, -150.0);
    EXPECT_LT(std::abs(Place().x), 2.0);  // measured 0.07
}

TEST_F(StockCar, TurnsLeftAndRightAlike) {
    DPoint3 places[2];
    double headings[2];
    for (int k = 0; k < 2; ++k) {
        const float side = k == 0 ? 1.0f : -1.0f;
        SettleStockCar(*rig, *ground);
        input.throttle = 2.0f;
        input.steerTarget = side * 0.3f;
        input.steerRatio = side * 0.5f;
        Drive(5.0);
        places[k] = Place();
        headings[k] = Heading();
    }
    EXPECT_GT(places[0].x, 150.0);  // positive steering goes to the right
    EXPECT_LT(headings[0], -0.4);
    // The rays aren't mirrored, so the paths are alike only as far as their noise allows.
    EXPECT_NEAR(places[0].x, -places[1].x, 10.0);   // measured 1.1 of 341
    EXPECT_NEAR(places[0].y, places[1].y, 10.0);    // measured 0.7 of 643
    EXPECT_NEAR(headings[0], -headings[1], 0.015);  // measured 0.002 of 0.72
}

TEST_F(StockCar, TheHandBrakeLocksTheBackWheelsAndLeavesTheFrontOnesRolling) {
    SettleStockCar(*rig, *ground);
    Launch({0, 800, 0});
    Drive(0.5);
    input.handBrake = 1;
    input.brake = 4.0f;
    input.brakeSensitivity = 8000.0f;
    Drive(0.3);
    const double speed = Body().velocity.y;
    EXPECT_GT(speed, 400.0);                                                                       // measured 521
    for (const int i : {kBackLeft, kBackRight}) EXPECT_LT(std::abs(TreadSpeed(i)), 0.05 * speed);  // measured 1.0
    for (const int i : {kFrontLeft, kFrontRight}) EXPECT_NEAR(TreadSpeed(i) / speed, 1.0, 0.1);
}

TEST_F(StockCar, WithoutGripItNeitherDrivesNorSteersButStands) {
    SettleStockCar(*rig, *ground);
    for (int i = 0; i < rig->unitCount; ++i) rig->units[i].Grip = 1e-6;
    input.throttle = 4.0f;
    input.steerTarget = 0.5f;
    const DPoint3 place = Place();
    const double heading = Heading();
    Drive(2.0);
    EXPECT_LT(Length(Place() - place), 6.0);  // measured 0.8
    EXPECT_NEAR(Heading(), heading, 0.02);    // measured 0.004
    EXPECT_NEAR(Place().z, StockCarStandingHeight(), 0.2);
    EXPECT_GT(TreadSpeed(kBackLeft), 200.0);  // spinning up to the sliding limit
}

TEST_F(StockCar, TheDifferentialTurnsItWithoutThrottle) {
    for (const float side : {1.0f, -1.0f}) {
        SettleStockCar(*rig, *ground);
        // Gripping front wheels would hold the nose.
        for (const int i : {kFrontLeft, kFrontRight}) rig->units[i].Grip = 0.02;
        input.steerRatio = side;
        input.differentialSensitivity = 6000.0f;
        input.maxDriftSpeed = 1000.0f;
        Drive(2.0);
        EXPECT_LT(Heading() * double(side), -0.1) << side;  // measured 0.37 and 0.39
        EXPECT_GT((TreadSpeed(kBackLeft) - TreadSpeed(kBackRight)) * double(side), 10.0) << side;
    }
}

TEST_F(StockCar, SidewaysOverAKerbItTipsOverAndLiesOnTheGround) {
    ground = &Kerb();
    SettleStockCar(*rig, *ground, 200.0, 0.0);
    Launch({1200, 0, 0});
    double lowest = 1e9, mostTilted = 1.0;
    for (int i = 0; i < 60; ++i) {
        Drive(0.1);
        ASSERT_TRUE(IsFinite(*rig));
        lowest = std::min(lowest, Place().z);
        mostTilted = std::min(mostTilted, Body().frame.row[2].z);
    }
    EXPECT_LT(mostTilted, 0.0);   // measured -0.34
    EXPECT_GT(lowest, 45.0);      // measured 51: never deeper than standing on its wheels
    EXPECT_LT(Speed(*rig), 5.0);  // measured 0.8
}

TEST_F(StockCar, OnItsRoofItRestsOnItsSpheres) {
    DMatrix3 frame = IdentityDMatrix3();
    RotateY(frame, 3.0);
    frame.row[3] = {0, 0, 150};
    MakeStockCar(*rig, frame);
    Drive(2.0);
    double lowest = 1e9, highest = 0.0;
    for (int i = 0; i < 30; ++i) {
        Drive(0.1);
        lowest = std::min(lowest, Place().z);
        highest = std::max(highest, Place().z);
    }
    EXPECT_LT(Body().frame.row[2].z, -0.99);
    // The roof's balls reach 66 + 22 above the centre of mass.
    EXPECT_GT(lowest, 84.0);           // measured 85.6
    EXPECT_LT(highest, 88.0);          // measured 85.7
    EXPECT_LT(highest - lowest, 0.5);  // measured 0.11: another turn of the rays each step
}

TEST_F(StockCar, TowsAnotherByAHitch) {
    SettleStockCar(*rig, *ground);
    auto towed = std::make_unique<CarRig>();
    MakeStockCar(*towed, FrameAt({0, -470, StockCarStandingHeight()}));
    world.rigs[world.carCount++] = towed.get();
    const double stiffness = 500'000.0;
    const HitchJoint joint = {&rig->chassisBody, &towed->chassisBody, {0, -235, -10},
                              {0, 235, -10},     stiffness,           std::sqrt(stiffness) * 20.0};
    world.joints[world.jointCount++] = joint;
    for (int i = 0; i < 4; ++i) towed->units[i].Drive = 0;
    input.throttle = 4.0f;
    const DPoint3 place = towed->chassisBody.frame.row[3];
    double widest = 0.0;
    for (int i = 0; i < 30; ++i) {
        Drive(0.1);
        const DPoint3 gap = TransformPoint(joint.localB, joint.bodyB->frame) - TransformPoint(joint.localA, joint.bodyA->frame);
        widest = std::max(widest, Length(gap));
    }
    EXPECT_GT((towed->chassisBody.frame.row[3] - place).y, 150.0);
    EXPECT_LT(widest, 3.0);
    EXPECT_NEAR(towed->chassisBody.velocity.y, Body().velocity.y, 10.0);
}

TEST_F(StockCar, InTheAirItKeepsItsAngularMomentum) {
    ground = &NoGround();
    MakeStockCar(*rig, FrameAt({0, 0, 0}));
    TestRandom random(TestSeed(51));
    Launch({300, -200, 500});
    rig->chassisBody.angularMomentum = random.Vector(3e7);
    for (int i = 0; i < 4; ++i) rig->wheelBodies[i].angularMomentum = random.Vector(3e5);
    RefreshVelocities(*rig);
    input.throttle = 4.0f;
    input.brake = 2.0f;  // brakes slow the wheels and turn the body instead
    input.steerTarget = 0.4f;

    const auto ofAllBodies = [&] {
        DPoint3 momentum = Body().momentum, centre = Place() * rig->chassisParams.Mass;
        double mass = rig->chassisParams.Mass;
        for (int i = 0; i < 4; ++i) {
            momentum += rig->wheelBodies[i].momentum;
            centre += rig->wheelBodies[i].frame.row[3] * rig->units[i].Mass;
            mass += rig->units[i].Mass;
        }
        centre = centre / mass;
        DPoint3 spin = Body().angularMomentum + Cross(Place() - centre, Body().momentum);
        for (int i = 0; i < 4; ++i) {
            const RigidBody& wheel = rig->wheelBodies[i];
            spin += wheel.angularMomentum + Cross(wheel.frame.row[3] - centre, wheel.momentum);
        }
        return spin;
    };
    const DPoint3 before = ofAllBodies();
    Drive(1.0);
    EXPECT_TRUE(IsFinite(*rig));
    EXPECT_LT(Length(ofAllBodies() - before) / Length(before), 1e-11);  // measured 3e-14
}

}  // namespace
}  // namespace tavrik::test
