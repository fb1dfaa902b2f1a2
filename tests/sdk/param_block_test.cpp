#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/sdk/imtl.h"
#include "host/sdk/standin.h"
#include "tests/sdk/edited_object.h"

namespace {

using edited::EditedObject;
using namespace edited;
using tavrik_host::FloatKeys;
using tavrik_host::ParamBlock;

constexpr int kNoSuchEntry = 3;

class TestMap final : public Texmap {
 public:
    explicit TestMap(int* deaths = nullptr) : deaths_(deaths) {}
    TestMap(const TestMap&) = delete;
    TestMap& operator=(const TestMap&) = delete;
    ~TestMap() override {
        if (deaths_ != nullptr) ++*deaths_;
    }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new TestMap;
        BaseClone(this, copy, remap);
        return copy;
    }
    AColor EvalColor(ShadeContext&) override { return {}; }
    Point3 EvalNormalPerturb(ShadeContext&) override { return {0, 0, 0}; }
    void Update(TimeValue, Interval&) override {}
    void Reset() override {}
    Interval Validity(TimeValue) override { return FOREVER; }
    ParamDlg* CreateParamDlg(HWND, IMtlParams*) override { return nullptr; }

 private:
    int* deaths_;
};

/// An object on a node of the scene, and two other nodes to point at.
class ParamBlockTest : public testing::Test {
 public:
    ParamBlockTest() {
        tavrik_host::ResetScene();
        object = new EditedObject;
        node = tavrik_host::CreateNode(object, L"Edited");
        first = tavrik_host::CreateNode(nullptr, L"First");
        second = tavrik_host::CreateNode(nullptr, L"Second");
        object->changes = 0;
    }
    ~ParamBlockTest() override { tavrik_host::ResetScene(); }
    ParamBlockTest(const ParamBlockTest&) = delete;
    ParamBlockTest& operator=(const ParamBlockTest&) = delete;

    IParamBlock2& Block() const { return *object->block; }
    ParamBlock& Keyed() const { return static_cast<ParamBlock&>(*object->block); }
    static void Change(INode* changed) { changed->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE); }
    static bool RefersTo(INode* target, ReferenceMaker* maker) {
        const auto& makers = target->Dependents();
        return std::find(makers.begin(), makers.end(), maker) != makers.end();
    }

    EditedObject* object = nullptr;
    INode *node = nullptr, *first = nullptr, *second = nullptr;
};

TEST_F(ParamBlockTest, NewBlockHasTheDeclaredDefaults) {
    EXPECT_EQ(Block().GetFloat(kGravity), 980.0f);
    EXPECT_EQ(Block().GetInt(kKind), 1);
    EXPECT_EQ(Block().GetFloat(kMult), 5.0f);
    EXPECT_EQ(Block().GetINode(kTarget), nullptr);
}

TEST_F(ParamBlockTest, DefaultAboveItsRangeIsStoredAsItIs) { EXPECT_EQ(Block().GetInt(kButton), 32768); }

TEST_F(ParamBlockTest, DefaultFillsEveryEntryOfATable) {
    ASSERT_EQ(Block().Count(kSize), 3);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Block().GetFloat(kSize, 0, i), 20.0f);
}

TEST_F(ParamBlockTest, EntriesOfATableAreSetOneByOne) {
    ASSERT_TRUE(Block().SetValue(kSize, 0, 7.0f, 1));
    EXPECT_EQ(Block().GetFloat(kSize, 0, 0), 20.0f);
    EXPECT_EQ(Block().GetFloat(kSize, 0, 1), 7.0f);
    EXPECT_EQ(Block().GetFloat(kSize, 0, 2), 20.0f);
}

TEST_F(ParamBlockTest, ValueOutsideItsRangeIsStoredAsItIs) {
    ASSERT_TRUE(Block().SetValue(kGravity, 0, -3.5f));
    ASSERT_TRUE(Block().SetValue(kKind, 0, 77));
    EXPECT_EQ(Block().GetFloat(kGravity), -3.5f);
    EXPECT_EQ(Block().GetInt(kKind), 77);
}

TEST_F(ParamBlockTest, BooleanReadsAsAnInteger) {
    Interval valid = FOREVER;
    int flag = -1;
    ASSERT_TRUE(Block().GetValue(kFlag, 0, flag, valid));
    EXPECT_EQ(flag, 1);
}

TEST_F(ParamBlockTest, AnotherTypeIsRefusedAndLeavesTheVariable) {
    Interval valid = FOREVER;
    int number = -1;
    float real = -1.0f;
    INode* target = first;
    EXPECT_FALSE(Block().GetValue(kGravity, 0, number, valid));
    EXPECT_FALSE(Block().GetValue(kKind, 0, real, valid));
    EXPECT_FALSE(Block().GetValue(kOther, 0, target, valid));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(real, -1.0f);
    EXPECT_EQ(target, first);
}

TEST_F(ParamBlockTest, UnknownNumberIsRefusedAndLeavesTheVariable) {
    Interval valid = FOREVER;
    float v = -1.0f;
    EXPECT_FALSE(Block().GetValue(kUnknown, 0, v, valid));
    EXPECT_FALSE(Block().SetValue(kUnknown, 0, 1.0f));
    EXPECT_EQ(v, -1.0f);
    EXPECT_EQ(Block().Count(kUnknown), 0);
}

TEST_F(ParamBlockTest, EntryThatIsNotThereIsRefusedAndLeavesTheVariable) {
    Interval valid = FOREVER;
    float v = -1.0f;
    EXPECT_FALSE(Block().GetValue(kSize, 0, v, valid, kNoSuchEntry));
    EXPECT_FALSE(Block().GetValue(kSize, 0, v, valid, -1));
    EXPECT_FALSE(Block().GetValue(kGravity, 0, v, valid, 1));
    EXPECT_FALSE(Block().SetValue(kSize, 0, 1.0f, kNoSuchEntry));
    EXPECT_EQ(v, -1.0f);
}

TEST_F(ParamBlockTest, SettingAnotherTypeIsRefusedAndChangesNothing) {
    EXPECT_FALSE(Block().SetValue(kGravity, 0, 5));
    EXPECT_FALSE(Block().SetValue(kKind, 0, 5.0f));
    EXPECT_FALSE(Block().SetValue(kGravity, 0, first));
    EXPECT_EQ(Block().GetFloat(kGravity), 980.0f);
    EXPECT_EQ(Block().GetInt(kKind), 1);
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, ConstantLeavesTheIntervalAsItIs) {
    Interval valid(100, 200);
    float v = 0.0f;
    ASSERT_TRUE(Block().GetValue(kGravity, 5000, v, valid));
    EXPECT_EQ(valid, Interval(100, 200));
}

TEST_F(ParamBlockTest, SettingAValueTellsTheOwnerOnce) {
    Block().SetValue(kGravity, 0, 981.0f);
    EXPECT_EQ(object->changes, 1);
    Block().SetValue(kTarget, 0, first);
    EXPECT_EQ(object->changes, 2);
    Block().SetValue(kSurface, 0, first);
    EXPECT_EQ(object->changes, 3);
}

TEST_F(ParamBlockTest, MatrixIsUndefinedUntilItIsSet) {
    Interval valid = FOREVER;
    Matrix3 frame(TRUE);
    ASSERT_TRUE(Block().GetValue(kSlot, 0, frame, valid));
    EXPECT_TRUE(std::isnan(frame.GetRow(0).x));
    Matrix3 slot(TRUE);
    slot.SetTrans(Point3(1, 2, 3));
    ASSERT_TRUE(Block().SetValue(kSlot, 0, slot));
    ASSERT_TRUE(Block().GetValue(kSlot, 0, frame, valid));
    EXPECT_EQ(frame, slot);
}

TEST_F(ParamBlockTest, OwnerIsWhoHoldsTheBlock) { EXPECT_EQ(Block().GetOwner(), object); }

TEST_F(ParamBlockTest, NodeIsReferredTo) {
    ASSERT_TRUE(Block().SetValue(kTarget, 0, first));
    EXPECT_EQ(Block().GetINode(kTarget), first);
    EXPECT_TRUE(RefersTo(first, object->block));
}

TEST_F(ParamBlockTest, ChangeOfAReferredNodeReachesTheOwner) {
    Block().SetValue(kTarget, 0, first);
    object->changes = 0;
    Change(first);
    EXPECT_EQ(object->changes, 1);
}

TEST_F(ParamBlockTest, AnotherNodeTakesThePlaceOfTheFirst) {
    Block().SetValue(kTarget, 0, first);
    ASSERT_TRUE(Block().SetValue(kTarget, 0, second));
    EXPECT_EQ(Block().GetINode(kTarget), second);
    EXPECT_FALSE(RefersTo(first, object->block));
}

TEST_F(ParamBlockTest, ClearedNodeGoesOnLiving) {
    const ULONG handle = first->GetHandle();
    Block().SetValue(kTarget, 0, first);
    ASSERT_TRUE(Block().SetValue(kTarget, 0, static_cast<INode*>(nullptr)));
    EXPECT_EQ(Block().GetINode(kTarget), nullptr);
    EXPECT_EQ(GetCOREInterface()->GetINodeByHandle(handle), first);
}

TEST_F(ParamBlockTest, NodeThatWouldCloseALoopIsRefusedAndChangesNothing) {
    Block().SetValue(kTarget, 0, first);
    object->changes = 0;
    EXPECT_FALSE(Block().SetValue(kTarget, 0, node));
    EXPECT_EQ(Block().GetINode(kTarget), first);
    EXPECT_TRUE(RefersTo(first, object->block));
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, TargetThatWouldCloseALoopIsRefused) {
    EXPECT_FALSE(Block().SetValue(kOther, 0, static_cast<ReferenceTarget*>(node)));
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, ChildOfTheOwnNodeIsRefusedToo) {
    INode* child = tavrik_host::CreateNode(nullptr, L"Child", node);
    EXPECT_FALSE(Block().SetValue(kTarget, 0, child));
    EXPECT_EQ(Block().GetINode(kTarget), nullptr);
}

TEST_F(ParamBlockTest, DeletedNodeClearsItsReferenceAndTheOwnerHears) {
    Block().SetValue(kTarget, 0, first);
    object->changes = 0;
    GetCOREInterface()->DeleteNode(first);
    EXPECT_EQ(Block().GetINode(kTarget), nullptr);
    EXPECT_GT(object->changes, 0);
}

TEST_F(ParamBlockTest, NodeOnItsWayOutMayBeClearedElsewhere) {
    EditedObject other;
    Block().SetValue(kTarget, 0, first);
    other.block->SetValue(kTarget, 0, first);
    object->onChange = [&] { other.block->SetValue(kTarget, 0, static_cast<INode*>(nullptr)); };
    GetCOREInterface()->DeleteNode(first);
    EXPECT_EQ(other.block->GetINode(kTarget), nullptr);
    EXPECT_EQ(tavrik_host::AllNodes(), (std::vector<INode*>{node, second}));
}

TEST_F(ParamBlockTest, ChangeOfANodeWithoutReferenceReachesNobody) {
    Block().SetValue(kSurface, 0, first);
    object->changes = 0;
    EXPECT_FALSE(RefersTo(first, object->block));
    Change(first);
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, DeletedNodeClearsAPointerWithoutReferenceSilently) {
    Block().SetValue(kSurface, 0, first);
    object->changes = 0;
    GetCOREInterface()->DeleteNode(first);
    EXPECT_EQ(Block().GetINode(kSurface), nullptr);
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, PointerWithoutReferenceAtTheOwnNodeClosesNoLoop) {
    EXPECT_TRUE(Block().SetValue(kSurface, 0, node));
    EXPECT_EQ(Block().GetINode(kSurface), node);
}

TEST_F(ParamBlockTest, DeletingTheOwnerLetsGoOfItsNodes) {
    Block().SetValue(kTarget, 0, first);
    GetCOREInterface()->DeleteNode(node);
    for (ReferenceMaker* maker : first->Dependents()) EXPECT_NE(maker->SuperClassID(), PARAMETER_BLOCK2_CLASS_ID);
    EXPECT_EQ(tavrik_host::AllNodes(), (std::vector<INode*>{first, second}));
}

TEST_F(ParamBlockTest, MapDiesWithTheLastBlockThatHoldsIt) {
    int deaths = 0;
    ASSERT_TRUE(Block().SetValue(kMap, 0, static_cast<ReferenceTarget*>(new TestMap(&deaths))));
    EXPECT_EQ(deaths, 0);
    ASSERT_TRUE(Block().SetValue(kMap, 0, static_cast<ReferenceTarget*>(nullptr)));
    EXPECT_EQ(deaths, 1);
}

TEST_F(ParamBlockTest, OnlyMapsGoWhereMapsBelong) {
    EXPECT_FALSE(Block().SetValue(kMap, 0, static_cast<ReferenceTarget*>(first)));
    EXPECT_TRUE(Block().SetValue(kOther, 0, static_cast<ReferenceTarget*>(first)));
    Interval valid = FOREVER;
    ReferenceTarget* other = nullptr;
    ASSERT_TRUE(Block().GetValue(kOther, 0, other, valid));
    EXPECT_EQ(other, first);
}

TEST_F(ParamBlockTest, KeysBlendAlongALine) {
    ASSERT_TRUE(Keyed().SetKeys(kMult, {{100, 10.0f}, {200, 30.0f}}));
    EXPECT_EQ(Block().GetFloat(kMult, 100), 10.0f);
    EXPECT_EQ(Block().GetFloat(kMult, 125), 15.0f);
    EXPECT_EQ(Block().GetFloat(kMult, 200), 30.0f);
}

TEST_F(ParamBlockTest, ValuesOfTheEndKeysHoldOutside) {
    Keyed().SetKeys(kMult, {{100, 10.0f}, {200, 30.0f}});
    EXPECT_EQ(Block().GetFloat(kMult, TIME_NegInfinity), 10.0f);
    EXPECT_EQ(Block().GetFloat(kMult, TIME_PosInfinity), 30.0f);
}

TEST_F(ParamBlockTest, KeysAtTheEndsOfTimeStillBlend) {
    Keyed().SetKeys(kMult, {{TIME_NegInfinity, -3e38f}, {TIME_PosInfinity, 3e38f}});
    const float middle = Block().GetFloat(kMult, 0);
    EXPECT_TRUE(std::isfinite(middle));
    EXPECT_LT(std::fabs(middle), 1e30f);
}

TEST_F(ParamBlockTest, KeyedValueHoldsForAnInstant) {
    Keyed().SetKeys(kMult, {{100, 10.0f}});
    Interval valid = FOREVER;
    float v = 0.0f;
    ASSERT_TRUE(Block().GetValue(kMult, 150, v, valid));
    EXPECT_EQ(valid, Interval(150, 150));
}

TEST_F(ParamBlockTest, SettingKeysTellsTheOwner) {
    Keyed().SetKeys(kMult, {{100, 10.0f}});
    EXPECT_EQ(object->changes, 1);
}

TEST_F(ParamBlockTest, ConstantReplacesKeys) {
    Keyed().SetKeys(kMult, {{100, 10.0f}, {200, 30.0f}});
    ASSERT_TRUE(Block().SetValue(kMult, 150, 4.0f));
    EXPECT_TRUE(Keyed().Keys(kMult).empty());
    EXPECT_EQ(Block().GetFloat(kMult, 100), 4.0f);
}

TEST_F(ParamBlockTest, OnlyAnimatableNumbersTakeKeys) {
    EXPECT_FALSE(Keyed().SetKeys(kGravity, {{0, 1.0f}}));
    EXPECT_FALSE(Keyed().SetKeys(kKind, {{0, 1.0f}}));
    EXPECT_FALSE(Keyed().SetKeys(kMult, {{0, 1.0f}}, 1));
    EXPECT_TRUE(Keyed().Keys(kGravity).empty());
    EXPECT_EQ(object->changes, 0);
}

TEST_F(ParamBlockTest, KeysOutOfOrderAreRefused) {
    ASSERT_TRUE(Keyed().SetKeys(kMult, {{100, 10.0f}}));
    EXPECT_FALSE(Keyed().SetKeys(kMult, {{200, 1.0f}, {200, 2.0f}}));
    EXPECT_FALSE(Keyed().SetKeys(kMult, {{200, 1.0f}, {100, 2.0f}}));
    EXPECT_FALSE(Keyed().SetKeys(kMult, {{200, NAN}}));
    EXPECT_EQ(Keyed().Keys(kMult), (FloatKeys{{100, 10.0f}}));
}

/// Two clones of the block, with what `remap` knows when it is done.
class ParamBlockClone : public ParamBlockTest {
 public:
    ~ParamBlockClone() override {
        if (copy != nullptr) copy->MaybeAutoDelete();
    }
    /// @param before  whether the nodes are known to be cloned before the block is
    void Clone(bool mapFirst = false, bool before = false) {
        DefaultRemapDir remap;
        if (mapFirst && before) remap.AddEntry(first, second);
        copy = static_cast<ParamBlock*>(remap.CloneRef(object->block));
        if (mapFirst && !before) remap.AddEntry(first, second);
    }
    ParamBlock* copy = nullptr;
};

TEST_F(ParamBlockClone, KeepsValuesAndKeys) {
    Matrix3 slot(TRUE);
    slot.SetTrans(Point3(1, 2, 3));
    Block().SetValue(kSize, 0, 7.0f, 1);
    Block().SetValue(kKind, 0, 3);
    Block().SetValue(kSlot, 0, slot);
    Keyed().SetKeys(kMult, {{100, 10.0f}, {200, 30.0f}});
    Clone();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetDesc(), &Table());
    EXPECT_EQ(copy->GetFloat(kSize, 0, 1), 7.0f);
    EXPECT_EQ(copy->GetFloat(kSize, 0, 2), 20.0f);
    EXPECT_EQ(copy->GetInt(kKind), 3);
    EXPECT_EQ(copy->Keys(kMult), Keyed().Keys(kMult));
    Interval valid = FOREVER;
    Matrix3 copied;
    copy->GetValue(kSlot, 0, copied, valid);
    EXPECT_EQ(copied, slot);
}

TEST_F(ParamBlockClone, IsIndependentOfItsOriginal) {
    Clone();
    Block().SetValue(kGravity, 0, 1.0f);
    EXPECT_EQ(copy->GetFloat(kGravity), 980.0f);
}

TEST_F(ParamBlockClone, LinksToWhatIsNotClonedStay) {
    Block().SetValue(kTarget, 0, first);
    Block().SetValue(kSurface, 0, first);
    Clone();
    EXPECT_EQ(copy->GetINode(kTarget), first);
    EXPECT_EQ(copy->GetINode(kSurface), first);
    EXPECT_TRUE(RefersTo(first, copy));
}

TEST_F(ParamBlockClone, LinksLeadToNodesClonedBefore) {
    Block().SetValue(kTarget, 0, first);
    Block().SetValue(kSurface, 0, first);
    Clone(/*mapFirst=*/true, /*before=*/true);
    EXPECT_EQ(copy->GetINode(kTarget), second);
    EXPECT_EQ(copy->GetINode(kSurface), second);
    EXPECT_EQ(Block().GetINode(kTarget), first);
}

TEST_F(ParamBlockClone, LinksLeadToNodesClonedAfterwards) {
    Block().SetValue(kTarget, 0, first);
    Block().SetValue(kSurface, 0, first);
    Clone(/*mapFirst=*/true, /*before=*/false);
    EXPECT_EQ(copy->GetINode(kTarget), second);
    EXPECT_EQ(copy->GetINode(kSurface), second);
    EXPECT_FALSE(RefersTo(first, copy));
}

TEST_F(ParamBlockClone, GetsItsOwnCopyOfAMapThatOnlyItHolds) {
    auto* map = new TestMap;
    Block().SetValue(kMap, 0, static_cast<ReferenceTarget*>(map));
    Clone();
    Interval valid = FOREVER;
    ReferenceTarget* copied = nullptr;
    ASSERT_TRUE(copy->GetValue(kMap, 0, copied, valid));
    EXPECT_NE(copied, nullptr);
    EXPECT_NE(copied, map);
}

TEST_F(ParamBlockClone, SharesAMapThatOthersHoldToo) {
    auto* map = new TestMap;
    EditedObject other;
    Block().SetValue(kMap, 0, static_cast<ReferenceTarget*>(map));
    other.block->SetValue(kMap, 0, static_cast<ReferenceTarget*>(map));
    Clone();
    Interval valid = FOREVER;
    ReferenceTarget* copied = nullptr;
    ASSERT_TRUE(copy->GetValue(kMap, 0, copied, valid));
    EXPECT_EQ(copied, map);
}

TEST_F(ParamBlockClone, ClonedNodesPointAtEachOther) {
    Block().SetValue(kTarget, 0, first);
    Block().SetValue(kSurface, 0, second);
    const std::vector<INode*> originals{node, first};
    const std::vector<INode*> clones = tavrik_host::CloneNodes(originals);
    ASSERT_EQ(clones.size(), 2u);
    auto* cloned = dynamic_cast<EditedObject*>(clones[0]->GetObjectRef());
    ASSERT_NE(cloned, nullptr);
    ASSERT_NE(cloned, object);
    EXPECT_EQ(cloned->block->GetOwner(), cloned);
    EXPECT_EQ(cloned->block->GetINode(kTarget), clones[1]);
    EXPECT_EQ(cloned->block->GetINode(kSurface), second);
}

}  // namespace
