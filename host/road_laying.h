#pragma once
/// A line on paper laid on the ground.

#include <string>
#include <vector>

#include "samples/road_line.h"
#include "surface/surface_tree.h"

namespace tavrik {

/// Lays a line on the topmost ground below it, with points added where the ground bends.
///
/// @param metresPerUnit  of the scene
/// @param points         out: scene units
/// @param problem        on false: where the line leaves the ground, without a full stop
bool LayOnGround(const SurfaceTree& surface, const RoadLine& line, double metresPerUnit, std::vector<Point3>& points,
                 std::string& problem);

}  // namespace tavrik
