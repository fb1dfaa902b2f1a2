#include "surface/surface_grid.h"

#include <algorithm>
#include <cmath>

namespace tavrik {
namespace {

constexpr int kMostLevels = 7;  // 128^3 cells are 8 MB, of which a ground's surface touches a few hundred KB

}  // namespace

int SurfaceGrid::LevelsOver(std::size_t nodes) {
    // A node and its leaves take about 1300 bytes, so that the cells stay within an eighth of the tree.
    constexpr std::size_t kCellsPerNode = 40;
    int levels = 0;
    while (levels < kMostLevels && (nodes * kCellsPerNode) >> (3 * (levels + 1)) != 0) ++levels;
    return levels;
}

void SurfaceGrid::Build(const std::vector<SurfaceNode>& nodes, SurfaceLink root, const Box3& bound) {
    levels_ = LevelsOver(nodes.size());
    side_ = float(1u << levels_);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        origin_[axis] = bound.pmin[axis];
        scale_[axis] = side_ / (bound.pmax[axis] - bound.pmin[axis]);
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (std::isfinite(scale_[axis]) && WallsAreInPlace(axis, bound.pmin[axis], bound.pmax[axis], 0, 0)) continue;
        levels_ = 0;
        side_ = 0.0f;
        break;
    }
    cells_.resize(1 + (std::size_t(1) << (3 * levels_)));
    cells_[0] = root;
    FindCells(nodes, root, 0, 0, 0, 0);
}

// The quotient never falls where the coordinate rises. So a point whose quotient is below that of a wall is not above the wall,
// and one whose quotient is above it is above the wall.
bool SurfaceGrid::WallsAreInPlace(std::size_t axis, float pmin, float pmax, int depth, std::uint32_t first) const {
    if (depth == levels_) return true;
    const float half = (pmax - pmin) * 0.5f, centre = (pmin + pmax) * 0.5f, middle = pmin + half;
    const std::uint32_t firstUpper = first + (1u << (levels_ - depth - 1));
    const float quotient = (centre - origin_[axis]) * scale_[axis];
    return std::fabs(quotient - float(firstUpper)) < kMargin && WallsAreInPlace(axis, pmin, middle, depth + 1, first) &&
           WallsAreInPlace(axis, middle, middle + half, depth + 1, firstUpper);
}

void SurfaceGrid::FindCells(const std::vector<SurfaceNode>& nodes, SurfaceLink cube, int depth, std::size_t i, std::size_t j,
                            std::size_t k) {
    const std::size_t cells = std::size_t(1) << (levels_ - depth);
    if (depth == levels_ || cube.endsDescent()) {
        for (std::size_t z = k; z < k + cells; ++z) {
            for (std::size_t y = j; y < j + cells; ++y) {
                std::fill_n(cells_.begin() + std::ptrdiff_t(1 + (((z << levels_) + y) << levels_) + i), cells, cube);
            }
        }
        return;
    }
    const std::size_t half = cells / 2;
    for (std::size_t child = 0; child < 8; ++child) {
        FindCells(nodes, nodes[cube.index()].child[child], depth + 1, i + (child & 1) * half, j + (child >> 1 & 1) * half,
                  k + (child >> 2 & 1) * half);
    }
}

}  // namespace tavrik
