#pragma once
/// Pictures that colour surfaces.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrik_host {

/// What a picture says at one place: linear colour, and how far it covers.
struct PictureColor {
    float red = 1.0f, green = 1.0f, blue = 1.0f, alpha = 1.0f;
};

enum class PictureEdge { Repeat, Clamp, Mirror };

/// A picture and smaller copies of it, each half as wide and high as the one before. Only read once it stands; any number of
/// threads may ask at once.
class Picture {
 public:
    /// @param bytes    a PNG or JPEG file
    /// @param problem  on false: why it is none, without a full stop
    bool Decode(std::string_view bytes, std::string& problem);

    /// @param u, v    across and down, 0..1; what lies outside follows the edges
    /// @param detail  how many pixels of the picture one sample covers, along one side
    PictureColor At(float u, float v, float detail, PictureEdge edgeU, PictureEdge edgeV, bool blurred) const;

    std::int32_t width() const { return levels_.empty() ? 0 : levels_[0].width; }
    std::int32_t height() const { return levels_.empty() ? 0 : levels_[0].height; }

 private:
    struct Level {
        std::int32_t width = 0, height = 0;
        std::vector<std::uint8_t> bytes;  // [height][width][4], colours as sRGB
    };
    void AddSmallerCopies();
    static PictureColor Pixel(const Level& level, std::int32_t x, std::int32_t y, PictureEdge edgeU, PictureEdge edgeV);
    static PictureColor Between(const Level& level, float u, float v, PictureEdge edgeU, PictureEdge edgeV);

    std::vector<Level> levels_;
};

}  // namespace tavrik_host
