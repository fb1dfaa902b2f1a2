#pragma once
/// A stretch of a wheel's way: the tyre swept from one frame to another.

#include <cstddef>
#include <cstdint>

#include "rig/ticks.h"
#include "solver/single_maths.h"

namespace tavrik {

/// A stretch may have this many steps, a fortieth of the wheel's radius each: eight kilometres for a car. Whatever asks for
/// more is no way that a wheel can go from one sample to the next.
constexpr std::int32_t kMaxTrackSteps = 1 << 20;
/// No wheel gets farther from the origin than this, in scene units: squares of lengths stay far from the end of the numbers.
constexpr float kMaxTrackReach = 1e9f;

struct alignas(64) TrackSegment {
    std::uint32_t sideFlag = 0;     // 1 where the wheel's tread is mirrored
    std::uint32_t wheelHandle = 0;  // of the wheel's node
    std::int32_t steps = 1;         // at least one, one per fortieth of a radius
    TimeValue startTime = 0;
    Box3 bound = EmptyBox3();                // holds the tyre at both ends, in the world
    Matrix3 startFrame = IdentityMatrix3();  // of the wheel, in the world

    // What turns most points away stands together in one line of the cache, from the axle in the start's frame to `way`.
    TimeValue endTime = 0;
    float Radius = 0.0f;  // of the wheel, scene units
    float Width = 0.0f;   // radius of the tyre's section, and half its thickness
    // For `MayTouch`: how far from the start a point may be, squared, and by how much the tyre is taken larger than it is. A
    // reach below zero: the wheel's turn is too wild for a rule, so that every point may be touched.
    float reachSquared = -1.0f, slack = 0.0f;
    Point3 way{0, 0, 0};  // of the wheel's middle, from start to end

    Matrix3 endFrame = IdentityMatrix3();

    // Set by whoever collects segments.
    std::uint32_t wheel = 0;                                  // which of the trail's wheels
    std::uint32_t storedFrames = kNotStored;                  // where the trail keeps the inverse frames of the way
    static constexpr std::uint32_t kNotStored = 0xffffffffu;  // nowhere: they are worked out when they are asked for
};
static_assert(sizeof(TrackSegment) == 192);
static_assert(offsetof(TrackSegment, startFrame) + 2 * sizeof(Point3) == 64 && offsetof(TrackSegment, endFrame) <= 128);

/// What `Init` found.
enum class SegmentResult { Good, NotFinite, TooLong };

/// Fills a segment. The way between the frames is no true rotation: rows are blended and brought to length 1 each.
///
/// @param Radius, Width  above zero (asserted)
/// @return anything but Good: the segment is of no use. A frame isn't finite or lies beyond `kMaxTrackReach`, or the way is
///         longer than `kMaxTrackSteps`
SegmentResult Init(TrackSegment& segment, const Matrix3& startFrame, const Matrix3& endFrame, float Radius, float Width,
                   std::uint32_t sideFlag, TimeValue startTime, TimeValue endTime, std::uint32_t wheelHandle);

/// Frame `i` of the way, 0..steps: wheel to world.
Matrix3 ForwardFrame(const TrackSegment& segment, std::int32_t i);
/// The one that undoes it: world to wheel.
Matrix3 InverseFrame(const TrackSegment& segment, std::int32_t i);

/// Between two frames of the way, element by element; what comes out is not brought to length 1.
/// @param u  0 at the start, up to but not at 1 at the end
Matrix3 ForwardFrameAt(const TrackSegment& segment, float u);
/// @param inverseFrames  all of the segment's, or null: then the two that are needed are worked out. The bits are the same
Matrix3 InverseFrameAt(const TrackSegment& segment, const Matrix3* inverseFrames, float u);

/// A quick look that spares most of the work: false only where no place on the way brings the tyre to the point.
bool MayTouch(const TrackSegment& segment, const Point3& point);

}  // namespace tavrik
