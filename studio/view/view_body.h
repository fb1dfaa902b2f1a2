#pragma once
/// The part of a view that shows the picture. There are three of it, and a view doesn't know which one it has.

#include <QImage>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

namespace tavrik_studio {

class ViewRenderer;

enum class ViewBodyKind {
    Suiting,   // the first of the others that works here
    Window,    // OpenGL in a window
    NoScreen,  // OpenGL without a screen, the picture then painted as any other
    Sentence,  // nothing but a sentence that says why
};

/// What a body asks for a picture.
struct ViewBodyTasks {
    /// Draws into a framebuffer of the context that is current.
    std::function<void(ViewRenderer&, unsigned framebuffer)> draw;
    /// The same into memory, [height][width] of the screen's pixels.
    std::function<QImage(ViewRenderer&)> drawImage;
};

class ViewBody {
 public:
    virtual ~ViewBody() = default;
    virtual ViewBodyKind Kind() const = 0;
    /// Owned by its parent.
    virtual QWidget& Widget() = 0;
    /// Asks for a new picture, soon.
    virtual void Redraw() = 0;
    /// The picture as it is now, drawn at once; empty where there is none.
    virtual QImage Grab() = 0;
};

/// @param tasks  outlive the parent's other children
std::unique_ptr<ViewBody> MakeViewBody(ViewBodyKind kind, ViewBodyTasks tasks, QWidget* parent);

}  // namespace tavrik_studio
