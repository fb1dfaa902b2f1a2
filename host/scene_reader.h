#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/file_mesh.h"
#include "host/mesh_import.h"

namespace tavrik {

/// Reads FBX, PLY, STL, COLLADA and 3DS, each node at its place.
///
/// @param problem  on false: what is wrong and where, without the file's name
bool ReadScene(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
               std::string& problem);

}  // namespace tavrik
