#include "tracks/painted_trail.h"

#include <utility>

namespace tavrik {

PaintedTrail ResolvePatterns(std::shared_ptr<const TrackTrail> trail,
                             const std::function<SharedTread(std::uint32_t)>& treadOf) {
    PaintedTrail painted{std::move(trail), {}};
    if (!painted.CanPaint()) return painted;
    painted.treads.reserve(painted.trail->wheels.size());
    for (const std::uint32_t handle : painted.trail->wheels) painted.treads.push_back(treadOf(handle));
    return painted;
}

}  // namespace tavrik
