#include "studio/driving/stand_dialog.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>

#include "drive/damper_drawing.h"
#include "drive/window_messages.h"
#include "studio/driving/stand_emblem.h"

namespace tavrik_studio {
namespace {

constexpr int kDialogUnitsWide = 436, kDialogUnitsHigh = 268;

QString Text(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

/// A dialog unit is a quarter of the width and an eighth of the height of the desktop's letters.
QSize DialogSize(const QFontMetrics& letters) {
    return {kDialogUnitsWide * letters.averageCharWidth() / 4, kDialogUnitsHigh * letters.height() / 8};
}

}  // namespace

// ------------------------------------------------------------------------------------------------------------- the picture

StandPicture::StandPicture(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFixedSize(StandPicture::sizeHint());
    setAccessibleName(tr("Running-in stand"));
}

QSize StandPicture::sizeHint() const { return {tavrik::kStandPictureWidth, tavrik::kStandPictureHeight}; }

void StandPicture::Show(QImage image) {
    {
        const std::lock_guard lock(mutex_);
        image_.swap(image);
    }
    QMetaObject::invokeMethod(
        this, [this] { update(); }, Qt::QueuedConnection);
}

QImage StandPicture::Shown() const {
    const std::lock_guard lock(mutex_);
    return image_;
}

void StandPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.drawImage(0, 0, Shown());
}

// ------------------------------------------------------------------------------------------------------------ the spinners

StandSpinBox::StandSpinBox(std::int32_t spinner, Tell tell, QWidget* parent)
    : QDoubleSpinBox(parent), spinner_(spinner), tell_(std::move(tell)) {
    setDecimals(6);
    setKeyboardTracking(false);
    setAccelerated(true);
    setAlignment(Qt::AlignRight);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("10000000.00")) + 32);
    connect(this, &QAbstractSpinBox::editingFinished, this, &StandSpinBox::Entered);
}

void StandSpinBox::Release() { tell_ = nullptr; }

void StandSpinBox::SetLimits(float low, float high) { setRange(double(low), double(high)); }

void StandSpinBox::SetAutoScale(bool on) { setStepType(on ? AdaptiveDecimalStepType : DefaultStepType); }

void StandSpinBox::LinkToEdit(std::int32_t edit, tavrik::EditType) { edit_ = edit; }

void StandSpinBox::SetValue(float value, bool notify) {
    const QSignalBlocker quiet(this);
    setValue(double(value));
    if (notify) Spun();
}

/// As many digits as there are to be told.
QString StandSpinBox::textFromValue(double value) const {
    QString text = locale().toString(value, 'f', decimals());
    const QString point = locale().decimalPoint();
    if (!text.contains(point)) return text;
    while (text.endsWith(locale().zeroDigit())) text.chop(1);
    if (text.endsWith(point)) text.chop(point.size());
    return text.remove(locale().groupSeparator());
}

void StandSpinBox::keyPressEvent(QKeyEvent* event) {
    QDoubleSpinBox::keyPressEvent(event);
    // Enter takes the value; the dialog's own button isn't meant.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
}

void StandSpinBox::keyReleaseEvent(QKeyEvent* event) {
    QDoubleSpinBox::keyReleaseEvent(event);
    const int key = event->key();
    const bool isArrow = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (isArrow && !event->isAutoRepeat()) Spun();
}

void StandSpinBox::mouseReleaseEvent(QMouseEvent* event) {
    QDoubleSpinBox::mouseReleaseEvent(event);
    Spun();
}

void StandSpinBox::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) return event->ignore();  // whoever scrolls past doesn't want to change anything
    QDoubleSpinBox::wheelEvent(event);
    Spun();
}

void StandSpinBox::Spun() {
    if (tell_) tell_(tavrik::kCcSpinnerButtonUp, spinner_);
}

void StandSpinBox::Entered() {
    if (tell_) tell_(tavrik::kWmCustEditEnter, edit_);
}

// -------------------------------------------------------------------------------------------------------------- the dialog

StandDialog::StandDialog(Send send, QWidget* owner) : QDialog(owner), send_(std::move(send)), picture_(new StandPicture(this)) {
    setWindowTitle(Text(tavrik::kStandTitle));
    auto* const emblem = new StandEmblem(this);

    const auto rows = tavrik::StandRows();
    auto* const buttons = new QVBoxLayout;
    auto* const lower = new QHBoxLayout;
    lower->addWidget(emblem, 1);
    lower->addWidget(MakeGroup(rows.front().group), 2);
    lower->addWidget(MakeGroup(rows.back().group), 2);
    lower->addLayout(buttons);
    buttons->addStretch(1);
    buttons->addWidget(MakeButton(tavrik::kStandSetupText, tavrik::kStandSetupControl));
    buttons->addWidget(MakeButton(tavrik::kStandCancelText, tavrik::kStandCancelControl));

    auto* const whole = new QVBoxLayout(this);
    whole->addWidget(picture_, 0, Qt::AlignHCenter);
    whole->addLayout(lower, 1);
    resize(DialogSize(fontMetrics()).expandedTo(whole->sizeHint()));
}

QGroupBox* StandDialog::MakeGroup(std::string_view title) {
    auto* const group = new QGroupBox(Text(title), this);
    auto* const form = new QFormLayout(group);
    for (const tavrik::StandRow& row : tavrik::StandRows()) {
        if (row.group != title) continue;
        const auto tell = [this](std::uint32_t message, std::int32_t control) { send_(message, std::uint64_t(control)); };
        auto* const spinner = new StandSpinBox(row.spinner, tell, group);
        auto* const label = new QLabel(Text(row.label), group);
        label->setBuddy(spinner);
        spinner->setAccessibleName(label->text());
        form->addRow(label, spinner);
        spinners_[row.spinner] = spinner;
    }
    return group;
}

QPushButton* StandDialog::MakeButton(std::string_view text, std::int32_t control) {
    auto* const button = new QPushButton(Text(text), this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, control] { send_(tavrik::kWmCommand, std::uint64_t(control)); });
    buttons_[control] = button;
    return button;
}

void StandDialog::reject() { send_(tavrik::kWmCommand, std::uint64_t(tavrik::kStandCancelControl)); }

void StandDialog::closeEvent(QCloseEvent* event) {
    event->ignore();  // the stand ends the dialog once its thread has ended
    send_(tavrik::kWmClose, 0);
}

}  // namespace tavrik_studio
