#pragma once
/// From the world to a picture's own coordinates.

#include <span>

#include "host/sdk/max.h"
#include "host/sdk/view_state.h"

namespace tavrik_studio {

struct EyeFrame {
    float clip[16];       // row by row: of a vector (x, y, z, 1) on the left
    Point3 eye{0, 0, 0};  // in perspective where it is, else the direction back to it, of length 1
    bool perspective = true;
    float near = 1.0f, far = 2.0f;  // depths between which something is seen

    /// Whether some of a box may be seen.
    bool MaySee(const Box3& box, const Matrix3& place) const;
};

/// @param seen  points that must not be cut off in the distance; of a flat view in front either
EyeFrame EyeFrameOf(const tavrik_host::ViewState& state, std::span<const Point3> seen);

}  // namespace tavrik_studio
