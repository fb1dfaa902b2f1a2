#include "studio/panel/panel_view.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QScrollBar>

#include "host/wide_text.h"
#include "studio/panel/rollout.h"

namespace tavrik_studio {
namespace {

using tavrik_host::ControlKind;
using tavrik_host::PanelControl;
using tavrik_host::PanelPage;

/// What of pages can't change without new widgets.
std::string ShapeOf(const std::vector<PanelPage>& pages) {
    std::string shape;
    for (const PanelPage& page : pages) {
        shape += std::to_string(reinterpret_cast<std::uintptr_t>(page.window)) + tavrik_host::ToUtf8(page.title) + '\n';
        for (const PanelControl& control : page.controls) {
            shape += std::to_string(control.id) + ' ' + std::to_string(int(control.kind)) + ' ' +
                     std::to_string(control.buttons.size()) + tavrik_host::ToUtf8(control.label + control.group) + '\n';
        }
    }
    return shape;
}

/// Puts controls below each other, labels to the left.
class PageLayout {
 public:
    explicit PageLayout(QWidget* parent) : grid_(new QGridLayout(parent)) {
        grid_->setContentsMargins(6, 4, 6, 6);
        grid_->setHorizontalSpacing(6);
        grid_->setVerticalSpacing(3);
        grid_->setColumnStretch(0, 1);
        grid_->setColumnStretch(1, 1);
    }
    void Add(const ControlWidget& control) {
        if (control.widget == nullptr) return;
        if (control.label == nullptr) {
            grid_->addWidget(control.widget, row_++, 0, 1, 2);
            return;
        }
        grid_->addWidget(control.label, row_, 0, Qt::AlignRight | Qt::AlignVCenter);
        grid_->addWidget(control.widget, row_++, 1);
    }
    void Add(QWidget* box) { grid_->addWidget(box, row_++, 0, 1, 2); }

 private:
    QGridLayout* grid_;
    int row_ = 0;
};

}  // namespace

PanelView::PanelView(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), name_(new QLineEdit(this)), hint_(new QLabel(this)), scroll_(new QScrollArea(this)) {
    name_->setAccessibleName(tr("Name of the node"));
    name_->setPlaceholderText(tr("Nothing selected"));
    hint_->setWordWrap(true);
    hint_->setAlignment(Qt::AlignCenter);
    hint_->setContentsMargins(12, 24, 12, 24);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always there, so that pages keep their width when they fold.
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scroll_->setFrameShape(QFrame::NoFrame);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->addWidget(name_);
    column->addWidget(hint_);
    column->addWidget(scroll_, 1);
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    soon_.callOnTimeout(this, &PanelView::Refresh);
    const auto later = [this] {
        if (!soon_.isActive()) soon_.start();
    };
    tavrik_host::SetPanelListener(later);
    connect(&editor_, &Editor::SelectionChanged, this, later);
    connect(&editor_, &Editor::NodesChanged, this, later);
    // Pages of a scene that is gone are gone: nothing may reach them any more.
    connect(&editor_, &Editor::SceneReplaced, this, &PanelView::Refresh);
    connect(name_, &QLineEdit::editingFinished, this, &PanelView::Rename);
    Refresh();
}

PanelView::~PanelView() { tavrik_host::SetPanelListener(nullptr); }

void PanelView::Refresh() {
    const std::vector<PanelPage> pages = tavrik_host::ReadPanel();
    std::string shape = ShapeOf(pages);
    if (shape != shape_) {
        shape_ = std::move(shape);
        Rebuild(pages);
    } else {
        std::size_t i = 0;
        for (const PanelPage& page : pages) {
            for (const PanelControl& control : page.controls) {
                if (controls_[i].widget != nullptr) controls_[i].widget->Show(control);
                ++i;
            }
        }
    }
    ShowHead();
}

QWidget* PanelView::WidgetOf(const tavrik_host::PanelWindow& page, int control) const {
    for (const ShownControl& shown : controls_) {
        if (shown.page == &page && shown.id == control && shown.widget != nullptr) return shown.widget->widget;
    }
    return nullptr;
}

void PanelView::Rebuild(const std::vector<PanelPage>& pages) {
    const int scrolled = scroll_->verticalScrollBar()->value();
    controls_.clear();
    // A widget whose own signal led here must outlive it.
    if (QWidget* const old = scroll_->takeWidget()) old->deleteLater();
    auto* const all = new QWidget;
    auto* const column = new QVBoxLayout(all);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    for (const PanelPage& page : pages) {
        const QString title = QString::fromStdWString(page.title);
        auto* const rollout = new Rollout(title, MakePage(page), all);
        rollout->SetOpen(!folded_.value(title, false));
        connect(rollout, &Rollout::Toggled, this, [this, title](bool open) { folded_[title] = !open; });
        column->addWidget(rollout);
    }
    column->addStretch(1);
    scroll_->setWidget(all);
    all->show();
    // Nothing scrolls sideways, so the panel never gets narrower than its pages.
    column->activate();
    scroll_->setMinimumWidth(all->minimumSizeHint().width() + scroll_->verticalScrollBar()->sizeHint().width());
    scroll_->verticalScrollBar()->setValue(scrolled);
}

QWidget* PanelView::MakePage(const PanelPage& page) {
    auto* const content = new QWidget;
    PageLayout layout(content);
    std::unique_ptr<PageLayout> box;
    std::wstring group;
    const DoIt doIt = [this](const QString& what, const QString& same, const std::function<bool()>& deed) {
        Do(what, same, deed);
    };
    QWidget* parent = content;
    for (const PanelControl& control : page.controls) {
        if (control.group != group) {
            group = control.group;
            box.reset();
            parent = content;
            if (!group.empty()) {
                auto* const frame = new QGroupBox(QString::fromStdWString(group), content);
                layout.Add(frame);
                box = std::make_unique<PageLayout>(frame);
                parent = frame;
            }
        }
        auto widget = MakeControlWidget(*page.window, control, doIt, parent);
        if (widget != nullptr) (box != nullptr ? *box : layout).Add(*widget);
        controls_.push_back({page.window, control.id, std::move(widget)});
    }
    return content;
}

void PanelView::Do(const QString& what, const QString& same, const std::function<bool()>& deed) {
    {
        Change change(editor_, what, same);
        const bool isDone = deed();
        if (isDone && !same.isEmpty()) {
            change.Keep();
        } else {
            change.KeepIfChanged();
        }
    }
    editor_.TouchNodes();
    if (!soon_.isActive()) soon_.start();
}

void PanelView::ShowHead() {
    INode* const node = editor_.Current();
    const std::size_t selected = editor_.Selection().size();
    if (!name_->hasFocus() || !name_->isModified()) {
        name_->setText(node != nullptr ? QString::fromStdWString(node->GetName())
                       : selected > 1  ? tr("%n nodes selected", nullptr, int(selected))
                                       : QString());
    }
    name_->setEnabled(node != nullptr);
    const bool isEmpty = controls_.empty();
    hint_->setVisible(isEmpty);
    scroll_->setVisible(!isEmpty);
    if (!isEmpty) return;
    hint_->setText(node != nullptr ? tr("This node has no parameters.")
                   : selected > 1  ? tr("Select one node alone to see its parameters.")
                                   : tr("Select a node in a view or in the tree to see its parameters."));
}

void PanelView::Rename() {
    INode* const node = editor_.Current();
    const std::wstring name = name_->text().trimmed().toStdWString();
    if (node == nullptr || !name_->isModified() || name.empty() || name == node->GetName()) return;
    name_->setModified(false);
    Change change(editor_, tr("Rename"));
    node->SetName(name.c_str());
    change.Keep();
    editor_.TouchNodes();
}

}  // namespace tavrik_studio
