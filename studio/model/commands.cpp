#include "studio/model/commands.h"

#include <cassert>

namespace tavrik_studio {

QAction& Commands::Add(const QString& name, const QString& text, const QKeySequence& keys, std::function<void()> run,
                       std::function<bool()> isPossible) {
    assert(Find(name) == nullptr);
    auto* const action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
    actions_.push_back(action);
    byName_[name] = action;
    if (isPossible) possible_[action] = std::move(isPossible);
    return *action;
}

QAction* Commands::Find(const QString& name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

bool Commands::Run(const QString& name) {
    Refresh();
    QAction* const action = Find(name);
    if (action == nullptr || !action->isEnabled()) return false;
    action->trigger();
    return true;
}

void Commands::Refresh() {
    for (const auto& [action, isPossible] : possible_) action->setEnabled(isPossible());
}

}  // namespace tavrik_studio
