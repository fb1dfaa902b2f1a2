#pragma once
/// What is to be seen of the running-in stand: its picture, nine spinners, and the two ways out.

#include <QDialog>
#include <QDoubleSpinBox>
#include <QImage>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>

#include "drive/damper_stand.h"

class QGroupBox;
class QPushButton;

namespace tavrik_studio {

/// Shows what another thread draws.
class StandPicture final : public QWidget {
    Q_OBJECT
 public:
    explicit StandPicture(QWidget* parent);
    /// From any thread; waits for no one but another thread that copies an image's handle.
    void Show(QImage image);
    /// What is shown, or will be with the next drawing.
    QImage Shown() const;
    QSize sizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    mutable std::mutex mutex_;
    QImage image_;  // under the mutex
};

/// A setting. It tells of a value once the mouse, the wheel or an arrow key is done with it, or Enter has been pressed.
class StandSpinBox final : public QDoubleSpinBox, public tavrik::StandSpinner {
    Q_OBJECT
 public:
    using Tell = std::function<void(std::uint32_t message, std::int32_t control)>;

    StandSpinBox(std::int32_t spinner, Tell tell, QWidget* parent);
    /// From now on it tells nothing.
    void Release();

    void SetLimits(float low, float high) override;
    void SetAutoScale(bool on) override;
    void LinkToEdit(std::int32_t edit, tavrik::EditType type) override;
    void SetValue(float value, bool notify) override;
    float GetFVal() override { return float(value()); }

 protected:
    QString textFromValue(double value) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

 private:
    void Spun();
    void Entered();

    std::int32_t spinner_, edit_ = 0;  // controls
    Tell tell_;
};

class StandDialog final : public QDialog {
    Q_OBJECT
 public:
    /// Gets the message and its first parameter.
    using Send = std::function<void(std::uint32_t, std::uint64_t)>;

    /// @param send  answers by ending the dialog where a message closes it
    StandDialog(Send send, QWidget* owner);

    StandPicture& Picture() { return *picture_; }
    /// @param spinner  the control of a row
    StandSpinBox& SpinnerOf(std::int32_t spinner) { return *spinners_.at(spinner); }
    /// One of the two buttons, by its control.
    QPushButton& ButtonOf(std::int32_t control) { return *buttons_.at(control); }

    /// The dialog closes by way of the stand.
    void reject() override;

 protected:
    void closeEvent(QCloseEvent* event) override;

 private:
    QGroupBox* MakeGroup(std::string_view title);
    QPushButton* MakeButton(std::string_view text, std::int32_t control);

    Send send_;
    StandPicture* picture_;
    std::map<std::int32_t, StandSpinBox*> spinners_;
    std::map<std::int32_t, QPushButton*> buttons_;
};

}  // namespace tavrik_studio
