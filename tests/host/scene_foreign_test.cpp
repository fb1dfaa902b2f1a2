#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "host/sdk/desktop.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/scene_fixture.h"
#include "tests/host/temp_folder.h"
#include "tests/support/test_random.h"

namespace tavrik_host::test {
namespace {

using tavrik::test::DataFolder;
using tavrik::test::FileBytes;
using tavrik::test::Floats;
using tavrik::test::Glb;
using tavrik::test::GlbTriangle;
using tavrik::test::Shorts;
using tavrik::test::TempFolder;

class ForeignScene : public testing::Test {
 protected:
    void SetUp() override { LoadSceneTestPlugin(); }
    void TearDown() override { ResetScene(); }
};

const std::string kPicture = std::string("\x89PNG") + "picture.";

/// A model with all that viewers know and the host doesn't: a skin, a camera, a texture, morph targets, an extension with a
/// buffer view, and data of animations between all that.
std::string Model() {
    const std::string times = Floats({0, 1}), turns = Floats({0, 0, 0, 1, 0, 0.6f, 0, 0.8f}),
                      moves = Floats({0, 0, 0, 1, 2, 3});
    const std::string corners = Floats({0, 0, 0, 1, 0, 0, 0, 0, 1}), weights = Floats({0, 1});
    const std::string bind = Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    // Views: 0 times, 1 turns, 2 moves, 3 corners, 4 weights, 5 bind, 6 picture
    std::string binary, views;
    for (const std::string* data : {&times, &turns, &moves, &corners, &weights, &bind, &kPicture}) {
        views += (views.empty() ? "" : ",") + std::string(R"({"buffer":0,"byteOffset":)") + std::to_string(binary.size()) +
                 R"(,"byteLength":)" + std::to_string(data->size()) + "}";
        binary += *data;
    }
    return Glb(
        R"({"asset":{"version":"2.0","copyright":"somebody"},"extensionsUsed":["KHR_lights_punctual","KHR_materials_unlit"],
"extensions":{"KHR_lights_punctual":{"lights":[{"type":"point"}]}},
"scene":0,"scenes":[{"name":"shown","nodes":[0,3],"extras":{"mine":1}}],
"nodes":[{"name":"root","children":[1,2],"translation":[0,1,0]},{"name":"joint","extras":{"note":"kept"}},
{"name":"body","mesh":0,"skin":0,"weights":[0.5]},{"name":"eye","camera":0,"extensions":{"KHR_lights_punctual":{"light":0}}}],
"meshes":[{"name":"body","primitives":[{"attributes":{"POSITION":3},"material":0,"targets":[{"POSITION":3}]}]}],
"skins":[{"joints":[1,0],"skeleton":0,"inverseBindMatrices":5}],
"cameras":[{"type":"perspective","perspective":{"yfov":0.7,"znear":0.01}}],
"materials":[{"pbrMetallicRoughness":{"baseColorTexture":{"index":0}},"extensions":{"KHR_materials_unlit":{}}}],
"textures":[{"source":0,"sampler":0}],"samplers":[{}],"images":[{"bufferView":6,"mimeType":"image/png"}],
"animations":[{"name":"walk","samplers":[{"input":0,"output":1},{"input":0,"output":2,"interpolation":"STEP"},{"input":0,"output":4}],
"channels":[{"sampler":0,"target":{"node":1,"path":"rotation"}},{"sampler":1,"target":{"node":0,"path":"translation"}},
{"sampler":2,"target":{"node":2,"path":"weights"}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR","min":[0],"max":[1]},
{"bufferView":1,"componentType":5126,"count":2,"type":"VEC4"},{"bufferView":2,"componentType":5126,"count":2,"type":"VEC3"},
{"bufferView":3,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,0,1]},
{"bufferView":4,"componentType":5126,"count":2,"type":"SCALAR"},{"bufferView":5,"componentType":5126,"count":1,"type":"MAT4"}],
"bufferViews":[)" +
            views + R"(],"buffers":[{"byteLength":)" + std::to_string(binary.size()) + "}]}",
        binary);
}

std::string BytesOfView(const SceneJson& json, const std::string& binary, const SceneJson& view) {
    const SceneJson& entry = json["bufferViews"][view.get<std::size_t>()];
    return binary.substr(entry["byteOffset"].get<std::size_t>(), entry["byteLength"].get<std::size_t>());
}

std::string BytesOfAccessor(const SceneJson& json, const std::string& binary, const SceneJson& accessor) {
    return BytesOfView(json, binary, json["accessors"][accessor.get<std::size_t>()]["bufferView"]);
}

TEST_F(ForeignScene, KeepsAllThatTheHostDoesNotKnow) {
    const SceneJson before = JsonOf(Model());
    const std::string saved = SavedScene(LoadedScene(Model()));
    const SceneJson json = JsonOf(saved);
    const std::string binary = BinaryOf(saved);
    for (const char* list : {"cameras", "materials", "textures", "samplers"}) EXPECT_EQ(json[list], before[list]) << list;
    EXPECT_EQ(json["asset"]["copyright"], "somebody");
    EXPECT_EQ(json["extensions"]["KHR_lights_punctual"], before["extensions"]["KHR_lights_punctual"]);
    EXPECT_EQ(json["scenes"][0]["name"], "shown");
    EXPECT_EQ(json["scenes"][0]["extras"]["mine"], 1);
    EXPECT_EQ(BytesOfView(json, binary, json["images"][0]["bufferView"]), kPicture);
    const SceneJson& primitive = json["meshes"][0]["primitives"][0];
    EXPECT_EQ(BytesOfAccessor(json, binary, primitive["attributes"]["POSITION"]), Floats({0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(primitive["targets"][0]["POSITION"], primitive["attributes"]["POSITION"]);
    EXPECT_EQ(json["nodes"][1]["extras"]["note"], "kept");
    EXPECT_EQ(json["nodes"][2]["weights"], SceneJson::array({0.5}));
    EXPECT_EQ(json["nodes"][3]["camera"], 0);
    EXPECT_EQ(json["nodes"][3]["extensions"]["KHR_lights_punctual"]["light"], 0);
}

TEST_F(ForeignScene, KeepsSkinsWithTheirJoints) {
    const std::string saved = SavedScene(LoadedScene(Model()));
    const SceneJson json = JsonOf(saved);
    const SceneJson& skin = json["skins"][json["nodes"][2]["skin"].get<std::size_t>()];
    EXPECT_EQ(json["nodes"][skin["joints"][0].get<std::size_t>()]["name"], "joint");
    EXPECT_EQ(json["nodes"][skin["joints"][1].get<std::size_t>()]["name"], "root");
    EXPECT_EQ(BytesOfAccessor(json, BinaryOf(saved), skin["inverseBindMatrices"]).size(), 64u);
}

TEST_F(ForeignScene, LetsASkinGoThatHasLostAJoint) {
    const SceneDocument document = LoadedScene(Model());
    GetCOREInterface()->DeleteNode(GetCOREInterface()->GetINodeByHandle(2));
    const SceneJson json = JsonOf(SavedScene(document));
    EXPECT_FALSE(json.contains("skins"));
    EXPECT_EQ(json.dump().find("\"skin\":"), std::string::npos);
}

TEST_F(ForeignScene, IsTheSameAfterLoadingAndSavingAgain) {
    const std::string first = SavedScene(LoadedScene(Model()));
    EXPECT_TRUE(SavedScene(LoadedScene(first)) == first);
}

TEST_F(ForeignScene, DropsTheDataOfAnimationsThatBecameKeys) {
    const SceneDocument document = LoadedScene(Model());
    EXPECT_EQ(document.json["accessors"].size(), 4u);  // times and weights of the morph, corners, bind
    EXPECT_EQ(document.json["bufferViews"].size(), 5u);
    EXPECT_EQ(document.binary.size(), 8u + 36 + 8 + 64 + 12);
}

TEST_F(ForeignScene, KeepsTheNumbersThatAnUnknownExtensionMayUse) {
    const std::string file = Edited(Model(), [](SceneJson& json) {
        json["extensionsUsed"].push_back("ACME_secret");
        json["extensions"]["ACME_secret"] = {{"bufferView", 5}};
    });
    const std::string saved = SavedScene(LoadedScene(file));
    const SceneJson json = JsonOf(saved);
    EXPECT_EQ(json["extensions"]["ACME_secret"]["bufferView"], 5);
    EXPECT_EQ(BytesOfView(json, BinaryOf(saved), 5).size(), 64u);
    EXPECT_TRUE(SavedScene(LoadedScene(saved)) == saved);
}

TEST_F(ForeignScene, KeepsMorphAnimation) {
    const std::string saved = SavedScene(LoadedScene(Model()));
    const SceneJson json = JsonOf(saved);
    const SceneJson& walk = json["animations"][0];
    ASSERT_EQ(walk["channels"].size(), 1u);
    EXPECT_EQ(walk["channels"][0]["target"]["path"], "weights");
    EXPECT_EQ(json["nodes"][walk["channels"][0]["target"]["node"].get<std::size_t>()]["name"], "body");
    EXPECT_EQ(BytesOfAccessor(json, BinaryOf(saved), walk["samplers"][0]["output"]), Floats({0, 1}));
}

/// Moves a node between seconds 1 and 2.
std::string LateModel() {
    return Glb(R"({"asset":{"version":"2.0"},"nodes":[{}],
"animations":[{"samplers":[{"input":0,"output":1}],"channels":[{"sampler":0,"target":{"node":0,"path":"translation"}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR"},{"bufferView":1,"componentType":5126,"count":2,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":8},{"buffer":0,"byteOffset":8,"byteLength":24}],"buffers":[{"byteLength":32}]})",
               Floats({1, 2}) + Floats({0, 0, 0, 1, 0, 0}));
}

std::vector<TimeValue> KeyTicksOfFirstNode() {
    std::vector<TimeValue> ticks;
    for (const auto& key : dynamic_cast<PrsControl&>(*AllNodes()[0]->GetTMController()).position.keys)
        ticks.push_back(key.tick);
    return ticks;
}

TEST_F(ForeignScene, MovesAtTheSameTicksHoweverOftenItIsBaked) {
    SceneDocument document = LoadedScene(LateModel());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(KeyTicksOfFirstNode(), (std::vector<TimeValue>{4800, 9600})) << i;
        std::string film, problem;
        ASSERT_TRUE(MakeFilmFile(document, BakedKeys::EverySample, film, problem)) << problem;
        document = LoadedScene(film);
    }
}

TEST_F(ForeignScene, MovesInStepWithItsMorphs) {
    const SceneDocument document = LoadedScene(Model());
    for (INode* node : AllNodes()) {
        auto& control = dynamic_cast<PrsControl&>(*node->GetTMController());
        for (auto& key : control.position.keys) key.tick += 4800;
        for (auto& key : control.rotation.keys) key.tick += 4800;
    }
    const SceneJson json = JsonOf(SavedScene(document));
    ASSERT_EQ(json["animations"].size(), 2u);
    const SceneJson& input = json["animations"][1]["samplers"][0]["input"];
    EXPECT_EQ(json["accessors"][input.get<std::size_t>()]["min"], SceneJson::array({1.0}));
    EXPECT_EQ(json["scenes"][0]["extras"]["firstKeyTick"], 0);
}

TEST_F(ForeignScene, ForgetsTheTimeOfMorphsWhoseNodesAreGone) {
    const SceneDocument document = LoadedScene(Model());
    for (INode* node : AllNodes()) GetCOREInterface()->DeleteNode(node);
    const SceneJson json = JsonOf(SavedScene(document));
    EXPECT_FALSE(json.contains("animations"));
    EXPECT_FALSE(json["scenes"][0]["extras"].contains("firstKeyTick"));
}

TEST_F(ForeignScene, LetsAnAnimationGoThatMovesNoNodeOfTheScene) {
    const std::string file =
        Edited(Model(), [](SceneJson& json) { json["animations"][0]["channels"][2]["target"]["node"] = 77; });
    const std::string first = SavedScene(LoadedScene(file));
    const SceneJson json = JsonOf(first);
    ASSERT_EQ(json["animations"].size(), 1u);
    EXPECT_EQ(json["animations"][0]["name"], "motion");
    EXPECT_EQ(SavedScene(LoadedScene(first)), first);
}

TEST_F(ForeignScene, GetsKeysThatMoveItsNodes) {
    LoadedScene(Model());
    auto& joint = dynamic_cast<PrsControl&>(*GetCOREInterface()->GetINodeByHandle(2)->GetTMController());
    auto& root = dynamic_cast<PrsControl&>(*GetCOREInterface()->GetINodeByHandle(1)->GetTMController());
    ASSERT_EQ(joint.rotation.keys.size(), 2u);
    EXPECT_EQ(joint.rotation.keys[1].tick, 4800);
    EXPECT_EQ(joint.rotation.keys[1].value, (Rotation{0, 0, 0.6f, 0.8f}));  // about the file's Y, which is the scene's Z
    EXPECT_EQ(root.position.curve, KeyCurve::Step);
    EXPECT_EQ(root.LocalAt(4799).GetRow(3), Point3(0, 0, 0));
    EXPECT_EQ(root.LocalAt(4800).GetRow(3), Point3(100, -300, 200));
    EXPECT_NE(joint.LocalAt(2400).GetRow(0), joint.LocalAt(0).GetRow(0));
}

TEST_F(ForeignScene, ResamplesSplinesAtFrames) {
    const std::string data = Floats({0, 1}) + Floats({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0});
    LoadedScene(Glb(R"({"asset":{"version":"2.0"},"nodes":[{}],
"animations":[{"samplers":[{"input":0,"output":1,"interpolation":"CUBICSPLINE"}],
"channels":[{"sampler":0,"target":{"node":0,"path":"translation"}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR"},{"bufferView":1,"componentType":5126,"count":6,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":8},{"buffer":0,"byteOffset":8,"byteLength":72}],"buffers":[{"byteLength":80}]})",
                    data));
    const auto& control = dynamic_cast<PrsControl&>(*AllNodes()[0]->GetTMController());
    ASSERT_EQ(control.position.keys.size(), 31u);
    EXPECT_EQ(control.position.keys[15].tick, 2400);
    EXPECT_EQ(control.position.keys[15].value, Point3(50, 0, 0));
    EXPECT_FLOAT_EQ(control.position.keys[6].value.x, 10.4f);  // 100 (3 t^2 - 2 t^3) at t = 1/5
}

TEST_F(ForeignScene, IsReadInCentimetresWithZUp) {
    LoadedScene(GlbTriangle());
    const Mesh& mesh = dynamic_cast<TriObject&>(*AllNodes()[0]->GetObjectRef()).mesh;
    ASSERT_EQ(mesh.numFaces, 1);
    EXPECT_EQ(mesh.verts[1], Point3(200, 0, 0));
    EXPECT_EQ(mesh.verts[2], Point3(0, -400, 300));
}

TEST_F(ForeignScene, StandsWhereItsMatrixSays) {
    const std::string file = Edited(GlbTriangle(), [](SceneJson& json) {
        json["nodes"][0]["matrix"] = {0, 0, -1, 0, 0, 2, 0, 0, 1, 0, 0, 0, 5, 6, 7, 1};  // file's X to -Z, Z to X, Y doubled
    });
    LoadedScene(file);
    const Matrix3 frame = AllNodes()[0]->GetNodeTM(0);
    EXPECT_EQ(frame.GetRow(0), Point3(0, 1, 0));
    EXPECT_EQ(frame.GetRow(1), Point3(-1, 0, 0));
    EXPECT_EQ(frame.GetRow(2), Point3(0, 0, 2));
    EXPECT_EQ(frame.GetRow(3), Point3(500, -700, 600));
}

TEST_F(ForeignScene, BringsItsFilesWithIt) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "my maps");
    folder.Write("data.bin", Floats({0, 0, 0, 1, 0, 0, 0, 0, 1}));
    folder.Write("my maps/a.png", kPicture);
    const SceneJson json = SceneJson::parse(R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"images":[{"uri":"my%20maps/a.png"},{"uri":"my%20maps/a.png"}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36,"uri":"data.bin"}]})");
    const std::filesystem::path file = folder.Write("a.gltf", json.dump());
    SceneDocument document;
    std::string problem;
    ASSERT_TRUE(LoadScene(file, document, problem)) << problem;
    const std::string saved = SavedScene(document);
    const SceneJson after = JsonOf(saved);
    EXPECT_EQ(after["images"][1], (SceneJson{{"mimeType", "image/png"}, {"bufferView", 1}}));
    EXPECT_EQ(BytesOfView(after, BinaryOf(saved), 1), kPicture);
}

TEST_F(ForeignScene, LooksForFilesInItsFolderOnly) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "scene");
    folder.Write("secret.bin", std::string(36, 'x'));
    std::filesystem::create_symlink("../secret.bin", folder / "scene/link.bin");
    for (const char* uri :
         {"../secret.bin", "%2e%2e/secret.bin", "a/../../secret.bin", "/etc/passwd", "%2Fetc/passwd", "C:/a.bin",
          "..\\secret.bin", "..%5csecret.bin", "file:///etc/passwd", "http://localhost/a.bin", "link.bin", ""}) {
        const SceneJson json = {{"asset", {{"version", "2.0"}}},
                                {"buffers", SceneJson::array({{{"byteLength", 36}, {"uri", uri}}})}};
        const std::string name = (folder / "scene/a.gltf").string();
        EXPECT_EQ(SceneRefusal(json.dump(), name),
                  "buffer 0 is in \"" + std::string(uri) + "\", which is not in the scene's folder; put it there.");
    }
}

TEST_F(ForeignScene, WithoutItsImagesIsRefused) {
    const TempFolder folder;
    const std::string name = (folder / "a.gltf").string();
    const SceneJson json = {{"asset", {{"version", "2.0"}}}, {"images", SceneJson::array({{{"uri", "gone.png"}}})}};
    const std::string said = SceneRefusal(json.dump(), name);
    EXPECT_TRUE(said.starts_with("image 0 can't be read (")) << said;
}

TEST_F(ForeignScene, WithSparseKeysIsRefused) {
    const std::string file = Edited(Model(), [](SceneJson& json) {
        json["accessors"][1]["sparse"] = {
            {"count", 1}, {"indices", {{"bufferView", 0}, {"componentType", 5125}}}, {"values", {{"bufferView", 1}}}};
    });
    EXPECT_EQ(SceneRefusal(file), "accessor 1 is sparse, which only positions may be; export it without that.");
}

TEST_F(ForeignScene, GivesNodesThatOthersAddedToOursAPlaceToo) {
    const std::string bytes = Edited(SavedScene(MakeRichScene()), [](SceneJson& json) {
        json["nodes"].push_back({{"name", "added"}, {"translation", {1, 2, 3}}});
        json["scenes"][0]["nodes"].push_back(json["nodes"].size() - 1);
    });
    ResetScene();
    LoadedScene(bytes);
    INode* const added = AllNodes().back();
    EXPECT_EQ(added->GetName(), std::wstring(L"added"));
    EXPECT_EQ(added->GetHandle(), 5u);
    EXPECT_EQ(added->GetNodeTM(0).GetRow(3), Point3(100, -300, 200));
}

TEST_F(ForeignScene, FromTheRealWorldSurvives) {
    if (!std::filesystem::exists(DataFolder())) GTEST_SKIP() << "no real input data at " << DataFolder();
    int scenes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DataFolder())) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".glb" && extension != ".gltf") continue;
        SceneDocument document;
        std::string problem;
        ASSERT_TRUE(LoadScene(entry.path(), document, problem)) << problem;
        const std::string first = SavedScene(document);
        EXPECT_TRUE(SavedScene(LoadedScene(first)) == first) << entry.path();
        ++scenes;
    }
    EXPECT_GT(scenes, 5);
}

/// Written files for checkers of other people's making: check_scenes.sh runs this with a folder in the environment.
TEST_F(ForeignScene, IsWrittenForCheckers) {
    const char* const target = std::getenv("TAVRIK_WRITTEN_SCENES");
    if (target == nullptr) GTEST_SKIP() << "no folder to write to";
    const std::filesystem::path folder = target;
    std::string problem, film;
    const SceneDocument rich = MakeRichScene();
    ASSERT_TRUE(WriteSceneFile(folder / "rich.glb", SavedScene(rich), problem)) << problem;
    ASSERT_TRUE(WriteSceneFile(folder / "rich.gltf", SavedScene(rich), problem)) << problem;
    ASSERT_TRUE(MakeFilmFile(rich, BakedKeys::EveryFrame, film, problem)) << problem;
    ASSERT_TRUE(WriteSceneFile(folder / "film.glb", film, problem)) << problem;
    if (!std::filesystem::exists(DataFolder())) return;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DataFolder())) {
        if (entry.path().extension() != ".glb") continue;
        SceneDocument document;
        ASSERT_TRUE(LoadScene(entry.path(), document, problem)) << problem;
        ASSERT_TRUE(WriteSceneFile(folder / entry.path().filename(), SavedScene(document), problem)) << problem;
    }
}

}  // namespace
}  // namespace tavrik_host::test
