// Copies of objects and nodes.

#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginClone : public PluginScene {
 public:
    void Lock(const Car& car) { Press(*car.master, kCarSetup, kLock); }
};

TEST_F(PluginClone, CopiesOfHelpersHaveTheirValuesAndABlockOfTheirOwn) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = AddNode(id, Matrix3(TRUE));
        Set(node, 0, 12.5f);
        INode* const group[] = {&node};
        INode& copy = *tavrik_host::CloneNodes(group).at(0);
        ASSERT_NE(copy.GetObjectRef(), node.GetObjectRef());
        EXPECT_EQ(copy.GetObjectRef()->ClassID(), id);
        EXPECT_EQ(FloatOf(copy, 0), 12.5f);
        Set(copy, 0, 99.0f);
        EXPECT_EQ(FloatOf(node, 0), 12.5f);
        EXPECT_EQ(BlockOf(copy).GetOwner(), copy.GetObjectRef());
    }
}

TEST_F(PluginClone, ACopyReadsItsOwnValues) {
    INode& node = AddNode(kSphereClass, Matrix3(TRUE));
    Set(node, 0, 7.0f);
    INode* const group[] = {&node};
    INode& copy = *tavrik_host::CloneNodes(group).at(0);
    Set(node, 0, 3.0f);
    Box3 box;
    copy.GetObjectRef()->GetDeformBBox(0, box);
    EXPECT_EQ(box.pmax, Point3(7, 7, 7));
}

TEST_F(PluginClone, ACopyOfALockedMasterIsEmpty) {
    const Car car = AddCar();
    INode& ground = AddGround();
    MakeReady(car, ground);
    const std::string recording = RecordingOf(*car.master);
    INode* const group[] = {car.master};
    INode& copy = *tavrik_host::CloneNodes(group).at(0);
    EXPECT_TRUE(SameBytes(RecordingOf(copy), std::string(4, '\0')));
    EXPECT_EQ(FloatOf(copy, kDummySize, 1), 300.0f);
    EXPECT_EQ(BlockOf(copy).GetINode(kSurfaceNode), &ground);
    Press(copy, kDriving, kDrive);
    EXPECT_EQ(windows.messages, std::vector<std::string>{"You didn't setup the Car.\nDo Car Setup."});
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), recording));
}

TEST_F(PluginClone, ACopyOfALockedPartFollowsTheSamePlace) {
    const Car car = AddCar();
    Lock(car);
    INode* const group[] = {car.wheels[2]};
    INode& copy = *tavrik_host::CloneNodes(group).at(0);
    ASSERT_NE(ControlOf(copy), nullptr);
    EXPECT_NE(ControlOf(copy), ControlOf(*car.wheels[2]));
    EXPECT_EQ(ControlBlockOf(copy).GetINode(kControlMaster), car.master);
    EXPECT_EQ(ControlBlockOf(copy).GetInt(kObjectType), 2);
    EXPECT_EQ(ControlBlockOf(copy).GetInt(kAxleNum), 2);
    EXPECT_EQ(PlaceOf(copy), PlaceOf(*car.wheels[2]));
    Press(*car.master, kCarSetup, kUnlock);
    Move(copy, At(1, 2, 3));
    EXPECT_EQ(PlaceOf(copy), At(1, 2, 3));
    EXPECT_NE(PlaceOf(*car.wheels[2]), At(1, 2, 3));
}

TEST_F(PluginClone, ACopyOfAWholeCarHasNoLinkToTheFirst) {
    const Car car = AddCar();
    Lock(car);
    std::vector<INode*> group{car.master};
    for (INode* part : car.Parts()) group.push_back(part);
    const std::vector<INode*> copies = tavrik_host::CloneNodes(group);
    ASSERT_EQ(copies.size(), group.size());
    EXPECT_TRUE(SameBytes(RecordingOf(*copies[0]), std::string(4, '\0')));
    for (std::size_t i = 1; i < copies.size(); ++i) {
        ASSERT_NE(ControlOf(*copies[i]), nullptr);
        EXPECT_EQ(ControlBlockOf(*copies[i]).GetINode(kControlMaster), copies[0]);
    }
    // Nothing records yet for the copy, so its parts are free.
    Move(*copies[1], At(5, 6, 7));
    EXPECT_EQ(PlaceOf(*copies[1]), At(5, 6, 7));
    EXPECT_NE(PlaceOf(*car.chassis), At(5, 6, 7));
}

TEST_F(PluginClone, TheCopyOfACarCanBeLockedAndDrivenBesideTheFirst) {
    const Car car = AddCar();
    INode& ground = AddGround();
    MakeReady(car, ground);
    std::vector<INode*> group{car.master};
    for (INode* part : car.Parts()) group.push_back(part);
    const std::vector<INode*> copies = tavrik_host::CloneNodes(group);
    const std::string first = RecordingOf(*car.master);
    for (INode* copy : copies) Move(*copy, PlaceOf(*copy) * At(1000, 0, 0));
    Press(*copies[0], kCarSetup, kLock);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_EQ(MotionOf(*copies[0])->unitCount, 4);
    Press(*copies[0], kDriving, kDrive);
    ASSERT_TRUE(windows.IsOpen());
    Enter();
    DriveFrames(5);
    EXPECT_EQ(MotionOf(*copies[0])->frames, 26);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
}

TEST_F(PluginClone, AHitchKeepsItsTongueWhenTheyAreCopiedTogether) {
    INode& hitch = AddNode(kHitchClass, Matrix3(TRUE));
    INode& tongue = AddNode(kTongueClass, Matrix3(TRUE));
    Set(hitch, 2, &tongue);
    INode* const alone[] = {&hitch};
    EXPECT_EQ(BlockOf(*tavrik_host::CloneNodes(alone).at(0)).GetINode(2), &tongue);
    INode* const both[] = {&hitch, &tongue};
    const std::vector<INode*> copies = tavrik_host::CloneNodes(both);
    EXPECT_EQ(BlockOf(*copies[0]).GetINode(2), copies[1]);
    EXPECT_EQ(BlockOf(hitch).GetINode(2), &tongue);
}

TEST_F(PluginClone, APushKeepsItsMasterWhenTheyAreCopiedTogether) {
    INode& push = AddNode(kPushClass, Matrix3(TRUE));
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    Set(push, 6, &master);
    INode* const alone[] = {&push};
    EXPECT_EQ(BlockOf(*tavrik_host::CloneNodes(alone).at(0)).GetINode(6), &master);
    INode* const both[] = {&push, &master};
    const std::vector<INode*> copies = tavrik_host::CloneNodes(both);
    EXPECT_EQ(BlockOf(*copies[0]).GetINode(6), copies[1]);
}

TEST_F(PluginClone, AStartAndAGroundAreFoundAgainInTheCopy) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& start = AddNode(kStartClass, Matrix3(TRUE));
    INode& ground = AddGround();
    Set(master, kStartNode, &start);
    Set(master, kSurfaceNode, &ground);
    INode* const group[] = {&master, &start, &ground};
    const std::vector<INode*> copies = tavrik_host::CloneNodes(group);
    EXPECT_EQ(BlockOf(*copies[0]).GetINode(kStartNode), copies[1]);
    EXPECT_EQ(BlockOf(*copies[0]).GetINode(kSurfaceNode), copies[2]);
}

}  // namespace
}  // namespace plugin_test
