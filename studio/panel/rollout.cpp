#include "studio/panel/rollout.h"

#include <QVBoxLayout>

namespace tavrik_studio {

Rollout::Rollout(const QString& title, QWidget* content, QWidget* parent)
    : QWidget(parent), header_(new QToolButton(this)), content_(content) {
    header_->setText(title);
    header_->setCheckable(true);
    header_->setChecked(true);
    header_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    header_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QFont font = header_->font();
    font.setBold(true);
    header_->setFont(font);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header_);
    layout->addWidget(content_);
    connect(header_, &QToolButton::toggled, this, [this](bool open) {
        SetOpen(open);
        emit Toggled(open);
    });
    SetOpen(true);
}

void Rollout::SetOpen(bool open) {
    header_->setChecked(open);
    header_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
    content_->setVisible(open);
}

}  // namespace tavrik_studio
