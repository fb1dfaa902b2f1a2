#include "host/scene_parse.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <string_view>

#include "host/scene_parameters.h"

namespace tavrik_host {
namespace {

constexpr int kVersion = 1;

void ReadSettings(const Json& json, SceneRecords& records) {
    const std::string where = "the scene";
    const std::int64_t version = WholeNumber(Need(json, "version", where), 1, 1'000'000, "the version of the scene");
    if (version != kVersion) {
        Refuse(fmt::format("it is a scene of version {}, and this program knows version {} only; take a newer one.", version,
                           kVersion));
    }
    records.metresPerUnit = Number(Need(json, "metresPerUnit", where), "the scene's unit");
    if (!(records.metresPerUnit >= 1e-9 && records.metresPerUnit <= 1e9)) {
        Refuse(fmt::format("one unit of the scene can't be {} m.", records.metresPerUnit));
    }
    records.ticksPerFrame =
        int(WholeNumber(Need(json, "ticksPerFrame", where), 1, TIME_TICKSPERSEC, "the number of ticks to a frame"));
    const Json& range = ListOf(Need(json, "animationRange", where), 2, "the animation range");
    records.firstTick = Int32(range[0], "the start of the animation range");
    records.lastTick = Int32(range[1], "the end of the animation range");
    if (records.lastTick < records.firstTick) Refuse("the animation range ends before it starts.");
    records.time = Int32(Need(json, "time", where), "the time of the scene");
    records.nextHandle = ULONG(WholeNumber(Need(json, "nextHandle", where), 1, 0xffffffff, "the next handle"));
    const std::string& seed = Text(Need(json, "seed", where), "the seed");
    const auto read = std::from_chars(seed.data(), seed.data() + seed.size(), records.seed);
    if (read.ec != std::errc() || read.ptr != seed.data() + seed.size()) Refuse("the seed is not a whole number of 64 bits.");
}

std::vector<Chunk> ReadChunks(const GltfFile& gltf, const Json& thing, const std::string& name) {
    std::vector<Chunk> chunks;
    for (const Json& json : OptionalList(thing, "chunks", name)) {
        const std::string what = "a chunk of " + name;
        Chunk chunk{USHORT(WholeNumber(Need(json, "id", what), 0, 0xffff, "the number of " + what)), {}};
        if (const Json* index = Find(json, "bufferView")) {
            const Json& view = gltf.json["bufferViews"][index->get<std::size_t>()];
            chunk.bytes = gltf.binary.substr(view["byteOffset"].get<std::size_t>(), view["byteLength"].get<std::size_t>());
        }
        const std::uint32_t sum = Uint32(Need(json, "crc32", what), "the check sum of " + what);
        const auto* const data = reinterpret_cast<const Bytef*>(chunk.bytes.data());
        if (crc32_z(0, data, chunk.bytes.size()) != sum) {
            Refuse(fmt::format("chunk {} of {} is damaged; take the scene from a backup.", chunk.id, name));
        }
        chunks.push_back(std::move(chunk));
    }
    return chunks;
}

// ---- The host's own controller

template <std::size_t N>
std::array<float, N> Singles(const Json& json, std::size_t first, const std::string& what) {
    std::array<float, N> numbers;
    for (std::size_t i = 0; i < N; ++i) numbers[i] = Single(json[first + i], what);
    return numbers;
}

void FromJson(const Json& json, std::size_t first, const std::string& what, Point3& value) {
    const auto n = Singles<3>(json, first, what);
    value = Point3(n[0], n[1], n[2]);
}

void FromJson(const Json& json, std::size_t first, const std::string& what, Rotation& value) {
    const auto n = Singles<4>(json, first, what);
    value = {n[0], n[1], n[2], n[3]};
    double length = 0.0;
    for (const float c : n) length += double(c) * double(c);
    if (!(length > 1e-12 && length < 1e12)) Refuse(fmt::format("{} is no rotation.", what));
}

template <typename Value>
void ReadTrack(const Json& controller, const char* key, const std::string& name, KeyTrack<Value>& track, Value& rest) {
    const Json* json = Find(controller, key);
    if (json == nullptr) return;
    const std::string what = fmt::format("\"{}\" of {}", key, name);
    constexpr std::size_t kWidth = sizeof(Value) / sizeof(float);
    FromJson(ListOf(Need(*json, "rest", what), kWidth, "\"rest\" in " + what), 0, "\"rest\" in " + what, rest);
    const std::string& curve = Text(Need(*json, "curve", what), "\"curve\" in " + what);
    if (curve != "LINEAR" && curve != "STEP") Refuse(fmt::format("the curve of {} is neither LINEAR nor STEP.", what));
    track.curve = curve == "STEP" ? KeyCurve::Step : KeyCurve::Linear;
    for (const Json& keyJson : OptionalList(*json, "keys", what)) {
        const std::string keyName = "a key in " + what;
        ListOf(keyJson, kWidth + 1, keyName);
        Key<Value> entry{Int32(keyJson[0], "the tick of " + keyName), {}};
        FromJson(keyJson, 1, keyName, entry.value);
        if (!track.keys.empty() && entry.tick <= track.keys.back().tick) {
            Refuse(fmt::format("the keys in {} don't follow one another.", what));
        }
        track.keys.push_back(entry);
    }
}

PrsRecord ReadPrs(const Json& json, const std::string& name) {
    PrsRecord prs;
    prs.local = MatrixFromJson(Need(json, "matrix", name), "the matrix of " + name);
    ReadTrack(json, "position", name, prs.position, prs.restPosition);
    ReadTrack(json, "rotation", name, prs.rotation, prs.restRotation);
    ReadTrack(json, "scale", name, prs.scale, prs.restScale);
    return prs;
}

// ---- Objects and controllers

bool IsSceneObject(SClass_ID superClass) {
    return superClass == GEOMOBJECT_CLASS_ID || superClass == SHAPE_CLASS_ID || superClass == HELPER_CLASS_ID ||
           superClass == TEXMAP_CLASS_ID;
}

ThingRecord ReadThing(const GltfFile& gltf, const Json& json, const std::string& what, bool isController, std::size_t objects) {
    ThingRecord thing;
    ObjectOf(json, what);
    const std::string& className = Text(Need(json, "className", what), "the class name of " + what);
    thing.name = fmt::format("{} ({})", what, className.substr(0, 60));
    thing.superClass = Uint32(Need(json, "superClass", what), "the super class of " + what);
    const Json& parts = ListOf(Need(json, "classId", what), 2, "the class of " + what);
    const Class_ID id(Uint32(parts[0], "the class of " + what), Uint32(parts[1], "the class of " + what));
    if (isController ? thing.superClass != CTRL_MATRIX3_CLASS_ID : !IsSceneObject(thing.superClass)) {
        Refuse(fmt::format("{} is of a kind that can't stand there.", thing.name));
    }
    const bool isMesh = id == triObjectClassID && thing.superClass == GEOMOBJECT_CLASS_ID;
    const bool isSpline = id == splineShapeClassID && thing.superClass == SHAPE_CLASS_ID;
    const bool isPrs = isController && id == Class_ID(PRS_CONTROL_CLASS_ID, 0);
    if (isPrs) thing.prs = ReadPrs(json, thing.name);
    if (!isMesh && !isSpline && !isPrs) {
        thing.desc = FindClass(thing.superClass, id);
        if (thing.desc == nullptr) {
            Refuse(fmt::format("the class of {} is not known here; load the plug-in that has it.", thing.name));
        }
    }
    if (const Json* parameters = Find(json, "parameters")) {
        thing.parameters = ReadParameters(*parameters, thing.desc, objects, thing.name);
    }
    thing.chunks = ReadChunks(gltf, json, thing.name);
    return thing;
}

void ReadWrapped(const Json& json, std::size_t controllers, ThingRecord& thing) {
    const Json* wrapped = Find(json, "wrapped");
    if (wrapped == nullptr) return;
    const std::string what = "the controller in " + thing.name;
    thing.wrappedReference = int(WholeNumber(Need(*wrapped, "reference", what), 0, 1000, "the reference of " + what));
    thing.wrapped = int(IndexInto(Need(*wrapped, "controller", what), controllers, "controllers", what));
}

}  // namespace

void ParseExtension(const GltfFile& gltf, SceneRecords& records) {
    const Json* extensions = Find(gltf.json, "extensions");
    const Json* json = extensions == nullptr ? nullptr : Find(*extensions, kExtension);
    if (json == nullptr) return;
    ReadSettings(ObjectOf(*json, "the scene's part of the file"), records);
    const Json& objects = OptionalList(*json, "objects", "the scene");
    const Json& controllers = OptionalList(*json, "controllers", "the scene");
    for (const Json& object : objects) {
        const std::string what = fmt::format("object {}", records.objects.size());
        records.objects.push_back(ReadThing(gltf, object, what, false, objects.size()));
    }
    for (const Json& controller : controllers) {
        const std::string what = fmt::format("controller {}", records.controllers.size());
        records.controllers.push_back(ReadThing(gltf, controller, what, true, objects.size()));
        ReadWrapped(controller, controllers.size(), records.controllers.back());
    }
    for (const auto* list : {&records.objects, &records.controllers}) {
        for (const ThingRecord& thing : *list) {
            for (const ParamRecord& param : thing.parameters) {
                for (const EntryRecord& entry : param.entries) {
                    if (entry.object == kNone || (param.def->type & ~TYPE_TAB) != TYPE_TEXMAP) continue;
                    if (records.objects[std::size_t(entry.object)].superClass == TEXMAP_CLASS_ID) continue;
                    Refuse(fmt::format("{} has a map that is none.", thing.name));
                }
            }
        }
    }
}

SceneRecords ParseScene(const GltfFile& gltf, GltfNumbers& numbers) {
    SceneRecords records;
    ParseExtension(gltf, records);
    ParseNodes(gltf, numbers, records);
    std::set<ULONG> handles;
    for (const NodeRecord& node : records.nodes) handles.insert(node.handle);
    for (const auto* list : {&records.objects, &records.controllers}) {
        for (const ThingRecord& thing : *list) {
            for (const ParamRecord& param : thing.parameters) {
                for (const EntryRecord& entry : param.entries) {
                    if (entry.node != 0 && !handles.contains(entry.node)) {
                        Refuse(fmt::format("{} refers to node {}, which is not in the scene.", thing.name, entry.node));
                    }
                }
            }
        }
    }
    CheckLoops(records);
    return records;
}

}  // namespace tavrik_host
