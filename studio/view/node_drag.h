#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "studio/model/editor.h"
#include "studio/view/handles.h"

namespace tavrik_studio {

/// Nodes that a hand has hold of. They follow it at once; all of it is one change of the scene, which is taken back unless it
/// is kept.
class NodeDrag {
 public:
    /// @param what  as a menu names the change
    NodeDrag(Editor& editor, const QString& what);
    ~NodeDrag();
    NodeDrag(const NodeDrag&) = delete;
    NodeDrag& operator=(const NodeDrag&) = delete;

    // Each counts from where the nodes were.
    void MoveBy(const Point3& way);
    void TurnBy(const HandleTurn& turn, const Point3& centre);
    void Keep();

    /// Whether a node is where the hand is.
    bool HasFollowers() const { return hasFollowers_; }
    /// Names of nodes that didn't go where the hand is; empty if all did.
    const QString& Stuck() const { return stuck_; }

 private:
    struct Held {
        ULONG node;
        Matrix3 place;
    };
    template <typename Place>
    void Set(const Place& place);

    Editor& editor_;
    std::vector<Held> held_;
    std::unique_ptr<Change> change_;
    QString stuck_;
    bool hasFollowers_ = false;
};

/// What goes along with a hand: the selected nodes without those that hang under another one of them, each before its children.
std::vector<INode*> HeldNodes();
/// Between the origins of the selected nodes. @return false where none is selected
bool MiddleOfSelection(TimeValue t, Point3& middle);

}  // namespace tavrik_studio
