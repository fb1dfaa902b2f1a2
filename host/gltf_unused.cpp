#include "host/gltf_unused.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "host/gltf_uses.h"

namespace tavrik_host {
namespace {

/// Sets flags of the numbers that it visits. Checks come elsewhere: a number that is none, or too large, is passed over.
struct Marker {
    std::vector<bool>& flags;
    bool value;
    void operator()(const Json& index) const {
        if (!index.is_number_unsigned() || index.get<std::size_t>() >= flags.size()) return;
        flags[index.get<std::size_t>()] = value;
    }
};

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
