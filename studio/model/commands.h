#pragma once
/// What a user can do, by name: one list behind menus, keys, buttons and tests.

#include <QAction>
#include <QKeySequence>
#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <vector>

namespace tavrik_studio {

class Commands final : public QObject {
    Q_OBJECT
 public:
    using QObject::QObject;

    /// @param name     such as "edit.undo"; not taken yet (asserted)
    /// @param text     as a menu shows it
    /// @param isPossible  asked by `Refresh`; null: always
    QAction& Add(const QString& name, const QString& text, const QKeySequence& keys, std::function<void()> run,
                 std::function<bool()> isPossible = {});

    /// @return null for an unknown one
    QAction* Find(const QString& name) const;
    /// Runs a command as its menu entry does. @return false where there is none or it isn't possible now
    bool Run(const QString& name);
    /// In the order in which they were added.
    const std::vector<QAction*>& All() const { return actions_; }
    /// Greys what isn't possible now.
    void Refresh();

 private:
    std::vector<QAction*> actions_;
    std::map<QString, QAction*> byName_;
    std::map<QAction*, std::function<bool()>> possible_;
};

}  // namespace tavrik_studio
