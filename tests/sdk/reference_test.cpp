#include <gtest/gtest.h>

#include "tests/sdk/test_target.h"

namespace tavrik_host::test {
namespace {

/// Deletes what it made, in case nobody else did.
class References : public ::testing::Test {
 protected:
    void TearDown() override { EXPECT_EQ(TestTarget::living, 0) << "a target was left over"; }
};

TEST_F(References, TargetKnowsItsDependentsOncePerReference) {
    TestTarget maker;
    auto* const target = new TestTarget;
    maker.ReplaceReference(0, target);
    maker.ReplaceReference(2, target);

    EXPECT_EQ(target->Dependents(), (std::vector<ReferenceMaker*>{&maker, &maker}));
}

TEST_F(References, TargetThatLosesItsLastDependentIsDeleted) {
    TestTarget first, second;
    auto* const target = new TestTarget;
    first.ReplaceReference(0, target);
    second.ReplaceReference(0, target);

    first.DeleteReference(0);
    EXPECT_EQ(TestTarget::living, 3);
    second.DeleteReference(0);
    EXPECT_EQ(TestTarget::living, 2);
    EXPECT_EQ(second.targets[0], nullptr);
}

TEST_F(References, ReplacedTargetLivesOnWhereTheCallerSaysSo) {
    TestTarget maker;
    auto* const target = new TestTarget;
    maker.ReplaceReference(0, target);

    maker.ReplaceReference(0, nullptr, FALSE);

    EXPECT_EQ(TestTarget::living, 2);
    EXPECT_EQ(target->HasDependents(), FALSE);
    target->DeleteMe();
}

TEST_F(References, NewTargetMayHangOnTheOneThatItReplaces) {
    TestTarget maker;
    auto* const outer = new TestTarget;
    auto* const inner = new TestTarget;
    outer->ReplaceReference(0, inner);
    maker.ReplaceReference(0, outer);

    maker.ReplaceReference(0, inner);

    EXPECT_EQ(TestTarget::living, 2);
    EXPECT_EQ(inner->Dependents(), std::vector<ReferenceMaker*>{&maker});
}

TEST_F(References, MakerThatGoesTakesItsTargetsWithIt) {
    {
        TestTarget maker;
        auto* const shared = new TestTarget;
        auto* const middle = new TestTarget;
        middle->ReplaceReference(0, shared);
        maker.ReplaceReference(0, shared);
        maker.ReplaceReference(1, middle);
        maker.ReplaceReference(2, middle);
    }
    EXPECT_EQ(TestTarget::living, 0);
}

TEST_F(References, ReferenceToItselfIsRefused) {
    TestTarget target;
    EXPECT_EQ(target.ReplaceReference(0, &target), REF_FAIL);
    EXPECT_EQ(target.targets[0], nullptr);
    EXPECT_EQ(target.HasDependents(), FALSE);
}

TEST_F(References, LoopOverSeveralTargetsIsRefusedAndChangesNothing) {
    TestTarget top;
    auto* const middle = new TestTarget;
    auto* const bottom = new TestTarget;
    auto* const leaf = new TestTarget;
    top.ReplaceReference(0, middle);
    middle->ReplaceReference(3, bottom);
    bottom->ReplaceReference(1, leaf);

    EXPECT_EQ(bottom->ReplaceReference(1, &top), REF_FAIL);

    EXPECT_EQ(bottom->targets[1], leaf);
    EXPECT_EQ(leaf->Dependents(), std::vector<ReferenceMaker*>{bottom});
    EXPECT_EQ(top.HasDependents(), FALSE);
}

TEST_F(References, TwoWaysToOneTargetAreNoLoop) {
    TestTarget top;
    auto* const left = new TestTarget;
    auto* const right = new TestTarget;
    auto* const shared = new TestTarget;
    top.ReplaceReference(0, left);
    top.ReplaceReference(1, right);
    EXPECT_EQ(left->ReplaceReference(0, shared), REF_SUCCEED);
    EXPECT_EQ(right->ReplaceReference(0, shared), REF_SUCCEED);
}

TEST_F(References, ChangeReachesDependentsOfDependents) {
    TestTarget top;
    auto* const middle = new TestTarget;
    auto* const bottom = new TestTarget;
    top.ReplaceReference(0, middle);
    middle->ReplaceReference(0, bottom);

    bottom->Change();

    EXPECT_EQ(middle->heard, (std::vector<TestTarget::Heard>{{bottom, REFMSG_CHANGE}}));
    EXPECT_EQ(top.heard, (std::vector<TestTarget::Heard>{{middle, REFMSG_CHANGE}}));
}

TEST_F(References, MessageThatIsNotToSpreadStopsAtTheFirst) {
    TestTarget top;
    auto* const middle = new TestTarget;
    auto* const bottom = new TestTarget;
    top.ReplaceReference(0, middle);
    middle->ReplaceReference(0, bottom);

    bottom->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, FALSE);

    EXPECT_EQ(middle->heard.size(), 1u);
    EXPECT_TRUE(top.heard.empty());
}

TEST_F(References, DependentThatAnswersStopKeepsTheMessageFromItsOwn) {
    TestTarget top;
    auto* const middle = new TestTarget;
    auto* const bottom = new TestTarget;
    top.ReplaceReference(0, middle);
    top.ReplaceReference(1, bottom);
    middle->ReplaceReference(0, bottom);
    middle->answer = [](RefTargetHandle, RefMessage) { return REF_STOP; };

    bottom->Change();

    EXPECT_EQ(top.heard, (std::vector<TestTarget::Heard>{{bottom, REFMSG_CHANGE}}));
}

TEST_F(References, ManyWaysToOneTargetDoNotMultiplyMessages) {
    // Twenty storeys of two: a million ways, but each only has two targets to hear from.
    std::vector<TestTarget*> lower = {new TestTarget};
    TestTarget* const ground = lower[0];
    for (int storey = 0; storey < 20; ++storey) {
        std::vector<TestTarget*> upper = {new TestTarget, new TestTarget};
        for (TestTarget* maker : upper) {
            for (int i = 0; i < int(lower.size()); ++i) maker->ReplaceReference(i, lower[std::size_t(i)]);
        }
        lower = upper;
    }
    TestTarget top;
    top.ReplaceReference(0, lower[0]);
    top.ReplaceReference(1, lower[1]);

    ground->Change();

    EXPECT_EQ(top.heard.size(), 2u);
}

TEST_F(References, DeletedTargetClearsTheReferencesToItAfterTellingOfItsEnd) {
    TestTarget maker, beyond;
    beyond.ReplaceReference(0, &maker);
    auto* const target = new TestTarget;
    maker.ReplaceReference(1, target);
    maker.ReplaceReference(3, target);
    bool stillThere = false;
    maker.answer = [&](RefTargetHandle, RefMessage) {
        stillThere = maker.targets[1] == target;
        return REF_SUCCEED;
    };

    target->DeleteMe();

    EXPECT_TRUE(stillThere);
    EXPECT_EQ(maker.heard, (std::vector<TestTarget::Heard>{{target, REFMSG_TARGET_DELETED}}));
    EXPECT_EQ(maker.targets[1], nullptr);
    EXPECT_EQ(maker.targets[3], nullptr);
    EXPECT_EQ(beyond.heard, (std::vector<TestTarget::Heard>{{&maker, REFMSG_CHANGE}}));
    EXPECT_EQ(TestTarget::living, 2);
    beyond.ReplaceReference(0, nullptr, FALSE);
}

TEST_F(References, PlainDeleteTellsTheDependentsToo) {
    TestTarget maker;
    auto* const target = new TestTarget;
    maker.ReplaceReference(0, target);

    delete target;

    EXPECT_EQ(maker.Count(REFMSG_TARGET_DELETED), 1);
    EXPECT_EQ(maker.targets[0], nullptr);
}

TEST_F(References, DependentMayLetGoWhenItHearsOfTheEnd) {
    TestTarget maker;
    auto* const target = new TestTarget;
    maker.ReplaceReference(0, target);
    maker.answer = [&](RefTargetHandle, RefMessage) { return maker.DeleteReference(0); };

    target->DeleteMe();

    EXPECT_EQ(TestTarget::living, 1);
}

TEST_F(References, NobodyCanHoldOnToATargetThatIsBeingDeleted) {
    TestTarget maker;
    auto* const target = new TestTarget;
    maker.ReplaceReference(0, target);
    RefResult result = REF_SUCCEED;
    maker.answer = [&](RefTargetHandle dying, RefMessage) { return result = maker.ReplaceReference(2, dying); };

    target->DeleteMe();

    EXPECT_EQ(result, REF_FAIL);
    EXPECT_EQ(maker.targets[2], nullptr);
}

TEST_F(References, TargetMayBeDeletedInTheMidstOfItsOwnMessage) {
    TestTarget first, second;
    auto* const target = new TestTarget;
    first.ReplaceReference(0, target);
    second.ReplaceReference(0, target);
    first.answer = [&](RefTargetHandle, RefMessage message) {
        if (message == REFMSG_CHANGE) target->DeleteMe();
        return REF_SUCCEED;
    };

    target->Change();

    EXPECT_EQ(TestTarget::living, 2);
    EXPECT_EQ(second.Count(REFMSG_CHANGE), 0);
    EXPECT_EQ(second.Count(REFMSG_TARGET_DELETED), 1);
}

TEST_F(References, DependentThatIsDeletedInTheMidstOfAMessageIsNotCalled) {
    auto* const target = new TestTarget;
    TestTarget first;
    auto* const second = new TestTarget;
    first.ReplaceReference(0, target);
    second->ReplaceReference(0, target);
    first.answer = [&](RefTargetHandle, RefMessage) { return second->DeleteMe(); };

    target->Change();

    EXPECT_EQ(target->Dependents(), std::vector<ReferenceMaker*>{&first});
}

TEST_F(References, DependentThatLetsGoInTheMidstOfAMessageIsNotCalled) {
    auto* const target = new TestTarget;
    TestTarget first, second;
    first.ReplaceReference(0, target);
    second.ReplaceReference(0, target);
    first.answer = [&](RefTargetHandle, RefMessage) { return second.DeleteReference(0); };

    target->Change();

    EXPECT_TRUE(second.heard.empty());
}

TEST_F(References, LastDependentMayLetGoInTheMidstOfAMessage) {
    auto* const target = new TestTarget;
    TestTarget maker;
    maker.ReplaceReference(0, target);
    maker.answer = [&](RefTargetHandle, RefMessage) { return maker.DeleteReference(0); };

    target->Change();

    EXPECT_EQ(TestTarget::living, 1);
}

TEST_F(References, ClonesOfThingsClonedTogetherReferToEachOther) {
    TestTarget original;
    auto* const part = new TestTarget;
    auto* const user = new TestTarget;
    auto* const outside = new TestTarget;
    original.ReplaceReference(0, user);
    original.ReplaceReference(1, part);
    user->ReplaceReference(2, part);  // cloned before the part is
    user->ReplaceReference(3, outside);
    TestTarget holder;
    {
        DefaultRemapDir remap;
        holder.ReplaceReference(0, remap.CloneRef(&original));
        EXPECT_EQ(remap.CloneRef(&original), holder.targets[0]);
    }
    const TestTarget* const clone = holder.At(0);
    ASSERT_NE(clone, &original);
    EXPECT_NE(clone->At(1), part);
    EXPECT_EQ(clone->At(0)->At(2), clone->At(1));
    EXPECT_EQ(clone->At(0)->At(3), outside);
}

TEST_F(References, WithoutMendingEarlyLinksStayWithTheOriginal) {
    TestTarget original;
    auto* const part = new TestTarget;
    auto* const user = new TestTarget;
    original.ReplaceReference(0, user);
    original.ReplaceReference(1, part);
    user->ReplaceReference(2, part);
    TestTarget holder;
    {
        DefaultRemapDir remap(TRUE);
        holder.ReplaceReference(0, remap.CloneRef(&original));
    }
    EXPECT_EQ(holder.At(0)->At(0)->At(2), part);
}

TEST_F(References, CloneMayBeDeletedBeforeLinksAreMended) {
    TestTarget holder;
    auto* const original = new TestTarget;
    auto* const part = new TestTarget;
    original->ReplaceReference(0, part);
    holder.ReplaceReference(0, original);
    {
        DefaultRemapDir remap;
        remap.CloneRef(original)->DeleteMe();
        EXPECT_EQ(remap.FindMapping(original), nullptr);
        EXPECT_EQ(remap.FindMapping(part), nullptr);
        EXPECT_EQ(TestTarget::living, 3);
    }
    EXPECT_EQ(holder.At(0)->At(0), part);
}

TEST_F(References, CloneOfNothingIsNothing) {
    DefaultRemapDir remap;
    EXPECT_EQ(remap.CloneRef(nullptr), nullptr);
    EXPECT_EQ(remap.FindMapping(nullptr), nullptr);
}

}  // namespace
}  // namespace tavrik_host::test
