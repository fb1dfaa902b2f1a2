#include "host/shape.h"

#include <cstddef>
#include <span>

#include "solver/double_maths.h"

namespace tavrik {
namespace {

/// Adds up the normals of all faces around each vertex, each weighted by its area, in double: slivers are too small for single.
void SmoothNormals(std::span<const Point3> points, std::span<const std::uint32_t> indices, std::uint32_t first,
                   std::vector<Point3>& normals) {
    std::vector<DPoint3> sums(points.size(), DPoint3{});
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const std::size_t corners[3] = {indices[i] - first, indices[i + 1] - first, indices[i + 2] - first};
        const DPoint3 a = FromPoint3(points[corners[0]]);
        const DPoint3 n = Cross(FromPoint3(points[corners[1]]) - a, FromPoint3(points[corners[2]]) - a);
        for (const std::size_t corner : corners) sums[corner] += n;
    }
    for (const DPoint3& sum : sums) {
        const Point3 normal = ToPoint3(Normalize(sum));
        // A vertex without any area around it still needs a direction, and any will do.
        normals.push_back(Length(normal) > 0.5f ? normal : Point3{0, 0, 1});
    }
}

}  // namespace

void AddGrid(ShapePart& part, const std::vector<Point3>& points, int columns, bool closed) {
    const std::uint32_t first = std::uint32_t(part.positions.size());
    const std::size_t firstIndex = part.indices.size();
    const int rows = int(points.size()) / columns;
    part.positions.insert(part.positions.end(), points.begin(), points.end());
    const auto at = [&](int row, int column) { return first + std::uint32_t(row * columns + column % columns); };
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column + (closed ? 0 : 1) < columns; ++column) {
            const std::uint32_t a = at(row, column), b = at(row, column + 1);
            const std::uint32_t c = at(row + 1, column + 1), d = at(row + 1, column);
            part.indices.insert(part.indices.end(), {a, b, c, a, c, d});
        }
    }
    SmoothNormals(points, std::span(part.indices).subspan(firstIndex), first, part.normals);
}

void AddPolygon(ShapePart& part, const std::vector<Point3>& points) {
    const std::uint32_t first = std::uint32_t(part.positions.size());
    const std::size_t firstIndex = part.indices.size();
    part.positions.insert(part.positions.end(), points.begin(), points.end());
    for (std::uint32_t i = 1; i + 1 < points.size(); ++i) {
        part.indices.insert(part.indices.end(), {first, first + i, first + i + 1});
    }
    // One flat face: every corner gets the normal of the whole.
    DPoint3 sum{};
    for (std::size_t i = firstIndex; i < part.indices.size(); i += 3) {
        const DPoint3 a = FromPoint3(part.positions[part.indices[i]]);
        sum += Cross(FromPoint3(part.positions[part.indices[i + 1]]) - a, FromPoint3(part.positions[part.indices[i + 2]]) - a);
    }
    const Point3 normal = Length(sum) > 0.0 ? ToPoint3(Normalize(sum)) : Point3{0, 0, 1};
    part.normals.insert(part.normals.end(), points.size(), normal);
}

void AddBlock(ShapePart& part, const Box3& box) {
    constexpr unsigned kSides[6][4] = {{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}};
    for (const auto& side : kSides) {
        AddPolygon(part, {box.Corner(side[0]), box.Corner(side[1]), box.Corner(side[2]), box.Corner(side[3])});
    }
}

ShapePart GroundShape(const TriangleMesh& ground) {
    ShapePart part;
    part.material = {"ground", 0.34f, 0.37f, 0.30f, 0.0f, 0.95f, /*doubleSided=*/true};
    part.positions = ground.verts;
    part.indices.reserve(ground.faces.size() * 3);
    for (const MeshFace& face : ground.faces) part.indices.insert(part.indices.end(), {face.v[0], face.v[1], face.v[2]});
    part.normals.reserve(ground.verts.size());
    SmoothNormals(part.positions, part.indices, 0, part.normals);
    return part;
}

}  // namespace tavrik
