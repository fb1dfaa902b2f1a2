#pragma once
/// A list of nodes to choose from. Nodes are remembered by handle.

#include <QComboBox>
#include <QString>
#include <vector>

#include "host/scene_file.h"
#include "host/sdk/max.h"

namespace tavrik_studio {

class NodeBox final : public QComboBox {
    Q_OBJECT
 public:
    using QComboBox::QComboBox;
    /// @param none    text of an entry for no node; null: there is none
    /// @param chosen  null: the entry for none, or the first
    void Fill(const std::vector<INode*>& nodes, INode* chosen, const QString& none = {});
    /// Null for none, or for a node that is gone.
    INode* Node() const;
};

/// The frames that the timeline has whole.
struct FrameSpan {
    int first = 0, last = 0;
};
FrameSpan TimelineFrames();
/// Cameras of the scene's file that can be looked through, by name.
std::vector<QString> CameraNames(const tavrik_host::SceneDocument& document);

}  // namespace tavrik_studio
