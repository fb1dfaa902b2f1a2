#pragma once
/// What the mouse does in a view from a button's press to its release.

#include <QPoint>
#include <Qt>
#include <memory>

#include "rig/scene_node.h"
#include "studio/view/handles.h"

class ClassDesc;
class QPainter;

namespace tavrik_studio {

class ViewWidget;

class Gesture {
 public:
    virtual ~Gesture() = default;
    virtual void Move(const QPoint& at, Qt::KeyboardModifiers keys) = 0;
    virtual void Release(const QPoint& at, Qt::KeyboardModifiers keys) = 0;
    /// Takes everything back.
    virtual void Cancel() {}
    /// Whether pictures follow one another for as long as it goes on.
    virtual bool Moves() const { return true; }
    virtual void Paint(QPainter&) const {}
    virtual HandlePart Held() const { return HandlePart::None; }
};

enum class LookAbout { Orbit, Pan, Zoom };
std::unique_ptr<Gesture> MakeLookAbout(ViewWidget& view, LookAbout how, const QPoint& from);
/// A click selects a node, a drag all in a rectangle: drawn to the right, whatever lies in it as a whole; to the left, whatever
/// it touches. With Shift they are added to what is selected, with Ctrl taken out of it, or by a click in.
std::unique_ptr<Gesture> MakeSelecting(ViewWidget& view, const QPoint& from, bool isSameClick);
std::unique_ptr<Gesture> MakeHandling(ViewWidget& view, const Handles& handles, HandlePart part, const QPoint& from);
std::unique_ptr<Gesture> MakeCreating(ViewWidget& view, tavrik::ObjectClass objectClass, const QPoint& from);

/// The class as the host knows it. The plug-in must be loaded.
ClassDesc* DescOf(tavrik::ObjectClass objectClass);

}  // namespace tavrik_studio
