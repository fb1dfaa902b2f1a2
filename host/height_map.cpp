#include "host/height_map.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "solver/double_maths.h"

namespace tavrik {
namespace {

/// The map's points within a span of coordinates, as indices clipped to the map.
void PointsBetween(double low, double high, double start, double step, int count, int& first, int& last) {
    first = int(std::clamp(std::ceil((low - start) / step), 0.0, double(count)));
    last = int(std::clamp(std::floor((high - start) / step), -1.0, double(count - 1)));
}

void AddTriangle(const DPoint3& a, const DPoint3& b, const DPoint3& c, HeightMap& map) {
    const double area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    if (area == 0.0) return;  // seen edge-on
    int firstColumn, lastColumn, firstRow, lastRow;
    PointsBetween(std::min({a.x, b.x, c.x}), std::max({a.x, b.x, c.x}), map.west, map.step, map.columns, firstColumn,
                  lastColumn);
    PointsBetween(std::min({a.y, b.y, c.y}), std::max({a.y, b.y, c.y}), map.south, map.step, map.rows, firstRow, lastRow);
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int column = firstColumn; column <= lastColumn; ++column) {
            const double x = map.west + column * map.step, y = map.south + row * map.step;
            const double v = ((x - a.x) * (c.y - a.y) - (y - a.y) * (c.x - a.x)) / area;
            const double w = ((b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x)) / area;
            // A little beyond the edge still counts, so that no point falls between two neighbours.
            if (v < -1e-9 || w < -1e-9 || v + w > 1.0 + 1e-9) continue;
            double& height = map.heights[std::size_t(row) * std::size_t(map.columns) + std::size_t(column)];
            const double z = a.z + v * (b.z - a.z) + w * (c.z - a.z);
            if (!(height >= z)) height = z;
        }
    }
}

}  // namespace

void FillHeightMap(const TriangleMesh& ground, HeightMap& map) {
    map.heights.assign(std::size_t(map.columns) * std::size_t(map.rows), std::numeric_limits<double>::quiet_NaN());
    for (const MeshFace& face : ground.faces) {
        AddTriangle(FromPoint3(ground.verts[face.v[0]]), FromPoint3(ground.verts[face.v[1]]),
                    FromPoint3(ground.verts[face.v[2]]), map);
    }
}

std::vector<ContourPiece> Contour(const HeightMap& map, double height) {
    constexpr int kCorners[5][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};
    std::vector<ContourPiece> pieces;
    for (int row = 0; row + 1 < map.rows; ++row) {
        for (int column = 0; column + 1 < map.columns; ++column) {
            double xs[4], ys[4];
            int crossings = 0;
            bool onGround = true;
            for (int side = 0; side < 4; ++side) {
                const int c0 = column + kCorners[side][0], r0 = row + kCorners[side][1];
                const int c1 = column + kCorners[side + 1][0], r1 = row + kCorners[side + 1][1];
                const double h0 = map.At(c0, r0), h1 = map.At(c1, r1);
                onGround = onGround && std::isfinite(h0);
                if ((h0 < height) == (h1 < height)) continue;
                const double t = (height - h0) / (h1 - h0);
                xs[crossings] = map.west + (c0 + (c1 - c0) * t) * map.step;
                ys[crossings] = map.south + (r0 + (r1 - r0) * t) * map.step;
                ++crossings;
            }
            if (!onGround) continue;
            // On a saddle all four sides are crossed; neighbours are joined in order.
            for (int i = 0; i + 1 < crossings; i += 2) pieces.push_back({xs[i], ys[i], xs[i + 1], ys[i + 1]});
        }
    }
    return pieces;
}

}  // namespace tavrik
