#include "surface/surface_neighbourhood.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

#include "surface/float4.h"

namespace tavrik {
namespace {

// Of a segment's length: what its rounded direction may be longer than it was meant to be.
constexpr float kLengthMargin = 1.0001f;
// Of the largest coordinate in play: what a point on a segment may be off by rounding.
constexpr float kPlaceMargin = 1e-6f;

// What is lost where products fall below the smallest floats is far below this.
constexpr float kTinyMargin = 1e-37f;
// The square of a normal's length, for which kLengthMargin leaves room. Only that of a triangle so small that the square of its
// area falls below the smallest floats is longer.
constexpr float kLongestNormalSquared = 1.0001f;

float LargestCoordinate(const Point3& p) { return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}); }

}  // namespace

SurfaceNeighbourhood::SurfaceNeighbourhood(const SurfaceTree& tree, const Point3& centre, float radius) {
    assert(tree.built());
    const Box3& bound = tree.bound();
    const float largest = std::max({LargestCoordinate(bound.pmin), LargestCoordinate(bound.pmax), LargestCoordinate(centre)});
    const float reach = radius * kLengthMargin + largest * kPlaceMargin + kTinyMargin;
    const Float4 middle = Float4From(centre.x, centre.y, centre.z, 0.0f);
    const Float4 low = middle - Broadcast(reach), high = middle + Broadcast(reach);
    const Float4 pmin = Float4From(bound.pmin.x, bound.pmin.y, bound.pmin.z, 0.0f);
    const Float4 pmax = Float4From(bound.pmax.x, bound.pmax.y, bound.pmax.z, 0.0f);
    Gather(tree.root(), tree, Select(pmin > low, pmin, low), Select(high > pmax, pmax, high));
}

void SurfaceNeighbourhood::Gather(SurfaceLink cube, const SurfaceTree& tree, Float4 low, Float4 high) {
    if (unsure_) return;
    while (!cube.endsDescent()) {
        const SurfaceNode& node = tree.nodes()[cube.index()];
        const Float4 centre = Load(&node.centre.x);
        const unsigned lowest = Bits(low > centre) & 7, highest = Bits(high > centre) & 7;
        if (lowest != highest) {
            // A child is in reach where, on each axis, the ball's box has a part on the child's side.
            const unsigned both = lowest ^ highest;
            const Mask4 cut = AndNot(low > centre, high > centre);
            for (unsigned child = 0; child < 8; ++child) {
                if ((child & ~both) != (lowest & ~both)) continue;
                const Mask4 upper = Float4From(float(child & 1), float(child & 2), float(child & 4), 0.0f) > Broadcast(0.0f);
                Gather(node.child[child], tree, Select(cut & upper, centre, low), Select(AndNot(upper, cut), centre, high));
            }
            return;
        }
        cube = node.child[lowest];
    }
    const SurfaceBlock* block = &tree.blocks()[cube.index()];
    // The walls of a cube and the centres that lead to it are rounded each in their own way. From a point between the two a
    // walk may leave the cube backwards, and meet there what lies behind the segment.
    const Mask4 held = (low >= Load(&block->leaf.pmin.x)) & (Load(&block->leaf.pmax.x) >= high);
    if ((Bits(held) & 7) != 7) {
        unsure_ = true;
        return;
    }
    for (std::uint32_t group = 1; group <= block->leaf.groups(); ++group) {
        const SurfacePlanes& planes = block[group].planes;
        const Float4 nx = Load(planes.nx), ny = Load(planes.ny), nz = Load(planes.nz);
        const Mask4 tooLong = nx * nx + ny * ny + nz * nz > Broadcast(kLongestNormalSquared);
        if (count_ == kMostGroups || Bits(tooLong) != 0) {
            unsure_ = true;
            return;
        }
        groups_[count_++] = &planes;
    }
}

float SurfaceNeighbourhood::ClearReach(const Point3& origin) const {
    if (unsure_) return 0.0f;
    const Float4 orgX = Broadcast(origin.x), orgY = Broadcast(origin.y), orgZ = Broadcast(origin.z);
    const Float4 zero = Broadcast(0.0f), never = Broadcast(std::numeric_limits<float>::infinity());
    Float4 nearest = never;
    for (std::size_t i = 0; i < count_; ++i) {
        const SurfacePlanes& planes = *groups_[i];
        const Float4 nx = Load(planes.nx), ny = Load(planes.ny), nz = Load(planes.nz);
        const Float4 distance = Abs(Load(planes.planeD) - (orgX * nx + orgY * ny + orgZ * nz));
        const Mask4 flat = (nx == zero) & (ny == zero) & (nz == zero);  // no triangle, or one that nothing hits
        const Float4 counted = Select(flat, never, distance);
        nearest = Select(nearest > counted, counted, nearest);
    }
    const float least = std::min({Lane<0>(nearest), Lane<1>(nearest), Lane<2>(nearest), Lane<3>(nearest)});
    return std::max(0.0f, least / kLengthMargin - kTinyMargin);
}

}  // namespace tavrik
