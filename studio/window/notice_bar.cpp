#include "studio/window/notice_bar.h"

#include <QHBoxLayout>
#include <QStyle>

namespace tavrik_studio {

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent), text_(new QLabel(this)), action_(new QPushButton(this)), close_(new QToolButton(this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    text_->setForegroundRole(QPalette::ToolTipText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* const icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(16));
    close_->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close_->setAutoRaise(true);
    close_->setToolTip(tr("Dismiss"));
    close_->setAccessibleName(tr("Dismiss"));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(8, 2, 4, 2);
    row->addWidget(icon);
    row->addWidget(text_, 1);
    row->addWidget(action_);
    row->addWidget(close_);
    connect(close_, &QToolButton::clicked, this, &NoticeBar::Clear);
    connect(action_, &QPushButton::clicked, this, [this] {
        // What runs may have something to say itself.
        const std::function<void()> run = std::move(run_);
        Clear();
        if (run) run();
    });
    hide();
}

void NoticeBar::Say(const QString& sentence, const QString& action, std::function<void()> run) {
    if (sentence.isEmpty()) return;
    text_->setText(sentence);
    action_->setText(action);
    action_->setVisible(!action.isEmpty());
    run_ = std::move(run);
    show();
}

void NoticeBar::Clear() {
    run_ = nullptr;
    hide();
}

}  // namespace tavrik_studio
