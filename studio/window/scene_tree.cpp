#include "studio/window/scene_tree.h"

#include <QMouseEvent>
#include <QSet>
#include <QSignalBlocker>

#include "host/rig_objects.h"
#include "host/sdk/picking.h"
#include "host/sdk/standin.h"
#include "host/sdk/triobj.h"

namespace tavrik_studio {
namespace {

constexpr int kHandleRole = Qt::UserRole;

QString KindOf(INode& node) {
    if (const tavrik::ClassIdentity* const ours = tavrik::FindClass(tavrik_host::ClassOf(node))) {
        return QString::fromUtf8(ours->className.data(), qsizetype(ours->className.size()));
    }
    Object* const object = node.GetObjectRef();
    if (object == nullptr) return {};
    MSTR name;
    object->GetClassName(name);
    return QString::fromWCharArray(name.data());
}

}  // namespace

SceneTree::SceneTree(Editor& editor, QWidget* parent) : QTreeWidget(parent), editor_(editor) {
    setColumnCount(2);
    setHeaderLabels({tr("Node"), tr("Kind")});
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setUniformRowHeights(true);
    setAccessibleName(tr("Nodes of the scene"));
    setColumnWidth(0, 165);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    soon_.callOnTimeout(this, &SceneTree::Refresh);
    connect(&editor_, &Editor::NodesChanged, this, [this] { soon_.start(); });
    connect(&editor_, &Editor::SceneReplaced, this, &SceneTree::Refresh);
    connect(&editor_, &Editor::SelectionChanged, this, &SceneTree::ShowSelection);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &SceneTree::TakeSelection);
    connect(this, &QTreeWidget::itemChanged, this, &SceneTree::Rename);
    Refresh();
}

void SceneTree::Refresh() {
    QSet<qulonglong> folded;
    for (const auto& [handle, item] : items_) {
        if (item->childCount() > 0 && !item->isExpanded()) folded.insert(handle);
    }
    isBusy_ = true;
    clear();
    items_.clear();
    for (INode* const node : tavrik_host::AllNodes()) {
        auto* const item = new QTreeWidgetItem({QString::fromStdWString(node->GetName()), KindOf(*node)});
        item->setData(0, kHandleRole, qulonglong(node->GetHandle()));
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        const auto parent = items_.find(node->GetParentNode() != nullptr ? node->GetParentNode()->GetHandle() : 0);
        if (parent != items_.end()) {
            parent->second->addChild(item);
        } else {
            addTopLevelItem(item);
        }
        items_[node->GetHandle()] = item;
    }
    for (const auto& [handle, item] : items_) item->setExpanded(!folded.contains(handle));
    isBusy_ = false;
    ShowSelection();
}

QTreeWidgetItem* SceneTree::ItemOf(const INode& node) const {
    const auto found = items_.find(const_cast<INode&>(node).GetHandle());
    return found == items_.end() ? nullptr : found->second;
}

void SceneTree::mousePressEvent(QMouseEvent* event) {
    if (GetCOREInterface()->GetCurPickMode() == nullptr) return QTreeWidget::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) {
        INode* const node = NodeOf(itemAt(event->pos()));
        Change change(editor_, tr("Pick"));
        tavrik_host::ClickNode(node);
        change.KeepIfChanged();
    } else {
        tavrik_host::RightClickView();
    }
    editor_.Touch();
}

void SceneTree::TakeSelection() {
    if (isBusy_) return;
    std::vector<INode*> nodes;
    for (const QTreeWidgetItem* item : selectedItems()) {
        if (INode* const node = NodeOf(item)) nodes.push_back(node);
    }
    isBusy_ = true;
    editor_.Select(nodes);
    isBusy_ = false;
    editor_.Touch();
}

void SceneTree::ShowSelection() {
    if (isBusy_) return;
    isBusy_ = true;
    clearSelection();
    for (INode* const node : editor_.Selection()) {
        if (QTreeWidgetItem* const item = ItemOf(*node)) {
            item->setSelected(true);
            scrollToItem(item);
        }
    }
    isBusy_ = false;
}

void SceneTree::Rename(QTreeWidgetItem* item) {
    INode* const node = isBusy_ ? nullptr : NodeOf(item);
    if (node == nullptr) return;
    const std::wstring name = item->text(0).trimmed().toStdWString();
    if (!name.empty() && name != node->GetName()) {
        Change change(editor_, tr("Rename"));
        node->SetName(name.c_str());
        change.Keep();
    }
    editor_.TouchNodes();
}

INode* SceneTree::NodeOf(const QTreeWidgetItem* item) const {
    return item == nullptr ? nullptr : GetCOREInterface()->GetINodeByHandle(ULONG(item->data(0, kHandleRole).toULongLong()));
}

}  // namespace tavrik_studio
