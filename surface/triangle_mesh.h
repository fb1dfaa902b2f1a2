#pragma once

#include <cstdint>
#include <vector>

#include "solver/single_maths.h"

namespace tavrik {

/// Three indices into the vertices of the mesh that holds the face.
struct MeshFace {
    std::uint32_t v[3];
};

/// A triangle mesh in world space, in scene units, Z up.
struct TriangleMesh {
    std::vector<Point3> verts;
    std::vector<MeshFace> faces;
};

}  // namespace tavrik
