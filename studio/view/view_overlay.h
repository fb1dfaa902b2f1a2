#pragma once

#include <QWidget>

namespace tavrik_studio {

class ViewWidget;

/// What is written over the picture. The mouse doesn't meet it.
class ViewOverlay final : public QWidget {
 public:
    explicit ViewOverlay(ViewWidget& view);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    ViewWidget& view_;
};

/// Text with a rim, to be read on any picture. @param at  its lower left corner
void PaintText(QPainter& painter, const QPointF& at, const QString& text, const QColor& color = Qt::white);

}  // namespace tavrik_studio
