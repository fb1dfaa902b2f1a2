// The looks of a mesh: which of its faces have which material, its normals, and its places in pictures.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

#include "host/render/render_model.h"
#include "host/scene_axes.h"
#include "host/scene_json.h"
#include "solver/double_maths.h"

namespace tavrik_host {
namespace {

constexpr int kByte = 5120, kUnsignedByte = 5121, kShort = 5122, kUnsignedShort = 5123, kFloat = 5126;
constexpr std::size_t kTriangles = 4;

std::size_t SizeAt(const Json& object, const char* key, std::size_t otherwise = 0) {
    const Json* value = Find(object, key);
    return value != nullptr && value->is_number_integer() && *value >= 0 ? value->get<std::size_t>() : otherwise;
}

std::size_t BytesOf(int type) {
    return type == kFloat ? 4 : type == kShort || type == kUnsignedShort ? 2 : type == kByte || type == kUnsignedByte ? 1 : 0;
}

float NumberAt(const char* bytes, int type) {
    const auto read = [bytes](auto value) {
        std::memcpy(&value, bytes, sizeof value);
        return float(value);
    };
    switch (type) {
        case kFloat:
            return read(0.0f);
        case kByte:
            return std::max(read(std::int8_t(0)) / 127.0f, -1.0f);
        case kUnsignedByte:
            return read(std::uint8_t(0)) / 255.0f;
        case kShort:
            return std::max(read(std::int16_t(0)) / 32767.0f, -1.0f);
        default:
            return read(std::uint16_t(0)) / 65535.0f;
    }
}

/// Looks for an entry of one of the top lists. @return null where there is none
const Json* EntryOf(const SceneDocument& document, const char* list, std::size_t number) {
    const Json* const all = Find(document.json, list);
    return all != nullptr && all->is_array() && number < all->size() ? &(*all)[number] : nullptr;
}

/// The numbers of an accessor, or nothing where it holds them in a way that isn't read here: then the mesh shows without.
std::vector<float> ReadFloats(const SceneDocument& document, std::size_t number, std::size_t components, std::size_t count) {
    const Json* const accessor = EntryOf(document, "accessors", number);
    if (accessor == nullptr || Find(*accessor, "sparse") != nullptr || SizeAt(*accessor, "count") != count) return {};
    const Json* const view = EntryOf(document, "bufferViews", SizeAt(*accessor, "bufferView", SIZE_MAX));
    const int type = int(SizeAt(*accessor, "componentType"));
    if (view == nullptr || BytesOf(type) == 0 || count == 0) return {};
    const char* const wanted = components == 2 ? "VEC2" : "VEC3";
    if (const Json* kind = Find(*accessor, "type"); kind == nullptr || *kind != wanted) return {};
    const std::size_t tight = BytesOf(type) * components, stride = std::max(SizeAt(*view, "byteStride", tight), tight);
    const std::size_t first = SizeAt(*view, "byteOffset") + SizeAt(*accessor, "byteOffset");
    if (first > document.binary.size() || (document.binary.size() - first) / stride + 1 < count ||
        first + (count - 1) * stride + tight > document.binary.size()) {
        return {};
    }
    std::vector<float> numbers(count * components);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < components; ++c) {
            const float value = NumberAt(&document.binary[first + i * stride + c * BytesOf(type)], type);
            numbers[i * components + c] = std::isfinite(value) ? value : 0.0f;
        }
    }
    return numbers;
}

std::size_t TrianglesOf(const Json& primitive, std::size_t mode, std::size_t vertices, const SceneDocument& document) {
    std::size_t corners = vertices;
    if (const Json* indices = Find(primitive, "indices"); indices != nullptr) {
        const Json* accessor = EntryOf(document, "accessors", indices->get<std::size_t>());
        corners = accessor == nullptr ? 0 : SizeAt(*accessor, "count");
    }
    return mode == kTriangles ? corners / 3 : corners < 3 ? 0 : corners - 2;
}

RenderPart PlainPart(const Mesh& mesh, std::size_t material) {
    RenderPart part;
    part.material = material;
    part.points.assign(mesh.verts, mesh.verts + mesh.numVerts);
    for (int i = 0; i < mesh.numFaces; ++i) {
        for (const DWORD corner : mesh.faces[i].v) part.corners.push_back(corner);
    }
    return part;
}

/// Walks a mesh of the file beside the faces that were made of it.
class ShapeTaker {
 public:
    ShapeTaker(const SceneDocument& document, const Mesh& mesh, const RenderModel& model)
        : document_(document), mesh_(mesh), model_(model) {}

    /// @return false where the mesh isn't the file's any more
    bool Take(const Json& primitives, RenderShape& shape) {
        for (const Json& primitive : primitives) {
            if (!TakePrimitive(primitive, shape)) return false;
        }
        return face_ == std::size_t(mesh_.numFaces);
    }

 private:
    bool TakePrimitive(const Json& primitive, RenderShape& shape) {
        const std::size_t mode = SizeAt(primitive, "mode", kTriangles);
        const Json* const attributes = Find(primitive, "attributes");
        const Json* const position = attributes == nullptr ? nullptr : Find(*attributes, "POSITION");
        if (position == nullptr || mode < kTriangles) return true;
        const std::size_t accessor = position->get<std::size_t>();
        const Json* const points = EntryOf(document_, "accessors", accessor);
        if (points == nullptr) return false;
        const std::size_t count = SizeAt(*points, "count");
        const auto [entry, isNew] = bases_.emplace(accessor, vertices_);
        if (isNew) vertices_ += count;
        const std::size_t base = entry->second, faces = TrianglesOf(primitive, mode, count, document_);
        if (base + count > std::size_t(mesh_.numVerts) || face_ + faces > std::size_t(mesh_.numFaces)) return false;

        RenderPart& part = shape.parts.emplace_back();
        part.material = std::min(SizeAt(primitive, "material", SIZE_MAX), model_.materials.size() - 1);
        part.points.assign(mesh_.verts + base, mesh_.verts + base + count);
        for (std::size_t i = 0; i < faces; ++i) {
            for (const DWORD corner : mesh_.faces[face_ + i].v) {
                if (corner < base || corner - base >= count) return false;
                part.corners.push_back(std::uint32_t(corner - base));
            }
        }
        face_ += faces;
        TakeNormals(*attributes, count, part);
        TakeSpots(*attributes, count, part);
        return true;
    }

    void TakeNormals(const Json& attributes, std::size_t count, RenderPart& part) const {
        const std::vector<float> numbers = ReadFloats(document_, SizeAt(attributes, "NORMAL", SIZE_MAX), 3, count);
        for (std::size_t i = 0; i + 2 < numbers.size(); i += 3) {
            const tavrik::DPoint3 n = FromFileAxes({double(numbers[i]), double(numbers[i + 1]), double(numbers[i + 2])});
            part.normals.emplace_back(float(n.x), float(n.y), float(n.z));
        }
    }

    void TakeSpots(const Json& attributes, std::size_t count, RenderPart& part) const {
        const char* const set = model_.materials[part.material].spots == 1 ? "TEXCOORD_1" : "TEXCOORD_0";
        const std::vector<float> numbers = ReadFloats(document_, SizeAt(attributes, set, SIZE_MAX), 2, count);
        for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) part.spots.emplace_back(numbers[i], numbers[i + 1]);
    }

    const SceneDocument& document_;
    const Mesh& mesh_;
    const RenderModel& model_;
    std::map<std::size_t, std::size_t> bases_;  // where the vertices of an accessor begin: many primitives may share them
    std::size_t vertices_ = 0, face_ = 0;       // that the primitives so far made
};

}  // namespace

RenderShape TakeShape(const SceneDocument& document, const Mesh& mesh, int fileMesh, const RenderModel& model) {
    RenderShape shape;
    const Json* const drawn = fileMesh < 0 ? nullptr : EntryOf(document, "meshes", std::size_t(fileMesh));
    const Json* const primitives = drawn == nullptr ? nullptr : Find(*drawn, "primitives");
    if (primitives != nullptr && ShapeTaker(document, mesh, model).Take(*primitives, shape)) return shape;
    shape.parts.assign(1, PlainPart(mesh, model.materials.size() - 1));
    return shape;
}

}  // namespace tavrik_host
