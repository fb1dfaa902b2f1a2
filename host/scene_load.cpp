#include <fmt/format.h>

#include <exception>
#include <new>
#include <set>
#include <utility>

#include "host/gltf_document.h"
#include "host/gltf_keys.h"
#include "host/gltf_unused.h"
#include "host/read_file.h"
#include "host/scene_build.h"
#include "host/scene_file.h"
#include "host/scene_parse.h"

namespace tavrik_host {
namespace {

/// Numbers of nodes in the file become handles, which last.
void NameNodesByHandle(Json& json, const SceneRecords& records) {
    std::map<std::size_t, ULONG> handles;
    for (const NodeRecord& node : records.nodes) handles[std::size_t(node.file)] = node.handle;
    const auto translate = [&](Json& node) {
        const auto found = node.is_number() ? handles.find(node.get<std::size_t>()) : handles.end();
        node = found == handles.end() ? 0 : found->second;
    };
    if (json.contains("skins")) {
        for (Json& skin : json["skins"]) {
            if (skin.contains("joints")) {
                for (Json& joint : skin["joints"]) translate(joint);
            }
            if (skin.contains("skeleton")) translate(skin["skeleton"]);
        }
    }
    if (json.contains("animations")) {
        for (Json& animation : json["animations"]) {
            for (Json& channel : animation["channels"]) {
                if (channel["target"].contains("node")) translate(channel["target"]["node"]);
            }
        }
    }
}

/// Leaves of the animations what controllers don't know: morph weights, and what extensions move. What moves a node that isn't
/// in the scene moves nothing.
void KeepOtherAnimations(Json& json, const SceneRecords& records) {
    Json animations;
    if (!Take(json, "animations", animations)) return;
    std::set<std::size_t> nodes;
    for (const NodeRecord& node : records.nodes) nodes.insert(std::size_t(node.file));
    const auto isOfNoNode = [&](const Json& channel) {
        const Json* const node = Find(channel["target"], "node");
        return node != nullptr && !(node->is_number() && nodes.contains(node->get<std::size_t>()));
    };
    Json kept = Json::array();
    for (Json& animation : animations) {
        const Json samplers = animation.contains("samplers") ? animation["samplers"] : Json::array();
        Json channels = Json::array(), used = Json::array();
        for (Json& channel : animation["channels"]) {
            ObjectOf(Need(channel, "target", "a channel"), "the target of a channel");
            if (MovesNode(channel) || isOfNoNode(channel)) continue;
            const std::size_t sampler =
                IndexInto(Need(channel, "sampler", "a channel"), samplers.size(), "samplers", "a sampler");
            channel["sampler"] = used.size();
            used.push_back(samplers[sampler]);
            channels.push_back(std::move(channel));
        }
        if (channels.empty()) continue;
        animation["channels"] = std::move(channels);
        animation["samplers"] = std::move(used);
        kept.push_back(std::move(animation));
    }
    if (!kept.empty()) json["animations"] = std::move(kept);
}

void EraseName(Json& json, const char* list) {
    if (!json.contains(list)) return;
    Json kept = Json::array();
    for (Json& name : json[list]) {
        if (name != kExtension) kept.push_back(std::move(name));
    }
    json[list] = std::move(kept);
    if (json[list].empty()) json.erase(list);
}

void EraseOurs(Json& owner) {
    Json* extensions = owner.contains("extensions") ? &owner["extensions"] : nullptr;
    if (extensions == nullptr) return;
    extensions->erase(kExtension);
    if (extensions->empty()) owner.erase("extensions");
}

/// What the host says anew at each saving goes out of a node; the rest is its parts.
Json PartsOf(Json node) {
    for (const char* key : {"name", "children", "matrix", "translation", "rotation", "scale"}) node.erase(key);
    EraseOurs(node);
    return node;
}

Json ShownScene(Json& json) {
    Json scenes, shown;
    Take(json, "scene", shown);
    if (!Take(json, "scenes", scenes) || scenes.empty()) return Json::object();
    Json scene = std::move(scenes[shown.is_null() ? 0 : shown.get<std::size_t>()]);
    scene.erase("nodes");
    if (scene.contains("extras") && scene["extras"].is_object()) {
        for (const char* key : kSceneExtras) scene["extras"].erase(key);
        if (scene["extras"].empty()) scene.erase("extras");
    }
    return scene;
}

/// What is left of an opened file once the scene has taken its own out of it.
SceneDocument MakeDocument(GltfFile gltf, const SceneRecords& records) {
    Json& json = gltf.json;
    const OwnData own = FindOwnData(json);
    KeepOtherAnimations(json, records);
    NameNodesByHandle(json, records);
    EraseOurs(json);
    EraseName(json, "extensionsUsed");
    EraseName(json, "extensionsRequired");
    DropUnused(gltf, own);
    SceneDocument document;
    document.scene = ShownScene(json);
    Json nodes;
    Take(json, "nodes", nodes);
    for (const NodeRecord& node : records.nodes) {
        Json parts = PartsOf(std::move(nodes[std::size_t(node.file)]));
        if (!parts.empty()) document.nodeParts[node.handle] = std::move(parts);
    }
    document.json = std::move(json);
    document.secondZero = records.secondZero;
    document.binary = std::move(gltf.binary);
    return document;
}

void Load(GltfFile gltf, SceneDocument& document) {
    SceneParts parts;
    SceneLoad load;
    SceneRecords records;
    {
        GltfNumbers numbers(gltf);
        records = ParseScene(gltf, numbers);
        MakeParts(records, numbers, parts, load);
    }
    SceneDocument made = MakeDocument(std::move(gltf), records);
    // From here on nothing can be refused.
    BuildScene(records, parts);
    parts.DeleteAllRefsFromMe();
    document = std::move(made);
    load.RunCallbacks();
}

/// @param open  gives the opened file
template <typename Open>
bool LoadFrom(const std::filesystem::path& file, Open open, SceneDocument& document, std::string& problem) {
    std::string fault;
    // The parser throws on some kinds of damage, and on counts that no memory can hold.
    try {
        Load(open(), document);
        return true;
    } catch (const SceneFault& error) {
        fault = error.what();
    } catch (const std::bad_alloc&) {
        fault = "it asks for more memory than this machine has.";
    } catch (const std::exception& error) {
        fault = fmt::format("it is damaged ({}).", error.what());
    }
    problem = fmt::format("{}: {}", file.string(), fault);
    return false;
}

}  // namespace

bool LoadSceneBytes(const std::filesystem::path& file, std::string_view bytes, SceneDocument& document, std::string& problem) {
    return LoadFrom(
        file, [&] { return OpenGltf(file, bytes); }, document, problem);
}

bool LoadScene(const std::filesystem::path& file, SceneDocument& document, std::string& problem) {
    std::string bytes;
    if (!tavrik::ReadWholeFile(file, bytes, problem)) return false;
    const auto open = [&] {
        GltfFile gltf = OpenGltf(file, bytes);
        bytes = std::string();  // an hour's recording is large enough to be kept once only
        return gltf;
    };
    return LoadFrom(file, open, document, problem);
}

}  // namespace tavrik_host
