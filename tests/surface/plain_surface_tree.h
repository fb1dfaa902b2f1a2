#pragma once
/// The ground's octree as one would first write it down: nodes with pointers, one triangle at a time, one cut after the other.
/// The fast tree has to answer the same, bit for bit.

#include <memory>
#include <vector>

#include "solver/single_maths.h"
#include "surface/surface_ray.h"
#include "surface/triangle_mesh.h"

namespace tavrik::test {

struct PlainTriangle {
    Point3 corner[3];
    Point3 normal{};
    float planeD = 0;
    int axisU = 0, axisV = 0;
    float baseU = 0, baseV = 0;
    float m[4] = {};

    bool SetUp();
    /// Lowers ray.tmax on a hit. `box` may be null for a triangle that is asked on its own.
    bool Intersect(SurfaceRay& ray, const Box3* box) const;
};

struct PlainNode {
    Box3 box{};
    Point3 centre{};
    int depth = 0;
    int childIndex = 0;
    std::vector<int> list;
    std::unique_ptr<PlainNode> child[8];
    PlainNode* parent = nullptr;
    PlainNode* neighbour[6] = {};

    bool isLeaf() const { return child[0] == nullptr; }
};

struct PlainSurfaceTree {
    explicit PlainSurfaceTree(const TriangleMesh& mesh);
    /// @param steps  how many leaves were asked; a walk that hasn't ended after `kMostSteps` is given up and hits nothing
    bool Intersect(SurfaceRay& ray, int* steps = nullptr) const;
    /// Tries every triangle, without any boxes.
    bool IntersectEveryTriangle(SurfaceRay& ray) const;

    static constexpr int kMostSteps = 1'000'000;

    Box3 bound{};
    std::vector<PlainTriangle> triangles;
    std::unique_ptr<PlainNode> root;
};

/// The box of child `i` of a cube.
Box3 PlainChildBox(const Box3& parent, int i);

/// Whether a triangle touches a box.
/// @param mostPlaces  raised to the number of places that the polygon needed, its closing copy included
bool PlainTouches(const Point3 (&corner)[3], const Box3& box, int* mostPlaces = nullptr);

}  // namespace tavrik::test
