#include "studio/driving/face_window.h"

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimerEvent>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "drive/window_messages.h"

namespace tavrik_studio {
namespace {

using tavrik::WindowKind;

// The windows at 96 dots an inch; what is laid out on them counts in these pixels, whatever the desktop's own font is.
QSize SizeOf(WindowKind kind) { return kind == WindowKind::Drive ? QSize(300, 114) : QSize(225, 41); }

std::uint64_t Word(int value) { return std::uint16_t(std::int16_t(std::clamp(value, -32767, 32767))); }
std::uint64_t PackPoint(const QPoint& point) { return Word(point.x()) | Word(point.y()) << 16; }

bool CanGrab() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

quint64 PlaceOf(const QKeyEvent& event) {
    constexpr quint64 kByName = quint64(1) << 32;
    return event.nativeScanCode() != 0 ? event.nativeScanCode() : kByName | quint64(std::uint32_t(event.key()));
}

}  // namespace

FaceWindow::FaceWindow(WindowKind kind, ScaledFonts& fonts, MessageSink send, QWidget* owner)
    : QWidget(owner, Qt::Dialog | Qt::FramelessWindowHint), kind_(kind), fonts_(fonts), send_(std::move(send)) {
    setWindowTitle(kind == WindowKind::Drive ? tr("Drive") : tr("Press a key"));
    setFixedSize(SizeOf(kind));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(windowTitle());
    qApp->installEventFilter(this);
}

void FaceWindow::Dismiss() {
    FreePointer();
    isCapturing_ = false;
    while (!timers_.empty()) StopTimer(timers_.begin()->first);
    send_ = nullptr;
    hide();
    deleteLater();
}

void FaceWindow::Send(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) const {
    if (send_) send_(message, wParam, lParam);
}

// ------------------------------------------------------------------------------------------------------------------ the face

tavrik::Canvas& FaceWindow::FaceCanvas() {
    const double scale = devicePixelRatioF();
    if (!canvas_ || canvas_->Scale() != scale) {
        canvas_ = std::make_unique<ScaledCanvas>(width(), height(), scale, fonts_.At(scale));
    }
    return *canvas_;
}

void FaceWindow::TakePicture() {
    if (!canvas_) return;
    picture_ = canvas_->Image();
    isFresh_ = true;
}

void FaceWindow::paintEvent(QPaintEvent*) {
    if (!isFresh_ || picture_.devicePixelRatio() != devicePixelRatioF()) Send(tavrik::kWmPaint);
    isFresh_ = false;
    QPainter painter(this);
    if (picture_.isNull()) {
        painter.fillRect(rect(), Qt::black);
    } else {
        painter.drawImage(0, 0, picture_);
    }
}

// ------------------------------------------------------------------------------------------------------------------ timers

void FaceWindow::StartTimer(std::uint32_t timer, std::uint32_t milliseconds) {
    StopTimer(timer);
    timers_[timer] = startTimer(int(std::max(milliseconds, 1u)), Qt::PreciseTimer);
}

bool FaceWindow::StopTimer(std::uint32_t timer) {
    const auto found = timers_.find(timer);
    if (found == timers_.end()) return false;
    killTimer(found->second);
    timers_.erase(found);
    return true;
}

void FaceWindow::timerEvent(QTimerEvent* event) {
    const auto isIt = [&](const auto& entry) { return entry.second == event->timerId(); };
    const auto found = std::find_if(timers_.begin(), timers_.end(), isIt);
    if (found == timers_.end()) return;
    const std::uint32_t timer = found->first;
    FollowPointer();
    Send(tavrik::kWmTimer, timer);
}

// -------------------------------------------------------------------------------------------------------------------- keys

bool FaceWindow::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:  // every key is the driver's, also one that a menu would like to have
            event->accept();
            return true;
        case QEvent::KeyPress:
            KeyPressed(*static_cast<QKeyEvent*>(event));
            return true;
        case QEvent::KeyRelease:
            KeyReleased(*static_cast<QKeyEvent*>(event));
            return true;
        case QEvent::WindowActivate:
            Activated(true);
            break;
        case QEvent::WindowDeactivate:
            Activated(false);
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

void FaceWindow::KeyPressed(const QKeyEvent& event) {
    const bool keypad = event.modifiers().testFlag(Qt::KeypadModifier);
    const VirtualKey key = VirtualKeyOf(event.nativeScanCode(), event.key(), keypad);
    if (key.code == 0) return;
    held_[PlaceOf(event)] = key;
    Send(tavrik::kWmKeyDown, std::uint64_t(key.code));
    if (kind_ == WindowKind::Drive && key.general != 0) Send(tavrik::kWmKeyDown, std::uint64_t(key.general));
}

void FaceWindow::KeyReleased(const QKeyEvent& event) {
    if (event.isAutoRepeat()) return;  // still held
    const auto held = held_.find(PlaceOf(event));
    // The key that pressed the button behind the prompt goes up over the prompt; nobody meant to bind it.
    if (held == held_.end() && kind_ == WindowKind::Prompt) return;
    const bool keypad = event.modifiers().testFlag(Qt::KeypadModifier);
    const VirtualKey key = held != held_.end() ? held->second : VirtualKeyOf(event.nativeScanCode(), event.key(), keypad);
    if (held != held_.end()) held_.erase(held);
    if (key.code == 0) return;
    Send(tavrik::kWmKeyUp, std::uint64_t(key.code));
    // A capture takes one code, the key's own.
    if (kind_ == WindowKind::Drive && key.general != 0) Send(tavrik::kWmKeyUp, std::uint64_t(key.general));
}

// --------------------------------------------------------------------------------------------------------------- activation

void FaceWindow::Activated(bool active) {
    if (active) {
        if (attention_ == Attention::None) {
            attention_ = Attention::Keys;
            Send(tavrik::kWmActivate, tavrik::kWaActive);
        }
        if (isCapturing_) GrabPointer();
        return;
    }
    FreePointer();
    held_.clear();
    isDragged_ = false;
    if (attention_ == Attention::None) return;
    attention_ = Attention::None;
    Send(tavrik::kWmActivate, tavrik::kWaInactive);
}

void FaceWindow::Clicked() {
    if (!isActiveWindow()) activateWindow();
    setFocus(Qt::MouseFocusReason);
    if (isCapturing_) GrabPointer();
    if (attention_ == Attention::Clicked) return;
    attention_ = Attention::Clicked;
    Send(tavrik::kWmActivate, tavrik::kWaClickActive);
}

void FaceWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // whoever answers the message takes the window down
    Send(tavrik::kWmClose);
}

// ------------------------------------------------------------------------------------------------------------------- mouse

void FaceWindow::SetCapturing(bool on) {
    isCapturing_ = on;
    onScreen_ = QCursor::pos();
    if (on && isActiveWindow()) GrabPointer();
    if (!on) FreePointer();
}

void FaceWindow::GrabPointer() {
    if (hasPointer_ || !CanGrab() || kind_ != WindowKind::Drive || !isVisible()) return;
    hasPointer_ = true;
    grabMouse();
}

void FaceWindow::FreePointer() {
    if (!hasPointer_) return;
    hasPointer_ = false;
    releaseMouse();
}

/// A click beside the window: the user has something else in mind.
void FaceWindow::LeaveFor(const QPoint& onScreen) {
    FreePointer();
    QWidget* const there = QApplication::widgetAt(onScreen);
    if (there != nullptr && there->window() != this) there->window()->activateWindow();
}

void FaceWindow::MouseAt(const QPoint& inWindow) {
    if (isDragged_ || inWindow == mouse_) return;
    mouse_ = inWindow;
    Send(tavrik::kWmMouseMove, 0, PackPoint(inWindow));
}

/// Where no event tells: the pointer is over another program.
void FaceWindow::FollowPointer() {
    if (!isCapturing_ || hasPointer_) return;
    const QPoint now = QCursor::pos();
    if (now == onScreen_) return;
    onScreen_ = now;
    MouseAt(mapFromGlobal(now));
}

/// Moves over other windows of the program.
bool FaceWindow::eventFilter(QObject* watched, QEvent* event) {
    if (isCapturing_ && event->type() == QEvent::MouseMove && watched != this && watched != windowHandle()) {
        MouseAt(mapFromGlobal(static_cast<QMouseEvent*>(event)->globalPosition().toPoint()));
    }
    return false;
}

void FaceWindow::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const bool isLeft = event->button() == Qt::LeftButton;
    if (!rect().contains(at)) {
        if (isLeft) return LeaveFor(event->globalPosition().toPoint());
    } else {
        Clicked();
    }
    MouseAt(at);
    dragOffset_ = at;
    if (isLeft) Send(tavrik::kWmLButtonDown, 0, PackPoint(at));
    if (event->button() == Qt::RightButton) Send(tavrik::kWmRButtonDown, 0, PackPoint(at));
}

void FaceWindow::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const bool ofDrag = event->button() == Qt::LeftButton && isDragged_;
    if (ofDrag) {
        isDragged_ = false;
    } else if (event->button() == Qt::LeftButton) {
        Send(tavrik::kWmLButtonUp, 0, PackPoint(at));
    }
    if (event->button() == Qt::RightButton) Send(tavrik::kWmRButtonUp, 0, PackPoint(at));
}

void FaceWindow::mouseMoveEvent(QMouseEvent* event) {
    if (isDragged_ && event->buttons().testFlag(Qt::LeftButton)) {
        move(event->globalPosition().toPoint() - dragOffset_);
        return;
    }
    isDragged_ = false;
    MouseAt(event->position().toPoint());
}

void FaceWindow::wheelEvent(QWheelEvent* event) {
    event->accept();
    // With Alt held a turn counts as one to the side. Real turns to the side are no gear lever.
    const QPoint turn = event->angleDelta();
    const int delta = turn.y() == 0 && event->modifiers().testFlag(Qt::AltModifier) ? turn.x() : turn.y();
    if (delta != 0) Send(tavrik::kWmMouseWheel, Word(delta) << 16, PackPoint(event->globalPosition().toPoint()));
}

void FaceWindow::BeginDrag() {
    // Under Wayland only the desktop itself can move a window.
    const bool byDesktop = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    if (byDesktop && windowHandle() != nullptr && windowHandle()->startSystemMove()) return;
    isDragged_ = true;
}

}  // namespace tavrik_studio
