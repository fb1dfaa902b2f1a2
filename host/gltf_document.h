#pragma once
/// A glTF file opened as text and one buffer, and put in order without losing what we know nothing about.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>

#include "host/scene_json.h"

namespace tavrik_host {

inline constexpr const char* kExtension = "NORVANE_tavrik";
/// A glTF file counts its bytes in 32 bits.
inline constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

// NOLINTNEXTLINE(bugprone-exception-escape): JSON is checked when it is moved, and throws nothing.
struct GltfFile {
    Json json;           // without "buffers"; all buffer views speak of `binary`
    std::string binary;  // data of all buffers, and of images that stood in files of their own
};

/// Where something lies among the bytes of a file.
struct Extent {
    std::size_t offset, length;
};

/// Makes data end at a multiple of four.
void Pad(std::string& bytes);

/// Opens a file: every buffer view and accessor lies within its data, every reference to another file has been followed.
/// Refuses anything else (`SceneFault`).
/// @param file  its folder is where the files of a .gltf are looked for
GltfFile OpenGltf(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tavrik_host
