#include "rig/scene_walk.h"

#include <gtest/gtest.h>

#include "tests/rig/plain_scene.h"

namespace tavrik::test {
namespace {

TEST(WalkScene, VisitsANodeBeforeItsChildrenAndChildrenInOrder) {
    PlainScene scene;
    PlainNode& a = scene.Add("a", ObjectClass::None, {0, 0, 0});
    PlainNode& b = scene.Add("b", ObjectClass::None, {0, 0, 0});
    scene.Add("b1", ObjectClass::None, {0, 0, 0}, &b);
    PlainNode& a1 = scene.Add("a1", ObjectClass::None, {0, 0, 0}, &a);
    scene.Add("a2", ObjectClass::None, {0, 0, 0}, &a);
    scene.Add("a11", ObjectClass::None, {0, 0, 0}, &a1);
    std::string order;
    WalkScene(scene.Root(), [&](SceneNode& node) {
        order += static_cast<PlainNode&>(node).name + " ";
        return true;
    });
    EXPECT_EQ(order, "Root a a1 a11 a2 b b1 ");
}

TEST(WalkScene, StopsWhereTheVisitorSaysSo) {
    PlainScene scene;
    scene.Add("a", ObjectClass::None, {0, 0, 0});
    scene.Add("b", ObjectClass::None, {0, 0, 0});
    int visited = 0;
    WalkScene(scene.Root(), [&](SceneNode&) { return ++visited < 2; });
    EXPECT_EQ(visited, 2);
}

TEST(FindMasterNode, IsTheFirstWithThisRigInTheOrderOfTheScene) {
    PlainScene scene;
    PlainNode& group = scene.Add("Group", ObjectClass::None, {0, 0, 0});
    PlainNode& first = scene.AddMaster("First", {0, 0, 0}, {1, 1, 1});
    PlainNode& second = scene.AddMaster("Second", {0, 0, 0}, {1, 1, 1});
    EXPECT_EQ(FindMasterNode(scene.Root(), *first.rig), &first);
    EXPECT_EQ(FindMasterNode(scene.Root(), *second.rig), &second);
    PlainNode& instance = scene.Add("Instance", ObjectClass::Tavrik, {0, 0, 0}, &group);  // added last, met first
    instance.rig = second.rig;
    EXPECT_EQ(FindMasterNode(scene.Root(), *second.rig), &instance);
}

TEST(FindMasterNode, IsNoneForARigThatIsntInTheScene) {
    PlainScene scene;
    scene.AddMaster("Master", {0, 0, 0}, {1, 1, 1});
    const auto elsewhere = std::make_unique<CarRig>();
    EXPECT_EQ(FindMasterNode(scene.Root(), *elsewhere), nullptr);
}

}  // namespace
}  // namespace tavrik::test
