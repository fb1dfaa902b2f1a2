#include "studio/panel/number_box.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace tavrik_studio {
namespace {

constexpr int kDecimals = 6;
constexpr double kLong = 1e5, kTooLong = 1e10;
constexpr int kShownDigits = 9;  // enough for any single-precision number

}  // namespace

NumberBox::NumberBox(QWidget* parent) : QDoubleSpinBox(parent) {
    setDecimals(kDecimals);
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignRight);
    setLocale(QLocale::c());
    connect(this, &QDoubleSpinBox::valueChanged, this, &NumberBox::Set);
}

void NumberBox::Show(double value, double low, double high, double step, bool isWhole) {
    const QSignalBlocker quiet(this);
    isWhole_ = isWhole;
    setDecimals(isWhole ? 0 : kDecimals);
    // A value beyond the limits, of an older scene say, shows as it is until somebody sets it.
    setRange(std::min(low, value), std::max(high, value));
    setSingleStep(step);
    if (!hasFocus() || !lineEdit()->isModified()) setValue(value);
}

QString NumberBox::textFromValue(double value) const {
    if (isWhole_) return QString::number(value, 'f', 0);
    // Nobody reads a stiffness as 1e+06.
    const double size = std::abs(value);
    if (size >= kLong && size < kTooLong && value == std::floor(value)) return QString::number(value, 'f', 0);
    const QString text = QString::number(double(float(value)), 'g', kShownDigits);
    const QString shorter = QString::number(value, 'g', 6);
    return float(shorter.toDouble()) == float(value) ? shorter : text;
}

QValidator::State NumberBox::validate(QString& text, int&) const {
    const QString number = QString(text).remove(suffix()).trimmed();
    if (number.isEmpty() || number == "-" || number == "+" || number == "." || number.endsWith('e', Qt::CaseInsensitive) ||
        number.endsWith("e-", Qt::CaseInsensitive)) {
        return QValidator::Intermediate;
    }
    bool isNumber = false;
    const double value = number.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? QValidator::Acceptable : QValidator::Invalid;
}

double NumberBox::valueFromText(const QString& text) const {
    return std::clamp(QString(text).remove(suffix()).trimmed().toDouble(), minimum(), maximum());
}

QSize NumberBox::sizeHint() const {
    const QSize usual = QAbstractSpinBox::sizeHint();
    return {fontMetrics().horizontalAdvance("-0000.0000") + 30 + fontMetrics().horizontalAdvance(suffix()), usual.height()};
}

void NumberBox::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QDoubleSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

}  // namespace tavrik_studio
