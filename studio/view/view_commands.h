#pragma once

#include <QObject>
#include <QPointer>
#include <vector>

#include "studio/model/commands.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

class ViewWidget;

/// The commands of views, one set for all of them. They work on the view that had the focus last.
class ViewCommands final : public QObject {
 public:
    /// The one that belongs to a list of commands; made with the first view.
    static ViewCommands& Of(Editor& editor, Commands& commands);

    /// Gives a view the keys, which work while it has the focus.
    void Adopt(ViewWidget& view);
    void SetActive(ViewWidget& view);
    ViewWidget* Active() const;
    /// Ticks what is switched on.
    void Refresh();

 private:
    ViewCommands(Editor& editor, Commands& commands);
    void AddSides();
    void AddLook();
    void AddTools();
    void AddCreations();
    QAction& Add(const char* name, const QString& text, const QString& keys, std::function<void(ViewWidget&)> run,
                 std::function<bool(ViewWidget&)> isOn = {}, std::function<bool()> isPossible = {});
    void FollowOrStop(ViewWidget& view) const;

    struct Switch {
        QAction* action;
        std::function<bool(ViewWidget&)> isOn;
    };
    Editor& editor_;
    Commands& commands_;
    std::vector<QAction*> actions_;
    std::vector<Switch> switches_;
    QPointer<ViewWidget> active_;
};

}  // namespace tavrik_studio
