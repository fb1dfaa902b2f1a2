#pragma once
/// A borderless window with a painted face, which tells what happens to it by the classic messages.

#include <QImage>
#include <QPoint>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "drive/window_layer.h"
#include "studio/driving/key_map.h"
#include "studio/driving/scaled_canvas.h"

namespace tavrik_studio {

/// Who gets the messages: number and the two parameters.
using MessageSink = std::function<void(std::uint32_t, std::uint64_t, std::uint64_t)>;

class FaceWindow final : public QWidget {
    Q_OBJECT
 public:
    /// Hidden until somebody shows it.
    /// @param fonts  outlive the window
    /// @param owner  the window that this one stays above; may be null
    FaceWindow(tavrik::WindowKind kind, ScaledFonts& fonts, MessageSink send, QWidget* owner);

    tavrik::WindowKind Kind() const { return kind_; }
    /// Nobody listens any more: the window goes.
    void Dismiss();

    /// In the pixels of the screen that the window stands on.
    tavrik::Canvas& FaceCanvas();
    /// What was drawn is what is to be seen.
    void TakePicture();
    /// The picture on the window, for those who look without a screen.
    const QImage& Picture() const { return picture_; }

    /// Rings by a message until it is stopped. A ring that is under way as it is stopped is lost.
    void StartTimer(std::uint32_t timer, std::uint32_t milliseconds);
    /// @return whether it ran
    bool StopTimer(std::uint32_t timer);
    bool TimerRuns(std::uint32_t timer) const { return timers_.count(timer) != 0; }

    /// The mouse is followed wherever it goes. On X11 it belongs to this window alone then, until the user clicks elsewhere or
    /// another window is activated.
    void SetCapturing(bool on);
    bool IsCapturing() const { return isCapturing_; }
    /// The mouse button that went down drags the window.
    void BeginDrag();

 protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void wheelEvent(QWheelEvent* event) override;

 private:
    enum class Attention : std::uint8_t { None, Keys, Clicked };

    void Send(std::uint32_t message, std::uint64_t wParam = 0, std::uint64_t lParam = 0) const;
    void KeyPressed(const QKeyEvent& event);
    void KeyReleased(const QKeyEvent& event);
    void Activated(bool active);
    void Clicked();
    void MouseAt(const QPoint& inWindow);
    void FollowPointer();
    void GrabPointer();
    void FreePointer();
    void LeaveFor(const QPoint& onScreen);

    tavrik::WindowKind kind_;
    ScaledFonts& fonts_;
    MessageSink send_;
    std::unique_ptr<ScaledCanvas> canvas_;
    QImage picture_;
    bool isFresh_ = false;  // the picture was drawn a moment ago
    std::map<std::uint32_t, int> timers_;
    std::map<quint64, VirtualKey> held_;  // by place or sign, so that a key is released under the name it was pressed by
    Attention attention_ = Attention::None;
    bool isCapturing_ = false, hasPointer_ = false, isDragged_ = false;
    QPoint dragOffset_;        // from the window's corner
    QPoint mouse_, onScreen_;  // the mouse as last told, in the window; the pointer as last looked at
};

}  // namespace tavrik_studio
