#include "drive/damper_drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/drive/recording_canvas.h"

namespace tavrik {
namespace {

using test::CanvasCall;
using test::RecordingCanvas;
namespace drawn = test::drawn;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min(), kMost = std::numeric_limits<std::int32_t>::max();

constexpr double kPi = 3.141592653589793;

std::vector<CanvasCall> Picture(const DamperModel& model) {
    RecordingCanvas canvas(kStandPictureWidth, kStandPictureHeight);
    DrawStand(model, canvas);
    return canvas.calls;
}

void AddLine(std::vector<CanvasCall>& calls, std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1) {
    calls.push_back(drawn::MoveTo{x0, y0});
    calls.push_back(drawn::LineTo{x1, y1});
}

// Where the parts of a picture begin among its calls: 3 selections and the erasure; a pen and 39 + 21 grid lines; a pen and 3
// white lines; 2 pens with a line each; 3 roads of 601 points; a pen and 3 traces of 300; a pen and 60 times 3 segments of the
// coil's back; the housing, the oil, the rod; a pen and 68 times 3 segments of its front; 3 selections and the showing.
constexpr std::size_t kErase = 3, kGrid = 4, kWhiteLines = kGrid + 1 + 60 * 2, kBaseLines = kWhiteLines + 1 + 3 * 2,
                      kRoad = kBaseLines + 2 * 3, kTrace = kRoad + 3 * 601, kCoilBack = kTrace + 1 + 3 * 300,
                      kHousing = kCoilBack + 1 + 60 * 3 * 2, kOil = kHousing + 3, kRod = kOil + 7, kCoilFront = kRod + 7,
                      kEnd = kCoilFront + 1 + 68 * 3 * 2, kCalls = kEnd + 4;

std::vector<CanvasCall> Part(const std::vector<CanvasCall>& calls, std::size_t first, std::size_t end) {
    return {calls.begin() + std::ptrdiff_t(first), calls.begin() + std::ptrdiff_t(end)};
}

TEST(DrawStand, SelectsPenBrushAndFontAndErases) {
    const std::vector<CanvasCall> expected = {drawn::SelectObject{CanvasObject::DcPen},
                                              drawn::SelectObject{CanvasObject::DcBrush},
                                              drawn::SelectObject{CanvasObject::HostFont}, drawn::Erase{}};
    EXPECT_EQ(Part(Picture({}), 0, kGrid), expected);
}

TEST(DrawStand, GridIsBlueWithAMeshOfThirtyPixels) {
    std::vector<CanvasCall> expected = {drawn::SetDcPenColor{0xFF0000}};
    for (std::int32_t x = -255; x <= 885; x += 30) AddLine(expected, x, 5, x, 295);
    for (std::int32_t y = -80; y <= 520; y += 30) AddLine(expected, 5, y, 640, y);
    EXPECT_EQ(Part(Picture({}), kGrid, kWhiteLines), expected);
}

TEST(DrawStand, WhiteLinesStandAtTheMiddleAndAUnitToEitherSide) {
    std::vector<CanvasCall> expected = {drawn::SetDcPenColor{0xFFFFFF}};
    AddLine(expected, 15, 5, 15, 295);
    AddLine(expected, 315, 5, 315, 295);
    AddLine(expected, 615, 5, 615, 295);
    EXPECT_EQ(Part(Picture({}), kWhiteLines, kBaseLines), expected);
}

TEST(DrawStand, BodyRestsOnAGreenLineAndRoadOnARedOne) {
    std::vector<CanvasCall> expected = {drawn::SetDcPenColor{0x00FF00}};
    AddLine(expected, 5, 70, 640, 70);
    expected.push_back(drawn::SetDcPenColor{0x0000FF});
    AddLine(expected, 5, 220, 640, 220);
    EXPECT_EQ(Part(Picture({}), kBaseLines, kRoad), expected);
}

TEST(DrawStand, FlatRoadIsThreeLinesFromRightToLeft) {
    std::vector<CanvasCall> expected;
    for (const std::int32_t y : {220, 221, 219}) {
        expected.push_back(drawn::MoveTo{615, y});
        for (std::int32_t x = 615; x >= 16; --x) expected.push_back(drawn::LineTo{x, y});
    }
    EXPECT_EQ(Part(Picture({}), kRoad, kTrace), expected);
}

TEST(DrawStand, RoadFollowsItsHeightsAtEachPixel) {
    DamperModel model;
    AddBump(model.bumps, 0.0, 1.0);
    AddBump(model.bumps, 0.531, -1.0);
    AddBump(model.bumps, -0.99, 1.0);
    std::vector<CanvasCall> expected;
    for (const double base : {220.0, 221.0, 219.0}) {
        expected.push_back(drawn::MoveTo{615, std::int32_t(base - RoadHeight(model.bumps, -1.0) * 20.0)});
        for (int i = -300; i <= 299; ++i)
            expected.push_back(drawn::LineTo{315 - i, std::int32_t(base - RoadHeight(model.bumps, i / 300.0) * 20.0)});
    }
    EXPECT_EQ(Part(Picture(model), kRoad, kTrace), expected);
}

TEST(DrawStand, KnollUnderTheWheelLiftsRoadAndWheelByTwentyPixels) {
    DamperModel model;
    AddBump(model.bumps, 0.0, 1.0);
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kRoad + 301], CanvasCall(drawn::LineTo{315, 200}));
    EXPECT_EQ(calls[kHousing + 2], CanvasCall(drawn::Rectangle{300, 192, 330, 100}));
}

TEST(DrawStand, BumpAheadOfTheWheelIsToItsRight) {
    DamperModel model;
    AddBump(model.bumps, -0.5, 1.0);
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kRoad + 301], CanvasCall(drawn::LineTo{315, 220}));
    EXPECT_EQ(calls[kRoad + 301 - 150], CanvasCall(drawn::LineTo{465, 200}));
}

TEST(DrawStand, TraceBeginsFivePixelsToTheRightAndRunsBehind) {
    DamperModel model;
    for (std::size_t i = 0; i < kStandHistory; ++i) model.history[i] = 0.01 * double(i) - 1.0;
    std::vector<CanvasCall> expected = {drawn::SetDcPenColor{0x00FF00}};
    for (const double base : {70.0, 71.0, 69.0}) {
        expected.push_back(drawn::MoveTo{320, std::int32_t(base + 20.0)});
        for (int i = 1; i <= 299; ++i)
            expected.push_back(drawn::LineTo{315 - i, std::int32_t(base - model.history[std::size_t(i)] * 20.0)});
    }
    EXPECT_EQ(Part(Picture(model), kTrace, kCoilBack), expected);
}

/// The segments of the coil for the given places of wheel and body.
std::vector<CanvasCall> Coil(double wheelY, double bodyY, bool back) {
    std::vector<CanvasCall> calls = {drawn::SetDcPenColor{0x00FFFF}};
    const double length = wheelY - bodyY - 40;
    for (int i = 0; i <= 127; ++i) {
        if (back != ((i & 31) > 16)) continue;
        const auto x = [](int k) { return std::int32_t(315.0 + std::cos(k / 128.0 * kPi * 8.0) * 18.0); };
        for (const double top : {bodyY + 8, bodyY + 7, bodyY + 9})
            AddLine(calls, x(i), std::int32_t(top + length * i / 128.0), x(i + 1),
                    std::int32_t(top + length * (i + 1) / 128.0));
    }
    return calls;
}

TEST(DrawStand, BackOfTheCoilIsTheFarHalfOfEachOfFourTurns) {
    const auto part = Part(Picture({}), kCoilBack, kHousing);
    EXPECT_EQ(part, Coil(220, 70, /*back=*/true));
    EXPECT_EQ(part[1], CanvasCall(drawn::MoveTo{297, 92}));  // 17/128 of 110 below 78, nearly the coil's left side
}

TEST(DrawStand, FrontOfTheCoilIsTheNearHalfOfEachOfFourTurns) {
    const auto part = Part(Picture({}), kCoilFront, kEnd);
    EXPECT_EQ(part, Coil(220, 70, /*back=*/false));
    EXPECT_EQ(part[1], CanvasCall(drawn::MoveTo{333, 78}));  // starts at the coil's right side
}

TEST(DrawStand, CoilStretchesBetweenBodyAndWheel) {
    DamperModel model;
    model.bodyHeight = 1.5;           // body at 40
    AddBump(model.bumps, 0.0, -1.0);  // wheel at 240
    const auto calls = Picture(model);
    EXPECT_EQ(Part(calls, kCoilBack, kHousing), Coil(240, 40, true));
    EXPECT_EQ(Part(calls, kCoilFront, kEnd), Coil(240, 40, false));
}

TEST(DrawStand, CoilOfABodyBelowTheWheelIsTurnedOver) {
    DamperModel model;
    model.bodyHeight = -9.0;  // body at 250
    EXPECT_EQ(Part(Picture(model), kCoilBack, kHousing), Coil(220, 250, true));
}

TEST(DrawStand, HousingIsAHollowWhiteFrame) {
    const std::vector<CanvasCall> expected = {drawn::SetDcPenColor{0xFFFFFF}, drawn::SelectObject{CanvasObject::HollowBrush},
                                              drawn::Rectangle{300, 212, 330, 120}};
    EXPECT_EQ(Part(Picture({}), kHousing, kOil), expected);
}

TEST(DrawStand, OilStandsInTwoColoursAboveAndBelowThePiston) {
    const std::vector<CanvasCall> expected = {
        drawn::SelectObject{CanvasObject::DcBrush}, drawn::SetDcBrushColor{0x004064}, drawn::SetDcPenColor{0x004064},
        drawn::Rectangle{301, 183, 329, 121},       drawn::SetDcBrushColor{0x645000}, drawn::SetDcPenColor{0x645000},
        drawn::Rectangle{301, 187, 329, 211}};
    EXPECT_EQ(Part(Picture({}), kOil, kRod), expected);
}

TEST(DrawStand, EyesPlateRodAndPistonAreBlackInWhiteFrames) {
    const std::vector<CanvasCall> expected = {drawn::SetDcBrushColor{0},           drawn::SetDcPenColor{0xFFFFFF},
                                              drawn::Ellipse{308, 63, 322, 77},    drawn::Rectangle{300, 155, 330, 160},
                                              drawn::Rectangle{310, 77, 320, 160}, drawn::Ellipse{308, 213, 322, 227},
                                              drawn::Rectangle{301, 183, 329, 187}};
    EXPECT_EQ(Part(Picture({}), kRod, kCoilFront), expected);
}

TEST(DrawStand, RodFollowsTheBodyAndPistonTheDamper) {
    DamperModel model;
    model.bodyHeight = 1.0;     // body 20 pixels up
    model.damperTravel = -0.5;  // piston up by 10
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kRod + 2], CanvasCall(drawn::Ellipse{308, 43, 322, 57}));
    EXPECT_EQ(calls[kRod + 4], CanvasCall(drawn::Rectangle{310, 57, 320, 140}));
    EXPECT_EQ(calls[kRod + 6], CanvasCall(drawn::Rectangle{301, 173, 329, 177}));
    EXPECT_EQ(calls[kRod + 5], CanvasCall(drawn::Ellipse{308, 213, 322, 227}));
}

TEST(DrawStand, PlacesOfPartsAreTruncatedTowardsZero) {
    DamperModel model;
    model.bodyHeight = 3.53;  // 70 - 70.6 is -0.6, so the body is at 0
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kRod + 2], CanvasCall(drawn::Ellipse{308, -7, 322, 7}));
    model.bodyHeight = 0.03;  // 69.4
    EXPECT_EQ(Picture(model)[kRod + 2], CanvasCall(drawn::Ellipse{308, 62, 322, 76}));
}

TEST(DrawStand, EndsWithWhatWasSelectedBeforeAndShowsThePicture) {
    RecordingCanvas canvas;
    canvas.SelectObject(CanvasObject::HudPen);
    canvas.SelectObject(CanvasObject::HollowBrush);
    canvas.SelectObject(CanvasObject::Tahoma10);
    canvas.calls.clear();
    DrawStand({}, canvas);
    const std::vector<CanvasCall> expected = {drawn::SelectObject{CanvasObject::HudPen},
                                              drawn::SelectObject{CanvasObject::HollowBrush},
                                              drawn::SelectObject{CanvasObject::Tahoma10}, drawn::Blit{}};
    ASSERT_EQ(canvas.calls.size(), kCalls);
    EXPECT_EQ(Part(canvas.calls, kEnd, kCalls), expected);
    EXPECT_EQ(canvas.Pen(), CanvasObject::HudPen);
    EXPECT_EQ(canvas.Brush(), CanvasObject::HollowBrush);
    EXPECT_EQ(canvas.Font(), CanvasObject::Tahoma10);
}

TEST(DrawStand, ErasesFirstAndShowsOnce) {
    const auto calls = Picture({});
    EXPECT_EQ(std::ranges::count(calls, CanvasCall(drawn::Erase{})), 1);
    EXPECT_EQ(std::ranges::count(calls, CanvasCall(drawn::Blit{})), 1);
    EXPECT_EQ(calls[kErase], CanvasCall(drawn::Erase{}));
    EXPECT_EQ(calls.back(), CanvasCall(drawn::Blit{}));
}

TEST(DrawStand, HeightsThatAreNotFiniteMakeAPictureOfTheUsualLength) {
    for (const double body : {kInfinity, -kInfinity, kNan, 1e300, 0.0}) {
        for (const double travel : {kInfinity, -kInfinity, kNan, -1e300, 0.0}) {
            DamperModel model;
            model.bodyHeight = body;
            model.damperTravel = travel;
            model.history.fill(body);
            EXPECT_EQ(Picture(model).size(), kCalls) << body << ' ' << travel;
        }
    }
}

TEST(DrawStand, InfiniteHeightIsDrawnAtTheLargestCoordinates) {
    DamperModel model;
    model.bodyHeight = kInfinity;
    model.history.fill(-kInfinity);
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kTrace + 1], CanvasCall(drawn::MoveTo{320, kMost}));
    EXPECT_EQ(calls[kRod + 2], CanvasCall(drawn::Ellipse{308, kLeast, 322, kLeast + 7}));
}

TEST(DrawStand, HeightThatIsNoNumberIsDrawnAtZero) {
    DamperModel model;
    model.bodyHeight = kNan;
    model.history.fill(kNan);
    const auto calls = Picture(model);
    EXPECT_EQ(calls[kTrace + 2], CanvasCall(drawn::LineTo{314, 0}));
    EXPECT_EQ(calls[kRod + 2], CanvasCall(drawn::Ellipse{308, -7, 322, 7}));
    EXPECT_EQ(calls[kRod + 6], CanvasCall(drawn::Rectangle{301, -2, 329, 2}));
}

TEST(DrawStand, EveryLineOfAPictureFitsItsCanvasWhileAllIsAtRest) {
    // Grid lines aside, which run over the edge on purpose.
    const auto calls = Picture({});
    for (std::size_t i = kRoad; i < kEnd; ++i) {
        if (const auto* to = std::get_if<drawn::LineTo>(&calls[i])) {
            EXPECT_TRUE(to->x >= 0 && to->x < kStandPictureWidth && to->y >= 0 && to->y < kStandPictureHeight) << i;
        }
    }
}

}  // namespace
}  // namespace tavrik
