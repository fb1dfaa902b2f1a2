#include "host/sdk/create_by_drag.h"

#include "host/sdk/panels.h"

namespace tavrik_host {

CreateByDrag::CreateByDrag(ClassDesc& desc) {
    // An object is there from the start, since it is the one that says what a mouse does. What no node takes goes again.
    const SClass_ID kind = desc.SuperClassID();
    if (kind != HELPER_CLASS_ID && kind != GEOMOBJECT_CLASS_ID && kind != SHAPE_CLASS_ID) {
        state_ = State::Cancelled;
        return;
    }
    object_ = static_cast<Object*>(desc.Create(FALSE));
    if (object_ != nullptr) callback_ = object_->GetCreateMouseCallBack();
    if (callback_ == nullptr) End(State::Cancelled);
}

CreateByDrag::~CreateByDrag() { Cancel(); }

INode* CreateByDrag::Node() const { return handle_ == 0 ? nullptr : GetCOREInterface()->GetINodeByHandle(handle_); }

CreateByDrag::State CreateByDrag::End(State state) {
    state_ = state;
    callback_ = nullptr;
    if (object_ != nullptr) object_->MaybeAutoDelete();
    object_ = nullptr;
    if (state == State::Cancelled) {
        if (INode* const node = Node()) GetCOREInterface()->DeleteNode(node);
        handle_ = 0;
    }
    return state_;
}

CreateByDrag::State CreateByDrag::Cancel() {
    if (state_ != State::Ready && state_ != State::Dragging) return state_;
    return End(State::Cancelled);
}

void CreateByDrag::PlaceNode(INode& node) {
    Matrix3 world = place_ * plane_;
    node.SetNodeTM(GetCOREInterface()->GetTime(), world);
}

CreateByDrag::State CreateByDrag::Send(LineView& view, int msg, IPoint2 m, int flags) {
    return Take(callback_->proc(&view, msg, point_, flags, m, place_), view, msg);
}

CreateByDrag::State CreateByDrag::Take(int answer, LineView& view, int msg) {
    if (answer == CREATE_ABORT) return End(State::Cancelled);
    Interface* const host = GetCOREInterface();
    if (handle_ == 0 && msg == MOUSE_POINT) {
        plane_ = view.Plane();
        window_ = view.GetHWnd();
        INode* const node = host->CreateObjectNode(object_);
        object_ = nullptr;  // the node's now
        handle_ = node->GetHandle();
        PlaceNode(*node);
        OpenPanel(*node);
        state_ = State::Dragging;
    } else if (INode* const node = Node()) {
        PlaceNode(*node);
    }
    host->RedrawViews(host->GetTime());
    if (answer == CREATE_STOP) return End(State::Made);
    if (msg == MOUSE_POINT) ++point_;
    return state_;
}

CreateByDrag::State CreateByDrag::Move(LineView& view, IPoint2 m, int flags) {
    if (state_ == State::Ready) {
        // It may only be looked at: no place is given to anything yet.
        if (callback_->proc(&view, MOUSE_FREEMOVE, 0, flags, m, place_) == CREATE_ABORT) End(State::Cancelled);
        return state_;
    }
    if (state_ != State::Dragging || view.GetHWnd() != window_) return state_;
    if (Node() == nullptr) return End(State::Cancelled);
    return Send(view, MOUSE_MOVE, m, flags);
}

CreateByDrag::State CreateByDrag::Press(LineView& view, IPoint2 m, int flags) {
    if (state_ != State::Ready) return state_;
    return Send(view, MOUSE_POINT, m, flags);
}

CreateByDrag::State CreateByDrag::Release(LineView& view, IPoint2 m, int flags) {
    if (state_ != State::Dragging || view.GetHWnd() != window_) return state_;
    if (Node() == nullptr) return End(State::Cancelled);
    return Send(view, MOUSE_POINT, m, flags);
}

}  // namespace tavrik_host
