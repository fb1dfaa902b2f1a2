#include "host/scene_write.h"

#include <fmt/format.h>
#include <zlib.h>

#include <limits>

#include "host/scene_parameters.h"
#include "host/scene_seal.h"
#include "host/sdk/desktop.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

Json Numbers(const Point3& p, const std::string& what) {
    return {FiniteToJson(p.x, what), FiniteToJson(p.y, what), FiniteToJson(p.z, what)};
}

Json Numbers(const Rotation& q, const std::string& what) {
    return {FiniteToJson(q.x, what), FiniteToJson(q.y, what), FiniteToJson(q.z, what), FiniteToJson(q.w, what)};
}

template <typename Value>
Json WriteTrack(const KeyTrack<Value>& track, const Value& rest, const std::string& what) {
    Json keys = Json::array();
    for (const Key<Value>& key : track.keys) {
        Json entry = Json::array({key.tick});
        for (Json& number : Numbers(key.value, what)) entry.push_back(number);
        keys.push_back(std::move(entry));
    }
    return {
        {"rest", Numbers(rest, what)}, {"curve", track.curve == KeyCurve::Step ? "STEP" : "LINEAR"}, {"keys", std::move(keys)}};
}

void WritePrs(const PrsControl& prs, const std::string& what, Json& json) {
    json["matrix"] = MatrixToJson(prs.Local(), what);
    const PrsControl plain;
    const bool hasRest =
        !(prs.restPosition == plain.restPosition && prs.restRotation == plain.restRotation && prs.restScale == plain.restScale);
    if (!prs.HasKeys() && !hasRest) return;
    json["position"] = WriteTrack(prs.position, prs.restPosition, what);
    json["rotation"] = WriteTrack(prs.rotation, prs.restRotation, what);
    json["scale"] = WriteTrack(prs.scale, prs.restScale, what);
}

std::string ClassNameOf(ReferenceTarget& thing) {
    MSTR name;
    thing.GetClassName(name);
    return ToUtf8(name.data());
}

}  // namespace

ExtensionWriter::ExtensionWriter(const std::vector<INode*>& nodes, tavrik::GlbWriter& glb) : glb_(glb) {
    for (INode* node : nodes) {
        if (Object* const object = node->GetObjectRef()) NumberOf(*object, objects_, objectNumbers_);
        if (Control* const control = node->GetTMController()) NumberOf(*control, controllers_, controllerNumbers_);
    }
}

int ExtensionWriter::NumberOf(ReferenceTarget& thing, std::vector<ReferenceTarget*>& list,
                              std::map<ReferenceTarget*, int>& numbers) {
    const auto [entry, isNew] = numbers.emplace(&thing, int(list.size()));
    if (isNew) list.push_back(&thing);
    return entry->second;
}

Json ExtensionWriter::Root() {
    const Interval range = GetCOREInterface()->GetAnimRange();
    Json root = {{kSealKey, kNoSeal},
                 {"version", 1},
                 {"metresPerUnit", MetresPerUnit()},
                 {"ticksPerFrame", GetTicksPerFrame()},
                 {"animationRange", {range.Start(), range.End()}},
                 {"time", GetCOREInterface()->GetTime()},
                 {"nextHandle", NextHandle()},
                 // As text: other programs' numbers may end at 53 bits.
                 {"seed", std::to_string(tavrik::TheDesktop().seed)}};
    // Both lists may grow while they are written: a controller brings the one that it wraps, a parameter its map.
    Json controllers = Json::array(), objects = Json::array();
    for (std::size_t i = 0; i < controllers_.size(); ++i) {
        controllers.push_back(WriteThing(*controllers_[i], fmt::format("controller {}", i), true));
    }
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        objects.push_back(WriteThing(*objects_[i], fmt::format("object {}", i), false));
    }
    root["objects"] = std::move(objects);
    root["controllers"] = std::move(controllers);
    return root;
}

Json ExtensionWriter::Node(INode& node) const {
    Json json = {{"handle", node.GetHandle()}, {"name", ToUtf8(node.GetName())}};
    if (Object* const object = node.GetObjectRef()) json["object"] = objectNumbers_.at(object);
    if (Control* const control = node.GetTMController()) json["controller"] = controllerNumbers_.at(control);
    json["wireColor"] = node.GetWireColor();
    return json;
}

Json ExtensionWriter::WriteThing(ReferenceTarget& thing, const std::string& number, bool isController) {
    const std::string className = ClassNameOf(thing), name = fmt::format("{} ({})", number, className);
    const Class_ID id = thing.ClassID();
    Json json = {{"superClass", thing.SuperClassID()}, {"classId", {id.PartA(), id.PartB()}}, {"className", className}};
    if (auto* const prs = dynamic_cast<PrsControl*>(&thing)) {
        WritePrs(*prs, "a number of " + name, json);
        return json;
    }
    const ReferenceNumbers numbers{[](INode& node) { return node.GetHandle(); },
                                   [this](ReferenceTarget& target) { return NumberOf(target, objects_, objectNumbers_); }};
    Json parameters = WriteParameters(thing, numbers, name);
    if (!parameters.empty()) json["parameters"] = std::move(parameters);
    for (int i = 0; isController && i < thing.NumRefs(); ++i) {
        auto* const wrapped = dynamic_cast<Control*>(thing.GetReference(i));
        if (wrapped == nullptr) continue;
        if (json.contains("wrapped")) Refuse(fmt::format("{} holds more than one controller.", name));
        json["wrapped"] = {{"reference", i}, {"controller", NumberOf(*wrapped, controllers_, controllerNumbers_)}};
    }
    for (const Chunk& chunk : SaveChunks(thing)) {
        Json entry = {{"id", chunk.id}};
        if (!chunk.bytes.empty()) entry["bufferView"] = glb_.AddBytes(chunk.bytes);
        entry["crc32"] = std::uint32_t(crc32_z(0, reinterpret_cast<const Bytef*>(chunk.bytes.data()), chunk.bytes.size()));
        json["chunks"].push_back(std::move(entry));
    }
    return json;
}

}  // namespace tavrik_host
