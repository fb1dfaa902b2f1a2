#pragma once
/// "Export Film": the scene's motion as plain animation, for programs that only play.

#include <QComboBox>

#include "studio/dialogs/export_dialog.h"

namespace tavrik_studio {

class ExportFilmDialog final : public ExportDialog {
    Q_OBJECT
 public:
    explicit ExportFilmDialog(Editor& editor, QWidget* parent = nullptr);

    FileField& File() { return *file_; }
    QComboBox& Keys() { return *keys_; }

 private:
    JobResult Run(const JobWatch& watch) override;
    QString Forecast() const override;

    FileField* file_;
    QComboBox* keys_;
};

}  // namespace tavrik_studio
