#include "surface/surface_tree.h"

namespace tavrik {

bool SurfaceTree::Build(const TriangleMesh& mesh) {
    std::string problem;
    return Build(mesh, SurfaceBuildLimits{}, problem);
}

void SurfaceTree::Release() { *this = SurfaceTree(); }

std::size_t SurfaceTree::bytes() const {
    return grid_.bytes() + verts_.capacity() * sizeof(Point3) + triangles_.capacity() * sizeof(SurfaceTriangle) +
           nodes_.capacity() * sizeof(SurfaceNode) + blocks_.capacity() * sizeof(SurfaceBlock) +
           +faces_.capacity() * sizeof(SurfaceFaces);
}

}  // namespace tavrik
