#include "tests/drive/recording_canvas.h"

#include <iomanip>
#include <ostream>
#include <sstream>
#include <utility>

namespace tavrik::test {
namespace {

struct Hex {
    std::uint32_t value;
};

std::ostream& operator<<(std::ostream& out, Hex hex) {
    const std::ios_base::fmtflags before = out.flags();
    out << "0x" << std::hex << std::uppercase << hex.value;
    out.flags(before);
    return out;
}

/// Which of pen, brush and font the object takes the place of.
std::size_t SlotOf(CanvasObject object) {
    switch (object) {
        case CanvasObject::DefaultPen:
        case CanvasObject::DcPen:
        case CanvasObject::HudPen:
            return 0;
        case CanvasObject::DefaultBrush:
        case CanvasObject::DcBrush:
        case CanvasObject::HollowBrush:
            return 1;
        case CanvasObject::DefaultFont:
        case CanvasObject::HostFont:
        case CanvasObject::Tahoma50Bold:
        case CanvasObject::Tahoma14Bold:
        case CanvasObject::Tahoma10:
            return 2;
    }
    return 2;
}

}  // namespace

namespace drawn {

std::ostream& operator<<(std::ostream& out, const SelectObject& call) {
    return out << "SelectObject(" << NameOf(call.object) << ')';
}
std::ostream& operator<<(std::ostream& out, const SetDcPenColor& call) {
    return out << "SetDcPenColor(" << Hex{call.color} << ')';
}
std::ostream& operator<<(std::ostream& out, const SetDcBrushColor& call) {
    return out << "SetDcBrushColor(" << Hex{call.color} << ')';
}
std::ostream& operator<<(std::ostream& out, const SetTextColor& call) {
    return out << "SetTextColor(" << Hex{call.color} << ')';
}
std::ostream& operator<<(std::ostream& out, const SetTransparentBackground&) { return out << "SetTransparentBackground()"; }
std::ostream& operator<<(std::ostream& out, const Rectangle& call) {
    return out << "Rectangle(" << call.left << ", " << call.top << ", " << call.right << ", " << call.bottom << ')';
}
std::ostream& operator<<(std::ostream& out, const Ellipse& call) {
    return out << "Ellipse(" << call.left << ", " << call.top << ", " << call.right << ", " << call.bottom << ')';
}
std::ostream& operator<<(std::ostream& out, const MoveTo& call) { return out << "MoveTo(" << call.x << ", " << call.y << ')'; }
std::ostream& operator<<(std::ostream& out, const LineTo& call) { return out << "LineTo(" << call.x << ", " << call.y << ')'; }
std::ostream& operator<<(std::ostream& out, const DrawTextLine& call) {
    return out << "DrawTextLine(" << std::quoted(call.text) << ", " << call.left << ", " << call.top << ", " << call.right
               << ", " << call.bottom << ", " << Hex{call.flags} << ')';
}
std::ostream& operator<<(std::ostream& out, const Erase&) { return out << "Erase()"; }
std::ostream& operator<<(std::ostream& out, const Blit&) { return out << "Blit()"; }

}  // namespace drawn

const char* NameOf(CanvasObject object) {
    switch (object) {
        case CanvasObject::DefaultPen:
            return "DefaultPen";
        case CanvasObject::DcPen:
            return "DcPen";
        case CanvasObject::HudPen:
            return "HudPen";
        case CanvasObject::DefaultBrush:
            return "DefaultBrush";
        case CanvasObject::DcBrush:
            return "DcBrush";
        case CanvasObject::HollowBrush:
            return "HollowBrush";
        case CanvasObject::DefaultFont:
            return "DefaultFont";
        case CanvasObject::HostFont:
            return "HostFont";
        case CanvasObject::Tahoma50Bold:
            return "Tahoma50Bold";
        case CanvasObject::Tahoma14Bold:
            return "Tahoma14Bold";
        case CanvasObject::Tahoma10:
            return "Tahoma10";
    }
    return "?";
}

std::string Text(const CanvasCall& call) {
    std::ostringstream out;
    std::visit([&out](const auto& record) { out << record; }, call);
    return out.str();
}

std::vector<std::string> RecordingCanvas::Texts() const {
    std::vector<std::string> texts;
    for (const CanvasCall& call : calls) texts.push_back(Text(call));
    return texts;
}

CanvasObject RecordingCanvas::SelectObject(CanvasObject object) {
    calls.push_back(drawn::SelectObject{object});
    return std::exchange(selected_[SlotOf(object)], object);
}

void RecordingCanvas::SetDcPenColor(ColorRef color) { calls.push_back(drawn::SetDcPenColor{color}); }
void RecordingCanvas::SetDcBrushColor(ColorRef color) { calls.push_back(drawn::SetDcBrushColor{color}); }
void RecordingCanvas::SetTextColor(ColorRef color) { calls.push_back(drawn::SetTextColor{color}); }
void RecordingCanvas::SetTransparentBackground() { calls.push_back(drawn::SetTransparentBackground{}); }

void RecordingCanvas::Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    calls.push_back(drawn::Rectangle{left, top, right, bottom});
}

void RecordingCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    calls.push_back(drawn::Ellipse{left, top, right, bottom});
}

void RecordingCanvas::MoveTo(std::int32_t x, std::int32_t y) { calls.push_back(drawn::MoveTo{x, y}); }
void RecordingCanvas::LineTo(std::int32_t x, std::int32_t y) { calls.push_back(drawn::LineTo{x, y}); }

void RecordingCanvas::DrawTextLine(std::string_view text, const PixelRect& rect, std::uint32_t flags) {
    calls.push_back(drawn::DrawTextLine{std::string(text), rect.left, rect.top, rect.right, rect.bottom, flags});
}

void RecordingCanvas::Erase() { calls.push_back(drawn::Erase{}); }
void RecordingCanvas::Blit() { calls.push_back(drawn::Blit{}); }

}  // namespace tavrik::test
