#pragma once

#include <filesystem>
#include <string>

namespace tavrik {

/// Reads a whole regular file. Folders, pipes and devices are refused: none of them holds a mesh, and a pipe might never end.
///
/// @param problem  on false: one sentence that names the file
bool ReadWholeFile(const std::filesystem::path& file, std::string& bytes, std::string& problem);

}  // namespace tavrik
