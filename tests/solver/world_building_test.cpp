#include "solver/world_building.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

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
    const bool firstIsA = joint.bodyA == &scene.cars[0]->chassisBody;
    EXPECT_EQ(firstIsA ? joint.bodyB : joint.bodyA, &scene.cars[1]->chassisBody);
    EXPECT_EQ(firstIsA ? joint.bodyA : joint.bodyB, &scene.cars[0]->chassisBody);
    EXPECT_EQ((firstIsA ? joint.localA : joint.localB).y, -200.0);
    EXPECT_EQ((firstIsA ? joint.localB : joint.localA).y, 200.0);
    EXPECT_GT(std::uintptr_t(joint.bodyA), std::uintptr_t(joint.bodyB));
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
