#include "studio/driving/scaled_canvas.h"

#include <gtest/gtest.h>

#include <limits>

#include "drive/damper_drawing.h"
#include "drive/hud.h"

namespace tavrik_studio {
namespace {

using tavrik::CanvasObject;

constexpr QRgb kGreen = 0xff97c000, kGround = 0xff333333;

TEST(ScaledCanvas, IsThePaintingCanvasItselfAtScaleOne) {
    ScaledFonts fonts;
    const tavrik::CanvasFonts& plainFonts = fonts.At(1.0);
    ASSERT_EQ(fonts.Problem(), "");
    ScaledCanvas canvas(300, 114, 1.0, plainFonts);
    tavrik::PaintingCanvas plain(300, 114, plainFonts);
    tavrik::HudState state;
    state.throttle = 4.0f;
    state.velocity = {900.0f, 0.0f, 0.0f};
    DrawHud(state, canvas);
    DrawHud(state, plain);
    const QImage image = canvas.Image();
    ASSERT_EQ(image.size(), QSize(300, 114));
    for (int y = 0; y < 114; ++y) {
        for (int x = 0; x < 300; ++x) {
            const tavrik::RgbPixel pixel = plain.Image().At(x, y);
            ASSERT_EQ(image.pixel(x, y), qRgb(pixel.red, pixel.green, pixel.blue)) << x << ' ' << y;
        }
    }
}

TEST(ScaledCanvas, FramesAreAsWideAsAPixelOfTheLayout) {
    ScaledFonts fonts;
    ScaledCanvas canvas(30, 20, 2.0, fonts.At(2.0));
    canvas.SelectObject(CanvasObject::HudPen);
    canvas.SelectObject(CanvasObject::DcBrush);
    canvas.SetDcBrushColor(0x333333);
    canvas.Rectangle(0, 0, 30, 20);
    const QImage image = canvas.Image();
    EXPECT_EQ(image.size(), QSize(60, 40));
    EXPECT_EQ(image.devicePixelRatio(), 2.0);
    for (const int i : {0, 1, 38, 39}) EXPECT_EQ(image.pixel(30, i), kGreen) << i;
    for (const int i : {0, 1, 58, 59}) EXPECT_EQ(image.pixel(i, 20), kGreen) << i;
    EXPECT_EQ(image.pixel(2, 2), kGround);
    EXPECT_EQ(image.pixel(57, 37), kGround);
}

TEST(ScaledCanvas, LinesAreAsWideAsAPixelOfTheLayout) {
    ScaledFonts fonts;
    ScaledCanvas canvas(30, 20, 3.0, fonts.At(3.0));
    canvas.SelectObject(CanvasObject::DcPen);
    canvas.SetDcPenColor(0xFFFFFF);
    canvas.MoveTo(10, 0);
    canvas.LineTo(10, 20);
    canvas.MoveTo(0, 5);
    canvas.LineTo(30, 5);
    const QImage image = canvas.Image();
    for (const int i : {30, 31, 32}) EXPECT_EQ(image.pixel(i, 50), 0xffffffff) << i;
    for (const int i : {29, 33}) EXPECT_EQ(image.pixel(i, 50), 0xff000000) << i;
    for (const int i : {15, 16, 17}) EXPECT_EQ(image.pixel(80, i), 0xffffffff) << i;
}

TEST(ScaledCanvas, LettersAreDrawnLargerNotBlownUp) {
    ScaledFonts fonts;
    EXPECT_NEAR(fonts.At(2.0).tahoma50Bold.ascent, 2 * fonts.At(1.0).tahoma50Bold.ascent, 1);
    const double single = fonts.At(1.0).tahoma14Bold.WidthOf("Hand Brake"),
                 twice = fonts.At(2.0).tahoma14Bold.WidthOf("Hand Brake");
    EXPECT_NEAR(twice, 2.0 * single, 0.1 * twice);
}

TEST(ScaledCanvas, CoordinatesFarOutCostNothing) {
    ScaledFonts fonts;
    ScaledCanvas canvas(30, 20, 2.0, fonts.At(2.0));
    constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max(), kFarBack = std::numeric_limits<std::int32_t>::min();
    canvas.SelectObject(CanvasObject::DcPen);
    canvas.SetDcPenColor(0xFFFFFF);
    canvas.MoveTo(kFarBack, kFarBack);
    canvas.LineTo(kFar, kFar);
    canvas.Rectangle(kFarBack, kFarBack, kFar, kFar);
    canvas.Ellipse(kFarBack, 0, kFar, 20);
    EXPECT_EQ(canvas.Image().width(), 60);
}

TEST(ScaledCanvas, BlitHandsOverThePicture) {
    ScaledFonts fonts;
    QImage shown;
    ScaledCanvas canvas(tavrik::kStandPictureWidth, tavrik::kStandPictureHeight, 1.5, fonts.At(1.5), 0,
                        [&](QImage image) { shown = std::move(image); });
    DrawStand({}, canvas);
    EXPECT_EQ(shown.size(), QSize(968, 450));
}

}  // namespace
}  // namespace tavrik_studio
