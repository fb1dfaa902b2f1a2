#pragma once
/// Grounds for tests and benchmarks, in scene units (1 cm), Z up.

#include <cstdint>
#include <string>

#include "surface/triangle_mesh.h"

namespace tavrik::test {

/// Rolling hills on a square of side `width` about the origin, a few units to some metres high: a grid of right-angled
/// triangles, `faces` of them or just more.
TriangleMesh HillMesh(std::size_t faces, float width = 20000.0f);
/// The height of those hills.
float HillHeight(float x, float y);

/// Terraces of random height whose steps are vertical walls and whose floors are level, on a square of `cells` x `cells`.
TriangleMesh TerraceMesh(int cells, float cellWidth, std::uint64_t seed);

/// Long, thin triangles from one point to a ring around it.
TriangleMesh SliverFanMesh(int slivers, float radius);

/// Every face of `mesh` twice, the double turned over.
TriangleMesh WithDoubles(const TriangleMesh& mesh);

/// `count` large triangles with the same three corners.
TriangleMesh CoincidentMesh(int count, float size);

/// Reads vertices and triangles of a simple OBJ file, in metres, from the folder of real data.
/// @return false when the file isn't there
bool ReadRealGround(const std::string& name, TriangleMesh& mesh);

}  // namespace tavrik::test
