#include "studio/driving/scaled_canvas.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrik_studio {

using tavrik::CanvasObject;
using tavrik::PaintingCanvas;
using tavrik::PixelRect;

const tavrik::CanvasFonts& ScaledFonts::At(double scale) {
    std::unique_ptr<tavrik::CanvasFonts>& fonts = fonts_[scale];
    if (fonts) return *fonts;
    fonts = std::make_unique<tavrik::CanvasFonts>();
    // What is there on a desktop without the usual font; letters may then stand a little closer.
    for (const char* const family : {tavrik::kStandInFont, "DejaVu Sans", "Noto Sans", "FreeSans"}) {
        std::string problem;
        if (tavrik::LoadCanvasFonts(*fonts, problem, family, scale)) {
            problem_.clear();
            break;
        }
        if (problem_.isEmpty()) problem_ = QString::fromStdString(problem);
    }
    return *fonts;
}

ScaledCanvas::ScaledCanvas(std::int32_t width, std::int32_t height, double scale, const tavrik::CanvasFonts& fonts,
                           tavrik::ColorRef background, Show show)
    : width_(width),
      height_(height),
      scale_(scale),
      lineWidth_(std::max(1, std::int32_t(std::lround(scale)))),
      canvas_(Scaled(width), Scaled(height), fonts, background),
      show_(std::move(show)) {}

QImage ScaledCanvas::Image() const {
    const tavrik::RgbImage& painted = canvas_.Image();
    const QImage view(reinterpret_cast<const uchar*>(painted.pixels.data()), painted.width, painted.height,
                      qsizetype(painted.width) * 3, QImage::Format_RGB888);
    QImage image = view.convertToFormat(QImage::Format_RGB32);
    image.setDevicePixelRatio(scale_);
    return image;
}

/// Coordinates may lie anywhere: what runs over is bounded far outside of the picture.
std::int32_t ScaledCanvas::Scaled(std::int32_t value) const {
    constexpr double kLargest = 2147483647.0;
    return std::int32_t(std::clamp(std::round(double(value) * scale_), -kLargest, kLargest));
}

PixelRect ScaledCanvas::Scaled(const PixelRect& rect) const {
    return {Scaled(rect.left), Scaled(rect.top), Scaled(rect.right), Scaled(rect.bottom)};
}

CanvasObject ScaledCanvas::SelectObject(CanvasObject object) {
    if (object == CanvasObject::DefaultBrush || object == CanvasObject::DcBrush || object == CanvasObject::HollowBrush) {
        brush_ = object;
    }
    return canvas_.SelectObject(object);
}

/// One frame inside the other, until they are as wide as the line.
void ScaledCanvas::Frame(PixelRect box, void (PaintingCanvas::*shape)(std::int32_t, std::int32_t, std::int32_t, std::int32_t)) {
    if (box.left > box.right) std::swap(box.left, box.right);
    if (box.top > box.bottom) std::swap(box.top, box.bottom);
    (canvas_.*shape)(box.left, box.top, box.right, box.bottom);
    if (lineWidth_ == 1) return;
    canvas_.SelectObject(CanvasObject::HollowBrush);
    for (std::int32_t i = 1; i < lineWidth_; ++i) {
        if (box.right / 2 - box.left / 2 <= i || box.bottom / 2 - box.top / 2 <= i) break;
        (canvas_.*shape)(box.left + i, box.top + i, box.right - i, box.bottom - i);
    }
    canvas_.SelectObject(brush_);
}

void ScaledCanvas::Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    Frame(Scaled({left, top, right, bottom}), &PaintingCanvas::Rectangle);
}

void ScaledCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    Frame(Scaled({left, top, right, bottom}), &PaintingCanvas::Ellipse);
}

void ScaledCanvas::MoveTo(std::int32_t x, std::int32_t y) {
    x_ = x;
    y_ = y;
}

void ScaledCanvas::LineTo(std::int32_t x, std::int32_t y) {
    const std::int64_t across = std::abs(std::int64_t(x) - x_), down = std::abs(std::int64_t(y) - y_);
    const std::int32_t fromX = Scaled(std::exchange(x_, x)), fromY = Scaled(std::exchange(y_, y));
    const std::int32_t toX = Scaled(x), toY = Scaled(y);
    constexpr std::int32_t kFarOut = 1 << 30;
    for (std::int32_t i = 0; i < lineWidth_; ++i) {
        // Side by side across the line; those that lead far out have no neighbours, which nobody would see.
        const std::int32_t dx = down > across && std::max(fromX, toX) < kFarOut ? i : 0;
        const std::int32_t dy = down > across || std::max(fromY, toY) >= kFarOut ? 0 : i;
        canvas_.MoveTo(fromX + dx, fromY + dy);
        canvas_.LineTo(toX + dx, toY + dy);
    }
}

void ScaledCanvas::DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) {
    canvas_.DrawTextLine(text, Scaled(rect), flags);
}

void ScaledCanvas::Blit() {
    if (show_) show_(Image());
}

}  // namespace tavrik_studio
