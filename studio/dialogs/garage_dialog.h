#pragma once
/// "Garage": scenes with one of everything, to open or to take a vehicle from.

#include <QDialog>
#include <QListWidget>
#include <functional>

#include "host/garage.h"
#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/scene_choices.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

class GarageDialog final : public QDialog {
    Q_OBJECT
 public:
    /// @param mayReplace  asked before the scene is replaced, so that the user can save it; null: nobody minds
    GarageDialog(Editor& editor, std::function<bool()> mayReplace, QWidget* parent = nullptr);

    QListWidget& List() { return *list_; }
    NodeBox& Ground() { return *ground_; }
    QPushButton& OpenButton() { return *open_; }
    QPushButton& PutButton() { return *put_; }
    const MessageLine& Message() const { return *message_; }

 private:
    const tavrik_host::GarageScene* Chosen() const;
    void Describe();
    void Open();
    void Put();

    Editor& editor_;
    std::function<bool()> mayReplace_;
    QListWidget* list_;
    NodeBox* ground_;
    QPushButton *open_, *put_;
    MessageLine* message_;
};

}  // namespace tavrik_studio
