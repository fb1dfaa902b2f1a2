#pragma once
/// The records of the ground's octree, packed so that a query reads few cache lines: one for each step down, one for a leaf
/// and, right behind it, one for every four triangles of its list.

#include <cstddef>
#include <cstdint>

#include "solver/single_maths.h"

namespace tavrik {

/// Names a cube of the octree: an inner node, a leaf, or none.
class SurfaceLink {
 public:
    static constexpr std::uint32_t kMostIndices = 0x7FFFFFFFu;

    SurfaceLink() = default;
    static SurfaceLink Inner(std::size_t node) { return SurfaceLink(std::uint32_t(node)); }
    static SurfaceLink Leaf(std::size_t block) { return SurfaceLink(kLeaf | std::uint32_t(block)); }

    bool isNone() const { return bits_ == kNone; }
    /// No inner node: a leaf or none.
    bool endsDescent() const { return (bits_ & kLeaf) != 0; }
    /// Place of an inner node among the nodes, or of a leaf among the blocks.
    std::uint32_t index() const { return bits_ & ~kLeaf; }
    bool operator==(const SurfaceLink&) const = default;

 private:
    explicit SurfaceLink(std::uint32_t bits) : bits_(bits) {}

    static constexpr std::uint32_t kLeaf = 0x80000000u, kNone = 0xFFFFFFFFu;

    std::uint32_t bits_ = kNone;
};

/// An inner cube. Bit 0 of a child's number is set for the upper half in X, bit 1 in Y, bit 2 in Z.
struct alignas(64) SurfaceNode {
    Point3 centre;       // a point strictly above it goes to the upper children
    float besideCentre;  // zero; lets the centre be loaded as four floats
    SurfaceLink child[8];
    std::uint32_t spare[4];  // zero
};

/// A leaf: its cube, the cubes beyond its faces and its list of triangles.
struct alignas(64) SurfaceLeaf {
    Point3 pmin;
    float besidePmin;  // zero
    Point3 pmax;
    float besidePmax;          // zero
    SurfaceLink neighbour[6];  // beyond -X, +X, -Y, +Y, -Z, +Z: as large as the leaf, or a larger leaf; none outside the root
    std::uint32_t count;       // triangles in the list
    std::uint32_t firstFaces;  // where their numbers begin among the SurfaceFaces

    std::uint32_t groups() const { return (count + 3) / 4; }
};

/// The planes of four triangles of a list, side by side. Places behind the list's end hold zero normals, which no ray hits.
struct alignas(64) SurfacePlanes {
    float nx[4], ny[4], nz[4];
    float planeD[4];
};

/// A cache line of the lists: a leaf, or one of the groups of planes that follow it.
union SurfaceBlock {
    SurfaceLeaf leaf;
    SurfacePlanes planes;
};

/// The triangles of one SurfacePlanes, by number; zeros behind the list's end.
struct SurfaceFaces {
    std::uint32_t face[4];
};

}  // namespace tavrik
