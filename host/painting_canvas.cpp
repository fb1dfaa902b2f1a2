#include "host/painting_canvas.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tavrik {
namespace {

constexpr ColorRef kBlack = 0, kWhite = 0xFFFFFF, kHudPenColor = 0xC097;

PixelRect Common(const PixelRect& a, const PixelRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// A box with its corners in order.
PixelRect InOrder(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
    return {left, top, right, bottom};
}

std::int32_t Bounded(std::int64_t value, std::int32_t low, std::int32_t high) {
    return std::int32_t(std::clamp(value, std::int64_t(low), std::int64_t(high)));
}

/// Ink of the given coverage over what lies there.
std::uint8_t Blend(std::uint8_t ground, std::uint8_t ink, std::uint32_t coverage) {
    return std::uint8_t((ground * (255 - coverage) + ink * coverage + 127) / 255);
}

/// Whether a pixel's centre lies in the ellipse that touches all four sides of `box`.
bool InEllipse(const PixelRect& box, std::int64_t x, std::int64_t y) {
    // In half pixels from the centre of the box, whose half axes are then w and h:
    //   (u / w)^2 + (v / h)^2 <= 1
    // without the quotients, so that all terms are whole numbers, and exact for boxes of up to some thousand pixels.
    const double w = double(box.right) - double(box.left), h = double(box.bottom) - double(box.top);
    const double u = 2.0 * double(x) + 1.0 - (double(box.left) + double(box.right));
    const double v = 2.0 * double(y) + 1.0 - (double(box.top) + double(box.bottom));
    return u * u * (h * h) + v * v * (w * w) <= w * w * (h * h);
}

/// One axis of a line: where it starts, how far it goes, and to which side.
struct Stretch {
    std::int64_t from;
    std::uint64_t length;
    bool forward;

    std::int64_t At(std::uint64_t steps) const { return forward ? from + std::int64_t(steps) : from - std::int64_t(steps); }
};

Stretch StretchOf(std::int64_t from, std::int64_t to) {
    return {from, std::uint64_t(to < from ? from - to : to - from), to >= from};
}

}  // namespace

PaintingCanvas::PaintingCanvas(std::int32_t width, std::int32_t height, const CanvasFonts& fonts, ColorRef background,
                               Show show)
    : fonts_(fonts), background_(background), show_(std::move(show)) {
    assert(width >= 0 && height >= 0);
    image_.width = width;
    image_.height = height;
    image_.pixels.resize(std::size_t(width) * std::size_t(height));
    Erase();
}

CanvasObject PaintingCanvas::SelectObject(CanvasObject object) {
    switch (object) {
        case CanvasObject::DefaultPen:
        case CanvasObject::DcPen:
        case CanvasObject::HudPen:
            return std::exchange(pen_, object);
        case CanvasObject::DefaultBrush:
        case CanvasObject::DcBrush:
        case CanvasObject::HollowBrush:
            return std::exchange(brush_, object);
        case CanvasObject::DefaultFont:
        case CanvasObject::HostFont:
        case CanvasObject::Tahoma50Bold:
        case CanvasObject::Tahoma14Bold:
        case CanvasObject::Tahoma10:
            return std::exchange(font_, object);
    }
    assert(false);
    return object;
}

RgbPixel PaintingCanvas::PenPixel() const {
    if (pen_ == CanvasObject::HudPen) return PixelOf(kHudPenColor);
    return PixelOf(pen_ == CanvasObject::DcPen ? dcPenColor_ : kBlack);
}

RgbPixel PaintingCanvas::BrushPixel() const { return PixelOf(brush_ == CanvasObject::DcBrush ? dcBrushColor_ : kWhite); }

const CanvasFont& PaintingCanvas::Font() const {
    switch (font_) {
        case CanvasObject::Tahoma50Bold:
            return fonts_.tahoma50Bold;
        case CanvasObject::Tahoma14Bold:
            return fonts_.tahoma14Bold;
        case CanvasObject::Tahoma10:
            return fonts_.tahoma10;
        default:
            return fonts_.host;
    }
}

void PaintingCanvas::Fill(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom, RgbPixel pixel) {
    const std::int32_t x0 = Bounded(left, 0, image_.width), x1 = Bounded(right, 0, image_.width);
    const std::int32_t y0 = Bounded(top, 0, image_.height), y1 = Bounded(bottom, 0, image_.height);
    if (x0 >= x1) return;
    for (std::int32_t y = y0; y < y1; ++y) std::fill_n(&image_.At(x0, y), x1 - x0, pixel);
}

void PaintingCanvas::Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const PixelRect box = InOrder(left, top, right, bottom);
    const std::int64_t x0 = box.left, y0 = box.top, x1 = box.right, y1 = box.bottom;
    if (x0 == x1 || y0 == y1) return;
    if (BrushPaints()) Fill(x0 + 1, y0 + 1, x1 - 1, y1 - 1, BrushPixel());
    const RgbPixel pen = PenPixel();
    Fill(x0, y0, x1, y0 + 1, pen);
    Fill(x0, y1 - 1, x1, y1, pen);
    Fill(x0, y0, x0 + 1, y1, pen);
    Fill(x1 - 1, y0, x1, y1, pen);
}

void PaintingCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const PixelRect box = InOrder(left, top, right, bottom), seen = Common(box, GetClientRect());
    const RgbPixel pen = PenPixel(), brush = BrushPixel();
    for (std::int32_t y = seen.top; y < seen.bottom; ++y) {
        for (std::int32_t x = seen.left; x < seen.right; ++x) {
            if (!InEllipse(box, x, y)) continue;
            const std::int64_t wideX = x, wideY = y;
            const bool inside = InEllipse(box, wideX - 1, y) && InEllipse(box, wideX + 1, y) && InEllipse(box, x, wideY - 1) &&
                                InEllipse(box, x, wideY + 1);
            if (!inside) {
                image_.At(x, y) = pen;
            } else if (BrushPaints()) {
                image_.At(x, y) = brush;
            }
        }
    }
}

void PaintingCanvas::MoveTo(std::int32_t x, std::int32_t y) {
    x_ = x;
    y_ = y;
}

void PaintingCanvas::LineTo(std::int32_t x, std::int32_t y) {
    const Stretch alongX = StretchOf(std::exchange(x_, x), x), alongY = StretchOf(std::exchange(y_, y), y);
    const bool steep = alongY.length > alongX.length;
    const Stretch &longer = steep ? alongY : alongX, &shorter = steep ? alongX : alongY;
    const std::int64_t longerSize = steep ? image_.height : image_.width, shorterSize = steep ? image_.width : image_.height;

    // Steps k = 0 .. length - 1 along the longer axis, the end left out; of these only the ones within the picture are made.
    const std::int64_t enter = longer.forward ? -longer.from : longer.from - (longerSize - 1);
    const std::int64_t leave = longer.forward ? longerSize - longer.from : longer.from + 1;
    const std::int64_t first = std::max<std::int64_t>(enter, 0), end = std::min(leave, std::int64_t(longer.length));
    if (first >= end) return;

    // Across it the line has come k * shorter / longer pixels: `whole` and `rest` / longer. The product of two 32-bit lengths
    // fits into 64 bits, and from there on it grows by less than one pixel a step.
    const std::uint64_t n = longer.length, product = std::uint64_t(first) * shorter.length;
    std::uint64_t whole = product / n, rest = product % n;
    const RgbPixel pen = PenPixel();
    for (std::int64_t k = first; k < end; ++k) {
        const std::uint64_t missing = n - rest;
        const bool roundUp = shorter.forward ? rest > missing : rest >= missing;  // a tie goes up or left on the picture
        const std::int64_t along = longer.At(std::uint64_t(k)), across = shorter.At(whole + (roundUp ? 1 : 0));
        if (across >= 0 && across < shorterSize) {
            image_.At(std::int32_t(steep ? across : along), std::int32_t(steep ? along : across)) = pen;
        }
        rest += shorter.length;
        if (rest >= n) {
            rest -= n;
            ++whole;
        }
    }
}

void PaintingCanvas::PaintGlyph(const Glyph& glyph, std::int64_t x, std::int64_t y, const PixelRect& clip) {
    const RgbPixel ink = PixelOf(textColor_);
    for (std::int32_t row = 0; row < glyph.height; ++row) {
        const std::int64_t py = y - glyph.top + row;
        if (py < clip.top || py >= clip.bottom) continue;
        for (std::int32_t column = 0; column < glyph.width; ++column) {
            const std::int64_t px = x + glyph.left + column;
            if (px < clip.left || px >= clip.right) continue;
            const std::uint32_t coverage = glyph.coverage[std::size_t(row) * std::size_t(glyph.width) + std::size_t(column)];
            RgbPixel& pixel = image_.At(std::int32_t(px), std::int32_t(py));
            pixel = {Blend(pixel.red, ink.red, coverage), Blend(pixel.green, ink.green, coverage),
                     Blend(pixel.blue, ink.blue, coverage)};
        }
    }
}

void PaintingCanvas::DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) {
    const CanvasFont& font = Font();
    const std::int64_t width = font.WidthOf(text), height = font.Height();
    std::int64_t left = rect.left, top = rect.top;
    if ((flags & kTextCenter) != 0) {
        left += (std::int64_t(rect.right) - rect.left - width) / 2;
    } else if ((flags & kTextRight) != 0) {
        left = rect.right - width;
    }
    if ((flags & kTextSingleLine) != 0) {  // only a single line can be set by its height
        if ((flags & kTextVCenter) != 0) {
            top += (std::int64_t(rect.bottom) - rect.top - height) / 2;
        } else if ((flags & kTextBottom) != 0) {
            top = rect.bottom - height;
        }
    }

    const PixelRect picture = GetClientRect();
    const PixelRect clip = (flags & kTextNoClip) != 0 ? picture : Common(rect, picture);
    if (opaqueText_) {
        Fill(std::max<std::int64_t>(left, clip.left), std::max<std::int64_t>(top, clip.top),
             std::min<std::int64_t>(left + width, clip.right), std::min<std::int64_t>(top + height, clip.bottom),
             PixelOf(kWhite));
    }
    std::int64_t pen = left;
    for (const char c : text) {
        const Glyph& glyph = font.GlyphOf(c);
        PaintGlyph(glyph, pen, top + font.ascent, clip);
        pen += glyph.advance;
    }
}

void PaintingCanvas::Erase() { std::fill(image_.pixels.begin(), image_.pixels.end(), PixelOf(background_)); }

void PaintingCanvas::Blit() {
    if (show_) show_(image_);
}

}  // namespace tavrik
