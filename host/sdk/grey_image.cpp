#include "host/sdk/grey_image.h"

#include <png.h>

#include <fstream>

namespace tavrik_host {
namespace {

// Far more than a tread needs. A few bytes can ask for any number of pixels.
constexpr std::uintmax_t kMostBytes = std::uintmax_t(1) << 28;
constexpr std::uint64_t kMostPixels = std::uint64_t(1) << 26;

bool ReadBytes(const std::filesystem::path& file, std::string& bytes, std::string& problem) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        problem = file.string() + ": there is no such picture.";
        return false;
    }
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error || size > kMostBytes) {
        problem = file.string() + ": the picture is too large to be a map; take one below 256 MB.";
        return false;
    }
    bytes.resize(std::size_t(size));
    std::ifstream in(file, std::ios::binary);
    if (in.read(bytes.data(), std::streamsize(size))) return true;
    problem = file.string() + ": the picture can't be read.";
    return false;
}

/// Lets go of what the library holds, on every way out.
struct PngImage : png_image {
    PngImage() : png_image() { version = PNG_IMAGE_VERSION; }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage() { png_image_free(this); }
};

}  // namespace

bool ReadGreyPng(const std::filesystem::path& file, GreyImage& image, std::string& problem) {
    std::string bytes;
    if (!ReadBytes(file, bytes, problem)) return false;
    PngImage png;
    const auto refuse = [&](const std::string& why) {
        problem = file.string() + ": the picture can't be read as PNG (" + why + "); save it anew.";
        return false;
    };
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0) return refuse(png.message);
    if (std::uint64_t(png.width) * png.height > kMostPixels) return refuse("it has more than 67 million pixels");
    png.format = PNG_FORMAT_GRAY;
    png.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;  // 16 bits mean finer steps, not another curve
    GreyImage read;
    read.width = std::int32_t(png.width);
    read.height = std::int32_t(png.height);
    read.pixels.resize(std::size_t(png.width) * png.height);
    const png_color black = {0, 0, 0};
    constexpr int kRowsWithoutGaps = 0;
    if (png_image_finish_read(&png, &black, read.pixels.data(), kRowsWithoutGaps, nullptr) == 0) return refuse(png.message);
    image = std::move(read);
    return true;
}

}  // namespace tavrik_host
