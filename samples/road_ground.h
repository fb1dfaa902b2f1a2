#pragma once
/// A ground made along a road, so that a line on paper can be driven.

#include <cstdint>
#include <string>

#include "samples/road_line.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

struct RoadGround {
    double widthMetres = 10.0;  // of the road, level across or banked
    double vergeMetres = 20.0;  // beside it, to both sides
    double bankPercent = 0.0;   // rise over width in the tightest curves, which lean inwards
    double hillMetres = 0.0;    // how high the land rises and falls; the road goes with it
    std::uint64_t seed = 1;     // of the hills
};

/// Makes a band of ground along `line`: scene units (centimetres), Z up, faces counter-clockwise seen from above. It is one
/// layer: where the road meets itself, or passes close by, it lies on the ground of the nearer part.
///
/// @param line     at least one piece; finite
/// @param problem  on false: one sentence without a full stop, such as that the ground would be too large
bool MakeRoadGround(const RoadLine& line, const RoadGround& wanted, TriangleMesh& mesh, std::string& problem);

/// The ground of the sample circuit: low hills, curves banked a little.
TriangleMesh MakeCircuitGround();

}  // namespace tavrik
