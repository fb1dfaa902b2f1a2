#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tavrik_host {

/// A picture without colours, its rows from the top down.
struct GreyImage {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> pixels;  // [height][width], 0 black, 255 white
};

/// Reads a PNG of any kind; colours become grey, and what is clear becomes black.
/// @param problem  on false: one sentence that names the file. The image is then as it was
bool ReadGreyPng(const std::filesystem::path& file, GreyImage& image, std::string& problem);

}  // namespace tavrik_host
