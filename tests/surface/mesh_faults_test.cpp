#include "surface/mesh_faults.h"

#include <gtest/gtest.h>

namespace tavrik::test {
namespace {

TriangleMesh Square() { return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{{0, 1, 2}}, {{0, 2, 3}}}}; }

TEST(MeshFaults, OfASoundMeshAreNone) {
    const MeshFaults faults = FindMeshFaults(Square());
    EXPECT_EQ(faults.degenerate, 0u);
    EXPECT_EQ(faults.duplicates, 0u);
    EXPECT_EQ(FindMeshFaults({}).degenerate, 0u);
}

TEST(MeshFaults, AreFacesOnALine) {
    TriangleMesh mesh = Square();
    mesh.faces.push_back({{0, 0, 1}});
    mesh.verts.push_back({0.5f, 0, 0});
    mesh.faces.push_back({{0, 4, 1}});
    mesh.faces.push_back({{0, 4, 1}});
    const MeshFaults faults = FindMeshFaults(mesh);
    EXPECT_EQ(faults.degenerate, 3u);
    EXPECT_EQ(faults.duplicates, 0u);
}

TEST(MeshFaults, AreFacesOnTheCornersOfAnotherWhicheverWayRound) {
    TriangleMesh mesh = Square();
    mesh.faces.push_back({{1, 2, 0}});
    mesh.faces.push_back({{2, 1, 0}});
    EXPECT_EQ(FindMeshFaults(mesh).duplicates, 2u);
}

TEST(MeshFaults, GoByPlacesAndNotByNumbers) {
    TriangleMesh mesh = Square();
    for (int i = 0; i < 3; ++i) mesh.verts.push_back(mesh.verts[std::size_t(i)]);
    mesh.verts[4].z = -0.0f;
    mesh.faces.push_back({{4, 5, 6}});
    EXPECT_EQ(FindMeshFaults(mesh).duplicates, 1u);
}

}  // namespace
}  // namespace tavrik::test
