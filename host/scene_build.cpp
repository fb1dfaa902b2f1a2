#include "host/scene_build.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

#include "host/scene_parameters.h"
#include "host/sdk/desktop.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

ReferenceTarget* MakeMesh(const ThingRecord& record, GltfNumbers& numbers, double metresPerUnit) {
    MeshRecord mesh;
    if (record.mesh != kNone) mesh = numbers.ReadMesh(std::size_t(record.mesh), metresPerUnit);
    TriObject* const object = CreateNewTriObject();
    object->mesh.setNumVerts(int(mesh.verts.size()));
    object->mesh.setNumFaces(int(mesh.faces.size()));
    std::copy(mesh.verts.begin(), mesh.verts.end(), object->mesh.verts);
    std::copy(mesh.faces.begin(), mesh.faces.end(), object->mesh.faces);
    return object;
}

ReferenceTarget* MakeSpline(const ThingRecord& record, GltfNumbers& numbers, double metresPerUnit) {
    // Read first: what is refused then leaves no object behind.
    decltype(LineShape::lines) lines;
    if (record.mesh != kNone) lines = numbers.ReadLines(std::size_t(record.mesh), metresPerUnit);
    auto* const object = new LineShape;
    object->lines = std::move(lines);
    return object;
}

ReferenceTarget* MakePrs(const PrsRecord& record) {
    auto* const control = new PrsControl;
    control->SetLocal(record.local);
    control->position = record.position;
    control->rotation = record.rotation;
    control->scale = record.scale;
    control->restPosition = record.restPosition;
    control->restRotation = record.restRotation;
    control->restScale = record.restScale;
    control->KeysChanged();
    return control;
}

ReferenceTarget* Make(const ThingRecord& record, GltfNumbers& numbers, double metresPerUnit) {
    if (record.prs) return MakePrs(*record.prs);
    if (record.desc == nullptr && record.superClass == SHAPE_CLASS_ID) return MakeSpline(record, numbers, metresPerUnit);
    if (record.desc == nullptr) return MakeMesh(record, numbers, metresPerUnit);
    auto* const thing = static_cast<ReferenceTarget*>(record.desc->Create(TRUE));
    if (thing == nullptr) Refuse(fmt::format("{} could not be made.", record.name));
    return thing;
}

void Wrap(const ThingRecord& record, ReferenceTarget& controller, const std::vector<ReferenceTarget*>& controllers) {
    if (record.wrapped == kNone) return;
    const int which = record.wrappedReference;
    // A class keeps its controller where it keeps no block.
    const bool fits = which < controller.NumRefs() && dynamic_cast<IParamBlock2*>(controller.GetReference(which)) == nullptr &&
                      controller.ReplaceReference(which, controllers[std::size_t(record.wrapped)]) != REF_FAIL &&
                      controller.GetReference(which) == controllers[std::size_t(record.wrapped)];
    if (!fits) Refuse(fmt::format("{} has no place for a controller at reference {}.", record.name, which));
}

/// A plug-in that refuses its data has left a sentence about it.
void LoadData(const ThingRecord& record, ReferenceTarget& thing, SceneLoad& load) {
    std::string& complaint = tavrik::TheDesktop().complaint;
    complaint.clear();
    const bool loaded = load.LoadChunks(thing, record.chunks);
    const std::string sentence = std::exchange(complaint, {});
    if (loaded && sentence.empty()) {
        if (!load.PartlyRead()) return;
        Refuse(fmt::format("chunk {} of {} is longer than what it tells of; take the scene from a backup.", *load.PartlyRead(),
                           record.name));
    }
    Refuse(sentence.empty() ? fmt::format("{} refuses its data.", record.name) : sentence);
}

}  // namespace

void SceneParts::Hold(ReferenceTarget* target) {
    held_.push_back(nullptr);
    ReplaceReference(int(held_.size()) - 1, target);
}

void MakeParts(const SceneRecords& records, GltfNumbers& numbers, SceneParts& parts, SceneLoad& load) {
    for (const ThingRecord& record : records.objects) {
        parts.objects.push_back(Make(record, numbers, records.metresPerUnit));
        parts.Hold(parts.objects.back());
    }
    for (const ThingRecord& record : records.controllers) {
        parts.controllers.push_back(Make(record, numbers, records.metresPerUnit));
        parts.Hold(parts.controllers.back());
    }
    for (std::size_t i = 0; i < parts.controllers.size(); ++i) {
        Wrap(records.controllers[i], *parts.controllers[i], parts.controllers);
    }
    const auto fill = [&](const std::vector<ThingRecord>& list, const std::vector<ReferenceTarget*>& things) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            SetPlainParameters(*things[i], list[i].parameters, parts.objects, list[i].name);
        }
    };
    fill(records.objects, parts.objects);
    fill(records.controllers, parts.controllers);
    for (std::size_t i = 0; i < parts.objects.size(); ++i) LoadData(records.objects[i], *parts.objects[i], load);
    for (std::size_t i = 0; i < parts.controllers.size(); ++i) LoadData(records.controllers[i], *parts.controllers[i], load);
}

void BuildScene(const SceneRecords& records, SceneParts& parts) {
    ResetScene();
    SetMetresPerUnit(records.metresPerUnit);
    SetTicksPerFrame(records.ticksPerFrame);
    GetCOREInterface()->SetAnimRange(Interval(records.firstTick, records.lastTick));
    GetCOREInterface()->SetTime(records.time, FALSE);
    tavrik::TheDesktop().seed = records.seed;
    std::vector<INode*> nodes;
    nodes.reserve(records.nodes.size());
    for (const NodeRecord& record : records.nodes) {
        INode* const parent = record.parent == kNone ? nullptr : nodes[std::size_t(record.parent)];
        auto* const object = record.object == kNone ? nullptr : static_cast<Object*>(parts.objects[std::size_t(record.object)]);
        INode* const node = CreateNode(object, record.name, parent, record.handle);
        assert(node != nullptr);
        if (record.controller != kNone) {
            node->SetTMController(static_cast<Control*>(parts.controllers[std::size_t(record.controller)]));
        }
        if (record.wireColor) node->SetWireColor(*record.wireColor);
        nodes.push_back(node);
    }
    SetNextHandle(records.nextHandle);
    for (std::size_t i = 0; i < parts.objects.size(); ++i) SetNodeParameters(*parts.objects[i], records.objects[i].parameters);
    for (std::size_t i = 0; i < parts.controllers.size(); ++i) {
        SetNodeParameters(*parts.controllers[i], records.controllers[i].parameters);
    }
}

}  // namespace tavrik_host
