#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/file_mesh.h"
#include "host/mesh_import.h"

namespace tavrik {

/// Reads the vertices and faces of an OBJ; all else in it is passed over. Polygons are cut into triangles.
///
/// @param problem  on false: what is wrong and where, without the file's name
bool ReadObj(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
             std::string& problem);

}  // namespace tavrik
