#pragma once

#include "drive/canvas.h"

namespace tavrik {

/// A canvas that nobody looks at, as large as the drive window.
class NullCanvas final : public Canvas {
 public:
    PixelRect GetClientRect() const override { return {0, 0, 300, 114}; }
    CanvasObject SelectObject(CanvasObject object) override { return object; }
    void SetDcPenColor(ColorRef) override {}
    void SetDcBrushColor(ColorRef) override {}
    void SetTextColor(ColorRef) override {}
    void SetTransparentBackground() override {}
    void Rectangle(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
    void Ellipse(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
    void MoveTo(std::int32_t, std::int32_t) override {}
    void LineTo(std::int32_t, std::int32_t) override {}
    void DrawTextLine(std::string_view, const PixelRect&, std::uint32_t) override {}
};

}  // namespace tavrik
