#include "host/gltf_links.h"

#include <fmt/format.h>

#include <string>

namespace tavrik_host {
namespace {

class LinkChecker {
 public:
    explicit LinkChecker(const Json& json) : json_(json) {}

    /// Checks `owner[key]`, where it is there, as a number into the file's `list`.
    void Check(const Json& owner, const char* key, const char* list, const std::string& what) const {
        const Json* number = Find(owner, key);
        if (number == nullptr) return;
        IndexInto(*number, OptionalList(json_, list, "the file").size(), list, fmt::format("\"{}\" of {}", key, what));
    }

    /// Checks the texture that `owner[key]` names.
    void CheckTexture(const Json& owner, const char* key, const std::string& what) const {
        const Json* use = Find(owner, key);
        if (use == nullptr) return;
        const std::string name = fmt::format("\"{}\" of {}", key, what);
        Need(ObjectOf(*use, name), "index", name);
        Check(*use, "index", "textures", name);
    }

    /// Calls `check` with each entry of a list of the file and with its name.
    template <typename Check>
    void ForEach(const char* list, const char* singular, Check check) const {
        std::size_t number = 0;
        for (const Json& entry : OptionalList(json_, list, "the file")) {
            const std::string what = fmt::format("{} {}", singular, number++);
            check(ObjectOf(entry, what), what);
        }
    }

 private:
    const Json& json_;
};

}  // namespace

void CheckLinks(const Json& json) {
    const LinkChecker links(json);
    for (const char* list : {"cameras", "textures", "samplers"}) {
        links.ForEach(list, list, [](const Json&, const std::string&) {});
    }
    links.ForEach("nodes", "node", [&](const Json& node, const std::string& what) {
        links.Check(node, "mesh", "meshes", what);
        links.Check(node, "skin", "skins", what);
        links.Check(node, "camera", "cameras", what);
        if (const Json* extensions = Find(node, "extensions")) ObjectOf(*extensions, "\"extensions\" of " + what);
    });
    links.ForEach("meshes", "mesh", [&](const Json& mesh, const std::string& what) {
        for (const Json& primitive : OptionalList(mesh, "primitives", what)) {
            links.Check(ObjectOf(primitive, "a primitive of " + what), "material", "materials", what);
        }
    });
    links.ForEach("materials", "material", [&](const Json& material, const std::string& what) {
        for (const char* key : {"normalTexture", "occlusionTexture", "emissiveTexture"})
            links.CheckTexture(material, key, what);
        const Json* surface = Find(material, "pbrMetallicRoughness");
        if (surface == nullptr) return;
        ObjectOf(*surface, "the surface of " + what);
        for (const char* key : {"baseColorTexture", "metallicRoughnessTexture"}) links.CheckTexture(*surface, key, what);
    });
    links.ForEach("textures", "texture", [&](const Json& texture, const std::string& what) {
        links.Check(texture, "source", "images", what);
        links.Check(texture, "sampler", "samplers", what);
    });
    links.ForEach("animations", "animation", [&](const Json& animation, const std::string& what) {
        for (const Json& sampler : OptionalList(animation, "samplers", what)) ObjectOf(sampler, "a sampler of " + what);
        for (const Json& channel : OptionalList(animation, "channels", what)) {
            ObjectOf(Need(ObjectOf(channel, "a channel of " + what), "target", "a channel of " + what),
                     "the target of a channel of " + what);
        }
    });
    links.ForEach("bufferViews", "buffer view", [&](const Json& view, const std::string& what) {
        if (const Json* stride = Find(view, "byteStride")) WholeNumber(*stride, 1, 255, "the stride of " + what);
    });
}

}  // namespace tavrik_host
