#include "host/mesh_import.h"

#include <gtest/gtest.h>

#include <string>

#include "host/ground_obj.h"
#include "samples/sample_ground.h"
#include "tests/host/mesh_bytes.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

constexpr char kObjTriangle[] = "v 0 0 0\nv 2 0 0\nv 0 3 4\nf 1 2 3\n";

TriangleMesh Read(const std::string& name, std::string_view bytes, const GroundImport& import = {}) {
    TriangleMesh ground;
    std::string problem;
    EXPECT_TRUE(ReadGroundBytes(name, bytes, import, ground, problem)) << problem;
    return ground;
}

/// The one sentence with which `bytes` are refused.
std::string Refusal(const std::string& name, std::string_view bytes, const GroundImport& import = {}) {
    TriangleMesh ground;
    ground.verts = {{1, 2, 3}};
    std::string problem;
    EXPECT_FALSE(ReadGroundBytes(name, bytes, import, ground, problem));
    EXPECT_EQ(ground.verts.size(), 1u) << "a refused file changes nothing";
    EXPECT_TRUE(problem.starts_with(name + ": ")) << problem;
    EXPECT_TRUE(problem.ends_with(".")) << problem;
    EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
    return problem;
}

void ExpectPoint(const Point3& p, float x, float y, float z) {
    EXPECT_FLOAT_EQ(p.x, x);
    EXPECT_FLOAT_EQ(p.y, y);
    EXPECT_FLOAT_EQ(p.z, z);
}

/// The last corner of the one triangle, (0, 3, 4) in the file, in scene units.
Point3 Peak(const TriangleMesh& ground) {
    EXPECT_EQ(ground.faces.size(), 1u);
    return ground.faces.empty() ? Point3{} : ground.verts[ground.faces[0].v[2]];
}

TEST(ReadGround, TakesObjAsMetresWithZUp) { ExpectPoint(Peak(Read("a.obj", kObjTriangle)), 0, 300, 400); }

TEST(ReadGround, TurnsAYUpFileWithoutMirroring) {
    GroundImport import;
    import.up = UpAxis::Y;
    ExpectPoint(Peak(Read("a.obj", kObjTriangle, import)), 0, -400, 300);
}

TEST(ReadGround, ScalesByTheUnitTold) {
    GroundImport import;
    import.metresPerUnit = 0.0254;
    ExpectPoint(Peak(Read("a.obj", kObjTriangle, import)), 0, 7.62f, 10.16f);
}

TEST(ReadGround, KnowsExtensionsInCapitals) { ExpectPoint(Peak(Read("A.OBJ", kObjTriangle)), 0, 300, 400); }

TEST(ReadGround, TakesPlyAsMetresWithZUp) { ExpectPoint(Peak(Read("a.ply", PlyTriangle())), 0, 300, 400); }

TEST(ReadGround, TakesStlInTextAndBinary) {
    ExpectPoint(Peak(Read("a.stl", StlTextTriangle())), 0, 300, 400);
    ExpectPoint(Peak(Read("a.stl", StlBinaryTriangle())), 0, 300, 400);
}

TEST(ReadGround, TakesThreeDsAsMetresWithZUp) { ExpectPoint(Peak(Read("a.3ds", ThreeDsTriangle())), 0, 300, 400); }

TEST(ReadGround, ObeysUnitAndUpAxisOfCollada) {
    ExpectPoint(Peak(Read("a.dae", ColladaTriangle("Z_UP", "1"))), 0, 300, 400);
    ExpectPoint(Peak(Read("a.dae", ColladaTriangle("Y_UP", "0.01"))), 0, -4, 3);
}

TEST(ReadGround, ObeysUnitAndUpAxisOfFbx) {
    ExpectPoint(Peak(Read("a.fbx", FbxTriangle(/*upAxis=*/2, /*centimetresPerUnit=*/100))), 0, 300, 400);
    ExpectPoint(Peak(Read("a.fbx", FbxTriangle(/*upAxis=*/1, /*centimetresPerUnit=*/1))), 0, -4, 3);
}

TEST(ReadGround, LetsTheUserOverruleTheFile) {
    GroundImport import;
    import.up = UpAxis::Z;
    import.metresPerUnit = 1.0;
    ExpectPoint(Peak(Read("a.glb", GlbTriangle(), import)), 0, 300, 400);
    ExpectPoint(Peak(Read("a.fbx", FbxTriangle(1, 1), import)), 0, 300, 400);
    ExpectPoint(Peak(Read("a.dae", ColladaTriangle("Y_UP", "0.01"), import)), 0, 300, 400);
}

TEST(ReadGround, CutsPolygonsIntoTriangles) {
    EXPECT_EQ(Read("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n").faces.size(), 2u);
    EXPECT_EQ(Read("a.obj", "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 1 3 0\nv 0 2 0\nf 1/1/1 2/2/2 3//3 4/4 5\n").faces.size(), 3u);
}

TEST(ReadGround, CountsNegativeObjIndicesBackFromTheLastVertex) {
    const TriangleMesh ground = Read("a.obj", "v 9 9 9\nv 0 0 0\nv 2 0 0\nv 0 3 4\nf -3 -2 -1\n");
    EXPECT_EQ(ground.faces[0].v[0], 1u);
    ExpectPoint(Peak(ground), 0, 300, 400);
}

TEST(ReadGround, ReadsEveryDigitOfObjCoordinates) {
    // 0.1 m is 10 cm exactly only when the text is read in double and rounded to single once.
    EXPECT_EQ(Read("a.obj", "v 0.1 1234.56789 +1e-3\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").verts[0].x, 10.0f);
    EXPECT_EQ(Read("a.obj", "v 0.1 1234.56789 +1e-3\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").verts[0].y, 123456.789f);
    EXPECT_EQ(Read("a.obj", "v 0.1 1234.56789 +1e-3\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").verts[0].z, 0.1f);
}

TEST(ReadGround, KeepsTrianglesWithoutArea) {
    EXPECT_EQ(Read("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 1 2\nf 3 3 3\n").faces.size(), 3u);
}

TEST(ReadGround, GivesBackTheBitsOfAGroundThatWasWrittenAsObj) {
    const TriangleMesh wanted = MakeSampleGround({SampleGroundKind::Course, 300.0, 2'000, 3});
    const TriangleMesh ground = Read("a.obj", GroundObj(wanted));
    ASSERT_EQ(ground.verts.size(), wanted.verts.size());
    ASSERT_EQ(ground.faces.size(), wanted.faces.size());
    for (std::size_t i = 0; i < ground.verts.size(); ++i) {
        ASSERT_EQ(ground.verts[i].x, wanted.verts[i].x) << i;
        ASSERT_EQ(ground.verts[i].y, wanted.verts[i].y) << i;
        ASSERT_EQ(ground.verts[i].z, wanted.verts[i].z) << i;
    }
}

TEST(ReadGroundRefuses, AMissingFile) {
    TriangleMesh ground;
    std::string problem;
    EXPECT_FALSE(ReadGround("nowhere/hill.obj", {}, ground, problem));
    EXPECT_EQ(problem, "nowhere/hill.obj: there is no such file.");
}

TEST(ReadGroundRefuses, AFolder) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "hill.obj");
    TriangleMesh ground;
    std::string problem;
    EXPECT_FALSE(ReadGround(folder / "hill.obj", {}, ground, problem));
    EXPECT_NE(problem.find("this is a folder"), std::string::npos) << problem;
}

TEST(ReadGroundRefuses, ADevice) {
    const TempFolder folder;
    std::filesystem::create_symlink("/dev/zero", folder / "hill.obj");
    TriangleMesh ground;
    std::string problem;
    EXPECT_FALSE(ReadGround(folder / "hill.obj", {}, ground, problem));
    EXPECT_NE(problem.find("device"), std::string::npos) << problem;
}

TEST(ReadGroundRefuses, AnEmptyFileOfAnyFormat) {
    for (const char* name : {"a.obj", "a.glb", "a.gltf", "a.fbx", "a.ply", "a.stl", "a.dae", "a.3ds"}) {
        EXPECT_EQ(Refusal(name, ""), std::string(name) + ": the file is empty.");
    }
}

TEST(ReadGroundRefuses, WhatIsNoMesh) {
    for (const char* name : {"a.obj", "a.glb", "a.gltf", "a.fbx", "a.ply", "a.stl", "a.dae", "a.3ds"}) {
        Refusal(name, "Dear diary, today I drove a car over a mesh.\n");
        Refusal(name, std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) + std::string(200, '\x7f'));
    }
}

TEST(ReadGroundRefuses, AnUnknownExtensionAndListsTheKnown) {
    EXPECT_NE(Refusal("a.txt", "x").find(".obj, .glb, .gltf, .fbx, .ply, .stl, .dae, .3ds"), std::string::npos);
    Refusal("noextension", "x");
}

TEST(ReadGroundRefuses, AMeshWithoutTriangles) {
    EXPECT_EQ(Refusal("a.obj", "v 0 0 0\n"), "a.obj: it holds no triangles to drive on.");
}

TEST(ReadGroundRefuses, ObjIndicesOutOfRange) {
    EXPECT_EQ(Refusal("hill.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 90210\n"),
              "hill.obj: face 2 uses vertex 90210, but there are 3; export the mesh again.");
    EXPECT_NE(Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 -4\n").find("uses vertex -4"), std::string::npos);
    EXPECT_NE(Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 0 1 2\n").find("uses vertex 0"), std::string::npos);
    Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9223372036854775808\n");
    Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 4294967299\n");
    Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 -9223372036854775808\n");
}

TEST(ReadGroundRefuses, ObjCoordinatesThatAreNoFiniteNumbers) {
    EXPECT_EQ(Refusal("a.obj", "v 0 0 0\nv 1 nan 0\nv 0 1 0\nf 1 2 3\n"),
              "a.obj: line 2: the coordinates of vertex 2 are not finite (nan); export the mesh again.");
    for (const char* word : {"inf", "-inf", "NaN", "1e999", "-1e999", "1,5", "abc", "0x10", "--1", ""}) {
        Refusal("a.obj", std::string("v 0 0 ") + word + "\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    }
}

TEST(ReadGroundRefuses, ObjFacesWithTooFewOrTooManyCorners) {
    Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2\n");
    std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf";
    for (int i = 0; i < 5'000; ++i) text += " 1";
    Refusal("a.obj", text);
}

TEST(ReadGroundRefuses, CoordinatesBeyondAnyWorld) {
    EXPECT_NE(Refusal("a.obj", "v 0 0 0\nv 1e30 0 0\nv 0 1 0\nf 1 2 3\n").find("check the unit"), std::string::npos);
}

TEST(ReadGroundRefuses, PlyWithBadIndicesOrNumbers) {
    std::string bad = PlyTriangle();
    Refusal("a.ply", bad.replace(bad.rfind("3 0 1 2"), 7, "3 0 1 9"));
    bad = PlyTriangle();
    Refusal("a.ply", bad.replace(bad.find("0 3 4"), 5, "0 nan 4"));
}

TEST(ReadGroundRefuses, StlWithNumbersThatAreNotFinite) {
    std::string bad = StlBinaryTriangle();
    bad.replace(84 + 12 + 4, 4, Floats({std::numeric_limits<float>::quiet_NaN()}));
    Refusal("a.stl", bad);
}

TEST(ReadGroundRefuses, MoreTrianglesThanAllowed) {
    GroundImport import;
    import.mostTriangles = 1;
    Refusal("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n", import);
}

TEST(ReadGround, SurvivesEveryTruncationOfEveryFormat) {
    const std::pair<std::string, std::string> files[] = {
        {"a.obj", kObjTriangle},      {"a.glb", GlbTriangle()},         {"a.ply", PlyTriangle()},
        {"a.stl", StlTextTriangle()}, {"a.stl", StlBinaryTriangle()},   {"a.dae", ColladaTriangle("Z_UP", "1")},
        {"a.3ds", ThreeDsTriangle()}, {"a.fbx", FbxTriangle(2, 100.0)},
    };
    for (const auto& [name, bytes] : files) {
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            TriangleMesh ground;
            std::string problem;
            if (!ReadGroundBytes(name, std::string_view(bytes).substr(0, length), {}, ground, problem)) {
                ASSERT_TRUE(problem.starts_with(name + ": ")) << problem;
            }
        }
    }
}

}  // namespace
}  // namespace tavrik::test
