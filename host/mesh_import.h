#pragma once
/// Ground meshes of other people's making.

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "host/file_mesh.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// What the user knows about a file better than the file does.
struct GroundImport {
    UpAxis up = UpAxis::FromFile;  // told here, it overrules the file
    double metresPerUnit = 0.0;    // likewise; 0: what the file tells
    std::size_t mostTriangles = kMostGroundTriangles;
};

/// Reads a mesh of any known format as ground: scene units (centimetres), Z up. glTF, FBX and COLLADA tell their unit and up
/// axis; OBJ, PLY, STL and 3DS don't, and are taken as metres with Z up. A scene with many nodes becomes one mesh, each node at
/// its place. Lines and points are skipped; a triangle without area is kept.
///
/// Coordinates are placed and scaled in double precision and rounded to single once; FBX, PLY, STL, COLLADA and 3DS give them
/// in single to begin with.
///
/// @param file     its extension tells the format, in either case
/// @param problem  on false: one sentence for the user, such as
///                 "hill.obj: face 812 uses vertex 90210, but there are 4096; export the mesh again."
/// @return false on anything that isn't a ground; `ground` then stays as it was
bool ReadGround(const std::filesystem::path& file, const GroundImport& import, TriangleMesh& ground, std::string& problem);

/// As `ReadGround`, from bytes at hand. `file` names them in messages, tells the format, and its folder is where the buffers
/// of a .gltf are looked for.
bool ReadGroundBytes(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import,
                     TriangleMesh& ground, std::string& problem);

/// ".obj, .glb, ..." for messages and help.
std::string KnownMeshExtensions();

}  // namespace tavrik
