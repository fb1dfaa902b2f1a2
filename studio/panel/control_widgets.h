#pragma once
/// Controls of a page as widgets. Each knows how to show what its control shows now; what a user does with it goes to the page.

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

#include "host/sdk/panel_controls.h"

namespace tavrik_studio {

/// What a user has done: what an undo entry calls it, a name that joins several of a kind in a row (empty: each is its own),
/// and the deed, which answers whether it was possible.
using DoIt = std::function<void(const QString& what, const QString& same, const std::function<bool()>& deed)>;

/// One control on a page.
class ControlWidget {
 public:
    virtual ~ControlWidget() = default;
    /// Of the page it stands on. Owned by the page.
    QWidget* label = nullptr;   // null: it brings its own text
    QWidget* widget = nullptr;  // null: nothing to show
    virtual void Show(const tavrik_host::PanelControl& control) = 0;
};

/// @return null for a control that isn't shown in the panel
std::unique_ptr<ControlWidget> MakeControlWidget(tavrik_host::PanelWindow& page, const tavrik_host::PanelControl& control,
                                                 const DoIt& doIt, QWidget* parent);

}  // namespace tavrik_studio
