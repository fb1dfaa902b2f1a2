#include "tests/host/mesh_bytes.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstring>

namespace tavrik::test {
namespace {

const std::vector<float> kCorners = {0, 0, 0, 2, 0, 0, 0, 3, 4};

std::string Number32(std::size_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += char((value >> shift) & 0xff);
    return bytes;
}

/// A chunk of a 3DS file: what it is, how long it is, and what it holds.
std::string Chunk(int id, const std::string& body) { return Shorts({id}) + Number32(body.size() + 6) + body; }

}  // namespace

std::string Floats(const std::vector<float>& values) {
    std::string bytes(values.size() * 4, '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

std::string Shorts(const std::vector<int>& values) {
    std::string bytes;
    for (const int value : values) {
        bytes += char(value & 0xff);
        bytes += char((value >> 8) & 0xff);
    }
    return bytes;
}

std::string PlyTriangle() {
    return "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
           "element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n2 0 0\n0 3 4\n3 0 1 2\n";
}

std::string StlTextTriangle() {
    return "solid ground\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 2 0 0\nvertex 0 3 4\nendloop\nendfacet\n"
           "endsolid ground\n";
}

std::string StlBinaryTriangle() {
    return std::string(80, ' ') + Number32(1) + Floats({0, 0, 1}) + Floats(kCorners) + Shorts({0});
}

std::string ColladaTriangle(std::string_view up, std::string_view metresPerUnit) {
    return fmt::format(
        R"(<?xml version="1.0" encoding="utf-8"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset><unit name="unit" meter="{}"/><up_axis>{}</up_axis></asset>
<library_geometries><geometry id="g" name="g"><mesh>
<source id="p"><float_array id="pa" count="9">0 0 0 2 0 0 0 3 4</float_array><technique_common>
<accessor source="#pa" count="3" stride="3"><param name="X" type="float"/><param name="Y" type="float"/><param name="Z" type="float"/>
</accessor></technique_common></source>
<vertices id="v"><input semantic="POSITION" source="#p"/></vertices>
<triangles count="1"><input semantic="VERTEX" source="#v" offset="0"/><p>0 1 2</p></triangles>
</mesh></geometry></library_geometries>
<library_visual_scenes><visual_scene id="s"><node id="n"><instance_geometry url="#g"/></node></visual_scene></library_visual_scenes>
<scene><instance_visual_scene url="#s"/></scene>
</COLLADA>
)",
        metresPerUnit, up);
}

std::string ThreeDsTriangle() {
    const std::string points = Chunk(0x4110, Shorts({3}) + Floats(kCorners));
    const std::string faces = Chunk(0x4120, Shorts({1, 0, 1, 2, 0}));
    const std::string object = Chunk(0x4000, std::string("ground") + '\0' + Chunk(0x4100, points + faces));
    return Chunk(0x4d4d, Chunk(0x3d3d, object));
}

std::string FbxTriangle(int upAxis, double centimetresPerUnit) {
    return fmt::format(
        R"(; FBX 7.4.0 project file
FBXHeaderExtension:  {{
	FBXHeaderVersion: 1003
	FBXVersion: 7400
}}
GlobalSettings:  {{
	Version: 1000
	Properties70:  {{
		P: "UpAxis", "int", "Integer", "",{}
		P: "UpAxisSign", "int", "Integer", "",1
		P: "UnitScaleFactor", "double", "Number", "",{}
	}}
}}
Objects:  {{
	Geometry: 100, "Geometry::g", "Mesh" {{
		Vertices: *9 {{
			a: 0,0,0,2,0,0,0,3,4
		}}
		PolygonVertexIndex: *3 {{
			a: 0,1,-3
		}}
		GeometryVersion: 124
	}}
	Model: 200, "Model::m", "Mesh" {{
		Version: 232
	}}
}}
Connections:  {{
	C: "OO",200,0
	C: "OO",100,200
}}
)",
        upAxis, centimetresPerUnit);
}

std::string Glb(std::string text, std::string binary) {
    while (text.size() % 4 != 0) text += ' ';
    while (binary.size() % 4 != 0) binary += '\0';
    std::string glb = "glTF" + Number32(2) + Number32(20 + text.size() + (binary.empty() ? 0 : 8 + binary.size()));
    glb += Number32(text.size()) + "JSON" + text;
    if (!binary.empty()) glb += Number32(binary.size()) + "BIN" + std::string(1, '\0') + binary;
    return glb;
}

std::string GlbTriangle() {
    return Glb(
        R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[2,3,4]}],
"bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36}]})",
        Floats(kCorners));
}

}  // namespace tavrik::test
