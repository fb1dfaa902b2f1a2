#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "host/mesh_import.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

/// A file of four corners of a unit square in the XZ plane, with `nodes`, `primitive` and further accessors given.
std::string SquareGlb(const std::string& nodes, const std::string& primitive, const std::string& indexType = "5123",
                      const std::string& indices = Shorts({0, 1, 2, 3, 2, 1})) {
    const std::string corners = Floats({0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 1});
    const std::size_t size = indexType == "5121" ? 1 : indexType == "5123" ? 2 : 4;
    return Glb(
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":)" + nodes + R"(,"meshes":[{"primitives":[)" +
            primitive +
            R"(]}],"accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3"},{"bufferView":1,"componentType":)" +
            indexType + R"(,"count":)" + std::to_string(indices.size() / size) +
            R"(,"type":"SCALAR"}],"bufferViews":[{"buffer":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":)" +
            std::to_string(indices.size()) + R"(}],"buffers":[{"byteLength":)" + std::to_string(48 + indices.size()) + "}]}",
        corners + indices);
}

const std::string kOneNode = R"([{"mesh":0}])";
const std::string kIndexed = R"({"attributes":{"POSITION":0},"indices":1})";

bool Read(const std::string& bytes, TriangleMesh& ground, std::string& problem) {
    return ReadGroundBytes("a.glb", bytes, {}, ground, problem);
}

TriangleMesh ReadWell(const std::string& bytes) {
    TriangleMesh ground;
    std::string problem;
    EXPECT_TRUE(Read(bytes, ground, problem)) << problem;
    return ground;
}

std::string Refusal(const std::string& bytes) {
    TriangleMesh ground;
    std::string problem;
    EXPECT_FALSE(Read(bytes, ground, problem));
    EXPECT_TRUE(problem.ends_with(".")) << problem;
    return problem;
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), with);
}

TEST(ReadGltf, BringsMetresAndYUpToTheScene) {
    const TriangleMesh ground = ReadWell(SquareGlb(kOneNode, kIndexed));
    ASSERT_EQ(ground.verts.size(), 4u);
    ASSERT_EQ(ground.faces.size(), 2u);
    EXPECT_EQ(ground.verts[3].x, 100.0f);
    EXPECT_EQ(ground.verts[3].y, -100.0f);
    EXPECT_EQ(ground.verts[3].z, 0.0f);
}

TEST(ReadGltf, PlacesNodesBelowNodes) {
    const std::string nodes = R"([{"children":[1],"translation":[10,0,0]},{"mesh":0,"scale":[2,1,1],"translation":[0,5,0]}])";
    const TriangleMesh ground = ReadWell(SquareGlb(nodes, kIndexed));
    EXPECT_FLOAT_EQ(ground.verts[1].x, 1200.0f);
    EXPECT_FLOAT_EQ(ground.verts[1].z, 500.0f);
}

TEST(ReadGltf, TurnsByQuaternions) {
    // A quarter turn about Y takes X to -Z, which is +Y in the scene.
    const TriangleMesh ground = ReadWell(SquareGlb(R"([{"mesh":0,"rotation":[0,0.70710678,0,0.70710678]}])", kIndexed));
    EXPECT_NEAR(double(ground.verts[1].x), 0.0, 1e-4);
    EXPECT_NEAR(double(ground.verts[1].y), 100.0, 1e-4);
}

TEST(ReadGltf, TakesMatricesAndMirrors) {
    const TriangleMesh ground = ReadWell(SquareGlb(R"([{"mesh":0,"matrix":[-1,0,0,0, 0,1,0,0, 0,0,1,0, 0,2,0,1]}])", kIndexed));
    EXPECT_EQ(ground.verts[1].x, -100.0f);
    EXPECT_EQ(ground.verts[1].z, 200.0f);
}

TEST(ReadGltf, DrawsAMeshOnceForEachNode) {
    const std::string nodes = R"([{"children":[1,2]},{"mesh":0},{"mesh":0,"translation":[5,0,0]}])";
    EXPECT_EQ(ReadWell(SquareGlb(nodes, kIndexed)).faces.size(), 4u);
}

TEST(ReadGltf, UnrollsStripsAndFans) {
    const std::string strip = R"({"attributes":{"POSITION":0},"mode":5})", fan = R"({"attributes":{"POSITION":0},"mode":6})";
    const TriangleMesh stripped = ReadWell(SquareGlb(kOneNode, strip));
    ASSERT_EQ(stripped.faces.size(), 2u);
    EXPECT_EQ(stripped.faces[1].v[1], 3u);  // every other triangle of a strip turns round
    EXPECT_EQ(stripped.faces[1].v[2], 2u);
    const TriangleMesh fanned = ReadWell(SquareGlb(kOneNode, fan));
    ASSERT_EQ(fanned.faces.size(), 2u);
    EXPECT_EQ(fanned.faces[1].v[2], 0u);
}

TEST(ReadGltf, PassesOverLinesAndPoints) {
    const std::string lines = kIndexed + R"(,{"attributes":{"POSITION":0},"mode":1},{"attributes":{"POSITION":0},"mode":0})";
    EXPECT_EQ(ReadWell(SquareGlb(kOneNode, lines)).faces.size(), 2u);
}

TEST(ReadGltf, TakesIndicesOfEverySize) {
    EXPECT_EQ(ReadWell(SquareGlb(kOneNode, kIndexed, "5121", std::string("\0\1\2\3\2\1", 6))).faces.size(), 2u);
    EXPECT_EQ(ReadWell(SquareGlb(kOneNode, kIndexed, "5125", Shorts({0, 0, 1, 0, 2, 0}))).faces.size(), 1u);
}

TEST(ReadGltf, TakesNormalisedAndPaddedPositions) {
    // Three shorts and two bytes of padding to a vertex; 32767 stands for 1.
    const std::string corners = Shorts({0, 0, 0, 0, 32767, 0, 0, 0, 0, 0, 32767, 0});
    const std::string text =
        R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_mesh_quantization"],"extensionsRequired":["KHR_mesh_quantization"],
"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"accessors":[{"bufferView":0,"componentType":5122,"normalized":true,"count":3,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":24,"byteStride":8}],"buffers":[{"byteLength":24}]})";
    const TriangleMesh ground = ReadWell(Glb(text, corners));
    EXPECT_EQ(ground.verts[1].x, 100.0f);
    EXPECT_EQ(ground.verts[2].y, -100.0f);
}

TEST(ReadGltf, TakesSparsePositions) {
    const std::string text =
        R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"accessors":[{"componentType":5126,"count":3,"type":"VEC3","sparse":{"count":2,"indices":{"bufferView":0,"componentType":5123},
"values":{"bufferView":1}}}],"bufferViews":[{"buffer":0,"byteLength":4},{"buffer":0,"byteOffset":4,"byteLength":24}],
"buffers":[{"byteLength":28}]})";
    const TriangleMesh ground = ReadWell(Glb(text, Shorts({1, 2}) + Floats({2, 0, 0, 0, 0, 3})));
    EXPECT_EQ(ground.verts[0].x, 0.0f);
    EXPECT_EQ(ground.verts[1].x, 200.0f);
    EXPECT_EQ(ground.verts[2].y, -300.0f);
}

TEST(ReadGltf, FindsBuffersBesideTheFile) {
    const TempFolder folder;
    folder.Write("hill points.bin", Floats({0, 0, 0, 2, 0, 0, 0, 3, 4}));
    const auto file = folder.Write(
        "a.gltf",
        R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36,"uri":"hill%20points.bin"}],
"images":[{"uri":"missing.png"}]})");
    TriangleMesh ground;
    std::string problem;
    ASSERT_TRUE(ReadGround(file, {}, ground, problem)) << problem;
    EXPECT_EQ(ground.verts[2].z, 300.0f);
    std::filesystem::remove(folder / "hill points.bin");
    EXPECT_FALSE(ReadGround(file, {}, ground, problem));
    EXPECT_NE(problem.find("hill points.bin"), std::string::npos) << problem;
}

TEST(ReadGltfRefuses, IndicesOutOfRange) {
    EXPECT_NE(Refusal(SquareGlb(kOneNode, kIndexed, "5123", Shorts({0, 1, 4}))).find("uses vertex 4, but there are 4"),
              std::string::npos);
}

TEST(ReadGltfRefuses, CoordinatesThatAreNotFinite) {
    std::string bytes = GlbTriangle();
    bytes.replace(bytes.size() - 8, 4, Floats({std::numeric_limits<float>::infinity()}));
    EXPECT_NE(Refusal(bytes).find("not finite"), std::string::npos);
}

TEST(ReadGltfRefuses, BufferViewsPastTheirBuffer) {
    const std::string good = GlbTriangle();
    Refusal(Replaced(good, R"("bufferViews":[{"buffer":0,"byteLength":36)", R"("bufferViews":[{"buffer":0,"byteLength":99)"));
    Refusal(Replaced(good, R"("buffer":0)", R"("buffer":7)"));
}

TEST(ReadGltfRefuses, CountsThatTheBufferCanNotHold) {
    Refusal(Replaced(GlbTriangle(), R"("count":3)", R"("count":4)"));
    std::string square = SquareGlb(kOneNode, R"({"attributes":{"POSITION":0}})");
    const std::string huge = R"("count":9)";
    Refusal(Replaced(square, R"("count":4)", huge));
}

TEST(ReadGltfRefuses, NodesThatHangBelowThemselves) {
    Refusal(SquareGlb(R"([{"children":[1],"mesh":0},{"children":[0]}])", kIndexed));
}

TEST(ReadGltfRefuses, GeometryThatNeedsAnUnknownExtension) {
    const std::string text =
        R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_draco_mesh_compression"],
"extensionsRequired":["KHR_draco_mesh_compression"],"nodes":[]})";
    EXPECT_NE(Refusal(Glb(text, "")).find("KHR_draco_mesh_compression"), std::string::npos);
}

TEST(ReadGltfRefuses, TextThatIsNestedWithoutEnd) {
    TriangleMesh ground;
    std::string problem;
    EXPECT_FALSE(ReadGroundBytes("a.gltf", std::string(1'000'000, '[') + "{", {}, ground, problem));
    EXPECT_NE(problem.find("nested"), std::string::npos) << problem;
}

TEST(ReadGltfRefuses, EveryTruncation) {
    const std::string bytes = SquareGlb(kOneNode, kIndexed);
    for (std::size_t length = 0; length < bytes.size(); ++length) Refusal(bytes.substr(0, length));
}

}  // namespace
}  // namespace tavrik::test
