#pragma once
/// Files beside a file, as its text names them.

#include <filesystem>
#include <string>
#include <string_view>

namespace tavrik {

/// Decodes the `%20` of an address once: what is still encoded after that is part of a name.
std::string PercentDecoded(std::string_view uri);

/// The file that an address of glTF means. It has to lie in the folder of `home` or below it: a file from elsewhere must not
/// make others' files part of what is saved and passed on.
///
/// @return false where it leads elsewhere
bool FindSideFile(const std::filesystem::path& home, std::string_view uri, std::filesystem::path& file);

}  // namespace tavrik
