#pragma once
/// The running-in stand of the dampers as a dialog of the desktop.

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <memory>

#include "drive/damper_stand.h"
#include "studio/driving/scaled_canvas.h"

namespace tavrik_studio {

class StandDialog;

class QtStand final : public tavrik::StandLayer {
 public:
    /// @param owner  the main window; may be null
    explicit QtStand(QWidget* owner);
    ~QtStand() override;

    /// The open dialog, or null.
    StandDialog* Dialog() const { return dialog_; }

    std::int32_t RunDialog(std::int32_t dialogTemplate, tavrik::DamperStand& stand) override;
    void EndDialog(tavrik::WindowId dialog, std::int32_t result) override;
    void RegisterDlgWnd(tavrik::WindowId) override {}
    void UnRegisterDlgWnd(tavrik::WindowId) override {}
    tavrik::StandSpinner& GetISpinner(tavrik::WindowId dialog, std::int32_t control) override;
    void ReleaseISpinner(tavrik::StandSpinner& spinner) override;
    tavrik::OffScreenCanvas* CreateIOffScreenBuf(tavrik::WindowId dialog, std::int32_t control,
                                                 tavrik::ColorRef background) override;
    void DestroyIOffScreenBuf(tavrik::OffScreenCanvas& buffer) override;
    void BeginPaint(tavrik::WindowId) override {}
    void EndPaint(tavrik::WindowId) override {}
    void Sleep(std::int32_t milliseconds) override;

 private:
    QPointer<QWidget> owner_;
    ScaledFonts fonts_;
    StandDialog* dialog_ = nullptr;
    std::unique_ptr<ScaledCanvas> buffer_;
};

}  // namespace tavrik_studio
