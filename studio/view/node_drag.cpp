#include "studio/view/node_drag.h"

#include <QStringList>

#include "host/sdk/standin.h"

namespace tavrik_studio {
namespace {

bool HangsUnderSelected(INode& node) {
    for (INode* parent = node.GetParentNode(); parent != nullptr; parent = parent->GetParentNode()) {
        if (parent->Selected() != 0) return true;
    }
    return false;
}

/// Whether a node stands where it was put, but for rounding.
bool IsAt(const Matrix3& place, const Matrix3& wanted) {
    const float reach = 1.0f + Length(wanted.GetTrans());
    if (!(Length(place.GetTrans() - wanted.GetTrans()) <= 1e-4f * reach)) return false;
    for (int i = 0; i < 3; ++i) {
        if (!(Length(place.GetRow(i) - wanted.GetRow(i)) <= 1e-3f * (1.0f + Length(wanted.GetRow(i))))) return false;
    }
    return true;
}

}  // namespace

std::vector<INode*> HeldNodes() {
    std::vector<INode*> nodes;
    for (INode* const node : tavrik_host::AllNodes()) {
        if (node->Selected() != 0 && !HangsUnderSelected(*node)) nodes.push_back(node);
    }
    return nodes;
}

bool MiddleOfSelection(TimeValue t, Point3& middle) {
    const std::vector<INode*> nodes = HeldNodes();
    if (nodes.empty()) return false;
    Point3 sum(0, 0, 0);
    for (INode* const node : nodes) sum += node->GetNodeTM(t).GetTrans();
    middle = sum / float(nodes.size());
    return true;
}

NodeDrag::NodeDrag(Editor& editor, const QString& what) : editor_(editor) {
    for (INode* const node : HeldNodes()) held_.push_back({node->GetHandle(), node->GetNodeTM(editor.Time())});
    change_ = std::make_unique<Change>(editor, what);
}

NodeDrag::~NodeDrag() = default;

template <typename Place>
void NodeDrag::Set(const Place& place) {
    QStringList stuck;
    hasFollowers_ = false;
    for (const Held& held : held_) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(held.node);
        if (node == nullptr) continue;
        const Matrix3 wanted = place(held.place);
        Matrix3 given = wanted;
        node->SetNodeTM(editor_.Time(), given);
        if (IsAt(node->GetNodeTM(editor_.Time()), wanted)) {
            hasFollowers_ = true;
        } else {
            stuck.append(QString::fromWCharArray(node->GetName()));
        }
    }
    stuck_ = stuck.join(", ");
    editor_.Touch();
}

void NodeDrag::MoveBy(const Point3& way) {
    Set([&way](const Matrix3& place) {
        Matrix3 moved = place;
        moved.SetTrans(place.GetTrans() + way);
        return moved;
    });
}

void NodeDrag::TurnBy(const HandleTurn& turn, const Point3& centre) {
    Set([&](const Matrix3& place) { return Turned(place, turn, centre); });
}

void NodeDrag::Keep() { change_->Keep(); }

}  // namespace tavrik_studio
