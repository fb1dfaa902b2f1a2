#include "host/render/render_model.h"

#include <algorithm>
#include <map>
#include <utility>

#include "host/scene_json.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

/// The mesh that a node shows; null for helpers, splines and empty meshes.
const Mesh* MeshOf(INode& node) {
    Object* const base = node.GetObjectRef();
    if (base == nullptr) return nullptr;
    Object* const object = base->Eval(0).obj;
    if (object == nullptr || object->IsRenderable() == 0 || object->CanConvertToType(triObjectClassID) == 0) return nullptr;
    auto* const tri = dynamic_cast<TriObject*>(object->ConvertToType(0, triObjectClassID));
    // What is made for the asker alone would have to be kept alive; meshes of this host are their own.
    if (tri == nullptr || tri != object || tri->GetMesh().numFaces == 0) return nullptr;
    return &tri->GetMesh();
}

int FileMeshOf(const SceneDocument& document, INode& node) {
    const auto part = document.nodeParts.find(node.GetHandle());
    if (part == document.nodeParts.end()) return -1;
    const Json* mesh = Find(part->second, "mesh");
    return mesh != nullptr && mesh->is_number_integer() ? mesh->get<int>() : -1;
}

}  // namespace

RenderModel TakeRenderModel(const SceneDocument& document, std::span<INode* const> grounds) {
    RenderModel model;
    TakeMaterials(document, model);
    std::map<std::pair<const Mesh*, int>, std::size_t> known;  // nodes may share what they carry
    for (INode* const node : AllNodes()) {
        const Mesh* const mesh = MeshOf(*node);
        if (mesh == nullptr) continue;
        const int fileMesh = FileMeshOf(document, *node);
        const auto [entry, isNew] = known.emplace(std::pair(mesh, fileMesh), model.shapes.size());
        if (isNew) model.shapes.push_back(TakeShape(document, *mesh, fileMesh, model));
        const bool takesTracks = std::find(grounds.begin(), grounds.end(), node) != grounds.end();
        model.things.push_back({node, entry->second, takesTracks});
    }
    return model;
}

}  // namespace tavrik_host
