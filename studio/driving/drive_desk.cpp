#include "studio/driving/drive_desk.h"

#include <QSignalBlocker>
#include <utility>

#include "drive/window_messages.h"
#include "host/sdk/desktop.h"
#include "host/sdk/max.h"
#include "rig/ticks.h"

namespace tavrik_studio {

using Clock = std::chrono::steady_clock;

DriveDesk::DriveDesk(Editor& editor, QWidget* mainWindow) : editor_(editor), windows_(mainWindow), stand_(mainWindow) {
    windows_.watcher = this;
    tavrik::Desktop& desktop = tavrik::TheDesktop();
    desktop.windows = &windows_;
    desktop.devices = &devices_;
    desktop.controls = &controls_;
    desktop.stand = &stand_;
    desktop.stopAtBadNumbers = true;
    connect(&windows_, &QtWindows::Handled, this, &DriveDesk::TellComplaint);
    connect(&windows_, &QtWindows::AcceleratorsChanged, this, &DriveDesk::AcceleratorsChanged);
    for (const auto told : {&Editor::ViewChanged, &Editor::StateChanged, &Editor::SceneReplaced}) {
        connect(&editor_, told, this, &DriveDesk::TellComplaint);
    }
}

DriveDesk::~DriveDesk() {
    StopRun();
    windows_.watcher = nullptr;
    tavrik::Desktop& desktop = tavrik::TheDesktop();
    desktop.windows = nullptr;
    desktop.devices = nullptr;
    desktop.controls = nullptr;
    desktop.stand = nullptr;
}

void DriveDesk::StopRun() {
    if (!IsRunning()) return;
    windows_.SendToDrive(tavrik::kWmKeyUp, std::uint64_t(tavrik::kVkEscape));
    RunEnds();  // of a window that has gone without a word
}

void DriveDesk::TellComplaint() {
    const std::string complaint = std::exchange(tavrik::TheDesktop().complaint, {});
    if (!complaint.empty()) emit Complained(QString::fromStdString(complaint));
}

void DriveDesk::RunStarts() {
    change_ = std::make_unique<Change>(editor_, tr("Drive"));
    devices_.BeginRun();
    pads_.HoldOrder(true);
    windows_.TakeDrawingTime();
    profile_.Begin(Clock::now());
    emit RunStarted();
}

bool DriveDesk::TickStarts() {
    if (devices_.IsLost()) {
        const double seconds = double(editor_.Time()) / double(tavrik::kTicksPerSecond);
        StopRun();
        emit Complained(tr("The gamepad was unplugged at second %1; the run stopped there.").arg(seconds, 0, 'f', 2));
        return false;
    }
    windows_.TakeDrawingTime();
    tickStart_ = Clock::now();
    return true;
}

void DriveDesk::TickEnds() {
    const auto driven = Clock::now();
    const auto display = windows_.TakeDrawingTime();
    emit editor_.TimeChanged();
    editor_.Touch();
    if (!IsRunning()) return;  // that was the end of the animation range: nothing was driven
    profile_.AddTick(tickStart_, driven - tickStart_ - display, display, Clock::now() - driven);
    if (profile_.Ticks() == 1 && devices_.WasAskedInVain()) {
        emit Complained(tr("No gamepad answers; plug one in, or choose another way of driving."));
    }
}

/// May come from within anything that closes the panel or deletes the car, so that listeners are told once all that is over.
void DriveDesk::RunEnds() {
    const std::unique_ptr<Change> change = std::move(change_);
    if (!change) return;
    pads_.HoldOrder(false);
    {
        const QSignalBlocker quiet(editor_);
        change->Keep();
    }
    const auto tell = [this] {
        emit editor_.TimeChanged();
        emit editor_.StateChanged();
        editor_.Touch();
        emit RunStopped();
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

}  // namespace tavrik_studio
