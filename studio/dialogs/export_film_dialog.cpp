#include "studio/dialogs/export_film_dialog.h"

#include <system_error>

#include "studio/dialogs/scene_choices.h"

namespace tavrik_studio {

using tavrik_host::BakedKeys;

ExportFilmDialog::ExportFilmDialog(Editor& editor, QWidget* parent)
    : ExportDialog(editor, tr("Export Film"), tr("Export"), tr("Exporting the film"), parent),
      file_(new FileField(FileField::Kind::Save, tr("Export Film as"), tr("glTF (*.glb *.gltf)"), this)),
      keys_(new QComboBox(this)) {
    keys_->addItem(tr("For every sample of the recording"), int(BakedKeys::EverySample));
    keys_->addItem(tr("For every frame"), int(BakedKeys::EveryFrame));
    AddRow(Form(), tr("&File:"), file_);
    AddRow(Form(), tr("&Keys:"), keys_);
    ChainTabs({file_, keys_, &FolderButton(), &StartButton()});
    file_->SetPath(Beside("_film.glb"));
    connect(file_, &FileField::Changed, this, &ExportFilmDialog::TellForecast);
    connect(keys_, &QComboBox::currentIndexChanged, this, &ExportFilmDialog::TellForecast);
    TellForecast();
    resize(sizeHint().expandedTo({560, 0}));
}

QString ExportFilmDialog::Forecast() const {
    const bool isFrames = keys_->currentData().toInt() == int(BakedKeys::EveryFrame);
    QString text = isFrames ? tr("Smaller, with what happens between two frames left out.")
                            : tr("As exact as the recording, for slow motion too.");
    std::error_code error;
    if (std::filesystem::exists(file_->Path(), error)) text += " " + tr("The file that is there will be replaced.");
    return text;
}

JobResult ExportFilmDialog::Run(const JobWatch& watch) {
    return ExportFilm(TheEditor().Document(), TheEditor().File(), {file_->Path(), BakedKeys(keys_->currentData().toInt())},
                      watch);
}

}  // namespace tavrik_studio
