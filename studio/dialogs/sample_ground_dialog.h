#pragma once
/// "Sample Ground": a ground made by arithmetic.

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QSpinBox>

#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {

class SampleGroundDialog final : public QDialog {
    Q_OBJECT
 public:
    explicit SampleGroundDialog(Editor& editor, QWidget* parent = nullptr);

    QComboBox& Kind() { return *kind_; }
    QDoubleSpinBox& Size() { return *size_; }
    QSpinBox& Triangles() { return *triangles_; }
    QSpinBox& Seed() { return *seed_; }
    const MessageLine& Message() const { return *message_; }
    QPushButton& OkButton() { return *buttons_->button(QDialogButtonBox::Ok); }

    void accept() override;

 private:
    void Describe();

    Editor& editor_;
    QComboBox* kind_;
    QDoubleSpinBox* size_;
    QSpinBox *triangles_, *seed_;
    MessageLine* message_;
    QDialogButtonBox* buttons_;
};

}  // namespace tavrik_studio
