#pragma once
/// The letters of a painting canvas, drawn once and then only copied.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrik {

/// One character's ink, antialiased.
struct Glyph {
    std::int32_t left = 0;     // from the pen to the first column, px
    std::int32_t top = 0;      // from the baseline up to the first row, px
    std::int32_t advance = 0;  // how far the pen goes on, px
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> coverage;  // [height][width], 255 is all ink
};

/// A typeface in one size. Its cell, `ascent` above the baseline and `descent` below, is what a font's height means here.
struct CanvasFont {
    static constexpr char kFirst = ' ', kLast = '~';

    std::int32_t ascent = 0, descent = 0;  // px
    std::array<Glyph, std::size_t(kLast - kFirst) + 1> glyphs;

    std::int32_t Height() const { return ascent + descent; }
    /// What isn't printable ASCII shows as a question mark.
    const Glyph& GlyphOf(char c) const { return glyphs[std::size_t((c < kFirst || c > kLast ? '?' : c) - kFirst)]; }
    /// How far the pen goes on over the whole of `text`, px.
    std::int32_t WidthOf(std::string_view text) const;
};

/// All that a canvas selects. Never changed once loaded, so that canvases on several threads can share it.
struct CanvasFonts {
    CanvasFont tahoma50Bold, tahoma14Bold, tahoma10;
    CanvasFont host;  // of the host's own windows
};

// Stands in for Tahoma. Of the free sans-serif fonts that Debian carries it alone is narrow enough, in every text of the drive
// window, for the places that are laid out for Tahoma: "Hand Brake" in 70 pixels, three digits beside "km/h" in 100.
constexpr const char* kStandInFont = "Liberation Sans";

/// Finds regular and bold of `family` among the fonts that fontconfig knows and draws their letters. A font that merely looks
/// alike isn't taken: pictures would differ from one machine to the next.
///
/// @param problem  on false: one sentence that says which font is missing and how to get it
/// @param scale    how much larger the letters are, for screens with several pixels to one of the layout's
bool LoadCanvasFonts(CanvasFonts& fonts, std::string& problem, const std::string& family = kStandInFont, double scale = 1.0);

}  // namespace tavrik
