#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "host/sdk/desktop.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/scene_fixture.h"

namespace tavrik_host::test {
namespace {

using Edit = std::function<void(SceneJson& file, SceneJson& scene)>;

/// Each file is the rich scene with one thing wrong.
class SceneFileRefuses : public testing::Test {
 protected:
    void SetUp() override { LoadSceneTestPlugin(); }
    void TearDown() override { ResetScene(); }

    static const std::string& Rich() {
        static const std::string bytes = SavedScene(MakeRichScene());
        return bytes;
    }
    static std::string Said(const Edit& edit) {
        return SceneRefusal(Edited(Rich(), [&](SceneJson& json) { edit(json, json["extensions"]["NORVANE_tavrik"]); }));
    }
    /// Of the thing in the scene.
    static std::string SaidOfParameter(const char* name, const SceneJson& value) {
        return Said([&](SceneJson&, SceneJson& scene) { scene["objects"][1]["parameters"][name] = value; });
    }
    static SceneJson& NodeOf(SceneJson& file, std::size_t i) { return file["nodes"][i]["extensions"]["NORVANE_tavrik"]; }
};

TEST_F(SceneFileRefuses, OtherVersions) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["version"] = 7; }),
              "it is a scene of version 7, and this program knows version 1 only; take a newer one.");
}

TEST_F(SceneFileRefuses, TimelinesThatCanNotBe) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) {
                  scene["animationRange"] = {5, 4};
              }),
              "the animation range ends before it starts.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["ticksPerFrame"] = 0; }),
              "the number of ticks to a frame is not a whole number from 1 to 4800.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["time"] = 4294967296; }),
              "the time of the scene is not a whole number from -2147483648 to 2147483647.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["metresPerUnit"] = 0; }), "one unit of the scene can't be 0 m.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["seed"] = "12x"; }), "the seed is not a whole number of 64 bits.");
}

TEST_F(SceneFileRefuses, ValuesOfAWrongKind) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["objects"] = 5; }), "\"objects\" of the scene is not a list.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["objects"][0] = "x"; }), "object 0 is not an object.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene.erase("time"); }), "the scene has no \"time\".");
}

TEST_F(SceneFileRefuses, ClassesThatAreNotThere) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) {
                  scene["objects"][1]["classId"] = {1, 2};
              }),
              "the class of object 1 (TestThing) is not known here; load the plug-in that has it.");
}

TEST_F(SceneFileRefuses, ThingsOfTheWrongSuperClass) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["objects"][0]["superClass"] = 36872; }),
              "object 0 (Editable Mesh) is of a kind that can't stand there.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["controllers"][0]["superClass"] = 80; }).substr(0, 13),
              "controller 0 ");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 1)["object"] = 2; }),
              "the object of node 1 is a texture map.");
}

TEST_F(SceneFileRefuses, ParametersThatTheClassDoesNotHave) {
    EXPECT_EQ(SaidOfParameter("Colour", 1), "object 1 (TestThing) has no parameter \"Colour\".");
}

TEST_F(SceneFileRefuses, ParametersOfAnotherType) {
    EXPECT_EQ(SaidOfParameter("Size", "wide"), "\"Size\" of object 1 (TestThing) is not a number.");
    EXPECT_EQ(SaidOfParameter("Size", nullptr), "\"Size\" of object 1 (TestThing) is not a number.");
    EXPECT_EQ(SaidOfParameter("Steps", 5.5),
              "\"Steps\" of object 1 (TestThing) is not a whole number from -2147483648 to 2147483647.");
    EXPECT_EQ(SaidOfParameter("Frame", {1, 2, 3}), "\"Frame\" of object 1 (TestThing) has 3 entries instead of 12.");
    EXPECT_EQ(SaidOfParameter("Pattern", 3), "\"Pattern\" of object 1 (TestThing) has no \"object\".");
}

TEST_F(SceneFileRefuses, NumbersThatSinglePrecisionCanNotHold) {
    EXPECT_EQ(SaidOfParameter("Size", 1e39), "\"Size\" of object 1 (TestThing) is too large a number.");
}

TEST_F(SceneFileRefuses, WholeNumbersOfMoreThan32Bits) {
    EXPECT_EQ(SaidOfParameter("Key", 2147483648),
              "\"Key\" of object 1 (TestThing) is not a whole number from -2147483648 to 2147483647.");
    EXPECT_EQ(SaidOfParameter("Key", 18446744073709551615u),
              "\"Key\" of object 1 (TestThing) is not a whole number from -2147483648 to 2147483647.");
}

TEST_F(SceneFileRefuses, TablesOfAnotherLength) {
    EXPECT_EQ(SaidOfParameter("Sizes", {1, 2}), "\"Sizes\" of object 1 (TestThing) has 2 entries instead of 3.");
}

TEST_F(SceneFileRefuses, NumbersOutOfTheirRange) {
    EXPECT_EQ(SaidOfParameter("Steps", 101), "\"Steps\" of object 1 (TestThing) is 101, but goes from 2 to 100.");
    EXPECT_EQ(SaidOfParameter("Sizes", {1, 2, -1}), "\"Sizes\" of object 1 (TestThing) is -1, but goes from 0 to 100.");
}

TEST_F(SceneFileRefuses, KeysThatAreNone) {
    EXPECT_EQ(SaidOfParameter("Push", {{"keys", {{1, 0}, {1, 0}}}}),
              "the keys of \"Push\" of object 1 (TestThing) don't follow one another.");
    EXPECT_EQ(SaidOfParameter("Push", {{"keys", SceneJson::array()}}),
              "\"Push\" of object 1 (TestThing) has an empty list of keys.");
    EXPECT_EQ(SaidOfParameter("Size", {{"keys", {{1, 1}}}}), "\"Size\" of object 1 (TestThing) can't have keys.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) {
                  scene["controllers"][1]["rotation"]["keys"][0] = {0, 0, 0, 0, 0};
              }),
              "a key in \"rotation\" of controller 1 (Position/Rotation/Scale) is no rotation.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["controllers"][1]["position"]["curve"] = "BEZIER"; }),
              "the curve of \"position\" of controller 1 (Position/Rotation/Scale) is neither LINEAR nor STEP.");
}

TEST_F(SceneFileRefuses, HandlesThatAreMissingOrTaken) {
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 1).erase("handle"); }), "node 1 has no \"handle\".");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 1)["handle"] = 1; }), "handle 1 belongs to two nodes.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 1)["handle"] = 0; }),
              "the handle of node 1 is not a whole number from 1 to 4294967295.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 3)["handle"] = 99; }),
              "handle 99 is not below the next one to give.");
}

TEST_F(SceneFileRefuses, ReferencesToWhatIsNotThere) {
    EXPECT_EQ(SaidOfParameter("Friend Node", 77), "object 1 (TestThing) refers to node 77, which is not in the scene.");
    EXPECT_EQ(SaidOfParameter("Pattern", {{"object", 9}}),
              "\"Pattern\" of object 1 (TestThing) is 9, but the file has 3 objects.");
    EXPECT_EQ(SaidOfParameter("Pattern", {{"object", 0}}), "object 1 (TestThing) has a map that is none.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { NodeOf(file, 1)["controller"] = 9; }),
              "the controller of node 1 is 9, but the file has 5 controllers.");
}

TEST_F(SceneFileRefuses, ReferencesThatCloseALoop) {
    const std::string said = SaidOfParameter("Friend Node", 2);
    EXPECT_TRUE(said.ends_with("would come to depend on itself.")) << said;
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["controllers"][0]["wrapped"]["controller"] = 0; }),
              "controller 0 (TestWrapper) would come to depend on itself.");
    // A pointer that is no reference may go in circles: the rich scene's own does.
    EXPECT_EQ(JsonOf(Rich())["extensions"]["NORVANE_tavrik"]["objects"][1]["parameters"]["Pointer"], 2);
}

TEST_F(SceneFileRefuses, ControllersWithoutAPlaceForAnother) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["controllers"][0]["wrapped"]["reference"] = 0; }),
              "controller 0 (TestWrapper) has no place for a controller at reference 0.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["controllers"][0]["wrapped"]["reference"] = 9; }),
              "controller 0 (TestWrapper) has no place for a controller at reference 9.");
}

TEST_F(SceneFileRefuses, ChunksThatAreDamaged) {
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["objects"][1]["chunks"][0]["crc32"] = 5; }),
              "chunk 20 of object 1 (TestThing) is damaged; take the scene from a backup.");
    EXPECT_EQ(Said([](SceneJson&, SceneJson& scene) { scene["objects"][1]["chunks"][0]["bufferView"] = 500; }).substr(0, 46),
              "the number of a buffer view is 500, but the fi");
}

TEST_F(SceneFileRefuses, DataThatAPlugInRefusesInItsWords) {
    MakeRichScene();
    auto* const thing = MakeThing(kThingClass, HELPER_CLASS_ID);
    CreateNode(static_cast<Object*>(thing), L"bad");
    const Chunk chunk{20, "bad bytes"};
    {
        SceneLoad load;
        EXPECT_FALSE(load.LoadChunks(*thing, {&chunk, 1}));
    }
    EXPECT_EQ(SceneRefusal(SavedScene({})), "the thing doesn't like it.");
    EXPECT_EQ(tavrik::TheDesktop().complaint, "");
}

TEST_F(SceneFileRefuses, NodesThatHangBelowTwoOrBelowThemselves) {
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["nodes"][3]["children"] = {2}; }), "node 2 hangs below two others.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) {
                  file["nodes"][0].erase("children");
                  file["nodes"][2]["children"] = {1};
              }),
              "node 1 hangs below itself.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) {
                  file["scenes"][0]["nodes"] = {0, 1, 3};
              }),
              "the scene begins with node 1, which hangs below another.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["nodes"][0]["children"] = {8}; }),
              "a child of node 0 is 8, but the file has 4 nodes.");
}

TEST_F(SceneFileRefuses, NumbersThatPointAtNothing) {
    const auto said = [](const char* key, const SceneJson& value) {
        return Said([&](SceneJson& file, SceneJson&) { file["nodes"][0][key] = value; });
    };
    EXPECT_EQ(said("skin", "x"), "\"skin\" of node 0 is not a whole number from 0 on.");
    EXPECT_EQ(said("skin", 99), "\"skin\" of node 0 is 99, but the file has 0 skins.");
    EXPECT_EQ(said("camera", 0), "\"camera\" of node 0 is 0, but the file has 0 cameras.");
    EXPECT_EQ(said("mesh", 7), "\"mesh\" of node 0 is 7, but the file has 1 meshes.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["meshes"][0]["primitives"][0]["material"] = 9; }),
              "\"material\" of mesh 0 is 9, but the file has 1 materials.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) {
                  file["textures"] = SceneJson::array({{{"source", 3}}});
              }),
              "\"source\" of texture 0 is 3, but the file has 0 images.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) {
                  file["materials"] = SceneJson::array({{{"normalTexture", {{"index", 0}}}}});
              }),
              "\"index\" of \"normalTexture\" of material 0 is 0, but the file has 0 textures.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["cameras"] = "x"; }), "\"cameras\" of the file is not a list.");
}

TEST_F(SceneFileRefuses, ChunksThatGoOnBehindWhatTheirClassReads) {
    ResetScene();
    auto* const thing = static_cast<Object*>(MakeThing(kThingClass, HELPER_CLASS_ID));
    CreateNode(thing, L"thing");
    const Chunk chunk{20, "short, "};
    SceneLoad load;
    ASSERT_TRUE(load.LoadChunks(*thing, {&chunk, 1}));
    EXPECT_EQ(SceneRefusal(SavedScene({})),
              "chunk 20 of object 0 (TestThing) is longer than what it tells of; take the scene from a backup.");
}

TEST_F(SceneFileRefuses, ChainsOfNodesWithoutEnd) {
    SceneDocument document;
    std::string problem;
    EXPECT_FALSE(LoadSceneBytes("chain.gltf", ChainFile(100'000), document, problem));
    EXPECT_EQ(problem, "chain.gltf: node 1001 hangs below more than 1000 others.");
    EXPECT_TRUE(LoadSceneBytes("chain.gltf", ChainFile(1001), document, problem)) << problem;
}

TEST_F(SceneFileRefuses, AccessorsThatReadPastTheirData) {
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["accessors"][0]["count"] = 4294967295; }),
              "accessor 0 reads 4294967295 elements past its buffer view of 288 bytes; export the file again.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["bufferViews"][0]["byteLength"] = 4294967295; }).substr(0, 37),
              "buffer view 0 ends past its buffer of");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["accessors"][0]["type"] = "VEC9"; }),
              "accessor 0 has a type that glTF doesn't know.");
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["meshes"][0]["primitives"][0]["indices"] = 99; }).substr(0, 32),
              "the number of an accessor is 99,");
}

TEST_F(SceneFileRefuses, IndicesPastTheVertices) {
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["accessors"][0]["count"] = 2; }),
              "mesh 0 uses vertex 2, but there are 2 (counted from 0).");
}

TEST_F(SceneFileRefuses, ExtensionsThatItWouldNeed) {
    EXPECT_EQ(Said([](SceneJson& file, SceneJson&) { file["extensionsRequired"] = {"KHR_draco_mesh_compression"}; }),
              "it can't be read without the extension KHR_draco_mesh_compression; export it without that.");
}

TEST_F(SceneFileRefuses, EveryTruncation) {
    const std::string& bytes = Rich();
    for (std::size_t length = 0; length < bytes.size(); ++length) SceneRefusal(bytes.substr(0, length));
}

/// Loads the file with each of its bits flipped in turn: taken, or refused in one sentence with the scene as it was.
/// @return how many were taken
int TakenWithAFlippedBit(const std::string& good) {
    int taken = 0;
    for (std::size_t i = 0; i < good.size() * 8; ++i) {
        std::string bytes = good;
        bytes[i / 8] = char(bytes[i / 8] ^ (1 << i % 8));
        ResetScene();
        SetNextHandle(7);
        CreateNode(nullptr, L"stays");
        SceneDocument document;
        std::string problem;
        if (LoadSceneBytes("a.glb", bytes, document, problem)) {
            ++taken;
            continue;
        }
        EXPECT_TRUE(problem.starts_with("a.glb: ") && problem.ends_with(".")) << problem;
        EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
        EXPECT_TRUE(AllNodes().size() == 1 && AllNodes()[0]->GetHandle() == 7) << i;
    }
    return taken;
}

TEST_F(SceneFileRefuses, AFlippedBitWhereverItIs) {
    // Left are those that hit the name of the check sum itself, and nothing else.
    constexpr int kNameBits = 8 * int(std::string_view("{\"fileCrc32\":\"").size());
    EXPECT_LE(TakenWithAFlippedBit(Rich()), kNameBits);
}

TEST_F(SceneFileRefuses, OrTakesEveryFlippedBitWhereThereIsNoCheckSum) {
    const std::string bare = Edited(Rich(), [](SceneJson&) {});
    const int taken = TakenWithAFlippedBit(bare), refused = int(bare.size()) * 8 - taken;
    EXPECT_GT(taken, 100);
    EXPECT_GT(refused, 1000);
}

TEST_F(SceneFileRefuses, NothingThatAnotherProgramHasWrittenAnew) {
    const SceneJson json = JsonOf(Rich());
    const std::string rewritten = tavrik::test::Glb(json.dump(1), BinaryOf(Rich()));
    EXPECT_EQ(LoadedScene(rewritten).nodeParts.size(), LoadedScene(Rich()).nodeParts.size());
}

}  // namespace
}  // namespace tavrik_host::test
