#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/file_mesh.h"
#include "host/mesh_import.h"

namespace tavrik {

/// Reads the triangles of a glTF 2.0 scene, binary or text, each node at its place. Images are not looked at; buffers in files
/// of their own are looked for beside `file`.
///
/// @param problem  on false: what is wrong and where, without the file's name
bool ReadGltf(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
              std::string& problem);

}  // namespace tavrik
