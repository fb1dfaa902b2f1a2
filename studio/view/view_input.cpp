// What keys and mouse do in a view.

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

#include "host/sdk/picking.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "studio/view/gestures.h"
#include "studio/view/view_commands.h"
#include "studio/view/view_overlay.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio {
namespace {

using tavrik_host::CreateByDrag;
using tavrik_host::Pixel;
using tavrik_host::ViewState;

bool IsPicking() { return GetCOREInterface()->GetCurPickMode() != nullptr; }

/// A flat view keeps its side, unless somebody asks for the turn itself.
LookAbout MiddleButton(Qt::KeyboardModifiers keys, bool isPerspective) {
    if ((keys & Qt::AltModifier) != 0) return LookAbout::Orbit;
    if ((keys & Qt::ControlModifier) != 0) return LookAbout::Zoom;
    return (keys & Qt::ShiftModifier) != 0 || !isPerspective ? LookAbout::Pan : LookAbout::Orbit;
}

bool IsNavigationKey(int key) {
    switch (key) {
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Plus:
        case Qt::Key_Equal:
        case Qt::Key_Minus:
            return true;
        default:
            return false;
    }
}

}  // namespace

bool ViewWidget::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        const bool hasEscape = IsPicking() || tool_ == ViewTool::Create;
        // While a button is held nothing else may happen to the scene.
        if (gesture_ != nullptr || IsNavigationKey(key->key()) || (key->key() == Qt::Key_Escape && hasEscape)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void ViewWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    ViewCommands::Of(editor_, commands_).SetActive(*this);
    overlay_->update();
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    ViewCommands::Of(editor_, commands_).SetActive(*this);
    const QPoint at = event->position().toPoint();
    const Qt::KeyboardModifiers keys = event->modifiers();
    if (gesture_ != nullptr) {
        if (event->button() == Qt::RightButton) EndGesture();
        return;
    }
    if (event->button() == Qt::MiddleButton) {
        gesture_ = MakeLookAbout(*this, MiddleButton(keys, state_.perspective), at);
    } else if (event->button() == Qt::RightButton) {
        if (!Escape()) emit MenuWanted(at);
    } else if (event->button() == Qt::LeftButton) {
        PressLeft(at, keys);
    }
}

void ViewWidget::PressLeft(const QPoint& at, Qt::KeyboardModifiers keys) {
    if (IsPicking()) return PickAt(at);
    if ((keys & Qt::AltModifier) != 0) {
        gesture_ = MakeLookAbout(*this, LookAbout::Orbit, at);
        return;
    }
    switch (tool_) {
        case ViewTool::Orbit:
            gesture_ = MakeLookAbout(*this, LookAbout::Orbit, at);
            return;
        case ViewTool::Pan:
            gesture_ = MakeLookAbout(*this, LookAbout::Pan, at);
            return;
        case ViewTool::Zoom:
            gesture_ = MakeLookAbout(*this, LookAbout::Zoom, at);
            return;
        case ViewTool::Create:
            gesture_ = MakeCreating(*this, createClass_, at);
            return;
        case ViewTool::Select:
        case ViewTool::Move:
        case ViewTool::Rotate:
            break;
    }
    if (const std::optional<Handles> handles = HandlesNow()) {
        const HandlePart part = HandleAt(*handles, lines_.Camera(), {float(at.x()), float(at.y())});
        if (part != HandlePart::None) {
            gesture_ = MakeHandling(*this, *handles, part, at);
            return;
        }
    }
    gesture_ = MakeSelecting(*this, at, (at - lastClick_).manhattanLength() <= 3);
    lastClick_ = at;
}

void ViewWidget::PickAt(const QPoint& at) {
    const IPoint2 m(at.x(), at.y());
    if (!CanClick(lines_, m)) {
        emit Said(NodeUnder(at) == nullptr ? tr("There is nothing to pick here.")
                                           : tr("This can't be picked for that button."));
        return;
    }
    Change change(editor_, tr("Pick"));
    ClickView(lines_, m);
    change.Keep();
    Hover(at);
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (gesture_ == nullptr) return Hover(at);
    gesture_->Move(at, event->modifiers());
    overlay_->update();
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (gesture_ == nullptr || event->buttons() != Qt::NoButton) return;
    // It may bring a whole new scene, and with it ask this view for things.
    const std::unique_ptr<Gesture> gesture = std::move(gesture_);
    gesture->Release(event->position().toPoint(), event->modifiers());
    ShowHint({});
    Hover(event->position().toPoint());
    overlay_->update();
}

void ViewWidget::EndGesture() {
    if (gesture_ == nullptr) return;
    const std::unique_ptr<Gesture> gesture = std::move(gesture_);
    gesture->Cancel();
    ShowHint({});
    overlay_->update();
}

void ViewWidget::Hover(const QPoint& at) {
    const IPoint2 m(at.x(), at.y());
    if (IsPicking()) {
        setCursor(CanClick(lines_, m) ? Qt::PointingHandCursor : Qt::ForbiddenCursor);
        return;
    }
    if (cursor().shape() == Qt::PointingHandCursor || cursor().shape() == Qt::ForbiddenCursor) {
        setCursor(tool_ == ViewTool::Create ? Qt::CrossCursor : Qt::ArrowCursor);
    }
    if (preview_ != nullptr) {
        preview_->Move(lines_, m);
        overlay_->update();
    }
    const std::optional<Handles> handles = HandlesNow();
    const HandlePart part = handles ? HandleAt(*handles, lines_.Camera(), {float(at.x()), float(at.y())}) : HandlePart::None;
    if (part == hovered_) return;
    hovered_ = part;
    overlay_->update();
}

void ViewWidget::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    hovered_ = HandlePart::None;
    overlay_->update();
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    const float notches = float(event->angleDelta().y()) / 120.0f;
    if (notches == 0.0f) return;
    const QPointF at = event->position();
    // Who is followed stays in the middle.
    const Pixel mouse =
        Followed() != nullptr ? Pixel{float(width() / 2), float(height() / 2)} : Pixel{float(at.x()), float(at.y())};
    Navigate(Zoomed(state_, std::pow(1.15f, notches), mouse), false);
    event->accept();
}

bool ViewWidget::Escape() {
    if (gesture_ != nullptr) {
        EndGesture();
    } else if (IsPicking()) {
        tavrik_host::RightClickView();
        GetCOREInterface()->ClearPickMode();
    } else if (tool_ == ViewTool::Create) {
        SetTool(ViewTool::Select);
    } else {
        return false;
    }
    return true;
}

bool ViewWidget::NavigateByKey(int key, bool isMoved) {
    constexpr float kTurnPixels = 12.5f, kMovePixels = 40.0f, kFactor = 1.2f;
    const Pixel middle{float(width() / 2), float(height() / 2)};
    if (key == Qt::Key_Plus || key == Qt::Key_Equal) {
        Navigate(Zoomed(state_, kFactor, middle), false);
        return true;
    }
    if (key == Qt::Key_Minus) {
        Navigate(Zoomed(state_, 1.0f / kFactor, middle), false);
        return true;
    }
    const float right = key == Qt::Key_Right ? 1.0f : key == Qt::Key_Left ? -1.0f : 0.0f;
    const float down = key == Qt::Key_Down ? 1.0f : key == Qt::Key_Up ? -1.0f : 0.0f;
    if (right == 0.0f && down == 0.0f) return false;
    // The eye goes where the arrow points, so the scene goes the other way. A flat view keeps its side.
    if (isMoved || !state_.perspective) {
        Navigate(Panned(state_, -right * kMovePixels, -down * kMovePixels), false);
    } else {
        Navigate(Orbited(state_, -right * kTurnPixels, -down * kTurnPixels), true);
    }
    return true;
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
    if (event->key() == Qt::Key_Escape && Escape()) return;
    if (gesture_ == nullptr && isPlain && NavigateByKey(event->key(), (event->modifiers() & Qt::ShiftModifier) != 0)) return;
    if (gesture_ != nullptr) return;
    QWidget::keyPressEvent(event);
}

}  // namespace tavrik_studio
