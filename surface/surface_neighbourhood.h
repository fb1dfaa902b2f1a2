#pragma once

#include <cstddef>

#include "solver/single_maths.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// The triangles around a place, gathered once for the many short segments that a wheel or a sphere casts there. It tells which
/// of them surely hit nothing, far cheaper than asking the tree about each; those that it isn't sure of have to ask.
///
/// A hit at a parameter within 0..1 needs a triangle whose plane is no further from the segment's start than the segment is
/// long. Both sides of that comparison are computed as the query computes them, and the margins below are hundreds of times the
/// rounding, so a segment that is called clear is one that the query misses, too.
///
/// Lives on the stack, allocates nothing and must not outlive the tree.
class SurfaceNeighbourhood {
 public:
    /// Gathers what segments within the ball can meet. The tree must be built.
    SurfaceNeighbourhood(const SurfaceTree& tree, const Point3& centre, float radius);

    /// How far a segment from `origin` reaches before it can hit anything: no segment of at most that length that starts there,
    /// and lies in the gathered ball, hits. World space, scene units. Infinite where nothing is near, 0 where too much is or a
    /// triangle too small to tell.
    float ClearReach(const Point3& origin) const;

 private:
    static constexpr std::size_t kMostGroups = 32;

    void Gather(SurfaceLink cube, const SurfaceTree& tree, Float4 low, Float4 high);

    const SurfacePlanes* groups_[kMostGroups];
    std::size_t count_ = 0;
    bool unsure_ = false;  // too much is gathered, or a triangle of which distances can't be told
};

}  // namespace tavrik
