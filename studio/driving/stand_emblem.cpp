#include "studio/driving/stand_emblem.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace tavrik_studio {
namespace {

constexpr double kWidth = 110.0, kHeight = 150.0;  // that the drawing is laid out for
constexpr double kPi = 3.14159265358979323846;

const QColor kGround(0x33, 0x33, 0x33), kFrame(0x97, 0xC0, 0x00), kSteel(0xC8, 0xC8, 0xC8), kDark(0x5A, 0x5E, 0x64),
    kCoil(0xE8, 0xC8, 0x30), kRubber(0x22, 0x22, 0x22);

/// Round metal, lit from the left.
QLinearGradient Metal(double left, double right, const QColor& color) {
    QLinearGradient gradient(left, 0.0, right, 0.0);
    gradient.setColorAt(0.0, color.darker(160));
    gradient.setColorAt(0.3, color.lighter(125));
    gradient.setColorAt(1.0, color.darker(190));
    return gradient;
}

void DrawTube(QPainter& painter, const QRectF& box, const QColor& color) {
    painter.setPen(QPen(color.darker(220), 1.0));
    painter.setBrush(Metal(box.left(), box.right(), color));
    painter.drawRoundedRect(box, 2.0, 2.0);
}

void DrawEye(QPainter& painter, const QPointF& centre) {
    painter.setPen(QPen(kDark.darker(180), 1.0));
    painter.setBrush(Metal(centre.x() - 8.0, centre.x() + 8.0, kSteel));
    painter.drawEllipse(centre, 8.0, 8.0);
    painter.setBrush(kRubber);
    painter.drawEllipse(centre, 3.5, 3.5);
}

/// Half turns of the spring, those before the damper or those behind it.
void DrawCoil(QPainter& painter, bool front) {
    constexpr double kTop = 36.0, kBottom = 112.0, kRadius = 21.0;
    constexpr int kTurns = 5, kSteps = 24;  // steps of half a turn
    for (int half = front ? 0 : 1; half < kTurns * 2; half += 2) {
        QPainterPath path;
        for (int i = 0; i <= kSteps; ++i) {
            const double turn = (half + double(i) / kSteps) / 2.0;
            const QPointF point(-std::cos(turn * 2.0 * kPi) * kRadius, kTop + (kBottom - kTop) * turn / kTurns);
            i == 0 ? path.moveTo(point) : path.lineTo(point);
        }
        const QColor color = front ? kCoil : kCoil.darker(190);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color.darker(170), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(path);
        painter.setPen(QPen(color, 3.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(path);
    }
}

}  // namespace

StandEmblem::StandEmblem(QWidget* parent) : QWidget(parent) { setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred); }

void StandEmblem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kFrame, 1.0));
    painter.setBrush(kGround);
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));

    const double scale = std::min(width() / kWidth, height() / kHeight);
    painter.translate(width() / 2.0, (height() - kHeight * scale) / 2.0);
    painter.scale(scale, scale);

    DrawCoil(painter, false);
    DrawTube(painter, {-3.0, 20.0, 6.0, 60.0}, kSteel);    // the rod
    DrawTube(painter, {-10.0, 66.0, 20.0, 62.0}, kDark);   // the housing
    DrawTube(painter, {-25.0, 114.0, 50.0, 5.0}, kSteel);  // what the spring rests on
    DrawTube(painter, {-25.0, 29.0, 50.0, 5.0}, kSteel);
    DrawEye(painter, {0.0, 16.0});
    DrawEye(painter, {0.0, 134.0});
    DrawCoil(painter, true);
}

}  // namespace tavrik_studio
