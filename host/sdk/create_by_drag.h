#pragma once
/// Making an object with the mouse: a button is pressed in a view, the mouse drawn, and the button released.

#include "host/sdk/line_view.h"

namespace tavrik_host {

/// One object that is being made. What a message means is up to the class's own callback; this sees to the object, its node and
/// where the node stands.
class CreateByDrag {
 public:
    enum class State {
        Ready,      // nothing is in the scene yet
        Dragging,   // a node is, and follows the mouse
        Made,       // the node stays
        Cancelled,  // it is gone
    };

    /// @param desc  of a class that can be made so; with another one the state is Cancelled at once
    explicit CreateByDrag(ClassDesc& desc);
    /// A node that is not made by now is deleted.
    ~CreateByDrag();
    CreateByDrag(const CreateByDrag&) = delete;
    CreateByDrag& operator=(const CreateByDrag&) = delete;

    // The mouse, in pixels of a view. While it draws an object, other views than that in which it began are not looked at.
    /// Before the button is pressed the view's preview of a snapped point follows; afterwards the object does.
    State Move(LineView& view, IPoint2 m, int flags = 0);
    /// Puts a new object on a new node, selects it and opens its pages.
    State Press(LineView& view, IPoint2 m, int flags = 0);
    State Release(LineView& view, IPoint2 m, int flags = 0);
    /// The right button, or Esc.
    State Cancel();

    State Now() const { return state_; }
    /// Null where there is none, or where somebody has deleted it.
    INode* Node() const;

 private:
    State Send(LineView& view, int msg, IPoint2 m, int flags);
    State Take(int answer, LineView& view, int msg);
    void PlaceNode(INode& node);
    State End(State state);

    State state_ = State::Ready;
    Object* object_ = nullptr;  // until a node has it
    CreateMouseCallBack* callback_ = nullptr;
    HWND window_ = nullptr;  // of the view where the drag began
    Matrix3 plane_{TRUE};    // of that view
    Matrix3 place_{TRUE};    // of the node in that plane
    ULONG handle_ = 0;       // of the node; 0: none yet
    int point_ = 0;          // how many clicks there were
};

}  // namespace tavrik_host
