#include "host/sdk/mesh.h"

#include <algorithm>
#include <limits>

Mesh::~Mesh() {
    delete[] verts;
    delete[] faces;
}

BOOL Mesh::setNumVerts(int n) {
    if (n < 0) return FALSE;
    constexpr float kUnset = std::numeric_limits<float>::quiet_NaN();  // so that a forgotten vertex is seen
    auto* const fresh = n > 0 ? new Point3[std::size_t(n)] : nullptr;
    std::fill_n(fresh, n, Point3(kUnset, kUnset, kUnset));
    delete[] verts;
    verts = fresh;
    numVerts = n;
    return TRUE;
}

BOOL Mesh::setNumFaces(int n) {
    if (n < 0) return FALSE;
    auto* const fresh = n > 0 ? new Face[std::size_t(n)] : nullptr;
    delete[] faces;
    faces = fresh;
    numFaces = n;
    return TRUE;
}

void Mesh::DeepCopy(Mesh* from, ChannelMask channels) {
    if (from == this) return;
    if ((channels & (1u << GEOM_CHAN_NUM)) != 0) {
        setNumVerts(from->numVerts);
        std::copy_n(from->verts, from->numVerts, verts);
    }
    if ((channels & (1u << TOPO_CHAN_NUM)) != 0) {
        setNumFaces(from->numFaces);
        std::copy_n(from->faces, from->numFaces, faces);
    }
}
