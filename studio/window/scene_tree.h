#pragma once
/// The scene's nodes, one below the other.

#include <QTimer>
#include <QTreeWidget>
#include <map>

#include "studio/model/editor.h"

namespace tavrik_studio {

/// A click selects, or is what a pick mode waits for. Names are edited in place.
class SceneTree final : public QTreeWidget {
    Q_OBJECT
 public:
    explicit SceneTree(Editor& editor, QWidget* parent = nullptr);

    void Refresh();
    QTreeWidgetItem* ItemOf(const INode& node) const;

 protected:
    void mousePressEvent(QMouseEvent* event) override;

 private:
    void TakeSelection();
    void ShowSelection();
    void Rename(QTreeWidgetItem* item);
    INode* NodeOf(const QTreeWidgetItem* item) const;

    Editor& editor_;
    QTimer soon_;
    std::map<ULONG, QTreeWidgetItem*> items_;
    bool isBusy_ = false;  // with showing: what changes now isn't a user's doing
};

}  // namespace tavrik_studio
