#include "rig/assembly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "rig/component_values.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "rig/playback_rule.h"
#include "tests/rig/plain_scene.h"
#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

// A quarter turn about X: its Z axis is at right angles to the world's.
const Matrix3 kLyingFrame = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};

/// A car of two wheels, with one of everything else.
class Assembly : public ::testing::Test {
 protected:
    Assembly() {
        master = &scene.AddMaster("Master", {0, 0, 0}, {500, 500, 500});
        chassis = &scene.Add("Chassis", ObjectClass::Chassis, {10, 20, 30});
        left = &scene.Add("Left", ObjectClass::Wheel, {-100, 20, 30});
        right = &scene.Add("Right", ObjectClass::Wheel, {100, 20, 30});
        leftArm = &scene.Add("LeftArm", ObjectClass::Suspension, {-95, 20, 30});
        rightArm = &scene.Add("RightArm", ObjectClass::Suspension, {95, 20, 30});
        hitch = &scene.Add("Hitch", ObjectClass::Hitch, {10, -200, 30});
        sphere = &scene.Add("Sphere", ObjectClass::Sphere, {10, 20, 130});
        tongue = &scene.Add("Tongue", ObjectClass::Tongue, {10, 220, 30});
        start = &scene.Add("Start", ObjectClass::Start, {1000, 2000, 3000});
    }
    CarRig& Rig() { return *master->rig; }
    Assembled AssembleAll(SceneNode* startNode = nullptr) { return AssembleIn(scene, *master, startNode); }

    PlainScene scene;
    PlainNode *master, *chassis, *left, *right, *leftArm, *rightArm, *hitch, *sphere, *tongue, *start;
};

void ExpectControl(const PlainNode& node, const PlainNode& master, ComponentType type, std::int32_t index) {
    ASSERT_TRUE(node.hasControl) << node.name;
    EXPECT_EQ(node.control.Tavrik_Node, &master) << node.name;
    EXPECT_EQ(node.control.Object_Type, std::int32_t(type)) << node.name;
    EXPECT_EQ(node.control.Axle_Num, index) << node.name;
}

TEST_F(Assembly, LocksEveryPartByKindAndNumber) {
    const Assembled answer = AssembleAll();
    EXPECT_EQ(answer.result, AssemblyResult::Locked);
    EXPECT_EQ(answer.problem, "");
    ExpectControl(*chassis, *master, ComponentType::Chassis, 0);
    ExpectControl(*left, *master, ComponentType::Wheel, 0);
    ExpectControl(*leftArm, *master, ComponentType::Suspension, 0);
    ExpectControl(*right, *master, ComponentType::Wheel, 1);
    ExpectControl(*rightArm, *master, ComponentType::Suspension, 1);
    ExpectControl(*hitch, *master, ComponentType::Hitch, 0);
    ExpectControl(*tongue, *master, ComponentType::Hitch, 1);
    ExpectControl(*sphere, *master, ComponentType::Sphere, 0);
    EXPECT_FALSE(start->hasControl);
    EXPECT_FALSE(master->hasControl);
}

TEST_F(Assembly, LocksInItsOwnOrder) {
    AssembleAll();
    const std::vector<std::string> expected = {"install Chassis",  "set Chassis",  "install Left",   "set Left",
                                               "install LeftArm",  "set LeftArm",  "install Right",  "set Right",
                                               "install RightArm", "set RightArm", "install Hitch",  "set Hitch",
                                               "install Tongue",   "set Tongue",   "install Sphere", "set Sphere"};
    EXPECT_EQ(scene.log, expected);
}

TEST_F(Assembly, StartsARecordingOfOneFrame) {
    AssembleAll();
    EXPECT_TRUE(Rig().motion.valid);
    EXPECT_EQ(Rig().motion.frames, 1);
    EXPECT_EQ(Rig().motion.unitCount, 2);
    EXPECT_EQ(Rig().unitCount, 2);
    EXPECT_EQ(Rig().hitchCount, 2);
    EXPECT_EQ(Rig().sphereCount, 1);
}

TEST_F(Assembly, ChassisSlotIsTheIdentity) {
    AssembleAll();
    EXPECT_TRUE(SameBits(chassis->control.Slot_Position, IdentityMatrix3()));
}

TEST_F(Assembly, BodyStandsWhereTheChassisDoesAtRest) {
    Rig().chassisBody.momentum = Rig().chassisBody.velocity = {1, 2, 3};
    AssembleAll();
    RigidBody expected;
    expected.frame.row[3] = {10, 20, 30};
    EXPECT_TRUE(SameBits(Rig().chassisBody, expected));
}

TEST_F(Assembly, WheelStandsWhereItsSuspensionMarksItsRest) {
    leftArm->floats[SuspensionParam::Wheel_Shift] = {4};
    Rig().bufferPosition[0] = 5.0;
    AssembleAll();
    const DPoint3 wheel = Rig().wheelBodies[0].frame.row[3];
    EXPECT_EQ(wheel.x, -95.0);
    EXPECT_EQ(wheel.y, 20.0);
    EXPECT_EQ(wheel.z, 30.0);
    EXPECT_EQ(Rig().bufferPosition[0], 0.0);
}

TEST_F(Assembly, WishboneIsFixedBackAlongItsAxleByArmAndShift) {
    leftArm->floats[SuspensionParam::Length] = {38};
    leftArm->floats[SuspensionParam::Wheel_Shift] = {4};
    AssembleAll();
    const DPoint3 fixed = Rig().units[0].frame.row[3];  // in chassis space
    EXPECT_EQ(fixed.x, -105.0);
    EXPECT_EQ(fixed.y, 0.0);
    EXPECT_EQ(fixed.z, -42.0);
}

TEST_F(Assembly, TelescopicUnitIsFixedBackByItsShiftAlone) {
    leftArm->ints[SuspensionParam::Suspension_Type] = kTelescopic;
    leftArm->floats[SuspensionParam::Length] = {38};
    leftArm->floats[SuspensionParam::Wheel_Shift] = {4};
    AssembleAll();
    EXPECT_EQ(Rig().units[0].frame.row[3].z, -4.0);
}

TEST_F(Assembly, WheelAndSuspensionKeepTheAttachmentAsTheirSlot) {
    AssembleAll();
    const Matrix3 attachment = ToMatrix3(Rig().units[1].frame);
    EXPECT_TRUE(SameBits(right->control.Slot_Position, attachment));
    EXPECT_TRUE(SameBits(rightArm->control.Slot_Position, attachment));
    EXPECT_EQ(attachment.row[3].z, -50.0f);
}

TEST_F(Assembly, HitchesAndSpheresKeepTheirPlacesInChassisSpace) {
    AssembleAll();
    EXPECT_EQ(Rig().hitches[0].frame.row[3].y, -220.0);
    EXPECT_EQ(Rig().hitches[1].frame.row[3].y, 200.0);
    EXPECT_EQ(Rig().spheres[0].frame.row[3].z, 100.0);
    EXPECT_TRUE(SameBits(hitch->control.Slot_Position, ToMatrix3(Rig().hitches[0].frame)));
    EXPECT_TRUE(SameBits(sphere->control.Slot_Position, ToMatrix3(Rig().spheres[0].frame)));
}

TEST_F(Assembly, LeavesTheTiesOfHitchesAlone) {
    HitchSlot other;
    Rig().hitches[0].partner = &other;
    Rig().hitches[0].ownerRig = &Rig();
    Rig().hitches[0].Ruggedness = 7.0;
    AssembleAll();
    EXPECT_EQ(Rig().hitches[0].partner, &other);
    EXPECT_EQ(Rig().hitches[0].ownerRig, &Rig());
    EXPECT_EQ(Rig().hitches[0].Ruggedness, 7.0);
}

TEST_F(Assembly, EachParameterReachesItsOwnField) {
    float next = 1.5f;
    for (PlainNode* node : {chassis, left, leftArm, sphere}) {
        for (auto& [param, values] : node->floats) values[0] = next++;
    }
    left->floats[WheelParam::Width] = {40};
    leftArm->ints = {{SuspensionParam::Steering, 1},
                     {SuspensionParam::Drive, 2},
                     {SuspensionParam::Handbrake, 3},
                     {SuspensionParam::Suspension_Type, 1}};
    AssembleAll();

    const ChassisParams& body = Rig().chassisParams;
    EXPECT_EQ(body.Width, double(chassis->floats[0][0]));
    EXPECT_EQ(body.Length, double(chassis->floats[1][0]));
    EXPECT_EQ(body.Height, double(chassis->floats[2][0]));
    EXPECT_EQ(body.Mass, double(chassis->floats[3][0]));
    EXPECT_EQ(body.Solidity, double(chassis->floats[4][0]));
    EXPECT_EQ(body.RotationCenterShift, double(chassis->floats[5][0] / 100.0f));
    const SuspensionUnit& unit = Rig().units[0];
    EXPECT_EQ(unit.Radius, double(left->floats[0][0]));
    EXPECT_EQ(unit.Width, 40.0);
    EXPECT_EQ(unit.Mass, double(left->floats[2][0]));
    EXPECT_EQ(unit.wheelRuggedness, double(left->floats[3][0]));
    EXPECT_EQ(unit.Grip, double(left->floats[4][0]));
    EXPECT_EQ(unit.Length, double(leftArm->floats[0][0]));
    const float factor = leftArm->floats[1][0];
    EXPECT_EQ(unit.Ruggedness, double(leftArm->floats[2][0] * factor));
    EXPECT_EQ(unit.Damping, double(leftArm->floats[3][0] * std::sqrt(factor)));
    EXPECT_EQ(unit.Top_Stop, double(leftArm->floats[4][0]));
    EXPECT_EQ(unit.Bottom_Stop, double(leftArm->floats[5][0]));
    EXPECT_EQ(unit.Shift, double(leftArm->floats[6][0]));
    EXPECT_EQ(unit.Buffer_Ruggedness, double(leftArm->floats[10][0] * factor));
    EXPECT_EQ(unit.Wheel_Shift, double(leftArm->floats[12][0]));
    EXPECT_EQ(unit.Suspension_Type, kTelescopic);
    EXPECT_EQ(unit.Steering, 1);
    EXPECT_EQ(unit.Drive, 2);
    EXPECT_EQ(unit.Handbrake, 3);
    EXPECT_EQ(unit.wheelHandle, left->handle);
    EXPECT_EQ(Rig().spheres[0].Radius, double(sphere->floats[0][0]));
    EXPECT_EQ(Rig().spheres[0].Ruggedness, double(sphere->floats[1][0]));
    EXPECT_EQ(Rig().spheres[0].Grip, double(sphere->floats[2][0]));
}

TEST_F(Assembly, ANewChassisAimsItsSteeringSeventyPercentBack) {
    AssembleAll();
    EXPECT_EQ(Rig().chassisParams.RotationCenterShift, double(-0.7f));
}

// ----------------------------------------------------------------------------------------------------------------- matching

TEST_F(Assembly, AxesAtRightAnglesDontMatch) {
    leftArm->own = left->own;
    left->own = kLyingFrame;
    left->own.row[3] = leftArm->own.row[3];
    AssembleAll();
    EXPECT_EQ(Rig().unitCount, 1);
    EXPECT_FALSE(left->hasControl);
    EXPECT_FALSE(leftArm->hasControl);
    ExpectControl(*right, *master, ComponentType::Wheel, 0);  // the next wheel takes the number
}

TEST_F(Assembly, OppositeAxesDontMatch) {
    left->own.row[1] = {0, -1, 0};
    left->own.row[2] = {0, 0, -1};
    AssembleAll();
    EXPECT_FALSE(left->hasControl);
}

TEST_F(Assembly, SuspensionExactlyWidthAwayDoesntMatch) {
    leftArm->own = At({-85, 20, 30});  // a new wheel's Width is 15
    AssembleAll();
    EXPECT_FALSE(left->hasControl);
    EXPECT_FALSE(leftArm->hasControl);
}

TEST_F(Assembly, SuspensionALittleNearerMatches) {
    leftArm->own = At({std::nextafter(-85.0f, -86.0f), 20, 30});
    AssembleAll();
    EXPECT_TRUE(left->hasControl);
}

TEST_F(Assembly, RadiusPlaysNoPartInMatching) {
    left->floats[WheelParam::Radius] = {1000};
    leftArm->own = At({-80, 20, 30});
    AssembleAll();
    EXPECT_FALSE(left->hasControl);
}

TEST_F(Assembly, AnAxisExactlyAtTheLimitDoesntMatch) {
    left->own.row[2] = {0.6f, 0, 0.8f};
    AssembleAll();
    EXPECT_FALSE(left->hasControl);
    left->own.row[2].z = std::nextafter(0.8f, 1.0f);
    AssembleAll();
    EXPECT_TRUE(left->hasControl);
}

TEST_F(Assembly, APairScaledByTwoMatchesAtWiderAngles) {
    const float c = 0.25f, s = std::sqrt(1.0f - c * c);  // 75 degrees apart
    left->own.row[2] = {s, 0, c};
    AssembleAll();
    EXPECT_FALSE(left->hasControl);

    for (PlainNode* node : {left, leftArm}) {
        for (int r = 0; r < 3; ++r) node->own.row[r] = node->own.row[r] * 2.0f;
    }
    AssembleAll();
    EXPECT_TRUE(left->hasControl);
}

TEST_F(Assembly, FirstSuspensionThatFitsIsTakenNotTheNearest) {
    PlainNode& nearer = scene.Add("Nearer", ObjectClass::Suspension, {-100, 20, 30});
    AssembleAll();
    EXPECT_TRUE(leftArm->hasControl);
    EXPECT_FALSE(nearer.hasControl);
}

TEST_F(Assembly, TwoWheelsMayShareASuspensionWhichFollowsTheLater) {
    PlainNode& twin = scene.Add("Twin", ObjectClass::Wheel, {-98, 20, 30});
    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);
    EXPECT_EQ(Rig().unitCount, 3);
    ExpectControl(*left, *master, ComponentType::Wheel, 0);
    ExpectControl(twin, *master, ComponentType::Wheel, 2);
    ExpectControl(*leftArm, *master, ComponentType::Suspension, 2);
    EXPECT_TRUE(SameBits(Rig().units[0].frame, Rig().units[2].frame));
}

TEST_F(Assembly, ACarMayHaveNoWheelAtAll) {
    left->own = right->own = At({0, 0, 400});
    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);
    EXPECT_EQ(Rig().unitCount, 0);
    EXPECT_TRUE(Rig().motion.valid);
}

// ------------------------------------------------------------------------------------------------------------------ the box

TEST(AssemblyBox, ChassisBeyondTheBoxIsntFound) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {20, 20, 20});
    scene.Add("Chassis", ObjectClass::Chassis, {21, 0, 0});
    const Assembled answer = AssembleIn(scene, master);
    EXPECT_EQ(answer.result, AssemblyResult::NoChassis);
    EXPECT_EQ(answer.problem, "Can't find Chassis Object.");
    EXPECT_FALSE(master.rig->motion.valid);
}

TEST(AssemblyBox, ReachesItsSizeToEachSideAndItsFacesAreOutside) {
    const Point3 half = {10, 20, 30};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const float side : {-1.0f, 1.0f}) {
            PlainScene scene;
            PlainNode& master = scene.AddMaster("Master", {100, 200, 300}, half);
            PlainNode& chassis = scene.Add("Chassis", ObjectClass::Chassis, {100, 200, 300});
            chassis.own.row[3][axis] += side * half[axis];
            EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::NoChassis) << axis << " " << side;
            chassis.own.row[3][axis] -= side * 0.001f;
            EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::Locked) << axis << " " << side;
        }
    }
}

TEST(AssemblyBox, TurnsWithTheMaster) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {100, 10, 10});
    scene.Add("Chassis", ObjectClass::Chassis, {0, 50, 0});
    EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::NoChassis);
    master.own = {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0}}};
    EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::Locked);
}

TEST(AssemblyBox, GrowsWithAScaledMaster) {
    PlainScene scene;
    PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {20, 20, 20});
    scene.Add("Chassis", ObjectClass::Chassis, {21, 0, 0});
    for (int r = 0; r < 3; ++r) master.own.row[r] = master.own.row[r] * 2.0f;
    EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::Locked);
}

TEST(AssemblyBox, OfNoSizeOrOfNoNumberHoldsNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float size : {0.0f, -20.0f, nan}) {
        PlainScene scene;
        PlainNode& master = scene.AddMaster("Master", {0, 0, 0}, {size, 20, 20});
        scene.Add("Chassis", ObjectClass::Chassis, {0, 0, 0});
        EXPECT_EQ(AssembleIn(scene, master).result, AssemblyResult::NoChassis) << size;
    }
}

TEST_F(Assembly, FindsPartsAtAnyDepth) {
    PlainScene deep;
    PlainNode& owner = deep.AddMaster("Master", {0, 0, 0}, {50, 50, 50});
    PlainNode* at = &owner;
    for (int i = 0; i < 200'000; ++i) at = &deep.Add("Link", ObjectClass::None, {0, 0, 0}, at);
    PlainNode& body = deep.Add("Chassis", ObjectClass::Chassis, {0, 0, 0}, at);
    EXPECT_EQ(AssembleIn(deep, owner).result, AssemblyResult::Locked);
    EXPECT_TRUE(body.hasControl);
    EXPECT_TRUE(Reattach(*owner.rig, deep.Root(), owner));
}

TEST_F(Assembly, PartDraggedOutOfTheBoxIsLetGo) {
    AssembleAll();
    Rig().ResetMotion();
    sphere->Move(At({0, 0, 501}));
    AssembleAll();
    EXPECT_TRUE(sphere->hasControl);  // the control stays and goes on wrapping the node's own
    EXPECT_EQ(sphere->control.Tavrik_Node, nullptr);
    EXPECT_EQ(Rig().sphereCount, 0);
}

TEST_F(Assembly, ChassisDraggedOutOfTheBoxIsLetGoAndNotFound) {
    AssembleAll();
    Rig().ResetMotion();
    chassis->Move(At({600, 0, 0}));
    EXPECT_EQ(AssembleAll().result, AssemblyResult::NoChassis);
    EXPECT_EQ(chassis->control.Tavrik_Node, nullptr);
    EXPECT_FALSE(Rig().motion.valid);
    EXPECT_FALSE(Reattach(Rig(), scene.Root(), *master));
}

TEST_F(Assembly, WithoutAChassisTheOtherLocksStayAndFollowTheirOwnControllers) {
    AssembleAll();
    Rig().ResetMotion();
    chassis->Move(At({600, 0, 0}));
    AssembleAll();
    ExpectControl(*left, *master, ComponentType::Wheel, 0);
    EXPECT_TRUE(SameBits(left->ShownAt(0), left->own));
    EXPECT_EQ(Rig().unitCount, 2);  // counts and values stay, too
    EXPECT_EQ(Rig().sphereCount, 1);
}

TEST_F(Assembly, OutsidePartOfAnotherMasterIsLeftToIt) {
    AssembleAll();
    PlainNode& second = scene.AddMaster("Second", {5000, 0, 0}, {50, 50, 50});
    scene.Add("Chassis2", ObjectClass::Chassis, {5000, 0, 0});
    EXPECT_EQ(AssembleIn(scene, second).result, AssemblyResult::Locked);
    ExpectControl(*left, *master, ComponentType::Wheel, 0);
    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);
    ExpectControl(*scene.Find("Chassis2"), second, ComponentType::Chassis, 0);
}

TEST_F(Assembly, AnythingOutsideIsLetGoWhateverItsObjectHasBecome) {
    AssembleAll();
    Rig().ResetMotion();
    PlainNode& copy = scene.Copy(*left);
    copy.own = At({0, 0, 900});
    PlainNode& bare = scene.Copy(*left);
    bare.own = At({0, 0, 900});
    bare.DeleteObject();
    PlainNode& teapot = scene.Add("Teapot", ObjectClass::Other, {0, 0, 900});
    teapot.hasControl = true;
    teapot.control = left->control;
    AssembleAll();
    EXPECT_EQ(copy.control.Tavrik_Node, nullptr);
    EXPECT_EQ(teapot.control.Tavrik_Node, nullptr);
    EXPECT_EQ(bare.control.Tavrik_Node, master);  // a node without object isn't looked at
}

TEST_F(Assembly, LastMasterToLockAPartInTwoBoxesHasIt) {
    PlainNode& second = scene.AddMaster("Second", {0, 0, 0}, {500, 500, 500});
    AssembleAll();
    AssembleIn(scene, second);
    ExpectControl(*left, second, ComponentType::Wheel, 0);
    EXPECT_TRUE(Rig().motion.valid);  // the first car still has its recording, but nothing follows it
}

// -------------------------------------------------------------------------------------------------------- chassis and start

TEST_F(Assembly, FirstOfTwoChassisWinsAndTheSecondKeepsItsOwnMotion) {
    PlainNode& second = scene.Add("Second", ObjectClass::Chassis, {0, 0, 0});
    second.floats[ChassisParam::Mass] = {7};
    AssembleAll();
    ExpectControl(*chassis, *master, ComponentType::Chassis, 0);
    EXPECT_FALSE(second.hasControl);
    EXPECT_EQ(Rig().chassisParams.Mass, 1000.0);
}

TEST_F(Assembly, FirstInTheSceneIsAParentBeforeItsChildren) {
    PlainScene other;
    PlainNode& owner = other.AddMaster("Master", {0, 0, 0}, {50, 50, 50});
    PlainNode& group = other.Add("Group", ObjectClass::Other, {0, 0, 0});
    PlainNode& later = other.Add("Later", ObjectClass::Chassis, {0, 0, 0});
    PlainNode& inner = other.Add("Inner", ObjectClass::Chassis, {0, 0, 0}, &group);  // added last, but higher up in the walk
    AssembleIn(other, owner);
    EXPECT_TRUE(inner.hasControl);
    EXPECT_FALSE(later.hasControl);
}

TEST_F(Assembly, StartNodeMovesTheWholeCarAndLeavesItInOnePiece) {
    AssembleAll();
    const DMatrix3 unit = Rig().units[0].frame, hook = Rig().hitches[0].frame, ball = Rig().spheres[0].frame;
    Rig().ResetMotion();
    start->own = kLyingFrame;
    start->own.row[3] = {1000, 2000, 3000};

    AssembleAll(start);

    EXPECT_TRUE(SameBits(Rig().chassisBody.frame, FromMatrix3(start->own)));
    EXPECT_TRUE(SameBits(Rig().units[0].frame, unit));
    EXPECT_TRUE(SameBits(Rig().hitches[0].frame, hook));
    EXPECT_TRUE(SameBits(Rig().spheres[0].frame, ball));
    const Matrix3 shownSphere = sphere->ShownAt(0);
    EXPECT_EQ(shownSphere.row[3].x, 1000.0f);
    EXPECT_EQ(shownSphere.row[3].y, 1900.0f);  // 100 up along the start's Z, which lies along -Y
    EXPECT_EQ(shownSphere.row[3].z, 3000.0f);
    EXPECT_TRUE(SameBits(chassis->ShownAt(0), start->own));
}

TEST_F(Assembly, WheelsTakeTheirPlacesBesideTheStartNode) {
    AssembleAll(start);
    EXPECT_EQ(Rig().wheelBodies[1].frame.row[3].x, 1085.0);
    EXPECT_EQ(Rig().wheelBodies[1].frame.row[3].z, 3000.0);
    EXPECT_TRUE(SameBits(right->ShownAt(0), ToMatrix3(Rig().wheelBodies[1].frame)));
}

// ------------------------------------------------------------------------------------------------------ locked and unlocked

TEST_F(Assembly, LockedCarShowsItsAssembledPoseAtEveryTick) {
    AssembleAll();
    const Matrix3 pose = left->ShownAt(0);
    for (const TimeValue tick : {-100'000, -1, 0, 1, 160, 1'000'000}) {
        EXPECT_TRUE(SameBits(left->ShownAt(tick), pose)) << tick;
        EXPECT_TRUE(SameBits(chassis->ShownAt(tick), chassis->own)) << tick;
    }
}

TEST_F(Assembly, AssemblingAgainWipesTheRecordingButForTheAssembledPose) {
    AssembleAll();
    const Matrix3 assembled = chassis->ShownAt(0);
    for (TimeValue tick = 0; tick < 320; tick += 32) {
        Rig().chassisBody.frame.row[3].x += 50.0;
        Rig().Store(tick);
    }
    ASSERT_NE(chassis->ShownAt(200).row[3].x, assembled.row[3].x);

    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);

    EXPECT_EQ(Rig().motion.frames, 1);
    for (const TimeValue tick : {-100, 0, 200, 5000}) EXPECT_TRUE(SameBits(chassis->ShownAt(tick), assembled)) << tick;
}

TEST_F(Assembly, ALockedPartDoesntMoveByHandAndAnUnlockedOneDoes) {
    AssembleAll();
    const Matrix3 pose = left->ShownAt(0);
    left->Move(At({1, 2, 3}));
    EXPECT_TRUE(SameBits(left->ShownAt(0), pose));

    Rig().ResetMotion();
    EXPECT_EQ(left->ShownAt(0).row[3].x, -100.0f);  // where its own controller had it, not where the suspension marks its rest
    left->Move(At({1, 2, 3}));
    EXPECT_EQ(left->ShownAt(0).row[3].x, 1.0f);
}

TEST_F(Assembly, LockingAgainKeepsTheControlsThatAreThere) {
    AssembleAll();
    scene.log.clear();
    AssembleAll();
    for (const std::string& line : scene.log) EXPECT_EQ(line.rfind("install", 0), std::string::npos) << line;
    EXPECT_EQ(scene.log.size(), 8u);
}

TEST_F(Assembly, PartWhoseMasterTheSceneRefusesGoesOnAsItWas) {
    right->refusesMasters = true;
    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);
    EXPECT_EQ(Rig().unitCount, 2);
    EXPECT_TRUE(SameBits(right->ShownAt(0), right->own));
    EXPECT_FALSE(IsLocked(*right));
    EXPECT_EQ(right->control.Axle_Num, 1);
}

// -------------------------------------------------------------------------------------------------------------------- refusals

/// The parts of a rig that assembly writes, as one comparable record.
std::string RigState(const CarRig& rig) {
    std::string state;
    const auto add = [&](const auto& value) { state.append(reinterpret_cast<const char*>(&value), sizeof value); };
    add(rig.unitCount), add(rig.hitchCount), add(rig.sphereCount), add(rig.chassisParams), add(rig.chassisBody);
    add(rig.motion.valid), add(rig.motion.frames), add(rig.motion.unitCount), add(rig.wheelBodies), add(rig.bufferPosition);
    for (const SuspensionUnit& unit : rig.units) add(unit.frame), add(unit.Mass), add(unit.wheelHandle);
    for (const HitchSlot& slot : rig.hitches) add(slot.frame);
    for (const CollisionSphere& ball : rig.spheres) add(ball);
    for (const MotionSample& sample : rig.motion.chassis) add(sample);
    return state;
}

class TooManyOf : public Assembly, public ::testing::WithParamInterface<std::pair<ObjectClass, const char*>> {};

TEST_P(TooManyOf, AreRefusedInOneSentenceWithNothingChanged) {
    AssembleAll();
    Rig().Store(100);
    PlainNode& stray = scene.Copy(*sphere);
    stray.own = At({0, 0, 900});
    for (int i = 0; i < 201; ++i) scene.Add("Extra", GetParam().first, {0, 0, 300});
    const std::string before = RigState(Rig());
    scene.log.clear();

    const Assembled answer = AssembleAll();

    EXPECT_EQ(answer.result, AssemblyResult::TooMany);
    EXPECT_NE(answer.problem.find(GetParam().second), std::string::npos) << answer.problem;
    EXPECT_EQ(std::ranges::count(answer.problem, '.'), 1) << answer.problem;
    EXPECT_TRUE(scene.log.empty()) << scene.log.front();
    EXPECT_EQ(stray.control.Tavrik_Node, master);
    EXPECT_TRUE(RigState(Rig()) == before);
    EXPECT_EQ(Rig().motion.frames, 2);
}

INSTANTIATE_TEST_SUITE_P(Classes, TooManyOf,
                         ::testing::Values(std::pair{ObjectClass::Wheel, "203 wheels"},
                                           std::pair{ObjectClass::Suspension, "203 suspensions"},
                                           std::pair{ObjectClass::Chassis, "202 chassis"},
                                           std::pair{ObjectClass::Sphere, "202 collision spheres"},
                                           std::pair{ObjectClass::Hitch, "203 hitches and tongues"},
                                           std::pair{ObjectClass::Tongue, "203 hitches and tongues"}));

TEST_F(Assembly, TwoHundredOfEachClassAreACar) {
    for (int i = 2; i < 200; ++i) {
        const Point3 place = {-300.0f + float(i % 20) * 31.0f, 200.0f + float(i / 20) * 20.0f, 100};
        scene.Add("W", ObjectClass::Wheel, place);
        scene.Add("S", ObjectClass::Suspension, place);
        scene.Add("H", ObjectClass::Hitch, place);
        scene.Add("B", ObjectClass::Sphere, place);
        scene.Add("C", ObjectClass::Chassis, place);
    }
    scene.Add("B", ObjectClass::Sphere, {0, 0, 100});
    EXPECT_EQ(AssembleAll().result, AssemblyResult::Locked);
    EXPECT_EQ(Rig().unitCount, 200);
    EXPECT_EQ(Rig().hitchCount, 200);
    EXPECT_EQ(Rig().sphereCount, 200);
    EXPECT_TRUE(Reattach(Rig(), scene.Root(), *master));
}

TEST_F(Assembly, AFlatMasterOrChassisIsRefusedWithNothingChanged) {
    AssembleAll();
    scene.log.clear();
    const std::string before = RigState(Rig());
    for (PlainNode* node : {master, chassis}) {
        const Matrix3 own = node->own;
        node->own.row[2] = {0, 0, 0};
        const Assembled answer = AssembleAll();
        EXPECT_EQ(answer.result, AssemblyResult::Flattened) << node->name;
        EXPECT_NE(answer.problem.find("scaled to nothing"), std::string::npos) << answer.problem;
        EXPECT_TRUE(scene.log.empty());
        EXPECT_TRUE(RigState(Rig()) == before);
        node->own = own;
    }
}

TEST_F(Assembly, SuccessClearsTheProblemOfTheLastTime) {
    std::string problem = "old";
    EXPECT_EQ(Assemble(Rig(), scene.Root(), *master, {500, 500, 500}, nullptr, problem), AssemblyResult::Locked);
    EXPECT_EQ(problem, "");
}

}  // namespace
}  // namespace tavrik::test
