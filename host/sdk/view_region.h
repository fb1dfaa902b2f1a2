#pragma once

#include "graphics_window.h"

namespace tavrik_host {

/// A place in a view, between pixels too.
struct Pixel {
    float x, y;
};

/// How a line lies to a region.
struct RegionAnswer {
    bool touched, inside;
};
RegionAnswer TryRegion(const HitRegion& region, const Pixel& a, const Pixel& b);

}  // namespace tavrik_host
