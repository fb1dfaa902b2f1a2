#include "host/render/picture.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <utility>

// Takes names from <cstdio> without asking for them.
#include <jpeglib.h>

namespace tavrik_host {
namespace {

// A few bytes can ask for any number of pixels.
constexpr std::uint64_t kMostPixels = std::uint64_t(1) << 26;

std::array<float, 256> MakeLinearTable() {
    std::array<float, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const float c = float(i) / 255.0f;
        table[i] = c <= 0.04045f ? c / 12.92f : std::pow((c + 0.055f) / 1.055f, 2.4f);
    }
    return table;
}

const std::array<float, 256>& LinearTable() {
    static const std::array<float, 256> table = MakeLinearTable();
    return table;
}

std::int32_t Within(std::int32_t x, std::int32_t size, PictureEdge edge) {
    if (edge == PictureEdge::Clamp) return std::clamp(x, 0, size - 1);
    if (edge == PictureEdge::Repeat) return ((x % size) + size) % size;
    const std::int32_t round = ((x % (2 * size)) + 2 * size) % (2 * size);
    return round < size ? round : 2 * size - 1 - round;
}

bool DecodePng(std::string_view bytes, std::int32_t& width, std::int32_t& height, std::vector<std::uint8_t>& pixels,
               std::string& problem) {
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&header, bytes.data(), bytes.size()) == 0) {
        problem = header.message;
        return false;
    }
    if (std::uint64_t(header.width) * header.height > kMostPixels) {
        png_image_free(&header);
        problem = "it has more than 67 million pixels";
        return false;
    }
    header.format = PNG_FORMAT_RGBA;
    header.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    std::vector<std::uint8_t> read(std::size_t(header.width) * header.height * 4);
    constexpr int kRowsWithoutGaps = 0;
    if (png_image_finish_read(&header, nullptr, read.data(), kRowsWithoutGaps, nullptr) == 0) {
        problem = header.message;
        png_image_free(&header);
        return false;
    }
    width = std::int32_t(header.width);
    height = std::int32_t(header.height);
    pixels = std::move(read);
    return true;
}

/// The library reports trouble by a call from which nothing may return.
struct JpegTrouble {
    jpeg_error_mgr manager;
    std::jmp_buf back;
    char message[JMSG_LENGTH_MAX];
};

[[noreturn]] void LeaveJpeg(j_common_ptr info) {
    auto* const trouble = reinterpret_cast<JpegTrouble*>(info->err);
    info->err->format_message(info, trouble->message);
    std::longjmp(trouble->back, 1);
}

void StaySilent(j_common_ptr) {}

/// Nothing in here has a destructor that a long jump would pass over; the pixels are the caller's.
bool ReadJpeg(jpeg_decompress_struct& info, JpegTrouble& trouble, std::string_view bytes, std::vector<std::uint8_t>& pixels) {
    if (setjmp(trouble.back) != 0) return false;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&info, TRUE);
    if (std::uint64_t(info.image_width) * info.image_height > kMostPixels) return false;
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    pixels.resize(std::size_t(info.output_width) * info.output_height * 3);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + std::size_t(info.output_scanline) * info.output_width * 3;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return true;
}

bool DecodeJpeg(std::string_view bytes, std::int32_t& width, std::int32_t& height, std::vector<std::uint8_t>& pixels,
                std::string& problem) {
    jpeg_decompress_struct info = {};
    JpegTrouble trouble = {};
    info.err = jpeg_std_error(&trouble.manager);
    trouble.manager.error_exit = LeaveJpeg;
    trouble.manager.output_message = StaySilent;
    std::vector<std::uint8_t> colors;
    const bool done = ReadJpeg(info, trouble, bytes, colors);
    width = std::int32_t(info.output_width);
    height = std::int32_t(info.output_height);
    jpeg_destroy_decompress(&info);
    if (!done) {
        problem = trouble.message[0] != '\0' ? trouble.message : "it has more than 67 million pixels";
        return false;
    }
    pixels.resize(colors.size() / 3 * 4);
    for (std::size_t i = 0; i < colors.size() / 3; ++i) {
        std::copy_n(&colors[3 * i], 3, &pixels[4 * i]);
        pixels[4 * i + 3] = 255;
    }
    return true;
}

PictureColor Mix(const PictureColor& a, const PictureColor& b, float t) {
    return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t, a.blue + (b.blue - a.blue) * t,
            a.alpha + (b.alpha - a.alpha) * t};
}

}  // namespace

bool Picture::Decode(std::string_view bytes, std::string& problem) {
    Level first;
    const bool isPng = bytes.starts_with("\x89PNG");
    if (!isPng && !bytes.starts_with("\xff\xd8")) {
        problem = "it is neither PNG nor JPEG";
        return false;
    }
    if (!(isPng ? DecodePng : DecodeJpeg)(bytes, first.width, first.height, first.bytes, problem)) return false;
    if (first.bytes.empty()) {
        problem = "it has no pixels";
        return false;
    }
    levels_.clear();
    levels_.push_back(std::move(first));
    AddSmallerCopies();
    return true;
}

void Picture::AddSmallerCopies() {
    while (levels_.back().width > 1 || levels_.back().height > 1) {
        const Level& large = levels_.back();
        Level small;
        small.width = std::max(1, large.width / 2);
        small.height = std::max(1, large.height / 2);
        small.bytes.resize(std::size_t(small.width) * std::size_t(small.height) * 4);
        for (std::int32_t y = 0; y < small.height; ++y) {
            for (std::int32_t x = 0; x < small.width; ++x) {
                for (int channel = 0; channel < 4; ++channel) {
                    int sum = 0;
                    for (int corner = 0; corner < 4; ++corner) {
                        const std::int32_t fromX = std::min(2 * x + corner % 2, large.width - 1);
                        const std::int32_t fromY = std::min(2 * y + corner / 2, large.height - 1);
                        sum += large.bytes[(std::size_t(fromY) * std::size_t(large.width) + std::size_t(fromX)) * 4 +
                                           std::size_t(channel)];
                    }
                    small.bytes[(std::size_t(y) * std::size_t(small.width) + std::size_t(x)) * 4 + std::size_t(channel)] =
                        std::uint8_t((sum + 2) / 4);
                }
            }
        }
        levels_.push_back(std::move(small));
    }
}

PictureColor Picture::Pixel(const Level& level, std::int32_t x, std::int32_t y, PictureEdge edgeU, PictureEdge edgeV) {
    const std::size_t column = std::size_t(Within(x, level.width, edgeU)), row = std::size_t(Within(y, level.height, edgeV));
    const std::uint8_t* const pixel = &level.bytes[(row * std::size_t(level.width) + column) * 4];
    const std::array<float, 256>& linear = LinearTable();
    return {linear[pixel[0]], linear[pixel[1]], linear[pixel[2]], float(pixel[3]) / 255.0f};
}

PictureColor Picture::Between(const Level& level, float u, float v, PictureEdge edgeU, PictureEdge edgeV) {
    const float x = u * float(level.width) - 0.5f, y = v * float(level.height) - 0.5f;
    const float left = std::floor(x), top = std::floor(y);
    const std::int32_t column = std::int32_t(left), row = std::int32_t(top);
    const PictureColor upper =
        Mix(Pixel(level, column, row, edgeU, edgeV), Pixel(level, column + 1, row, edgeU, edgeV), x - left);
    const PictureColor lower =
        Mix(Pixel(level, column, row + 1, edgeU, edgeV), Pixel(level, column + 1, row + 1, edgeU, edgeV), x - left);
    return Mix(upper, lower, y - top);
}

PictureColor Picture::At(float u, float v, float detail, PictureEdge edgeU, PictureEdge edgeV, bool blurred) const {
    // Far out there are no halves of pixels left; and what is no place at all shows the corner.
    constexpr float kFar = 10'000.0f;
    if (levels_.empty() || !(std::abs(u) < kFar) || !(std::abs(v) < kFar)) return {};
    const float level = detail > 1.0f ? std::min(std::log2(detail), float(levels_.size() - 1)) : 0.0f;
    const Level& fine = levels_[std::size_t(level)];
    if (level == 0.0f && !blurred) {
        return Pixel(fine, std::int32_t(std::floor(u * float(fine.width))), std::int32_t(std::floor(v * float(fine.height))),
                     edgeU, edgeV);
    }
    const PictureColor color = Between(fine, u, v, edgeU, edgeV);
    const float rest = level - std::floor(level);
    if (rest == 0.0f) return color;
    return Mix(color, Between(levels_[std::size_t(level) + 1], u, v, edgeU, edgeV), rest);
}

}  // namespace tavrik_host
