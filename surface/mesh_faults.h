#pragma once

#include <cstddef>

#include "surface/triangle_mesh.h"

namespace tavrik {

/// Faces that a ground can be built with, but that are there in vain.
struct MeshFaults {
    std::size_t degenerate = 0;  // without an area
    std::size_t duplicates = 0;  // on the corners of an earlier face, whichever way round
};

/// Corners are compared by place, so that a mesh whose faces share no vertices is looked at as well. A face without an area is
/// not counted twice. The mesh must be one that a ground can be built of.
MeshFaults FindMeshFaults(const TriangleMesh& mesh);

}  // namespace tavrik
