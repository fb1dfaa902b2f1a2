#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "drive/window_layer.h"
#include "tests/drive/recording_canvas.h"

namespace tavrik::test {

/// A window layer without windows. Each call is kept as a text of its name and arguments, such as "SetTimer(1, 1, 100)",
/// "CreateDialogWindow(Prompt)" or "ShowMessageBox(1, \"No car\", \"Tavrik\", 16)". Windows are numbered from 1 and no number
/// comes twice; each has a RecordingCanvas, which outlives it.
class FakeWindows : public WindowLayer {
 public:
    std::vector<std::string> calls;
    /// Called after each call was kept, with its text, and before its answer is given: a place to let a message come in.
    std::function<void(const std::string& call)> onCall;
    bool canCreate = true;  // false: CreateDialogWindow answers 0

    /// The canvas of a window, made where it isn't there yet.
    RecordingCanvas& CanvasOf(WindowId window);
    /// The window opened last; 0 before the first.
    WindowId Last() const { return last_; }
    /// Calls of EnableAccelerators minus those of DisableAccelerators.
    int AcceleratorBalance() const { return accelerators_; }
    /// Canvases got and not given back.
    int OpenCanvases() const { return openCanvases_; }

    WindowId CreateDialogWindow(WindowKind kind, WindowMessages& receiver) override;
    void DestroyWindow(WindowId window) override;
    void RegisterDlgWnd(WindowId window) override;
    void UnRegisterDlgWnd(WindowId window) override;
    void SetAlpha(WindowId window, std::uint8_t alpha) override;
    void SetCapture(WindowId window) override;
    void ReleaseCapture() override;
    void SetTimer(WindowId window, std::uint32_t timer, std::uint32_t milliseconds) override;
    void KillTimer(WindowId window, std::uint32_t timer) override;
    void BeginDrag(WindowId window) override;
    Canvas& GetDC(WindowId window) override;
    void ReleaseDC(WindowId window) override;
    Canvas& BeginPaint(WindowId window) override;
    void EndPaint(WindowId window) override;
    void ShowMessageBox(WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) override;
    void DisableAccelerators() override;
    void EnableAccelerators() override;

 private:
    void Keep(std::string call);

    std::map<WindowId, RecordingCanvas> canvases_;  // references to its values stay good
    WindowId last_ = 0;
    int accelerators_ = 0, openCanvases_ = 0;
};

}  // namespace tavrik::test
