#include "studio/driving/qt_stand.h"

#include <chrono>
#include <thread>

#include "drive/damper_drawing.h"
#include "drive/window_messages.h"
#include "studio/driving/stand_dialog.h"

namespace tavrik_studio {
namespace {

constexpr tavrik::WindowId kDialog = 1;  // modal: there is one at a time

}  // namespace

QtStand::QtStand(QWidget* owner) : owner_(owner) {}
QtStand::~QtStand() = default;

std::int32_t QtStand::RunDialog(std::int32_t dialogTemplate, tavrik::DamperStand& stand) {
    if (dialog_ != nullptr || dialogTemplate != tavrik::kStandDialog) return tavrik::kStandCancel;
    const auto send = [&stand](std::uint32_t message, std::uint64_t wParam) {
        stand.HandleMessage(kDialog, message, wParam, 0);
    };
    StandDialog dialog(send, owner_ != nullptr ? owner_->window() : nullptr);
    dialog_ = &dialog;
    send(tavrik::kWmInitDialog, 0);
    const int result = dialog.exec();
    // A program that ends takes its dialogs down without a word. The stand lets its spinners go while they are still there.
    if (stand.window != 0) send(tavrik::kWmClose, 0);
    dialog_ = nullptr;
    return result;
}

void QtStand::EndDialog(tavrik::WindowId, std::int32_t result) {
    if (dialog_ != nullptr) dialog_->done(result);
}

tavrik::StandSpinner& QtStand::GetISpinner(tavrik::WindowId, std::int32_t control) { return dialog_->SpinnerOf(control); }

void QtStand::ReleaseISpinner(tavrik::StandSpinner& spinner) { static_cast<StandSpinBox&>(spinner).Release(); }

tavrik::OffScreenCanvas* QtStand::CreateIOffScreenBuf(tavrik::WindowId, std::int32_t control, tavrik::ColorRef background) {
    if (control != tavrik::kStandFrameControl || dialog_ == nullptr) return nullptr;
    StandPicture& picture = dialog_->Picture();
    const double scale = picture.devicePixelRatioF();
    buffer_ = std::make_unique<ScaledCanvas>(tavrik::kStandPictureWidth, tavrik::kStandPictureHeight, scale, fonts_.At(scale),
                                             background, [&picture](QImage image) { picture.Show(std::move(image)); });
    return buffer_.get();
}

void QtStand::DestroyIOffScreenBuf(tavrik::OffScreenCanvas&) { buffer_.reset(); }

void QtStand::Sleep(std::int32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

}  // namespace tavrik_studio
