#pragma once
/// Pictures that are laid out in pixels, on screens that have several of them to a point: drawn larger, not blown up.

#include <QImage>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "drive/canvas.h"
#include "host/canvas_fonts.h"
#include "host/painting_canvas.h"

namespace tavrik_studio {

/// The letters for each scale, drawn as they are first asked for.
class ScaledFonts {
 public:
    /// @param scale  device pixels to one of the layout's
    const tavrik::CanvasFonts& At(double scale);
    /// Why texts are missing, or empty.
    const QString& Problem() const { return problem_; }

 private:
    std::map<double, std::unique_ptr<tavrik::CanvasFonts>> fonts_;
    QString problem_;
};

/// A canvas of `width` x `height` pixels of the layout. At scale 1 it is the painting canvas itself; above that lines are drawn
/// as many device pixels wide as a pixel of the layout is.
class ScaledCanvas final : public tavrik::OffScreenCanvas {
 public:
    /// Gets the picture at each Blit, on the thread that draws.
    using Show = std::function<void(QImage)>;

    /// @param fonts  of this scale; outlive the canvas
    ScaledCanvas(std::int32_t width, std::int32_t height, double scale, const tavrik::CanvasFonts& fonts,
                 tavrik::ColorRef background = 0, Show show = {});

    /// A copy of the picture as drawn so far, with the scale in it.
    QImage Image() const;
    double Scale() const { return scale_; }

    tavrik::PixelRect GetClientRect() const override { return {0, 0, width_, height_}; }
    tavrik::CanvasObject SelectObject(tavrik::CanvasObject object) override;
    void SetDcPenColor(tavrik::ColorRef color) override { canvas_.SetDcPenColor(color); }
    void SetDcBrushColor(tavrik::ColorRef color) override { canvas_.SetDcBrushColor(color); }
    void SetTextColor(tavrik::ColorRef color) override { canvas_.SetTextColor(color); }
    void SetTransparentBackground() override { canvas_.SetTransparentBackground(); }
    void Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void MoveTo(std::int32_t x, std::int32_t y) override;
    void LineTo(std::int32_t x, std::int32_t y) override;
    void DrawTextLine(std::string_view text, const tavrik::PixelRect& rect, std::uint32_t flags) override;
    void Erase() override { canvas_.Erase(); }
    void Blit() override;

 private:
    std::int32_t Scaled(std::int32_t value) const;
    tavrik::PixelRect Scaled(const tavrik::PixelRect& rect) const;
    void Frame(tavrik::PixelRect box,
               void (tavrik::PaintingCanvas::*shape)(std::int32_t, std::int32_t, std::int32_t, std::int32_t));

    std::int32_t width_, height_;
    double scale_;
    std::int32_t lineWidth_;  // device pixels
    tavrik::PaintingCanvas canvas_;
    Show show_;
    tavrik::CanvasObject brush_ = tavrik::CanvasObject::DefaultBrush;
    std::int32_t x_ = 0, y_ = 0;  // where the last MoveTo or LineTo went, in the layout
};

}  // namespace tavrik_studio
