#include "studio/view/window_body.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QSurfaceFormat>

#include "studio/view/renderer.h"

namespace tavrik_studio {
namespace {

QSurfaceFormat Format() {
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    return format;
}

class GlWidget final : public QOpenGLWidget {
 public:
    GlWidget(ViewBodyTasks tasks, QWidget* parent) : QOpenGLWidget(parent), tasks_(std::move(tasks)) {
        setFormat(Format());
        setMouseTracking(true);
    }
    ~GlWidget() override { Release(); }

 protected:
    void initializeGL() override {
        // A window that moves to another screen may get another context.
        connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] { Release(); });
        QString problem;
        renderer_ =
            ViewRenderer::Make([gl = context()](const char* name) { return GlFunction(gl->getProcAddress(name)); }, problem);
        if (renderer_ == nullptr) qWarning("%s", qPrintable(problem));
    }
    void paintGL() override {
        if (renderer_ != nullptr) tasks_.draw(*renderer_, defaultFramebufferObject());
    }

 private:
    void Release() {
        if (renderer_ == nullptr) return;
        makeCurrent();
        renderer_.reset();
        doneCurrent();
    }

    ViewBodyTasks tasks_;
    std::unique_ptr<ViewRenderer> renderer_;
};

class WindowBody final : public ViewBody {
 public:
    WindowBody(ViewBodyTasks tasks, QWidget* parent) : widget_(*new GlWidget(std::move(tasks), parent)) {}
    ViewBodyKind Kind() const override { return ViewBodyKind::Window; }
    QWidget& Widget() override { return widget_; }
    void Redraw() override { widget_.update(); }
    QImage Grab() override { return widget_.grabFramebuffer(); }

 private:
    GlWidget& widget_;
};

}  // namespace

bool CanDrawInWindows() {
    static const bool can = [] {
        const QString platform = QGuiApplication::platformName();
        if (platform == "offscreen" || platform == "minimal" || platform == "vnc") return false;
        QOpenGLContext context;
        context.setFormat(Format());
        if (!context.create() || context.isOpenGLES() || context.format().version() < qMakePair(3, 3)) return false;
        QOffscreenSurface surface;
        surface.setFormat(context.format());
        surface.create();
        return context.makeCurrent(&surface);
    }();
    return can;
}

std::unique_ptr<ViewBody> MakeWindowBody(ViewBodyTasks tasks, QWidget* parent) {
    return std::make_unique<WindowBody>(std::move(tasks), parent);
}

}  // namespace tavrik_studio
