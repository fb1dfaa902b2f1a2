#pragma once
/// "Render Pictures": frames of the timeline as picture files.

#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>

#include "studio/dialogs/export_dialog.h"
#include "studio/dialogs/scene_choices.h"

namespace tavrik_studio {

class RenderDialog final : public ExportDialog {
    Q_OBJECT
 public:
    explicit RenderDialog(Editor& editor, QWidget* parent = nullptr);

    FileField& Names() { return *names_; }
    QSpinBox& First() { return *first_; }
    QSpinBox& Last() { return *last_; }
    QSpinBox& Width() { return *width_; }
    QSpinBox& Height() { return *height_; }
    QSpinBox& Samples() { return *samples_; }
    QComboBox& Camera() { return *camera_; }
    NodeBox& Car() { return *car_; }
    QCheckBox& Tracks() { return *tracks_; }
    QCheckBox& Resume() { return *resume_; }

 private:
    JobResult Run(const JobWatch& watch) override;
    QString Forecast() const override;
    void FillChoices();
    void Lay();

    FileField* names_;
    QSpinBox *first_, *last_, *width_, *height_, *samples_;
    QComboBox* camera_;
    NodeBox* car_;
    QCheckBox *tracks_, *resume_;
};

}  // namespace tavrik_studio
