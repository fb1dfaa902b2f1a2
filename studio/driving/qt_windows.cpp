#include "studio/driving/qt_windows.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <utility>

#include "drive/window_messages.h"

namespace tavrik_studio {

using tavrik::WindowId;
using tavrik::WindowKind;
using Clock = std::chrono::steady_clock;

QtWindows::QtWindows(QWidget* owner) : owner_(owner) {
    showMessage = [this](const QString& text, const QString& title, std::uint32_t flags) {
        const bool isError = (flags & tavrik::kMessageBoxError) != 0;
        QMessageBox box(isError ? QMessageBox::Critical : QMessageBox::Information, title, text, QMessageBox::Ok, owner_);
        box.exec();
    };
}

QtWindows::~QtWindows() {
    for (const auto& [window, entry] : windows_) entry.face->Dismiss();
}

FaceWindow* QtWindows::FaceOf(WindowId window) const {
    const auto found = windows_.find(window);
    return found == windows_.end() ? nullptr : found->second.face;
}

FaceWindow* QtWindows::Face(WindowKind kind) const {
    FaceWindow* newest = nullptr;
    for (const auto& [window, entry] : windows_) {
        if (entry.face->Kind() == kind) newest = entry.face;
    }
    return newest;
}

bool QtWindows::IsRunning() const {
    const FaceWindow* const face = Face(WindowKind::Drive);
    return face != nullptr && face->TimerRuns(tavrik::kTimerId);
}

void QtWindows::SendToDrive(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) {
    const FaceWindow* const face = Face(WindowKind::Drive);
    for (const auto& [window, entry] : windows_) {
        if (entry.face == face) return Dispatch(window, message, wParam, lParam);
    }
}

void QtWindows::Dispatch(WindowId window, std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) {
    const auto found = windows_.find(window);
    if (found == windows_.end()) return;
    const Entry entry = found->second;
    const bool isTick = message == tavrik::kWmTimer && entry.face->Kind() == WindowKind::Drive && watcher != nullptr;
    if (isTick && !watcher->TickStarts()) return;
    entry.receiver->HandleMessage(message, wParam, lParam);
    if (isTick) watcher->TickEnds();
    emit Handled();
}

// ----------------------------------------------------------------------------------------------------------------- windows

WindowId QtWindows::CreateDialogWindow(WindowKind kind, tavrik::WindowMessages& receiver) {
    const WindowId window = ++lastId_;
    const auto send = [this, window](std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) {
        Dispatch(window, message, wParam, lParam);
    };
    auto* const face = new FaceWindow(kind, fonts_, send, owner_ != nullptr ? owner_->window() : nullptr);
    windows_[window] = {face, &receiver};
    // Whoever owns it takes the window down with the main one; its number must not lead anywhere then.
    connect(face, &QObject::destroyed, this, [this, window] { windows_.erase(window); });
    return window;
}

/// Shows the window: by now its receiver knows its number, and can answer what it is asked.
void QtWindows::RegisterDlgWnd(WindowId window) {
    FaceWindow* const face = FaceOf(window);
    if (face == nullptr) return;
    const QScreen* const screen = owner_ != nullptr ? owner_->screen() : QGuiApplication::primaryScreen();
    if (screen != nullptr) face->move(screen->availableGeometry().center() - face->rect().center());
    face->show();
    face->activateWindow();
    face->setFocus(Qt::ActiveWindowFocusReason);
}

void QtWindows::DestroyWindow(WindowId window) {
    FaceWindow* const face = FaceOf(window);
    if (face == nullptr) return;
    TellRunEnds(*face);
    disconnect(face, &QObject::destroyed, this, nullptr);
    windows_.erase(window);
    face->Dismiss();
    // Sessions switch shortcuts off once more than on. With the last window closed nothing needs the keys any more.
    if (windows_.empty()) CountAccelerators(0);
    if (owner_ != nullptr) owner_->window()->activateWindow();
}

void QtWindows::SetAlpha(WindowId window, std::uint8_t alpha) {
    if (FaceWindow* const face = FaceOf(window)) face->setWindowOpacity(alpha / 255.0);
}

void QtWindows::SetCapture(WindowId window) {
    ReleaseCapture();
    if (FaceWindow* const face = FaceOf(window)) face->SetCapturing(true);
}

void QtWindows::ReleaseCapture() {
    for (const auto& [window, entry] : windows_) {
        if (entry.face->IsCapturing()) entry.face->SetCapturing(false);
    }
}

void QtWindows::BeginDrag(WindowId window) {
    if (FaceWindow* const face = FaceOf(window)) face->BeginDrag();
}

// ------------------------------------------------------------------------------------------------------------------ timers

void QtWindows::SetTimer(WindowId window, std::uint32_t timer, std::uint32_t milliseconds) {
    FaceWindow* const face = FaceOf(window);
    if (face == nullptr) return;
    const bool starts = face->Kind() == WindowKind::Drive && !face->TimerRuns(timer);
    if (starts && watcher != nullptr) watcher->RunStarts();
    face->StartTimer(timer, milliseconds);
}

void QtWindows::KillTimer(WindowId window, std::uint32_t timer) {
    FaceWindow* const face = FaceOf(window);
    if (face != nullptr && face->StopTimer(timer) && face->Kind() == WindowKind::Drive && watcher != nullptr)
        watcher->RunEnds();
}

void QtWindows::TellRunEnds(const FaceWindow& face) {
    if (face.Kind() == WindowKind::Drive && face.TimerRuns(tavrik::kTimerId) && watcher != nullptr) watcher->RunEnds();
}

// ----------------------------------------------------------------------------------------------------------------- drawing

tavrik::Canvas& QtWindows::GetDC(WindowId window) {
    drawingSince_ = Clock::now();
    return BeginPaint(window);
}

void QtWindows::ReleaseDC(WindowId window) {
    if (FaceWindow* const face = FaceOf(window)) {
        face->TakePicture();
        face->repaint();  // at once, so that the display is never behind the car
    }
    drawing_ += Clock::now() - drawingSince_;
}

tavrik::Canvas& QtWindows::BeginPaint(WindowId window) {
    FaceWindow* const face = FaceOf(window);
    return face != nullptr ? face->FaceCanvas() : nowhere_;
}

void QtWindows::EndPaint(WindowId window) {
    if (FaceWindow* const face = FaceOf(window)) face->TakePicture();
}

std::chrono::nanoseconds QtWindows::TakeDrawingTime() { return std::exchange(drawing_, std::chrono::nanoseconds(0)); }

// ------------------------------------------------------------------------------------------------- messages and shortcuts

void QtWindows::ShowMessageBox(WindowId, std::string_view text, std::string_view title, std::uint32_t flags) {
    showMessage(QString::fromUtf8(text.data(), qsizetype(text.size())),
                QString::fromUtf8(title.data(), qsizetype(title.size())), flags);
}

void QtWindows::CountAccelerators(int disabled) {
    const bool before = AcceleratorsEnabled();
    disabled_ = disabled;
    if (AcceleratorsEnabled() != before) emit AcceleratorsChanged(!before);
}

void QtWindows::DisableAccelerators() { CountAccelerators(disabled_ + 1); }
void QtWindows::EnableAccelerators() { CountAccelerators(disabled_ - 1); }

}  // namespace tavrik_studio
