#include "rig/hitch_links.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "rig/car_rig.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

/// A node with just what hitching looks at.
class HitchNode : public SceneNode {
 public:
    explicit HitchNode(ObjectClass objectClass = ObjectClass::None) : class_(objectClass) {}

    HitchNode* connection = nullptr;
    float ruggedness = 500'000.0f;
    CarRig* rig = nullptr;
    bool hasControl = false;
    ControlValues control;
    std::vector<HitchNode*> children;

    ObjectClass Class() const override { return class_; }
    float GetFloat(std::int32_t param, std::int32_t /*entry*/) const override {
        EXPECT_EQ(param, HitchParam::Ruggedness);
        return ruggedness;
    }
    std::int32_t GetInt(std::int32_t /*param*/) const override { return 0; }
    SceneNode* GetNode(std::int32_t param) const override {
        EXPECT_EQ(param, HitchParam::Connection_Node);
        EXPECT_EQ(class_, ObjectClass::Hitch);
        return connection;
    }
    CarRig* Rig() const override { return rig; }
    Matrix3 GetObjectTM() const override { return IdentityMatrix3(); }
    std::int32_t NumberOfChildren() const override { return std::int32_t(children.size()); }
    SceneNode& GetChildNode(std::int32_t i) const override { return *children.at(std::size_t(i)); }
    std::uint32_t GetHandle() const override { return 0; }
    bool HasControl() const override { return hasControl; }
    ControlValues GetControl() const override {
        EXPECT_TRUE(hasControl);
        return control;
    }
    void InstallControl() override { ADD_FAILURE() << "linking changes no node"; }
    void SetControl(const ControlValues& /*values*/) override { ADD_FAILURE() << "linking changes no node"; }
    void ClearControlMaster() override { ADD_FAILURE() << "linking changes no node"; }

 private:
    ObjectClass class_;
};

/// A scene of locked cars, each with a master node and hitches and tongues below it.
class LinkHitchesTest : public testing::Test {
 protected:
    HitchNode& Add(HitchNode& parent, ObjectClass objectClass) {
        nodes_.push_back(std::make_unique<HitchNode>(objectClass));
        parent.children.push_back(nodes_.back().get());
        return *nodes_.back();
    }
    HitchNode& AddCar() {
        rigs_.push_back(std::make_unique<CarRig>());
        HitchNode& master = Add(root, ObjectClass::Tavrik);
        master.rig = rigs_.back().get();
        master.rig->InitMotion();
        return master;
    }
    /// A hitch or tongue on the next slot of the master's rig.
    HitchNode& AddPart(HitchNode& master, ObjectClass objectClass) {
        HitchNode& part = Add(master, objectClass);
        part.hasControl = true;
        part.control.Tavrik_Node = &master;
        part.control.Object_Type = std::int32_t(ComponentType::Hitch);
        part.control.Axle_Num = master.rig->hitchCount++;
        return part;
    }
    static HitchSlot& SlotOf(const HitchNode& part) { return part.control.Tavrik_Node->Rig()->hitches[part.control.Axle_Num]; }
    static bool AreLinked(const HitchNode& a, const HitchNode& b) {
        return SlotOf(a).partner == &SlotOf(b) && SlotOf(b).partner == &SlotOf(a) &&
               SlotOf(a).ownerRig == a.control.Tavrik_Node->Rig() && SlotOf(b).ownerRig == b.control.Tavrik_Node->Rig();
    }
    static bool IsUntied(const HitchSlot& slot) { return slot.partner == nullptr && slot.ownerRig == nullptr; }

    HitchNode root;

 private:
    std::vector<std::unique_ptr<HitchNode>> nodes_;
    std::vector<std::unique_ptr<CarRig>> rigs_;
};

/// A car whose hitch holds the tongue of a trailer.
class CarAndTrailer : public LinkHitchesTest {
 protected:
    HitchNode& car = AddCar();
    HitchNode& trailer = AddCar();
    HitchNode& hitch = AddPart(car, ObjectClass::Hitch);
    HitchNode& tongue = AddPart(trailer, ObjectClass::Tongue);
    void SetUp() override { hitch.connection = &tongue; }
};

TEST_F(CarAndTrailer, AreLinkedBothWays) {
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, tongue));
}

TEST_F(CarAndTrailer, BothSlotsTakeTheRuggednessOfTheHitch) {
    hitch.ruggedness = 123.456f;
    LinkHitches(root);
    EXPECT_EQ(SlotOf(hitch).Ruggedness, double(123.456f));
    EXPECT_EQ(SlotOf(tongue).Ruggedness, double(123.456f));
}

TEST_F(CarAndTrailer, WithoutAConnectionStayApart) {
    hitch.connection = nullptr;
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(SlotOf(hitch)));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, ArePartedWhenTheConnectionIsClearedAfterwards) {
    LinkHitches(root);
    hitch.connection = nullptr;
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(SlotOf(hitch)));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, OldLinksAreUntiedInEveryRigBeforeAnyIsTied) {
    // The car comes after its trailer in the scene: clearing the car's slots must not undo what was tied just before.
    std::swap(root.children[0], root.children[1]);
    LinkHitches(root);
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, tongue));
}

TEST_F(CarAndTrailer, AHitchWithoutAControlIsSkipped) {
    hitch.hasControl = false;
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(SlotOf(hitch)));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, AConnectionWithoutAControlLeavesTheHitchWithAnOwnerAndNoPartner) {
    tongue.hasControl = false;
    LinkHitches(root);
    EXPECT_EQ(SlotOf(hitch).partner, nullptr);
    EXPECT_EQ(SlotOf(hitch).ownerRig, car.rig);
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, AControlThatHasLetGoOfItsMasterTiesNothing) {
    const HitchSlot& slot = SlotOf(hitch);
    hitch.control.Tavrik_Node = nullptr;
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(slot));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, AMasterNodeWithoutARigTiesNothing) {
    for (const ObjectClass objectClass : {ObjectClass::None, ObjectClass::Other}) {
        HitchNode& other = Add(root, objectClass);
        tongue.control.Tavrik_Node = &other;
        LinkHitches(root);
        EXPECT_EQ(SlotOf(hitch).partner, nullptr);
        EXPECT_TRUE(IsUntied(trailer.rig->hitches[0]));
    }
}

TEST_F(CarAndTrailer, AnUnlockedCarIsNotTied) {
    trailer.rig->ResetMotion();
    LinkHitches(root);
    EXPECT_EQ(SlotOf(hitch).partner, nullptr);
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));

    trailer.rig->InitMotion();
    car.rig->ResetMotion();
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(SlotOf(hitch)));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, ANumberThatNoRigHasASlotForTiesNothing) {
    const HitchSlot& slot = SlotOf(tongue);
    for (const std::int32_t index : {-1, -200, kMaxComponents, 100'000}) {
        tongue.control.Axle_Num = index;
        LinkHitches(root);
        EXPECT_EQ(SlotOf(hitch).partner, nullptr) << index;
        EXPECT_TRUE(IsUntied(slot)) << index;
    }
}

TEST_F(CarAndTrailer, ASlotBeyondThoseInUseIsTiedAsWell) {
    for (const std::int32_t index : {1, kMaxComponents - 1}) {
        tongue.control.Axle_Num = index;
        LinkHitches(root);
        EXPECT_TRUE(AreLinked(hitch, tongue)) << index;
    }
}

TEST_F(CarAndTrailer, TheKindOfComponentThatAControlTellsPlaysNoPart) {
    hitch.control.Object_Type = std::int32_t(ComponentType::Sphere);
    tongue.control.Object_Type = -7;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, tongue));
}

TEST_F(CarAndTrailer, AnyNodeThatHasASlotCanBeTheOtherEnd) {
    HitchNode& wheel = AddPart(trailer, ObjectClass::Wheel);
    hitch.connection = &wheel;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, wheel));
}

TEST_F(CarAndTrailer, OnlyAHitchTiesAndATongueIsNotAskedForAConnection) {
    tongue.connection = &hitch;  // asking for it would fail the test
    hitch.connection = nullptr;
    LinkHitches(root);
    EXPECT_TRUE(IsUntied(SlotOf(hitch)));
    EXPECT_TRUE(IsUntied(SlotOf(tongue)));
}

TEST_F(CarAndTrailer, OfTwoHitchesOnOneTongueTheLaterInTheSceneHasIt) {
    HitchNode& second = AddPart(car, ObjectClass::Hitch);
    second.connection = &tongue;
    second.ruggedness = 7.0f;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(second, tongue));
    EXPECT_EQ(SlotOf(hitch).partner, &SlotOf(tongue));
    EXPECT_EQ(SlotOf(hitch).Ruggedness, 500'000.0);
    EXPECT_EQ(SlotOf(tongue).Ruggedness, 7.0);
}

TEST_F(CarAndTrailer, ParentsComeBeforeChildrenAndChildrenInTheirOrder) {
    // Three hitches pull at one tongue; the last that the walk meets has it: a child of the first, then the first's sibling.
    HitchNode& sibling = AddPart(car, ObjectClass::Hitch);
    HitchNode& child = AddPart(car, ObjectClass::Hitch);
    car.children.pop_back();
    hitch.children.push_back(&child);
    sibling.connection = child.connection = &tongue;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(sibling, tongue));

    sibling.connection = nullptr;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(child, tongue));
}

TEST_F(LinkHitchesTest, AChainIsLinkedCarByCar) {
    HitchNode &car = AddCar(), &first = AddCar(), &second = AddCar();
    HitchNode &rear = AddPart(car, ObjectClass::Hitch), &front = AddPart(first, ObjectClass::Tongue);
    HitchNode &rear2 = AddPart(first, ObjectClass::Hitch), &front2 = AddPart(second, ObjectClass::Tongue);
    rear.connection = &front;
    rear2.connection = &front2;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(rear, front));
    EXPECT_TRUE(AreLinked(rear2, front2));
}

TEST_F(LinkHitchesTest, ACarCanBeHitchedToItself) {
    HitchNode& car = AddCar();
    HitchNode &hitch = AddPart(car, ObjectClass::Hitch), &tongue = AddPart(car, ObjectClass::Tongue);
    hitch.connection = &tongue;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, tongue));
}

TEST_F(LinkHitchesTest, AHitchThatIsItsOwnConnectionIsItsOwnPartner) {
    HitchNode& hitch = AddPart(AddCar(), ObjectClass::Hitch);
    hitch.connection = &hitch;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, hitch));
}

TEST_F(LinkHitchesTest, AChainOfAHundredThousandNodesIsWalkedToItsEnd) {
    HitchNode &car = AddCar(), &trailer = AddCar();
    HitchNode* end = &trailer;
    for (int i = 0; i < 100'000; ++i) end = &Add(*end, ObjectClass::None);
    HitchNode &hitch = AddPart(car, ObjectClass::Hitch), &tongue = AddPart(trailer, ObjectClass::Tongue);
    car.children.clear();
    end->children.push_back(&hitch);
    hitch.connection = &tongue;
    LinkHitches(root);
    EXPECT_TRUE(AreLinked(hitch, tongue));
}

}  // namespace
}  // namespace tavrik
