#include "host/scene_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "host/scene_parse.h"
#include "host/sdk/desktop.h"
#include "host/shape.h"
#include "rig/recording_bytes.h"
#include "tests/host/scene_fixture.h"
#include "tests/host/temp_folder.h"

namespace tavrik_host::test {
namespace {

class SceneFile : public testing::Test {
 protected:
    void SetUp() override { LoadSceneTestPlugin(); }
    void TearDown() override { ResetScene(); }
};

INode* NodeCalled(const std::wstring& name) {
    for (INode* node : AllNodes()) {
        if (node->GetName() == name) return node;
    }
    return nullptr;
}

TEST_F(SceneFile, IsTheSameAfterLoadingAndSavingAgain) {
    const std::string first = SavedScene(MakeRichScene());
    ResetScene();
    const std::string second = SavedScene(LoadedScene(first));
    EXPECT_EQ(JsonOf(first).dump(1), JsonOf(second).dump(1));
    EXPECT_TRUE(first == second);
}

TEST_F(SceneFile, IsTheSameWhenSavedTwice) {
    const SceneDocument document = MakeRichScene();
    EXPECT_TRUE(SavedScene(document) == SavedScene(document));
}

TEST_F(SceneFile, BringsBackTheTimeline) {
    LoadedScene(SavedScene(MakeRichScene()));
    EXPECT_EQ(GetTicksPerFrame(), 200);
    EXPECT_TRUE(GetCOREInterface()->GetAnimRange() == Interval(-200, 4000));
    EXPECT_EQ(GetCOREInterface()->GetTime(), 400);
    EXPECT_EQ(tavrik::TheDesktop().seed, 0xfedcba9876543210u);
}

TEST_F(SceneFile, BringsBackParametersToTheBit) {
    const std::string bytes = SavedScene(MakeRichScene());
    LoadedScene(bytes);
    INode* const node = NodeCalled(L"M\u00fcller's car");
    ASSERT_NE(node, nullptr);
    ParamBlock& block = BlockOf(*node->GetObjectRef());
    EXPECT_EQ(block.GetFloat(kSize), 0.1f);
    EXPECT_EQ(block.GetFloat(kSizes, 0, 0), 20.0f);
    EXPECT_EQ(block.GetFloat(kSizes, 0, 1), 3.5f);
    EXPECT_EQ(block.GetInt(kKey), 32768);
    EXPECT_EQ(block.GetInt(kSteps), 7);
    EXPECT_EQ(block.GetINode(kFriend), NodeCalled(L""));
    EXPECT_EQ(block.GetINode(kPointer), node);
    EXPECT_EQ(block.Keys(kPush), (FloatKeys{{0, -1.5f}, {800, 0.1f}}));
    Matrix3 frame;
    Interval valid = FOREVER;
    ASSERT_TRUE(block.GetValue(kFrame, 0, frame, valid));
    EXPECT_EQ(frame.GetRow(0).y, 0.8f);
    EXPECT_EQ(frame.GetRow(3).z, 1e-30f);
    EXPECT_TRUE(std::signbit(frame.GetRow(3).y));
    EXPECT_EQ(SaveChunks(*node->GetObjectRef()), (std::vector<Chunk>{{20, "some bytes of its own"}}));
}

TEST_F(SceneFile, KeepsAFrameThatWasNeverSetUnset) {
    ResetScene();
    CreateNode(static_cast<Object*>(MakeThing(kThingClass, HELPER_CLASS_ID)), L"a");
    LoadedScene(SavedScene({}));
    Matrix3 frame(TRUE);
    Interval valid = FOREVER;
    ASSERT_TRUE(BlockOf(*AllNodes()[0]->GetObjectRef()).GetValue(kFrame, 0, frame, valid));
    EXPECT_TRUE(std::isnan(frame.GetRow(0).x));
}

TEST_F(SceneFile, LetsNodesShareTheirObject) {
    LoadedScene(SavedScene(MakeRichScene()));
    INode* const node = NodeCalled(L"M\u00fcller's car");
    ASSERT_EQ(node->NumberOfChildren(), 1);
    EXPECT_EQ(node->GetChildNode(0)->GetObjectRef(), node->GetObjectRef());
    EXPECT_EQ(node->GetChildNode(0)->GetWireColor(), 0x123456u);
}

TEST_F(SceneFile, KeepsControllersWithinControllers) {
    LoadedScene(SavedScene(MakeRichScene()));
    Control* const outer = NodeCalled(L"ground")->GetTMController();
    ASSERT_EQ(outer->ClassID(), kWrapperClass);
    EXPECT_NE(dynamic_cast<PrsControl*>(outer->GetReference(1)), nullptr);
}

TEST_F(SceneFile, GivesNoHandleTwice) {
    const SceneDocument document = MakeRichScene();
    const ULONG next = NextHandle();
    const std::string bytes = SavedScene(document);
    SetNextHandle(1000);
    LoadedScene(bytes);
    EXPECT_EQ(NextHandle(), next);
}

TEST_F(SceneFile, RunsTheCallbacksOfItsObjectsOnce) {
    const std::string bytes = SavedScene(MakeRichScene());
    const int before = PostLoadCalls();
    LoadedScene(bytes);
    EXPECT_EQ(PostLoadCalls(), before + 1);
}

TEST_F(SceneFile, NamesNodesInLettersAndDigitsWithoutRepeating) {
    const SceneJson json = JsonOf(SavedScene(MakeRichScene()));
    std::vector<std::string> names;
    for (const SceneJson& node : json["nodes"]) names.push_back(node["name"]);
    EXPECT_EQ(names, (std::vector<std::string>{"ground", "M_ller_s_car", "M_ller_s_car_2", "node"}));
}

TEST_F(SceneFile, DoesNotRequireTheExtension) {
    const SceneJson json = JsonOf(SavedScene(MakeRichScene()));
    EXPECT_EQ(json["extensionsUsed"], SceneJson::array({"NORVANE_tavrik"}));
    EXPECT_FALSE(json.contains("extensionsRequired"));
}

TEST_F(SceneFile, AnimatesWhatMovesWithTimesFromZero) {
    const SceneJson json = JsonOf(SavedScene(MakeRichScene()));
    ASSERT_EQ(json["animations"].size(), 1u);
    EXPECT_EQ(json["animations"][0]["channels"].size(), 2u);
    const SceneJson& sampler = json["animations"][0]["samplers"][0];
    const SceneJson& times = json["accessors"][sampler["input"].get<std::size_t>()];
    EXPECT_EQ(times["count"], 4);
    EXPECT_EQ(times["min"][0], 0.0);
    EXPECT_EQ(times["max"][0], 1.0);
    EXPECT_EQ(sampler["interpolation"], "LINEAR");
    for (const SceneJson& node : json["nodes"]) EXPECT_FALSE(node.contains("matrix"));
    EXPECT_EQ(json["scenes"][0]["extras"]["frameRate"], 24.0);
}

TEST_F(SceneFile, WritesALeftHandedFrameWithANegativeScale) {
    ResetScene();
    Matrix3 mirror(TRUE);
    mirror.SetRow(2, Point3(0, 0, -1));
    dynamic_cast<PrsControl&>(*CreateNode(nullptr, L"a")->GetTMController()).SetLocal(mirror);
    EXPECT_EQ(JsonOf(SavedScene({}))["nodes"][0]["scale"], SceneJson::array({1.0, -1.0, 1.0}));
}

TEST_F(SceneFile, WithoutTheExtensionIsAFilm) {
    const SceneDocument document = MakeRichScene();
    std::string bytes, problem;
    ASSERT_TRUE(MakeFilmFile(document, BakedKeys::EveryFrame, bytes, problem)) << problem;
    const SceneJson json = JsonOf(bytes);
    EXPECT_EQ(json.dump().find("NORVANE"), std::string::npos);
    EXPECT_EQ(json["nodes"].size(), 4u);
    EXPECT_EQ(json["accessors"][json["animations"][0]["samplers"][0]["input"].get<std::size_t>()]["count"], 22);
}

TEST_F(SceneFile, FindsTheTicksOfRecordings) {
    ResetScene();
    auto* const master = static_cast<Object*>(MakeThing(kMasterClass, HELPER_CLASS_ID));
    CreateNode(master, L"car");
    const auto motion = std::make_unique<tavrik::RecordedMotion>();
    const auto body = std::make_unique<tavrik::RigidBody>();
    motion->Init(0, *body, {});
    for (const int tick : {0, 5, 11}) motion->Store(tick, *body, {}, {}, {});
    const Chunk chunk{20, tavrik::SaveRecording(*motion)};
    SceneLoad load;
    ASSERT_TRUE(load.LoadChunks(*master, {&chunk, 1}));
    EXPECT_EQ(RecordedTicks(), (std::vector<TimeValue>{0, 5, 11}));
    LoadedScene(SavedScene({}));
    EXPECT_EQ(SaveChunks(*AllNodes()[0]->GetObjectRef()), (std::vector<Chunk>{chunk}));
}

TEST_F(SceneFile, RefusesToWriteWhatItWouldNotRead) {
    const SceneDocument document = MakeRichScene();
    BlockOf(*NodeCalled(L"M\u00fcller's car")->GetObjectRef()).SetValue(kSteps, 0, 1);
    std::string bytes = "stays", problem;
    EXPECT_FALSE(MakeSceneFile(document, bytes, problem));
    EXPECT_EQ(problem, "\"Steps\" of object 1 (TestThing) is 1, but goes from 2 to 100.");
}

TEST_F(SceneFile, TakesAnyNumberWhereTheDefaultLiesOutsideItsRange) {
    const SceneDocument document = MakeRichScene();
    BlockOf(*NodeCalled(L"M\u00fcller's car")->GetObjectRef()).SetValue(kKey, 0, 1024);
    LoadedScene(SavedScene(document));
    EXPECT_EQ(BlockOf(*NodeCalled(L"M\u00fcller's car")->GetObjectRef()).GetInt(kKey), 1024);
}

TEST_F(SceneFile, RefusesToWriteNumbersThatAreNotFinite) {
    ResetScene();
    Matrix3 frame(TRUE);
    frame.SetTrans(Point3(INFINITY, 0, 0));
    dynamic_cast<PrsControl&>(*CreateNode(nullptr, L"far")->GetTMController()).SetLocal(frame);
    std::string bytes, problem;
    EXPECT_FALSE(MakeSceneFile({}, bytes, problem));
    EXPECT_EQ(problem, "node \"far\" has no finite place at tick 0.");
}

TEST_F(SceneFile, AddsNoMeshWithNumbersThatAreNotFinite) {
    ResetScene();
    tavrik::ShapePart part;
    tavrik::AddBlock(part, {{0, 0, 0}, {1, 1, INFINITY}});
    SceneDocument document;
    EXPECT_EQ(AddMeshNode(document, {&part, 1}, "a"), nullptr);
    EXPECT_TRUE(AllNodes().empty());
}

TEST_F(SceneFile, GivesAddedMeshesTheVerticesThatLoadingGives) {
    const SceneDocument document = MakeRichScene();
    const auto vertices = [] {
        const Mesh& mesh = dynamic_cast<TriObject&>(*NodeCalled(L"ground")->GetObjectRef()).mesh;
        return std::vector<Point3>(mesh.verts, mesh.verts + mesh.numVerts);
    };
    const std::vector<Point3> before = vertices();
    EXPECT_EQ(before.size(), 24u);
    LoadedScene(SavedScene(document));
    EXPECT_EQ(vertices(), before);
}

TEST_F(SceneFile, DrawsMeshesThatNoFileHasDrawn) {
    ResetScene();
    TriObject* const object = CreateNewTriObject();
    object->mesh.setNumVerts(3);
    object->mesh.setNumFaces(1);
    object->mesh.setVert(0, Point3(0, 0, 0));
    object->mesh.setVert(1, Point3(100, 0, 0));
    object->mesh.setVert(2, Point3(0, 100, 0));
    object->mesh.faces[0].setVerts(0, 1, 2);
    CreateNode(object, L"a");
    const std::string first = SavedScene({});
    EXPECT_TRUE(SavedScene(LoadedScene(first)) == first);
    EXPECT_EQ(dynamic_cast<TriObject&>(*AllNodes()[0]->GetObjectRef()).mesh.verts[2], Point3(0, 100, 0));
}

TEST_F(SceneFile, ComesAndGoesAsTextToo) {
    const tavrik::test::TempFolder folder;
    const std::string bytes = SavedScene(MakeRichScene());
    std::string problem;
    ASSERT_TRUE(WriteSceneFile(folder / "a.gltf", bytes, problem)) << problem;
    ASSERT_TRUE(WriteSceneFile(folder / "b.GLB", bytes, problem)) << problem;
    SceneDocument document;
    ASSERT_TRUE(LoadScene(folder / "a.gltf", document, problem)) << problem;
    EXPECT_TRUE(SavedScene(document) == bytes);
    EXPECT_TRUE(tavrik::test::FileBytes(folder / "b.GLB") == bytes);
    EXPECT_FALSE(WriteSceneFile(folder / "c.obj", bytes, problem));
    EXPECT_EQ(problem, (folder / "c.obj").string() + ": scenes are written as .glb or .gltf.");
    EXPECT_EQ(folder.List(), "a.gltf b.GLB");
}

TEST_F(SceneFile, ComesBackFromDeepBelow) {
    constexpr int kDepth = 1'000;
    const std::string saved = SavedScene(LoadedScene(ChainFile(kDepth), "a.gltf"));
    EXPECT_EQ(JsonOf(saved)["nodes"].size(), std::size_t(kDepth));
    EXPECT_TRUE(SavedScene(LoadedScene(saved)) == saved);
}

}  // namespace
}  // namespace tavrik_host::test
