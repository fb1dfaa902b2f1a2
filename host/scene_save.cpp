#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include "host/atomic_file.h"
#include "host/glb_writer.h"
#include "host/gltf_container.h"
#include "host/gltf_document.h"
#include "host/gltf_side_files.h"
#include "host/scene_file.h"
#include "host/scene_meshes.h"
#include "host/scene_motion.h"
#include "host/scene_seal.h"
#include "host/scene_shapes.h"
#include "host/scene_write.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

using tavrik::DPoint3;
using tavrik::GlbWriter;

/// The order of things in a file doesn't depend on how the scene came about.
constexpr const char* kOrder[] = {"asset",      "extensionsUsed", "extensionsRequired",
                                  "extensions", "extras",         "scene",
                                  "scenes",     "nodes",          "meshes",
                                  "skins",      "cameras",        "materials",
                                  "textures",   "images",         "samplers",
                                  "animations", "accessors",      "bufferViews"};

Json InOrder(Json json) {
    Json ordered = Json::object(), value;
    for (const char* key : kOrder) {
        if (Take(json, key, value)) ordered[key] = std::move(value);
    }
    ordered.update(json);
    return ordered;
}

/// Makes names that no other node has, of letters, digits and `_`.
class FileNames {
 public:
    std::string Make(const std::string& name) {
        std::string stem;
        for (const char c : name) {
            const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
            // Each character counts once, however many bytes it has.
            if (isPlain || (std::uint8_t(c) & 0xc0) != 0x80) stem += isPlain ? c : '_';
        }
        if (stem.empty()) stem = "node";
        std::string unique = stem;
        // Numbers go on where they ended: a scene may have thousands of nodes of one name.
        int& number = numbers_.try_emplace(stem, 1).first->second;
        while (!taken_.insert(unique).second) unique = fmt::format("{}_{}", stem, ++number);
        return unique;
    }

 private:
    std::set<std::string> taken_;
    std::map<std::string, int> numbers_;
};

/// Rounded to single precision, which shortens the text and is what viewers read.
Json Singles(std::initializer_list<double> numbers) {
    Json list = Json::array();
    for (const double number : numbers) list.push_back(SingleToJson(float(number)));
    return list;
}

/// Animations that the document brings go on in their own time, and the motion of nodes keeps step with them. Those whose nodes
/// are all gone are gone too, and their time with them.
std::optional<TimeValue> KeptTime(const SceneDocument& document, const NodeTree& tree) {
    const Json* const animations = Find(document.json, "animations");
    if (animations == nullptr) return std::nullopt;
    std::set<ULONG> handles;
    for (INode* const node : tree.nodes) handles.insert(node->GetHandle());
    for (const Json& animation : *animations) {
        for (const Json& channel : animation["channels"]) {
            const Json* const node = Find(channel["target"], "node");
            if (node == nullptr || handles.contains(node->get<ULONG>())) return document.secondZero;
        }
    }
    return std::nullopt;
}

/// One file in the making.
class SceneWriter {
 public:
    SceneWriter(const SceneDocument& document, BakedKeys keys, bool withExtension, const std::function<bool(double)>& goesOn)
        : document_(document),
          tree_(TheNodes()),
          keptTime_(KeptTime(document, tree_)),
          motion_(BakeMotion(tree_, keys, keptTime_, goesOn)),
          glb_(document.json, document.binary),
          withExtension_(withExtension) {
        order_.resize(tree_.nodes.size());
        for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = i;
        // By handle: nodes that came from another program keep their numbers, of which its extensions may speak.
        std::sort(order_.begin(), order_.end(),
                  [&](std::size_t a, std::size_t b) { return tree_.nodes[a]->GetHandle() < tree_.nodes[b]->GetHandle(); });
        numbers_.resize(order_.size());
        for (std::size_t i = 0; i < order_.size(); ++i) {
            numbers_[order_[i]] = int(i);
            ordered_.push_back(tree_.nodes[order_[i]]);
            byHandle_[ordered_.back()->GetHandle()] = int(i);
        }
    }

    bool Write(std::string& bytes, std::string& problem) {
        AddAsset();
        AddMeshes();
        AddSkins();
        Json otherAnimations;
        const bool hasOthers = Take(glb_.json, "animations", otherAnimations);
        if (hasOthers) AddOtherAnimations(std::move(otherAnimations));
        if (withExtension_) extension_ = std::make_unique<ExtensionWriter>(ordered_, glb_);
        AddNodes();
        AddMotion();
        if (withExtension_) {
            glb_.json["extensions"][kExtension] = extension_->Root();
            glb_.json["extensionsUsed"].push_back(kExtension);
        }
        AddScene();
        glb_.json = InOrder(std::move(glb_.json));
        return glb_.Finish(bytes, problem);
    }

 private:
    void AddAsset() {
        Json asset = {{"version", "2.0"}, {"generator", "Tavrik"}};
        if (const Json* known = Find(document_.json, "asset")) {
            for (const auto& [key, value] : known->items()) {
                if (key != "version" && key != "generator") asset[key] = value;
            }
        }
        glb_.json["asset"] = std::move(asset);
    }

    /// Finds the mesh of each mesh and spline object, and draws those that have none yet.
    void AddMeshes() {
        for (INode* node : ordered_) {
            const auto parts = document_.nodeParts.find(node->GetHandle());
            if (parts == document_.nodeParts.end() || node->GetObjectRef() == nullptr) continue;
            if (const Json* mesh = Find(parts->second, "mesh")) meshOf_.emplace(node->GetObjectRef(), mesh->get<int>());
        }
        for (INode* node : ordered_) {
            Object* const object = node->GetObjectRef();
            if (object == nullptr || meshOf_.contains(object)) continue;
            const std::string name = ToUtf8(node->GetName());
            if (const auto* tri = dynamic_cast<TriObject*>(object)) {
                meshOf_[object] = WriteMesh(glb_, tri->mesh, name, MetresPerUnit());
            } else if (const auto* spline = dynamic_cast<LineShape*>(object)) {
                meshOf_[object] = WriteShape(glb_, *spline, name, MetresPerUnit());
            }
        }
    }

    /// Names joints by number. A skin that has lost one of them can't be drawn any more, and goes.
    void AddSkins() {
        Json skins;
        if (!Take(glb_.json, "skins", skins)) return;
        Json kept = Json::array();
        for (Json& skin : skins) {
            bool whole = true;
            if (skin.contains("joints")) {
                for (Json& joint : skin["joints"]) whole = ToNumber(joint) && whole;
            }
            if (skin.contains("skeleton") && !ToNumber(skin["skeleton"])) skin.erase("skeleton");
            skinNumbers_.push_back(whole ? int(kept.size()) : -1);
            if (whole) kept.push_back(std::move(skin));
        }
        if (!kept.empty()) glb_.json["skins"] = std::move(kept);
    }

    void AddOtherAnimations(Json animations) {
        for (Json& animation : animations) {
            Json channels = Json::array();
            for (Json& channel : animation["channels"]) {
                Json& target = channel["target"];
                if (!target.contains("node") || ToNumber(target["node"])) channels.push_back(std::move(channel));
            }
            if (channels.empty()) continue;
            animation["channels"] = std::move(channels);
            glb_.Add("animations", std::move(animation));
        }
    }

    bool ToNumber(Json& handle) const {
        const auto found = byHandle_.find(handle.get<ULONG>());
        if (found == byHandle_.end()) return false;
        handle = found->second;
        return true;
    }

    void AddNodes() {
        std::vector<Json> children(ordered_.size());
        for (std::size_t i = 0; i < tree_.nodes.size(); ++i) {
            if (tree_.parents[i] < 0) {
                roots_.push_back(numbers_[i]);
            } else {
                children[std::size_t(numbers_[std::size_t(tree_.parents[i])])].push_back(numbers_[i]);
            }
        }
        FileNames names;
        for (std::size_t i = 0; i < ordered_.size(); ++i) {
            INode& node = *ordered_[i];
            Json json = {{"name", names.Make(ToUtf8(node.GetName()))}};
            if (!children[i].empty()) json["children"] = std::move(children[i]);
            AddPlacement(motion_.rest[order_[i]], json);
            AddParts(node, json);
            if (withExtension_) json["extensions"][kExtension] = extension_->Node(node);
            glb_.Add("nodes", std::move(json));
        }
    }

    static void AddPlacement(const Placement& placement, Json& json) {
        const DPoint3 p = ToFileAxes(placement.position) * MetresPerUnit(), s = SwapYAndZ(placement.scale);
        const tavrik::Turn& q = placement.rotation;
        const DPoint3 axis = ToFileAxes({q.x, q.y, q.z});
        if (p.x != 0.0 || p.y != 0.0 || p.z != 0.0) json["translation"] = Singles({p.x, p.y, p.z});
        if (axis.x != 0.0 || axis.y != 0.0 || axis.z != 0.0) json["rotation"] = Singles({axis.x, axis.y, axis.z, q.w});
        if (s.x != 1.0 || s.y != 1.0 || s.z != 1.0) json["scale"] = Singles({s.x, s.y, s.z});
    }

    void AddParts(INode& node, Json& json) {
        const auto parts = document_.nodeParts.find(node.GetHandle());
        if (parts != document_.nodeParts.end()) {
            for (const auto& [key, value] : parts->second.items()) json[key] = value;
        }
        if (const Json* skin = Find(json, "skin")) {
            const std::size_t number = skin->get<std::size_t>();
            const int kept = number < skinNumbers_.size() ? skinNumbers_[number] : -1;
            if (kept >= 0) {
                json["skin"] = kept;
            } else {
                json.erase("skin");
            }
        }
        const auto mesh = meshOf_.find(node.GetObjectRef());
        if (mesh != meshOf_.end() && mesh->second >= 0 && !json.contains("mesh")) json["mesh"] = mesh->second;
    }

    void AddMotion() {
        if (motion_.nodes.empty()) return;
        Json samplers = Json::array(), channels = Json::array();
        const int times = glb_.AddFloats(motion_.seconds, 1, GlbWriter::Use::Keys, /*bounds=*/true);
        const auto add = [&](const BakedNode& baked, const char* path, std::span<const float> values, int components) {
            const int output = glb_.AddFloats(values, components, GlbWriter::Use::Keys, /*bounds=*/false);
            channels.push_back({{"sampler", samplers.size()}, {"target", {{"node", numbers_[baked.node]}, {"path", path}}}});
            samplers.push_back({{"input", times}, {"output", output}, {"interpolation", "LINEAR"}});
        };
        for (const BakedNode& baked : motion_.nodes) {
            add(baked, "translation", baked.translations, 3);
            add(baked, "rotation", baked.rotations, 4);
            if (baked.scaleChanges) add(baked, "scale", baked.scales, 3);
        }
        glb_.Add("animations", {{"name", "motion"}, {"samplers", std::move(samplers)}, {"channels", std::move(channels)}});
    }

    void AddScene() {
        const Interval range = GetCOREInterface()->GetAnimRange();
        const double step = GetTicksPerFrame();
        Json scene = document_.scene.is_object() ? document_.scene : Json::object();
        if (!roots_.empty()) scene["nodes"] = std::move(roots_);
        if (scene.contains("extras") && !scene["extras"].is_object()) scene["extras"] = {{"extras", scene["extras"]}};
        Json& extras = scene["extras"];
        extras["frameRate"] = TIME_TICKSPERSEC / step;
        extras["firstFrame"] = range.Start() / step;
        extras["lastFrame"] = range.End() / step;
        extras["ticksPerSecond"] = TIME_TICKSPERSEC;
        if (!motion_.nodes.empty() || keptTime_) extras["firstKeyTick"] = motion_.secondZero;
        Json ordered = Json::object(), value;
        for (const char* key : {"name", "nodes", "extensions", "extras"}) {
            if (Take(scene, key, value)) ordered[key] = std::move(value);
        }
        ordered.update(scene);
        glb_.json["scene"] = 0;
        glb_.json["scenes"] = Json::array({std::move(ordered)});
    }

    const SceneDocument& document_;
    const NodeTree tree_;
    const std::optional<TimeValue> keptTime_;
    const BakedMotion motion_;
    GlbWriter glb_;
    const bool withExtension_;
    std::unique_ptr<ExtensionWriter> extension_;
    std::vector<std::size_t> order_;  // of the file's nodes: places in the tree
    std::vector<int> numbers_;        // beside the tree: numbers in the file
    std::vector<INode*> ordered_;
    std::map<ULONG, int> byHandle_;
    std::map<Object*, int> meshOf_;  // -1: nothing to draw
    std::vector<int> skinNumbers_;   // of the document's skins in the file; -1: gone
    Json roots_ = Json::array();
};

bool Make(const SceneDocument& document, BakedKeys keys, bool withExtension, std::string& bytes, std::string& problem,
          const std::function<bool(double)>& goesOn = {}) {
    try {
        return SceneWriter(document, keys, withExtension, goesOn).Write(bytes, problem);
    } catch (const std::bad_alloc&) {
        problem = "the scene is too large for this machine's memory.";
    } catch (const std::exception& error) {
        problem = error.what();
    }
    return false;
}

/// Text with its data inside.
std::string ToText(std::string_view glb) {
    tavrik::GltfContainer container;
    std::string problem;
    if (!tavrik::SplitGltf(glb, container, problem)) Refuse(problem);
    Json json = Json::parse(container.text);
    if (json.contains("extensions") && json["extensions"].contains(kExtension)) json["extensions"][kExtension].erase(kSealKey);
    if (json.contains("buffers")) {
        const std::string_view data = container.binary.substr(0, json["buffers"][0]["byteLength"].get<std::size_t>());
        json["buffers"][0]["uri"] = "data:application/octet-stream;base64," + ToBase64(data);
    }
    return json.dump(1, '\t') + '\n';
}

}  // namespace

bool MakeSceneFile(const SceneDocument& document, std::string& bytes, std::string& problem) {
    if (!Make(document, BakedKeys::EverySample, /*withExtension=*/true, bytes, problem)) return false;
    SealScene(bytes);
    return true;
}

bool MakeSnapshot(const SceneDocument& document, std::string& bytes, std::string& problem) {
    if (!Make(document, BakedKeys::None, /*withExtension=*/true, bytes, problem)) return false;
    SealScene(bytes);
    return true;
}

bool MakeFilmFile(const SceneDocument& document, BakedKeys keys, std::string& bytes, std::string& problem,
                  const std::function<bool(double)>& goesOn) {
    return Make(document, keys, /*withExtension=*/false, bytes, problem, goesOn);
}

bool ToFileForm(const std::filesystem::path& file, std::string& bytes, std::string& problem) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    if (extension == ".glb") return true;
    try {
        if (extension == ".gltf") {
            bytes = ToText(bytes);
            return true;
        }
        problem = fmt::format("{}: scenes are written as .glb or .gltf.", file.string());
    } catch (const std::bad_alloc&) {
        problem = fmt::format("{}: the scene is too large for this machine's memory.", file.string());
    } catch (const std::exception& error) {
        problem = fmt::format("{}: {}", file.string(), error.what());
    }
    return false;
}

bool WriteSceneFile(const std::filesystem::path& file, std::string bytes, std::string& problem) {
    return ToFileForm(file, bytes, problem) && tavrik::WriteFileAtomically(file, bytes, problem);
}

}  // namespace tavrik_host
