#pragma once
/// What the dialogs that write films and pictures have in common: a form, a long job, and what came of it.

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QUrl>
#include <functional>

#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/export_jobs.h"
#include "studio/dialogs/job_dialog.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

class ExportDialog : public QDialog {
    Q_OBJECT
 public:
    QPushButton& StartButton() { return *start_; }
    QPushButton& FolderButton() { return *folder_; }
    const MessageLine& Message() const { return *message_; }
    /// Of the last job.
    const JobResult& Result() const { return result_; }
    /// While a job runs; else null.
    JobDialog* RunningJob() { return job_; }

    /// Shows a folder to the user.
    std::function<void(const QUrl&)> openFolder;

    /// Does the job. The dialog stays, with what came of it.
    void accept() override;

 protected:
    /// @param start  text of the button that starts the job
    /// @param doing  what the job does, such as "Rendering pictures"
    ExportDialog(Editor& editor, const QString& title, const QString& start, const QString& doing, QWidget* parent);

    virtual JobResult Run(const JobWatch& watch) = 0;
    /// What would be made, in a sentence; told again whenever the form changes.
    virtual QString Forecast() const = 0;
    /// To be called once the form stands, and whenever it has changed.
    void TellForecast();
    QFormLayout& Form() { return *form_; }
    Editor& TheEditor() { return editor_; }
    const Editor& TheEditor() const { return editor_; }
    /// Beside the scene's file, or in the last folder where the scene has none.
    /// @param tail  behind the scene's name, such as "_film.glb"
    std::filesystem::path Beside(const std::string& tail) const;

 private:
    void Tell();

    Editor& editor_;
    QString doing_;
    QFormLayout* form_;
    MessageLine* message_;
    QPushButton *folder_, *start_;
    JobDialog* job_ = nullptr;
    JobResult result_;
};

}  // namespace tavrik_studio
