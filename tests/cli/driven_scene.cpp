#include "tests/cli/driven_scene.h"

#include <gtest/gtest.h>

#include <vector>

#include "host/sdk/standin.h"
#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {

const std::string& DrivenScene() {
    static const std::string bytes = [] {
        const TempFolder folder;
        folder.Write("hands.csv", "0, 0, 1, 0, 0, 0\n2, 0, 0, 0, 0, 0\n2.8, 0, 0, 1, 0, 0\n");
        const auto run = [&folder](const std::vector<std::string>& words) {
            const ProgramResult result = RunTavrik(folder.path(), words);
            EXPECT_EQ(result.status, 0) << result.error;
        };
        run({"ground", "plane", "--triangles", "200", "--out", "ground.obj"});
        run({"new", "--ground", "ground.obj", "--at", "1,2,0", "--seconds", "4", "--out", "scene.gltf"});
        // As it is built, the stock car brakes within what its tyres can hold.
        std::string text = FileBytes(folder / "scene.gltf");
        const std::size_t at = text.find("2000", text.find("\"Brake_Sensitivity\""));
        EXPECT_NE(at, std::string::npos);
        folder.Write("scene.gltf", text.replace(at, 4, "12000"));
        run({"drive", "scene.gltf", "--out", "scene.glb", "--input", "hands.csv", "--seconds", "4"});
        return FileBytes(folder / "scene.glb");
    }();
    return bytes;
}

std::string EditedScene(const std::function<void(tavrik_host::SceneDocument&)>& edit) {
    tavrik_host::SceneDocument document;
    std::string problem, bytes;
    EXPECT_TRUE(tavrik_host::LoadPlugin(TAVRIK_PLUGIN_FILE, problem)) << problem;
    EXPECT_TRUE(tavrik_host::LoadSceneBytes("scene.glb", DrivenScene(), document, problem)) << problem;
    edit(document);
    EXPECT_TRUE(tavrik_host::MakeSceneFile(document, bytes, problem)) << problem;
    tavrik_host::ResetScene();
    return bytes;
}

}  // namespace tavrik::test
