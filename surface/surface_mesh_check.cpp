#include "surface/surface_mesh_check.h"

#include <cmath>
#include <cstddef>

namespace tavrik {
namespace {

constexpr std::size_t kMostElements = 0x7FFFFFFF;

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

}  // namespace

bool CheckMesh(const TriangleMesh& mesh, std::string& problem) {
    const std::size_t numVerts = mesh.verts.size(), numFaces = mesh.faces.size();
    if (numVerts > kMostElements || numFaces > kMostElements) {
        problem = "the mesh has " + std::to_string(numFaces) + " faces and " + std::to_string(numVerts) +
                  " vertices, but a ground takes no more than " + std::to_string(kMostElements) + " of each";
        return false;
    }
    for (std::size_t i = 0; i < numVerts; ++i) {
        if (IsFinite(mesh.verts[i])) continue;
        problem = "vertex " + std::to_string(i) + " has a coordinate that is not a finite number";
        return false;
    }
    for (std::size_t i = 0; i < numFaces; ++i) {
        for (const std::uint32_t v : mesh.faces[i].v) {
            if (v < numVerts) continue;
            problem = "face " + std::to_string(i) + " uses vertex " + std::to_string(v) + ", but there are " +
                      std::to_string(numVerts);
            return false;
        }
    }
    return true;
}

}  // namespace tavrik
