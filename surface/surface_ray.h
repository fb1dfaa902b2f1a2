#pragma once

#include "solver/single_maths.h"

namespace tavrik {

/// A segment to ask the ground about: the points org + dir * t with tmin <= t <= tmax. World space.
struct SurfaceRay {
    Point3 dir;  // the whole segment's vector, not normalised
    Point3 org;  // its start
    float tmin;  // moves forward as a query walks; never a result
    float tmax;  // the hit's parameter after a query that hits

    void Set(const Point3& origin, const Point3& direction, float from, float to) {
        dir = direction;
        org = origin;
        tmin = from;
        tmax = to;
    }
};

}  // namespace tavrik
