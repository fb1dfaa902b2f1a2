#include "host/gltf_meshes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/file_mesh.h"
#include "host/gltf_accessor.h"
#include "host/gltf_model.h"
#include "host/scene_axes.h"

namespace tavrik_host {
namespace {

constexpr std::size_t kMostNumbers = 3 * tavrik::kMostGroundTriangles;
/// Elements of an accessor without data, all of them zero. A few bytes of text could ask for any number of them.
constexpr std::size_t kMostZeros = 1'000'000;
constexpr int kLines = 1, kLineLoop = 2, kTriangles = 4;  // 0: points, 3: line strip, 5: triangle strip, 6, the last mode: fan

std::size_t SizeAt(const Json& object, const char* key) {
    const Json* value = Find(object, key);
    return value == nullptr ? 0 : value->get<std::size_t>();
}

int TypeOf(const std::string& type) {
    return type == "SCALAR" ? TINYGLTF_TYPE_SCALAR
           : type == "VEC3" ? TINYGLTF_TYPE_VEC3
           : type == "VEC4" ? TINYGLTF_TYPE_VEC4
                            : 0;
}

tinygltf::Accessor ToAccessor(const Json& json) {
    tinygltf::Accessor accessor;
    accessor.bufferView = Find(json, "bufferView") == nullptr ? -1 : int(SizeAt(json, "bufferView"));
    accessor.byteOffset = SizeAt(json, "byteOffset");
    accessor.count = SizeAt(json, "count");
    accessor.componentType = int(SizeAt(json, "componentType"));
    accessor.type = TypeOf(json["type"].get<std::string>());
    const Json* normalized = Find(json, "normalized");
    accessor.normalized = normalized != nullptr && *normalized == true;
    if (const Json* sparse = Find(json, "sparse")) {
        accessor.sparse.isSparse = true;
        accessor.sparse.count = int(SizeAt(*sparse, "count"));
        const Json &indices = (*sparse)["indices"], &values = (*sparse)["values"];
        accessor.sparse.indices.bufferView = int(SizeAt(indices, "bufferView"));
        accessor.sparse.indices.byteOffset = int(SizeAt(indices, "byteOffset"));
        accessor.sparse.indices.componentType = int(SizeAt(indices, "componentType"));
        accessor.sparse.values.bufferView = int(SizeAt(values, "bufferView"));
        accessor.sparse.values.byteOffset = int(SizeAt(values, "byteOffset"));
    }
    return accessor;
}

std::int64_t ModeOf(const Json& primitive, const std::string& what) {
    const Json* mode = Find(ObjectOf(primitive, "a primitive of " + what), "mode");
    return mode == nullptr ? kTriangles : WholeNumber(*mode, 0, 6, "the mode of " + what);
}

/// Pairs of vertices, joined to strips as far as one pair goes on where the last one ended.
void AddSingleLines(const std::vector<Point3>& points, const std::vector<std::uint32_t>& corners,
                    std::vector<ShapeLine>& lines) {
    for (std::size_t i = 0; i + 1 < corners.size(); i += 2) {
        if (i == 0 || corners[i] != corners[i - 1]) lines.emplace_back().points.push_back(points[corners[i]]);
        lines.back().points.push_back(points[corners[i + 1]]);
    }
}

}  // namespace

/// The part of a file that the readers of accessors ask for.
struct GltfNumbers::Model {
    tinygltf::Model gltf;
};

GltfNumbers::GltfNumbers(const GltfFile& gltf) : gltf_(gltf), model_(std::make_unique<Model>()) {
    tinygltf::Model& model = model_->gltf;
    model.buffers.resize(1);
    for (const Json& json : OptionalList(gltf.json, "bufferViews", "the file")) {
        tinygltf::BufferView view;
        view.buffer = 0;
        view.byteOffset = SizeAt(json, "byteOffset");
        view.byteLength = SizeAt(json, "byteLength");
        view.byteStride = SizeAt(json, "byteStride");
        model.bufferViews.push_back(std::move(view));
    }
    for (const Json& json : OptionalList(gltf.json, "accessors", "the file")) model.accessors.push_back(ToAccessor(json));
    // What accessors read; our own data, which may be most of a file, lies behind that.
    std::size_t end = 0;
    const auto reach = [&](int view) {
        if (view < 0) return;
        const tinygltf::BufferView& used = model.bufferViews[std::size_t(view)];
        end = std::max(end, used.byteOffset + used.byteLength);
    };
    for (const tinygltf::Accessor& accessor : model.accessors) {
        reach(accessor.bufferView);
        if (!accessor.sparse.isSparse) continue;
        reach(accessor.sparse.indices.bufferView);
        reach(accessor.sparse.values.bufferView);
    }
    model.buffers[0].data.assign(gltf.binary.begin(), gltf.binary.begin() + std::ptrdiff_t(end));
}

GltfNumbers::~GltfNumbers() = default;

std::vector<double> GltfNumbers::Read(std::size_t accessor, int components) {
    std::vector<double> numbers;
    std::string problem;
    const int type = components == 1 ? TINYGLTF_TYPE_SCALAR : components == 3 ? TINYGLTF_TYPE_VEC3 : TINYGLTF_TYPE_VEC4;
    if (!tavrik::ReadNumbers(model_->gltf, int(accessor), type, kMostNumbers, numbers, problem)) Refuse(problem);
    for (const double number : numbers) {
        if (!std::isfinite(number)) Refuse(fmt::format("accessor {} holds a number that is not finite.", accessor));
    }
    return numbers;
}

MeshRecord GltfNumbers::ReadMesh(std::size_t mesh, double metresPerUnit) {
    MeshRecord record;
    std::map<std::size_t, std::uint32_t> known;  // where the vertices of an accessor begin: many primitives may share them
    const std::string what = fmt::format("mesh {}", mesh);
    for (const Json& primitive : ListOf(Need(gltf_.json["meshes"][mesh], "primitives", what), what)) {
        AddPrimitive(primitive, what, 1.0 / metresPerUnit, known, record);
    }
    return record;
}

std::vector<Point3> GltfNumbers::ReadPoints(std::size_t accessor, const std::string& what, double unitsPerMetre) {
    const tinygltf::Accessor& source = model_->gltf.accessors[accessor];
    if (source.bufferView < 0 && source.count > kMostZeros) {
        Refuse(fmt::format("accessor {} has {} elements without data.", accessor, source.count));
    }
    std::vector<tavrik::DPoint3> metres;
    std::string problem;
    if (!tavrik::ReadVectors(model_->gltf, int(accessor), kMostNumbers, metres, problem)) Refuse(problem);
    drawn_ += metres.size();
    std::vector<Point3> points;
    points.reserve(metres.size());
    for (const tavrik::DPoint3& metre : metres) {
        const tavrik::DPoint3 p = FromFileAxes(metre) * unitsPerMetre;
        points.push_back(Point3(float(p.x), float(p.y), float(p.z)));
        const Point3& v = points.back();
        if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) {
            Refuse(fmt::format("{} has a vertex whose coordinates are not finite.", what));
        }
    }
    return points;
}

std::vector<std::uint32_t> GltfNumbers::ReadCorners(const Json& primitive, const std::string& what, std::size_t count) {
    std::vector<std::uint32_t> corners;
    std::string problem;
    if (const Json* indices = Find(primitive, "indices")) {
        if (!tavrik::ReadIndices(model_->gltf, int(indices->get<std::size_t>()), kMostNumbers, corners, problem))
            Refuse(problem);
    } else {
        corners.resize(count);
        for (std::size_t i = 0; i < corners.size(); ++i) corners[i] = std::uint32_t(i);
    }
    drawn_ += corners.size();
    if (drawn_ > kMostNumbers)
        Refuse(fmt::format("its meshes add up to more than {} triangles.", tavrik::kMostGroundTriangles));
    for (const std::uint32_t corner : corners) {
        if (corner >= count) Refuse(fmt::format("{} uses vertex {}, but there are {} (counted from 0).", what, corner, count));
    }
    return corners;
}

void GltfNumbers::AddPrimitive(const Json& primitive, const std::string& what, double unitsPerMetre,
                               std::map<std::size_t, std::uint32_t>& known, MeshRecord& mesh) {
    const std::int64_t mode = ModeOf(primitive, what);
    const Json* positions = Find(Need(primitive, "attributes", what), "POSITION");
    if (positions == nullptr || mode < kTriangles) return;
    const std::size_t accessor = positions->get<std::size_t>();
    if (!known.contains(accessor)) {
        const std::vector<Point3> points = ReadPoints(accessor, what, unitsPerMetre);
        known[accessor] = std::uint32_t(mesh.verts.size());
        mesh.verts.insert(mesh.verts.end(), points.begin(), points.end());
    }
    const std::vector<std::uint32_t> corners = ReadCorners(primitive, what, model_->gltf.accessors[accessor].count);
    const std::uint32_t base = known[accessor];
    tavrik::ForEachGltfTriangle(int(mode), corners.size(), [&](std::size_t a, std::size_t b, std::size_t c) {
        mesh.faces.emplace_back().setVerts(base + corners[a], base + corners[b], base + corners[c]);
    });
}

bool IsMadeOfLines(const Json& mesh) {
    bool lines = false, triangles = false;
    for (const Json& primitive : OptionalList(mesh, "primitives", "a mesh")) {
        const std::int64_t mode = ModeOf(primitive, "a mesh");
        lines = lines || (mode >= kLines && mode < kTriangles);
        triangles = triangles || mode >= kTriangles;
    }
    return lines && !triangles;
}

std::vector<ShapeLine> GltfNumbers::ReadLines(std::size_t mesh, double metresPerUnit) {
    std::vector<ShapeLine> lines;
    std::map<std::size_t, std::vector<Point3>> known;  // vertices of an accessor: many primitives may share them
    const std::string what = fmt::format("mesh {}", mesh);
    for (const Json& primitive : ListOf(Need(gltf_.json["meshes"][mesh], "primitives", what), what)) {
        const std::int64_t mode = ModeOf(primitive, what);
        const Json* positions = Find(Need(primitive, "attributes", what), "POSITION");
        if (positions == nullptr || mode < kLines || mode >= kTriangles) continue;
        const std::size_t accessor = positions->get<std::size_t>();
        if (!known.contains(accessor)) known[accessor] = ReadPoints(accessor, what, 1.0 / metresPerUnit);
        const std::vector<Point3>& points = known[accessor];
        const std::vector<std::uint32_t> corners = ReadCorners(primitive, what, points.size());
        if (mode == kLines) {
            AddSingleLines(points, corners, lines);
            continue;
        }
        ShapeLine& line = lines.emplace_back();
        line.closed = mode == kLineLoop;
        for (const std::uint32_t corner : corners) line.points.push_back(points[corner]);
    }
    return lines;
}

}  // namespace tavrik_host
