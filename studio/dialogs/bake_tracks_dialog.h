#pragma once
/// "Bake Tracks": tyre tracks as pictures that lie on the ground, for other renderers.

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>

#include "studio/dialogs/export_dialog.h"

namespace tavrik_studio {

class BakeTracksDialog final : public ExportDialog {
    Q_OBJECT
 public:
    enum class When { End, Now, EachFrame };

    explicit BakeTracksDialog(Editor& editor, QWidget* parent = nullptr);

    FileField& Color() { return *color_; }
    QCheckBox& WithBump() { return *withBump_; }
    FileField& Bump() { return *bump_; }
    QComboBox& TracksUpTo() { return *when_; }
    QComboBox& Size() { return *size_; }
    QDoubleSpinBox& Roll() { return *roll_; }
    QDoubleSpinBox& Skid() { return *skid_; }

 private:
    JobResult Run(const JobWatch& watch) override;
    QString Forecast() const override;
    void FillChoices();
    void SuggestNames();

    FileField* color_;
    QCheckBox* withBump_;
    FileField* bump_;
    QComboBox *when_, *size_;
    QDoubleSpinBox *roll_, *skid_;
};

}  // namespace tavrik_studio
