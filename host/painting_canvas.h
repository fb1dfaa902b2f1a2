#pragma once

#include <functional>
#include <string_view>

#include "drive/canvas.h"
#include "host/canvas_fonts.h"
#include "host/rgb_image.h"

namespace tavrik {

/// The pixel that a canvas colour becomes.
constexpr RgbPixel PixelOf(ColorRef color) {
    return {std::uint8_t(color), std::uint8_t(color >> 8), std::uint8_t(color >> 16)};
}

/// A canvas that paints a picture in memory. Shapes are hard-edged, each pixel either painted or not; letters are antialiased.
///
/// A rectangle covers the pixels from left and top up to but without right and bottom, its outermost pixels in the pen's
/// colour. An ellipse covers those of its box's pixels whose centres lie in the ellipse that touches the box; of them, those
/// with a neighbour outside are in the pen's colour. A line paints, for each step along its longer axis, the pixel nearest to
/// it, of two equally near ones the upper or left one, so that a line drawn backwards takes the same pixels; it leaves out its
/// end. Shapes may reach anywhere: what lies outside the picture costs nothing.
///
/// A fresh canvas holds a black pen, a white brush, the host's font, black letters on opaque white ground.
class PaintingCanvas : public OffScreenCanvas {
 public:
    /// Gets the picture at each Blit, on the thread that draws; the reference is good during the call only.
    using Show = std::function<void(const RgbImage&)>;

    /// @param width, height  pixels, not negative
    /// @param fonts          stays the caller's and outlives the canvas
    /// @param background     what Erase fills with; the picture starts out erased
    PaintingCanvas(std::int32_t width, std::int32_t height, const CanvasFonts& fonts, ColorRef background = 0, Show show = {});

    /// The picture as drawn so far.
    const RgbImage& Image() const { return image_; }

    PixelRect GetClientRect() const override { return {0, 0, image_.width, image_.height}; }
    CanvasObject SelectObject(CanvasObject object) override;
    void SetDcPenColor(ColorRef color) override { dcPenColor_ = color; }
    void SetDcBrushColor(ColorRef color) override { dcBrushColor_ = color; }
    void SetTextColor(ColorRef color) override { textColor_ = color; }
    void SetTransparentBackground() override { opaqueText_ = false; }
    void Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void MoveTo(std::int32_t x, std::int32_t y) override;
    void LineTo(std::int32_t x, std::int32_t y) override;
    void DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) override;
    void Erase() override;
    void Blit() override;

 private:
    RgbPixel PenPixel() const;
    RgbPixel BrushPixel() const;
    bool BrushPaints() const { return brush_ != CanvasObject::HollowBrush; }
    const CanvasFont& Font() const;
    /// Paints the part of a box that lies in the picture.
    void Fill(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom, RgbPixel pixel);
    /// Lays a letter's ink over the picture, inside `clip` only. @param x, y  the pen on the baseline
    void PaintGlyph(const Glyph& glyph, std::int64_t x, std::int64_t y, const PixelRect& clip);

    RgbImage image_;
    const CanvasFonts& fonts_;
    ColorRef background_;
    Show show_;
    CanvasObject pen_ = CanvasObject::DefaultPen, brush_ = CanvasObject::DefaultBrush, font_ = CanvasObject::DefaultFont;
    ColorRef dcPenColor_ = 0, dcBrushColor_ = 0xFFFFFF, textColor_ = 0;
    bool opaqueText_ = true;
    std::int32_t x_ = 0, y_ = 0;  // where the last MoveTo or LineTo went
};

}  // namespace tavrik
