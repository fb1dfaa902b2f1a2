#include "tests/host/scene_fixture.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/gltf_container.h"
#include "host/sdk/desktop.h"
#include "host/shape.h"
#include "tests/host/mesh_bytes.h"

namespace tavrik_host::test {

void LoadSceneTestPlugin() {
    std::string problem;
    ASSERT_TRUE(LoadPlugin(SCENE_TEST_PLUGIN, problem)) << problem;
}

int PostLoadCalls() {
    void* const library = dlopen(SCENE_TEST_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    const auto calls = library == nullptr ? nullptr : reinterpret_cast<int (*)()>(dlsym(library, "TestCallbackCalls"));
    return calls == nullptr ? -1 : calls();
}

ReferenceTarget* MakeThing(Class_ID id, SClass_ID superClass) {
    return static_cast<ReferenceTarget*>(FindClass(superClass, id)->Create(FALSE));
}

ParamBlock& BlockOf(ReferenceTarget& thing) { return dynamic_cast<ParamBlock&>(*thing.GetReference(0)); }

SceneDocument MakeRichScene() {
    ResetScene();
    SetNextHandle(1);
    tavrik::TheDesktop().seed = 0xfedcba9876543210;
    SceneDocument document;
    SetTicksPerFrame(200);
    GetCOREInterface()->SetAnimRange(Interval(-200, 4000));
    GetCOREInterface()->SetTime(400, FALSE);
    tavrik::ShapePart part;
    part.material = {"ground", 0.3f, 0.4f, 0.5f, 0.0f, 0.9f, true};
    tavrik::AddBlock(part, {{-10.1f, -20.2f, -1.3f}, {10.3f, 20.4f, 0.1f}});
    INode* const ground = AddMeshNode(document, {&part, 1}, "ground");
    EXPECT_NE(ground, nullptr);

    auto* const thing = static_cast<Object*>(MakeThing(kThingClass, HELPER_CLASS_ID));
    INode* const node = CreateNode(thing, L"M\u00fcller's car", ground);
    INode* const other = CreateNode(thing, L"M\u00fcller's car", node);  // shares the object
    other->SetWireColor(0x123456);
    Matrix3 frame(TRUE);
    frame.SetRow(0, Point3(0.6f, 0.8f, 0.0f));
    frame.SetRow(1, Point3(-0.8f, 0.6f, 0.0f));
    frame.SetTrans(Point3(0.1f, -0.0f, 1e-30f));
    dynamic_cast<PrsControl&>(*other->GetTMController()).SetLocal(frame);

    auto& moving = dynamic_cast<PrsControl&>(*node->GetTMController());
    moving.position.keys = {{0, Point3(0, 0, 0)}, {4800, Point3(100, 50, 0.3f)}};
    moving.rotation.keys = {{100, {0, 0, 0, 1}}, {4000, {0, 0, 0.8f, 0.6f}}};
    moving.KeysChanged();

    auto* const wrapper = static_cast<Control*>(MakeThing(kWrapperClass, CTRL_MATRIX3_CLASS_ID));
    wrapper->ReplaceReference(1, ground->GetTMController());
    ground->SetTMController(wrapper);

    INode* const friendNode = CreateNode(nullptr, L"");
    ParamBlock& block = BlockOf(*thing);
    block.SetValue(kSize, 0, 0.1f);
    block.SetValue(kSizes, 0, 3.5f, 1);
    block.SetValue(kSteps, 0, 7);
    block.SetValue(kFriend, 0, friendNode);
    block.SetValue(kPointer, 0, node);
    block.SetValue(kPattern, 0, MakeThing(kMapClass, TEXMAP_CLASS_ID));
    block.SetValue(kFrame, 0, frame);
    EXPECT_TRUE(block.SetKeys(kPush, {{0, -1.5f}, {800, 0.1f}}));
    SceneLoad load;
    const Chunk chunk{20, "some bytes of its own"};
    EXPECT_TRUE(load.LoadChunks(*thing, {&chunk, 1}));
    return document;
}

std::string SavedScene(const SceneDocument& document) {
    std::string bytes, problem;
    EXPECT_TRUE(MakeSceneFile(document, bytes, problem)) << problem;
    return bytes;
}

SceneDocument LoadedScene(const std::string& bytes, const std::string& name) {
    SceneDocument document;
    std::string problem;
    EXPECT_TRUE(LoadSceneBytes(name, bytes, document, problem)) << problem;
    return document;
}

SceneJson JsonOf(const std::string& glb) {
    tavrik::GltfContainer container;
    std::string problem;
    EXPECT_TRUE(tavrik::SplitGltf(glb, container, problem)) << problem;
    return SceneJson::parse(container.text);
}

std::string BinaryOf(const std::string& glb) {
    tavrik::GltfContainer container;
    std::string problem;
    EXPECT_TRUE(tavrik::SplitGltf(glb, container, problem)) << problem;
    return std::string(container.binary);
}

std::string Edited(const std::string& glb, const std::function<void(SceneJson&)>& edit) {
    SceneJson json = JsonOf(glb);
    // Somebody did it on purpose.
    if (json.contains("extensions") && json["extensions"].contains("NORVANE_tavrik"))
        json["extensions"]["NORVANE_tavrik"].erase("fileCrc32");
    edit(json);
    return tavrik::test::Glb(json.dump(), BinaryOf(glb));
}

std::string SceneRefusal(const std::string& bytes, const std::string& name) {
    ResetScene();
    SetNextHandle(7);
    CreateNode(nullptr, L"stays");
    SceneDocument document;
    document.binary = "stays";
    std::string problem;
    EXPECT_FALSE(LoadSceneBytes(name, bytes, document, problem));
    EXPECT_EQ(document.binary, "stays");
    const std::vector<INode*> nodes = AllNodes();
    EXPECT_TRUE(nodes.size() == 1 && nodes[0]->GetHandle() == 7 && NextHandle() == 8) << "the scene has changed";
    EXPECT_TRUE(problem.starts_with(name + ": ") && problem.ends_with(".")) << problem;
    return problem.substr(std::min(problem.size(), name.size() + 2));
}

std::string ChainFile(int length) {
    SceneJson nodes = SceneJson::array();
    for (int i = 0; i < length; ++i) {
        nodes.push_back(i + 1 < length ? SceneJson{{"children", SceneJson::array({i + 1})}} : SceneJson::object());
    }
    return SceneJson{{"asset", {{"version", "2.0"}}}, {"nodes", nodes}}.dump();
}

}  // namespace tavrik_host::test
