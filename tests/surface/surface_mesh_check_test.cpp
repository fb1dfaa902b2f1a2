#include "surface/surface_mesh_check.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrik {
namespace {

TriangleMesh OneFace() { return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{{0, 1, 2}}}}; }

TEST(CheckMesh, AcceptsAMeshThatHoldsTogether) {
    std::string problem;
    EXPECT_TRUE(CheckMesh(OneFace(), problem));
    EXPECT_TRUE(problem.empty());
}

TEST(CheckMesh, AcceptsAnEmptyMesh) {
    std::string problem;
    EXPECT_TRUE(CheckMesh({}, problem));
}

TEST(CheckMesh, NamesTheFaceAndTheVertexThatIsMissing) {
    TriangleMesh mesh = OneFace();
    mesh.faces.push_back({{0, 2, 90210}});
    std::string problem;
    EXPECT_FALSE(CheckMesh(mesh, problem));
    EXPECT_EQ(problem, "face 1 uses vertex 90210, but there are 3");
}

TEST(CheckMesh, RefusesTheVertexJustBehindTheLast) {
    TriangleMesh mesh = OneFace();
    mesh.faces[0].v[1] = 3;
    std::string problem;
    EXPECT_FALSE(CheckMesh(mesh, problem));
}

TEST(CheckMesh, NamesTheVertexThatIsNotFinite) {
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            TriangleMesh mesh = OneFace();
            mesh.verts[2][axis] = bad;
            std::string problem;
            EXPECT_FALSE(CheckMesh(mesh, problem));
            EXPECT_EQ(problem, "vertex 2 has a coordinate that is not a finite number");
        }
    }
}

}  // namespace
}  // namespace tavrik
