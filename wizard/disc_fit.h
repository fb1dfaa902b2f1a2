#pragma once
/// How much a heap of points looks like a wheel: something round about a level axle.

#include <span>

#include "solver/double_maths.h"

namespace tavrik {

struct DiscFit {
    DPoint3 centre{}, axle{};  // `axle` of length 1, level or nearly so
    double radius = 0.0;
    double halfWidth = 0.0;  // along the axle
    double roundness = 0.0;  // least reach across the axle over the largest: 1 for a circle, 0.71 for a square; 0: no fit
};

/// Finds the level axle about which the points are the roundest.
///
/// @param frame  of the part that they come from, in the space of the points: wheels are mostly drawn about an axis of their
/// own
DiscFit FitDisc(std::span<const DPoint3> points, const DMatrix3& frame);

}  // namespace tavrik
