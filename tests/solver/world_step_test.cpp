#include "solver/world_step.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include "rig/stock_car.h"
#include "solver/sphere.h"
#include "solver/wheel.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

void Add(CarWorld& world, CarRig& rig) { world.rigs[world.carCount++] = &rig; }

std::unique_ptr<CarRig> BareCar(const DPoint3& place) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, place);
    return rig;
}

std::unique_ptr<CarRig> StockCarAt(const DPoint3& place) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, FrameAt(place));
    return rig;
}

double Slewed(double value, double target, double dt = 0.1, double rate = 2.0) {
    SlewSteering(value, target, dt, rate);
    return value;
}

TEST(SlewSteering, MovesByItsRateTowardsTheTarget) {
    EXPECT_DOUBLE_EQ(Slewed(0.1, 0.5), 0.1 + 2.0 * 0.1 * 0.03);
    EXPECT_DOUBLE_EQ(Slewed(0.5, 0.1), 0.5 - 2.0 * 0.1 * 0.03);
}

TEST(SlewSteering, GoesTwiceAsFastUntilItCrossesZero) {
    EXPECT_DOUBLE_EQ(Slewed(0.1, -0.1), 0.1 - 2.0 * 2.0 * 0.1 * 0.03);
    EXPECT_DOUBLE_EQ(Slewed(-0.1, 0.1), -0.1 + 2.0 * 2.0 * 0.1 * 0.03);
}

TEST(SlewSteering, FromZeroItDoesNotHurry) {
    EXPECT_DOUBLE_EQ(Slewed(0.0, -0.1), -2.0 * 0.1 * 0.03);
    EXPECT_DOUBLE_EQ(Slewed(0.0, 0.1), 2.0 * 0.1 * 0.03);
}

TEST(SlewSteering, TowardsZeroItDoesNotHurry) { EXPECT_DOUBLE_EQ(Slewed(0.1, 0.0), 0.1 - 2.0 * 0.1 * 0.03); }

TEST(SlewSteering, ArrivesExactlyAndStays) {
    EXPECT_EQ(Slewed(0.1, 0.1001), 0.1001);
    EXPECT_EQ(Slewed(0.1001, 0.1001), 0.1001);
}

TEST(WorldStep, WithoutCarsDoesNothing) {
    CarWorld& world = EmptyWorld();
    RandomStream untouched(1);
    WorldStep(world, 0.0, kDt, FlatGround(), kGravity, StockInput());
    EXPECT_EQ(world.random.Rand01(), untouched.Rand01());
    EXPECT_EQ(world.carCount, 0);
}

TEST(WorldStep, OnlyTheFirstCarIsSteered) {
    const auto first = BareCar({0, 0, 0}), second = BareCar({500, 0, 0});
    second->steerValue = 0.25;
    CarWorld& world = EmptyWorld();
    Add(world, *first);
    Add(world, *second);
    DriveInput input = StockInput();
    input.steerTarget = 0.5f;
    for (int i = 0; i < 100; ++i) WorldStep(world, 0.0, kDt, NoGround(), kGravity, input);
    EXPECT_GT(first->steerValue, 0.0);
    EXPECT_EQ(second->steerValue, 0.25);
}

TEST(WorldStep, SteeringSlowsDownWithTheSpeedThatTheStepBeforeLeft) {
    const auto rig = BareCar({0, 0, 0});
    rig->chassisBody.velocity = {0, 10.0 * 200.0, 0};  // ten lengths a second
    CarWorld& world = EmptyWorld();
    Add(world, *rig);
    DriveInput input;
    input.rudderSensitivity = 5.0f;
    input.steerTarget = 1.0f;
    WorldStep(world, 0.0, kDt, NoGround(), kGravity, input);
    const float factor = float(10.0 * double(0.15f) + 1.0);
    EXPECT_EQ(rig->steerValue, double(5.0f / factor) * (kDt * 0.03));
}

TEST(WorldStep, AFallingCarGainsTheSameSpeedWhateverItsMass) {
    for (const double mass : {0.0001, 1.0, 1250.0, 1e9}) {
        const auto rig = BareCar({0, 0, 0});
        rig->chassisParams.Mass = mass;
        CarWorld& world = EmptyWorld();
        Add(world, *rig);
        for (int i = 1; i <= 100; ++i) {
            WorldStep(world, 0.0, kDt, NoGround(), kGravity, DriveInput{});
            ASSERT_NEAR(rig->chassisBody.velocity.z, -i * kWeightSum * kGravity * kDt, 1e-9) << mass;
        }
    }
}

TEST(WorldStep, WheelsFallAsFastAsTheBody) {
    const auto rig = StockCarAt({0, 0, 0});
    for (int i = 0; i < rig->unitCount; ++i) rig->units[i].Shift = 0.0;  // nothing strains in free fall
    DriveAlone(*rig, NoGround(), DriveInput{}, 0.1);
    for (int i = 0; i < rig->unitCount; ++i) {
        EXPECT_NEAR(rig->wheelBodies[i].velocity.z, rig->chassisBody.velocity.z, 1e-6);  // measured 2e-11
    }
    EXPECT_NEAR(rig->chassisBody.velocity.z, -kWeightSum * kGravity * 0.1, 1e-6);
}

TEST(WorldStep, PositionsMoveByTheSpeedOfTheStepBefore) {
    const auto rig = BareCar({0, 0, 100});
    CarWorld& world = EmptyWorld();
    Add(world, *rig);
    WorldStep(world, 0.0, kDt, NoGround(), kGravity, DriveInput{});
    EXPECT_EQ(rig->chassisBody.frame.row[3].z, 100.0);
    const double speed = rig->chassisBody.velocity.z;
    WorldStep(world, 0.0, kDt, NoGround(), kGravity, DriveInput{});
    EXPECT_EQ(rig->chassisBody.frame.row[3].z, 100.0 + speed * kDt);
}

TEST(WorldStep, GravityTurnsNothing) {
    const auto rig = BareCar({10, 20, 30});
    rig->chassisBody.angularMomentum = {1, 2, 3};
    DriveAlone(*rig, NoGround(), DriveInput{}, 0.1);
    EXPECT_EQ(rig->chassisBody.angularMomentum.x, 1.0);
    EXPECT_EQ(rig->chassisBody.angularMomentum.y, 2.0);
    EXPECT_EQ(rig->chassisBody.angularMomentum.z, 3.0);
}

TEST(WorldStep, CarsThatShareNothingDriveAsIfAlone) {
    const auto alone = StockCarAt({0, 0, 60}), pair = StockCarAt({0, 0, 60});
    const auto other = BareCar({3000, 0, 500});  // no rays of its own, so the draws stay the same
    DriveInput input = StockInput();
    input.throttle = 4.0f;
    input.steerTarget = 0.3f;
    DriveAlone(*alone, FlatGround(), input, 0.3);
    CarWorld& world = EmptyWorld();
    Add(world, *pair);
    Add(world, *other);
    for (int i = 0; i < 1350; ++i) WorldStep(world, i * kDt, kDt, FlatGround(), kGravity, input);
    EXPECT_EQ(FirstDifference(*alone, *pair), "");
}

TEST(WorldStep, JointsAndPushesPastTheCountAreNotThere) {
    // The world was used before: its arrays hold joints and pushes, only the counts say that there are none.
    const auto fresh = StockCarAt({0, 0, 55}), used = StockCarAt({0, 0, 55});
    const auto other = BareCar({0, -600, 60});
    DriveAlone(*fresh, FlatGround(), StockInput(), 0.2);

    TestPush push;
    push.size = [](TimeValue) { return 1e9f; };
    CarWorld& world = EmptyWorld();
    world.joints[0] = {&used->chassisBody, &other->chassisBody, {0, -200, 0}, {0, 200, 0}, 5e5, 1e4};
    world.pushes[0] = {&push, &used->chassisBody};
    DriveAlone(*used, FlatGround(), StockInput(), 0.2);
    EXPECT_EQ(FirstDifference(*fresh, *used), "");
}

TEST(WorldStep, SameSeedSameBitsAndAnotherSeedOthers) {
    std::unique_ptr<CarRig> rigs[3];
    for (int k = 0; k < 3; ++k) {
        rigs[k] = StockCarAt({0, 0, 60});
        CarWorld& world = EmptyWorld();
        Add(world, *rigs[k]);
        world.random.Seed(k < 2 ? 77 : 78);
        for (int i = 0; i < 500; ++i) WorldStep(world, i * kDt, kDt, Hills(), kGravity, StockInput());
    }
    EXPECT_EQ(FirstDifference(*rigs[0], *rigs[1]), "");
    EXPECT_NE(FirstDifference(*rigs[0], *rigs[2]), "");
}

TEST(StepCar, ReadsNothingOfTheStepBefore) {
    for (int round = 0; round < 6; ++round) {
        std::unique_ptr<CarRig> rigs[2];
        for (int k = 0; k < 2; ++k) {
            rigs[k] = std::make_unique<CarRig>();
            TestRandom random(TestSeed(41) + std::uint64_t(round));
            if (round == 0) {
                MakeStockCar(*rigs[k], FrameAt({0, 0, 55}));
            } else {
                MakeRandomCar(*rigs[k], random, {0, 0, 70});
            }
            CarWorld& world = EmptyWorld();
            Add(world, *rigs[k]);
            DriveInput input = StockInput();
            input.throttle = 4.0f;
            input.brake = 1.0f;
            input.steerTarget = 0.2f;
            for (int i = 0; i < 60; ++i) {
                if (k == 1) std::memset(static_cast<void*>(&world.cars[0]), 0xCD, sizeof world.cars[0]);
                WorldStep(world, 0.0, kDt, FlatGround(), kGravity, input);
            }
        }
        EXPECT_EQ(FirstDifference(*rigs[0], *rigs[1]), "") << round;
    }
}

TEST(StepCar, RefreshesItsViewsOfTheRig) {
    const auto rig = StockCarAt({0, 0, 60});
    CarRuntime& runtime = EmptyWorld().cars[0];
    DriveInput input;
    input.maxDriftSpeed = 0.1f;
    StepCar(runtime, *rig, FlatGround(), input, kDt, EmptyWorld().random);
    EXPECT_EQ(runtime.wheelBodies, rig->wheelBodies);
    EXPECT_EQ(runtime.units, rig->units);
    EXPECT_EQ(runtime.chassisBody, &rig->chassisBody);
    EXPECT_EQ(runtime.chassisParams, &rig->chassisParams);
    EXPECT_EQ(runtime.spheres, rig->spheres);
    EXPECT_EQ(runtime.bufferPositions, rig->bufferPosition);
    EXPECT_EQ(runtime.unitCount, rig->unitCount);
    EXPECT_EQ(runtime.sphereCount, rig->sphereCount);
    EXPECT_EQ(runtime.solidity, rig->chassisParams.Solidity);
    EXPECT_EQ(runtime.solidityDamping, std::sqrt(rig->chassisParams.Solidity) * 20.0);
    EXPECT_EQ(runtime.maxDriftSpeed, double(0.1f));
}

void ExpectSameContacts(std::span<const ContactPoint> seen, std::span<const ContactPoint> due, int& hits) {
    for (std::size_t k = 0; k < due.size(); ++k) {
        ASSERT_EQ(seen[k].hit, due[k].hit) << k;
        if (due[k].hit == 0) continue;
        EXPECT_EQ(std::memcmp(&seen[k], &due[k], offsetof(ContactPoint, hit)), 0) << k;
        ++hits;
    }
}

TEST(StepCar, DrawsForWheelsInTheirOrderAndThenForSpheres) {
    // Two wheels and two spheres, pressed into the ground: two numbers for each wheel, six for each sphere.
    const auto rig = StockCarAt({0, 0, 45});
    rig->unitCount = rig->sphereCount = 2;
    for (int i = 0; i < 2; ++i) rig->spheres[i].frame.row[3].z = -40.0;
    const std::vector<double> known = {0.1,  0.2, 0.3, 0.4,             //
                                       0.75, 0.8, 0.3, 0.9, 0.6, 0.35,  //
                                       0.1,  0.4, 0.7, 0.2, 0.7, 0.8,   //
                                       0.125};
    CarWorld& world = EmptyWorld();
    world.random.Feed(known);
    StepCar(world.cars[0], *rig, FlatGround(), StockInput(), kDt, world.random);
    EXPECT_EQ(world.random.Rand01(), 0.125) << "sixteen numbers were due";

    // The bodies have moved before the rays went out, and stand there still.
    int hits[2] = {};
    RandomStream again;
    again.Feed(known);
    for (int i = 0; i < 2; ++i) {
        ContactPoint due[kWheelRays];
        WheelRayCast(rig->units[i], FlatGround(), rig->wheelBodies[i], again, due);
        ExpectSameContacts({world.cars[0].wheelContacts[i], kWheelRays}, due, hits[0]);
    }
    for (int i = 0; i < 2; ++i) {
        ContactPoint due[kSphereRays];
        SphereRayCast(rig->spheres[i], FlatGround(), rig->chassisBody, again, due);
        ExpectSameContacts({world.cars[0].sphereContacts[i], kSphereRays}, due, hits[1]);
    }
    EXPECT_GT(hits[0], 2);
    EXPECT_GT(hits[1], 2);
}

TEST(WorldStep, DrawsForOneCarAfterTheOther) {
    const auto first = StockCarAt({0, 0, 45}), second = StockCarAt({900, 0, 45});
    first->unitCount = second->unitCount = 1;
    first->sphereCount = second->sphereCount = 0;
    const std::vector<double> known = {0.1, 0.2, 0.3, 0.4, 0.125};
    CarWorld& world = EmptyWorld();
    Add(world, *first);
    Add(world, *second);
    world.random.Feed(known);
    WorldStep(world, 0.0, kDt, FlatGround(), kGravity, StockInput());
    EXPECT_EQ(world.random.Rand01(), 0.125);

    RandomStream again;
    again.Feed(known);
    int hits = 0;
    for (int c = 0; c < 2; ++c) {
        ContactPoint due[kWheelRays];
        WheelRayCast(world.rigs[c]->units[0], FlatGround(), world.rigs[c]->wheelBodies[0], again, due);
        ExpectSameContacts({world.cars[c].wheelContacts[0], kWheelRays}, due, hits);
    }
    EXPECT_GT(hits, 1);
}

TEST(RefreshVelocities, GivesTheBitsThatTheLastStepLeft) {
    const auto rig = StockCarAt({0, 0, 60}), loaded = StockCarAt({0, 0, 0});
    DriveInput input = StockInput();
    input.throttle = 4.0f;
    DriveAlone(*rig, Hills(), input, 0.5);
    CopyState(*loaded, *rig);
    RefreshVelocities(*loaded);
    EXPECT_EQ(FirstDifference(*rig, *loaded), "");
}

TEST(RefreshVelocities, ALoadedCarDrivesOnAsIfItHadNeverStopped) {
    const auto rig = StockCarAt({0, 0, 60}), loaded = StockCarAt({0, 0, 0});
    DriveInput input = StockInput();
    input.throttle = 4.0f;
    input.steerTarget = -0.2f;
    DriveAlone(*rig, Hills(), input, 0.5);
    CopyState(*loaded, *rig);
    RefreshVelocities(*loaded);
    DriveAlone(*rig, Hills(), input, 0.5);
    DriveAlone(*loaded, Hills(), input, 0.5);
    EXPECT_EQ(FirstDifference(*rig, *loaded), "");
}

}  // namespace
}  // namespace tavrik::test
