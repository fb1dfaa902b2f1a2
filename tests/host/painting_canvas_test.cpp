#include "host/painting_canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "../drive/recording_canvas.h"
#include "drive/hud.h"

namespace tavrik {

void PrintTo(const RgbPixel& pixel, std::ostream* out) {
    *out << '(' << int(pixel.red) << ", " << int(pixel.green) << ", " << int(pixel.blue) << ')';
}

}  // namespace tavrik

namespace tavrik::test {
namespace {

constexpr ColorRef kGround = 0x333333, kPen = 0x0000FF, kBrush = 0xFF0000, kInk = 0x00FF00;
constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max(), kNear = std::numeric_limits<std::int32_t>::min();

using Pixels = std::set<std::pair<std::int32_t, std::int32_t>>;

const CanvasFonts& Fonts() {
    static const CanvasFonts fonts = [] {
        CanvasFonts loaded;
        std::string problem;
        if (!LoadCanvasFonts(loaded, problem)) ADD_FAILURE() << problem;
        return loaded;
    }();
    return fonts;
}

/// A canvas with pen, brush and letters in colours of their own.
PaintingCanvas SmallCanvas(std::int32_t width = 20, std::int32_t height = 12) {
    PaintingCanvas canvas(width, height, Fonts(), kGround);
    canvas.SelectObject(CanvasObject::DcPen);
    canvas.SelectObject(CanvasObject::DcBrush);
    canvas.SetDcPenColor(kPen);
    canvas.SetDcBrushColor(kBrush);
    canvas.SetTextColor(kInk);
    canvas.SetTransparentBackground();
    return canvas;
}

Pixels PixelsIn(const PaintingCanvas& canvas, ColorRef color) {
    Pixels found;
    for (std::int32_t y = 0; y < canvas.Image().height; ++y) {
        for (std::int32_t x = 0; x < canvas.Image().width; ++x) {
            if (canvas.Image().At(x, y) == PixelOf(color)) found.insert({x, y});
        }
    }
    return found;
}

/// The picture as letters: P the pen, B the brush, I ink, + something between ink and ground.
std::vector<std::string> Picture(const PaintingCanvas& canvas) {
    std::vector<std::string> rows;
    for (std::int32_t y = 0; y < canvas.Image().height; ++y) {
        std::string row;
        for (std::int32_t x = 0; x < canvas.Image().width; ++x) {
            const RgbPixel pixel = canvas.Image().At(x, y);
            row += pixel == PixelOf(kGround)  ? '.'
                   : pixel == PixelOf(kPen)   ? 'P'
                   : pixel == PixelOf(kBrush) ? 'B'
                   : pixel == PixelOf(kInk)   ? 'I'
                                              : '+';
        }
        rows.push_back(row);
    }
    return rows;
}

/// The box around all that isn't ground; all 0 for an empty picture.
PixelRect InkBox(const RgbImage& image, ColorRef ground = kGround) {
    PixelRect box = {image.width, image.height, 0, 0};
    for (std::int32_t y = 0; y < image.height; ++y) {
        for (std::int32_t x = 0; x < image.width; ++x) {
            if (image.At(x, y) == PixelOf(ground)) continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
        }
    }
    return box.right == 0 ? PixelRect{} : box;
}

TEST(PixelOf, TakesRedFromTheLowByte) {
    EXPECT_EQ(PixelOf(0x180EE0), (RgbPixel{0xE0, 0x0E, 0x18}));
    EXPECT_EQ(PixelOf(0xC097), (RgbPixel{0x97, 0xC0, 0x00}));
}

TEST(PaintingCanvas, StartsOutErased) { EXPECT_EQ(PixelsIn(SmallCanvas(), kGround).size(), 240u); }

TEST(PaintingCanvas, EraseTakesEverythingAway) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.Rectangle(0, 0, 20, 12);
    canvas.Erase();
    EXPECT_EQ(PixelsIn(canvas, kGround).size(), 240u);
}

TEST(PaintingCanvas, BlitShowsThePicture) {
    std::vector<RgbImage> shown;
    PaintingCanvas canvas(4, 3, Fonts(), kGround, [&shown](const RgbImage& image) { shown.push_back(image); });
    canvas.Rectangle(0, 0, 4, 3);
    EXPECT_TRUE(shown.empty());
    canvas.Blit();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].pixels, canvas.Image().pixels);
    EXPECT_EQ(shown[0].width, 4);
    EXPECT_EQ(shown[0].height, 3);
}

TEST(PaintingCanvas, BlitWithoutAnyoneToShowItToDoesNothing) { EXPECT_NO_THROW(SmallCanvas().Blit()); }

TEST(PaintingCanvas, KeepsPenBrushAndFontApart) {
    PaintingCanvas canvas(4, 3, Fonts());
    EXPECT_EQ(canvas.SelectObject(CanvasObject::HudPen), CanvasObject::DefaultPen);
    EXPECT_EQ(canvas.SelectObject(CanvasObject::HollowBrush), CanvasObject::DefaultBrush);
    EXPECT_EQ(canvas.SelectObject(CanvasObject::Tahoma10), CanvasObject::DefaultFont);
    EXPECT_EQ(canvas.SelectObject(CanvasObject::DefaultPen), CanvasObject::HudPen);
    EXPECT_EQ(canvas.SelectObject(CanvasObject::DefaultBrush), CanvasObject::HollowBrush);
    EXPECT_EQ(canvas.SelectObject(CanvasObject::DefaultFont), CanvasObject::Tahoma10);
}

TEST(PaintingCanvas, TakesDcColorsThatAreSetAfterSelecting) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.SetDcPenColor(kInk);
    canvas.Rectangle(0, 0, 1, 1);
    EXPECT_EQ(canvas.Image().At(0, 0), PixelOf(kInk));
}

TEST(PaintedRectangle, FramesWithThePenInsideOfRightAndBottom) {
    PaintingCanvas canvas = SmallCanvas(9, 6);
    canvas.Rectangle(1, 1, 8, 5);
    const std::vector<std::string> expected = {
        ".........",  //
        ".PPPPPPP.",  //
        ".PBBBBBP.",  //
        ".PBBBBBP.",  //
        ".PPPPPPP.",  //
        ".........",
    };
    EXPECT_EQ(Picture(canvas), expected);
}

TEST(PaintedRectangle, TakesItsCornersInAnyOrder) {
    PaintingCanvas plain = SmallCanvas();
    plain.Rectangle(2, 3, 9, 8);
    for (const auto& corner : {std::array{9, 3, 2, 8}, std::array{2, 8, 9, 3}, std::array{9, 8, 2, 3}}) {
        PaintingCanvas turned = SmallCanvas();
        turned.Rectangle(corner[0], corner[1], corner[2], corner[3]);
        EXPECT_EQ(Picture(turned), Picture(plain));
    }
}

TEST(PaintedRectangle, WithTheHollowBrushIsAFrameOnly) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.SelectObject(CanvasObject::HollowBrush);
    canvas.Rectangle(0, 0, 20, 12);
    EXPECT_EQ(PixelsIn(canvas, kPen).size(), 60u);
    EXPECT_EQ(PixelsIn(canvas, kGround).size(), 180u);
}

TEST(PaintedRectangle, OfNoWidthOrHeightIsNothing) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.Rectangle(3, 3, 3, 9);
    canvas.Rectangle(3, 3, 9, 3);
    EXPECT_EQ(PixelsIn(canvas, kGround).size(), 240u);
}

TEST(PaintedRectangle, OfOnePixelIsThePens) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.Rectangle(3, 4, 4, 5);
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{3, 4}}));
    EXPECT_TRUE(PixelsIn(canvas, kBrush).empty());
}

TEST(PaintedRectangle, MayReachAsFarAsNumbersGo) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.Rectangle(kNear, kNear, kFar, kFar);
    EXPECT_EQ(PixelsIn(canvas, kBrush).size(), 240u);
    canvas.Rectangle(kNear, 5, kFar, kFar);  // only the upper edge is in the picture
    EXPECT_EQ(PixelsIn(canvas, kPen).size(), 20u);
}

TEST(PaintedEllipse, IsARoundDiscWithARim) {
    PaintingCanvas canvas = SmallCanvas(10, 9);
    canvas.Ellipse(1, 1, 8, 8);
    const std::vector<std::string> expected = {
        "..........",  //
        "...PPP....",  //
        "..PBBBP...",  //
        ".PBBBBBP..",  //
        ".PBBBBBP..",  //
        ".PBBBBBP..",  //
        "..PBBBP...",  //
        "...PPP....",  //
        "..........",
    };
    EXPECT_EQ(Picture(canvas), expected);
}

TEST(PaintedEllipse, TouchesAllSidesOfItsBoxAndIsTheSameFromEachSide) {
    for (const auto& [width, height] : {std::pair{14, 14}, std::pair{15, 8}, std::pair{4, 11}, std::pair{2, 2}}) {
        PaintingCanvas canvas = SmallCanvas();
        canvas.Ellipse(1, 0, 1 + width, height);
        const PixelRect box = InkBox(canvas.Image());
        EXPECT_EQ(box.left, 1);
        EXPECT_EQ(box.top, 0);
        EXPECT_EQ(box.right, 1 + width);
        EXPECT_EQ(box.bottom, std::min(height, 12));
        for (const auto& [x, y] : PixelsIn(canvas, kPen)) EXPECT_EQ(canvas.Image().At(width + 1 - x, y), PixelOf(kPen));
    }
}

TEST(PaintedEllipse, WithTheHollowBrushLeavesItsInsideAlone) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.SelectObject(CanvasObject::HollowBrush);
    canvas.Ellipse(1, 1, 11, 11);
    EXPECT_EQ(canvas.Image().At(6, 6), PixelOf(kGround));
    EXPECT_EQ(canvas.Image().At(6, 1), PixelOf(kPen));
}

TEST(PaintedEllipse, MayReachAsFarAsNumbersGo) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.Ellipse(kNear, kNear, kFar, kFar);
    EXPECT_EQ(PixelsIn(canvas, kBrush).size(), 240u);
    canvas.Erase();
    canvas.Ellipse(308, kFar - 14, 322, kFar);
    EXPECT_EQ(PixelsIn(canvas, kGround).size(), 240u);
}

TEST(PaintedLine, LeavesOutItsEnd) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(2, 3);
    canvas.LineTo(6, 3);
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{2, 3}, {3, 3}, {4, 3}, {5, 3}}));
}

TEST(PaintedLine, ToWhereItStartsIsNothing) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(2, 3);
    canvas.LineTo(2, 3);
    EXPECT_TRUE(PixelsIn(canvas, kPen).empty());
}

TEST(PaintedLine, StartsWhereTheLastOneEnded) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(1, 1);
    canvas.LineTo(3, 1);
    canvas.LineTo(3, 3);
    canvas.LineTo(4, 3);
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{1, 1}, {2, 1}, {3, 1}, {3, 2}, {3, 3}}));
}

TEST(PaintedLine, StartsAtTheOriginOnAFreshCanvas) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.LineTo(0, 2);
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{0, 0}, {0, 1}}));
}

TEST(PaintedLine, RunsDiagonally) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(5, 1);
    canvas.LineTo(2, 4);
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{5, 1}, {4, 2}, {3, 3}}));
}

TEST(PaintedLine, TakesTheUpperOrLeftOfTwoEquallyNearPixels) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(0, 5);
    canvas.LineTo(2, 6);  // at x = 1 halfway between 5 and 6
    canvas.MoveTo(10, 5);
    canvas.LineTo(12, 4);  // at x = 11 halfway between 5 and 4
    canvas.MoveTo(15, 5);
    canvas.LineTo(16, 7);  // at y = 6 halfway between 15 and 16
    EXPECT_EQ(PixelsIn(canvas, kPen), (Pixels{{0, 5}, {1, 5}, {10, 5}, {11, 4}, {15, 5}, {15, 6}}));
}

TEST(PaintedLine, TakesTheSamePixelsBackwards) {
    for (std::int32_t x = 0; x < 20; ++x) {
        for (std::int32_t y = 0; y < 12; ++y) {
            PaintingCanvas there = SmallCanvas(), back = SmallCanvas();
            there.MoveTo(9, 6);
            there.LineTo(x, y);
            back.MoveTo(x, y);
            back.LineTo(9, 6);
            Pixels thereAll = PixelsIn(there, kPen), backAll = PixelsIn(back, kPen);
            thereAll.insert({x, y});
            backAll.insert({9, 6});
            ASSERT_EQ(thereAll, backAll) << x << ", " << y;
        }
    }
}

TEST(PaintedLine, PaintsTheNearestPixelOfEachStep) {
    for (std::int32_t x = 0; x < 20; ++x) {
        for (std::int32_t y = 0; y < 12; ++y) {
            PaintingCanvas canvas = SmallCanvas();
            canvas.MoveTo(9, 6);
            canvas.LineTo(x, y);
            const std::int32_t dx = x - 9, dy = y - 6, steps = std::max(std::abs(dx), std::abs(dy));
            const Pixels painted = PixelsIn(canvas, kPen);
            ASSERT_EQ(painted.size(), std::size_t(steps));
            for (const auto& [px, py] : painted) {
                // Off the line by at most half a pixel, across the longer axis: |cross product| / steps <= 1 / 2.
                ASSERT_LE(2 * std::abs((px - 9) * dy - (py - 6) * dx), steps) << x << ", " << y;
            }
        }
    }
}

TEST(PaintedLine, IsTheSameWhereItLeavesThePicture) {
    // The same line on a large canvas, of which the small one is a window.
    for (const auto& [x0, y0, x1, y1] : {std::array{-37, -11, 45, 30}, std::array{60, -40, -13, 33}, std::array{5, 90, 12, -70},
                                         std::array{-9, 8, 200, 3}, std::array{13, -5, 11, 80}}) {
        PaintingCanvas small = SmallCanvas(), large = SmallCanvas(400, 200);
        small.MoveTo(x0, y0);
        small.LineTo(x1, y1);
        large.MoveTo(x0 + 100, y0 + 90);
        large.LineTo(x1 + 100, y1 + 90);
        EXPECT_FALSE(PixelsIn(small, kPen).empty());
        for (std::int32_t y = 0; y < 12; ++y) {
            for (std::int32_t x = 0; x < 20; ++x) ASSERT_EQ(small.Image().At(x, y), large.Image().At(x + 100, y + 90));
        }
    }
}

TEST(PaintedLine, MayReachAsFarAsNumbersGo) {
    PaintingCanvas canvas = SmallCanvas();
    canvas.MoveTo(7, kNear);
    canvas.LineTo(7, kFar);
    EXPECT_EQ(PixelsIn(canvas, kPen).size(), 12u);
    canvas.Erase();
    canvas.MoveTo(kFar, kFar);
    canvas.LineTo(kNear, kNear);
    EXPECT_EQ(PixelsIn(canvas, kPen).size(), 12u);
    EXPECT_EQ(canvas.Image().At(3, 3), PixelOf(kPen));
    canvas.Erase();
    canvas.MoveTo(kNear, kFar);
    canvas.LineTo(kFar, kFar);
    EXPECT_TRUE(PixelsIn(canvas, kPen).empty());
}

/// Where the ink of "H" falls, whose stems reach from the baseline up and which has no slant.
PixelRect InkOfH(const PixelRect& rect, std::uint32_t flags) {
    PaintingCanvas canvas = SmallCanvas(100, 60);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);
    canvas.DrawTextLine("H", rect, flags | kTextNoClip);
    return InkBox(canvas.Image());
}

TEST(PaintedText, GoesWhereItsFlagsSay) {
    const PixelRect rect = {20, 10, 80, 50};
    const std::int32_t width = Fonts().tahoma14Bold.WidthOf("H");
    const PixelRect plain = InkOfH(rect, kTextSingleLine);
    EXPECT_EQ(InkOfH(rect, kTextSingleLine | kTextCenter).left, plain.left + (60 - width) / 2);
    EXPECT_EQ(InkOfH(rect, kTextSingleLine | kTextRight).left, plain.left + 60 - width);
    EXPECT_EQ(InkOfH(rect, kTextSingleLine | kTextVCenter).top, plain.top + 13);  // (40 - 14) / 2
    EXPECT_EQ(InkOfH(rect, kTextSingleLine | kTextBottom).top, plain.top + 26);   // 40 - 14
}

TEST(PaintedText, IsSetByItsHeightAsASingleLineOnly) {
    const PixelRect rect = {20, 10, 80, 50};
    EXPECT_EQ(InkOfH(rect, kTextBottom).top, InkOfH(rect, 0).top);
    EXPECT_EQ(InkOfH(rect, kTextVCenter).top, InkOfH(rect, 0).top);
}

TEST(PaintedText, EndsAtItsRectangleUnlessTold) {
    PaintingCanvas clipped = SmallCanvas(100, 60), free = SmallCanvas(100, 60);
    const PixelRect rect = {20, 21, 45, 26};
    for (PaintingCanvas* canvas : {&clipped, &free}) {
        canvas->SelectObject(CanvasObject::Tahoma14Bold);
        canvas->DrawTextLine("Hand Brake", rect, kTextSingleLine | kTextVCenter | (canvas == &free ? kTextNoClip : kTextLeft));
    }
    const PixelRect inside = InkBox(clipped.Image()), whole = InkBox(free.Image());
    EXPECT_EQ(inside.right, 45);
    EXPECT_GE(inside.top, 21);
    EXPECT_LE(inside.bottom, 26);
    EXPECT_GT(whole.right, 60);
    EXPECT_LT(whole.top, 21);
    EXPECT_GT(whole.bottom, 26);
    for (std::int32_t y = 21; y < 26; ++y) {
        for (std::int32_t x = 20; x < 45; ++x) ASSERT_EQ(clipped.Image().At(x, y), free.Image().At(x, y));
    }
}

TEST(PaintedText, OffThePictureIsNothing) {
    PaintingCanvas canvas = SmallCanvas();
    for (const std::int32_t place : {kNear, -500, 500, kFar}) {
        canvas.DrawTextLine("km/h", {place, place, place, place}, kTextSingleLine | kTextNoClip);
        canvas.DrawTextLine("km/h", {place, place, place, place}, kTextSingleLine | kTextNoClip | kTextRight | kTextBottom);
        canvas.DrawTextLine("km/h", {kNear, kNear, place, place}, kTextSingleLine | kTextNoClip | kTextRight | kTextBottom);
    }
    EXPECT_EQ(InkBox(canvas.Image()).right, 0);
}

TEST(PaintedText, LeavesOnlyMixesOfInkAndGround) {
    PaintingCanvas canvas = SmallCanvas(200, 60);
    canvas.SelectObject(CanvasObject::Tahoma50Bold);
    canvas.DrawTextLine("1234567", {0, 0, 200, 60}, kTextSingleLine);
    EXPECT_GT(PixelsIn(canvas, kInk).size(), 500u);
    bool mixed = false;
    for (const RgbPixel& pixel : canvas.Image().pixels) {
        // From 0x33 all three channels move together: green up to 0xFF, red and blue down to 0.
        const double share = (pixel.green - 0x33) / double(0xFF - 0x33);
        ASSERT_NEAR(pixel.red, 0x33 * (1.0 - share), 1.0);
        ASSERT_EQ(pixel.blue, pixel.red);
        mixed = mixed || (share > 0.2 && share < 0.8);
    }
    EXPECT_TRUE(mixed);
}

TEST(PaintedText, OnAFreshCanvasStandsOnWhite) {
    PaintingCanvas canvas(40, 20, Fonts(), kGround);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);
    canvas.DrawTextLine("i", {4, 3, 40, 20}, kTextSingleLine);
    const PixelRect box = InkBox(canvas.Image());
    EXPECT_EQ(box.left, 4);
    EXPECT_EQ(box.top, 3);
    EXPECT_EQ(box.right, 4 + Fonts().tahoma14Bold.WidthOf("i"));
    EXPECT_EQ(box.bottom, 17);
    EXPECT_EQ(canvas.Image().At(4, 3), PixelOf(0xFFFFFF));
}

TEST(PaintedText, ShowsAQuestionMarkForWhatItHasNoLetterFor) {
    PaintingCanvas odd = SmallCanvas(60, 20), marks = SmallCanvas(60, 20);
    odd.DrawTextLine("a\x01\x7F\xFF", {0, 0, 60, 20}, kTextSingleLine);
    marks.DrawTextLine("a???", {0, 0, 60, 20}, kTextSingleLine);
    EXPECT_EQ(odd.Image().pixels, marks.Image().pixels);
}

TEST(CanvasFonts, HaveCellsAsHighAsTheirName) {
    EXPECT_EQ(Fonts().tahoma50Bold.Height(), 50);
    EXPECT_EQ(Fonts().tahoma14Bold.Height(), 14);
    EXPECT_EQ(Fonts().tahoma10.Height(), 10);
}

TEST(CanvasFonts, HaveDigitsOfOneWidth) {
    for (char digit = '0'; digit <= '9'; ++digit) {
        EXPECT_EQ(Fonts().tahoma50Bold.GlyphOf(digit).advance, Fonts().tahoma50Bold.GlyphOf('0').advance);
    }
}

TEST(CanvasFonts, FitEveryTextOfTheDriveWindowIntoItsPlace) {
    EXPECT_LE(Fonts().tahoma14Bold.WidthOf("Hand Brake"), 70);
    EXPECT_LE(Fonts().tahoma14Bold.WidthOf("Throttle"), 70);
    EXPECT_LE(Fonts().tahoma14Bold.WidthOf("Gear: Backward"), 100);
    EXPECT_LE(Fonts().tahoma14Bold.WidthOf("< Press ENTER to start >"), 300);
    EXPECT_LE(Fonts().tahoma50Bold.WidthOf("288") + Fonts().tahoma14Bold.WidthOf("km/h"), 100);
    EXPECT_LE(Fonts().tahoma14Bold.WidthOf("Press a key for the action"), 225);
}

TEST(CanvasFonts, ThatAreMissingEndInOneSentence) {
    CanvasFonts fonts;
    std::string problem;
    EXPECT_FALSE(LoadCanvasFonts(fonts, problem, "No Such Letters"));
    EXPECT_EQ(problem, "The font \"No Such Letters\" (regular) isn't installed.");
    EXPECT_EQ(fonts.tahoma14Bold.Height(), 0);
}

// The picture of the drive window against the calls that make it.

struct NamedHud {
    const char* name;
    HudState state;
};

std::vector<NamedHud> HudStates() {
    HudState idle, parked, running, flatOut, broken;
    parked.active = true;
    parked.handBrake = true;
    running = {{0.0f, 2500.0f, 0.0f}, 1e-5, false, false, false, 4.0f, 1.0f, true, true};
    flatOut = {{0.0f, -8000.0f, 0.0f}, 1e-5, true, true, true, -30.0f, 30.0f, true, true};
    broken.velocity = {std::numeric_limits<float>::infinity(), 0.0f, 0.0f};
    broken.throttle = std::numeric_limits<float>::quiet_NaN();
    broken.brake = std::numeric_limits<float>::infinity();
    return {{"idle", idle}, {"parked", parked}, {"running", running}, {"flatOut", flatOut}, {"broken", broken}};
}

struct PaintedHud {
    PaintingCanvas canvas{300, 114, Fonts()};
    RecordingCanvas record{300, 114};

    explicit PaintedHud(const HudState& state) {
        DrawHud(state, canvas);
        DrawHud(state, record);
    }
};

/// Where a recorded text may leave ink: its rectangle, or all around it when it isn't clipped.
bool MayInk(const drawn::DrawTextLine& text, std::int32_t x, std::int32_t y) {
    if (text.flags & kTextNoClip) return y >= text.bottom - 60 && y < text.bottom + 10 && x >= text.left - 1;
    return x >= text.left && x < text.right && y >= text.top && y < text.bottom;
}

TEST(PaintedHud, ShowsEachRecordedTickWithItsFrameAndFill) {
    for (const NamedHud& hud : HudStates()) {
        SCOPED_TRACE(hud.name);
        const PaintedHud painted(hud.state);
        for (const CanvasCall& call : painted.record.calls) {
            const auto* tick = std::get_if<drawn::Rectangle>(&call);
            if (tick == nullptr || tick->left == 0) continue;
            for (std::int32_t y = tick->top; y < tick->bottom; ++y) {
                for (std::int32_t x = tick->left; x < tick->right; ++x) {
                    const bool rim = x == tick->left || x == tick->right - 1 || y == tick->top || y == tick->bottom - 1;
                    // Digits are drawn before the bars, so nothing covers a tick.
                    ASSERT_EQ(painted.canvas.Image().At(x, y), PixelOf(rim ? 0xC097 : 0x333333)) << x << ", " << y;
                }
            }
        }
    }
}

TEST(PaintedHud, HasAThinGreenFrameAllAround) {
    for (const NamedHud& hud : HudStates()) {
        SCOPED_TRACE(hud.name);
        if (std::string(hud.name) == "broken") continue;  // ten digits run over the frame
        const PaintedHud painted(hud.state);
        const RgbImage& image = painted.canvas.Image();
        for (std::int32_t x = 0; x < 300; ++x) {
            ASSERT_EQ(image.At(x, 0), PixelOf(0xC097));
            ASSERT_EQ(image.At(x, 113), PixelOf(0xC097));
        }
        for (std::int32_t y = 0; y < 114; ++y) {
            ASSERT_EQ(image.At(0, y), PixelOf(0xC097));
            ASSERT_EQ(image.At(299, y), PixelOf(0xC097));
        }
    }
}

TEST(PaintedHud, ShowsEachRecordedTextInItsColour) {
    for (const NamedHud& hud : HudStates()) {
        SCOPED_TRACE(hud.name);
        const PaintedHud painted(hud.state);
        ColorRef color = 0;
        int texts = 0;
        for (const CanvasCall& call : painted.record.calls) {
            if (const auto* set = std::get_if<drawn::SetTextColor>(&call)) color = set->color;
            const auto* text = std::get_if<drawn::DrawTextLine>(&call);
            if (text == nullptr) continue;
            ++texts;
            int inked = 0;
            for (std::int32_t y = std::max(text->top, 1); y < std::min(text->bottom, 113); ++y) {
                for (std::int32_t x = std::max(text->left, 1); x < std::min(text->right, 299); ++x) {
                    inked += painted.canvas.Image().At(x, y) == PixelOf(color);
                }
            }
            EXPECT_GE(inked, 10) << text->text;
        }
        EXPECT_EQ(texts, 8);
    }
}

TEST(PaintedHud, IsGroundWhereNothingWasRecorded) {
    for (const NamedHud& hud : HudStates()) {
        SCOPED_TRACE(hud.name);
        const PaintedHud painted(hud.state);
        int ground = 0;
        for (std::int32_t y = 1; y < 113; ++y) {
            for (std::int32_t x = 1; x < 299; ++x) {
                const bool drawn =
                    std::any_of(painted.record.calls.begin(), painted.record.calls.end(), [x, y](const CanvasCall& call) {
                        if (const auto* text = std::get_if<drawn::DrawTextLine>(&call)) return MayInk(*text, x, y);
                        const auto* box = std::get_if<drawn::Rectangle>(&call);
                        return box != nullptr && box->left != 0 && x >= box->left && x < box->right && y >= box->top &&
                               y < box->bottom;
                    });
                if (drawn) continue;
                ASSERT_EQ(painted.canvas.Image().At(x, y), PixelOf(0x333333)) << x << ", " << y;
                ++ground;
            }
        }
        EXPECT_GT(ground, 3000);
    }
}

TEST(PaintedHud, LeavesNoTraceOfThePictureBefore) {
    const std::vector<NamedHud> states = HudStates();
    PaintingCanvas used(300, 114, Fonts());
    for (const NamedHud& hud : states) {
        DrawHud(hud.state, used);
        EXPECT_EQ(used.Image().pixels, PaintedHud(hud.state).canvas.Image().pixels) << hud.name;
    }
}

}  // namespace
}  // namespace tavrik::test
