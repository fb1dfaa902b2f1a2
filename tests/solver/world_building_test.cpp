#include "solver/world_building.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

/// Cars with hitch slots, and which slots belong together.
class HitchedCars : public WorldScene {
 public:
    explicit HitchedCars(int count, int pushesEach = 0) : pushes_(pushesEach) {
        for (int c = 0; c < count; ++c) {
            cars.push_back(std::make_unique<CarRig>());
            MakeBareCar(*cars.back(), {0, -500.0 * c, 0});
        }
    }

    void Hitch(int a, int b, double ruggedness = 500'000.0) {
        HitchSlot& slotA = NewSlot(a, -200.0);
        HitchSlot& slotB = NewSlot(b, 200.0);
        slotA.Ruggedness = slotB.Ruggedness = ruggedness;
        pairs_.push_back({&slotA, &slotB, cars[std::size_t(a)].get(), cars[std::size_t(b)].get()});
    }
    void AddUnconnectedSlot(int a) { NewSlot(a, 0.0); }

    void LinkHitches() override {
        ++links;
        for (const Pair& pair : pairs_) {
            pair.a->partner = pair.b;
            pair.b->partner = pair.a;
            pair.a->ownerRig = pair.rigA;
            pair.b->ownerRig = pair.rigB;
        }
    }
    bool CollectPushes(CarRig& rig, PushForce (&pushes)[kMaxPushes], std::int32_t& pushCount) override {
        collected.push_back(&rig);
        for (int i = 0; i < pushes_; ++i) {
            if (pushCount == kMaxPushes) return false;
            pushes[pushCount++] = {&push_, &rig.chassisBody};
        }
        return true;
    }

    std::vector<std::unique_ptr<CarRig>> cars;
    std::vector<CarRig*> collected;
    int links = 0;

 private:
    struct Pair {
        HitchSlot *a, *b;
        CarRig *rigA, *rigB;
    };

    HitchSlot& NewSlot(int car, double y) {
        CarRig& rig = *cars[std::size_t(car)];
        HitchSlot& slot = rig.hitches[rig.hitchCount++];
        slot.frame.row[3] = {0, y, double(rig.hitchCount)};
        return slot;
    }

    int pushes_;
    TestPush push_;
    std::vector<Pair> pairs_;
};

bool IsIn(const CarWorld& world, const std::unique_ptr<CarRig>& rig) {
    return std::count(world.rigs, world.rigs + world.carCount, rig.get()) == 1;
}

TEST(BuildWorld, WithoutASceneTheCarDrivesAlone) {
    HitchedCars scene(1);
    CarWorld& world = EmptyWorld();
    world.jointCount = world.pushCount = 7;  // of the world before
    EXPECT_TRUE(BuildWorld(world, *scene.cars[0]));
    EXPECT_EQ(world.carCount, 1);
    EXPECT_EQ(world.rigs[0], scene.cars[0].get());
    EXPECT_EQ(world.jointCount, 0);
    EXPECT_EQ(world.pushCount, 0);
}

TEST(BuildWorld, AChainOfTrailersEntersOnceEach) {
    HitchedCars scene(4);
    for (int c = 0; c < 3; ++c) scene.Hitch(c, c + 1);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(scene.links, 1);
    EXPECT_EQ(world.carCount, 4);
    for (int c = 0; c < 4; ++c) EXPECT_EQ(world.rigs[c], scene.cars[std::size_t(c)].get());
    EXPECT_EQ(world.jointCount, 3);
}

TEST(BuildWorld, TheDrivenCarComesFirstWhereverItStandsInTheChain) {
    HitchedCars scene(4);
    for (int c = 0; c < 3; ++c) scene.Hitch(c, c + 1);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[2], &scene));
    EXPECT_EQ(world.rigs[0], scene.cars[2].get());
    EXPECT_EQ(world.carCount, 4);
    for (const auto& car : scene.cars) EXPECT_TRUE(IsIn(world, car));
    EXPECT_EQ(world.jointCount, 3);
}

TEST(BuildWorld, EachPairIsOneJointWithTheDataOfItsSlots) {
    HitchedCars scene(2);
    scene.AddUnconnectedSlot(0);
    scene.Hitch(0, 1);
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    ASSERT_EQ(world.jointCount, 1);
    const HitchJoint& joint = world.joints[0];
    EXPECT_EQ(joint.stiffness, 500'000.0);
    EXPECT_NEAR(joint.damping, 14142.1356, 1e-4);
    EXPECT_EQ(joint.damping, std::sqrt(500'000.0) * 20.0);
    EXPECT_EQ(joint.bodyA, &scene.cars[0]->chassisBody);
    EXPECT_EQ(joint.bodyB, &scene.cars[1]->chassisBody);
    EXPECT_EQ(joint.localA.y, -200.0);
    EXPECT_EQ(joint.localB.y, 200.0);
}

TEST(BuildWorld, JointsEnterInTheSameOrderWhereverTheCarsLieInMemory) {
    // A towing car with two trailers abreast, the second of which tows a third: the cars of one scene lie in memory as those of
    // the other, but play each other's parts.
    for (const bool turned : {false, true}) {
        HitchedCars scene(4);
        const auto car = [&](int i) { return turned ? 3 - i : i; };
        const auto body = [&](int i) { return &scene.cars[std::size_t(car(i))]->chassisBody; };
        scene.Hitch(car(2), car(0));
        scene.Hitch(car(3), car(2));
        scene.Hitch(car(0), car(1));
        CarWorld& world = EmptyWorld();
        ASSERT_TRUE(BuildWorld(world, *scene.cars[std::size_t(car(0))], &scene));
        ASSERT_EQ(world.jointCount, 3);
        const int expected[3][2] = {{0, 2}, {0, 1}, {2, 3}};
        for (int j = 0; j < 3; ++j) {
            EXPECT_EQ(world.joints[j].bodyA, body(expected[j][0])) << j << turned;
            EXPECT_EQ(world.joints[j].bodyB, body(expected[j][1])) << j << turned;
        }
    }
}

TEST(BuildWorld, CarsHitchedTwiceHaveAJointForEachPairOfSlots) {
    HitchedCars scene(2);
    scene.Hitch(0, 1, 100.0);
    scene.Hitch(1, 0, 400.0);
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[1], &scene));
    ASSERT_EQ(world.jointCount, 2);
    for (int j = 0; j < 2; ++j) EXPECT_EQ(world.joints[j].bodyA, &scene.cars[1]->chassisBody) << j;
    EXPECT_EQ(world.joints[0].damping, 200.0);
    EXPECT_EQ(world.joints[1].damping, 400.0);
}

TEST(BuildWorld, ACarHitchedToItselfHasNoJoint) {
    HitchedCars scene(1);
    scene.Hitch(0, 0);
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(world.carCount, 1);
    EXPECT_EQ(world.jointCount, 0);
}

TEST(BuildWorld, ASlotThatIsItsOwnPartnerHasNoJoint) {
    HitchedCars scene(1);
    scene.AddUnconnectedSlot(0);
    HitchSlot& slot = scene.cars[0]->hitches[0];
    slot.partner = &slot;
    slot.ownerRig = scene.cars[0].get();
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(world.jointCount, 0);
}

TEST(BuildWorld, ATrailerIsTowedWithoutChangingTheMomentumOfAll) {
    HitchedCars scene(3);
    scene.Hitch(0, 1);
    scene.Hitch(1, 2);
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    scene.cars[0]->chassisBody.momentum = {1e4, 5e5, -2e4};
    for (const auto& car : scene.cars) RefreshVelocities(*car);
    const DPoint3 before = scene.cars[0]->chassisBody.momentum;

    for (int i = 0; i < 1000; ++i) WorldStep(world, 0.0, kDt, NoGround(), /*gravity=*/0.0, StockInput());

    DPoint3 after{};
    for (const auto& car : scene.cars) after += car->chassisBody.momentum;
    EXPECT_LT(Length(after - before), 1e-6);  // of 5e5
    for (int c = 1; c < 3; ++c) EXPECT_GT(Length(scene.cars[std::size_t(c)]->chassisBody.momentum), 1e4) << c;
}

TEST(BuildWorld, ARingOfCarsHasAsManyJointsAsCars) {
    HitchedCars scene(3);
    for (int c = 0; c < 3; ++c) scene.Hitch(c, (c + 1) % 3);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[1], &scene));
    EXPECT_EQ(world.carCount, 3);
    EXPECT_EQ(world.jointCount, 3);
}

TEST(BuildWorld, CarsThatNothingHitchesStayOut) {
    HitchedCars scene(3);
    scene.Hitch(1, 2);
    scene.AddUnconnectedSlot(0);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(world.carCount, 1);
    EXPECT_EQ(world.jointCount, 0);
}

TEST(BuildWorld, CollectsThePushesOfEachCarOnceInTheirOrder) {
    HitchedCars scene(3, /*pushesEach=*/2);
    scene.Hitch(0, 1);
    scene.Hitch(1, 2);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(scene.collected, (std::vector<CarRig*>{scene.cars[0].get(), scene.cars[1].get(), scene.cars[2].get()}));
    ASSERT_EQ(world.pushCount, 6);
    for (int p = 0; p < 6; ++p) EXPECT_EQ(world.pushes[p].body, &scene.cars[std::size_t(p / 2)]->chassisBody);
}

TEST(BuildWorld, BuiltTwiceGivesTheSameWorld) {
    HitchedCars scene(3, 1);
    scene.Hitch(0, 1);
    scene.Hitch(1, 2);
    CarWorld& world = EmptyWorld();
    for (int k = 0; k < 2; ++k) {
        EXPECT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
        EXPECT_EQ(world.carCount, 3);
        EXPECT_EQ(world.jointCount, 2);
        EXPECT_EQ(world.pushCount, 3);
    }
}

void ExpectRefused(HitchedCars& scene) {
    CarWorld& world = EmptyWorld();
    EXPECT_FALSE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(world.carCount, 0);
    EXPECT_EQ(world.jointCount, 0);
    EXPECT_EQ(world.pushCount, 0);
}

TEST(BuildWorld, HoldsAHundredCarsAndRefusesOneMore) {
    HitchedCars fits(kMaxCars), tooMany(kMaxCars + 1);
    for (int c = 0; c + 1 < kMaxCars; ++c) fits.Hitch(c, c + 1);
    for (int c = 0; c < kMaxCars; ++c) tooMany.Hitch(c, c + 1);
    EXPECT_TRUE(BuildWorld(EmptyWorld(), *fits.cars[0], &fits));
    ExpectRefused(tooMany);
}

TEST(BuildWorld, HoldsAHundredJointsAndRefusesOneMore) {
    HitchedCars scene(2);
    for (int j = 0; j < kMaxJoints; ++j) scene.Hitch(0, 1);
    CarWorld& world = EmptyWorld();
    EXPECT_TRUE(BuildWorld(world, *scene.cars[0], &scene));
    EXPECT_EQ(world.jointCount, kMaxJoints);
    EXPECT_TRUE(BuildWorld(world, *scene.cars[1], &scene));
    scene.Hitch(0, 1);
    ExpectRefused(scene);
}

TEST(BuildWorld, AFullWorldIsNotTouchedBehindItsLastJoint) {
    HitchedCars scene(2);
    for (int j = 0; j < kMaxJoints; ++j) scene.Hitch(0, 1);
    CarWorld& world = EmptyWorld();
    ASSERT_TRUE(BuildWorld(world, *scene.cars[0], &scene));  // the second car comes by all its slots with no place left
    EXPECT_EQ(world.jointCount, kMaxJoints);
    EXPECT_EQ(world.pushCount, 0);
    for (int j = 0; j < kMaxJoints; ++j) EXPECT_EQ(world.joints[j].localA.z, 1.0 + j);
}

TEST(BuildWorld, RefusesMorePushesThanAWorldHolds) {
    HitchedCars fits(2, kMaxPushes / 2), tooMany(3, kMaxPushes / 2);
    fits.Hitch(0, 1);
    tooMany.Hitch(0, 1);
    tooMany.Hitch(1, 2);
    EXPECT_TRUE(BuildWorld(EmptyWorld(), *fits.cars[0], &fits));
    ExpectRefused(tooMany);
}

}  // namespace
}  // namespace tavrik::test
