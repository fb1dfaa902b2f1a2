#pragma once
/// A view of the scene: shown from any side, and worked on with the mouse.

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "host/sdk/create_by_drag.h"
#include "rig/scene_node.h"
#include "studio/model/commands.h"
#include "studio/model/editor.h"
#include "studio/view/chase_camera.h"
#include "studio/view/draw_pace.h"
#include "studio/view/handles.h"
#include "studio/view/shown_scene.h"
#include "studio/view/view_body.h"
#include "studio/view/view_picture.h"

class QPainter;

namespace tavrik_studio {

class Gesture;
class ViewOverlay;

/// What the left button does.
enum class ViewTool { Select, Move, Rotate, Orbit, Pan, Zoom, Create };

/// Views are looked about in with the middle button (with Shift: moved; with Ctrl: zoomed) and the wheel, with the left button
/// and one of the tools for it, or with arrow keys, plus and minus.
class ViewWidget final : public QWidget {
    Q_OBJECT
 public:
    /// The first view that is made registers all commands of views; they go to the view that had the focus last.
    ViewWidget(Editor& editor, Commands& commands, QWidget* parent = nullptr);
    ViewWidget(Editor& editor, Commands& commands, ViewBodyKind body, QWidget* parent = nullptr);
    ~ViewWidget() override;

    // From where it looks
    void SetSide(tavrik_host::ViewSide side);
    /// The side that was chosen, if the eye hasn't been turned away from it.
    QString ViewName() const;
    const tavrik_host::ViewState& State() const { return state_; }
    /// Its size stays the widget's.
    void SetState(const tavrik_host::ViewState& state);
    void FrameAll();
    /// The selected nodes; all where none is.
    void FrameSelection();
    /// @param node  whom the eye follows; null: nobody
    void SetFollow(INode* node);
    INode* Followed() const;

    // What it shows
    void SetSky(bool on);
    bool HasSky() const { return hasSky_; }
    void SetGrid(bool on);
    bool HasGrid() const { return hasGrid_; }
    /// Tyre tracks on the ground that cars drive on. @param image  as `TrackLayout` bakes it flat; empty: none
    void SetTracks(tavrik::RgbImage image, const Point2& low, float side);
    /// A line of text at the bottom, such as what a car is doing.
    void SetReading(const QString& text);

    // What the mouse does
    void SetTool(ViewTool tool);
    /// Dragging makes objects of this class until another tool is chosen.
    void SetCreate(tavrik::ObjectClass objectClass);
    ViewTool Tool() const { return tool_; }
    tavrik::ObjectClass CreateClass() const { return createClass_; }
    /// Things that are made or moved snap to a grid, and turns to steps of five degrees. @param width  units; 0: they don't
    void SetSnap(float width);
    float Snap() const { return snap_; }
    bool IsBusy() const { return gesture_ != nullptr; }

    /// The picture as it is now, with all effort; without what is written over it.
    QImage GrabScene();
    ViewBodyKind BodyKind() const;
    QSize sizeHint() const override { return {640, 480}; }
    QSize minimumSizeHint() const override { return {80, 60}; }

    // For what a mouse does with the view: see gestures.h.
    Editor& TheEditor() { return editor_; }
    tavrik_host::LineView& Lines() { return lines_; }
    ShownScene& Shown() { return *shown_; }
    /// The handles of what is selected, if there are any now.
    std::optional<Handles> HandlesNow() const;
    /// What a click at a pixel means: the lines of an object, whatever is in front of them, or else a mesh.
    INode* NodeUnder(const QPoint& at);
    /// @param isTurned  the eye no longer looks from the side that was chosen
    void Navigate(const tavrik_host::ViewState& state, bool isTurned);
    void ShowHint(const QString& text);
    void PaintOver(QPainter& painter);

 signals:
    /// A sentence for whoever works with the view.
    void Said(const QString& sentence);
    /// Tool, side, or one of the switches.
    void SettingsChanged();
    /// A picture took so long. On the way to the screen: nothing may be drawn from here.
    void Drawn(qint64 nanoseconds);
    /// The right button was clicked where it means nothing else. @param at  in the view
    void MenuWanted(const QPoint& at);

 protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

 private:
    void MakeBody(ViewBodyKind kind);
    ViewPicture Picture() const;
    ViewColors Colors() const;
    void TellTime(qint64 nanoseconds);
    QImage DrawImage(ViewRenderer& renderer, const DrawEffort& effort);
    void RedrawMoving();
    void Redraw();
    void TakeNews();
    void UpdateFollow();
    bool NavigateByKey(int key, bool isMoved);
    void PressLeft(const QPoint& at, Qt::KeyboardModifiers keys);
    void PickAt(const QPoint& at);
    void Hover(const QPoint& at);
    void EndGesture();
    bool Escape();
    QString Speed() const;
    void PaintAxes(QPainter& painter) const;
    void PaintHandles(QPainter& painter) const;
    void PaintTexts(QPainter& painter) const;

    Editor& editor_;
    Commands& commands_;
    std::shared_ptr<ShownScene> shown_;
    tavrik_host::ViewState state_;
    tavrik_host::LineView lines_;
    QString viewName_;
    bool hasSky_ = true, hasGrid_ = true;
    float snap_ = 0.0f;
    std::shared_ptr<const TrackPicture> tracks_;
    QString reading_, hint_;

    ViewTool tool_ = ViewTool::Select;
    tavrik::ObjectClass createClass_ = tavrik::ObjectClass::None;
    std::unique_ptr<tavrik_host::CreateByDrag> preview_;  // of the object that the next drag makes
    std::unique_ptr<Gesture> gesture_;
    HandlePart hovered_ = HandlePart::None;
    QPoint lastClick_{-100, -100};

    ULONG followed_ = 0;
    ChaseCamera chase_;

    DrawPace pace_;
    bool isMoving_ = false;
    QTimer rest_;
    QElapsedTimer sinceNews_;

    std::unique_ptr<ViewBody> body_;
    ViewOverlay* overlay_ = nullptr;
};

}  // namespace tavrik_studio
