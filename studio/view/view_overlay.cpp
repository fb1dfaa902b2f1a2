#include "studio/view/view_overlay.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <optional>

#include "host/sdk/standin.h"
#include "rig/ticks.h"
#include "studio/view/gestures.h"
#include "studio/view/view_grid.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio {
namespace {

using tavrik_host::Pixel;

constexpr int kMargin = 10;

QColor ScreenColor(const Color& c) { return QColor::fromRgbF(c.r, c.g, c.b); }

QPolygonF PolygonOf(const std::vector<Pixel>& pixels) {
    QPolygonF polygon;
    for (const Pixel& p : pixels) polygon << QPointF(double(p.x), double(p.y));
    return polygon;
}

}  // namespace

ViewOverlay::ViewOverlay(ViewWidget& view) : QWidget(&view), view_(view) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
}

void ViewOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    view_.PaintOver(painter);
}

void PaintText(QPainter& painter, const QPointF& at, const QString& text, const QColor& color) {
    QPainterPath path;
    path.addText(at, painter.font(), text);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(20, 22, 26, 170), 3.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path);
    painter.fillPath(path, color);
}

void ViewWidget::PaintOver(QPainter& painter) {
    if (body_->Kind() == ViewBodyKind::Sentence) return;
    PaintHandles(painter);
    PaintAxes(painter);
    PaintTexts(painter);
    if (preview_ != nullptr && gesture_ == nullptr && lines_.Preview()) {
        Pixel at{};
        if (Project(lines_.Camera(), *lines_.Preview(), at)) {
            const QPointF p(double(at.x), double(at.y));
            painter.setPen(QPen(Qt::white, 1.2));
            painter.drawLine(p - QPointF(7, 0), p + QPointF(7, 0));
            painter.drawLine(p - QPointF(0, 7), p + QPointF(0, 7));
        }
    }
    if (gesture_ != nullptr) gesture_->Paint(painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
}

void ViewWidget::PaintHandles(QPainter& painter) const {
    const std::optional<Handles> handles = HandlesNow();
    if (!handles) return;
    const HandlePart lit = gesture_ != nullptr ? gesture_->Held() : hovered_;
    for (const HandleShape& shape : ShapesOf(*handles, lines_.Camera())) {
        const int axis = AxisOf(shape.part);
        const bool isLit = shape.part == lit;
        QColor color = axis < 0 ? QColor(235, 238, 242) : ScreenColor(AxisColor(axis)).lighter(115);
        if (isLit) color = QColor(255, 214, 64);
        if (shape.isBehind) color.setAlpha(70);
        const bool isPlane = shape.part == HandlePart::XY || shape.part == HandlePart::YZ || shape.part == HandlePart::ZX;
        const QPolygonF polygon = PolygonOf(shape.line);
        if (shape.isFilled) {
            QColor fill = color;
            if (isPlane) fill.setAlpha(isLit ? 190 : 110);
            painter.setBrush(fill);
            painter.setPen(QPen(isPlane ? color : color.darker(150), 1.0));
            painter.drawPolygon(polygon);
        } else {
            painter.setBrush(Qt::NoBrush);
            if (!shape.isBehind) {
                painter.setPen(QPen(QColor(20, 22, 26, 110), isLit ? 5.5 : 4.5));
                painter.drawPolyline(polygon);
            }
            painter.setPen(QPen(color, isLit ? 3.5 : 2.5));
            painter.drawPolyline(polygon);
        }
    }
    painter.setBrush(Qt::NoBrush);
}

void ViewWidget::PaintAxes(QPainter& painter) const {
    const Matrix3& eye = lines_.Camera().frame;
    const QPointF middle(kMargin + 32.0, height() - kMargin - 32.0);
    constexpr double kArm = 25.0, kLetter = 33.0;
    int order[] = {0, 1, 2};
    std::ranges::sort(order, std::less(), [&eye](int i) { return eye.GetRow(2)[i]; });
    QFont font = painter.font();
    font.setPixelSize(11);
    font.setBold(true);
    painter.setFont(font);
    for (const int i : order) {
        const QPointF way(double(eye.GetRow(0)[i]), -double(eye.GetRow(1)[i]));
        const QColor color = ScreenColor(AxisColor(i));
        if (std::hypot(way.x(), way.y()) < 0.05) continue;  // it points at the eye
        painter.setPen(QPen(QColor(20, 22, 26, 120), 4.0, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(middle, middle + way * kArm);
        painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(middle, middle + way * kArm);
        PaintText(painter, middle + way * kLetter + QPointF(-4, 4), QString("XYZ"[i]), color.lighter(145));
    }
}

void ViewWidget::PaintTexts(QPainter& painter) const {
    QFont text = font();
    text.setPixelSize(13);
    painter.setFont(text);
    INode* const followed = Followed();
    const QString name =
        followed == nullptr ? viewName_ : tr("%1, following %2").arg(viewName_, QString::fromWCharArray(followed->GetName()));
    PaintText(painter, QPointF(kMargin, kMargin + 12), name);
    const QFontMetricsF metrics(text);
    if (!hint_.isEmpty())
        PaintText(painter, QPointF(width() - kMargin - metrics.horizontalAdvance(hint_), kMargin + 12), hint_);
    const QString speed = Speed(), below = reading_.isEmpty() || speed.isEmpty() ? reading_ + speed : reading_ + "   " + speed;
    if (!below.isEmpty()) {
        PaintText(painter, QPointF(width() - kMargin - metrics.horizontalAdvance(below), height() - kMargin - 2), below);
    }
}

QString ViewWidget::Speed() const {
    INode* const node = Followed();
    if (node == nullptr) return {};
    // Over a whole frame: between two ticks a place in single precision tells too little.
    const TimeValue now = editor_.Time(), before = now - GetTicksPerFrame();
    const Point3 way = node->GetNodeTM(now).GetTrans() - node->GetNodeTM(before).GetTrans();
    const double seconds = double(now - before) / tavrik::kTicksPerSecond;
    const double metres = double(Length(way)) * tavrik_host::MetresPerUnit();
    return tr("%1 km/h").arg(metres / seconds * 3.6, 0, 'f', 0);
}

}  // namespace tavrik_studio
