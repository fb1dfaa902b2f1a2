#pragma once
/// A glTF file opened as text and one buffer, and put in order without losing what we know nothing about.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/scene_json.h"

namespace tavrik_host {

inline constexpr const char* kExtension = "NORVANE_tavrik";

// NOLINTNEXTLINE(bugprone-exception-escape): JSON is checked when it is moved, and throws nothing.
struct GltfFile {
    Json json;           // without "buffers"; all buffer views speak of `binary`
    std::string binary;  // data of all buffers, and of images that stood in files of their own
};

/// Opens a file: every buffer view and accessor lies within its data, every reference to another file has been followed.
/// Refuses anything else (`SceneFault`).
/// @param file  its folder is where the files of a .gltf are looked for
GltfFile OpenGltf(const std::filesystem::path& file, std::string_view bytes);

/// The accessors that animations read, and the buffer views that our extension's chunks lie in.
struct OwnData {
    std::vector<bool> accessors, views;
};
OwnData FindOwnData(const Json& json);

/// Drops data that was `own` and that nothing reads any more, with the bytes that no buffer view is left of. Numbers of
/// accessors and views are set anew wherever glTF and the common extensions use them; with an extension about that we don't
/// know what it refers to, only the ends of the two lists are dropped, so that its numbers go on meaning the same.
void DropUnused(GltfFile& gltf, const OwnData& own);

}  // namespace tavrik_host
