#pragma once

#include <functional>
#include <memory>

#include "tracks/track_trail.h"

namespace tavrik {

/// What one render paints tracks with: a trail and the treads of its wheels, kept alive until the last who reads them lets go,
/// whatever is built anew meanwhile.
struct PaintedTrail {
    std::shared_ptr<const TrackTrail> trail;  // null: there is none
    std::vector<SharedTread> treads;          // beside the trail's wheels

    /// Whether there is anything to ask.
    bool CanPaint() const { return trail != nullptr && trail->built != 0; }
    /// As `TrackTrail::Query`; CanPaint() must be true (asserted).
    void Query(float& value, Point3& bump, const Point3& point, TimeValue tick, const TrackParams& params) const {
        trail->Query(value, bump, point, tick, params, treads);
    }
};

/// Puts a trail and the present treads of its wheels together. A trail that isn't built is not asked for wheels.
///
/// @param treadOf  the tread of the wheel with a handle, or null where that wheel is gone or has none; asked once a wheel
PaintedTrail ResolvePatterns(std::shared_ptr<const TrackTrail> trail, const std::function<SharedTread(std::uint32_t)>& treadOf);

}  // namespace tavrik
