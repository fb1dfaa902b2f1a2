#pragma once

#include <filesystem>
#include <string>

#include "host/rgb_image.h"

namespace tavrik {

/// Writes `image` as a PNG of 8-bit RGB. The file appears whole or not at all.
///
/// @param problem  on false: one sentence that names file and fault
bool WritePngFile(const std::filesystem::path& target, const RgbImage& image, std::string& problem);

}  // namespace tavrik
