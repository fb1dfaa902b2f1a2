#include "tests/drive/fake_windows.h"

#include <iomanip>
#include <sstream>
#include <utility>

namespace tavrik::test {
namespace {

template <typename... Arguments>
std::string CallText(const char* name, const Arguments&... arguments) {
    std::ostringstream out;
    [[maybe_unused]] const char* separator = "";
    out << name << '(';
    ((out << separator << arguments, separator = ", "), ...);
    out << ')';
    return out.str();
}

const char* NameOf(WindowKind kind) { return kind == WindowKind::Drive ? "Drive" : "Prompt"; }

}  // namespace

void FakeWindows::Keep(std::string call) {
    calls.push_back(call);
    if (onCall) onCall(call);
}

RecordingCanvas& FakeWindows::CanvasOf(WindowId window) { return canvases_[window]; }

WindowId FakeWindows::CreateDialogWindow(WindowKind kind, WindowMessages&) {
    WindowId window = 0;
    if (canCreate) {
        window = ++last_;
        // The template's dialog units at 6 x 13 pixels to 4 x 8 units.
        canvases_.insert_or_assign(window, kind == WindowKind::Drive ? RecordingCanvas(300, 114) : RecordingCanvas(225, 41));
    }
    Keep(CallText("CreateDialogWindow", NameOf(kind)));
    return window;
}

void FakeWindows::DestroyWindow(WindowId window) { Keep(CallText("DestroyWindow", window)); }
void FakeWindows::RegisterDlgWnd(WindowId window) { Keep(CallText("RegisterDlgWnd", window)); }
void FakeWindows::UnRegisterDlgWnd(WindowId window) { Keep(CallText("UnRegisterDlgWnd", window)); }
void FakeWindows::SetAlpha(WindowId window, std::uint8_t alpha) { Keep(CallText("SetAlpha", window, int(alpha))); }
void FakeWindows::SetCapture(WindowId window) { Keep(CallText("SetCapture", window)); }
void FakeWindows::ReleaseCapture() { Keep(CallText("ReleaseCapture")); }

void FakeWindows::SetTimer(WindowId window, std::uint32_t timer, std::uint32_t milliseconds) {
    Keep(CallText("SetTimer", window, timer, milliseconds));
}

void FakeWindows::KillTimer(WindowId window, std::uint32_t timer) { Keep(CallText("KillTimer", window, timer)); }
void FakeWindows::BeginDrag(WindowId window) { Keep(CallText("BeginDrag", window)); }

Canvas& FakeWindows::GetDC(WindowId window) {
    ++openCanvases_;
    Keep(CallText("GetDC", window));
    return CanvasOf(window);
}

void FakeWindows::ReleaseDC(WindowId window) {
    --openCanvases_;
    Keep(CallText("ReleaseDC", window));
}

Canvas& FakeWindows::BeginPaint(WindowId window) {
    ++openCanvases_;
    Keep(CallText("BeginPaint", window));
    return CanvasOf(window);
}

void FakeWindows::EndPaint(WindowId window) {
    --openCanvases_;
    Keep(CallText("EndPaint", window));
}

void FakeWindows::ShowMessageBox(WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) {
    Keep(CallText("ShowMessageBox", owner, std::quoted(text), std::quoted(title), flags));
}

void FakeWindows::DisableAccelerators() {
    --accelerators_;
    Keep(CallText("DisableAccelerators"));
}

void FakeWindows::EnableAccelerators() {
    ++accelerators_;
    Keep(CallText("EnableAccelerators"));
}

}  // namespace tavrik::test
