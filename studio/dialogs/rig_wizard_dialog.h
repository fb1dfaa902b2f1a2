#pragma once
/// "Import Car": somebody's model becomes a car of the open scene.

#include <QDialog>
#include <QDialogButtonBox>
#include <QTableWidget>
#include <QTimer>

#include "studio/dialogs/rig_wizard_form.h"

namespace tavrik_studio {

class RigWizardDialog final : public QDialog {
    Q_OBJECT
 public:
    /// @param model  planned at once; empty: the user looks for one
    RigWizardDialog(Editor& editor, const std::filesystem::path& model, QWidget* parent = nullptr);

    RigWizardForm& Form() { return *form_; }
    const RigWizard& Wizard() const { return wizard_; }
    const QTableWidget& Decisions() const { return *decisions_; }
    const QTableWidget& Wheels() const { return *wheels_; }
    QComboBox& Vehicle() { return *vehicle_; }
    const MessageLine& Message() const { return *message_; }
    QPushButton& OkButton() { return *buttons_->button(QDialogButtonBox::Ok); }
    /// Whether what is shown doesn't follow from the form yet.
    bool IsPlanDue() const { return due_.isActive(); }

    /// Puts the car into the scene.
    void accept() override;

 private:
    QTableWidget* MakeTable(const QString& name, const QStringList& titles);
    void Lay();
    void Read();
    void PlanSoon();
    void PlanNow();
    void Show();
    void ShowTables();

    Editor& editor_;
    RigWizard wizard_;
    RigWizardForm* form_;
    QLabel* vehicleLabel_;
    QComboBox* vehicle_;
    QTableWidget *decisions_, *wheels_;
    MessageLine* message_;
    QDialogButtonBox* buttons_;
    QTimer due_;
};

}  // namespace tavrik_studio
