#pragma once

#include "wizard/layout.h"

namespace tavrik {

/// Balls near the corners of the body and of its roof, each within the hull of the body and clear of the ground.
///
/// @param mass   of the chassis
/// @param dt     of the solver, s
std::vector<PlannedSphere> FitSpheres(const Layout& layout, double mass, double dt);

}  // namespace tavrik
