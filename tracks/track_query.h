#pragma once

#include "tracks/track_params.h"
#include "tracks/track_segment.h"
#include "tracks/tyre_contact.h"

namespace tavrik {

/// What tyres did to one point so far.
struct TrackSum {
    float value = 0.0f;    // how much tyre has passed: an optical depth
    Point3 bump{0, 0, 0};  // how it pushes the surface, in the world
};

/// Adds what one stretch of a wheel's way does to a point. Tracks show a whole stretch at a time, once the wheel has left it.
///
/// @param inverseFrames  of the segment, or null; see `InverseFrameAt`
/// @param patternMap     the wheel's tread, or null
/// @param params         samples 1 at least (asserted)
///
/// Reads only, but for `sum`.
void TrackAccumulate(const TrackSegment& segment, const Matrix3* inverseFrames, const float* patternMap, const Point3& point,
                     TimeValue tick, const TrackParams& params, TrackSum& sum);

}  // namespace tavrik
