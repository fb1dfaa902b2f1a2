#include "studio/window/view_area.h"

namespace tavrik_studio {

ViewArea::ViewArea(Editor& editor, Commands& commands, QWidget* parent)
    : QWidget(parent), editor_(editor), commands_(commands), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setSpacing(2);
    views_[0] = Make();
    grid_->addWidget(views_[0], 0, 0);
    QAction& four = commands.Add("view.four", tr("F&our Views"), QKeySequence("Ctrl+4"), [this] { SetFour(!four_); });
    four.setCheckable(true);
}

void ViewArea::SetFour(bool four) {
    four_ = four;
    commands_.Find("view.four")->setChecked(four);
    if (four && views_[1] == nullptr) {
        constexpr tavrik_host::ViewSide kSides[] = {tavrik_host::ViewSide::Top, tavrik_host::ViewSide::Front,
                                                    tavrik_host::ViewSide::Left};
        for (int i = 1; i < 4; ++i) {
            views_[std::size_t(i)] = Make();
            views_[std::size_t(i)]->SetSide(kSides[i - 1]);
            grid_->addWidget(views_[std::size_t(i)], i / 2, i % 2);
        }
    }
    for (std::size_t i = 1; i < 4; ++i) {
        if (views_[i] == nullptr) continue;
        views_[i]->setVisible(four);
        if (four) views_[i]->FrameSelection();
    }
}

std::vector<ViewWidget*> ViewArea::All() const {
    std::vector<ViewWidget*> made;
    for (ViewWidget* const view : views_) {
        if (view != nullptr) made.push_back(view);
    }
    return made;
}

ViewWidget* ViewArea::Make() {
    auto* const view = new ViewWidget(editor_, commands_, this);
    connect(view, &ViewWidget::Said, this, &ViewArea::Said);
    connect(view, &ViewWidget::Drawn, this, &ViewArea::Drawn);
    connect(view, &ViewWidget::MenuWanted, this, [this, view](const QPoint& at) { emit MenuWanted(view->mapToGlobal(at)); });
    return view;
}

}  // namespace tavrik_studio
