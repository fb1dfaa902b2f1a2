#include "host/gltf_accessor.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>

#include "host/tiny_gltf.h"

namespace tavrik {
namespace {

/// Elements in a buffer: `count` of them, `stride` bytes apart, the last one ending within `bytes`.
struct Elements {
    std::span<const unsigned char> bytes;
    std::size_t stride = 0;
    std::size_t count = 0;
};

/// Finds elements of `size` bytes each. Lengths are checked by division, so that no hostile number can overflow.
bool FindElements(const tinygltf::Model& model, int viewIndex, std::size_t offset, std::size_t count, std::size_t size,
                  Elements& elements, std::string& problem) {
    if (viewIndex < 0 || std::size_t(viewIndex) >= model.bufferViews.size()) {
        problem = fmt::format("buffer view {} is used, but there are {}; export the mesh again.", viewIndex,
                              model.bufferViews.size());
        return false;
    }
    const tinygltf::BufferView& view = model.bufferViews[std::size_t(viewIndex)];
    if (view.buffer < 0 || std::size_t(view.buffer) >= model.buffers.size()) {
        problem = fmt::format("buffer view {} uses buffer {}, but there are {}; export the mesh again.", viewIndex, view.buffer,
                              model.buffers.size());
        return false;
    }
    const std::vector<unsigned char>& data = model.buffers[std::size_t(view.buffer)].data;
    if (view.byteOffset > data.size() || view.byteLength > data.size() - view.byteOffset) {
        problem =
            fmt::format("buffer view {} ends past its buffer of {} bytes; export the mesh again.", viewIndex, data.size());
        return false;
    }
    elements.stride = view.byteStride != 0 ? view.byteStride : size;
    elements.count = count;
    const std::size_t length = view.byteLength;
    const bool fits = offset <= length && size <= length - offset && (length - offset - size) / elements.stride >= count - 1;
    if (count > 0 && !fits) {
        problem =
            fmt::format("{} elements of {} bytes are read from buffer view {}, which has {} bytes; export the mesh again.",
                        count, size, viewIndex, length);
        return false;
    }
    if (count > 0) elements.bytes = std::span(data).subspan(view.byteOffset + offset, length - offset);
    return true;
}

template <typename Number>
double Load(const unsigned char* at) {
    Number value;
    std::memcpy(&value, at, sizeof value);
    return double(value);
}

/// A normalised integer stands for a fraction: its largest value for 1, and below the opposite for -1.
template <typename Number>
double LoadInteger(const unsigned char* at, bool normalised) {
    const double value = Load<Number>(at);
    return normalised ? std::max(value / double(std::numeric_limits<Number>::max()), -1.0) : value;
}

double LoadComponent(const unsigned char* at, int type, bool normalised) {
    switch (type) {
        case TINYGLTF_COMPONENT_TYPE_BYTE:
            return LoadInteger<std::int8_t>(at, normalised);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return LoadInteger<std::uint8_t>(at, normalised);
        case TINYGLTF_COMPONENT_TYPE_SHORT:
            return LoadInteger<std::int16_t>(at, normalised);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return LoadInteger<std::uint16_t>(at, normalised);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
            return LoadInteger<std::uint32_t>(at, normalised);
        case TINYGLTF_COMPONENT_TYPE_FLOAT:
            return Load<float>(at);
        default:
            return Load<double>(at);
    }
}

/// 0 for a type that glTF doesn't have.
std::size_t ComponentSize(int type) {
    switch (type) {
        case TINYGLTF_COMPONENT_TYPE_BYTE:
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return 1;
        case TINYGLTF_COMPONENT_TYPE_SHORT:
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return 2;
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
        case TINYGLTF_COMPONENT_TYPE_FLOAT:
            return 4;
        case TINYGLTF_COMPONENT_TYPE_DOUBLE:
            return 8;
        default:
            return 0;
    }
}

bool IsIndexType(int type) {
    return type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE || type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT ||
           type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
}

const tinygltf::Accessor* FindAccessor(const tinygltf::Model& model, int index, int type, std::size_t most,
                                       std::string& problem) {
    if (index < 0 || std::size_t(index) >= model.accessors.size()) {
        problem = fmt::format("accessor {} is used, but there are {}; export the mesh again.", index, model.accessors.size());
        return nullptr;
    }
    const tinygltf::Accessor& accessor = model.accessors[std::size_t(index)];
    if (accessor.type != type || ComponentSize(accessor.componentType) == 0) {
        problem = fmt::format("accessor {} has another type than its use asks for; export the mesh again.", index);
        return nullptr;
    }
    if (accessor.count > most) {
        problem = fmt::format("accessor {} has {} elements, more than a ground may have; export fewer.", index, accessor.count);
        return nullptr;
    }
    return &accessor;
}

/// Puts the few elements of a sparse accessor over its zeros or its base.
bool OverlaySparse(const tinygltf::Model& model, const tinygltf::Accessor& accessor, std::vector<DPoint3>& out,
                   std::string& problem) {
    const auto& sparse = accessor.sparse;
    const std::size_t size = ComponentSize(accessor.componentType);
    const std::size_t indexSize = ComponentSize(sparse.indices.componentType);
    if (sparse.count < 0 || sparse.indices.byteOffset < 0 || sparse.values.byteOffset < 0 ||
        !IsIndexType(sparse.indices.componentType)) {
        problem = "a sparse accessor is damaged; export the mesh again.";
        return false;
    }
    Elements indices, values;
    if (!FindElements(model, sparse.indices.bufferView, std::size_t(sparse.indices.byteOffset), std::size_t(sparse.count),
                      indexSize, indices, problem) ||
        !FindElements(model, sparse.values.bufferView, std::size_t(sparse.values.byteOffset), std::size_t(sparse.count),
                      3 * size, values, problem)) {
        return false;
    }
    for (std::size_t i = 0; i < indices.count; ++i) {
        const double index = LoadComponent(&indices.bytes[i * indices.stride], sparse.indices.componentType, false);
        if (index >= double(out.size())) {
            problem = fmt::format("a sparse accessor sets element {}, but has {}; export the mesh again.", index, out.size());
            return false;
        }
        const unsigned char* at = &values.bytes[i * values.stride];
        DPoint3& p = out[std::size_t(index)];
        p.x = LoadComponent(at, accessor.componentType, accessor.normalized);
        p.y = LoadComponent(at + size, accessor.componentType, accessor.normalized);
        p.z = LoadComponent(at + 2 * size, accessor.componentType, accessor.normalized);
    }
    return true;
}

}  // namespace

bool ReadVectors(const tinygltf::Model& model, int index, std::size_t most, std::vector<DPoint3>& out, std::string& problem) {
    const tinygltf::Accessor* accessor = FindAccessor(model, index, TINYGLTF_TYPE_VEC3, most, problem);
    if (accessor == nullptr) return false;
    const std::size_t size = ComponentSize(accessor->componentType);
    out.clear();
    if (accessor->bufferView >= 0) {
        Elements elements;
        if (!FindElements(model, accessor->bufferView, accessor->byteOffset, accessor->count, 3 * size, elements, problem)) {
            return false;
        }
        out.reserve(elements.count);
        for (std::size_t i = 0; i < elements.count; ++i) {
            const unsigned char* at = &elements.bytes[i * elements.stride];
            out.push_back({LoadComponent(at, accessor->componentType, accessor->normalized),
                           LoadComponent(at + size, accessor->componentType, accessor->normalized),
                           LoadComponent(at + 2 * size, accessor->componentType, accessor->normalized)});
        }
    } else {
        out.assign(accessor->count, DPoint3{});  // an accessor without a view is all zeros
    }
    return !accessor->sparse.isSparse || OverlaySparse(model, *accessor, out, problem);
}

bool ReadIndices(const tinygltf::Model& model, int index, std::size_t most, std::vector<std::uint32_t>& out,
                 std::string& problem) {
    const tinygltf::Accessor* accessor = FindAccessor(model, index, TINYGLTF_TYPE_SCALAR, most, problem);
    if (accessor == nullptr) return false;
    if (!IsIndexType(accessor->componentType) || accessor->sparse.isSparse) {
        problem = fmt::format("accessor {} holds no plain indices; export the mesh again.", index);
        return false;
    }
    Elements elements;
    if (!FindElements(model, accessor->bufferView, accessor->byteOffset, accessor->count,
                      ComponentSize(accessor->componentType), elements, problem)) {
        return false;
    }
    out.clear();
    out.reserve(elements.count);
    for (std::size_t i = 0; i < elements.count; ++i) {
        out.push_back(std::uint32_t(LoadComponent(&elements.bytes[i * elements.stride], accessor->componentType, false)));
    }
    return true;
}

bool ReadNumbers(const tinygltf::Model& model, int index, int type, std::size_t most, std::vector<double>& out,
                 std::string& problem) {
    const tinygltf::Accessor* accessor = FindAccessor(model, index, type, most, problem);
    if (accessor == nullptr) return false;
    if (accessor->sparse.isSparse || accessor->bufferView < 0) {
        problem = fmt::format("accessor {} is sparse, which only positions may be; export it without that.", index);
        return false;
    }
    const std::size_t size = ComponentSize(accessor->componentType);
    const std::size_t width = std::size_t(tinygltf::GetNumComponentsInType(std::uint32_t(type)));
    Elements elements;
    if (!FindElements(model, accessor->bufferView, accessor->byteOffset, accessor->count, width * size, elements, problem)) {
        return false;
    }
    out.clear();
    out.reserve(elements.count * width);
    for (std::size_t i = 0; i < elements.count; ++i) {
        const unsigned char* at = &elements.bytes[i * elements.stride];
        for (std::size_t c = 0; c < width; ++c) {
            out.push_back(LoadComponent(at + c * size, accessor->componentType, accessor->normalized));
        }
    }
    return true;
}

}  // namespace tavrik
