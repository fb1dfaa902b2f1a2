#pragma once
/// What the drive window, the key prompt and the damper stand are drawn on. The operations are those of a classic device
/// context: a pen, a brush and a font are selected into it, and each stays until another takes its place.

#include <cstdint>
#include <string_view>

namespace tavrik {

/// A colour with blue in the high byte, then green, red in the low byte: 0x00BBGGRR.
using ColorRef = std::uint32_t;

/// In pixels; `right` and `bottom` lie just outside.
struct PixelRect {
    std::int32_t left, top, right, bottom;
};

/// What can be selected: one pen, one brush and one font at a time.
enum class CanvasObject : std::uint8_t {
    DefaultPen,    // what a fresh canvas holds
    DcPen,         // in the colour of SetDcPenColor
    HudPen,        // solid, 1 wide, colour 0xC097
    DefaultBrush,  // what a fresh canvas holds
    DcBrush,       // in the colour of SetDcBrushColor
    HollowBrush,
    DefaultFont,  // what a fresh canvas holds
    HostFont,     // of the host's own windows
    Tahoma50Bold,
    Tahoma14Bold,
    Tahoma10,
};

/// How DrawTextLine sets a line, with the values of the classic flags.
enum TextFlags : std::uint32_t {
    kTextLeft = 0,
    kTextCenter = 0x1,
    kTextRight = 0x2,
    kTextVCenter = 0x4,
    kTextBottom = 0x8,
    kTextSingleLine = 0x20,
    kTextNoClip = 0x100,
};

class Canvas {
 public:
    virtual ~Canvas() = default;
    /// The whole drawing area, its top left at (0, 0).
    virtual PixelRect GetClientRect() const = 0;
    /// @return what was selected in its place before
    virtual CanvasObject SelectObject(CanvasObject object) = 0;
    virtual void SetDcPenColor(ColorRef color) = 0;
    virtual void SetDcBrushColor(ColorRef color) = 0;
    virtual void SetTextColor(ColorRef color) = 0;
    /// Text leaves what lies behind it visible.
    virtual void SetTransparentBackground() = 0;
    /// Fills with the brush and frames with the pen; right and bottom lie just outside. Corners may come in any order.
    virtual void Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) = 0;
    virtual void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) = 0;
    virtual void MoveTo(std::int32_t x, std::int32_t y) = 0;
    /// Draws with the pen from where the last MoveTo or LineTo went; the end point itself is not drawn.
    virtual void LineTo(std::int32_t x, std::int32_t y) = 0;
    virtual void DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) = 0;
};

/// A canvas behind the picture: filled in peace, then shown at once.
class OffScreenCanvas : public Canvas {
 public:
    /// Fills all with the background colour.
    virtual void Erase() = 0;
    /// Shows what was drawn.
    virtual void Blit() = 0;
};

}  // namespace tavrik
