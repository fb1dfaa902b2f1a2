#include "host/canvas_fonts.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include <cmath>
#include <memory>
#include FT_FREETYPE_H

namespace tavrik {
namespace {

// Tahoma's measures, in 2048ths of its em: a cell as high as the font's height is shared by ascent and descent, and the em,
// which the letters are scaled by, is smaller than the cell. The stand-in takes them over, so that its letters are as large as
// Tahoma's and stand on the same line.
constexpr std::int32_t kEm = 2048, kAscent = 2049, kDescent = 423, kCell = kAscent + kDescent;
constexpr std::int32_t kHostFontHeight = 13;

template <auto kFree>
struct FreeWith {
    template <class T>
    void operator()(T* object) const {
        kFree(object);
    }
};
using FontConfig = std::unique_ptr<FcConfig, FreeWith<FcConfigDestroy>>;
using FontPattern = std::unique_ptr<FcPattern, FreeWith<FcPatternDestroy>>;
using FontLibrary = std::unique_ptr<FT_LibraryRec_, FreeWith<FT_Done_FreeType>>;
using FontFace = std::unique_ptr<FT_FaceRec_, FreeWith<FT_Done_Face>>;

std::int32_t DivideRounding(std::int32_t a, std::int32_t b) { return (a + b / 2) / b; }

/// Where a typeface's file stands; `index` is its place within a collection.
struct FontFile {
    std::string path;
    int index = 0;
};

bool FindFontFile(FcConfig* config, const std::string& family, bool bold, FontFile& file) {
    const FontPattern wanted(FcPatternCreate());
    if (!wanted) return false;
    const auto* wantedFamily = reinterpret_cast<const FcChar8*>(family.c_str());
    FcPatternAddString(wanted.get(), FC_FAMILY, wantedFamily);
    FcPatternAddInteger(wanted.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(wanted.get(), FC_SLANT, FC_SLANT_ROMAN);
    FcConfigSubstitute(config, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const FontPattern found(FcFontMatch(config, wanted.get(), &result));
    // There is always a nearest font; only the one that was asked for counts.
    FcChar8 *foundFamily = nullptr, *path = nullptr;
    int weight = 0;
    if (!found || FcPatternGetString(found.get(), FC_FAMILY, 0, &foundFamily) != FcResultMatch ||
        FcStrCmpIgnoreCase(foundFamily, wantedFamily) != 0 ||
        FcPatternGetInteger(found.get(), FC_WEIGHT, 0, &weight) != FcResultMatch || (weight >= FC_WEIGHT_DEMIBOLD) != bold ||
        FcPatternGetString(found.get(), FC_FILE, 0, &path) != FcResultMatch) {
        return false;
    }
    file.path = reinterpret_cast<const char*>(path);
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index);
    return true;
}

bool DrawGlyph(FT_Face face, char c, Glyph& glyph) {
    // Hinted to whole pixels and with whole advances, as small text on dark ground needs it.
    if (FT_Load_Char(face, FT_ULong(c), FT_LOAD_RENDER | FT_LOAD_TARGET_NORMAL) != 0) return false;
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY && bitmap.rows != 0) return false;
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.advance = std::int32_t(slot->advance.x / 64);
    glyph.width = std::int32_t(bitmap.width);
    glyph.height = std::int32_t(bitmap.rows);
    for (std::int32_t row = 0; row < glyph.height; ++row) {
        const std::uint8_t* first = bitmap.buffer + std::ptrdiff_t(row) * bitmap.pitch;
        glyph.coverage.insert(glyph.coverage.end(), first, first + glyph.width);
    }
    return true;
}

bool DrawFont(FT_Face face, std::int32_t height, CanvasFont& font) {
    font = {};
    font.ascent = DivideRounding(height * kAscent, kCell);
    font.descent = height - font.ascent;
    if (FT_Set_Pixel_Sizes(face, 0, FT_UInt(DivideRounding(height * kEm, kCell))) != 0) return false;
    for (char c = CanvasFont::kFirst; c <= CanvasFont::kLast; ++c) {
        if (!DrawGlyph(face, c, font.glyphs[std::size_t(c - CanvasFont::kFirst)])) return false;
    }
    return true;
}

FontFace OpenFace(FT_Library library, const FontFile& file) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.path.c_str(), file.index, &face) != 0) return nullptr;
    return FontFace(face);
}

}  // namespace

std::int32_t CanvasFont::WidthOf(std::string_view text) const {
    std::int32_t width = 0;
    for (const char c : text) width += GlyphOf(c).advance;
    return width;
}

bool LoadCanvasFonts(CanvasFonts& fonts, std::string& problem, const std::string& family, double scale) {
    const auto scaled = [&](std::int32_t height) { return std::int32_t(std::lround(height * scale)); };
    const FontConfig config(FcInitLoadConfigAndFonts());
    FontFile regularFile, boldFile;
    for (const bool bold : {false, true}) {
        if (config && FindFontFile(config.get(), family, bold, bold ? boldFile : regularFile)) continue;
        problem = "The font \"" + family + "\" (" + (bold ? "bold" : "regular") + ") isn't installed";
        problem += family == kStandInFont ? "; install the package fonts-liberation." : ".";
        return false;
    }

    FT_Library rawLibrary = nullptr;
    if (FT_Init_FreeType(&rawLibrary) != 0) {
        problem = "The font library can't be started.";
        return false;
    }
    const FontLibrary library(rawLibrary);
    const FontFace regular = OpenFace(library.get(), regularFile), bold = OpenFace(library.get(), boldFile);
    CanvasFonts drawn;
    if (!regular || !DrawFont(regular.get(), scaled(10), drawn.tahoma10) ||
        !DrawFont(regular.get(), scaled(kHostFontHeight), drawn.host)) {
        problem = regularFile.path + ": the font can't be read; install it again.";
        return false;
    }
    if (!bold || !DrawFont(bold.get(), scaled(50), drawn.tahoma50Bold) ||
        !DrawFont(bold.get(), scaled(14), drawn.tahoma14Bold)) {
        problem = boldFile.path + ": the font can't be read; install it again.";
        return false;
    }
    fonts = std::move(drawn);
    return true;
}

}  // namespace tavrik
