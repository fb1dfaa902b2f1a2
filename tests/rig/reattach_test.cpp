#include <gtest/gtest.h>

#include <limits>

#include "rig/assembly.h"
#include "rig/parameter_tables.h"
#include "tests/rig/plain_scene.h"
#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

/// A locked car as a loaded scene has it: the nodes and their controls, beside a rig that knows nothing yet.
class ReattachTest : public ::testing::Test {
 protected:
    ReattachTest() {
        TestRandom random(TestSeed(70));
        master = &scene.AddMaster("Master", {0, 0, 0}, {500, 500, 500});
        Add("Chassis", ObjectClass::Chassis, random);
        for (int i = 0; i < 3; ++i) {
            PlainNode& arm = Add("Arm" + std::to_string(i), ObjectClass::Suspension, random);
            PlainNode& wheel = scene.Add("Wheel" + std::to_string(i), ObjectClass::Wheel, {0, 0, 0});
            wheel.own = arm.own;
            wheel.floats[WheelParam::Mass] = {20.0f + float(i)};
            arm.floats[SuspensionParam::Length] = {30.0f + float(i)};
        }
        Add("Hitch", ObjectClass::Hitch, random);
        Add("Tongue", ObjectClass::Tongue, random);
        Add("Ball", ObjectClass::Sphere, random).floats[SphereParam::Radius] = {12};
        EXPECT_EQ(AssembleIn(scene, *master).result, AssemblyResult::Locked);
        EXPECT_EQ(master->rig->unitCount, 3);
        assembled = std::move(master->rig);
        master->rig = std::make_unique<CarRig>();
        scene.changes = 0;
    }

    PlainNode& Add(const std::string& name, ObjectClass objectClass, TestRandom& random) {
        PlainNode& node = scene.Add(name, objectClass, {0, 0, 0});
        node.own = ToMatrix3(random.Turn());
        node.own.row[3] = ToPoint3(random.Vector(400.0));
        return node;
    }
    PlainNode& Node(std::string_view name) { return *scene.Find(name); }
    CarRig& Rig() { return *master->rig; }
    bool ReattachAll() { return Reattach(Rig(), scene.Root(), *master); }
    void ExpectRefusal() {
        Rig().unitCount = Rig().hitchCount = Rig().sphereCount = 77;
        EXPECT_FALSE(ReattachAll());
        EXPECT_EQ(Rig().unitCount, 77);
        EXPECT_EQ(Rig().hitchCount, 77);
        EXPECT_EQ(Rig().sphereCount, 77);
        EXPECT_EQ(Rig().chassisParams.Mass, 12.0);
        EXPECT_TRUE(SameBits(Rig().units[0].frame, IdentityDMatrix3()));
    }

    PlainScene scene;
    PlainNode* master;
    std::shared_ptr<CarRig> assembled;
};

TEST_F(ReattachTest, RebuildsWhatTheAssemblyMadeBitForBit) {
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().unitCount, 3);
    EXPECT_EQ(Rig().hitchCount, 2);
    EXPECT_EQ(Rig().sphereCount, 1);
    EXPECT_TRUE(SameBits(Rig().chassisParams, assembled->chassisParams));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(SameBits(Rig().units[i].frame, assembled->units[i].frame)) << i;
        EXPECT_EQ(Rig().units[i].Mass, assembled->units[i].Mass) << i;
        EXPECT_EQ(Rig().units[i].Length, assembled->units[i].Length) << i;
        EXPECT_EQ(Rig().units[i].wheelHandle, assembled->units[i].wheelHandle) << i;
    }
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(SameBits(Rig().hitches[i].frame, assembled->hitches[i].frame)) << i;
    EXPECT_TRUE(SameBits(Rig().spheres[0], assembled->spheres[0]));
}

TEST_F(ReattachTest, LeavesBodiesDashpotsAndTheSceneAlone) {
    Rig().bufferPosition[1] = 3.0;
    Rig().wheelBodies[1].momentum = {1, 2, 3};
    const RigidBody wheel = Rig().wheelBodies[1], body = Rig().chassisBody;
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().bufferPosition[1], 3.0);
    EXPECT_TRUE(SameBits(Rig().wheelBodies[1], wheel));
    EXPECT_TRUE(SameBits(Rig().chassisBody, body));
    EXPECT_FALSE(Rig().motion.valid);
    EXPECT_EQ(scene.changes, 0);
}

TEST_F(ReattachTest, LooksAtTheControlsNotAtThePlaces) {
    for (PlainNode& node : scene.Nodes()) node.own = At({0, 0, 10'000});
    ASSERT_TRUE(ReattachAll());
    EXPECT_TRUE(SameBits(Rig().units[2].frame, assembled->units[2].frame));
}

TEST_F(ReattachTest, TakesTheSlotAsItIsWithoutAShift) {
    Node("Arm1").floats[SuspensionParam::Wheel_Shift] = {1000};
    ASSERT_TRUE(ReattachAll());
    EXPECT_TRUE(SameBits(Rig().units[1].frame, assembled->units[1].frame));
    EXPECT_EQ(Rig().units[1].Wheel_Shift, 1000.0);
}

TEST_F(ReattachTest, FramesComeFromTheWheelsControl) {
    Node("Arm1").control.Slot_Position = At({1, 2, 3});
    Node("Wheel1").control.Slot_Position = At({4, 5, 6});
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().units[1].frame.row[3].x, 4.0);
}

TEST_F(ReattachTest, NumbersCountNotTheOrderOfTheScene) {
    std::swap(Node("Wheel0").control, Node("Wheel2").control);
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().units[0].Mass, 22.0);
    EXPECT_EQ(Rig().units[2].Mass, 20.0);
    EXPECT_EQ(Rig().units[0].Length, 30.0);  // suspensions stayed
}

TEST_F(ReattachTest, OfTwoNodesWithOneNumberTheLaterCounts) {
    PlainNode& copy = scene.Copy(Node("Wheel1"));
    copy.floats[WheelParam::Mass] = {99};
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().unitCount, 3);
    EXPECT_EQ(Rig().units[1].Mass, 99.0);
    EXPECT_EQ(Rig().units[1].wheelHandle, copy.handle);
}

TEST_F(ReattachTest, TwoWheelsOnOneSuspensionLeaveAHole) {
    PlainScene shared;
    PlainNode& owner = shared.AddMaster("Master", {0, 0, 0}, {500, 500, 500});
    shared.Add("Chassis", ObjectClass::Chassis, {0, 0, 0});
    shared.Add("A", ObjectClass::Wheel, {100, 0, 0});
    shared.Add("B", ObjectClass::Wheel, {101, 0, 0});
    shared.Add("Arm", ObjectClass::Suspension, {100, 0, 0});
    ASSERT_EQ(AssembleIn(shared, owner).result, AssemblyResult::Locked);
    ASSERT_EQ(owner.rig->unitCount, 2);
    EXPECT_FALSE(Reattach(*owner.rig, shared.Root(), owner));
    EXPECT_EQ(owner.rig->unitCount, 2);
}

TEST_F(ReattachTest, FailsWithoutAChassis) {
    Node("Chassis").control.Tavrik_Node = nullptr;
    ExpectRefusal();
}

TEST_F(ReattachTest, FailsIfTheChassisHasAnotherNumberThanNought) {
    Node("Chassis").control.Axle_Num = 1;
    ExpectRefusal();
}

TEST_F(ReattachTest, FailsIfAWheelOrASuspensionIsGone) {
    for (const char* name : {"Wheel2", "Arm2", "Wheel0", "Arm0"}) {
        PlainNode& node = Node(name);
        node.control.Tavrik_Node = nullptr;
        ExpectRefusal();
        node.control.Tavrik_Node = master;
    }
    EXPECT_TRUE(ReattachAll());
}

TEST_F(ReattachTest, FailsIfBothListsHaveAHoleAtOnePlace) {
    Node("Wheel1").control.Tavrik_Node = Node("Arm1").control.Tavrik_Node = nullptr;
    ExpectRefusal();
}

TEST_F(ReattachTest, FailsOnAHoleAmongHitchesOrSpheres) {
    Node("Hitch").control.Tavrik_Node = nullptr;
    ExpectRefusal();
    Node("Hitch").control.Tavrik_Node = master;
    Node("Ball").control.Axle_Num = 1;
    ExpectRefusal();
}

TEST_F(ReattachTest, AMissingLastHitchOrSphereIsNoHole) {
    Node("Tongue").control.Tavrik_Node = Node("Ball").control.Tavrik_Node = nullptr;
    ASSERT_TRUE(ReattachAll());
    EXPECT_EQ(Rig().hitchCount, 1);
    EXPECT_EQ(Rig().sphereCount, 0);
}

TEST_F(ReattachTest, FailsIfTheRecordingHasAnotherNumberOfWheels) {
    Rig().unitCount = 2;
    Rig().InitMotion();
    ExpectRefusal();
    EXPECT_TRUE(Rig().motion.valid);  // it stays as it was loaded
    EXPECT_EQ(Rig().motion.unitCount, 2);
    Rig().unitCount = 3;
    Rig().InitMotion();
    EXPECT_TRUE(ReattachAll());
}

TEST_F(ReattachTest, RefusesNumbersThatNoCarHas) {
    const std::int32_t most = std::numeric_limits<std::int32_t>::max(), least = std::numeric_limits<std::int32_t>::min();
    for (const char* name : {"Chassis", "Wheel1", "Arm2", "Tongue", "Ball"}) {
        PlainNode& node = Node(name);
        const std::int32_t number = node.control.Axle_Num;
        for (const std::int32_t bad : {-1, 200, most, least}) {
            node.control.Axle_Num = bad;
            ExpectRefusal();
        }
        node.control.Axle_Num = number;
    }
    EXPECT_TRUE(ReattachAll());
}

TEST_F(ReattachTest, RefusesABadNumberEvenIfAnotherNodeWouldTakeThePlace) {
    scene.Copy(Node("Wheel1")).control.Axle_Num = -1;
    ExpectRefusal();
}

TEST_F(ReattachTest, PassesOverWhatIsNoPartOfThisCar) {
    PlainNode& bare = scene.Copy(Node("Wheel1"));
    bare.DeleteObject();
    bare.control.Axle_Num = -5;
    PlainNode& teapot = scene.Add("Teapot", ObjectClass::Other, {0, 0, 0});
    teapot.hasControl = true;
    teapot.control = Node("Wheel1").control;
    teapot.control.Axle_Num = -5;
    PlainNode& other = scene.AddMaster("Other", {0, 0, 0}, {1, 1, 1});
    PlainNode& foreign = scene.Copy(Node("Wheel1"));
    foreign.control.Tavrik_Node = &other;
    foreign.control.Axle_Num = -5;
    EXPECT_TRUE(ReattachAll());
}

TEST_F(ReattachTest, ALoadedCarIsShownWhereItWasSaved) {
    const Matrix3 wheel = assembled->GetTM(ComponentType::Wheel, 2, 0), arm = assembled->GetTM(ComponentType::Suspension, 2, 0);
    Rig().motion = std::move(assembled->motion);
    ASSERT_TRUE(ReattachAll());
    EXPECT_TRUE(SameBits(Node("Wheel2").ShownAt(0), wheel));
    EXPECT_TRUE(SameBits(Node("Arm2").ShownAt(0), arm));
}

}  // namespace
}  // namespace tavrik::test
