#include <gtest/gtest.h>

#include "host/sdk/node_watch.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "tests/sdk/test_target.h"

namespace tavrik_host::test {
namespace {

Matrix3 At(float x, float y, float z) {
    Matrix3 m(TRUE);
    m.SetTrans(Point3(x, y, z));
    return m;
}

/// A scene that is empty before and after, with nothing left alive.
class Nodes : public ::testing::Test {
 protected:
    void SetUp() override { ResetScene(); }
    void TearDown() override {
        ResetScene();
        EXPECT_TRUE(AllNodes().empty());
        EXPECT_EQ(TestObject::living, 0);
    }
    Interface* host = GetCOREInterface();
};

TEST_F(Nodes, NewOneIsNamedAfterItsObjectWithANumberOfItsOwn) {
    EXPECT_STREQ(host->CreateObjectNode(new TestObject)->GetName(), L"Test001");
    CreateNode(nullptr, L"Test002");
    EXPECT_STREQ(host->CreateObjectNode(new TestObject)->GetName(), L"Test003");
}

TEST_F(Nodes, NewOneStandsUnderTheRootWithTheDefaultController) {
    INode* const node = host->CreateObjectNode(new TestObject);
    EXPECT_EQ(node->GetParentNode(), host->GetRootNode());
    EXPECT_EQ(host->GetRootNode()->GetChildNode(0), node);
    EXPECT_EQ(node->GetTMController()->ClassID(), Class_ID(PRS_CONTROL_CLASS_ID, 0));
    EXPECT_TRUE(SameBits(node->GetNodeTM(0), Matrix3(TRUE)));
}

TEST_F(Nodes, AreFoundByTheirHandles) {
    INode* const node = CreateNode(nullptr, L"a");
    INode* const chosen = CreateNode(nullptr, L"b", nullptr, 70000);
    EXPECT_EQ(host->GetINodeByHandle(node->GetHandle()), node);
    EXPECT_EQ(host->GetINodeByHandle(70000), chosen);
    EXPECT_EQ(host->GetINodeByHandle(70001), nullptr);
    EXPECT_EQ(host->GetINodeByHandle(0), nullptr);
}

TEST_F(Nodes, TakenHandleIsRefused) {
    CreateNode(nullptr, L"a", nullptr, 70000);
    EXPECT_EQ(CreateNode(nullptr, L"b", nullptr, 70000), nullptr);
    EXPECT_EQ(AllNodes().size(), 1u);
}

TEST_F(Nodes, HandleOfADeletedOneIsNotGivenAgain) {
    INode* const node = CreateNode(nullptr, L"a");
    const ULONG handle = node->GetHandle();
    host->DeleteNode(node);
    EXPECT_GT(CreateNode(nullptr, L"b")->GetHandle(), handle);
    EXPECT_EQ(host->GetINodeByHandle(handle), nullptr);
}

TEST_F(Nodes, NextHandleLeavesOutThoseThatAreTaken) {
    const ULONG first = NextHandle() + 10;
    CreateNode(nullptr, L"a", nullptr, first);
    CreateNode(nullptr, L"b", nullptr, first + 1);
    EXPECT_EQ(NextHandle(), first + 2);
    SetNextHandle(first);
    EXPECT_EQ(CreateNode(nullptr, L"c")->GetHandle(), first + 2);
    EXPECT_EQ(NextHandle(), first + 3);
}

TEST_F(Nodes, AreListedEachBeforeItsChildren) {
    INode* const a = CreateNode(nullptr, L"a");
    INode* const b = CreateNode(nullptr, L"b");
    INode* const underA = CreateNode(nullptr, L"underA", a);
    INode* const deepest = CreateNode(nullptr, L"deepest", underA);
    EXPECT_EQ(AllNodes(), (std::vector<INode*>{a, underA, deepest, b}));
}

TEST_F(Nodes, ChildStandsInTheFrameOfItsParent) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const child = CreateNode(nullptr, L"child", parent);
    Matrix3 turned(TRUE);
    turned.RotateY(1.57079633f);
    turned.SetTrans(Point3(100, 0, 0));
    static_cast<PrsControl*>(parent->GetTMController())->SetLocal(turned);
    static_cast<PrsControl*>(child->GetTMController())->SetLocal(At(10, 0, 0));

    EXPECT_TRUE(SameBits(child->GetNodeTM(0), At(10, 0, 0) * turned));
    EXPECT_NEAR(child->GetNodeTM(0).GetTrans().z, -10.0f, 1e-5f);
}

TEST_F(Nodes, FrameThatIsSetIsTakenFromTheWorldToTheParent) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const child = CreateNode(nullptr, L"child", parent);
    static_cast<PrsControl*>(parent->GetTMController())->SetLocal(At(100, 0, 0));
    Matrix3 place = At(130, 5, 0);

    child->SetNodeTM(0, place);

    EXPECT_EQ(static_cast<PrsControl*>(child->GetTMController())->Local().GetTrans(), Point3(30, 5, 0));
    EXPECT_EQ(child->GetNodeTM(0).GetTrans(), Point3(130, 5, 0));
}

TEST_F(Nodes, AttachedOneKeepsItsPlaceInTheWorld) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const node = CreateNode(nullptr, L"node");
    static_cast<PrsControl*>(parent->GetTMController())->SetLocal(At(100, 0, 0));
    static_cast<PrsControl*>(node->GetTMController())->SetLocal(At(1, 2, 3));

    EXPECT_NE(parent->AttachChild(node), 0);

    EXPECT_EQ(node->GetParentNode(), parent);
    EXPECT_EQ(host->GetRootNode()->NumberOfChildren(), 1);
    EXPECT_EQ(node->GetNodeTM(0).GetTrans(), Point3(1, 2, 3));
}

TEST_F(Nodes, AttachedOneMovesAlongWhereNobodyAsksItToStay) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const node = CreateNode(nullptr, L"node");
    static_cast<PrsControl*>(parent->GetTMController())->SetLocal(At(100, 0, 0));
    parent->AttachChild(node, 0);
    EXPECT_EQ(node->GetNodeTM(0).GetTrans(), Point3(100, 0, 0));
}

TEST_F(Nodes, ParentCannotBecomeAChildOfItsOwnGrandchild) {
    INode* const top = CreateNode(nullptr, L"top");
    INode* const middle = CreateNode(nullptr, L"middle", top);
    INode* const bottom = CreateNode(nullptr, L"bottom", middle);
    EXPECT_EQ(bottom->AttachChild(top), 0);
    EXPECT_EQ(top->GetParentNode(), host->GetRootNode());
    EXPECT_EQ(bottom->NumberOfChildren(), 0);
}

TEST_F(Nodes, OneWhoseObjectRefersToAnotherCannotBeItsParent) {
    auto* const object = new TestObject;
    INode* const node = host->CreateObjectNode(object);
    INode* const other = CreateNode(nullptr, L"other");
    ASSERT_EQ(object->ReplaceReference(0, other), REF_SUCCEED);
    EXPECT_EQ(node->AttachChild(other), 0);
    EXPECT_EQ(other->GetParentNode(), host->GetRootNode());
}

TEST_F(Nodes, ObjectCannotReferToItsOwnNode) {
    auto* const object = new TestObject;
    INode* const node = host->CreateObjectNode(object);
    EXPECT_EQ(object->ReplaceReference(0, node), REF_FAIL);
    EXPECT_EQ(object->Node(), nullptr);
}

TEST_F(Nodes, ChildrenOfADeletedOneGoToItsParentAndStayInPlace) {
    INode* const top = CreateNode(nullptr, L"top");
    INode* const middle = CreateNode(nullptr, L"middle", top);
    INode* const left = CreateNode(nullptr, L"left", middle);
    INode* const right = CreateNode(nullptr, L"right", middle);
    static_cast<PrsControl*>(middle->GetTMController())->SetLocal(At(100, 0, 0));
    static_cast<PrsControl*>(right->GetTMController())->SetLocal(At(7, 0, 0));

    host->DeleteNode(middle);

    EXPECT_EQ(AllNodes(), (std::vector<INode*>{top, left, right}));
    EXPECT_EQ(right->GetParentNode(), top);
    EXPECT_EQ(right->GetNodeTM(0).GetTrans(), Point3(107, 0, 0));
}

TEST_F(Nodes, DeletedOneTakesWhatHangsOnItAloneAlong) {
    auto* const shared = new TestObject;
    INode* const node = host->CreateObjectNode(shared);
    INode* const other = CreateNode(shared, L"instance");
    host->DeleteNode(node);
    EXPECT_EQ(TestObject::living, 1);
    host->DeleteNode(other);
    EXPECT_EQ(TestObject::living, 0);
}

TEST_F(Nodes, WhoeverRefersToADeletedOneLetsGo) {
    auto* const object = new TestObject;
    host->CreateObjectNode(object);
    INode* const target = CreateNode(nullptr, L"target");
    object->ReplaceReference(0, target);
    host->DeleteNode(target);
    EXPECT_EQ(object->Node(), nullptr);
}

struct Watcher final : NodeWatcher {
    void ForgetNode(INode* node) override {
        name = node->GetName();
        delete neighbour;
        neighbour = nullptr;
    }
    std::wstring name;
    Watcher* neighbour = nullptr;
};

TEST_F(Nodes, WatchersHearOfADeletedOneWhileItIsWhole) {
    Watcher watcher;
    host->DeleteNode(CreateNode(nullptr, L"target"));
    EXPECT_EQ(watcher.name, L"target");
}

TEST_F(Nodes, WatcherMayGoWhileAnotherIsTold) {
    Watcher first;
    first.neighbour = new Watcher;
    host->DeleteNode(CreateNode(nullptr, L"target"));
    EXPECT_EQ(first.neighbour, nullptr);
}

TEST_F(Nodes, DeletedOneIsNotSelectedAnyMore) {
    INode* const node = CreateNode(nullptr, L"a");
    INode* const other = CreateNode(nullptr, L"b");
    host->SelectNode(node);
    host->SelectNode(other, 0);
    EXPECT_EQ(host->GetSelNodeCount(), 2);
    EXPECT_NE(node->Selected(), 0);
    host->DeleteNode(node);
    ASSERT_EQ(host->GetSelNodeCount(), 1);
    EXPECT_EQ(host->GetSelNode(0), other);
}

TEST_F(Nodes, RootIsNeitherDeletedNorAttached) {
    INode* const node = CreateNode(nullptr, L"a");
    host->DeleteNode(host->GetRootNode());
    EXPECT_EQ(node->AttachChild(host->GetRootNode()), 0);
    EXPECT_EQ(AllNodes(), std::vector<INode*>{node});
}

TEST_F(Nodes, NewControllerIsToldToTheDependentsAndTheOldOneGoes) {
    INode* const node = CreateNode(nullptr, L"a");
    TestTarget dependent;
    dependent.ReplaceReference(0, node);

    EXPECT_TRUE(node->SetTMController(new PrsControl));
    EXPECT_FALSE(node->SetTMController(nullptr));

    EXPECT_EQ(dependent.Count(REFMSG_CONTROLREF_CHANGE), 1);
    dependent.DeleteReference(0);
}

TEST_F(Nodes, MoveOfAParentIsToldToThoseWhoDependOnTheChild) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const child = CreateNode(nullptr, L"child", parent);
    TestTarget dependent;
    dependent.ReplaceReference(0, child);
    Matrix3 place = At(1, 0, 0);
    parent->SetNodeTM(0, place);
    EXPECT_EQ(dependent.heard, (std::vector<TestTarget::Heard>{{child, REFMSG_CHANGE}}));
    dependent.DeleteReference(0);
}

TEST_F(Nodes, FrameHoldsForTheSpanThatAllAboveAgreeOn) {
    INode* const parent = CreateNode(nullptr, L"parent");
    INode* const child = CreateNode(nullptr, L"child", parent);
    Interval valid(0, 1000);
    child->GetNodeTM(50, &valid);
    EXPECT_EQ(valid, Interval(0, 1000));
    auto* const control = static_cast<PrsControl*>(parent->GetTMController());
    control->position.keys = {{0, Point3(0, 0, 0)}};
    control->KeysChanged();
    child->GetNodeTM(50, &valid);
    EXPECT_EQ(valid, Interval(50, 50));
}

TEST_F(Nodes, ResetBringsTimeRangeRateAndUnitBack) {
    host->SetTime(777);
    host->SetAnimRange(Interval(5, 6));
    SetTicksPerFrame(200);
    SetMetresPerUnit(2.0);
    EXPECT_EQ(GetMasterScale(5), 2.0);

    ResetScene();

    EXPECT_EQ(host->GetTime(), 0);
    EXPECT_EQ(host->GetAnimRange(), Interval(0, 16000));
    EXPECT_EQ(GetTicksPerFrame(), 160);
    EXPECT_EQ(MetresPerUnit(), 0.01);
}

TEST_F(Nodes, UnitsAreThoseOfTheScene) {
    EXPECT_EQ(GetMasterScale(4), 1.0);
    EXPECT_EQ(GetMasterScale(5), 0.01);
    EXPECT_EQ(GetMasterScale(6), 0.01 / 1000.0);
    EXPECT_NEAR(GetMasterScale(0), 1.0 / 2.54, 1e-15);
    EXPECT_EQ(GetMasterScale(7), -1.0);
    EXPECT_EQ(GetMasterScale(-1), -1.0);
}

TEST_F(Nodes, TimeIsSetWithOrWithoutARedraw) {
    const int before = RedrawCount();
    host->SetTime(160, FALSE);
    EXPECT_EQ(RedrawCount(), before);
    host->SetTime(320);
    EXPECT_EQ(RedrawCount(), before + 1);
    EXPECT_EQ(host->GetTime(), 320);
}

TEST_F(Nodes, ClonesReferToClonesInsideAndToOriginalsOutside) {
    auto* const inside = new TestObject;
    auto* const outside = new TestObject;
    INode* const a = host->CreateObjectNode(inside);
    INode* const b = host->CreateObjectNode(outside);
    INode* const target = CreateNode(nullptr, L"target");
    INode* const stays = CreateNode(nullptr, L"stays");
    inside->ReplaceReference(0, target);
    outside->ReplaceReference(0, stays);

    const std::vector<INode*> clones = CloneNodes(std::vector<INode*>{a, b, target});

    ASSERT_EQ(clones.size(), 3u);
    EXPECT_EQ(static_cast<TestObject*>(clones[0]->GetObjectRef())->Node(), clones[2]);
    EXPECT_EQ(static_cast<TestObject*>(clones[1]->GetObjectRef())->Node(), stays);
    EXPECT_EQ(inside->Node(), target);
    EXPECT_NE(clones[0]->GetHandle(), a->GetHandle());
    EXPECT_STRNE(clones[0]->GetName(), a->GetName());
}

TEST_F(Nodes, CloneOfAFamilyIsAFamilyInTheSamePlace) {
    INode* const top = CreateNode(nullptr, L"top");
    INode* const child = CreateNode(nullptr, L"child", top);
    static_cast<PrsControl*>(top->GetTMController())->SetLocal(At(100, 0, 0));
    static_cast<PrsControl*>(child->GetTMController())->SetLocal(At(1, 0, 0));
    child->SetWireColor(0x123456);

    const std::vector<INode*> clones = CloneNodes(std::vector<INode*>{child, top});  // children may come first

    EXPECT_EQ(clones[0]->GetParentNode(), clones[1]);
    EXPECT_EQ(clones[1]->GetParentNode(), host->GetRootNode());
    EXPECT_EQ(clones[0]->GetNodeTM(0).GetTrans(), Point3(101, 0, 0));
    EXPECT_NE(clones[0]->GetTMController(), child->GetTMController());
    EXPECT_EQ(clones[0]->GetWireColor(), 0x123456u);
}

TEST_F(Nodes, ObjectThatAnotherNodeUsesTooIsNotCloned) {
    auto* const shared = new TestObject;
    INode* const node = CreateNode(shared, L"a");
    CreateNode(shared, L"b");
    const std::vector<INode*> clones = CloneNodes(std::vector<INode*>{node});
    EXPECT_EQ(clones[0]->GetObjectRef(), shared);
}

TEST_F(Nodes, InstancesClonedTogetherStayInstancesOfOneObject) {
    auto* const shared = new TestObject;
    INode* const a = CreateNode(shared, L"a");
    INode* const b = CreateNode(shared, L"b");
    const std::vector<INode*> clones = CloneNodes(std::vector<INode*>{a, b});
    EXPECT_NE(clones[0]->GetObjectRef(), shared);
    EXPECT_EQ(clones[0]->GetObjectRef(), clones[1]->GetObjectRef());
}

}  // namespace
}  // namespace tavrik_host::test
