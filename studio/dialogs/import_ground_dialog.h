#pragma once
/// "Import Ground": somebody's mesh as a node to drive on.

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>

#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {

class ImportGroundDialog final : public QDialog {
    Q_OBJECT
 public:
    /// @param file  shown at once; empty: the user looks for one
    ImportGroundDialog(Editor& editor, const std::filesystem::path& file, QWidget* parent = nullptr);

    FileField& File() { return *file_; }
    UnitBox& Unit() { return *unit_; }
    QComboBox& UpAxis() { return *up_; }
    const MessageLine& Message() const { return *message_; }
    QPushButton& OkButton() { return *buttons_->button(QDialogButtonBox::Ok); }

    /// Puts the ground into the scene.
    void accept() override;

 private:
    void Read();

    Editor& editor_;
    FileField* file_;
    UnitBox* unit_;
    QComboBox* up_;
    MessageLine* message_;
    QDialogButtonBox* buttons_;
    tavrik::TriangleMesh mesh_;
};

}  // namespace tavrik_studio
