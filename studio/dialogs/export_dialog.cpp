#include "studio/dialogs/export_dialog.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace tavrik_studio {

ExportDialog::ExportDialog(Editor& editor, const QString& title, const QString& start, const QString& doing, QWidget* parent)
    : QDialog(parent),
      openFolder([](const QUrl& folder) { QDesktopServices::openUrl(folder); }),
      editor_(editor),
      doing_(doing),
      form_(new QFormLayout),
      message_(new MessageLine(this)),
      folder_(new QPushButton(tr("&Open Folder"), this)),
      start_(new QPushButton(start, this)) {
    setWindowTitle(title);
    auto* const told = new QHBoxLayout;
    told->addWidget(message_, 1);
    told->addWidget(folder_, 0, Qt::AlignTop);
    folder_->setAutoDefault(false);
    folder_->setVisible(false);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->addButton(start_, QDialogButtonBox::AcceptRole);
    start_->setDefault(true);
    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(form_);
    whole->addLayout(told);
    whole->addStretch(1);
    whole->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(folder_, &QPushButton::clicked, this, [this] { openFolder(QUrl::fromLocalFile(TextOf(result_.folder))); });
}

std::filesystem::path ExportDialog::Beside(const std::string& tail) const {
    const std::filesystem::path& scene = editor_.File();
    if (scene.empty()) return LastFolder() / ("scene" + tail);
    return scene.parent_path() / (scene.stem().string() + tail);
}

void ExportDialog::TellForecast() {
    folder_->setVisible(false);
    message_->Tell(Forecast());
}

void ExportDialog::accept() {
    if (job_ != nullptr) return;
    JobDialog job(windowTitle(), this);
    job_ = &job;
    const JobWatch watch{[&job](double part) { job.Show(part); }, &job.Stopped()};
    job.Begin(doing_);
    result_ = Run(watch);
    job.done(QDialog::Accepted);
    job_ = nullptr;
    Tell();
}

void ExportDialog::Tell() {
    QString text = result_.sentence;
    for (const QString& note : result_.notes) text += "\n" + note;
    if (result_.isDone || result_.isStopped) {
        message_->Tell(text);
    } else {
        message_->Complain(text);
    }
    folder_->setVisible(!result_.folder.empty());
    if (!result_.folder.empty()) RememberFolder(result_.folder);
    if (result_.isDone) folder_->setFocus();
}

}  // namespace tavrik_studio
