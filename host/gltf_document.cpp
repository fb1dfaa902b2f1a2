#include "host/gltf_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <vector>

#include "host/gltf_container.h"
#include "host/gltf_elements.h"
#include "host/gltf_extensions.h"
#include "host/gltf_links.h"
#include "host/gltf_side_files.h"
#include "host/gltf_uses.h"
#include "host/scene_seal.h"

namespace tavrik_host {
namespace {

/// Extensions that a file may require.
bool CanBeRequired(std::string_view name) { return name == kExtension || tavrik::IsHarmlessExtension(name); }

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

void AppendData(std::string& binary, std::string_view data) {
    if (data.size() > kMostBytes - std::min(binary.size(), kMostBytes))
        Refuse("it refers to more data than the 4 GB that a glTF file may have.");
    binary += data;
    Pad(binary);
}

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

/// Every number of an accessor or a buffer view is checked here once, and written as the whole number that it is.
void CheckUses(Json& json) {
    const std::size_t accessors = CountOf(json, "accessors"), views = CountOf(json, "bufferViews");
    VisitAccessorUses(json,
                      [&](Json& index) { index = IndexInto(index, accessors, "accessors", "the number of an accessor"); });
    const auto checkView = [&](Json& index) { index = IndexInto(index, views, "buffer views", "the number of a buffer view"); };
    VisitViewUses(json, checkView);
    VisitChunkViews(json, checkView);
}

}  // namespace

void Pad(std::string& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4, '\0'); }

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

}  // namespace tavrik_host
