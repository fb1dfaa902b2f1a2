// The build: what stands in the tree, what a build refuses, and that neither threads nor limits change it.

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "surface/surface_tree.h"
#include "tests/support/ground_meshes.h"
#include "tests/support/test_random.h"
#include "tests/surface/plain_surface_tree.h"

namespace tavrik {
namespace {

using test::PlainNode;
using test::PlainSurfaceTree;

static_assert(std::is_nothrow_move_constructible_v<SurfaceTree>);

TriangleMesh OneFace() { return {{{0, 0, 0}, {100, 0, 10}, {0, 100, 20}}, {{{0, 1, 2}}}}; }

// Nine or a hundred tiny triangles on one spot, and two vertices that hold the cube open.
TriangleMesh PileOnASpot(int count) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {1024, 1024, 1024}, {300, 300, 300}, {300.001f, 300, 300}, {300, 300.001f, 300}};
    for (int i = 0; i < count; ++i) mesh.faces.push_back({{2, 3, 4}});
    return mesh;
}

SurfaceTree BuiltTree(const TriangleMesh& mesh, unsigned threads = 0) {
    SurfaceTree tree;
    std::string problem;
    EXPECT_TRUE(tree.Build(mesh, {.memoryBytes = 0, .threads = threads}, problem)) << problem;
    return tree;
}

const SurfaceLeaf& LeafAt(const SurfaceTree& tree, SurfaceLink link) { return tree.blocks()[link.index()].leaf; }

// Calls visit(link, depth) for each cube, the root first.
template <typename Visit>
void VisitCubes(const SurfaceTree& tree, SurfaceLink link, int depth, const Visit& visit) {
    visit(link, depth);
    if (link.endsDescent()) return;
    for (const SurfaceLink child : tree.nodes()[link.index()].child) VisitCubes(tree, child, depth + 1, visit);
}

struct Deepest {
    int depth = 0;
    std::uint32_t most = 0;  // triangles in its fullest leaf
};
Deepest DeepestLeaf(const SurfaceTree& tree) {
    Deepest deepest;
    VisitCubes(tree, tree.root(), 0, [&](SurfaceLink link, int depth) {
        if (!link.endsDescent() || depth < deepest.depth) return;
        if (depth > deepest.depth) deepest = {depth, 0};
        deepest.most = std::max(deepest.most, LeafAt(tree, link).count);
    });
    return deepest;
}

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}
bool SameTree(const SurfaceTree& a, const SurfaceTree& b) {
    return std::memcmp(&a.bound(), &b.bound(), sizeof(Box3)) == 0 && a.root() == b.root() && SameBytes(a.verts(), b.verts()) &&
           SameBytes(a.triangles(), b.triangles()) && SameBytes(a.nodes(), b.nodes()) && SameBytes(a.blocks(), b.blocks()) &&
           SameBytes(a.faces(), b.faces());
}

// Compares cube by cube: walls, split points, lists in their order, neighbours.
class TreeComparison {
 public:
    TreeComparison(const SurfaceTree& tree, const PlainSurfaceTree& plain) : tree_(tree) {
        ExpectSame(plain.bound.pmin, tree.bound().pmin);
        ExpectSame(plain.bound.pmax, tree.bound().pmax);
        Pair(*plain.root, tree.root());
        for (const auto& [node, link] : links_) Compare(*node, link);
    }
    std::size_t cubes() const { return links_.size(); }

 private:
    static void ExpectSame(const Point3& a, const Point3& b) {
        EXPECT_EQ(a.x, b.x);
        EXPECT_EQ(a.y, b.y);
        EXPECT_EQ(a.z, b.z);
    }

    void Pair(const PlainNode& node, SurfaceLink link) {
        links_[&node] = link;
        ASSERT_EQ(node.isLeaf(), link.endsDescent());
        if (node.isLeaf()) return;
        for (std::size_t i = 0; i < 8; ++i) Pair(*node.child[i], tree_.nodes()[link.index()].child[i]);
    }

    void Compare(const PlainNode& node, SurfaceLink link) const {
        if (!node.isLeaf()) {
            ExpectSame(node.centre, tree_.nodes()[link.index()].centre);
            return;
        }
        const SurfaceLeaf& leaf = LeafAt(tree_, link);
        ExpectSame(node.box.pmin, leaf.pmin);
        ExpectSame(node.box.pmax, leaf.pmax);
        ASSERT_EQ(node.list.size(), leaf.count);
        for (std::uint32_t i = 0; i < leaf.count; ++i) {
            const std::uint32_t face = tree_.faces()[leaf.firstFaces + i / 4].face[i % 4];
            ASSERT_EQ(node.list[i], int(face));
            ASSERT_EQ(tree_.blocks()[link.index() + 1 + i / 4].planes.planeD[i % 4], tree_.triangles()[face].planeD);
        }
        for (std::size_t s = 0; s < 6; ++s) {
            const PlainNode* beyond = node.neighbour[s];
            ASSERT_TRUE(beyond == nullptr ? leaf.neighbour[s].isNone() : leaf.neighbour[s] == links_.at(beyond))
                << "face " << s;
        }
    }

    const SurfaceTree& tree_;
    std::map<const PlainNode*, SurfaceLink> links_;
};

void ExpectSameAsPlain(const TriangleMesh& mesh, std::size_t leastCubes) {
    const SurfaceTree tree = BuiltTree(mesh);
    const PlainSurfaceTree plain(mesh);
    EXPECT_GE(TreeComparison(tree, plain).cubes(), leastCubes);
}

TEST(SurfaceTreeBuild, HillsAgreeWithThePlainTree) { ExpectSameAsPlain(test::HillMesh(5000), 10'000); }
TEST(SurfaceTreeBuild, TerracesAgreeWithThePlainTree) { ExpectSameAsPlain(test::TerraceMesh(24, 50, 3), 5'000); }
TEST(SurfaceTreeBuild, SliversAgreeWithThePlainTree) { ExpectSameAsPlain(test::SliverFanMesh(200, 500), 5'000); }
TEST(SurfaceTreeBuild, DoublesAgreeWithThePlainTree) { ExpectSameAsPlain(test::WithDoubles(test::HillMesh(400, 900)), 1'000); }

TEST(SurfaceTreeBuild, AgreesWithThePlainTreeWhereWallsAreAsFineAsRounding) {
    // Far from the origin a cube's sixteenth half is less than one step of a float, so walls and split points fall together.
    TriangleMesh mesh = test::SliverFanMesh(16, 20);
    for (Point3& p : mesh.verts) p = p + Point3{3.0e5f, -7.0e5f, 1.0e5f};
    ExpectSameAsPlain(mesh, 1'000);
}

TEST(SurfaceTreeBuild, PadsTheCubeMoreBelowThanAbove) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {100, 100, 100}};
    const SurfaceTree tree = BuiltTree(mesh);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_FLOAT_EQ(tree.bound().pmin[axis], -1.2545679f);
        // Not 101.2345679: the cube that the upper pad is a part of has grown below already.
        EXPECT_NEAR(tree.bound().pmax[axis], 101.2500f, 1e-4f);
    }
}

TEST(SurfaceTreeBuild, MakesACubeAboutTheCentreOfTheMesh) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {100, 20, 10}};
    const SurfaceTree tree = BuiltTree(mesh);
    const Point3 side = tree.bound().Width();
    EXPECT_FLOAT_EQ(side.x, side.y);
    EXPECT_FLOAT_EQ(side.x, side.z);
    EXPECT_FLOAT_EQ(tree.bound().pmin.y, 10 - 50 - 1.2545679f);
}

TEST(SurfaceTreeBuild, MeshWithoutFacesIsOneEmptyLeaf) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {100, 100, 100}};
    const SurfaceTree tree = BuiltTree(mesh);
    EXPECT_TRUE(tree.built());
    EXPECT_TRUE(tree.root().endsDescent());
    EXPECT_EQ(LeafAt(tree, tree.root()).count, 0u);
}

TEST(SurfaceTreeBuild, EmptyMeshIsBuiltToo) { EXPECT_TRUE(BuiltTree({}).built()); }

TEST(SurfaceTreeBuild, OneFaceSplitsTheRootAndNoFurther) {
    const SurfaceTree tree = BuiltTree(OneFace());
    EXPECT_EQ(tree.nodes().size(), 1u);
    EXPECT_EQ(DeepestLeaf(tree).depth, 1);
    EXPECT_EQ(DeepestLeaf(tree).most, 1u);
}

TEST(SurfaceTreeBuild, NineTrianglesOnOneSpotSplitDownToDepthNine) {
    const Deepest deepest = DeepestLeaf(BuiltTree(PileOnASpot(9)));
    EXPECT_EQ(deepest.depth, 9);
    EXPECT_EQ(deepest.most, 9u);
}

TEST(SurfaceTreeBuild, HundredTrianglesOnOneSpotStopAtDepthSixteen) {
    const Deepest deepest = DeepestLeaf(BuiltTree(PileOnASpot(100)));
    EXPECT_EQ(deepest.depth, 16);
    EXPECT_EQ(deepest.most, 100u);
}

TEST(SurfaceTreeBuild, TriangleWithoutAreaStaysInTheLists) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {50, 50, 50}, {100, 100, 100}};
    mesh.faces = {{{0, 1, 2}}};
    EXPECT_EQ(DeepestLeaf(BuiltTree(mesh)).most, 1u);
}

TEST(SurfaceTreeBuild, TriangleOnASplitPlaneIsListedOnBothSides) {
    // The triangle lies exactly at the root's split in Z, which the two vertices below and above it settle.
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {100, 100, 100}};
    const float split = test::PlainChildBox(BuiltTree(mesh).bound(), 0).pmax.z;
    mesh.verts.insert(mesh.verts.end(), {{10, 10, split}, {20, 10, split}, {10, 20, split}});
    mesh.faces = {{{2, 3, 4}}};
    const SurfaceTree tree = BuiltTree(mesh);
    const SurfaceNode& root = tree.nodes()[tree.root().index()];
    EXPECT_EQ(LeafAt(tree, root.child[0]).count, 1u);
    EXPECT_EQ(LeafAt(tree, root.child[4]).count, 1u);
}

TEST(SurfaceTreeBuild, KeepsItsOwnCopyOfTheMesh) {
    TriangleMesh mesh = OneFace();
    const SurfaceTree tree = BuiltTree(mesh);
    mesh = {};
    EXPECT_EQ(tree.numVerts(), 3u);
    EXPECT_EQ(tree.numFaces(), 1u);
    EXPECT_EQ(tree.verts()[1].x, 100.0f);
    EXPECT_EQ(tree.triangles()[0].corner[2], 2u);
}

TEST(SurfaceTreeBuild, ThreadBudgetChangesNothing) {
    for (const TriangleMesh& mesh : {test::HillMesh(20'000), test::TerraceMesh(20, 50, 4), test::SliverFanMesh(50, 300)}) {
        const SurfaceTree one = BuiltTree(mesh, 1);
        for (const unsigned threads : {0u, 2u, 3u, 16u}) EXPECT_TRUE(SameTree(one, BuiltTree(mesh, threads))) << threads;
    }
}

TEST(SurfaceTreeBuild, SecondBuildReplacesTheFirst) {
    SurfaceTree tree = BuiltTree(test::HillMesh(300));
    ASSERT_TRUE(tree.Build(OneFace()));
    EXPECT_TRUE(SameTree(tree, BuiltTree(OneFace())));
}

TEST(SurfaceTreeBuild, RefusedMeshLeavesTheTreeBefore) {
    SurfaceTree tree = BuiltTree(test::HillMesh(300));
    const SurfaceTree before = BuiltTree(test::HillMesh(300));
    TriangleMesh missing = OneFace(), endless = OneFace();
    missing.faces[0].v[0] = 7;
    endless.verts[1].y = std::numeric_limits<float>::infinity();
    for (const TriangleMesh& mesh : {missing, endless}) {
        std::string problem;
        EXPECT_FALSE(tree.Build(mesh, {}, problem));
        EXPECT_FALSE(problem.empty());
        EXPECT_FALSE(tree.Build(mesh));
        EXPECT_TRUE(SameTree(tree, before));
    }
}

TEST(SurfaceTreeBuild, RefusesAMeshWiderThanAFloatCanMeasure) {
    TriangleMesh mesh = OneFace();
    mesh.verts[0].x = -3e38f;
    mesh.verts[1].x = 3e38f;
    std::string problem;
    EXPECT_FALSE(SurfaceTree().Build(mesh, {}, problem));
    EXPECT_EQ(problem, "the mesh reaches further than single precision can measure");
}

TEST(SurfaceTreeBuild, StopsAtItsMemoryLimitAndLeavesTheTreeBefore) {
    const TriangleMesh blowUp = test::CoincidentMesh(14, 5000);  // would be some gigabytes
    SurfaceTree tree = BuiltTree(OneFace());
    for (const unsigned threads : {1u, 0u}) {
        std::string problem;
        EXPECT_FALSE(tree.Build(blowUp, {.memoryBytes = std::size_t(8) << 20, .threads = threads}, problem));
        EXPECT_EQ(
            problem,
            "the octree over 14 faces needs more than the 8 MB it may take; large faces that lie on one another need the most");
        EXPECT_TRUE(SameTree(tree, BuiltTree(OneFace())));
    }
}

TEST(SurfaceTreeBuild, MemoryLimitThatSufficesChangesNothing) {
    const TriangleMesh mesh = test::CoincidentMesh(8, 5000);
    const SurfaceTree free = BuiltTree(mesh);
    SurfaceTree limited;
    std::string problem;
    ASSERT_TRUE(limited.Build(mesh, {.memoryBytes = 2 * free.bytes(), .threads = 2}, problem)) << problem;
    EXPECT_TRUE(SameTree(free, limited));
}

TEST(SurfaceTreeRelease, EmptiesTheTreeAndMayComeTwice) {
    SurfaceTree tree = BuiltTree(OneFace());
    tree.Release();
    EXPECT_FALSE(tree.built());
    EXPECT_EQ(tree.numFaces(), 0u);
    tree.Release();
    EXPECT_FALSE(tree.built());
}

TEST(SurfaceTree, IsNotBuiltAtFirst) { EXPECT_FALSE(SurfaceTree().built()); }

TEST(SurfaceTree, MovesWithAllItHolds) {
    SurfaceTree from = BuiltTree(test::HillMesh(300));
    const SurfaceTree to = std::move(from);
    EXPECT_TRUE(SameTree(to, BuiltTree(test::HillMesh(300))));
    EXPECT_FALSE(from.built());
}

}  // namespace
}  // namespace tavrik
