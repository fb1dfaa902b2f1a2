#pragma once
/// A spinner with its field.

#include <QDoubleSpinBox>

namespace tavrik_studio {

/// Shows single-precision numbers as few digits as tell them apart, spins by steps that grow with the number, and tells of what
/// a user has set, never of what a program has.
class NumberBox final : public QDoubleSpinBox {
    Q_OBJECT
 public:
    explicit NumberBox(QWidget* parent = nullptr);

    /// @param step  of one click
    void Show(double value, double low, double high, double step, bool isWhole);

    QString textFromValue(double value) const override;
    QValidator::State validate(QString& text, int& pos) const override;
    double valueFromText(const QString& text) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

 signals:
    /// Typed and entered, or spun.
    void Set(double value);

 protected:
    /// The wheel scrolls the panel, unless the field is being edited.
    void wheelEvent(QWheelEvent* event) override;

 private:
    bool isWhole_ = false;
};

}  // namespace tavrik_studio
