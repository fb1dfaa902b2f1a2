#include "drive/damper_drawing.h"

#include <array>
#include <cmath>
#include <numbers>

#include "solver/truncate.h"

namespace tavrik {
namespace {

constexpr double kPixelsPerUnit = 20.0;  // upward
constexpr int kRoadSamples = 300;        // to a unit along the road, one a pixel
constexpr std::int32_t kMiddle = 315;    // where the wheel is, in pixels from the left

constexpr ColorRef kBlue = 0xFF0000, kGreen = 0x00FF00, kRed = 0x0000FF, kWhite = 0xFFFFFF, kYellow = 0x00FFFF, kBlack = 0,
                   kOilAbove = 0x004064, kOilBelow = 0x645000;

/// The lines of a thick line: the middle one, the one below, the one above.
constexpr double kThickness[] = {0.0, 1.0, -1.0};

void Line(Canvas& canvas, std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1) {
    canvas.MoveTo(x0, y0);
    canvas.LineTo(x1, y1);
}

void DrawGrid(Canvas& canvas) {
    constexpr std::int32_t kTop = 5, kBottom = 295, kLeft = 5, kRight = 640, kMesh = 30;
    canvas.SetDcPenColor(kBlue);
    for (std::int32_t k = -19; k <= 19; ++k) Line(canvas, kMiddle + kMesh * k, kTop, kMiddle + kMesh * k, kBottom);
    for (std::int32_t k = -5; k <= 15; ++k) Line(canvas, kLeft, 70 + kMesh * k, kRight, 70 + kMesh * k);
    canvas.SetDcPenColor(kWhite);
    for (const std::int32_t x : {15, kMiddle, 615}) Line(canvas, x, kTop, x, kBottom);
    canvas.SetDcPenColor(kGreen);
    Line(canvas, kLeft, 70, kRight, 70);
    canvas.SetDcPenColor(kRed);
    Line(canvas, kLeft, 220, kRight, 220);
}

/// Drawn in the pen of the grid's last line.
void DrawRoad(const LiveBumps& road, Canvas& canvas) {
    std::array<double, std::size_t{2} * kRoadSamples> rise;  // pixels, from x = -1 on
    int sample = -kRoadSamples;
    for (double& pixels : rise) pixels = road.Height(double(sample++) / double(kRoadSamples)) * kPixelsPerUnit;
    for (const double shift : kThickness) {
        const double base = 220.0 + shift;
        canvas.MoveTo(kMiddle + kRoadSamples, TruncateToInt(base - rise[0]));
        int x = kMiddle + kRoadSamples;
        for (const double pixels : rise) canvas.LineTo(x--, TruncateToInt(base - pixels));
    }
}

void DrawTrace(const DamperModel& model, Canvas& canvas) {
    canvas.SetDcPenColor(kGreen);
    for (const double shift : kThickness) {
        const double base = 70.0 + shift;
        canvas.MoveTo(kMiddle + 5, TruncateToInt(base - model.history[0] * kPixelsPerUnit));
        for (std::int32_t i = 1; i < std::int32_t(kStandHistory); ++i)
            canvas.LineTo(kMiddle - i, TruncateToInt(base - model.history[std::size_t(i)] * kPixelsPerUnit));
    }
}

/// Where the damper's parts are, in whole pixels from the top. Kept as doubles, so that a part beside one at the largest
/// coordinate doesn't overflow.
struct DamperPlace {
    double wheelY, pistonY, bodyY;
};

DamperPlace PlaceDamper(const DamperModel& model, const LiveBumps& road) {
    return {double(TruncateToInt(220.0 - road.Height(0.0) * kPixelsPerUnit)),
            double(TruncateToInt(185.0 - (model.bodyHeight + model.damperTravel) * kPixelsPerUnit)),
            double(TruncateToInt(70.0 - model.bodyHeight * kPixelsPerUnit))};
}

enum class CoilSide { Back, Front };

/// Four turns between body and wheel, seen from the side: half of each turn lies behind the damper, half before it.
void DrawCoil(const DamperPlace& at, CoilSide side, Canvas& canvas) {
    canvas.SetDcPenColor(kYellow);
    const double length = at.wheelY - at.bodyY - 40.0;
    const auto x = [](int i) { return TruncateToInt(315.0 + std::cos(double(i) / 128.0 * std::numbers::pi * 8.0) * 18.0); };
    const auto y = [length](double top, int i) { return TruncateToInt(top + length * double(i) / 128.0); };
    for (int i = 0; i < 128; ++i) {
        if (((i & 31) > 16) != (side == CoilSide::Back)) continue;
        for (const double shift : {8.0, 7.0, 9.0}) {
            const double top = at.bodyY + shift;
            Line(canvas, x(i), y(top, i), x(i + 1), y(top, i + 1));
        }
    }
}

void Rectangle(Canvas& canvas, std::int32_t left, double top, std::int32_t right, double bottom) {
    canvas.Rectangle(left, TruncateToInt(top), right, TruncateToInt(bottom));
}

void Ellipse(Canvas& canvas, std::int32_t left, double top, std::int32_t right, double bottom) {
    canvas.Ellipse(left, TruncateToInt(top), right, TruncateToInt(bottom));
}

void DrawHousing(const DamperPlace& at, Canvas& canvas) {
    canvas.SetDcPenColor(kWhite);
    canvas.SelectObject(CanvasObject::HollowBrush);
    Rectangle(canvas, 300, at.wheelY - 8.0, 330, at.wheelY - 100.0);
}

/// The chambers above and below the piston.
void DrawOil(const DamperPlace& at, Canvas& canvas) {
    canvas.SelectObject(CanvasObject::DcBrush);
    canvas.SetDcBrushColor(kOilAbove);
    canvas.SetDcPenColor(kOilAbove);
    Rectangle(canvas, 301, at.pistonY - 2.0, 329, at.wheelY - 99.0);
    canvas.SetDcBrushColor(kOilBelow);
    canvas.SetDcPenColor(kOilBelow);
    Rectangle(canvas, 301, at.pistonY + 2.0, 329, at.wheelY - 9.0);
}

void DrawRod(const DamperPlace& at, Canvas& canvas) {
    canvas.SetDcBrushColor(kBlack);
    canvas.SetDcPenColor(kWhite);
    Ellipse(canvas, 308, at.bodyY - 7.0, 322, at.bodyY + 7.0);        // top eye
    Rectangle(canvas, 300, at.bodyY + 85.0, 330, at.bodyY + 90.0);    // plate
    Rectangle(canvas, 310, at.bodyY + 7.0, 320, at.bodyY + 90.0);     // rod
    Ellipse(canvas, 308, at.wheelY - 7.0, 322, at.wheelY + 7.0);      // bottom eye
    Rectangle(canvas, 301, at.pistonY - 2.0, 329, at.pistonY + 2.0);  // piston
}

}  // namespace

void DrawStand(const DamperModel& model, OffScreenCanvas& canvas) {
    const CanvasObject pen = canvas.SelectObject(CanvasObject::DcPen);
    const CanvasObject brush = canvas.SelectObject(CanvasObject::DcBrush);
    const CanvasObject font = canvas.SelectObject(CanvasObject::HostFont);
    canvas.Erase();
    DrawGrid(canvas);
    const LiveBumps road(model.bumps);
    DrawRoad(road, canvas);
    DrawTrace(model, canvas);
    const DamperPlace at = PlaceDamper(model, road);
    DrawCoil(at, CoilSide::Back, canvas);
    DrawHousing(at, canvas);
    DrawOil(at, canvas);
    DrawRod(at, canvas);
    DrawCoil(at, CoilSide::Front, canvas);
    canvas.SelectObject(pen);
    canvas.SelectObject(brush);
    canvas.SelectObject(font);
    canvas.Blit();
}

}  // namespace tavrik
