#pragma once

#include "graphics_window.h"

namespace tavrik_host {

/// A place in a view. In double, since what reaches close to the eye reaches far out of the picture.
struct RegionPoint {
    double x, y;
};

/// How a line lies to a region.
struct RegionAnswer {
    bool touched, inside;
    double along;  // where on the line it is touched, 0..1
};
RegionAnswer TryRegion(const HitRegion& region, const RegionPoint& a, const RegionPoint& b);

/// A point of a region. A surface that touches it and has no edge in it covers this.
RegionPoint PointOf(const HitRegion& region);

}  // namespace tavrik_host
