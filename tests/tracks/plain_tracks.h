#pragma once
/// The tracks once more, written down as plainly as can be: every frame of a way is kept, every segment is tried at every place
/// on it, and no tree or bound spares anything. What the fast way says is held against it.

#include <vector>

#include "rig/car_rig.h"
#include "tracks/track_params.h"
#include "tracks/tread_table.h"

namespace tavrik::test {

struct PlainSegment {
    TrackSample sample;
    int steps = 1;
    std::vector<Matrix3> forward, inverse;  // [steps + 1]
};

struct PlainAnswer {
    float value = 0.0f;
    Point3 bump{0, 0, 0};
    int touches = 0;
};

std::vector<PlainSegment> PlainSegments(const CarRig& rig);

/// @param tread  of all wheels, or null
PlainAnswer PlainQuery(const std::vector<PlainSegment>& segments, const Point3& point, TimeValue tick,
                       const TrackParams& params, const float* tread);

}  // namespace tavrik::test
