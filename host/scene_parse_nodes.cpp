#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "host/gltf_keys.h"
#include "host/scene_axes.h"
#include "host/scene_parse.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

using tavrik::DPoint3;

// Far beyond any skeleton; every node asks all above it where it stands, one call within the other.
constexpr int kMostAbove = 1000;

const Json* ExtensionOf(const Json& node) {
    const Json* extensions = Find(node, "extensions");
    return extensions == nullptr ? nullptr : Find(*extensions, kExtension);
}

DPoint3 Vector(const Json& json, const std::string& what) {
    ListOf(json, 3, what);
    return {Number(json[0], what), Number(json[1], what), Number(json[2], what)};
}

/// Where a node stands in its parent, in scene units and axes.
struct Place {
    Placement placement;
    tavrik::DMatrix3 frame;
};

Place ReadPlace(const Json& node, double metresPerUnit, const std::string& what) {
    Placement placement;
    if (const Json* json = Find(node, "matrix")) {
        ListOf(*json, 16, "the matrix of " + what);
        // A row of ours is a column of glTF's. The axes themselves are named after the scene's, too: its Z is the file's Y.
        DPoint3 rows[4];
        for (std::size_t r = 0; r < 4; ++r) {
            const auto number = [&](std::size_t c) { return Number((*json)[r * 4 + c], "the matrix of " + what); };
            rows[r] = FromFileAxes({number(0), number(1), number(2)});
        }
        const tavrik::DMatrix3 frame{{rows[0], -rows[2], rows[1], rows[3] * (1.0 / metresPerUnit)}};
        return {PlacementOf(frame), frame};
    }
    if (const Json* json = Find(node, "translation")) {
        placement.position = FromFileAxes(Vector(*json, "the translation of " + what)) * (1.0 / metresPerUnit);
    }
    if (const Json* json = Find(node, "rotation")) {
        const std::string name = "the rotation of " + what;
        ListOf(*json, 4, name);
        const double x = Number((*json)[0], name), y = Number((*json)[1], name), z = Number((*json)[2], name),
                     w = Number((*json)[3], name);
        const double length = std::sqrt(x * x + y * y + z * z + w * w);
        if (!(length > 1e-6 && length < 1e6)) Refuse(fmt::format("{} is none.", name));
        placement.rotation = {x / length, -z / length, y / length, w / length};
    }
    if (const Json* json = Find(node, "scale")) placement.scale = SwapYAndZ(Vector(*json, "the scale of " + what));
    return {placement, FrameOf(placement)};
}

/// The tree of nodes.
class Hierarchy {
 public:
    explicit Hierarchy(const Json& json) : json_(json), nodes_(OptionalList(json, "nodes", "the file")) {
        parents_.assign(nodes_.size(), kNone);
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            const std::string what = fmt::format("node {}", i);
            for (const Json& child : OptionalList(nodes_[i], "children", what)) {
                const std::size_t at = IndexInto(child, nodes_.size(), "nodes", "a child of " + what);
                if (parents_[at] != kNone) Refuse(fmt::format("node {} hangs below two others.", at));
                parents_[at] = int(i);
            }
        }
        CheckCircles();
    }

    int Parent(std::size_t node) const { return parents_[node]; }

    /// Nodes of the scene that is shown, parents first and children in order; and those whole trees beside it that skins hang
    /// on.
    std::vector<std::size_t> Shown() const {
        std::vector<std::size_t> order;
        std::vector<bool> seen(nodes_.size(), false);
        for (const std::size_t root : Roots()) Walk(root, seen, order);
        for (const Json& skin : OptionalList(json_, "skins", "the file")) {
            for (const Json& joint : OptionalList(skin, "joints", "a skin")) {
                std::size_t root = IndexInto(joint, nodes_.size(), "nodes", "a joint of a skin");
                while (parents_[root] != kNone && !seen[root]) root = std::size_t(parents_[root]);
                if (!seen[root]) Walk(root, seen, order);
            }
        }
        return order;
    }

 private:
    void CheckCircles() const {
        // Every node has one parent at most, so whoever can't be reached from above is in a circle or below one.
        std::vector<bool> seen(nodes_.size(), false);
        std::vector<std::size_t> order;
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            if (parents_[i] == kNone) Walk(i, seen, order);
        }
        const auto lost = std::find(seen.begin(), seen.end(), false);
        if (lost != seen.end()) Refuse(fmt::format("node {} hangs below itself.", lost - seen.begin()));
    }

    std::vector<std::size_t> Roots() const {
        std::vector<std::size_t> roots;
        const Json& scenes = OptionalList(json_, "scenes", "the file");
        if (scenes.empty()) {
            for (std::size_t i = 0; i < nodes_.size(); ++i) {
                if (parents_[i] == kNone) roots.push_back(i);
            }
            return roots;
        }
        const Json* shown = Find(json_, "scene");
        const std::size_t scene = shown == nullptr ? 0 : IndexInto(*shown, scenes.size(), "scenes", "the scene to show");
        std::set<std::size_t> known;
        for (const Json& node : OptionalList(scenes[scene], "nodes", "the scene")) {
            const std::size_t root = IndexInto(node, nodes_.size(), "nodes", "a node of the scene");
            if (parents_[root] != kNone) Refuse(fmt::format("the scene begins with node {}, which hangs below another.", root));
            if (!known.insert(root).second) Refuse(fmt::format("the scene has node {} twice.", root));
            roots.push_back(root);
        }
        return roots;
    }

    void Walk(std::size_t root, std::vector<bool>& seen, std::vector<std::size_t>& order) const {
        std::vector<std::size_t> open{root};
        while (!open.empty()) {
            const std::size_t at = open.back();
            open.pop_back();
            seen[at] = true;
            order.push_back(at);
            const Json& children = OptionalList(nodes_[at], "children", "a node");
            for (std::size_t i = children.size(); i-- > 0;)
                open.push_back(std::size_t(WholeNumber(children[i], 0, 0xffffffff, "")));
        }
    }

    const Json& json_;
    const Json& nodes_;
    std::vector<int> parents_;
};

/// @param objects, controllers  how many of them the extension lists
void ReadNodeExtension(const Json& json, const SceneRecords& records, std::size_t objects, std::size_t controllers,
                       const std::string& what, NodeRecord& node) {
    ObjectOf(json, "the scene's part of " + what);
    node.handle = ULONG(WholeNumber(Need(json, "handle", what), 1, 0xffffffff, "the handle of " + what));
    node.name = FromUtf8(Text(Need(json, "name", what), "the name of " + what));
    if (const Json* object = Find(json, "object")) {
        node.object = int(IndexInto(*object, objects, "objects", "the object of " + what));
        if (records.objects[std::size_t(node.object)].superClass == TEXMAP_CLASS_ID) {
            Refuse(fmt::format("the object of {} is a texture map.", what));
        }
    }
    if (const Json* controller = Find(json, "controller")) {
        node.controller = int(IndexInto(*controller, controllers, "controllers", "the controller of " + what));
    }
    node.wireColor = Uint32(Need(json, "wireColor", what), "the colour of " + what);
}

std::string NameOf(const Json& json, const Json& node, const std::string& what) {
    if (const Json* name = Find(node, "name")) return Text(*name, "the name of " + what);
    if (const Json* mesh = Find(node, "mesh")) {
        if (const Json* name = Find(json["meshes"][mesh->get<std::size_t>()], "name")) return Text(*name, "the name of a mesh");
    }
    return "node";
}

/// Gives a node that another program made what a node of ours has.
class ForeignNodes {
 public:
    ForeignNodes(const GltfFile& gltf, GltfNumbers& numbers, SceneRecords& records, const std::vector<bool>& foreign)
        : gltf_(gltf),
          records_(records),
          motions_(ReadKeys(gltf, numbers, foreign, records.metresPerUnit, {records.ticksPerFrame, records.secondZero})) {}

    void Fill(const Json& json, const std::string& what, NodeRecord& node) {
        node.name = FromUtf8(NameOf(gltf_.json, json, what));
        if (const Json* mesh = Find(json, "mesh")) node.object = MeshObject(int(mesh->get<std::size_t>()));
        const auto [placement, frame] = ReadPlace(json, records_.metresPerUnit, what);
        PrsRecord prs;
        const auto motion = motions_.find(std::size_t(node.file));
        if (motion != motions_.end()) prs = motion->second;
        prs.local = ToSingle(frame);
        if (!IsFinite(prs.local)) Refuse(fmt::format("{} stands too far away.", what));
        if (motion != motions_.end()) {
            const DPoint3 &p = placement.position, &s = placement.scale;
            prs.restPosition = Point3(float(p.x), float(p.y), float(p.z));
            prs.restScale = Point3(float(s.x), float(s.y), float(s.z));
            prs.restRotation = {float(placement.rotation.x), float(placement.rotation.y), float(placement.rotation.z),
                                float(placement.rotation.w)};
            for (const float number : {prs.restScale.x, prs.restScale.y, prs.restScale.z}) {
                if (!std::isfinite(number)) Refuse(fmt::format("{} is too large.", what));
            }
        }
        node.controller = int(records_.controllers.size());
        ThingRecord controller;
        controller.name = "the controller of " + what;
        controller.superClass = CTRL_MATRIX3_CLASS_ID;
        controller.prs = std::move(prs);
        records_.controllers.push_back(std::move(controller));
    }

    /// Tick of the last key, or 0.
    TimeValue LastKey() const {
        TimeValue last = 0;
        for (const auto& [node, prs] : motions_) {
            for (const auto* track : {&prs.position, &prs.scale}) {
                if (!track->keys.empty()) last = std::max(last, track->keys.back().tick);
            }
            if (!prs.rotation.keys.empty()) last = std::max(last, prs.rotation.keys.back().tick);
        }
        return last;
    }

 private:
    int MeshObject(int mesh) {
        const auto found = objectOf_.find(mesh);
        if (found != objectOf_.end()) return found->second;
        ThingRecord object;
        object.name = fmt::format("mesh {}", mesh);
        object.superClass = IsMadeOfLines(gltf_.json["meshes"][std::size_t(mesh)]) ? SHAPE_CLASS_ID : GEOMOBJECT_CLASS_ID;
        object.mesh = mesh;
        records_.objects.push_back(std::move(object));
        return objectOf_[mesh] = int(records_.objects.size()) - 1;
    }

    const GltfFile& gltf_;
    SceneRecords& records_;
    std::map<std::size_t, PrsRecord> motions_;
    std::map<int, int> objectOf_;  // of each mesh
};

/// The numbers that a written scene's "extras" tell; NaN where there are none.
class TimelineExtras {
 public:
    explicit TimelineExtras(const Json& json) {
        const Json& scenes = OptionalList(json, "scenes", "the file");
        const Json* shown = Find(json, "scene");
        const std::size_t scene = shown == nullptr || !shown->is_number_unsigned() ? 0 : shown->get<std::size_t>();
        if (scene < scenes.size()) extras_ = Find(scenes[scene], "extras");
    }
    double Number(const char* key) const {
        const Json* value = extras_ == nullptr ? nullptr : Find(*extras_, key);
        return value != nullptr && value->is_number() ? value->get<double>() : std::nan("");
    }

 private:
    const Json* extras_ = nullptr;
};

/// What a file without our extension says of its timeline, as those that we write for other programs do.
void ReadTimeline(const TimelineExtras& extras, SceneRecords& records) {
    const double ticks = TIME_TICKSPERSEC / extras.Number("frameRate");
    if (!(ticks >= 1.0 && ticks <= TIME_TICKSPERSEC) || std::abs(ticks - std::round(ticks)) > 1e-6) return;
    records.ticksPerFrame = int(std::round(ticks));
    records.lastTick = 100 * records.ticksPerFrame;
    const double first = extras.Number("firstFrame") * records.ticksPerFrame,
                 last = extras.Number("lastFrame") * records.ticksPerFrame;
    if (!(std::abs(first) < 1e9 && std::abs(last) < 1e9 && first <= last)) return;
    records.firstTick = records.time = TimeValue(first);
    records.lastTick = TimeValue(last);
}

void GiveHandles(SceneRecords& records) {
    std::set<ULONG> taken;
    for (const NodeRecord& node : records.nodes) {
        if (node.handle == 0) continue;
        if (!taken.insert(node.handle).second) Refuse(fmt::format("handle {} belongs to two nodes.", node.handle));
        if (node.handle >= records.nextHandle) Refuse(fmt::format("handle {} is not below the next one to give.", node.handle));
    }
    // In the order of the file, so that nodes keep their numbers when it is written again.
    std::vector<NodeRecord*> without;
    for (NodeRecord& node : records.nodes) {
        if (node.handle == 0) without.push_back(&node);
    }
    std::sort(without.begin(), without.end(), [](const NodeRecord* a, const NodeRecord* b) { return a->file < b->file; });
    if (!without.empty() && without.size() >= 0xffffffff - records.nextHandle) Refuse("its nodes have used up all handles.");
    for (NodeRecord* node : without) node->handle = records.nextHandle++;
}

}  // namespace

void ParseNodes(const GltfFile& gltf, GltfNumbers& numbers, SceneRecords& records) {
    const Json& nodes = OptionalList(gltf.json, "nodes", "the file");
    const std::size_t meshes = OptionalList(gltf.json, "meshes", "the file").size();
    const std::size_t objects = records.objects.size(), controllers = records.controllers.size();
    const Hierarchy hierarchy(gltf.json);
    const std::vector<std::size_t> shown = hierarchy.Shown();
    std::vector<bool> foreign(nodes.size(), false);
    for (const std::size_t i : shown) foreign[i] = ExtensionOf(nodes[i]) == nullptr;
    const Json* extensions = Find(gltf.json, "extensions");
    const bool isOurs = extensions != nullptr && Find(*extensions, kExtension) != nullptr;
    const TimelineExtras extras(gltf.json);
    if (!isOurs) ReadTimeline(extras, records);
    const double secondZero = extras.Number("firstKeyTick");
    if (std::abs(secondZero) < 1e9) records.secondZero = TimeValue(secondZero);
    ForeignNodes maker(gltf, numbers, records, foreign);
    std::vector<int> recordOf(nodes.size(), kNone);
    std::vector<int> above(nodes.size(), 0);
    for (const std::size_t i : shown) {
        const std::string what = fmt::format("node {}", i);
        NodeRecord node;
        node.file = int(i);
        const int parent = hierarchy.Parent(i);
        if (parent != kNone) {
            node.parent = recordOf[std::size_t(parent)];
            above[i] = above[std::size_t(parent)] + 1;
            if (above[i] > kMostAbove) Refuse(fmt::format("node {} hangs below more than {} others.", i, kMostAbove));
        }
        if (const Json* mesh = Find(nodes[i], "mesh")) IndexInto(*mesh, meshes, "meshes", "the mesh of " + what);
        if (foreign[i]) {
            maker.Fill(nodes[i], what, node);
        } else {
            ReadNodeExtension(*ExtensionOf(nodes[i]), records, objects, controllers, what, node);
            const Json* mesh = Find(nodes[i], "mesh");
            if (mesh != nullptr && node.object != kNone) {
                ThingRecord& object = records.objects[std::size_t(node.object)];
                if (object.desc == nullptr && object.mesh == kNone) object.mesh = int(mesh->get<std::size_t>());
            }
        }
        recordOf[i] = int(records.nodes.size());
        records.nodes.push_back(std::move(node));
    }
    if (!isOurs && maker.LastKey() > records.lastTick) records.lastTick = maker.LastKey();
    GiveHandles(records);
}

}  // namespace tavrik_host
