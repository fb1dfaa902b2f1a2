#pragma once
/// The ground as seen from above on a regular grid, and its contour lines.

#include <cstddef>
#include <vector>

#include "surface/triangle_mesh.h"

namespace tavrik {

/// Heights of the topmost ground; NaN where there is none. Scene units.
struct HeightMap {
    double west = 0, south = 0, step = 1;  // of the first point, and between points
    int columns = 0, rows = 0;
    std::vector<double> heights;  // [rows][columns], from south to north

    double At(int column, int row) const { return heights[std::size_t(row) * std::size_t(columns) + std::size_t(column)]; }
};

/// Looks down onto `ground` at every point of an empty map.
void FillHeightMap(const TriangleMesh& ground, HeightMap& map);

/// A stretch of a contour line within one square of the map, scene units.
struct ContourPiece {
    double x0, y0, x1, y1;
};

/// Where the ground crosses `height`. Squares with a corner off the ground have no line.
std::vector<ContourPiece> Contour(const HeightMap& map, double height);

}  // namespace tavrik
