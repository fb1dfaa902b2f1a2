#pragma once
/// One view, or four at once.

#include <QGridLayout>
#include <QWidget>
#include <array>

#include "studio/model/commands.h"
#include "studio/model/editor.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio {

/// Perspective alone, or with top, front and left beside it. Registers "view.four".
class ViewArea final : public QWidget {
    Q_OBJECT
 public:
    ViewArea(Editor& editor, Commands& commands, QWidget* parent = nullptr);

    bool ShowsFour() const { return four_; }
    void SetFour(bool four);
    ViewWidget& Main() { return *views_[0]; }
    /// Those that exist: others are made when they are first shown.
    std::vector<ViewWidget*> All() const;

 signals:
    void Said(const QString& sentence);
    /// A view took so long for a picture.
    void Drawn(qint64 nanoseconds);
    void MenuWanted(const QPoint& globalAt);

 private:
    ViewWidget* Make();

    Editor& editor_;
    Commands& commands_;
    QGridLayout* grid_;
    std::array<ViewWidget*, 4> views_{};
    bool four_ = false;
};

}  // namespace tavrik_studio
