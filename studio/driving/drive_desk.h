#pragma once
/// Driving by hand: what stands around a run in the studio.

#include <QObject>
#include <QString>
#include <chrono>
#include <memory>

#include "host/controls_file.h"
#include "studio/driving/drive_profile.h"
#include "studio/driving/qt_stand.h"
#include "studio/driving/qt_windows.h"
#include "studio/driving/sdl_devices.h"
#include "studio/driving/watched_devices.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// Gives the host its windows, devices and key bindings as long as it lives, and makes each run one change of the scene, with
/// a way back to the recording before it. One to a process; the editor and the main window outlive it.
///
/// Whatever replaces the scene, or takes something out of it, calls `StopRun` first: within a run all changes are part of it.
class DriveDesk final : public QObject, private RunWatcher {
    Q_OBJECT
 public:
    DriveDesk(Editor& editor, QWidget* mainWindow);
    ~DriveDesk() override;

    bool IsRunning() const { return change_ != nullptr; }
    /// Ends a run as ESC does, recording kept. Nothing happens where there is none.
    void StopRun();

    QtWindows& Windows() { return windows_; }
    SdlDevices& Pads() { return pads_; }
    QtStand& Stand() { return stand_; }
    /// Of the present run, or the last one.
    DriveProfile& Profile() { return profile_; }
    QString ProfileReport() const { return profile_.Report(); }
    /// Tells what the plug-in has to complain about, if anything, by `Complained`. After each message of the windows, and each
    /// change that the editor tells of, this happens by itself.
    void TellComplaint();

 signals:
    void RunStarted();
    void RunStopped();
    /// One sentence for the user, such as why a run ended. Each is told once.
    void Complained(const QString& sentence);
    /// The main window's own keyboard shortcuts have to rest, or may work again.
    void AcceleratorsChanged(bool enabled);

 private:
    void RunStarts() override;
    bool TickStarts() override;
    void TickEnds() override;
    void RunEnds() override;

    Editor& editor_;
    tavrik::ControlsFile controls_;
    SdlDevices pads_;
    WatchedDevices devices_{pads_};
    QtWindows windows_;
    QtStand stand_;
    DriveProfile profile_;
    std::unique_ptr<Change> change_;  // of the present run
    std::chrono::steady_clock::time_point tickStart_;
};

}  // namespace tavrik_studio
