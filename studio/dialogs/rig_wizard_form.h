#pragma once
/// What can be told to the wizard for cars.

#include <QComboBox>
#include <QLineEdit>

#include "host/file_mesh.h"
#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/rig_wizard.h"
#include "studio/dialogs/scene_choices.h"

namespace tavrik_studio {

class RigWizardForm final : public QWidget {
    Q_OBJECT
 public:
    explicit RigWizardForm(Editor& editor, QWidget* parent = nullptr);

    tavrik::UpAxis Up() const { return tavrik::UpAxis(up->currentData().toInt()); }
    /// @param problem  on false: one sentence
    bool Wishes(RigWishes& wishes, QString& problem) const;

    FileField *model, *places;
    QComboBox *up, *forward, *bike;
    QLineEdit *name, *wheels, *steered, *driven;
    UnitBox* unit;
    OptionalNumber *mass, *frequency, *damping;
    NodeBox* ground;

 signals:
    /// The model has to be read again.
    void ModelChanged();
    /// Another plan is wished.
    void WishesChanged();

 private:
    QLineEdit* MakeLine(const QString& hint);
    void FillChoices();
    void Lay();
    void Connect();
};

}  // namespace tavrik_studio
