#include "host/gltf_elements.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "host/gltf_document.h"

namespace tavrik_host {
namespace {

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

}  // namespace

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

}  // namespace tavrik_host
