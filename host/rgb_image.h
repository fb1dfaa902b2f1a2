#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavrik {

struct RgbPixel {
    std::uint8_t red, green, blue;

    bool operator==(const RgbPixel&) const = default;
};
static_assert(sizeof(RgbPixel) == 3, "rows go to image libraries as bytes");

/// A picture, its rows from the top down without gaps between them.
struct RgbImage {
    std::int32_t width = 0, height = 0;
    std::vector<RgbPixel> pixels;  // [height][width]

    RgbPixel& At(std::int32_t x, std::int32_t y) { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    const RgbPixel& At(std::int32_t x, std::int32_t y) const {
        return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
    }
};

}  // namespace tavrik
