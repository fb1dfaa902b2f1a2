#pragma once
/// The ground: an octree over a triangle mesh that tells where a segment first meets it.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "solver/single_maths.h"
#include "surface/surface_grid.h"
#include "surface/surface_node.h"
#include "surface/surface_ray.h"
#include "surface/surface_triangle.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// What a build may use of the machine. Neither changes the tree.
struct SurfaceBuildLimits {
    std::size_t memoryBytes = 0;  // most that the build may hold at a time, the tree included; 0: half of the machine's memory
    unsigned threads = 0;         // 0: every processor
};

/// A mesh that never changes, cut into cubes. World space, scene units, single precision as the mesh is.
///
/// The root is the mesh's padded cube. A cube at depth d splits into eight while it touches more than d triangles and d is
/// below 16; the leaves list the triangles they touch, in the mesh's order, and know the cubes beyond their faces, so that a
/// query walks from leaf to leaf. Every query answers, bit for bit, what that walk answers; how it is stored is free.
class SurfaceTree {
 public:
    /// Builds the tree of `mesh` in place of the one before. Nothing of the mesh is kept.
    ///
    /// The memory that triangles lying on one another can take has no bound but the sixteen levels: a dozen large ones fill
    /// 3 GB, each further one four times as much. A build that would pass its limit stops there.
    ///
    /// @param problem  on false: one sentence, without the mesh's name, such as
    ///                 "face 812 uses vertex 90210, but there are 4096"
    /// @return false when the mesh can't be built within the limits; the tree is then the one before
    ///
    /// Starts threads of its own and ends them. Whatever their number, the tree is the same, byte for byte. No query may run on
    /// this tree meanwhile.
    bool Build(const TriangleMesh& mesh, const SurfaceBuildLimits& limits, std::string& problem);
    /// As above, with every processor and half the memory, for a caller to whom the reason of a failure is nothing.
    bool Build(const TriangleMesh& mesh);

    /// Empties the tree and gives back its memory.
    void Release();

    /// Finds where a segment first meets the ground. Both sides of a triangle are solid, its edges belong to it.
    ///
    /// @param ray  world space. In: tmin < tmax, in lengths of `dir`. Out, on true: `tmax` is the nearest hit; on false neither
    ///             bound means anything.
    /// @return true on a hit
    ///
    /// A hit within a rounding of a wall between two leaves may be outside of both, and is then lost: there is no tolerance. A
    /// ray with a NaN hits nothing. The tree must be built (asserted). Changes nothing but the ray and allocates nothing; any
    /// number of threads may ask at once.
    bool Intersect(SurfaceRay& ray) const;

    /// Whether everything below is valid.
    bool built() const { return !blocks_.empty(); }
    /// The root's cube, padded a little more below than above. Rays are cut to it.
    const Box3& bound() const { return bound_; }
    std::uint32_t numFaces() const { return std::uint32_t(triangles_.size()); }
    std::uint32_t numVerts() const { return std::uint32_t(verts_.size()); }
    /// The mesh's vertices, in its order.
    const std::vector<Point3>& verts() const { return verts_; }
    /// One for each face, in the mesh's order.
    const std::vector<SurfaceTriangle>& triangles() const { return triangles_; }
    SurfaceLink root() const { return root_; }
    /// The inner cubes.
    const std::vector<SurfaceNode>& nodes() const { return nodes_; }
    /// The leaves, each with the planes of its list right behind it.
    const std::vector<SurfaceBlock>& blocks() const { return blocks_; }
    /// The triangles of the lists.
    const std::vector<SurfaceFaces>& faces() const { return faces_; }
    /// What the tree takes.
    std::size_t bytes() const;

 private:
    friend class SurfaceBuild;

    Box3 bound_{};
    SurfaceLink root_;
    SurfaceGrid grid_;
    std::vector<Point3> verts_;
    std::vector<SurfaceTriangle> triangles_;
    std::vector<SurfaceNode> nodes_;
    std::vector<SurfaceBlock> blocks_;
    std::vector<SurfaceFaces> faces_;
};

}  // namespace tavrik
