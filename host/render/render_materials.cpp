// Materials and pictures out of a scene's file. What is damaged or unknown shows as if it weren't there: a render goes on.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "host/render/render_model.h"
#include "host/scene_json.h"

namespace tavrik_host {
namespace {

using Cover = RenderMaterial::Cover;

constexpr int kClampToEdge = 33071, kMirroredRepeat = 33648, kNearest = 9728;

float NumberAt(const Json& object, const char* key, float otherwise) {
    const Json* value = Find(object, key);
    return value != nullptr && value->is_number() ? value->get<float>() : otherwise;
}

int WholeAt(const Json& object, const char* key, int otherwise) {
    const Json* value = Find(object, key);
    return value != nullptr && value->is_number_integer() ? value->get<int>() : otherwise;
}

/// Numbers of a list; those that it lacks stay as they are.
void NumbersAt(const Json& object, const char* key, std::size_t count, float* numbers) {
    const Json* list = Find(object, key);
    if (list == nullptr || !list->is_array()) return;
    for (std::size_t i = 0; i < std::min(count, list->size()); ++i) {
        if ((*list)[i].is_number()) numbers[i] = (*list)[i].get<float>();
    }
}

const Json* EntryOf(const Json& json, const char* list, int number) {
    const Json* const all = Find(json, list);
    return all != nullptr && all->is_array() && number >= 0 && std::size_t(number) < all->size() ? &(*all)[std::size_t(number)]
                                                                                                 : nullptr;
}

PictureEdge EdgeOf(const Json& sampler, const char* key) {
    const int edge = WholeAt(sampler, key, 0);
    return edge == kClampToEdge ? PictureEdge::Clamp : edge == kMirroredRepeat ? PictureEdge::Mirror : PictureEdge::Repeat;
}

void TakePictureUse(const Json& json, const Json& use, RenderMaterial& material) {
    const Json* const texture = EntryOf(json, "textures", WholeAt(use, "index", -1));
    if (texture == nullptr) return;
    material.picture = WholeAt(*texture, "source", -1);
    material.spots = WholeAt(use, "texCoord", 0);
    if (const Json* sampler = EntryOf(json, "samplers", WholeAt(*texture, "sampler", -1)); sampler != nullptr) {
        material.edges[0] = EdgeOf(*sampler, "wrapS");
        material.edges[1] = EdgeOf(*sampler, "wrapT");
        material.blurred = WholeAt(*sampler, "magFilter", 0) != kNearest;
    }
    const Json* const extensions = Find(use, "extensions");
    const Json* const transform = extensions == nullptr ? nullptr : Find(*extensions, "KHR_texture_transform");
    if (transform == nullptr) return;
    NumbersAt(*transform, "offset", 2, material.offset);
    NumbersAt(*transform, "scale", 2, material.scale);
    material.spots = WholeAt(*transform, "texCoord", material.spots);
}

RenderMaterial MaterialOf(const Json& json, const Json& drawn) {
    RenderMaterial material;
    float color[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    material.metallic = material.roughness = 1.0f;
    if (const Json* surface = Find(drawn, "pbrMetallicRoughness"); surface != nullptr) {
        NumbersAt(*surface, "baseColorFactor", 4, color);
        material.metallic = std::clamp(NumberAt(*surface, "metallicFactor", 1.0f), 0.0f, 1.0f);
        material.roughness = std::clamp(NumberAt(*surface, "roughnessFactor", 1.0f), 0.0f, 1.0f);
        if (const Json* use = Find(*surface, "baseColorTexture"); use != nullptr) TakePictureUse(json, *use, material);
    } else {
        material.metallic = 0.0f;
    }
    material.color = Point3(color[0], color[1], color[2]);
    material.alpha = color[3];
    float glow[3] = {0.0f, 0.0f, 0.0f};
    NumbersAt(drawn, "emissiveFactor", 3, glow);
    if (Find(drawn, "emissiveTexture") == nullptr) material.glow = Point3(glow[0], glow[1], glow[2]);
    const Json* const mode = Find(drawn, "alphaMode");
    if (mode != nullptr && *mode == "BLEND") material.cover = Cover::SeeThrough;
    if (mode != nullptr && *mode == "MASK") material.cover = Cover::Cut;
    material.cutoff = NumberAt(drawn, "alphaCutoff", 0.5f);
    return material;
}

std::string_view ImageBytes(const SceneDocument& document, const Json& image) {
    const Json* const view = EntryOf(document.json, "bufferViews", WholeAt(image, "bufferView", -1));
    if (view == nullptr) return {};
    const int offset = WholeAt(*view, "byteOffset", 0), length = WholeAt(*view, "byteLength", 0);
    if (offset < 0 || length <= 0 || std::size_t(offset) + std::size_t(length) > document.binary.size()) return {};
    return std::string_view(document.binary).substr(std::size_t(offset), std::size_t(length));
}

}  // namespace

void TakeMaterials(const SceneDocument& document, RenderModel& model) {
    const Json empty = Json::array();
    const auto listOf = [&](const char* key) -> const Json& {
        const Json* list = Find(document.json, key);
        return list != nullptr && list->is_array() ? *list : empty;
    };
    for (const Json& drawn : listOf("materials")) model.materials.push_back(MaterialOf(document.json, drawn));
    model.materials.emplace_back();
    const Json& images = listOf("images");
    model.pictures.resize(images.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        const bool isUsed = std::any_of(model.materials.begin(), model.materials.end(),
                                        [i](const RenderMaterial& material) { return material.picture == int(i); });
        std::string problem;
        if (!isUsed || model.pictures[i].Decode(ImageBytes(document, images[i]), problem)) continue;
        model.notes.push_back(fmt::format("image {} of the scene can't be shown: {}.", i, problem));
    }
    for (RenderMaterial& material : model.materials) {
        if (material.picture < 0) continue;
        const std::size_t picture = std::size_t(material.picture);
        if (picture >= model.pictures.size() || model.pictures[picture].width() == 0) material.picture = -1;
    }
}

}  // namespace tavrik_host
