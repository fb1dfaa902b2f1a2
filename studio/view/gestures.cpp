#include "studio/view/gestures.h"

#include <QCoreApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string>

#include "host/rig_objects.h"
#include "host/sdk/create_by_drag.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "rig/class_identities.h"
#include "studio/view/node_drag.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio {
namespace {

using tavrik_host::CreateByDrag;
using tavrik_host::Pixel;
using tavrik_host::ViewState;

constexpr int kClickPixels = 3;  // a mouse that moves no further than that has clicked

QString Text(const char* text) { return QCoreApplication::translate("tavrik_studio::ViewWidget", text); }

Pixel PixelOf(const QPoint& p) { return {float(p.x()), float(p.y())}; }
IPoint2 IntPixelOf(const QPoint& p) { return {p.x(), p.y()}; }
bool IsDrag(const QPoint& a, const QPoint& b) { return (a - b).manhattanLength() > kClickPixels; }

// ---------------------------------------------------------------------------------------------------------------- looking
// about

class LookingAbout final : public Gesture {
 public:
    LookingAbout(ViewWidget& view, LookAbout how, const QPoint& from)
        : view_(view), how_(how), from_(from), last_(from), before_(view.State()) {}

    void Move(const QPoint& at, Qt::KeyboardModifiers) override {
        const float right = float(at.x() - last_.x()), down = float(at.y() - last_.y());
        last_ = at;
        const ViewState& state = view_.State();
        switch (how_) {
            case LookAbout::Orbit:
                view_.Navigate(Orbited(state, right, down), true);
                break;
            case LookAbout::Pan:
                view_.Navigate(Panned(state, right, down), false);
                break;
            case LookAbout::Zoom:
                view_.Navigate(Zoomed(state, std::exp((right - down) * 0.006f), PixelOf(from_)), false);
                break;
        }
    }
    void Release(const QPoint&, Qt::KeyboardModifiers) override {}
    void Cancel() override { view_.Navigate(before_, false); }

 private:
    ViewWidget& view_;
    LookAbout how_;
    QPoint from_, last_;
    ViewState before_;
};

// --------------------------------------------------------------------------------------------------------------------
// selecting

class Selecting final : public Gesture {
 public:
    Selecting(ViewWidget& view, const QPoint& from, bool isSameClick) : view_(view), from_(from), isSameClick_(isSameClick) {}

    bool Moves() const override { return false; }
    void Move(const QPoint& at, Qt::KeyboardModifiers) override {
        at_ = at;
        isDragged_ = isDragged_ || IsDrag(from_, at);
    }
    void Release(const QPoint& at, Qt::KeyboardModifiers keys) override {
        Move(at, keys);
        isDragged_ ? SelectInside(keys) : SelectAt(keys);
    }
    void Paint(QPainter& painter) const override {
        if (!isDragged_) return;
        const QColor color = view_.palette().color(QPalette::Highlight);
        QColor fill = color;
        fill.setAlpha(48);
        painter.setBrush(fill);
        painter.setPen(QPen(color, 1.0, at_.x() < from_.x() ? Qt::DashLine : Qt::SolidLine));
        painter.drawRect(QRect(from_, at_).normalized());
    }

 private:
    void Apply(const std::vector<INode*>& nodes, Qt::KeyboardModifiers keys, bool toggles) {
        std::vector<INode*> selected;
        if ((keys & (Qt::ShiftModifier | Qt::ControlModifier)) != 0) selected = view_.TheEditor().Selection();
        for (INode* const node : nodes) {
            const auto found = std::ranges::find(selected, node);
            const bool isIn = found != selected.end();
            if (isIn && (keys & Qt::ControlModifier) != 0) {
                selected.erase(found);
            } else if (!isIn && ((keys & Qt::ControlModifier) == 0 || toggles)) {
                selected.push_back(node);
            }
        }
        view_.TheEditor().Select(selected);
    }
    void SelectAt(Qt::KeyboardModifiers keys) {
        INode* node = view_.NodeUnder(from_);
        if (isSameClick_ && keys == Qt::NoModifier) node = NextUnder(node);
        Apply(node == nullptr ? std::vector<INode*>{} : std::vector<INode*>{node}, keys, true);
    }
    /// A second click at a place takes what lies behind the first one's.
    INode* NextUnder(INode* node) {
        IPoint2 at = IntPixelOf(from_);
        std::vector<INode*> nodes =
            view_.Lines().HitScene(view_.TheEditor().Time(), HITTYPE_POINT, 0, &at,
                                   [this](INode& candidate) { return !view_.Shown().IsMesh(candidate); });
        const auto current = std::ranges::find(nodes, view_.TheEditor().Current());
        if (current == nodes.end() || nodes.size() < 2) return node;
        return current + 1 == nodes.end() ? nodes.front() : *(current + 1);
    }
    void SelectInside(Qt::KeyboardModifiers keys) {
        const bool crossing = at_.x() < from_.x();
        const IPoint2 a = IntPixelOf(from_), b = IntPixelOf(at_);
        Apply(NodesIn(view_.Lines(), view_.TheEditor().Time(), a, b, crossing), keys, false);
    }

    ViewWidget& view_;
    QPoint from_, at_;
    bool isSameClick_;
    bool isDragged_ = false;
};

// -------------------------------------------------------------------------------------------------------------- move and
// rotate

class Handling final : public Gesture {
 public:
    Handling(ViewWidget& view, const Handles& handles, HandlePart part, const QPoint& from)
        : view_(view), handles_(handles), part_(part), from_(from) {}

    HandlePart Held() const override { return part_; }
    void Move(const QPoint& at, Qt::KeyboardModifiers keys) override {
        if (drag_ == nullptr) {
            if (!IsDrag(from_, at)) return;
            const bool isMove = handles_.kind == HandleKind::Move;
            drag_ = std::make_unique<NodeDrag>(view_.TheEditor(), isMove ? Text("Move") : Text("Rotate"));
        }
        // Snapping is for as long as Ctrl is held, or, where it is on, for as long as it isn't.
        const bool isHeld = (keys & Qt::ControlModifier) != 0;
        const float width = view_.Snap() > 0.0f ? view_.Snap() : GridWidthFor(view_.State());
        const bool snaps = isHeld != (view_.Snap() > 0.0f);
        if (handles_.kind == HandleKind::Move) {
            MoveTo(at, snaps ? width : 0.0f);
        } else {
            TurnTo(at, snaps ? 0.08726646f : 0.0f);
        }
    }
    void Release(const QPoint& at, Qt::KeyboardModifiers keys) override {
        Move(at, keys);
        if (drag_ == nullptr) return;
        if (!drag_->Stuck().isEmpty()) {
            emit view_.Said(Text("%1 can't be moved by hand: a locked car stands where its recording says. Unlock it first.")
                                .arg(drag_->Stuck()));
        }
        if (drag_->HasFollowers()) drag_->Keep();
        drag_.reset();
    }
    void Cancel() override { drag_.reset(); }

 private:
    void MoveTo(const QPoint& at, float grid) {
        const Point3 way = DraggedBy(handles_, part_, view_.Lines().Camera(), PixelOf(from_), PixelOf(at), grid);
        drag_->MoveBy(way);
        view_.ShowHint(QString("X %1   Y %2   Z %3")
                           .arg(double(way.x), 0, 'f', 1)
                           .arg(double(way.y), 0, 'f', 1)
                           .arg(double(way.z), 0, 'f', 1));
    }
    void TurnTo(const QPoint& at, float step) {
        HandleTurn turn = TurnedBy(handles_, part_, view_.Lines().Camera(), PixelOf(from_), PixelOf(at), step);
        // Whole turns are kept: the angle is the one nearest to that of the pixel before.
        constexpr float kTurn = 6.2831853f;
        turn.angle += kTurn * std::round((angle_ - turn.angle) / kTurn);
        angle_ = turn.angle;
        drag_->TurnBy(turn, handles_.centre);
        view_.ShowHint(QString("%1\u00b0").arg(double(turn.angle) * 57.295779513, 0, 'f', 1));
    }

    ViewWidget& view_;
    Handles handles_;
    HandlePart part_;
    QPoint from_;
    float angle_ = 0.0f;
    std::unique_ptr<NodeDrag> drag_;
};

// ---------------------------------------------------------------------------------------------------------------------
// creating

class Creating final : public Gesture {
 public:
    Creating(ViewWidget& view, tavrik::ObjectClass objectClass, const QPoint& from)
        : view_(view), class_(objectClass), from_(from) {}

    void Move(const QPoint& at, Qt::KeyboardModifiers) override {
        // A press alone changes nothing, so that a stray click doesn't either.
        if (session_ == nullptr && (!IsDrag(from_, at) || !Begin())) return;
        session_->Move(view_.Lines(), IntPixelOf(at));
        view_.TheEditor().Touch();
    }
    void Release(const QPoint& at, Qt::KeyboardModifiers keys) override {
        Move(at, keys);
        if (session_ == nullptr) {
            emit view_.Said(Text("Drag, and let go where the object is as large as it should be."));
            return;
        }
        if (session_->Release(view_.Lines(), IntPixelOf(at)) != CreateByDrag::State::Made) {
            emit view_.Said(Text("Nothing was made, since it would have no size; drag across both directions."));
            Cancel();
            return;
        }
        change_->Keep();
        session_.reset();
        change_.reset();
        view_.TheEditor().TouchNodes();
        emit view_.TheEditor().SelectionChanged();
    }
    void Cancel() override {
        if (session_ == nullptr) return;
        session_->Cancel();
        session_.reset();
        change_.reset();
    }

 private:
    bool Begin() {
        ClassDesc* const desc = DescOf(class_);
        if (desc == nullptr) return false;
        change_ = std::make_unique<Change>(view_.TheEditor(), Text("Create"));
        session_ = std::make_unique<CreateByDrag>(*desc);
        session_->Press(view_.Lines(), IntPixelOf(from_));
        view_.TheEditor().TouchNodes();
        emit view_.TheEditor().SelectionChanged();
        return true;
    }

    ViewWidget& view_;
    tavrik::ObjectClass class_;
    QPoint from_;
    std::unique_ptr<Change> change_;  // outlives the session, which takes its node away first
    std::unique_ptr<CreateByDrag> session_;
};

}  // namespace

std::unique_ptr<Gesture> MakeLookAbout(ViewWidget& view, LookAbout how, const QPoint& from) {
    return std::make_unique<LookingAbout>(view, how, from);
}
std::unique_ptr<Gesture> MakeSelecting(ViewWidget& view, const QPoint& from, bool isSameClick) {
    return std::make_unique<Selecting>(view, from, isSameClick);
}
std::unique_ptr<Gesture> MakeHandling(ViewWidget& view, const Handles& handles, HandlePart part, const QPoint& from) {
    return std::make_unique<Handling>(view, handles, part, from);
}
std::unique_ptr<Gesture> MakeCreating(ViewWidget& view, tavrik::ObjectClass objectClass, const QPoint& from) {
    return std::make_unique<Creating>(view, objectClass, from);
}

ClassDesc* DescOf(tavrik::ObjectClass objectClass) {
    const tavrik::ClassIdentity* const identity = tavrik::FindClass(objectClass);
    if (identity == nullptr) return nullptr;
    return tavrik_host::FindClass(identity->superClass, Class_ID(identity->id.a, identity->id.b));
}

}  // namespace tavrik_studio
