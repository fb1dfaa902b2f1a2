#pragma once
/// The library that reads FBX, PLY, STL, COLLADA and 3DS, as the readers of grounds and of car models use it: with one loader
/// at a time, and in a process of its own.

#include <assimp/matrix4x4.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/file_mesh.h"
#include "solver/double_maths.h"
#include "surface/triangle_mesh.h"

struct aiMesh;
struct aiScene;
namespace Assimp {
class Importer;
}

namespace tavrik {

/// A file for the importer. The bytes are the caller's.
struct ImportedFile {
    std::string extension;  // lower case, without its dot: tells the format
    std::string_view bytes;
    const char* noun;  // "mesh" or "model", for messages
};

/// @param noun  lives at least as long as the result
ImportedFile MakeImportedFile(const std::filesystem::path& file, std::string_view bytes, const char* noun);

/// Makes the answer longer by what was found in a file, or sets the problem. Called in a process of its own.
using PackImport = std::function<bool(std::string& answer, std::string& problem)>;
/// Takes over such an answer. @return false where it is cut short
using UnpackImport = std::function<bool(std::string_view answer)>;

/// Has `pack` called in a process of its own, since the importer may crash on damaged files, or never come back, and then
/// `unpack` in this one.
///
/// @param problem  on false: what is wrong, without the file's name
bool ImportInChild(const ImportedFile& file, const PackImport& pack, const UnpackImport& unpack, std::string& problem);

/// Opens a file with the one loader for it, its faces cut to triangles. It has a root node.
///
/// @param importer  its properties set; owns the result
/// @return null, with `problem` set, on what is no readable file
const aiScene* OpenImported(Assimp::Importer& importer, const ImportedFile& file, std::string& problem);

DMatrix3 ToFrame(const aiMatrix4x4& m);

/// What stands between the scene that the importer hands over and the file's own axes and unit.
struct FileHabit {
    UpAxis up = UpAxis::Z;
    double metresPerUnit = 1.0;
    DMatrix3 undo = IdentityDMatrix3();  // applied after the root's frame
};
FileHabit HabitOf(const std::string& extension, const aiScene& scene);

/// @return null, with `problem` set, where the scene has no such mesh
const aiMesh* FindMesh(const aiScene& scene, unsigned index, std::string& problem);

/// Appends the triangles of a mesh, its points and lines passed over.
///
/// @param first    vertex of the list that the mesh's own vertex 0 became
/// @param problem  on false: which face uses a vertex that the mesh doesn't have
bool AppendFaces(const aiMesh& mesh, std::uint32_t first, std::vector<MeshFace>& faces, std::string& problem);

}  // namespace tavrik
