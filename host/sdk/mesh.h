#pragma once

#include "point3.h"

using ChannelMask = ULONG;
constexpr ChannelMask OBJ_CHANNELS = 9215;
constexpr int TOPO_CHAN_NUM = 0, GEOM_CHAN_NUM = 1;

/// A triangle: three vertex numbers.
class Face {
 public:
    DWORD v[3] = {0, 0, 0};
    DWORD getVert(int i) const { return v[i]; }
    void setVerts(DWORD a, DWORD b, DWORD c) {
        v[0] = a;
        v[1] = b;
        v[2] = c;
    }
};

/// Triangles over vertices in the object's own space.
class Mesh {
 public:
    int numVerts = 0, numFaces = 0;
    Point3* verts = nullptr;
    Face* faces = nullptr;

    Mesh() = default;
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;
    ~Mesh();
    int getNumVerts() const { return numVerts; }
    int getNumFaces() const { return numFaces; }
    BOOL setNumVerts(int n);
    BOOL setNumFaces(int n);
    void setVert(int i, const Point3& p) { verts[i] = p; }
    Point3& getVert(int i) { return verts[i]; }
    void DeepCopy(Mesh* from, ChannelMask channels);
};
