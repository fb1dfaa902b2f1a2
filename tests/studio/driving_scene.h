#pragma once
/// A car on a level ground in the studio, and hands at its keyboard.

#include <gtest/gtest.h>

#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>

#include "host/master_panel.h"
#include "host/sdk/max.h"
#include "studio/driving/drive_desk.h"

namespace tavrik_studio::test {

class DrivingScene : public testing::Test {
 protected:
    DrivingScene();
    ~DrivingScene() override;

    INode& Master() const;
    INode& Suspension() const;
    /// Opens the car's pages, locks it, takes its ground over and presses "Drive".
    void OpenDrive();
    FaceWindow& Face() const;
    void Press(int key);
    void Release(int key);
    /// Starts or stops.
    void Enter();
    /// Waits until the clock has come so far. @return whether it has
    bool WaitForFrames(int frames) const;
    /// Where the car is at a time, cm.
    Point3 CarAt(TimeValue tick) const;
    /// Where it headed at the start.
    Point3 CarForward() const;
    std::string Recording() const;
    void PressButton(MapID page, int control);

    QWidget mainWindow;
    Editor editor;
    DriveDesk desk{editor, &mainWindow};
    QStringList boxes, complaints;  // texts of message boxes; what was complained about
    std::unique_ptr<tavrik_host::MasterPanel> panel;
};

}  // namespace tavrik_studio::test
