#include "rig/playback_rule.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/rig/plain_scene.h"
#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max(), kLeast = std::numeric_limits<std::int32_t>::min();

TEST(FollowsRecording, OnlyWithAMasterThatHasARecording) {
    TestRandom random(TestSeed(80));
    const auto rig = RandomCar(random);
    EXPECT_FALSE(FollowsRecording(ObjectClass::Tavrik, rig.get(), 2, 0));
    rig->InitMotion();
    EXPECT_TRUE(FollowsRecording(ObjectClass::Tavrik, rig.get(), 2, 0));
    rig->ResetMotion();
    EXPECT_FALSE(FollowsRecording(ObjectClass::Tavrik, rig.get(), 2, 0));
}

TEST(FollowsRecording, NotWhereTheMasterIsNoneOrHasAnotherObject) {
    TestRandom random(TestSeed(81));
    const auto rig = RandomCar(random);
    rig->InitMotion();
    for (const ObjectClass other : {ObjectClass::None, ObjectClass::Other, ObjectClass::Chassis, ObjectClass::Wheel}) {
        EXPECT_FALSE(FollowsRecording(other, rig.get(), 2, 0)) << int(other);
    }
    EXPECT_FALSE(FollowsRecording(ObjectClass::Tavrik, nullptr, 2, 0));
}

TEST(FollowsRecording, HighestNumberThatAControlHoldsIsTheLastThatFollows) {
    TestRandom random(TestSeed(82));
    const auto rig = RandomCar(random);
    rig->InitMotion();
    EXPECT_TRUE(FollowsRecording(ObjectClass::Tavrik, rig.get(), 2, 199));
    EXPECT_FALSE(FollowsRecording(ObjectClass::Tavrik, rig.get(), 2, 200));
}

TEST(FollowedRig, IsTheMastersWhileItHasARecording) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    ControlValues values;
    EXPECT_EQ(FollowedRig(values), nullptr);
    values.Tavrik_Node = &master;
    EXPECT_EQ(FollowedRig(values), nullptr);
    master.rig->InitMotion();
    EXPECT_EQ(FollowedRig(values), master.rig.get());
    values.Axle_Num = 200;
    EXPECT_EQ(FollowedRig(values), nullptr);
}

TEST(FollowedRig, IsNoneOnceTheMastersObjectIsGone) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    PlainNode& wheel = scene.Add("Wheel", ObjectClass::Wheel, {5, 0, 0});
    LockNode(wheel, master, ComponentType::Wheel, 0, IdentityMatrix3());
    master.rig->InitMotion();
    master.DeleteObject();
    EXPECT_EQ(FollowedRig(wheel.control), nullptr);
    EXPECT_EQ(wheel.ShownAt(0).row[3].x, 5.0f);
    wheel.Move(At({6, 0, 0}));
    EXPECT_EQ(wheel.ShownAt(0).row[3].x, 6.0f);
}

TEST(FollowedRig, ACopyOfALockedNodeFollowsTheSameComponent) {
    TestRandom random(TestSeed(83));
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    master.rig = RandomRun(random, 10, 0, 32);
    PlainNode& wheel = scene.Add("Wheel", ObjectClass::Wheel, {5, 0, 0});
    LockNode(wheel, master, ComponentType::Wheel, 2, IdentityMatrix3());
    const PlainNode& copy = scene.Copy(wheel);
    EXPECT_TRUE(SameBits(copy.ShownAt(100), wheel.ShownAt(100)));
    EXPECT_TRUE(SameBits(copy.ShownAt(100), master.rig->GetTM(ComponentType::Wheel, 2, 100)));
}

// ------------------------------------------------------------------------------------------------------------------ AnswerTM

std::int32_t CountOf(const CarRig& rig, ComponentType type) {
    switch (type) {
        case ComponentType::Chassis:
            return 1;
        case ComponentType::Hitch:
            return rig.hitchCount;
        case ComponentType::Sphere:
            return rig.sphereCount;
        default:
            return rig.unitCount;
    }
}

TEST(AnswerTM, IsTheRigsOwnAnswerForEveryComponentThatIsThere) {
    TestRandom random(TestSeed(84));
    const auto rig = RandomRun(random, 10, 0, 32);
    for (std::int32_t type = 0; type <= 5; ++type) {
        for (std::int32_t i = 0; i < CountOf(*rig, ComponentType(type)); ++i) {
            for (const TimeValue tick : {-50, 0, 7, 100, 10'000}) {
                EXPECT_TRUE(SameBits(AnswerTM(*rig, type, i, tick), rig->GetTM(ComponentType(type), i, tick)))
                    << type << " " << i << " " << tick;
            }
        }
    }
}

TEST(AnswerTM, ChassisAnswersWhateverItsNumber) {
    TestRandom random(TestSeed(85));
    const auto rig = RandomRun(random, 10, 0, 32);
    const Matrix3 chassis = rig->GetTM(ComponentType::Chassis, 0, 100);
    for (const std::int32_t index : {0, 1, 199, -1, kLeast}) EXPECT_TRUE(SameBits(AnswerTM(*rig, 0, index, 100), chassis));
}

TEST(AnswerTM, NumbersThatNoComponentHasRideWithTheChassis) {
    TestRandom random(TestSeed(86));
    const auto rig = RandomRun(random, 10, 0, 32);
    for (std::int32_t type = 1; type <= 5; ++type) {
        const std::int32_t count = CountOf(*rig, ComponentType(type));
        for (const std::int32_t index : {count, 150, 199, 200, kMost, -1, kLeast}) {
            for (const TimeValue tick : {-50, 0, 100, 10'000}) {
                EXPECT_TRUE(SameBits(AnswerTM(*rig, type, index, tick), rig->GetTM(ComponentType::Chassis, 0, tick)))
                    << type << " " << index << " " << tick;
            }
        }
    }
}

TEST(AnswerTM, KindsThatNoAssemblyMakesRideWithTheChassis) {
    TestRandom random(TestSeed(87));
    const auto rig = RandomRun(random, 10, 0, 32);
    for (const std::int32_t type : {6, 7, 8, 9, -1, kMost, kLeast}) {
        EXPECT_TRUE(SameBits(AnswerTM(*rig, type, 0, 100), rig->GetTM(ComponentType::Chassis, 0, 100))) << type;
    }
}

TEST(AnswerTM, WithoutARecordingIsTheIdentity) {
    TestRandom random(TestSeed(88));
    const auto rig = RandomCar(random);
    for (std::int32_t type = -1; type <= 8; ++type) {
        EXPECT_TRUE(SameBits(AnswerTM(*rig, type, 0, 0), IdentityMatrix3())) << type;
    }
}

TEST(AnswerTM, ARecordingBesideAnEmptyRigShowsItsWheelsWithTheirSuspensionsAndTheRestAtTheChassis) {
    TestRandom random(TestSeed(89));
    const auto recorded = RandomRun(random, 10, 0, 32);
    const auto empty = std::make_unique<CarRig>();
    const Matrix3 wheel = recorded->GetTM(ComponentType::Wheel, 3, 100);
    empty->motion = std::move(recorded->motion);
    const Matrix3 chassis = empty->GetTM(ComponentType::Chassis, 0, 100);

    EXPECT_TRUE(SameBits(AnswerTM(*empty, 2, 3, 100), wheel));
    const Matrix3 suspension = AnswerTM(*empty, 1, 3, 100);
    EXPECT_EQ(suspension.row[3].x, wheel.row[3].x);
    EXPECT_EQ(suspension.row[3].y, wheel.row[3].y);
    EXPECT_EQ(suspension.row[3].z, wheel.row[3].z);
    for (const std::int32_t type : {0, 3, 4, 5}) EXPECT_TRUE(SameBits(AnswerTM(*empty, type, 0, 100), chassis)) << type;
}

TEST(AnswerTM, ARigWithMoreUnitsThanItsRecordingDoesntReadBeyondIt) {
    TestRandom random(TestSeed(90));
    const auto rig = RandomRun(random, 10, 0, 32);
    rig->unitCount = 6;
    const Matrix3 chassis = rig->GetTM(ComponentType::Chassis, 0, 100);
    for (const std::int32_t index : {4, 5}) {
        EXPECT_TRUE(SameBits(AnswerTM(*rig, 1, index, 100), chassis));
        EXPECT_TRUE(SameBits(AnswerTM(*rig, 2, index, 100), chassis));
    }
}

TEST(AnswerTM, CountsBeyondWhatACarCanHaveAreNotTrusted) {
    TestRandom random(TestSeed(91));
    const auto rig = RandomRun(random, 10, 0, 32);
    const Matrix3 chassis = rig->GetTM(ComponentType::Chassis, 0, 100);
    rig->unitCount = rig->hitchCount = rig->sphereCount = 1000;
    for (std::int32_t type = 1; type <= 5; ++type) {
        EXPECT_TRUE(SameBits(AnswerTM(*rig, type, 500, 100), chassis)) << type;
    }
}

// --------------------------------------------------------------------------------------------------------------- locked test

TEST(IsLocked, NeedsAControlAMasterAndARecording) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    PlainNode& wheel = scene.Add("Wheel", ObjectClass::Wheel, {0, 0, 0});
    master.rig->InitMotion();
    EXPECT_FALSE(IsLocked(wheel));
    wheel.InstallControl();
    EXPECT_FALSE(IsLocked(wheel));
    LockNode(wheel, master, ComponentType::Wheel, 0, IdentityMatrix3());
    EXPECT_TRUE(IsLocked(wheel));
    master.rig->ResetMotion();
    EXPECT_FALSE(IsLocked(wheel));
}

TEST(IsLocked, FollowsTheNumberAndNotTheKind) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    PlainNode& wheel = scene.Add("Wheel", ObjectClass::Wheel, {0, 0, 0});
    master.rig->InitMotion();
    for (const ComponentType type : {ComponentType::Chassis, ComponentType::Sphere}) {
        LockNode(wheel, master, type, 199, IdentityMatrix3());
        EXPECT_TRUE(IsLocked(wheel));
        LockNode(wheel, master, type, 200, IdentityMatrix3());
        EXPECT_FALSE(IsLocked(wheel));
    }
    EXPECT_FALSE(IsLocked(false, master.rig.get(), ComponentType::Wheel, 0));
    EXPECT_FALSE(IsLocked(true, nullptr, ComponentType::Wheel, 0));
    EXPECT_TRUE(IsLocked(true, master.rig.get(), ComponentType::Wheel, 0));
}

TEST(IsLocked, NotWhenTheNodeThatTheControlNamesHasNoRig) {
    PlainScene scene;
    PlainNode& teapot = scene.Add("Teapot", ObjectClass::Other, {0, 0, 0});
    PlainNode& wheel = scene.Add("Wheel", ObjectClass::Wheel, {0, 0, 0});
    LockNode(wheel, teapot, ComponentType::Wheel, 0, IdentityMatrix3());
    EXPECT_FALSE(IsLocked(wheel));
}

TEST(ComponentTypeOf, IsWhatTheAssemblySetsOnEachClass) {
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Chassis)), 0);
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Suspension)), 1);
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Wheel)), 2);
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Hitch)), 4);
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Tongue)), 4);
    EXPECT_EQ(int(ComponentTypeOf(ObjectClass::Sphere)), 5);
}

}  // namespace
}  // namespace tavrik::test
