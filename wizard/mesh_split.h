#pragma once
/// Parts that hold more than one wheel, taken apart.

#include <cstdint>
#include <span>
#include <vector>

#include "wizard/disc_fit.h"

#include "surface/triangle_mesh.h"

namespace tavrik {

/// Numbers the pieces of a mesh that hang together by shared corners; corners at the same place are one.
/// @return the piece of each face, counted from 0
std::vector<int> ConnectedPieces(std::span<const DPoint3> vertices, std::span<const MeshFace> faces);

/// Looks for a gap along the axle of something round: a stretch without tyre, perhaps with a rod through it.
///
/// @param sides  on true: of each face, 0 for the one end of the axle and 1 for the other
/// @return false where the tyre goes through
bool SplitAlongAxle(std::span<const DPoint3> vertices, std::span<const MeshFace> faces, const DiscFit& fit,
                    std::vector<int>& sides);

}  // namespace tavrik
