// The controller that moves locked nodes.

#include "host/sdk/prs_control.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginControl : public PluginScene {
 public:
    static Control* NewControl(BOOL loading = FALSE) {
        return static_cast<Control*>(tavrik_host::FindClass(CTRL_MATRIX3_CLASS_ID, kControlClass)->Create(loading));
    }
    static Control* Wrapped(Control& control) { return static_cast<Control*>(control.GetReference(1)); }
    static bool IsPlain(Control* control) { return control != nullptr && control->ClassID() == Class_ID(8197, 0); }
    void Lock(const Car& car) { Press(*car.master, kCarSetup, kLock); }
    void Unlock(const Car& car) { Press(*car.master, kCarSetup, kUnlock); }
};

TEST_F(PluginControl, AnswersTheHostsQuestions) {
    Control* const control = NewControl();
    MSTR name;
    control->GetClassName(name);
    EXPECT_STREQ(name.data(), L"TavrikControl");
    EXPECT_EQ(control->SuperClassID(), 36872u);
    EXPECT_EQ(control->NumRefs(), 2);
    EXPECT_EQ(control->NumSubs(), 2);
    IParamBlock2* const block = control->GetParamBlockByID(0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(control->GetParamBlockByID(1), nullptr);
    EXPECT_EQ(control->GetParamBlock(0), block);
    EXPECT_EQ(control->GetParamBlock(9), block);
    EXPECT_EQ(control->GetReference(0), block);
    EXPECT_EQ(control->SubAnim(0), block);
    EXPECT_EQ(control->SubAnim(1), Wrapped(*control));
    EXPECT_EQ(control->SubAnim(5), Wrapped(*control));
    EXPECT_TRUE(tavrik_host::SaveChunks(*control).empty());
    control->DeleteMe();
}

TEST_F(PluginControl, WrapsThePlainControllerWhenItIsNew) {
    Control* const control = NewControl();
    EXPECT_TRUE(IsPlain(Wrapped(*control)));
    control->DeleteMe();
}

TEST_F(PluginControl, WrapsNothingWhileAFileIsLoading) {
    Control* const control = NewControl(TRUE);
    EXPECT_NE(control->GetParamBlockByID(0), nullptr);
    EXPECT_EQ(Wrapped(*control), nullptr);
    // Nobody should ask it yet; whoever does gets his value back.
    Matrix3 value = At(1, 2, 3);
    Interval valid = FOREVER;
    control->GetValue(0, &value, valid, CTRL_RELATIVE);
    EXPECT_EQ(value, At(1, 2, 3));
    control->DeleteMe();
}

TEST_F(PluginControl, DoesNotWrapItselfWhenItIsTheDefault) {
    tavrik_host::SetDefaultController(kControlClass);
    Control* const control = NewControl();
    EXPECT_TRUE(IsPlain(Wrapped(*control)));
    control->DeleteMe();
}

TEST_F(PluginControl, ACarOfNodesThatHaveItByDefaultDrivesAndUnlocks) {
    tavrik_host::SetDefaultController(kControlClass);
    const Car car = AddCar();
    for (INode* part : car.Parts()) {
        ASSERT_NE(ControlOf(*part), nullptr);
        EXPECT_TRUE(IsPlain(Wrapped(*ControlOf(*part))));
    }
    const Matrix3 before = PlaceOf(*car.chassis);
    Lock(car);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(IsPlain(Wrapped(*ControlOf(*car.chassis))));
    Move(*car.chassis, At(9, 9, 9));
    EXPECT_EQ(PlaceOf(*car.chassis), before);
    Unlock(car);
    Move(*car.chassis, At(9, 9, 9));
    EXPECT_EQ(PlaceOf(*car.chassis), At(9, 9, 9));
}

TEST_F(PluginControl, ALockedNodeCantBeMoved) {
    const Car car = AddCar();
    Lock(car);
    for (INode* part : car.Parts()) {
        const Matrix3 before = PlaceOf(*part);
        Move(*part, At(9, 9, 9));
        EXPECT_EQ(PlaceOf(*part), before);
    }
}

TEST_F(PluginControl, AnUnlockedNodeStandsWhereItStoodAndCanBeMovedAgain) {
    const Car car = AddCar();
    std::vector<Matrix3> before;
    for (INode* part : car.Parts()) before.push_back(PlaceOf(*part));
    Lock(car);
    for (INode* part : car.Parts()) Move(*part, At(9, 9, 9));
    Unlock(car);
    std::size_t i = 0;
    for (INode* part : car.Parts()) {
        EXPECT_NE(ControlOf(*part), nullptr);  // no controller is ever taken off
        EXPECT_EQ(PlaceOf(*part), before[i++]);
        Move(*part, At(7, 8, 9));
        EXPECT_EQ(PlaceOf(*part), At(7, 8, 9));
    }
}

TEST_F(PluginControl, AnUnlockedNodeFollowsItsOwnKeys) {
    const Car car = AddCar();
    INode& sphere = *car.spheres[0];
    auto& keyed = dynamic_cast<tavrik_host::PrsControl&>(*sphere.GetTMController());
    const Point3 here = keyed.Local().GetTrans();
    keyed.position.keys = {{0, here}, {1600, here + Point3(0, 0, 100)}};
    keyed.KeysChanged();
    Lock(car);
    EXPECT_LT(Length(PlaceOf(sphere, 1600).GetTrans() - here), 1e-3f);
    Unlock(car);
    EXPECT_LT(Length(PlaceOf(sphere, 1600).GetTrans() - (here + Point3(0, 0, 100))), 1e-3f);
    EXPECT_LT(Length(PlaceOf(sphere, 800).GetTrans() - (here + Point3(0, 0, 50))), 1e-3f);
}

TEST_F(PluginControl, ALockedAnswerHoldsForItsInstantAlone) {
    const Car car = AddCar();
    Lock(car);
    Interval valid = FOREVER;
    car.chassis->GetNodeTM(640, &valid);
    EXPECT_EQ(valid, Interval(640, 640));
}

TEST_F(PluginControl, ALockedNodeIgnoresItsParent) {
    const Car car = AddCar();
    Lock(car);
    const Matrix3 before = PlaceOf(*car.wheels[0]);
    Matrix3 value = At(100, 200, 300);
    Interval valid = FOREVER;
    ControlOf(*car.wheels[0])->GetValue(0, &value, valid, CTRL_RELATIVE);
    EXPECT_EQ(value, before);
    value = At(-1, -2, -3);
    ControlOf(*car.wheels[0])->GetValue(0, &value, valid, CTRL_ABSOLUTE);
    EXPECT_EQ(value, before);
}

TEST_F(PluginControl, WithoutAMasterTheWrappedControllerAnswers) {
    INode& node = AddNode(kChassisClass, At(4, 5, 6));
    Control* const control = NewControl();
    control->Copy(node.GetTMController());
    node.SetTMController(control);
    EXPECT_EQ(PlaceOf(node), At(4, 5, 6));
    Move(node, At(6, 5, 4));
    EXPECT_EQ(PlaceOf(node), At(6, 5, 4));
}

TEST_F(PluginControl, AMasterThatIsNoneCountsAsNone) {
    INode& node = AddNode(kChassisClass, At(4, 5, 6));
    Control* const control = NewControl();
    control->Copy(node.GetTMController());
    node.SetTMController(control);
    for (INode* wrong : {&AddNode(kWheelClass, Matrix3(TRUE)), tavrik_host::CreateNode(nullptr, L"Empty"), &AddGround()}) {
        ASSERT_TRUE(ControlBlockOf(node).SetValue(kControlMaster, 0, wrong));
        EXPECT_EQ(PlaceOf(node), At(4, 5, 6));
    }
}

TEST_F(PluginControl, CopyingOneOfItsKindTakesWhatThatOneWraps) {
    const Car car = AddCar();
    Lock(car);
    Control* const control = NewControl();
    control->Copy(ControlOf(*car.wheels[0]));
    EXPECT_TRUE(IsPlain(Wrapped(*control)));
    EXPECT_NE(Wrapped(*control), Wrapped(*ControlOf(*car.wheels[0])));
    EXPECT_EQ(control->GetParamBlockByID(0)->GetINode(kControlMaster), nullptr);
    control->DeleteMe();
}

class Ear final : public ReferenceMaker {
 public:
    explicit Ear(ReferenceTarget* target) { ReplaceReference(0, target); }
    ~Ear() override { DeleteAllRefsFromMe(); }
    std::vector<RefMessage> heard;
    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return target_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage message, BOOL) override {
        heard.push_back(message);
        return REF_SUCCEED;
    }

 protected:
    void SetReference(int, RefTargetHandle target) override { target_ = target; }

 private:
    RefTargetHandle target_ = nullptr;
};

TEST_F(PluginControl, ACopyIsToldToItsDependents) {
    Control* const control = NewControl();
    Control* const other = NewDefaultMatrix3Controller();
    Ear ear(control);
    control->Copy(other);
    EXPECT_NE(std::find(ear.heard.begin(), ear.heard.end(), REFMSG_CHANGE), ear.heard.end());
    ASSERT_FALSE(ear.heard.empty());
    EXPECT_EQ(ear.heard.back(), REFMSG_CONTROLREF_CHANGE);
    other->DeleteMe();
}

// --------------------------------------------------------------------------------------------- numbers that no component has

TEST_F(PluginControl, ANumberThatNoPartHasGetsAnAnswerAllTheSame) {
    const Car car = AddCar();
    MakeReady(car, AddGround());
    Start(car);
    DriveFrames(5);
    const Matrix3 chassis = PlaceOf(*car.chassis, 320);
    IParamBlock2& block = ControlBlockOf(*car.wheels[0]);
    for (const int type : {1, 2, 3, 4, 5}) {
        block.SetValue(kObjectType, 0, type);
        for (const int index : {4, 8, 150, 199, -1, -2147483647 - 1}) {
            if (type == 5 && index == 4) continue;  // there are eight spheres
            block.SetValue(kAxleNum, 0, index);
            EXPECT_EQ(PlaceOf(*car.wheels[0], 320), chassis) << type << " " << index;
        }
    }
}

TEST_F(PluginControl, AKindThatNoPartHasGetsAnAnswerAllTheSame) {
    const Car car = AddCar();
    Lock(car);
    IParamBlock2& block = ControlBlockOf(*car.wheels[0]);
    for (const int type : {6, 7, 8, 9, -1, 2147483647}) {
        block.SetValue(kObjectType, 0, type);
        for (const int index : {0, 3, 199, -1}) {
            block.SetValue(kAxleNum, 0, index);
            EXPECT_EQ(PlaceOf(*car.wheels[0]), PlaceOf(*car.chassis)) << type << " " << index;
        }
    }
}

TEST_F(PluginControl, FromNumberTwoHundredOnTheWrappedControllerAnswers) {
    const Car car = AddCar();
    const Matrix3 own = PlaceOf(*car.wheels[0]);
    Lock(car);
    IParamBlock2& block = ControlBlockOf(*car.wheels[0]);
    for (const int index : {200, 201, 2147483647}) {
        block.SetValue(kAxleNum, 0, index);
        EXPECT_EQ(PlaceOf(*car.wheels[0]), own) << index;
    }
    Move(*car.wheels[0], At(1, 1, 1));
    EXPECT_EQ(PlaceOf(*car.wheels[0]), At(1, 1, 1));
    block.SetValue(kAxleNum, 0, 199);
    Move(*car.wheels[0], At(2, 2, 2));
    EXPECT_NE(PlaceOf(*car.wheels[0]), At(2, 2, 2));
}

TEST_F(PluginControl, KindThreeIsTheUnitsAttachment) {
    const Car car = AddCar();
    Lock(car);
    IParamBlock2& block = ControlBlockOf(*car.wheels[0]);
    Matrix3 slot;
    Interval valid = FOREVER;
    block.GetValue(kSlotPosition, 0, slot, valid);
    block.SetValue(kObjectType, 0, 3);
    const Point3 wanted = (slot * PlaceOf(*car.chassis)).GetTrans();
    EXPECT_LT(Length(PlaceOf(*car.wheels[0]).GetTrans() - wanted), 1e-3f);
}

// -------------------------------------------------------------------------------------------------------------------- loops

TEST_F(PluginControl, AReferenceThatWouldCloseALoopIsRefused) {
    const Car car = AddCar();
    INode& child = AddNode(kMasterClass, Matrix3(TRUE));
    ASSERT_EQ(car.wheels[0]->AttachChild(&child), 1);
    Control* const control = NewControl();
    control->Copy(car.wheels[0]->GetTMController());
    ASSERT_TRUE(car.wheels[0]->SetTMController(control));
    EXPECT_FALSE(ControlBlockOf(*car.wheels[0]).SetValue(kControlMaster, 0, &child));
    EXPECT_EQ(ControlBlockOf(*car.wheels[0]).GetINode(kControlMaster), nullptr);
    EXPECT_FALSE(ControlBlockOf(*car.wheels[0]).SetValue(kControlMaster, 0, car.wheels[0]));
}

}  // namespace
}  // namespace plugin_test
