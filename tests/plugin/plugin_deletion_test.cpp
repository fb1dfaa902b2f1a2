// Things that go while others still point at them.

#include "drive/window_messages.h"
#include "host/sdk/desktop.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginDeletion : public PluginScene {
 public:
    PluginDeletion() { MakeReady(car, ground); }
    static void Delete(INode& node) { GetCOREInterface()->DeleteNode(&node); }
    int Frames() { return MotionOf(*car.master)->frames; }
    /// What a run of 20 frames records in which nothing is deleted.
    std::string WholeRun() {
        Start(car);
        DriveFrames(20);
        const std::string recording = RecordingOf(*car.master);
        Press(*car.master, kAnimation, kResetAnimation);
        GetCOREInterface()->SetTime(0);
        return recording;
    }

    Car car = AddCar();
    INode& ground = AddGround();
};

TEST_F(PluginDeletion, PartsOfADeletedMasterFallBackToTheirOwnControllers) {
    std::vector<Matrix3> shown;
    for (INode* part : car.Parts()) shown.push_back(PlaceOf(*part));
    Delete(*car.master);
    std::size_t i = 0;
    for (INode* part : car.Parts()) {
        EXPECT_EQ(ControlBlockOf(*part).GetINode(kControlMaster), nullptr);
        EXPECT_LT(Length(PlaceOf(*part).GetTrans() - shown[i++].GetTrans()), 1e-3f);
        Move(*part, At(1, 2, 3));
        EXPECT_EQ(PlaceOf(*part), At(1, 2, 3));
    }
}

TEST_F(PluginDeletion, DeletingTheMasterInARunEndsIt) {
    Start(car);
    DriveFrames(5);
    Delete(*car.master);
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_TRUE(tavrik_host::Pages().empty());
    DriveFrames(5);
    for (INode* part : car.Parts()) Move(*part, At(1, 2, 3));
    EXPECT_EQ(PlaceOf(*car.chassis), At(1, 2, 3));
}

TEST_F(PluginDeletion, DeletingAPartInARunLeavesTheRunAsItIs) {
    const std::string whole = WholeRun();
    for (int part = 0; part < 4; ++part) {
        tavrik_host::ResetScene();
        car = AddCar();
        MakeReady(car, AddGround());
        Start(car);
        DriveFrames(8);
        Delete(part == 0 ? *car.wheels[1] : part == 1 ? *car.suspensions[2] : part == 2 ? *car.chassis : *car.spheres[3]);
        EXPECT_TRUE(windows.TimerRuns());
        DriveFrames(12);
        EXPECT_TRUE(SameBytes(RecordingOf(*car.master), whole)) << part;
    }
}

TEST_F(PluginDeletion, DeletingTheGroundInARunLeavesTheRunAsItIs) {
    const std::string whole = WholeRun();
    Start(car);
    DriveFrames(8);
    Delete(ground);
    EXPECT_EQ(BlockOf(*car.master).GetINode(kSurfaceNode), nullptr);
    DriveFrames(12);
    EXPECT_TRUE(windows.TimerRuns());
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), whole));
}

TEST_F(PluginDeletion, AGroundThatIsGoneIsKeptUntilItIsUpdated) {
    Delete(ground);
    Press(*car.master, kParameters, kUpdateSurface);
    Press(*car.master, kDriving, kDrive);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(windows.IsOpen());
}

TEST_F(PluginDeletion, EveryPickedNodeIsForgottenWhenItGoes) {
    INode& start = AddNode(kStartClass, Matrix3(TRUE));
    INode& target = AddNode(kStartClass, Matrix3(TRUE));
    INode& tongue = AddNode(kTongueClass, Matrix3(TRUE));
    INode& hitch = AddNode(kHitchClass, Matrix3(TRUE));
    INode& push = AddNode(kPushClass, Matrix3(TRUE));
    Set(*car.master, kStartNode, &start);
    Set(*car.master, kDrivingTarget, &target);
    Set(hitch, 2, &tongue);
    Set(push, 6, car.master);
    for (INode* node : {&start, &target, &tongue}) Delete(*node);
    EXPECT_EQ(BlockOf(*car.master).GetINode(kStartNode), nullptr);
    EXPECT_EQ(BlockOf(*car.master).GetINode(kDrivingTarget), nullptr);
    EXPECT_EQ(BlockOf(hitch).GetINode(2), nullptr);
    Delete(*car.master);
    EXPECT_EQ(BlockOf(push).GetINode(6), nullptr);
}

TEST_F(PluginDeletion, LockingWithAStartThatIsGoneUsesTheChassis) {
    INode& start = AddNode(kStartClass, At(2000, 0, 51));
    Set(*car.master, kStartNode, &start);
    Delete(start);
    Press(*car.master, kCarSetup, kLock);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_LT(std::abs(PlaceOf(*car.chassis).GetTrans().x), 1.0f);
}

TEST_F(PluginDeletion, ACarWhoseChassisIsGoneCantBeLockedAgain) {
    Delete(*car.chassis);
    Press(*car.master, kCarSetup, kLock);
    EXPECT_EQ(windows.messages, std::vector<std::string>{"Can't find Chassis Object."});
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), std::string(4, '\0')));
}

TEST_F(PluginDeletion, AMasterThatIsDeletedWhileItIsShownTakesItsPagesAlong) {
    tavrik_host::OpenPanel(*car.master);
    Delete(*car.master);
    EXPECT_EQ(tavrik_host::PanelNode(), nullptr);
    EXPECT_TRUE(tavrik_host::Pages().empty());
    INode& other = AddNode(kMasterClass, Matrix3(TRUE));
    tavrik_host::OpenPanel(other);
    EXPECT_EQ(tavrik_host::Pages().size(), 6u);
}

TEST_F(PluginDeletion, AnotherMasterCanBeDeletedInARun) {
    const Car other = AddCar({1500, 0, 0});
    MakeReady(other, ground);
    Start(car);
    DriveFrames(5);
    Delete(*other.master);
    EXPECT_TRUE(windows.TimerRuns());
    DriveFrames(5);
    EXPECT_EQ(Frames(), 51);
}

TEST_F(PluginDeletion, ANewMasterTakesTheReleasedPartsOver) {
    Delete(*car.master);
    INode& next = AddNode(kMasterClass, PlaceOf(*car.chassis));
    for (int i = 0; i < 3; ++i) Set(next, kDummySize, 350.0f, i);
    Press(next, kCarSetup, kLock);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_EQ(MotionOf(next)->unitCount, 4);
    for (INode* part : car.Parts()) EXPECT_EQ(ControlBlockOf(*part).GetINode(kControlMaster), &next);
}

TEST_F(PluginDeletion, AnEmptiedSceneLeavesNothingBehindInARun) {
    Start(car);
    DriveFrames(5);
    tavrik_host::ResetScene();
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_TRUE(tavrik_host::AllNodes().empty());
    DriveFrames(1);
    car = AddCar();
    MakeReady(car, AddGround());
    Start(car);
    DriveFrames(2);
    EXPECT_EQ(Frames(), 11);
}

TEST_F(PluginDeletion, AControlOutlivesTheNodeThatItMoved) {
    Control* const control = static_cast<Control*>(tavrik_host::FindClass(CTRL_MATRIX3_CLASS_ID, kControlClass)->Create());
    control->Copy(ControlOf(*car.wheels[0]));
    Delete(*car.wheels[0]);
    Matrix3 value(TRUE);
    Interval valid = FOREVER;
    control->GetValue(0, &value, valid, CTRL_RELATIVE);
    EXPECT_GT(Length(value.GetTrans()), 0.0f);
    control->DeleteMe();
}

}  // namespace
}  // namespace plugin_test
