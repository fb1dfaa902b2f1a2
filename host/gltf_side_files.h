#pragma once
/// What the text of a glTF file refers to by address: data written into the address itself, or files beside it.

#include <filesystem>
#include <string>
#include <string_view>

namespace tavrik_host {

/// Whether the address holds its data itself.
bool IsDataUri(std::string_view uri);

/// The bytes behind an address. A file has to lie in the folder of `scene` or below it: a scene from elsewhere must not make
/// others' files part of what is saved and passed on. Refuses (`SceneFault`) what leads elsewhere or can't be read.
///
/// @param what  names the owner in messages, such as "buffer 0"
std::string ReadUri(const std::filesystem::path& scene, std::string_view uri, const std::string& what);

/// @return false where the text is none
bool FromBase64(std::string_view text, std::string& bytes);
std::string ToBase64(std::string_view bytes);

}  // namespace tavrik_host
