#pragma once
/// The outer frame of a glTF 2.0 file, binary or text.

#include <string>
#include <string_view>

namespace tavrik {

/// Views into the file's bytes.
struct GltfContainer {
    bool isBinary = false;
    std::string_view text;    // JSON
    std::string_view binary;  // the chunk behind the text; empty where there is none
};

/// Finds the parts of a file and checks that they lie within it, and that the text is not nested so deeply that a parser which
/// calls itself for each level would run out of stack.
///
/// @param problem  on false: what is wrong, without the file's name
bool SplitGltf(std::string_view bytes, GltfContainer& container, std::string& problem);

}  // namespace tavrik
