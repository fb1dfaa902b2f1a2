#pragma once
/// The command panel: the open pages from top to bottom, kept as the plug-in keeps them.

#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>
#include <string>
#include <vector>

#include "studio/model/editor.h"
#include "studio/panel/control_widgets.h"

namespace tavrik_studio {

/// One to a process, as the host has one panel. Whatever a user does here can be undone.
class PanelView final : public QWidget {
    Q_OBJECT
 public:
    explicit PanelView(Editor& editor, QWidget* parent = nullptr);
    ~PanelView() override;

    /// Shows the pages as they are now. Happens by itself, once control is back with the event loop.
    void Refresh();
    /// The widget of a control of an open page, or null.
    QWidget* WidgetOf(const tavrik_host::PanelWindow& page, int control) const;
    QSize sizeHint() const override { return {320, 700}; }

 private:
    struct ShownControl {
        tavrik_host::PanelWindow* page;
        int id;
        std::unique_ptr<ControlWidget> widget;
    };
    void Rebuild(const std::vector<tavrik_host::PanelPage>& pages);
    QWidget* MakePage(const tavrik_host::PanelPage& page);
    void Do(const QString& what, const QString& same, const std::function<bool()>& deed);
    void ShowHead();
    void Rename();

    Editor& editor_;
    QLineEdit* name_;
    QLabel* hint_;
    QScrollArea* scroll_;
    QTimer soon_;
    std::vector<ShownControl> controls_;
    std::string shape_;           // which pages with which controls stand there
    QMap<QString, bool> folded_;  // by title
};

}  // namespace tavrik_studio
