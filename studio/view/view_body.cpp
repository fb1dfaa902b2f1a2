#include "studio/view/view_body.h"

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPainter>

#include "studio/view/egl_context.h"
#include "studio/view/renderer.h"
#include "studio/view/window_body.h"

namespace tavrik_studio {
namespace {

/// Draws without a screen and paints the finished picture.
class ImageWidget final : public QWidget {
 public:
    ImageWidget(std::shared_ptr<EglContext> context, std::unique_ptr<ViewRenderer> renderer, ViewBodyTasks tasks,
                QWidget* parent)
        : QWidget(parent), context_(std::move(context)), renderer_(std::move(renderer)), tasks_(std::move(tasks)) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setMouseTracking(true);
    }
    ~ImageWidget() override {
        context_->MakeCurrent();
        renderer_.reset();
    }
    void Redraw() {
        isStale_ = true;
        update();
    }
    QImage Draw() {
        // The window system's own painting may have made another one current.
        if (!context_->MakeCurrent()) return {};
        return tasks_.drawImage(*renderer_);
    }

 protected:
    void paintEvent(QPaintEvent*) override {
        if (isStale_ || image_.size() != size() * devicePixelRatioF()) image_ = Draw();
        isStale_ = false;
        QPainter painter(this);
        painter.drawImage(rect(), image_);
    }

 private:
    std::shared_ptr<EglContext> context_;
    std::unique_ptr<ViewRenderer> renderer_;
    ViewBodyTasks tasks_;
    QImage image_;
    bool isStale_ = true;
};

class ImageBody final : public ViewBody {
 public:
    explicit ImageBody(ImageWidget& widget) : widget_(widget) {}
    ViewBodyKind Kind() const override { return ViewBodyKind::NoScreen; }
    QWidget& Widget() override { return widget_; }
    void Redraw() override { widget_.Redraw(); }
    QImage Grab() override { return widget_.Draw(); }

 private:
    ImageWidget& widget_;
};

class SentenceWidget final : public QWidget {
 public:
    SentenceWidget(QString sentence, QWidget* parent) : QWidget(parent), sentence_(std::move(sentence)) {
        setMouseTracking(true);
        setAccessibleDescription(sentence_);
    }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect().marginsRemoved({24, 24, 24, 24}), int(Qt::AlignCenter) | int(Qt::TextWordWrap), sentence_);
    }

 private:
    QString sentence_;
};

class SentenceBody final : public ViewBody {
 public:
    explicit SentenceBody(QWidget& widget) : widget_(widget) {}
    ViewBodyKind Kind() const override { return ViewBodyKind::Sentence; }
    QWidget& Widget() override { return widget_; }
    void Redraw() override { widget_.update(); }
    QImage Grab() override { return {}; }

 private:
    QWidget& widget_;
};

std::unique_ptr<ViewBody> MakeImageBody(ViewBodyTasks tasks, QWidget* parent, QString& problem) {
    std::shared_ptr<EglContext> context = EglContext::Shared(problem);
    if (context == nullptr || !context->MakeCurrent()) return nullptr;
    std::unique_ptr<ViewRenderer> renderer = ViewRenderer::Make(context->Loader(), problem);
    if (renderer == nullptr) return nullptr;
    return std::make_unique<ImageBody>(*new ImageWidget(std::move(context), std::move(renderer), std::move(tasks), parent));
}

}  // namespace

std::unique_ptr<ViewBody> MakeViewBody(ViewBodyKind kind, ViewBodyTasks tasks, QWidget* parent) {
    if (kind == ViewBodyKind::Window || (kind == ViewBodyKind::Suiting && CanDrawInWindows())) {
        return MakeWindowBody(std::move(tasks), parent);
    }
    QString problem = QCoreApplication::translate("tavrik_studio::ViewBody", "it was switched off");
    if (kind != ViewBodyKind::Sentence) {
        if (std::unique_ptr<ViewBody> body = MakeImageBody(tasks, parent, problem)) return body;
    }
    const QString sentence =
        QCoreApplication::translate("tavrik_studio::ViewBody", "The scene can't be shown here, since %1.").arg(problem);
    return std::make_unique<SentenceBody>(*new SentenceWidget(sentence, parent));
}

}  // namespace tavrik_studio
