#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include "drive/canvas.h"

namespace tavrik::test {

/// What was asked of a canvas, one record to an operation.
namespace drawn {

struct SelectObject {
    CanvasObject object;
    bool operator==(const SelectObject&) const = default;
};
struct SetDcPenColor {
    ColorRef color;
    bool operator==(const SetDcPenColor&) const = default;
};
struct SetDcBrushColor {
    ColorRef color;
    bool operator==(const SetDcBrushColor&) const = default;
};
struct SetTextColor {
    ColorRef color;
    bool operator==(const SetTextColor&) const = default;
};
struct SetTransparentBackground {
    bool operator==(const SetTransparentBackground&) const = default;
};
struct Rectangle {
    std::int32_t left, top, right, bottom;
    bool operator==(const Rectangle&) const = default;
};
struct Ellipse {
    std::int32_t left, top, right, bottom;
    bool operator==(const Ellipse&) const = default;
};
struct MoveTo {
    std::int32_t x, y;
    bool operator==(const MoveTo&) const = default;
};
struct LineTo {
    std::int32_t x, y;
    bool operator==(const LineTo&) const = default;
};
struct DrawTextLine {
    std::string text;
    std::int32_t left, top, right, bottom;
    std::uint32_t flags;
    bool operator==(const DrawTextLine&) const = default;
};
struct Erase {
    bool operator==(const Erase&) const = default;
};
struct Blit {
    bool operator==(const Blit&) const = default;
};

// How a record reads, and how GoogleTest shows it: "Rectangle(0, 0, 225, 41)", "SetTextColor(0xC097)",
// "SelectObject(Tahoma10)", "DrawTextLine(\"GO\", 0, 0, 50, 20, 0x25)".
std::ostream& operator<<(std::ostream& out, const SelectObject& call);
std::ostream& operator<<(std::ostream& out, const SetDcPenColor& call);
std::ostream& operator<<(std::ostream& out, const SetDcBrushColor& call);
std::ostream& operator<<(std::ostream& out, const SetTextColor& call);
std::ostream& operator<<(std::ostream& out, const SetTransparentBackground& call);
std::ostream& operator<<(std::ostream& out, const Rectangle& call);
std::ostream& operator<<(std::ostream& out, const Ellipse& call);
std::ostream& operator<<(std::ostream& out, const MoveTo& call);
std::ostream& operator<<(std::ostream& out, const LineTo& call);
std::ostream& operator<<(std::ostream& out, const DrawTextLine& call);
std::ostream& operator<<(std::ostream& out, const Erase& call);
std::ostream& operator<<(std::ostream& out, const Blit& call);

}  // namespace drawn

using CanvasCall = std::variant<drawn::SelectObject, drawn::SetDcPenColor, drawn::SetDcBrushColor, drawn::SetTextColor,
                                drawn::SetTransparentBackground, drawn::Rectangle, drawn::Ellipse, drawn::MoveTo, drawn::LineTo,
                                drawn::DrawTextLine, drawn::Erase, drawn::Blit>;

/// The name of an object as its enumerator spells it.
const char* NameOf(CanvasObject object);

/// The record as one line, in the form shown above.
std::string Text(const CanvasCall& call);

/// A canvas that paints nothing and keeps each call in its order. Asking for the client rectangle isn't kept: it changes
/// nothing. What is selected is followed, so that SelectObject answers as a real canvas does.
class RecordingCanvas : public OffScreenCanvas {
 public:
    explicit RecordingCanvas(std::int32_t width = 300, std::int32_t height = 114) : client{0, 0, width, height} {}

    PixelRect client;
    std::vector<CanvasCall> calls;

    /// All the calls, a line each.
    std::vector<std::string> Texts() const;
    /// The selected pen, brush and font.
    CanvasObject Pen() const { return selected_[0]; }
    CanvasObject Brush() const { return selected_[1]; }
    CanvasObject Font() const { return selected_[2]; }

    PixelRect GetClientRect() const override { return client; }
    CanvasObject SelectObject(CanvasObject object) override;
    void SetDcPenColor(ColorRef color) override;
    void SetDcBrushColor(ColorRef color) override;
    void SetTextColor(ColorRef color) override;
    void SetTransparentBackground() override;
    void Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void MoveTo(std::int32_t x, std::int32_t y) override;
    void LineTo(std::int32_t x, std::int32_t y) override;
    void DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) override;
    void Erase() override;
    void Blit() override;

 private:
    std::array<CanvasObject, 3> selected_ = {CanvasObject::DefaultPen, CanvasObject::DefaultBrush, CanvasObject::DefaultFont};
};

}  // namespace tavrik::test
