// Loose parts become a car.

#include "host/sdk/desktop.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginAssembly : public PluginScene {
 public:
    void Lock(INode& master) { Press(master, kCarSetup, kLock); }
    bool IsLocked(INode& master) { return RecordingOf(master).size() > 4; }
    /// Whether a node follows the recording of a master.
    static bool Follows(INode& node, INode& master) {
        return ControlOf(node) != nullptr && ControlBlockOf(node).GetINode(kControlMaster) == &master;
    }
};

Matrix3 Turned90AboutX() {
    Matrix3 turned(TRUE);
    turned.SetRow(1, Point3(0, 0, 1));
    turned.SetRow(2, Point3(0, -1, 0));
    return turned;
}

Matrix3 Scaled(float s) {
    Matrix3 frame(TRUE);
    for (int i = 0; i < 3; ++i) frame.SetRow(i, frame.GetRow(i) * s);
    return frame;
}

TEST_F(PluginAssembly, LocksEveryPartInTheBoxUnderItsNumber) {
    const Car car = AddCar();
    Lock(*car.master);
    EXPECT_TRUE(windows.messages.empty());
    for (INode* part : car.Parts()) EXPECT_TRUE(Follows(*part, *car.master));
    EXPECT_EQ(ControlBlockOf(*car.chassis).GetInt(kObjectType), 0);
    EXPECT_EQ(ControlBlockOf(*car.chassis).GetInt(kAxleNum), 0);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(ControlBlockOf(*car.wheels[std::size_t(i)]).GetInt(kObjectType), 2);
        EXPECT_EQ(ControlBlockOf(*car.wheels[std::size_t(i)]).GetInt(kAxleNum), i);
        EXPECT_EQ(ControlBlockOf(*car.suspensions[std::size_t(i)]).GetInt(kObjectType), 1);
        EXPECT_EQ(ControlBlockOf(*car.suspensions[std::size_t(i)]).GetInt(kAxleNum), i);
    }
    for (int i = 0; i < int(car.spheres.size()); ++i) {
        EXPECT_EQ(ControlBlockOf(*car.spheres[std::size_t(i)]).GetInt(kObjectType), 5);
        EXPECT_EQ(ControlBlockOf(*car.spheres[std::size_t(i)]).GetInt(kAxleNum), i);
    }
    EXPECT_EQ(ControlOf(*car.master), nullptr);
}

TEST_F(PluginAssembly, ALockStartsARecordingOfOneFrameWithRoomForFiveHundred) {
    const Car car = AddCar();
    Lock(*car.master);
    const auto motion = MotionOf(*car.master);
    EXPECT_EQ(motion->frames, 1);
    EXPECT_EQ(motion->capacity, 500);
    EXPECT_EQ(motion->unitCount, 4);
    EXPECT_EQ(motion->times[0], TIME_NegInfinity);
    EXPECT_EQ(RecordingOf(*car.master).size(), 386'016u);
}

TEST_F(PluginAssembly, ALockedCarStaysWhereItStood) {
    const Car car = AddCar();
    std::vector<Matrix3> before;
    for (INode* part : car.Parts()) before.push_back(PlaceOf(*part));
    Lock(*car.master);
    std::size_t i = 0;
    for (INode* part : car.Parts()) {
        const Matrix3 wanted = before[i++];
        const Point3 d = PlaceOf(*part).GetTrans() - wanted.GetTrans();
        EXPECT_LT(Length(d), 1e-3f) << Text(PlaceOf(*part)) << " was " << Text(wanted);
    }
}

TEST_F(PluginAssembly, ALockedSuspensionIsShownLeftHanded) {
    const Car car = AddCar();
    Lock(*car.master);
    for (INode* suspension : car.suspensions) {
        const Matrix3 place = PlaceOf(*suspension);
        const Point3 y = CrossProd(place.GetRow(0), place.GetRow(2));
        EXPECT_LT(Length(place.GetRow(1) - y), 1e-5f);
    }
}

TEST_F(PluginAssembly, AMasterOfTwentyDoesNotReachAChassisAtTwentyOne) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    AddNode(kChassisClass, At(21, 0, 0));
    Lock(master);
    EXPECT_EQ(windows.messages, std::vector<std::string>{"Can't find Chassis Object."});
    EXPECT_FALSE(IsLocked(master));
}

TEST_F(PluginAssembly, APartOnTheWallOfTheBoxIsOutside) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& chassis = AddNode(kChassisClass, Matrix3(TRUE));
    INode& onTheWall = AddNode(kSphereClass, At(0, 20, 0));
    INode& inside = AddNode(kSphereClass, At(0, 19.99f, 0));
    Lock(master);
    EXPECT_TRUE(Follows(chassis, master));
    EXPECT_TRUE(Follows(inside, master));
    EXPECT_EQ(ControlOf(onTheWall), nullptr);
}

TEST_F(PluginAssembly, TheBoxTurnsWithTheMaster) {
    INode& master = AddNode(kMasterClass, Turned90AboutX());
    Set(master, kDummySize, 200.0f, 2);  // along the world's Y now
    AddNode(kChassisClass, Matrix3(TRUE));
    INode& far = AddNode(kSphereClass, At(0, 150, 0));
    INode& high = AddNode(kSphereClass, At(0, 0, 150));
    Lock(master);
    EXPECT_TRUE(Follows(far, master));
    EXPECT_EQ(ControlOf(high), nullptr);
}

TEST_F(PluginAssembly, OfTwoChassisTheFirstIsTheCars) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& first = AddNode(kChassisClass, At(1, 0, 0));
    INode& second = AddNode(kChassisClass, At(-1, 0, 0));
    Lock(master);
    EXPECT_TRUE(Follows(first, master));
    EXPECT_EQ(ControlOf(second), nullptr);
    Move(second, At(5, 5, 5));
    EXPECT_EQ(PlaceOf(second), At(5, 5, 5));
}

/// A master with a chassis, one wheel and one suspension somewhere beside it.
struct Corner {
    INode &master, &wheel, &suspension;
};
Corner AddCorner(const Matrix3& wheelAt, const Matrix3& suspensionAt) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    for (int i = 0; i < 3; ++i) Set(master, kDummySize, 500.0f, i);
    AddNode(kChassisClass, Matrix3(TRUE));
    return {master, AddNode(kWheelClass, wheelAt), AddNode(kSuspensionClass, suspensionAt)};
}

TEST_F(PluginAssembly, AWheelAtRightAnglesToItsSuspensionFindsNone) {
    const Corner corner = AddCorner(At(100, 0, 0), Turned90AboutX() * At(100, 0, 0));
    Lock(corner.master);
    EXPECT_EQ(MotionOf(corner.master)->unitCount, 0);
    EXPECT_EQ(ControlOf(corner.wheel), nullptr);
    EXPECT_EQ(ControlOf(corner.suspension), nullptr);
}

TEST_F(PluginAssembly, AWheelExactlyItsWidthAwayFindsNone) {
    const Corner corner = AddCorner(At(100, 0, 0), At(115, 0, 0));  // the default half width is 15
    Lock(corner.master);
    EXPECT_EQ(MotionOf(corner.master)->unitCount, 0);
}

TEST_F(PluginAssembly, AWheelJustInsideOfItsWidthFindsItsSuspension) {
    const Corner corner = AddCorner(At(100, 0, 0), At(114.9f, 0, 0));
    Lock(corner.master);
    EXPECT_EQ(MotionOf(corner.master)->unitCount, 1);
    EXPECT_TRUE(Follows(corner.wheel, corner.master));
    EXPECT_TRUE(Follows(corner.suspension, corner.master));
}

TEST_F(PluginAssembly, ScaledPartsMatchAtWiderAngles) {
    // 75 degrees: a cosine of 0.259, and four times that with both at twice their size.
    Matrix3 slanted(TRUE);
    slanted.SetRow(1, Point3(0, 0.258819f, 0.965926f));
    slanted.SetRow(2, Point3(0, -0.965926f, 0.258819f));
    const Corner plain = AddCorner(At(100, 0, 0), slanted * At(100, 0, 0));
    Lock(plain.master);
    EXPECT_EQ(MotionOf(plain.master)->unitCount, 0);

    tavrik_host::ResetScene();
    const Corner scaled = AddCorner(Scaled(2) * At(100, 0, 0), slanted * Scaled(2) * At(100, 0, 0));
    Lock(scaled.master);
    EXPECT_EQ(MotionOf(scaled.master)->unitCount, 1);
}

TEST_F(PluginAssembly, TwoWheelsMayShareASuspension) {
    const Corner corner = AddCorner(At(100, 0, 0), At(105, 0, 0));
    INode& other = AddNode(kWheelClass, At(110, 0, 0));
    Lock(corner.master);
    EXPECT_EQ(MotionOf(corner.master)->unitCount, 2);
    EXPECT_EQ(ControlBlockOf(corner.wheel).GetInt(kAxleNum), 0);
    EXPECT_EQ(ControlBlockOf(other).GetInt(kAxleNum), 1);
    EXPECT_EQ(ControlBlockOf(corner.suspension).GetInt(kAxleNum), 1);
}

TEST_F(PluginAssembly, AWishbonesArmIsTakenOffItsSlot) {
    const Corner corner = AddCorner(At(100, 0, 0), At(100, 0, 0));
    Set(corner.suspension, 0, 30.0f);
    Set(corner.suspension, 12, 4.0f);
    Lock(corner.master);
    Matrix3 slot;
    Interval valid = FOREVER;
    ASSERT_TRUE(ControlBlockOf(corner.wheel).GetValue(kSlotPosition, 0, slot, valid));
    EXPECT_EQ(slot, At(100, 0, -34));
    EXPECT_EQ(PlaceOf(corner.wheel), At(100, 0, 0));
}

TEST_F(PluginAssembly, ATelescopicSlotIsShiftedByTheWheelAlone) {
    const Corner corner = AddCorner(At(100, 0, 0), At(100, 0, 0));
    Set(corner.suspension, 11, 1);
    Set(corner.suspension, 0, 30.0f);
    Set(corner.suspension, 12, 4.0f);
    Lock(corner.master);
    Matrix3 slot;
    Interval valid = FOREVER;
    ASSERT_TRUE(ControlBlockOf(corner.suspension).GetValue(kSlotPosition, 0, slot, valid));
    EXPECT_EQ(slot, At(100, 0, -4));
    EXPECT_EQ(PlaceOf(corner.wheel), At(100, 0, 0));
}

TEST_F(PluginAssembly, AStartMovesTheWholeCarThere) {
    const Car car = AddCar();
    const Matrix3 chassis = PlaceOf(*car.chassis), wheel = PlaceOf(*car.wheels[2]), sphere = PlaceOf(*car.spheres[3]);
    Set(*car.master, kStartNode, &AddNode(kStartClass, At(1000, -500, chassis.GetTrans().z)));
    Lock(*car.master);
    const auto moved = [](const Matrix3& from) { return from.GetTrans() + Point3(1000, -500, 0); };
    EXPECT_LT(Length(PlaceOf(*car.chassis).GetTrans() - moved(chassis)), 1e-2f);
    EXPECT_LT(Length(PlaceOf(*car.wheels[2]).GetTrans() - moved(wheel)), 1e-2f);
    EXPECT_LT(Length(PlaceOf(*car.spheres[3]).GetTrans() - moved(sphere)), 1e-2f);
}

TEST_F(PluginAssembly, APartThatWasDraggedOutOfTheBoxIsLetGo) {
    const Car car = AddCar();
    Lock(*car.master);
    INode& sphere = *car.spheres[0];
    Press(*car.master, kCarSetup, kUnlock);
    Move(sphere, At(5000, 0, 0));
    Lock(*car.master);
    ASSERT_NE(ControlOf(sphere), nullptr);
    EXPECT_EQ(ControlBlockOf(sphere).GetINode(kControlMaster), nullptr);
    EXPECT_EQ(PlaceOf(sphere), At(5000, 0, 0));
    EXPECT_TRUE(Follows(*car.spheres[1], *car.master));
    EXPECT_EQ(ControlBlockOf(*car.spheres[1]).GetInt(kAxleNum), 0);  // numbers close up
}

TEST_F(PluginAssembly, AChassisThatWasDraggedOutTakesTheCarWithIt) {
    const Car car = AddCar();
    Lock(*car.master);
    Press(*car.master, kCarSetup, kUnlock);
    Move(*car.chassis, At(5000, 0, 0));
    Lock(*car.master);
    EXPECT_EQ(windows.messages, std::vector<std::string>{"Can't find Chassis Object."});
    EXPECT_EQ(ControlBlockOf(*car.chassis).GetINode(kControlMaster), nullptr);
    EXPECT_FALSE(IsLocked(*car.master));
    EXPECT_TRUE(Follows(*car.wheels[0], *car.master));  // other locks stay as they were
}

TEST_F(PluginAssembly, AMasterThatWasMovedAwayReleasesItsRecordedCar) {
    const Car car = AddCar();
    Lock(*car.master);
    Move(*car.master, At(9000, 0, 0));
    Lock(*car.master);
    EXPECT_EQ(windows.messages.size(), 1u);
    for (INode* part : car.Parts()) {
        EXPECT_EQ(ControlBlockOf(*part).GetINode(kControlMaster), nullptr);
        Move(*part, At(1, 2, 3));
        EXPECT_EQ(PlaceOf(*part), At(1, 2, 3));
    }
}

TEST_F(PluginAssembly, LockingTwiceDoesNotPileControllersUp) {
    const Car car = AddCar();
    Lock(*car.master);
    Control* const control = ControlOf(*car.chassis);
    const std::string recording = RecordingOf(*car.master);
    Lock(*car.master);
    EXPECT_EQ(ControlOf(*car.chassis), control);
    ASSERT_NE(control->GetReference(1), nullptr);
    EXPECT_EQ(static_cast<Control*>(control->GetReference(1))->ClassID(), Class_ID(8197, 0));
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), recording));
}

TEST_F(PluginAssembly, InTheBoxesOfTwoMastersTheLaterLockWins) {
    const Car car = AddCar();
    INode& other = AddNode(kMasterClass, PlaceOf(*car.master));
    for (int i = 0; i < 3; ++i) Set(other, kDummySize, 400.0f, i);
    Lock(*car.master);
    Lock(other);
    for (INode* part : car.Parts()) EXPECT_TRUE(Follows(*part, other));
    Lock(*car.master);
    for (INode* part : car.Parts()) EXPECT_TRUE(Follows(*part, *car.master));
}

TEST_F(PluginAssembly, AMasterUnderAPartOfItsOwnCarDoesNotLockIt) {
    // The part would depend on a master that depends on it: the host refuses, and the part stays free.
    const Car car = AddCar();
    ASSERT_EQ(car.chassis->AttachChild(car.master), 1);
    Lock(*car.master);
    const Matrix3 there = At(3, 4, 60);
    EXPECT_EQ(ControlOf(*car.chassis) != nullptr ? ControlBlockOf(*car.chassis).GetINode(kControlMaster) : nullptr, nullptr);
    Move(*car.chassis, there);
    EXPECT_EQ(PlaceOf(*car.chassis), there);
}

TEST_F(PluginAssembly, AMasterCantBeHungUnderAPartThatItHasLocked) {
    const Car car = AddCar();
    Lock(*car.master);
    EXPECT_EQ(car.chassis->AttachChild(car.master), 0);
    EXPECT_TRUE(car.master->GetParentNode()->IsRootNode());
}

TEST_F(PluginAssembly, PartsUnderTheMasterAreLockedWhereTheyAre) {
    const Car car = AddCar();
    for (INode* part : car.Parts()) ASSERT_EQ(car.master->AttachChild(part), 1);
    const Matrix3 before = PlaceOf(*car.wheels[1]);
    Lock(*car.master);
    EXPECT_LT(Length(PlaceOf(*car.wheels[1]).GetTrans() - before.GetTrans()), 1e-3f);
    Move(*car.master, At(700, 0, 0));  // a recording is in world space, whatever the parent does
    EXPECT_LT(Length(PlaceOf(*car.wheels[1]).GetTrans() - before.GetTrans()), 1e-3f);
}

TEST_F(PluginAssembly, MoreSpheresThanACarHoldsAreRefusedInOneSentence) {
    const Car car = AddCar();
    Lock(*car.master);
    const std::string recording = RecordingOf(*car.master);
    for (int i = 0; i < 200; ++i) AddNode(kSphereClass, At(0, 0, 51));
    Lock(*car.master);
    ASSERT_EQ(windows.messages.size(), 1u);
    EXPECT_NE(windows.messages[0].find("200"), std::string::npos) << windows.messages[0];
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), recording));
    EXPECT_TRUE(Follows(*car.chassis, *car.master));
}

}  // namespace
}  // namespace plugin_test
