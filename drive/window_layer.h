#pragma once
/// What driving needs of windows. Each layer (the desktop application, the host, a test) supplies its own.

#include <cstdint>
#include <string_view>

#include "drive/canvas.h"

namespace tavrik {

/// A window of the layer; 0 is none.
using WindowId = std::uintptr_t;

enum class WindowKind : std::uint8_t {
    Drive,   // 200 x 70 dialog units, no border, no title, no controls
    Prompt,  // 150 x 25 dialog units, likewise
};

constexpr std::uint32_t kMessageBoxError = 16;  // the stop icon
constexpr std::uint8_t kSeeThroughAlpha = 229;  // of 255
constexpr std::uint32_t kTimerId = 1;           // of every window here

/// Who answers the messages of a window.
class WindowMessages {
 public:
    virtual ~WindowMessages() = default;
    /// @param message         its number, see window_messages.h
    /// @param wParam, lParam  its two parameters
    /// @return false where the message isn't one that the window answers
    virtual bool HandleMessage(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) = 0;
};

class WindowLayer {
 public:
    virtual ~WindowLayer() = default;
    /// Opens a window without waiting for it.
    /// @param receiver  gets the window's messages until it is destroyed; not owned
    /// @return 0 when that fails
    virtual WindowId CreateDialogWindow(WindowKind kind, WindowMessages& receiver) = 0;
    virtual void DestroyWindow(WindowId window) = 0;
    /// Lets the host's message loop serve the window.
    virtual void RegisterDlgWnd(WindowId window) = 0;
    virtual void UnRegisterDlgWnd(WindowId window) = 0;
    /// Makes the window see-through: 255 is solid.
    virtual void SetAlpha(WindowId window, std::uint8_t alpha) = 0;
    /// Mouse moves outside of the window keep arriving.
    virtual void SetCapture(WindowId window) = 0;
    virtual void ReleaseCapture() = 0;
    virtual void SetTimer(WindowId window, std::uint32_t timer, std::uint32_t milliseconds) = 0;
    virtual void KillTimer(WindowId window, std::uint32_t timer) = 0;
    /// Lets the mouse drag the window by its face.
    virtual void BeginDrag(WindowId window) = 0;
    /// The window's canvas, to be given back at once.
    virtual Canvas& GetDC(WindowId window) = 0;
    virtual void ReleaseDC(WindowId window) = 0;
    /// As GetDC, in answer to a paint message.
    virtual Canvas& BeginPaint(WindowId window) = 0;
    virtual void EndPaint(WindowId window) = 0;
    virtual void ShowMessageBox(WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) = 0;
    /// The host's own keyboard shortcuts; calls are counted by the host.
    virtual void DisableAccelerators() = 0;
    virtual void EnableAccelerators() = 0;
};

}  // namespace tavrik
