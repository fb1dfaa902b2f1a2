#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/scene_file.h"
#include "host/sdk/param_block.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "tests/host/scene_test_ids.h"

namespace tavrik_host::test {

using SceneJson = nlohmann::ordered_json;

/// Loads the classes of scene_test_plugin.cpp, once a process.
void LoadSceneTestPlugin();
int PostLoadCalls();

ReferenceTarget* MakeThing(Class_ID id, SClass_ID superClass);
ParamBlock& BlockOf(ReferenceTarget& thing);

/// A scene with a bit of everything: a ground of our own, things that refer to each other, keys, a map, a wrapper, a chunk.
SceneDocument MakeRichScene();

std::string SavedScene(const SceneDocument& document);
/// Loads bytes, which must work.
SceneDocument LoadedScene(const std::string& bytes, const std::string& name = "a.glb");

SceneJson JsonOf(const std::string& glb);
std::string BinaryOf(const std::string& glb);
/// The file with its text changed.
std::string Edited(const std::string& glb, const std::function<void(SceneJson&)>& edit);

/// What refuses these bytes says, without the file's name; checks that scene and document stay as they were.
std::string SceneRefusal(const std::string& bytes, const std::string& name = "a.glb");

/// A file whose nodes hang below one another in one chain.
std::string ChainFile(int length);

}  // namespace tavrik_host::test
