// Splines in scene files: the lines of glTF, and back.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "host/sdk/line_shape.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/scene_fixture.h"

namespace tavrik_host::test {
namespace {

using tavrik::test::Floats;
using tavrik::test::Glb;
using tavrik::test::Shorts;

class SceneShapes : public testing::Test {
 protected:
    void TearDown() override { ResetScene(); }
};

/// A file of one node whose mesh has these primitives, over four vertices and the indices 0 1 1 2 3 0.
std::string LineFile(const std::string& primitives) {
    const std::string corners = Floats({0, 0, 0, 1, 0, 0, 1, 0, -2, 0, 3, -2}), indices = Shorts({0, 1, 1, 2, 3, 0});
    return Glb(
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"road","mesh":0}],
"meshes":[{"primitives":[)" +
            primitives +
            R"(]}],"accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3","min":[0,0,-2],"max":[1,3,0]},
{"bufferView":1,"componentType":5123,"count":6,"type":"SCALAR"}],
"bufferViews":[{"buffer":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":12}],"buffers":[{"byteLength":60}]})",
        corners + indices);
}

std::string Primitive(int mode, bool indexed = false) {
    return R"({"attributes":{"POSITION":0},"mode":)" + std::to_string(mode) + (indexed ? R"(,"indices":1})" : "}");
}

LineShape* Spline(std::size_t node = 0) { return dynamic_cast<LineShape*>(AllNodes().at(node)->GetObjectRef()); }

TEST_F(SceneShapes, LineStripComesInAsAnOpenLineInSceneUnits) {
    LoadedScene(LineFile(Primitive(3)));
    ASSERT_NE(Spline(), nullptr);
    ASSERT_EQ(Spline()->lines.size(), 1u);
    EXPECT_FALSE(Spline()->lines[0].closed);
    ASSERT_EQ(Spline()->lines[0].points.size(), 4u);
    EXPECT_EQ(Spline()->lines[0].points[2], Point3(100, 200, 0));
    EXPECT_EQ(Spline()->lines[0].points[3], Point3(0, 200, 300));
}

TEST_F(SceneShapes, LineLoopComesInAsAClosedLine) {
    LoadedScene(LineFile(Primitive(2)));
    ASSERT_NE(Spline(), nullptr);
    EXPECT_TRUE(Spline()->lines.at(0).closed);
    EXPECT_EQ(Spline()->lines[0].points.size(), 4u);
}

TEST_F(SceneShapes, SingleLinesAreJoinedWhereTheyMeet) {
    LoadedScene(LineFile(Primitive(1, true)));
    ASSERT_NE(Spline(), nullptr);
    ASSERT_EQ(Spline()->lines.size(), 2u);
    EXPECT_EQ(Spline()->lines[0].points.size(), 3u);
    EXPECT_EQ(Spline()->lines[1].points.size(), 2u);
    EXPECT_EQ(Spline()->lines[1].points[0], Point3(0, 200, 300));
    EXPECT_EQ(Spline()->lines[1].points[1], Point3(0, 0, 0));
}

TEST_F(SceneShapes, IndicesSayWhichPointsALineRunsThrough) {
    LoadedScene(LineFile(Primitive(3, true)));
    EXPECT_EQ(Spline()->lines.at(0).points.size(), 6u);
    EXPECT_EQ(Spline()->lines[0].points[4], Point3(0, 200, 300));
}

TEST_F(SceneShapes, MeshWithTrianglesBesideLinesStaysAMesh) {
    LoadedScene(LineFile(Primitive(3) + "," + Primitive(4, true)));
    EXPECT_EQ(Spline(), nullptr);
    EXPECT_EQ(dynamic_cast<TriObject&>(*AllNodes()[0]->GetObjectRef()).mesh.numFaces, 2);
}

TEST_F(SceneShapes, PointsAloneAreNoSpline) {
    LoadedScene(LineFile(Primitive(0)));
    EXPECT_EQ(Spline(), nullptr);
}

TEST_F(SceneShapes, FilesOfLinesAreTheSameBytesHoweverOftenTheyAreSaved) {
    for (const int mode : {1, 2, 3}) {
        const std::string first = SavedScene(LoadedScene(LineFile(Primitive(mode, mode == 1))));
        ASSERT_NE(Spline(), nullptr);
        const std::size_t lines = Spline()->lines.size();
        EXPECT_TRUE(SavedScene(LoadedScene(first)) == first) << mode;
        ASSERT_NE(Spline(), nullptr);
        EXPECT_EQ(Spline()->lines.size(), lines);
        EXPECT_EQ(JsonOf(first)["meshes"][0]["primitives"][0]["mode"], mode);
    }
}

TEST_F(SceneShapes, SplinesThatNoFileHasDrawnAreDrawnAndComeBack) {
    ResetScene();
    auto* const shape = new LineShape;
    shape->lines = {{{Point3(0, 0, 0), Point3(100, 0, 0), Point3(100, 200, 50)}, true},
                    {{Point3(5, 0, 0)}, false},  // nothing to draw
                    {{Point3(-100, 0, 0), Point3(-100, 400, 0)}, false}};
    CreateNode(shape, L"road");
    CreateNode(shape, L"the same road");
    const std::string first = SavedScene({});
    const SceneJson json = JsonOf(first);
    EXPECT_EQ(json["meshes"].size(), 1u);
    EXPECT_EQ(json["meshes"][0]["primitives"][0]["mode"], 2);
    EXPECT_EQ(json["meshes"][0]["primitives"][1]["mode"], 3);

    EXPECT_TRUE(SavedScene(LoadedScene(first)) == first);

    ASSERT_NE(Spline(), nullptr);
    EXPECT_EQ(Spline(0), Spline(1));
    ASSERT_EQ(Spline()->lines.size(), 2u);
    EXPECT_TRUE(Spline()->lines[0].closed);
    EXPECT_FALSE(Spline()->lines[1].closed);
    EXPECT_EQ(Spline()->lines[0].points[2], Point3(100, 200, 50));
}

TEST_F(SceneShapes, SplineWithoutLinesIsSavedWithoutAMesh) {
    ResetScene();
    CreateNode(new LineShape, L"nothing");
    const std::string first = SavedScene({});
    EXPECT_FALSE(JsonOf(first).contains("meshes"));
    EXPECT_TRUE(SavedScene(LoadedScene(first)) == first);
    ASSERT_NE(Spline(), nullptr);
    EXPECT_TRUE(Spline()->lines.empty());
}

TEST_F(SceneShapes, PointThatIsNotFiniteIsRefusedAtSaving) {
    ResetScene();
    auto* const shape = new LineShape;
    shape->lines = {{{Point3(0, 0, 0), Point3(0, INFINITY, 0)}, false}};
    CreateNode(shape, L"road");
    std::string bytes, problem;
    EXPECT_FALSE(MakeSceneFile({}, bytes, problem));
    EXPECT_EQ(problem, "the spline of node \"road\" has a point that is not finite.");
}

TEST_F(SceneShapes, LineThatUsesAVertexThatIsNotThereIsRefused) {
    std::string bytes = LineFile(Primitive(3, true));
    bytes[bytes.size() - 2] = 9;  // the last index
    const std::string refusal = SceneRefusal(bytes);
    EXPECT_EQ(refusal, "mesh 0 uses vertex 9, but there are 4 (counted from 0).");
}

TEST_F(SceneShapes, ClonedSplinesHaveLinesOfTheirOwn) {
    LoadedScene(LineFile(Primitive(2)));
    INode* const nodes[] = {AllNodes()[0]};
    INode* const copy = CloneNodes(nodes).at(0);
    auto* const cloned = dynamic_cast<LineShape*>(copy->GetObjectRef());
    ASSERT_NE(cloned, nullptr);
    ASSERT_NE(cloned, Spline());
    EXPECT_TRUE(cloned->lines.at(0).closed);
    EXPECT_EQ(cloned->lines[0].points[2], Point3(100, 200, 0));
}

// ---- What plug-ins see of one

TEST_F(SceneShapes, FlattensToItsLinesWithTheClosingPieceCounted) {
    LineShape shape;
    shape.lines = {
        {{Point3(0, 0, 0), Point3(1, 0, 0), Point3(1, 1, 0)}, true}, {{Point3(0, 0, 0), Point3(1, 0, 0)}, false}, {}};
    PolyShape flat;
    shape.MakePolyShape(0, flat, PSHAPE_BUILTIN_STEPS, FALSE);
    ASSERT_EQ(flat.numLines, 3);
    EXPECT_EQ(flat.lines[0].Segments(), 3);
    EXPECT_NE(flat.lines[0].IsClosed(), FALSE);
    EXPECT_EQ(flat.lines[1].Segments(), 1);
    EXPECT_EQ(flat.lines[1].IsClosed(), FALSE);
    EXPECT_EQ(flat.lines[2].Segments(), 0);
    Matrix3 up(TRUE);
    up.SetTrans(Point3(0, 0, 5));
    flat.Transform(up);
    EXPECT_EQ(flat.lines[0][2].p, Point3(1, 1, 5));
}

TEST_F(SceneShapes, SplineCanBecomeAShapeAndNoMesh) {
    LineShape shape;
    EXPECT_NE(shape.CanConvertToType(splineShapeClassID), 0);
    EXPECT_NE(shape.CanConvertToType(Class_ID(10, 0)), 0);
    EXPECT_NE(shape.CanConvertToType(genericShapeClassID), 0);
    EXPECT_EQ(shape.ConvertToType(0, splineShapeClassID), &shape);
    EXPECT_EQ(shape.CanConvertToType(triObjectClassID), 0);
    EXPECT_EQ(shape.ConvertToType(0, triObjectClassID), nullptr);
    TriObject* const mesh = CreateNewTriObject();
    EXPECT_EQ(mesh->CanConvertToType(genericShapeClassID), 0);
    mesh->DeleteThis();
}

}  // namespace
}  // namespace tavrik_host::test
