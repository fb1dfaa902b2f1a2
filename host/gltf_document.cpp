#include "host/gltf_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "host/gltf_container.h"
#include "host/gltf_links.h"
#include "host/gltf_side_files.h"
#include "host/scene_seal.h"

namespace tavrik_host {
namespace {

constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

bool StartsWithAny(std::string_view text, std::initializer_list<std::string_view> prefixes) {
    return std::any_of(prefixes.begin(), prefixes.end(), [&](std::string_view prefix) { return text.starts_with(prefix); });
}

/// Extensions that change how a surface looks but not where it is.
bool CanBeRequired(std::string_view name) {
    return name == kExtension || name == "KHR_mesh_quantization" ||
           StartsWithAny(name, {"KHR_materials_", "KHR_texture_", "EXT_texture_", "MSFT_texture_", "KHR_lights_"});
}

/// Extensions whose references to accessors and buffer views `VisitAccessorUses` and `VisitViewUses` know.
bool UsesAreKnown(std::string_view name) {
    return CanBeRequired(name) || name == "KHR_draco_mesh_compression" || name == "EXT_mesh_gpu_instancing" ||
           name == "EXT_meshopt_compression";
}

template <typename Visit>
void ForEach(Json& object, const char* key, Visit visit) {
    if (!object.is_object()) return;
    const auto list = object.find(key);
    if (list == object.end() || !(list->is_array() || list->is_object())) return;
    for (Json& entry : *list) visit(entry);
}

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

template <typename Visit>
void VisitAt(Json& object, std::initializer_list<const char*> path, Visit visit) {
    if (Json* value = Child(object, path)) visit(*value);
}

template <typename Visit>
void VisitAnimationAccessors(Json& json, Visit visit) {
    ForEach(json, "animations", [&](Json& animation) {
        ForEach(animation, "samplers", [&](Json& sampler) {
            VisitAt(sampler, {"input"}, visit);
            VisitAt(sampler, {"output"}, visit);
        });
    });
}

/// Calls `visit` with every number of an accessor.
template <typename Visit>
void VisitAccessorUses(Json& json, Visit visit) {
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

/// Calls `visit` with every number of a buffer view.
template <typename Visit>
void VisitViewUses(Json& json, Visit visit) {
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

template <typename Visit>
void VisitChunkViews(Json& json, Visit visit) {
    Json* extension = Child(json, {"extensions", kExtension});
    if (extension == nullptr) return;
    for (const char* list : {"objects", "controllers"}) {
        ForEach(*extension, list,
                [&](Json& thing) { ForEach(thing, "chunks", [&](Json& chunk) { VisitAt(chunk, {"bufferView"}, visit); }); });
    }
}

/// Sets flags of the numbers that it visits. Checks come elsewhere: a number that is none, or too large, is passed over.
struct Marker {
    std::vector<bool>& flags;
    bool value;
    void operator()(const Json& index) const {
        if (!index.is_number_unsigned() || index.get<std::size_t>() >= flags.size()) return;
        flags[index.get<std::size_t>()] = value;
    }
};

std::size_t CountOf(const Json& json, const char* key) {
    const Json* list = Find(json, key);
    return list != nullptr && list->is_array() ? list->size() : 0;
}

// ---- Opening

void CheckHead(const Json& json) {
    if (!json.is_object()) Refuse("this is not a glTF file.");
    const Json& asset = Need(json, "asset", "the file");
    const std::string& version = Text(Need(asset, "version", "\"asset\""), "the version of the file");
    const Json* least = Find(asset, "minVersion");
    if (!version.starts_with("2.") || (least != nullptr && *least != "2.0")) {
        Refuse(fmt::format("it is glTF {}, but only glTF 2 can be read; export it as glTF 2.0.", version.substr(0, 20)));
    }
    for (const Json& name : OptionalList(json, "extensionsRequired", "the file")) {
        const std::string& text = Text(name, "the name of an extension");
        if (!CanBeRequired(text)) {
            Refuse(fmt::format("it can't be read without the extension {}; export it without that.", text.substr(0, 80)));
        }
    }
    for (const char* list : {"extensionsUsed", "nodes", "scenes", "meshes", "skins", "accessors", "bufferViews", "images",
                             "animations", "materials"}) {
        for (const Json& entry : OptionalList(json, list, "the file")) {
            const bool isText = std::string_view(list) == "extensionsUsed";
            if (isText ? !entry.is_string() : !entry.is_object())
                Refuse(fmt::format("an entry of \"{}\" is of a wrong kind.", list));
        }
    }
    for (const char* object : {"extensions"}) {
        if (const Json* value = Find(json, object)) ObjectOf(*value, fmt::format("\"{}\" of the file", object));
    }
}

void Pad(std::string& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4, '\0'); }

void AppendData(std::string& binary, std::string_view data) {
    if (data.size() > kMostBytes - std::min(binary.size(), kMostBytes))
        Refuse("it refers to more data than the 4 GB that a glTF file may have.");
    binary += data;
    Pad(binary);
}

/// Where a buffer's data begins in the one that all are joined into, and its length.
struct Extent {
    std::size_t offset, length;
};

std::vector<Extent> JoinBuffers(const std::filesystem::path& file, const tavrik::GltfContainer& container, GltfFile& gltf) {
    std::vector<Extent> extents;
    for (const Json& buffer : OptionalList(gltf.json, "buffers", "the file")) {
        const std::string what = fmt::format("buffer {}", extents.size());
        const std::size_t length =
            std::size_t(WholeNumber(Need(buffer, "byteLength", what), 1, std::int64_t(kMostBytes), "the length of " + what));
        std::string side;
        std::string_view data;
        if (const Json* uri = Find(buffer, "uri")) {
            side = ReadUri(file, Text(*uri, "the address of " + what), what);
            data = side;
        } else if (extents.empty()) {
            data = container.binary;
        }
        if (data.size() < length) {
            Refuse(fmt::format("{} has {} of {} bytes; copy or export the file again.", what, data.size(), length));
        }
        extents.push_back({gltf.binary.size(), length});
        AppendData(gltf.binary, data.substr(0, length));
    }
    gltf.json.erase("buffers");
    return extents;
}

/// Where a buffer view, or what an extension says in its stead, lies. Both have the same three entries.
Extent CheckExtent(const Json& view, const std::vector<Extent>& buffers, const std::string& what) {
    const Extent& buffer = buffers[IndexInto(Need(view, "buffer", what), buffers.size(), "buffers", "the buffer of " + what)];
    const Json* start = Find(view, "byteOffset");
    const std::int64_t offset = start == nullptr ? 0 : WholeNumber(*start, 0, std::int64_t(kMostBytes), "the start of " + what);
    const std::int64_t length =
        WholeNumber(Need(view, "byteLength", what), 1, std::int64_t(kMostBytes), "the length of " + what);
    if (offset + length > std::int64_t(buffer.length)) {
        Refuse(fmt::format("{} ends past its buffer of {} bytes; export the file again.", what, buffer.length));
    }
    return {buffer.offset + std::size_t(offset), std::size_t(length)};
}

/// Calls `visit` with each thing in a buffer view that has a "buffer", a "byteOffset" and a "byteLength".
template <typename Visit>
void VisitExtents(Json& view, Visit visit) {
    visit(view);
    ForEach(view, "extensions", [&](Json& extension) {
        if (Find(extension, "buffer") != nullptr && Find(extension, "byteLength") != nullptr) visit(extension);
    });
}

void RebaseViews(GltfFile& gltf, const std::vector<Extent>& buffers) {
    std::size_t number = 0;
    ForEach(gltf.json, "bufferViews", [&](Json& view) {
        const std::string what = fmt::format("buffer view {}", number++);
        VisitExtents(view, [&](Json& place) {
            const Extent extent = CheckExtent(place, buffers, what);
            place["buffer"] = 0;
            place["byteOffset"] = extent.offset;
        });
    });
}

std::string_view ImageType(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG")) return "image/png";
    if (bytes.starts_with("\xff\xd8\xff")) return "image/jpeg";
    if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) return "image/webp";
    if (bytes.starts_with("\xabKTX 20")) return "image/ktx2";
    if (bytes.starts_with("DDS ")) return "image/vnd-ms.dds";
    return {};
}

/// A scene is one file, so images come into it.
void EmbedImages(const std::filesystem::path& file, GltfFile& gltf) {
    std::map<std::string, std::size_t> known;  // view of each address
    std::size_t number = 0;
    ForEach(gltf.json, "images", [&](Json& image) {
        const std::string what = fmt::format("image {}", number++);
        const Json* uri = Find(image, "uri");
        if (uri == nullptr || IsDataUri(Text(*uri, "the address of " + what))) return;
        const std::string address = uri->get<std::string>();
        if (!known.contains(address)) {
            const std::string bytes = ReadUri(file, address, what);
            if (ImageType(bytes).empty()) Refuse(fmt::format("{} in \"{}\" is of an unknown format.", what, address));
            Json& views = gltf.json["bufferViews"];
            views.push_back({{"buffer", 0}, {"byteOffset", gltf.binary.size()}, {"byteLength", bytes.size()}});
            AppendData(gltf.binary, bytes);
            known[address] = views.size() - 1;
        }
        const Json& view = gltf.json["bufferViews"][known[address]];
        image.erase("uri");
        image["mimeType"] = ImageType(std::string_view(gltf.binary).substr(view["byteOffset"].get<std::size_t>()));
        image["bufferView"] = known[address];
    });
}

std::int64_t ComponentSize(std::int64_t type) {
    switch (type) {
        case 5120:
        case 5121:
            return 1;
        case 5122:
        case 5123:
            return 2;
        case 5125:
        case 5126:
            return 4;
        default:
            return 0;
    }
}

/// Columns of a matrix start at multiples of four. 0 for an unknown type.
std::int64_t ElementSize(std::int64_t component, std::string_view type) {
    const auto matrix = [&](std::int64_t n) { return n * ((n * component + 3) / 4 * 4); };
    if (type == "SCALAR") return component;
    if (type.size() == 4 && (type.starts_with("VEC") || type.starts_with("MAT")) && type[3] >= '2' && type[3] <= '4') {
        return type[0] == 'V' ? (type[3] - '0') * component : matrix(type[3] - '0');
    }
    return 0;
}

/// Elements of `size` bytes have to lie in a view.
void CheckElements(const Json& json, const Json& place, std::int64_t count, std::int64_t size, bool mayStride,
                   const std::string& what) {
    const Json& views = OptionalList(json, "bufferViews", "the file");
    const Json& view =
        views[IndexInto(Need(place, "bufferView", what), views.size(), "buffer views", "the buffer view of " + what)];
    const Json* start = Find(place, "byteOffset");
    const std::int64_t offset = start == nullptr ? 0 : WholeNumber(*start, 0, std::int64_t(kMostBytes), "the start of " + what);
    const Json* step = Find(view, "byteStride");
    const std::int64_t stride =
        step == nullptr || !mayStride ? size : WholeNumber(*step, 1, 255, "the stride of the buffer view of " + what);
    // Both factors have at most 32 bits.
    const std::int64_t length = view["byteLength"].get<std::int64_t>();
    if (count > 0 && offset + (count - 1) * stride + size > length) {
        Refuse(
            fmt::format("{} reads {} elements past its buffer view of {} bytes; export the file again.", what, count, length));
    }
}

void CheckAccessors(const Json& json) {
    std::size_t number = 0;
    for (const Json& accessor : OptionalList(json, "accessors", "the file")) {
        const std::string what = fmt::format("accessor {}", number++);
        const std::int64_t component =
            ComponentSize(WholeNumber(Need(accessor, "componentType", what), 0, kMostBytes, "the component type of " + what));
        const std::int64_t size = ElementSize(component, Text(Need(accessor, "type", what), "the type of " + what));
        if (size == 0) Refuse(fmt::format("{} has a type that glTF doesn't know.", what));
        const std::int64_t count = WholeNumber(Need(accessor, "count", what), 0, kMostBytes, "the count of " + what);
        if (Find(accessor, "bufferView") != nullptr) CheckElements(json, accessor, count, size, true, what);
        const Json* sparse = Find(accessor, "sparse");
        if (sparse == nullptr) continue;
        const std::int64_t few = WholeNumber(Need(*sparse, "count", what), 0, count, "the count of sparse elements of " + what);
        const Json& indices = Need(*sparse, "indices", what);
        const std::int64_t indexSize = ComponentSize(WholeNumber(Need(indices, "componentType", what), 0, kMostBytes, what));
        if (indexSize == 0) Refuse(fmt::format("{} has a type that glTF doesn't know.", what));
        CheckElements(json, indices, few, indexSize, false, what);
        CheckElements(json, Need(*sparse, "values", what), few, size, false, what);
    }
}

/// Every number of an accessor or a buffer view is checked here once, and written as the whole number that it is.
void CheckUses(Json& json) {
    const std::size_t accessors = CountOf(json, "accessors"), views = CountOf(json, "bufferViews");
    VisitAccessorUses(json,
                      [&](Json& index) { index = IndexInto(index, accessors, "accessors", "the number of an accessor"); });
    const auto checkView = [&](Json& index) { index = IndexInto(index, views, "buffer views", "the number of a buffer view"); };
    VisitViewUses(json, checkView);
    VisitChunkViews(json, checkView);
}

// ---- Dropping

void NamesOfExtensions(const Json& json, std::vector<std::string>& names) {
    // Depth is bounded: the container refuses text that is nested deeply.
    for (const auto& [key, value] : json.items()) {
        if (json.is_object() && key == "extensions" && value.is_object()) {
            for (const auto& extension : value.items()) names.push_back(extension.key());
        }
        if (value.is_structured()) NamesOfExtensions(value, names);
    }
}

bool AllUsesAreKnown(const Json& json) {
    std::vector<std::string> names;
    NamesOfExtensions(json, names);
    return std::all_of(names.begin(), names.end(), [](const std::string& name) { return UsesAreKnown(name); });
}

/// Takes the flagged entries out of a list. @return the new number of each entry that stays
std::vector<std::size_t> DropEntries(Json& json, const char* key, std::vector<bool> drop, bool onlyAtTheEnd) {
    std::vector<std::size_t> numbers(drop.size(), 0);
    if (drop.empty()) return numbers;
    if (onlyAtTheEnd) {
        std::size_t end = drop.size();
        while (end > 0 && drop[end - 1]) --end;
        std::fill(drop.begin(), drop.begin() + std::ptrdiff_t(end), false);
    }
    Json kept = Json::array();
    for (std::size_t i = 0; i < drop.size(); ++i) {
        numbers[i] = kept.size();
        if (!drop[i]) kept.push_back(std::move(json[key][i]));
    }
    if (kept.empty()) {
        json.erase(key);
    } else {
        json[key] = std::move(kept);
    }
    return numbers;
}

void Renumber(Json& index, const std::vector<std::size_t>& numbers) {
    if (index.is_number_unsigned() && index.get<std::size_t>() < numbers.size()) index = numbers[index.get<std::size_t>()];
}

/// Keeps the bytes that some view lies in. They stay in order, and each keeps its offset from a multiple of four, so that doing
/// it again changes nothing.
void PackBinary(GltfFile& gltf) {
    std::vector<Extent> extents;
    ForEach(gltf.json, "bufferViews", [&](Json& view) {
        VisitExtents(view, [&](Json& place) {
            extents.push_back({place["byteOffset"].get<std::size_t>(), place["byteLength"].get<std::size_t>()});
        });
    });
    std::sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) { return a.offset < b.offset; });
    std::map<std::size_t, std::size_t> moved;  // start of a run of bytes -> its new place
    std::string packed;
    for (std::size_t i = 0; i < extents.size();) {
        const std::size_t begin = extents[i].offset;
        std::size_t end = begin;
        for (; i < extents.size() && extents[i].offset <= end; ++i) end = std::max(end, extents[i].offset + extents[i].length);
        while (packed.size() % 4 != begin % 4) packed += '\0';
        moved[begin] = packed.size();
        packed.append(gltf.binary, begin, end - begin);
    }
    Pad(packed);
    ForEach(gltf.json, "bufferViews", [&](Json& view) {
        VisitExtents(view, [&](Json& place) {
            const std::size_t offset = place["byteOffset"].get<std::size_t>();
            const auto run = std::prev(moved.upper_bound(offset));
            place["byteOffset"] = run->second + (offset - run->first);
        });
    });
    gltf.binary = std::move(packed);
}

}  // namespace

GltfFile OpenGltf(const std::filesystem::path& file, std::string_view bytes) {
    tavrik::GltfContainer container;
    std::string problem;
    if (!tavrik::SplitGltf(bytes, container, problem)) Refuse(problem);
    if (container.isBinary) CheckSeal(bytes);
    GltfFile gltf;
    gltf.json = Json::parse(container.text, nullptr, /*allow_exceptions=*/false);
    if (gltf.json.is_discarded()) Refuse("its text is damaged; copy or export it again.");
    CheckHead(gltf.json);
    const std::vector<Extent> buffers = JoinBuffers(file, container, gltf);
    RebaseViews(gltf, buffers);
    EmbedImages(file, gltf);
    CheckAccessors(gltf.json);
    CheckLinks(gltf.json);
    CheckUses(gltf.json);
    return gltf;
}

OwnData FindOwnData(const Json& json) {
    OwnData own{std::vector<bool>(CountOf(json, "accessors"), false), std::vector<bool>(CountOf(json, "bufferViews"), false)};
    // Nothing is written through these: the visitors serve readers and writers alike.
    Json& visited = const_cast<Json&>(json);
    VisitAnimationAccessors(visited, Marker{own.accessors, true});
    VisitChunkViews(visited, Marker{own.views, true});
    return own;
}

void DropUnused(GltfFile& gltf, const OwnData& own) {
    Json& json = gltf.json;
    const bool onlyAtTheEnd = !AllUsesAreKnown(json);
    std::vector<bool> dropAccessors = own.accessors;
    VisitAccessorUses(json, Marker{dropAccessors, false});
    // What a dropped accessor lay in goes with it.
    std::vector<bool> dropViews = own.views;
    for (std::size_t i = 0; i < dropAccessors.size(); ++i) {
        if (dropAccessors[i]) VisitAt(json["accessors"][i], {"bufferView"}, Marker{dropViews, true});
    }
    const std::vector<std::size_t> accessors = DropEntries(json, "accessors", dropAccessors, onlyAtTheEnd);
    VisitAccessorUses(json, [&](Json& index) { Renumber(index, accessors); });
    VisitViewUses(json, Marker{dropViews, false});
    const std::vector<std::size_t> views = DropEntries(json, "bufferViews", dropViews, onlyAtTheEnd);
    VisitViewUses(json, [&](Json& index) { Renumber(index, views); });
    PackBinary(gltf);
}

}  // namespace tavrik_host
