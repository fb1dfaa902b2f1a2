#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/single_maths.h"
#include "surface/float4.h"
#include "surface/surface_node.h"

namespace tavrik {

/// A shortcut past the octree's upper levels: which cube holds each cell of a regular grid. It answers only where comparing the
/// point with every centre on the way down leads to the same cube.
class SurfaceGrid {
 public:
    /// How often the bound is halved into cells, over so many inner nodes.
    static int LevelsOver(std::size_t nodes);
    /// Bytes of a grid over so many inner nodes.
    static std::size_t BytesOver(std::size_t nodes) { return sizeof(SurfaceLink) << (3 * LevelsOver(nodes)); }

    /// Lays the grid over a finished tree.
    void Build(const std::vector<SurfaceNode>& nodes, SurfaceLink root, const Box3& bound);

    /// The cube from which the way down to the leaf of `p` may start; the root where the grid isn't sure.
    SurfaceLink CubeAbove(Float4 p) const {
        const Float4 cell = (p - Load(origin_)) * Load(scale_);
        const Int4 whole = Truncate(cell);
        const Float4 rest = cell - ToFloat(whole);
        const Mask4 sure = (rest > Broadcast(kMargin)) & (Broadcast(1.0f - kMargin) > rest) & (Broadcast(side_) > cell);
        if ((Bits(sure) & 7) != 7) return cells_[0];
        const std::size_t i = std::uint32_t(Lane<0>(whole)), j = std::uint32_t(Lane<1>(whole)),
                          k = std::uint32_t(Lane<2>(whole));
        return cells_[1 + (((k << levels_) + j) << levels_) + i];
    }

    std::size_t bytes() const { return cells_.capacity() * sizeof(SurfaceLink); }

 private:
    // The quotient rounds, so within a rounding of a wall it may name the cell next door. Points this close to one, in cells,
    // start at the root. That every wall lies closer to its place in the grid is checked when the grid is laid.
    static constexpr float kMargin = 0x1p-10f;

    bool WallsAreInPlace(std::size_t axis, float pmin, float pmax, int depth, std::uint32_t first) const;
    void FindCells(const std::vector<SurfaceNode>& nodes, SurfaceLink cube, int depth, std::size_t i, std::size_t j,
                   std::size_t k);

    alignas(16) float origin_[4] = {};
    alignas(16) float scale_[4] = {};
    float side_ = 0.0f;  // cells along an axis; 0 when the grid is of no use
    int levels_ = 0;
    std::vector<SurfaceLink> cells_;  // the root, then the cells
};

}  // namespace tavrik
