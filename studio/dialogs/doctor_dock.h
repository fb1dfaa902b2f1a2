#pragma once
/// The doctor beside the view: what will go wrong, and buttons that mend it.

#include <QDockWidget>
#include <QPushButton>
#include <QTableWidget>

#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/rig_doctor_model.h"

namespace tavrik_studio {

class DoctorDock final : public QDockWidget {
    Q_OBJECT
 public:
    explicit DoctorDock(Editor& editor, QWidget* parent = nullptr);

    /// Examines the scene anew.
    void LookAgain();

    const RigDoctor& Doctor() const { return doctor_; }
    QTableWidget& Table() { return *table_; }
    QPushButton& LookButton() { return *look_; }
    /// Null where a row has none.
    QPushButton* MendButton(int row) const;
    const MessageLine& Summary() const { return *summary_; }

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void Fill();
    void AddFinding(int row, const Ailment& ailment);
    void Mend(int row);
    void SelectCulprit(int row);
    void SetStale();
    void Clear();

    Editor& editor_;
    RigDoctor doctor_;
    QTableWidget* table_;
    QPushButton* look_;
    MessageLine* summary_;
    bool hasLooked_ = false, isStale_ = false;
    bool isBusy_ = false;  // the changes are our own
};

}  // namespace tavrik_studio
