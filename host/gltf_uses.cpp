#include "host/gltf_uses.h"

#include "host/gltf_document.h"
#include "host/gltf_extensions.h"

namespace tavrik_host {
namespace {

Json* Child(Json& object, std::initializer_list<const char*> path) {
    Json* at = &object;
    for (const char* key : path) {
        if (!at->is_object()) return nullptr;
        const auto found = at->find(key);
        if (found == at->end()) return nullptr;
        at = &*found;
    }
    return at;
}

}  // namespace

void ForEach(Json& object, const char* key, const VisitJson& visit) {
    if (!object.is_object()) return;
    const auto list = object.find(key);
    if (list == object.end() || !(list->is_array() || list->is_object())) return;
    for (Json& entry : *list) visit(entry);
}

void VisitAt(Json& object, std::initializer_list<const char*> path, const VisitJson& visit) {
    if (Json* value = Child(object, path)) visit(*value);
}

void VisitAnimationAccessors(Json& json, const VisitJson& visit) {
    ForEach(json, "animations", [&](Json& animation) {
        ForEach(animation, "samplers", [&](Json& sampler) {
            VisitAt(sampler, {"input"}, visit);
            VisitAt(sampler, {"output"}, visit);
        });
    });
}

void VisitAccessorUses(Json& json, const VisitJson& visit) {
    ForEach(json, "meshes", [&](Json& mesh) {
        ForEach(mesh, "primitives", [&](Json& primitive) {
            ForEach(primitive, "attributes", visit);
            VisitAt(primitive, {"indices"}, visit);
            ForEach(primitive, "targets", [&](Json& target) {
                for (Json& accessor : target) visit(accessor);
            });
        });
    });
    ForEach(json, "skins", [&](Json& skin) { VisitAt(skin, {"inverseBindMatrices"}, visit); });
    ForEach(json, "nodes", [&](Json& node) {
        VisitAt(node, {"extensions", "EXT_mesh_gpu_instancing", "attributes"}, [&](Json& attributes) {
            for (Json& accessor : attributes) visit(accessor);
        });
    });
    VisitAnimationAccessors(json, visit);
}

void VisitViewUses(Json& json, const VisitJson& visit) {
    ForEach(json, "accessors", [&](Json& accessor) {
        VisitAt(accessor, {"bufferView"}, visit);
        VisitAt(accessor, {"sparse", "indices", "bufferView"}, visit);
        VisitAt(accessor, {"sparse", "values", "bufferView"}, visit);
    });
    ForEach(json, "images", [&](Json& image) { VisitAt(image, {"bufferView"}, visit); });
    ForEach(json, "meshes", [&](Json& mesh) {
        ForEach(mesh, "primitives", [&](Json& primitive) {
            VisitAt(primitive, {"extensions", "KHR_draco_mesh_compression", "bufferView"}, visit);
        });
    });
}

void VisitChunkViews(Json& json, const VisitJson& visit) {
    Json* extension = Child(json, {"extensions", kExtension});
    if (extension == nullptr) return;
    for (const char* list : {"objects", "controllers"}) {
        ForEach(*extension, list,
                [&](Json& thing) { ForEach(thing, "chunks", [&](Json& chunk) { VisitAt(chunk, {"bufferView"}, visit); }); });
    }
}

void VisitExtents(Json& view, const VisitJson& visit) {
    visit(view);
    ForEach(view, "extensions", [&](Json& extension) {
        if (Find(extension, "buffer") != nullptr && Find(extension, "byteLength") != nullptr) visit(extension);
    });
}

bool UsesAreKnown(std::string_view extension) {
    return extension == kExtension || tavrik::IsHarmlessExtension(extension) || extension == "KHR_draco_mesh_compression" ||
           extension == "EXT_mesh_gpu_instancing" || extension == "EXT_meshopt_compression";
}

std::size_t CountOf(const Json& json, const char* key) {
    const Json* list = Find(json, key);
    return list != nullptr && list->is_array() ? list->size() : 0;
}

}  // namespace tavrik_host
