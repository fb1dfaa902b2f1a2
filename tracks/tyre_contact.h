#pragma once

#include <cstdint>

#include "solver/single_maths.h"

namespace tavrik {

/// A tyre: a body of revolution about its wheel's Z axis, whose section is a square with rounded corners.
struct TyreShape {
    float Radius;             // of the wheel, scene units
    float Width;              // of the section: half the tyre's thickness
    std::uint32_t sideFlag;   // 1 where the wheel is mounted the other way round, which mirrors its tread
    const float* patternMap;  // kTreadEntries floats, not owned; null for a tyre without a tread
};

/// How a tyre touches a point.
struct TyreTouch {
    float weight = 0.0f;       // 0 at the tyre's skin, 1 on the circle at the middle of its section; or what the tread says
    Point3 normal{0, 0, 0};    // outward from the section, length 1, in the wheel's frame
    Point3 gradient{0, 0, 0};  // of the tread, in the wheel's frame; stays as it was where there is no tread
};

/// Asks whether a point is inside a tyre.
///
/// @param local  the point in the wheel's frame
/// @param touch  filled on true; on false not changed
///
/// Reads only.
bool TyreContact(const Point3& local, const TyreShape& tyre, TyreTouch& touch);

}  // namespace tavrik
