#include "studio/dialogs/scene_choices.h"

#include <algorithm>

#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

/// The quotient, rounded down whatever the signs.
int FloorDivide(int a, int b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); }

}  // namespace

void NodeBox::Fill(const std::vector<INode*>& nodes, INode* chosen, const QString& none) {
    clear();
    if (!none.isNull()) addItem(none, qulonglong(0));
    for (INode* const node : nodes) addItem(NameOf(*node), qulonglong(node->GetHandle()));
    const int entry = chosen != nullptr ? findData(qulonglong(chosen->GetHandle())) : 0;
    setCurrentIndex(count() > 0 ? std::max(0, entry) : -1);
}

INode* NodeBox::Node() const {
    const auto handle = ULONG(currentData().toULongLong());
    return handle != 0 ? GetCOREInterface()->GetINodeByHandle(handle) : nullptr;
}

FrameSpan TimelineFrames() {
    const Interval range = GetCOREInterface()->GetAnimRange();
    const int step = GetTicksPerFrame();
    FrameSpan span{-FloorDivide(-range.Start(), step), FloorDivide(range.End(), step)};
    span.last = std::max(span.first, span.last);
    return span;
}

std::vector<QString> CameraNames(const tavrik_host::SceneDocument& document) {
    std::vector<QString> names;
    for (const auto& [handle, parts] : document.nodeParts) {
        INode* const node = parts.contains("camera") ? GetCOREInterface()->GetINodeByHandle(handle) : nullptr;
        if (node == nullptr) continue;
        const QString name = NameOf(*node);
        if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names;
}

}  // namespace tavrik_studio
