#include "studio/view/view_widget.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "studio/view/gestures.h"
#include "studio/view/node_drag.h"
#include "studio/view/renderer.h"
#include "studio/view/view_commands.h"
#include "studio/view/view_overlay.h"

namespace tavrik_studio {
namespace {

using tavrik_host::ViewSide;
using tavrik_host::ViewState;

constexpr int kRestMilliseconds = 180;    // without a new picture a view has come to rest
constexpr int kMovingMilliseconds = 120;  // news that come faster than that are a movement

ViewState FirstState() {
    ViewState state;
    state = Seen(state, ViewSide::Perspective);
    return state;
}

QString NameOf(ViewSide side) {
    switch (side) {
        case ViewSide::Perspective:
            return ViewWidget::tr("Perspective");
        case ViewSide::Top:
            return ViewWidget::tr("Top");
        case ViewSide::Bottom:
            return ViewWidget::tr("Bottom");
        case ViewSide::Front:
            return ViewWidget::tr("Front");
        case ViewSide::Back:
            return ViewWidget::tr("Back");
        case ViewSide::Left:
            return ViewWidget::tr("Left");
        case ViewSide::Right:
            return ViewWidget::tr("Right");
    }
    return {};
}

Point3 ColorOf(const QColor& color, float factor) {
    return Point3(float(color.redF()), float(color.greenF()), float(color.blueF())) * factor;
}

}  // namespace

ViewWidget::ViewWidget(Editor& editor, Commands& commands, QWidget* parent)
    : ViewWidget(editor, commands, ViewBodyKind::Suiting, parent) {}

ViewWidget::ViewWidget(Editor& editor, Commands& commands, ViewBodyKind body, QWidget* parent)
    : QWidget(parent),
      editor_(editor),
      commands_(commands),
      shown_(ShownScene::Of(editor)),
      state_(FirstState()),
      lines_(state_),
      viewName_(NameOf(ViewSide::Perspective)) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(tr("View of the scene"));
    setAccessibleDescription(tr("Arrow keys turn the view, with Shift they move it; plus and minus zoom."));
    MakeBody(body);
    overlay_ = new ViewOverlay(*this);
    rest_.setSingleShot(true);
    rest_.setInterval(kRestMilliseconds);
    connect(&rest_, &QTimer::timeout, this, [this] {
        isMoving_ = false;
        Redraw();
    });
    connect(shown_.get(), &ShownScene::Changed, this, &ViewWidget::TakeNews);
    connect(&editor, &Editor::TimeChanged, this, &ViewWidget::UpdateFollow);
    connect(&editor, &Editor::SceneReplaced, this, &ViewWidget::UpdateFollow);
    ViewCommands::Of(editor, commands).Adopt(*this);
}

ViewWidget::~ViewWidget() { EndGesture(); }

void ViewWidget::MakeBody(ViewBodyKind kind) {
    ViewBodyTasks tasks;
    tasks.draw = [this](ViewRenderer& renderer, unsigned framebuffer) {
        shown_->Update();
        QElapsedTimer timer;
        timer.start();
        renderer.Draw(*shown_, Picture(), pace_.Next(isMoving_), framebuffer);
        TellTime(timer.nsecsElapsed());
    };
    tasks.drawImage = [this](ViewRenderer& renderer) {
        QElapsedTimer timer;
        timer.start();
        const QImage image = DrawImage(renderer, pace_.Next(isMoving_));
        TellTime(timer.nsecsElapsed());
        return image;
    };
    body_ = MakeViewBody(kind, std::move(tasks), this);
}

void ViewWidget::TellTime(qint64 nanoseconds) {
    pace_.Took(double(nanoseconds) * 1e-6);
    emit Drawn(nanoseconds);
}

QImage ViewWidget::DrawImage(ViewRenderer& renderer, const DrawEffort& effort) {
    shown_->Update();
    const ViewPicture picture = Picture();
    QImage image(PixelWidth(picture), PixelHeight(picture), QImage::Format_RGB32);
    auto* const pixels = reinterpret_cast<std::uint32_t*>(image.bits());
    renderer.DrawImage(*shown_, picture, effort, {pixels, std::size_t(image.width()) * std::size_t(image.height())});
    return image;
}

ViewBodyKind ViewWidget::BodyKind() const { return body_->Kind(); }

QImage ViewWidget::GrabScene() {
    const bool wasMoving = std::exchange(isMoving_, false);
    const QImage image = body_->Grab();
    isMoving_ = wasMoving;
    return image;
}

// --------------------------------------------------------------------------------------------------------------- what it shows

ViewColors ViewWidget::Colors() const {
    const QColor window = palette().color(QPalette::Window);
    ViewColors colors;
    if (window.lightnessF() >= 0.5f) {
        colors.plain = ColorOf(window, 0.66f);  // dark enough for white lines
        return colors;
    }
    constexpr float kDusk = 0.42f;
    colors.plain = ColorOf(window, 1.25f) + Point3(0.03f, 0.03f, 0.035f);
    colors.zenith = colors.zenith * kDusk;
    colors.horizon = colors.horizon * kDusk;
    colors.haze = colors.haze * kDusk;
    colors.grid = Point3(0.72f, 0.74f, 0.78f);
    colors.light = 0.8f;
    return colors;
}

ViewPicture ViewWidget::Picture() const {
    ViewPicture picture;
    picture.state = state_;
    picture.pixelRatio = float(devicePixelRatioF());
    picture.colors = Colors();
    picture.hasSky = hasSky_;
    picture.hasGrid = hasGrid_;
    picture.gridWidth = snap_;
    picture.tracks = tracks_;
    return picture;
}

void ViewWidget::Redraw() {
    body_->Redraw();
    overlay_->update();
}

void ViewWidget::RedrawMoving() {
    isMoving_ = true;
    rest_.start();
    Redraw();
}

void ViewWidget::TakeNews() {
    const bool isMovement =
        (sinceNews_.isValid() && sinceNews_.elapsed() < kMovingMilliseconds) || (gesture_ != nullptr && gesture_->Moves());
    sinceNews_.start();
    if (isMovement) {
        RedrawMoving();
    } else {
        Redraw();
    }
    for (const QString& note : shown_->TakeNotes()) emit Said(note);
}

void ViewWidget::SetSky(bool on) {
    hasSky_ = on;
    Redraw();
    emit SettingsChanged();
}

void ViewWidget::SetGrid(bool on) {
    hasGrid_ = on;
    Redraw();
    emit SettingsChanged();
}

void ViewWidget::SetTracks(tavrik::RgbImage image, const Point2& low, float side) {
    tracks_.reset();
    if (!image.pixels.empty() && side > 0.0f) {
        tracks_ = std::make_shared<TrackPicture>(TrackPicture{std::move(image), low, side});
    }
    Redraw();
}

void ViewWidget::SetReading(const QString& text) {
    if (text == reading_) return;
    reading_ = text;
    overlay_->update();
}

void ViewWidget::ShowHint(const QString& text) {
    if (text == hint_) return;
    hint_ = text;
    overlay_->update();
}

std::optional<Handles> ViewWidget::HandlesNow() const {
    if (tool_ != ViewTool::Move && tool_ != ViewTool::Rotate) return std::nullopt;
    Handles handles;
    handles.kind = tool_ == ViewTool::Move ? HandleKind::Move : HandleKind::Rotate;
    if (!MiddleOfSelection(editor_.Time(), handles.centre)) return std::nullopt;
    return handles;
}

// --------------------------------------------------------------------------------------------------------- from where it looks

void ViewWidget::SetState(const ViewState& state) {
    state_ = state;
    state_.width = std::max(1, width());
    state_.height = std::max(1, height());
    lines_.SetState(state_);
}

void ViewWidget::Navigate(const ViewState& state, bool isTurned) {
    SetState(state);
    if (isTurned && !state.perspective) viewName_ = tr("Flat");
    RedrawMoving();
}

void ViewWidget::SetSide(ViewSide side) {
    SetState(Seen(state_, side));
    viewName_ = NameOf(side);
    if (Followed() != nullptr && side == ViewSide::Perspective) SetFollow(Followed());
    Redraw();
    emit SettingsChanged();
}

QString ViewWidget::ViewName() const { return viewName_; }

void ViewWidget::FrameAll() {
    shown_->Update();
    SetState(Framed(state_, shown_->AllPoints()));
    Redraw();
}

void ViewWidget::FrameSelection() {
    const std::vector<INode*> nodes = editor_.Selection();
    if (nodes.empty()) return FrameAll();
    shown_->Update();
    std::vector<Point3> points;
    for (INode* const node : nodes) {
        const std::vector<Point3> more = shown_->PointsOf(*node);
        points.insert(points.end(), more.begin(), more.end());
    }
    SetState(Framed(state_, points, 0.15f));
    Redraw();
}

INode* ViewWidget::Followed() const { return followed_ == 0 ? nullptr : GetCOREInterface()->GetINodeByHandle(followed_); }

void ViewWidget::SetFollow(INode* node) {
    followed_ = node == nullptr ? 0 : node->GetHandle();
    if (node != nullptr) {
        shown_->Update();
        ViewState state = state_;
        if (state.perspective) {
            state = Framed(state, shown_->PointsOf(*node), 0.35f);
            state.pitch = -18.0f;
            chase_.Start(state, node->GetNodeTM(editor_.Time()), editor_.Time());
        } else {
            // A flat view keeps its direction and goes along.
            state.target = node->GetNodeTM(editor_.Time()).GetTrans();
        }
        SetState(state);
    }
    Redraw();
    emit SettingsChanged();
}

void ViewWidget::UpdateFollow() {
    INode* const node = Followed();
    if (node == nullptr) return;
    ViewState state = state_;
    if (state.perspective) {
        chase_.Update(state, node->GetNodeTM(editor_.Time()), editor_.Time());
    } else {
        state.target = node->GetNodeTM(editor_.Time()).GetTrans();
    }
    SetState(state);
    Redraw();
}

// ------------------------------------------------------------------------------------------------------------------------
// tools

void ViewWidget::SetTool(ViewTool tool) {
    EndGesture();
    preview_.reset();
    tool_ = tool;
    createClass_ = tavrik::ObjectClass::None;
    hovered_ = HandlePart::None;
    const bool isLook = tool == ViewTool::Orbit || tool == ViewTool::Pan || tool == ViewTool::Zoom;
    setCursor(tool == ViewTool::Create ? Qt::CrossCursor : isLook ? Qt::SizeAllCursor : Qt::ArrowCursor);
    overlay_->update();
    emit SettingsChanged();
}

void ViewWidget::SetCreate(tavrik::ObjectClass objectClass) {
    ClassDesc* const desc = DescOf(objectClass);
    if (desc == nullptr) {
        emit Said(tr("The rig's plug-in isn't loaded, so that none of its objects can be made."));
        return;
    }
    SetTool(ViewTool::Create);
    createClass_ = objectClass;
    preview_ = std::make_unique<tavrik_host::CreateByDrag>(*desc);
    emit SettingsChanged();
    emit Said(tr("Drag in the view to make it as large as you like. Esc or the right button ends it."));
}

void ViewWidget::SetSnap(float width) {
    snap_ = std::max(0.0f, width);
    lines_.SetGrid(snap_);
    Redraw();
    emit SettingsChanged();
}

INode* ViewWidget::NodeUnder(const QPoint& at) {
    shown_->Update();
    const IPoint2 m(at.x(), at.y());
    const auto isMesh = [this](INode& node) { return shown_->IsMesh(node); };
    INode* const node = NodeAt(lines_, editor_.Time(), m, [&](INode& candidate) { return !isMesh(candidate); });
    if (node != nullptr) return node;
    // A ground that is cut off before the eye hides nothing.
    const bool isCut = IsFromTheSide(state_);
    INode* const mesh = NodeAt(lines_, editor_.Time(), m,
                               [&](INode& candidate) { return isMesh(candidate) && !(isCut && shown_->IsGround(candidate)); });
    return mesh != nullptr || !isCut ? mesh : NodeAt(lines_, editor_.Time(), m, isMesh);
}

// -----------------------------------------------------------------------------------------------------------------------
// events

void ViewWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    body_->Widget().setGeometry(rect());
    overlay_->setGeometry(rect());
    overlay_->raise();
    SetState(state_);
    Redraw();
}

void ViewWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && overlay_ != nullptr) Redraw();
}

}  // namespace tavrik_studio
