#pragma once
/// A mesh as a file holds it, before it becomes ground: the readers of all formats meet here.

#include <cstddef>
#include <vector>

#include "solver/double_maths.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

enum class UpAxis { FromFile, Y, Z };

/// More than any ground that fits an octree, and few enough that a hostile count in a small file can't fill the memory.
constexpr std::size_t kMostGroundTriangles = 50'000'000;

struct FileMesh {
    std::vector<DPoint3> verts;  // in the file's unit and axes
    std::vector<MeshFace> faces;
    UpAxis up = UpAxis::Z;       // never FromFile: what the file tells, or its format's habit
    double metresPerUnit = 1.0;  // likewise
};

}  // namespace tavrik
