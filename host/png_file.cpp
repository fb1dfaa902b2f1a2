#include "host/png_file.h"

#include <png.h>

#include <cassert>

#include "host/atomic_file.h"

namespace tavrik {

bool WritePngFile(const std::filesystem::path& target, const RgbImage& image, std::string& problem) {
    assert(image.pixels.size() == std::size_t(image.width) * std::size_t(image.height));
    if (image.pixels.empty()) {
        problem = target.string() + ": a picture without pixels can't be written as PNG.";
        return false;
    }
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = png_uint_32(image.width);
    header.height = png_uint_32(image.height);
    header.format = PNG_FORMAT_RGB;

    constexpr int kAsItIs = 0, kRowsWithoutGaps = 0;
    std::string bytes;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);  // enough for any content, so that one pass does
    bytes.resize(size);
    if (png_image_write_to_memory(&header, bytes.data(), &size, kAsItIs, image.pixels.data(), kRowsWithoutGaps, nullptr) == 0) {
        problem = target.string() + ": the picture can't be written as PNG (" + header.message + ").";
        return false;
    }
    bytes.resize(size);
    return WriteFileAtomically(target, bytes, problem);
}

}  // namespace tavrik
