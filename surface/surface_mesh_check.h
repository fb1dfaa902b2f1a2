#pragma once

#include <string>

#include "surface/triangle_mesh.h"

namespace tavrik {

/// Tells whether a ground can be built of `mesh`: every vertex finite, every face on vertices that exist, at most 2^31 - 1 of
/// each.
/// @param problem  on false: one sentence about the first vertex or face that is wrong, such as
///                 "face 812 uses vertex 90210, but there are 4096"; both count from 0
bool CheckMesh(const TriangleMesh& mesh, std::string& problem);

}  // namespace tavrik
