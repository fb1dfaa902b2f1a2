#include "tests/solver/plain_solver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "rig/stock_car.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

const SurfaceTree& GroundOfRound(int round) {
    const SurfaceTree* const grounds[] = {&FlatGround(), &Hills(), &Kerb()};
    return *grounds[round % 3];
}

DriveInput RandomInput(TestRandom& random, bool bike) {
    DriveInput input = StockInput();
    input.bikeDrive = bike ? 1 : 0;
    input.balanceForce = random.Between(0.0f, 4.0f);
    input.maxDriftSpeed = random.Int(0, 3) == 0 ? random.Between(0.0f, 200.0f) : 1e6f;
    input.steerTarget = random.Int(0, 2) == 0 ? 0.0f : random.Between(-0.8f, 0.8f);
    input.rudderSensitivity = random.Between(1.0f, 400.0f);
    const float nitro = random.Int(0, 3) == 0 ? 3.0f : 1.0f;
    input.reverse = std::uint8_t(random.Int(0, 1));
    input.throttle = random.Between(0.0f, 4.0f) * nitro * (input.reverse != 0 ? -1.0f : 1.0f);
    input.brake = random.Int(0, 1) != 0 ? random.Between(0.0f, 4.0f) : 0.0f;
    input.handBrake = std::uint8_t(random.Int(0, 3) == 0 ? 1 : 0);
    input.steerRatio = random.Between(-1.0f, 1.0f) * nitro;
    input.differentialSensitivity = random.Int(0, 1) != 0 ? random.Between(0.0f, 1500.0f) : 0.0f;
    return input;
}

/// One car of a scene, made twice.
struct Twins {
    CarRig fast, plain;
};

std::unique_ptr<Twins> RandomTwins(TestRandom& random, const DPoint3& place) {
    auto twins = std::make_unique<Twins>();
    TestRandom again = random;
    MakeRandomCar(twins->fast, random, place);
    MakeRandomCar(twins->plain, again, place);
    return twins;
}

/// Hitches the back of one car to the front of the other.
HitchJoint JointOf(CarRig& a, CarRig& b, double stiffness) {
    return {&a.chassisBody,
            &b.chassisBody,
            a.hitches[0].frame.row[3],
            b.hitches[1].frame.row[3],
            stiffness,
            std::sqrt(stiffness) * 20.0};
}

TEST(PlainSolver, AgreesToTheLastBitOnRandomCars) {
    const std::uint64_t seed = TestSeed(2026);
    TestPush push;
    push.frame = [](TimeValue tick) {
        const float turn = float(tick) * 1e-3f;
        return Matrix3{{{1, 0, 0}, {std::sin(turn), std::cos(turn), 0.25f}, {0, 0, 1}, {30.0f + turn, -20.0f, 60.0f}}};
    };
    push.size = [](TimeValue tick) { return tick % 3 == 0 ? 3e5f : -1e5f; };

    int steps = 0, blownUp = 0, touching = 0, hitched = 0, pushed = 0, bikes = 0, braked = 0, kinds[2] = {}, steered = 0;
    for (int round = 0; round < TestRounds(60); ++round) {
        TestRandom random(seed + std::uint64_t(round) * 7919);
        const SurfaceTree& ground = GroundOfRound(round);
        CarWorld& world = EmptyWorld();
        plain::World plainWorld;
        world.random.Seed(std::uint64_t(round));
        plainWorld.random.Seed(std::uint64_t(round));

        std::vector<std::unique_ptr<Twins>> cars;
        const int carCount = random.Int(1, 3);
        for (int c = 0; c < carCount; ++c) {
            cars.push_back(RandomTwins(random, {380.0 + 30.0 * c, 500.0 * c, random.Between(50.0, 90.0)}));
            world.rigs[world.carCount++] = &cars.back()->fast;
            plainWorld.rigs.push_back(&cars.back()->plain);
        }
        for (std::size_t c = 0; c + 1 < cars.size(); ++c, ++hitched) {
            const double stiffness = random.Between(1e4, 5e5);
            world.joints[world.jointCount++] = JointOf(cars[c]->fast, cars[c + 1]->fast, stiffness);
            plainWorld.joints.push_back(JointOf(cars[c]->plain, cars[c + 1]->plain, stiffness));
        }
        for (std::size_t c = 0; c < cars.size(); ++c) {
            if (random.Int(0, 1) == 0) continue;
            world.pushes[world.pushCount++] = {&push, &cars[c]->fast.chassisBody};
            plainWorld.pushes.push_back({&push, &cars[c]->plain.chassisBody});
            ++pushed;
        }

        const bool bike = random.Int(0, 3) == 0;
        const double dt = random.Int(0, 1) == 0 ? kDt : random.Between(1e-4, 3e-4);
        DriveInput input{};
        for (int step = 0; step < 300; ++step, ++steps) {
            if (step % 25 == 0) input = RandomInput(random, bike);
            const double time = step / 30 * (1.0 / 150.0);
            WorldStep(world, time, dt, ground, kGravity, input);
            plain::Step(plainWorld, time, dt, ground, kGravity, input);

            bool finite = true;
            for (const auto& car : cars) finite = finite && IsFinite(car->fast);
            if (!finite) break;
            for (std::size_t c = 0; c < cars.size(); ++c) {
                ASSERT_EQ(FirstDifference(cars[c]->fast, cars[c]->plain), "")
                    << "seed " << seed << " round " << round << " step " << step << " car " << c;
                for (int i = 0; i < cars[c]->fast.unitCount; ++i) {
                    for (int k = 0; k < kWheelRays; ++k) touching += world.cars[c].wheelContacts[i][k].hit != 0;
                    kinds[cars[c]->fast.units[i].Suspension_Type != kWishbone] += 1;
                    steered += cars[c]->fast.units[i].Steering;
                    braked += Length(world.cars[c].brakeTorque[i]) > 0.0;
                }
                for (int i = 0; i < cars[c]->fast.sphereCount; ++i) {
                    for (int k = 0; k < kSphereRays; ++k) touching += world.cars[c].sphereContacts[i][k].hit != 0;
                }
            }
            ASSERT_EQ(world.random.Rand01(), plainWorld.random.Rand01()) << "a different number of draws";
        }
        for (const auto& car : cars) blownUp += !IsFinite(car->fast);
        bikes += bike;
    }
    // The cases were met.
    EXPECT_GT(steps, 10'000);
    EXPECT_LT(blownUp, 3);
    EXPECT_GT(touching, 50'000);
    EXPECT_GT(hitched, 20);
    EXPECT_GT(pushed, 20);
    EXPECT_GT(bikes, 5);
    EXPECT_GT(kinds[0], 5'000);
    EXPECT_GT(kinds[1], 5'000);
    EXPECT_GT(steered, 5'000);
    EXPECT_GT(braked, 5'000);
}

TEST(PlainSolver, AgreesToTheLastBitOnTheStockCar) {
    for (int round = 0; round < 3; ++round) {
        CarWorld& world = EmptyWorld();
        auto twins = std::make_unique<Twins>();
        for (CarRig* rig : {&twins->fast, &twins->plain}) {
            MakeStockCar(*rig, FrameAt({300.0, 0.0, StockCarStandingHeight() + (round == 1 ? 50.0 : 3.0)}));
        }
        world.rigs[0] = &twins->fast;
        world.carCount = 1;
        plain::World plainWorld;
        plainWorld.rigs = {&twins->plain};

        TestRandom random(TestSeed(7) + std::uint64_t(round));
        DriveInput input{};
        for (int step = 0; step < 4500; ++step) {
            if (step % 450 == 0) input = RandomInput(random, false);
            WorldStep(world, step * kDt, kDt, GroundOfRound(round), kGravity, input);
            plain::Step(plainWorld, step * kDt, kDt, GroundOfRound(round), kGravity, input);
            ASSERT_EQ(FirstDifference(twins->fast, twins->plain), "") << "round " << round << " step " << step;
        }
        EXPECT_TRUE(IsFinite(twins->fast));
        EXPECT_GT(Speed(twins->fast), 1.0);
    }
}

}  // namespace
}  // namespace tavrik::test
