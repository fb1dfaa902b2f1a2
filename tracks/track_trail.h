#pragma once
/// All the ways that the wheels of one car have gone, in a shape that can be asked quickly who ever pressed on a point. The
/// ground plays no part in it: a point is held against the tyres themselves.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "rig/car_rig.h"
#include "tracks/track_params.h"
#include "tracks/track_segment.h"
#include "tracks/tread_table.h"

namespace tavrik {

/// A cube of the octree over the segments' bounds. Its place follows from the root's on the way down.
struct TrackCell {
    std::uint32_t first = 0;  // of a parent: which eight are its children; of a leaf: where its segments stand in `lists`
    std::uint32_t count = 0;  // segments of a leaf
    static constexpr std::uint32_t kParent = 0xffffffffu;  // in the place of a count

    bool IsLeaf() const { return count != kParent; }
};

/// The children of one cell, which fill a line of the cache.
struct alignas(64) TrackCells {
    TrackCell child[8];
};

/// Not built, or built. A built one is only read, by any number of threads at once.
struct TrackTrail {
    /// So much memory may go into frames that are worked out beforehand; those of the first segments get it. A query that finds
    /// its frames there takes a third of the time.
    static constexpr std::size_t kStoredFrameBytes = std::size_t(128) << 20;

    std::uint32_t built = 0;  // flag; the rest means nothing while it is 0
    std::int32_t count = 0;   // segments
    std::vector<TrackSegment> segments;
    std::vector<std::uint32_t> wheels;  // handles, in the order in which they turn up
    TrackCell root;
    std::vector<TrackCells> cells;       // below it
    std::vector<std::uint32_t> lists;    // numbers of segments, leaf by leaf; each leaf's ascending
    Box3 cube{};                         // of the root
    std::vector<Matrix3> inverseFrames;  // world to wheel along the way, steps + 1 to a segment that has them

    /// Replaces the trail with what a car's recording holds. Without a driven sample it ends as not built.
    ///
    /// @param notice       one sentence if stretches had to be left out: where numbers aren't finite, or no wheel can go; else
    ///                     as it was
    /// @param storedBytes  at most this much for `inverseFrames`; answers never depend on it
    ///
    /// Throws std::bad_alloc where memory runs out; the trail is then not built.
    void Build(const CarRig& rig, std::string& notice, std::size_t storedBytes = kStoredFrameBytes);
    void Release();

    /// What tyres did to a point until `tick`. The trail must be built (asserted).
    ///
    /// @param value   out: 1 where nothing has passed, falling towards 0 where tyres pressed often and hard
    /// @param bump    out: how the surface is pushed, in the world
    /// @param point   in the world; one that isn't finite was touched by nobody
    /// @param params  samples 1 at least (asserted)
    /// @param treads  beside `wheels`; null, or none there at all: a tyre without a tread
    void Query(float& value, Point3& bump, const Point3& point, TimeValue tick, const TrackParams& params,
               std::span<const SharedTread> treads = {}) const;

    /// The segments in the leaf around a point, or in the leaf nearest to it. A point right between two cells is the lower
    /// one's.
    std::span<const std::uint32_t> LeafAt(const Point3& point) const;
    /// The inverse frames of a segment, or null where none are stored.
    const Matrix3* StoredFrames(const TrackSegment& segment) const {
        return segment.storedFrames == TrackSegment::kNotStored ? nullptr : &inverseFrames[segment.storedFrames];
    }
    /// Memory that the trail takes.
    std::size_t Bytes() const;
};

/// Splits a cell into its children, and these on, or makes it a leaf.
///
/// @param list   segments that touch `box`, ascending
/// @param depth  0 at the root
/// @return the cell; what lies below it stands in the trail
TrackCell BuildCell(TrackTrail& trail, std::span<const std::uint32_t> list, const Box3& box, std::int32_t depth);

/// The box of child `k` of a cell: bit 0 of `k` chooses the upper half in X, bit 1 in Y, bit 2 in Z.
Box3 ChildBox(const Box3& box, unsigned k);

}  // namespace tavrik
