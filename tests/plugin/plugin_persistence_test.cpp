// What a scene file keeps of a car, and what comes back of it.

#include <algorithm>
#include <cstring>

#include "host/sdk/desktop.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

const std::string kNoRecording(4, '\0');

/// What the host keeps of a car: its recording, and what its controls hold.
struct SavedControl {
    int type, index;
    Matrix3 slot;
    bool held;
};
struct SavedCar {
    std::string recording;
    std::vector<SavedControl> controls;  // beside the car's parts
};

SavedCar Save(const Car& car) {
    SavedCar saved{RecordingOf(*car.master), {}};
    for (INode* part : car.Parts()) {
        IParamBlock2& block = ControlBlockOf(*part);
        Matrix3 slot;
        Interval valid = FOREVER;
        block.GetValue(kSlotPosition, 0, slot, valid);
        saved.controls.push_back(
            {block.GetInt(kObjectType), block.GetInt(kAxleNum), slot, block.GetINode(kControlMaster) == car.master});
    }
    return saved;
}

/// As the host loads a file: references first, then each thing's own data, then what wants to run at the end.
bool Load(const SavedCar& saved, const Car& car) {
    std::size_t i = 0;
    for (INode* part : car.Parts()) {
        const SavedControl& from = saved.controls.at(i++);
        auto* const control = static_cast<Control*>(tavrik_host::FindClass(CTRL_MATRIX3_CLASS_ID, kControlClass)->Create(TRUE));
        control->ReplaceReference(1, part->GetTMController());
        part->SetTMController(control);
        IParamBlock2& block = *control->GetParamBlockByID(0);
        block.SetValue(kControlMaster, 0, from.held ? car.master : nullptr);
        block.SetValue(kObjectType, 0, from.type);
        block.SetValue(kAxleNum, 0, from.index);
        Matrix3 slot = from.slot;
        block.SetValue(kSlotPosition, 0, slot);
    }
    return LoadRecording(*car.master, saved.recording);
}

class PluginPersistence : public PluginScene {
 public:
    PluginPersistence() { MakeReady(car, ground); }

    /// Puts the saved car into a scene of its own, loose parts and all.
    bool LoadIntoNewScene(const SavedCar& saved) {
        const TimeValue now = GetCOREInterface()->GetTime();
        tavrik_host::ResetScene();
        GetCOREInterface()->SetTime(now);
        car = AddCar();
        Set(*car.master, kSurfaceNode, &AddGround());
        return Load(saved, car);
    }
    void DriveOn(TimeValue from, int frames) {
        GetCOREInterface()->SetTime(from);
        Start(car);
        DriveFrames(frames);
    }
    int Number(std::size_t at) const {
        int number = 0;
        std::memcpy(&number, RecordingOf(*car.master).data() + at, sizeof number);
        return number;
    }

    Car car = AddCar();
    INode& ground = AddGround();
};

TEST_F(PluginPersistence, AMasterWithoutARecordingSavesFourBytes) {
    Press(*car.master, kCarSetup, kUnlock);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), kNoRecording));
    EXPECT_TRUE(LoadRecording(*car.master, kNoRecording));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), kNoRecording));
    Press(*car.master, kDriving, kDrive);
    EXPECT_EQ(windows.messages.size(), 1u);
}

TEST_F(PluginPersistence, ALockedCarSavesAWholeStoreWithOneFrame) {
    EXPECT_EQ(RecordingOf(*car.master).size(), 386'016u);
    EXPECT_EQ(Number(0), 1);
    EXPECT_EQ(Number(4), 4);
    EXPECT_EQ(Number(8), 1);
    EXPECT_EQ(Number(12), 500);
}

TEST_F(PluginPersistence, SavingTwiceGivesTheSameBytes) {
    Start(car);
    DriveFrames(12);
    const std::string first = RecordingOf(*car.master);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
}

TEST_F(PluginPersistence, ALoadedRecordingSavesTheSameBytes) {
    Start(car);
    DriveFrames(12);
    const SavedCar saved = Save(car);
    ASSERT_TRUE(LoadIntoNewScene(saved));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), saved.recording));
    EXPECT_EQ(tavrik::TheDesktop().complaint, "");
}

TEST_F(PluginPersistence, ALoadedCarShowsWhatWasRecorded) {
    Start(car);
    DriveFrames(12);
    std::vector<Matrix3> shown;
    for (INode* part : car.Parts()) {
        for (const TimeValue t : {-100, 0, 333, 1000, 9999}) shown.push_back(PlaceOf(*part, t));
    }
    ASSERT_TRUE(LoadIntoNewScene(Save(car)));
    std::size_t i = 0;
    for (INode* part : car.Parts()) {
        for (const TimeValue t : {-100, 0, 333, 1000, 9999}) EXPECT_EQ(PlaceOf(*part, t), shown[i++]) << t;
    }
}

TEST_F(PluginPersistence, ALoadedCarDrivesOnAsIfTheRunHadNeverStopped) {
    DriveOn(0, 24);
    const std::string unbroken = RecordingOf(*car.master);
    for (const TimeValue from : {10 * 160, 9 * 160, 3 * 160}) {  // after the last frame, over it, and far back
        Press(*car.master, kAnimation, kResetAnimation);
        DriveOn(0, 10);
        ASSERT_TRUE(LoadIntoNewScene(Save(car)));
        DriveOn(from, 24 - from / 160);
        EXPECT_TRUE(SameBytes(RecordingOf(*car.master), unbroken)) << from;
    }
}

TEST_F(PluginPersistence, TheFirstFrameAfterALoadTakesTheGroundOver) {
    DriveOn(0, 3);
    ASSERT_TRUE(LoadIntoNewScene(Save(car)));
    Press(*car.master, kDriving, kDrive);  // "Update Surface" was not pressed
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(windows.IsOpen());
}

TEST_F(PluginPersistence, ASaveAfterARewindKeepsTheStaleSamplesAndNeverShowsThem) {
    DriveOn(0, 20);
    Enter();
    DriveOn(5 * 160, 1);
    ASSERT_EQ(Number(8), 31);
    const Matrix3 last = PlaceOf(*car.chassis, 16'000);
    const SavedCar saved = Save(car);
    // The stale ones are there: frame 31 was recorded once, at the tick after the last.
    int stale = 0;
    std::memcpy(&stale, saved.recording.data() + 16 + 31 * 4, sizeof stale);
    EXPECT_EQ(stale, 6 * 160);
    ASSERT_TRUE(LoadIntoNewScene(saved));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), saved.recording));
    EXPECT_EQ(PlaceOf(*car.chassis, 16'000), last);
    EXPECT_EQ(PlaceOf(*car.chassis, 6 * 160 + 16), last);
}

TEST_F(PluginPersistence, ALoadOverALiveRecordingTakesItsPlace) {
    DriveOn(0, 12);
    const std::string longer = RecordingOf(*car.master);
    Press(*car.master, kAnimation, kResetAnimation);
    DriveOn(0, 4);
    EXPECT_TRUE(LoadRecording(*car.master, longer));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), longer));
    DriveFrames(1);  // whoever was driving is off the car
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), longer));
    EXPECT_TRUE(LoadRecording(*car.master, kNoRecording));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), kNoRecording));
}

TEST_F(PluginPersistence, OtherPiecesOfAFileAreSkipped) {
    const std::string recording = RecordingOf(*car.master);
    const tavrik_host::Chunk chunks[] = {{7, "something else"}, {20, recording}, {9999, ""}};
    tavrik_host::SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(*car.master->GetObjectRef(), chunks));
    load.RunCallbacks();
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), recording));
}

TEST_F(PluginPersistence, ALoadWithoutAPieceIsALoadWithoutARecording) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    tavrik_host::SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(*master.GetObjectRef(), {}));
    load.RunCallbacks();
    EXPECT_TRUE(SameBytes(RecordingOf(master), kNoRecording));
}

TEST_F(PluginPersistence, AMasterThatGoesBeforeTheLoadEndsIsHarmless) {
    const std::string recording = RecordingOf(*car.master);
    const tavrik_host::Chunk chunks[] = {{20, recording}};
    tavrik_host::SceneLoad load;
    ASSERT_TRUE(load.LoadChunks(*car.master->GetObjectRef(), chunks));
    GetCOREInterface()->DeleteNode(car.master);
    load.RunCallbacks();
    EXPECT_EQ(ControlBlockOf(*car.chassis).GetINode(kControlMaster), nullptr);
}

TEST_F(PluginPersistence, AControlKeepsNoDataOfItsOwn) {
    EXPECT_TRUE(tavrik_host::SaveChunks(*ControlOf(*car.chassis)).empty());
    tavrik_host::SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(*ControlOf(*car.chassis), {}));
}

// ---------------------------------------------------------------------------------------------------------------- damaged data

/// Recordings that can't have come from a car, made from a good one.
std::vector<std::string> Damaged(const std::string& good) {
    const auto with = [&](std::size_t at, int number) {
        std::string bad = good;
        std::memcpy(bad.data() + at, &number, sizeof number);
        return bad;
    };
    constexpr std::size_t kUnits = 4, kFrames = 8, kCapacity = 12, kTimes = 16;
    std::vector<std::string> bad;
    for (const std::size_t bytes : {0u, 3u, 4u, 15u, 16u, 99u, unsigned(good.size() - 1)}) bad.push_back(good.substr(0, bytes));
    for (const int units : {5, 200, 201, -1, 2147483647}) bad.push_back(with(kUnits, units));
    for (const int frames : {0, -1, 501, 2147483647}) bad.push_back(with(kFrames, frames));
    for (const int capacity : {0, -1, 501, 2147483647}) bad.push_back(with(kCapacity, capacity));
    bad.push_back(with(kTimes, 0));         // the first frame comes before all time
    bad.push_back(with(kTimes + 8, -100));  // an earlier frame after a later one
    return bad;
}

TEST_F(PluginPersistence, NothingBehindARecordingIsRead) {
    const std::string good = RecordingOf(*car.master);
    INode& master = AddNode(kMasterClass, At(0, 5000, 0));
    EXPECT_TRUE(LoadRecording(master, good + "and more"));
    EXPECT_TRUE(SameBytes(RecordingOf(master), good));
    EXPECT_TRUE(LoadRecording(master, kNoRecording + "and more"));
    EXPECT_TRUE(SameBytes(RecordingOf(master), kNoRecording));
}

TEST_F(PluginPersistence, DamagedDataIsRefusedInOneSentence) {
    DriveOn(0, 2);
    const std::string good = RecordingOf(*car.master);
    INode& master = AddNode(kMasterClass, At(0, 5000, 0));
    std::size_t i = 0;
    for (const std::string& bad : Damaged(good)) {
        SCOPED_TRACE(i++);
        EXPECT_FALSE(LoadRecording(master, bad));
        const std::string& complaint = tavrik::TheDesktop().complaint;
        EXPECT_FALSE(complaint.empty());
        EXPECT_EQ(complaint.find('\n'), std::string::npos);
        EXPECT_EQ(std::count(complaint.begin(), complaint.end(), '.'), 1) << complaint;
        EXPECT_TRUE(SameBytes(RecordingOf(master), kNoRecording));
    }
}

TEST_F(PluginPersistence, DamagedDataLeavesTheSceneAsItWas) {
    DriveOn(0, 2);
    Enter();
    const std::string good = RecordingOf(*car.master);
    std::vector<Matrix3> shown;
    for (INode* part : car.Parts()) shown.push_back(PlaceOf(*part, 200));
    for (const std::string& bad : Damaged(good)) {
        EXPECT_FALSE(LoadRecording(*car.master, bad));
        ASSERT_TRUE(SameBytes(RecordingOf(*car.master), good)) << bad.size();
    }
    std::size_t i = 0;
    for (INode* part : car.Parts()) EXPECT_EQ(PlaceOf(*part, 200), shown[i++]);
    Move(*car.chassis, At(1, 1, 1));
    EXPECT_EQ(PlaceOf(*car.chassis, 200), shown[0]);
}

// ------------------------------------------------------------------------------------------------------ cars that don't come
// back

class PluginFailedReattach : public PluginPersistence {
 public:
    PluginFailedReattach() {
        DriveOn(0, 10);
        saved = Save(car);
    }
    /// Loads the car with one of its parts not held by it any more.
    void LoadWithout(std::size_t part) {
        saved.controls.at(part).held = false;
        ASSERT_TRUE(LoadIntoNewScene(saved));
    }
    /// Every part can be asked for any tick, and the recording is all there.
    void ExpectSafe() {
        EXPECT_TRUE(SameBytes(RecordingOf(*car.master), saved.recording));
        for (INode* part : car.Parts()) {
            for (const TimeValue t : {TIME_NegInfinity, -100, 0, 500, 1600, TIME_PosInfinity}) {
                const Matrix3 place = PlaceOf(*part, t);
                EXPECT_TRUE(place == place) << t;  // no NaN
            }
        }
    }

    SavedCar saved;
};

TEST_F(PluginFailedReattach, WithoutItsChassisTheRecordingStays) {
    LoadWithout(0);
    ExpectSafe();
}

TEST_F(PluginFailedReattach, WithoutAWheelTheRecordingStays) {
    LoadWithout(1);
    ExpectSafe();
}

TEST_F(PluginFailedReattach, WithoutASuspensionWhatTheRecordingDoesNotKnowRidesWithTheChassis) {
    LoadWithout(1 + 4 + 2);
    ExpectSafe();
    // The rig is empty, so nothing knows where spheres sit on the body. Wheels are recorded, and suspensions go with them.
    EXPECT_EQ(PlaceOf(*car.spheres[5], 800), PlaceOf(*car.chassis, 800));
    EXPECT_NE(PlaceOf(*car.wheels[0], 800), PlaceOf(*car.chassis, 800));
    EXPECT_EQ(PlaceOf(*car.suspensions[0], 800).GetTrans(), PlaceOf(*car.wheels[0], 800).GetTrans());
}

TEST_F(PluginFailedReattach, WithoutASphereInTheMiddleTheRecordingStays) {
    LoadWithout(1 + 8 + 3);
    ExpectSafe();
}

TEST_F(PluginFailedReattach, WithoutTheLastSphereTheCarIsWhole) {
    LoadWithout(1 + 8 + 7);
    ExpectSafe();
    EXPECT_NE(PlaceOf(*car.spheres[5], 800), PlaceOf(*car.chassis, 800));
    DriveOn(10 * 160, 2);
    EXPECT_EQ(MotionOf(*car.master)->frames, 61);
}

TEST_F(PluginFailedReattach, ANumberBeyondEveryCarIsNoWholeCar) {
    for (const int index : {200, -1, 2147483647, -2147483647 - 1}) {
        SavedCar odd = saved;
        odd.controls[2].index = index;
        ASSERT_TRUE(LoadIntoNewScene(odd));
        ExpectSafe();
    }
}

TEST_F(PluginFailedReattach, TwoWheelsOnOneSuspensionAreLostInALoad) {
    // Each wheel has a unit of its own, but the suspension tells of the later one alone.
    saved.controls[5].index = 1;  // the first suspension
    ASSERT_TRUE(LoadIntoNewScene(saved));
    ExpectSafe();
    EXPECT_EQ(PlaceOf(*car.spheres[0], 800), PlaceOf(*car.chassis, 800));
}

TEST_F(PluginFailedReattach, ARecordingOfAnotherCarIsKeptBesideTheEmptyRig) {
    int two = 2;
    // A car of two units, from the same bytes.
    const std::size_t head = 16 + 500 * (4 + 16 + 144), unit = 500 * 152;
    std::string fewer = saved.recording.substr(0, head + 2 * unit);
    std::memcpy(fewer.data() + 4, &two, sizeof two);
    saved.recording = fewer;
    ASSERT_TRUE(LoadIntoNewScene(saved));
    ExpectSafe();
    EXPECT_EQ(PlaceOf(*car.wheels[3], 800), PlaceOf(*car.chassis, 800));  // not recorded
}

TEST_F(PluginFailedReattach, ANewLockBringsTheCarBack) {
    LoadWithout(1 + 4 + 2);
    Press(*car.master, kCarSetup, kLock);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_EQ(MotionOf(*car.master)->unitCount, 4);
    EXPECT_EQ(MotionOf(*car.master)->frames, 1);
    DriveOn(0, 3);
    EXPECT_EQ(MotionOf(*car.master)->frames, 16);
}

TEST_F(PluginFailedReattach, DrivingTheEmptyRigIsHarmless) {
    LoadWithout(1 + 4 + 2);
    Press(*car.master, kDriving, kDrive);
    Enter();
    DriveFrames(3);
    for (INode* part : car.Parts()) PlaceOf(*part, 800);
    EXPECT_EQ(MotionOf(*car.master)->unitCount, 4);
}

}  // namespace
}  // namespace plugin_test
