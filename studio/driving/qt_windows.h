#pragma once
/// Windows for driving, on the desktop.

#include <QObject>
#include <QPointer>
#include <QString>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

#include "drive/null_canvas.h"
#include "drive/window_layer.h"
#include "studio/driving/face_window.h"

namespace tavrik_studio {

/// Who is told of the runs in the drive window.
class RunWatcher {
 public:
    virtual ~RunWatcher() = default;
    /// The timer was set: nothing of the scene has changed yet.
    virtual void RunStarts() = 0;
    /// Before each tick. @return false when there is none to be, such as after the run was stopped in here
    virtual bool TickStarts() = 0;
    virtual void TickEnds() = 0;
    virtual void RunEnds() = 0;
};

class QtWindows final : public QObject, public tavrik::WindowLayer {
    Q_OBJECT
 public:
    /// @param owner  the main window, above which the others stay; may be null
    explicit QtWindows(QWidget* owner);
    ~QtWindows() override;

    /// What shows a message box, with its text, title and flags. By default it is one of the desktop's.
    std::function<void(const QString&, const QString&, std::uint32_t)> showMessage;
    RunWatcher* watcher = nullptr;  // not owned

    /// The open window of a kind, the newest one; null for none.
    FaceWindow* Face(tavrik::WindowKind kind) const;
    /// Whether the window's timer runs.
    bool IsRunning() const;
    /// Hands a message to the newest drive window, as if it had come from the desktop.
    void SendToDrive(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam = 0);
    /// Whether the main window may act on its keyboard shortcuts. Once all windows are closed it always may.
    bool AcceleratorsEnabled() const { return disabled_ <= 0; }
    /// Why texts are missing on the windows, or empty.
    const QString& FontProblem() const { return fonts_.Problem(); }
    /// Time spent on drawing the faces since the last call.
    std::chrono::nanoseconds TakeDrawingTime();

    tavrik::WindowId CreateDialogWindow(tavrik::WindowKind kind, tavrik::WindowMessages& receiver) override;
    void DestroyWindow(tavrik::WindowId window) override;
    void RegisterDlgWnd(tavrik::WindowId window) override;
    void UnRegisterDlgWnd(tavrik::WindowId) override {}
    void SetAlpha(tavrik::WindowId window, std::uint8_t alpha) override;
    void SetCapture(tavrik::WindowId window) override;
    void ReleaseCapture() override;
    void SetTimer(tavrik::WindowId window, std::uint32_t timer, std::uint32_t milliseconds) override;
    void KillTimer(tavrik::WindowId window, std::uint32_t timer) override;
    void BeginDrag(tavrik::WindowId window) override;
    tavrik::Canvas& GetDC(tavrik::WindowId window) override;
    void ReleaseDC(tavrik::WindowId window) override;
    tavrik::Canvas& BeginPaint(tavrik::WindowId window) override;
    void EndPaint(tavrik::WindowId window) override;
    void ShowMessageBox(tavrik::WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) override;
    void DisableAccelerators() override;
    void EnableAccelerators() override;

 signals:
    void AcceleratorsChanged(bool enabled);
    /// A message was answered.
    void Handled();

 private:
    struct Entry {
        FaceWindow* face;
        tavrik::WindowMessages* receiver;
    };
    FaceWindow* FaceOf(tavrik::WindowId window) const;
    void Dispatch(tavrik::WindowId window, std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam);
    void CountAccelerators(int disabled);
    void TellRunEnds(const FaceWindow& face);

    QPointer<QWidget> owner_;
    ScaledFonts fonts_;
    std::map<tavrik::WindowId, Entry> windows_;
    tavrik::WindowId lastId_ = 0;
    int disabled_ = 0;  // how often more the shortcuts were switched off than on
    std::chrono::steady_clock::time_point drawingSince_;
    std::chrono::nanoseconds drawing_{0};
    tavrik::NullCanvas nowhere_;
};

}  // namespace tavrik_studio
