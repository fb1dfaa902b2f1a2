#include "surface/mesh_faults.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include "solver/double_maths.h"

namespace tavrik {
namespace {

using Corners = std::array<std::tuple<float, float, float>, 3>;

/// The corners in an order that doesn't depend on where the face begins. Adding zero makes the two zeros one.
Corners SortedCorners(const TriangleMesh& mesh, const MeshFace& face) {
    Corners corners;
    for (std::size_t i = 0; i < 3; ++i) {
        const Point3& p = mesh.verts[face.v[i]];
        corners[i] = {p.x + 0.0f, p.y + 0.0f, p.z + 0.0f};
    }
    std::ranges::sort(corners);
    return corners;
}

bool HasArea(const TriangleMesh& mesh, const MeshFace& face) {
    const DPoint3 a = FromPoint3(mesh.verts[face.v[0]]);
    const DPoint3 n = Cross(FromPoint3(mesh.verts[face.v[1]]) - a, FromPoint3(mesh.verts[face.v[2]]) - a);
    return n.x != 0.0 || n.y != 0.0 || n.z != 0.0;
}

}  // namespace

MeshFaults FindMeshFaults(const TriangleMesh& mesh) {
    MeshFaults faults;
    std::vector<Corners> whole;
    whole.reserve(mesh.faces.size());
    for (const MeshFace& face : mesh.faces) {
        if (HasArea(mesh, face)) {
            whole.push_back(SortedCorners(mesh, face));
        } else {
            ++faults.degenerate;
        }
    }
    std::ranges::sort(whole);
    for (std::size_t i = 1; i < whole.size(); ++i) {
        if (whole[i] == whole[i - 1]) ++faults.duplicates;
    }
    return faults;
}

}  // namespace tavrik
