#include "drive/hud.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/drive/recording_canvas.h"

namespace tavrik::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// A text with what was selected when it was drawn.
struct DrawnText {
    drawn::DrawTextLine line;
    ColorRef color;
    CanvasObject font;
};

std::vector<DrawnText> TextsOf(const RecordingCanvas& canvas) {
    std::vector<DrawnText> texts;
    ColorRef color = 0;
    CanvasObject font = CanvasObject::DefaultFont;
    for (const CanvasCall& call : canvas.calls) {
        if (const auto* select = std::get_if<drawn::SelectObject>(&call)) {
            if (select->object >= CanvasObject::DefaultFont) font = select->object;
        } else if (const auto* set = std::get_if<drawn::SetTextColor>(&call)) {
            color = set->color;
        } else if (const auto* line = std::get_if<drawn::DrawTextLine>(&call)) {
            texts.push_back({*line, color, font});
        }
    }
    return texts;
}

// The texts in the order they are drawn in.
enum TextPlace : std::size_t { kSpeed, kUnit, kGear, kThrottle, kBrake, kNitro, kHandBrake, kPrompt, kTextCount };

DrawnText TextAt(const HudState& state, TextPlace place, std::int32_t width = 300, std::int32_t height = 114) {
    RecordingCanvas canvas(width, height);
    DrawHud(state, canvas);
    const std::vector<DrawnText> texts = TextsOf(canvas);
    EXPECT_EQ(texts.size(), kTextCount);
    return texts.at(place);
}

std::string ShownSpeed(const Point3& velocity, double kilometresPerUnit) {
    HudState state;
    state.velocity = velocity;
    state.kilometresPerUnit = kilometresPerUnit;
    return TextAt(state, kSpeed).line.text;
}

/// The bar's rectangles: those that start at its top.
std::vector<drawn::Rectangle> TicksFrom(const HudState& state, std::int32_t top) {
    RecordingCanvas canvas;
    DrawHud(state, canvas);
    std::vector<drawn::Rectangle> ticks;
    for (const CanvasCall& call : canvas.calls) {
        const auto* rectangle = std::get_if<drawn::Rectangle>(&call);
        if (rectangle != nullptr && rectangle->top == top) ticks.push_back(*rectangle);
    }
    return ticks;
}

std::size_t ThrottleTicks(float throttle) {
    HudState state;
    state.throttle = throttle;
    return TicksFrom(state, 16).size();
}

std::size_t BrakeTicks(float brake) {
    HudState state;
    state.brake = brake;
    return TicksFrom(state, 36).size();
}

TEST(DrawHud, DrawsEverythingInItsOrder) {
    HudState state;
    state.velocity = {0.0f, 3000.0f, 4000.0f};  // 5000 cm/s
    state.nitro = true;
    state.throttle = 0.3f;  // sqrt(12) is 3.46: two ticks
    state.brake = 0.1f;     // one tick
    state.active = true;
    RecordingCanvas canvas;

    DrawHud(state, canvas);

    const std::vector<std::string> expected = {
        "SelectObject(DcPen)",
        "SelectObject(DcBrush)",
        "SelectObject(HostFont)",
        "SelectObject(Tahoma14Bold)",
        "SetDcBrushColor(0x333333)",
        "SelectObject(HudPen)",
        "Rectangle(0, 0, 300, 114)",
        "SetTransparentBackground()",
        "SetTextColor(0xC8C8C8)",
        "SelectObject(Tahoma50Bold)",
        "DrawTextLine(\"180\", 190, 0, 290, 57, 0x128)",
        "SetTextColor(0xAAAAAA)",
        "SelectObject(Tahoma14Bold)",
        "DrawTextLine(\"km/h\", 190, 0, 290, 49, 0x12A)",
        "DrawTextLine(\"Gear: Forward\", 190, 57, 290, 77, 0x28)",
        "SetTextColor(0xC097)",
        "DrawTextLine(\"Throttle\", 10, 10, 80, 30, 0x24)",
        "DrawTextLine(\"Brake\", 10, 30, 80, 50, 0x24)",
        "SetTextColor(0xC097)",
        "DrawTextLine(\"Nitro\", 10, 50, 80, 70, 0x28)",
        "SetTextColor(0x646464)",
        "DrawTextLine(\"Hand Brake\", 10, 70, 80, 90, 0x28)",
        "SetDcPenColor(0xC8C8C8)",
        "SelectObject(HudPen)",
        "Rectangle(82, 16, 85, 24)",
        "SelectObject(HudPen)",
        "Rectangle(87, 16, 90, 24)",
        "SetDcPenColor(0xC8C8C8)",
        "SelectObject(HudPen)",
        "Rectangle(82, 36, 85, 44)",
        "SetTextColor(0xC097)",
        "SelectObject(Tahoma14Bold)",
        "DrawTextLine(\"< Press ENTER to start >\", 0, 94, 300, 114, 0x125)",
        "SelectObject(DefaultPen)",
        "SelectObject(DefaultBrush)",
        "SelectObject(DefaultFont)",
    };
    EXPECT_EQ(canvas.Texts(), expected);
}

TEST(DrawHud, LeavesSelectedWhatWasSelectedBefore) {
    RecordingCanvas canvas;
    canvas.SelectObject(CanvasObject::DcPen);
    canvas.SelectObject(CanvasObject::HollowBrush);
    canvas.SelectObject(CanvasObject::Tahoma10);

    DrawHud({}, canvas);

    EXPECT_EQ(canvas.Pen(), CanvasObject::DcPen);
    EXPECT_EQ(canvas.Brush(), CanvasObject::HollowBrush);
    EXPECT_EQ(canvas.Font(), CanvasObject::Tahoma10);
}

TEST(DrawHud, FollowsTheSizeOfTheWindowInWholePixels) {
    // 301 / 2 is 150 and 115 / 2 is 57.
    EXPECT_EQ(TextAt({}, kSpeed, 301, 115).line, (drawn::DrawTextLine{"0", 190, 0, 291, 57, 0x128}));
    EXPECT_EQ(TextAt({}, kUnit, 301, 115).line, (drawn::DrawTextLine{"km/h", 190, 0, 291, 49, 0x12A}));
    EXPECT_EQ(TextAt({}, kGear, 301, 115).line, (drawn::DrawTextLine{"Gear: Forward", 190, 57, 291, 77, 0x28}));
    EXPECT_EQ(TextAt({}, kPrompt, 301, 115).line, (drawn::DrawTextLine{"< Click to activate >", 0, 95, 301, 115, 0x125}));
}

TEST(HudSpeed, IsKilometresAnHour) { EXPECT_EQ(ShownSpeed({0.0f, 2500.0f, 0.0f}, 1e-5), "90"); }

TEST(HudSpeed, HasTheLargeLightFont) {
    const DrawnText speed = TextAt({}, kSpeed);
    EXPECT_EQ(speed.color, 0xC8C8C8u);
    EXPECT_EQ(speed.font, CanvasObject::Tahoma50Bold);
}

TEST(HudSpeed, LosesItsFraction) {
    EXPECT_EQ(ShownSpeed({1.0f, 0.0f, 0.0f}, 0.999 / 3600.0), "0");
    EXPECT_EQ(ShownSpeed({1.0f, 0.0f, 0.0f}, 99.99 / 3600.0), "99");
}

TEST(HudSpeed, IsPositiveForACarThatRollsBackward) { EXPECT_EQ(ShownSpeed({0.0f, -2500.0f, 0.0f}, 1e-5), "90"); }

TEST(HudSpeed, CountsEveryDirection) { EXPECT_EQ(ShownSpeed({2.0f, -3.0f, 6.0f}, 1.0 / 3600.0), "7"); }

TEST(HudSpeed, IsScaledInDoublePrecision) {
    // In single precision 16777217 km/h would show as 16777216.
    EXPECT_EQ(ShownSpeed({1.0f, 0.0f, 0.0f}, 16777217.5 / 3600.0), "16777217");
}

TEST(HudSpeed, OfNoNumberIsZero) { EXPECT_EQ(ShownSpeed({kNan, 0.0f, 0.0f}, 1e-5), "0"); }

TEST(HudSpeed, StopsAtTheLargestInteger) {
    EXPECT_EQ(ShownSpeed({kInfinity, 0.0f, 0.0f}, 1e-5), "2147483647");
    EXPECT_EQ(ShownSpeed({0.0f, -1e15f, 0.0f}, 1e-5), "2147483647");
}

TEST(HudUnit, HasTheSmallGreyFont) {
    const DrawnText unit = TextAt({}, kUnit);
    EXPECT_EQ(unit.line.text, "km/h");
    EXPECT_EQ(unit.color, 0xAAAAAAu);
    EXPECT_EQ(unit.font, CanvasObject::Tahoma14Bold);
}

TEST(HudGear, TellsTheDirection) {
    HudState state;
    EXPECT_EQ(TextAt(state, kGear).line.text, "Gear: Forward");
    state.reverse = true;
    const DrawnText gear = TextAt(state, kGear);
    EXPECT_EQ(gear.line.text, "Gear: Backward");
    EXPECT_EQ(gear.color, 0xAAAAAAu);
    EXPECT_EQ(gear.font, CanvasObject::Tahoma14Bold);
}

TEST(HudCaptions, OfTheBarsAreAlwaysOn) {
    for (const TextPlace place : {kThrottle, kBrake}) {
        const DrawnText caption = TextAt({}, place);
        EXPECT_EQ(caption.color, 0xC097u);
        EXPECT_EQ(caption.font, CanvasObject::Tahoma14Bold);
    }
}

TEST(HudLamps, LightUpEachForItself) {
    for (const bool nitro : {false, true}) {
        for (const bool handBrake : {false, true}) {
            HudState state;
            state.nitro = nitro;
            state.handBrake = handBrake;
            EXPECT_EQ(TextAt(state, kNitro).color, nitro ? 0xC097u : 0x646464u);
            EXPECT_EQ(TextAt(state, kHandBrake).color, handBrake ? 0xC097u : 0x646464u);
        }
    }
}

TEST(HudPrompt, AsksForAClickWithoutAttention) {
    HudState state;
    const DrawnText prompt = TextAt(state, kPrompt);
    EXPECT_EQ(prompt.line.text, "< Click to activate >");
    EXPECT_EQ(prompt.color, 0x180EE0u);
    EXPECT_EQ(prompt.font, CanvasObject::Tahoma14Bold);
}

TEST(HudPrompt, AsksForAClickWithoutAttentionEvenWhileRunning) {
    HudState state;
    state.running = true;
    const DrawnText prompt = TextAt(state, kPrompt);
    EXPECT_EQ(prompt.line.text, "< Click to activate >");
    EXPECT_EQ(prompt.color, 0x180EE0u);
}

TEST(HudPrompt, TellsHowToStopARun) {
    HudState state;
    state.active = state.running = true;
    const DrawnText prompt = TextAt(state, kPrompt);
    EXPECT_EQ(prompt.line.text, "< Press ENTER to stop >");
    EXPECT_EQ(prompt.color, 0x180EE0u);
}

TEST(HudPrompt, TellsHowToStartARun) {
    HudState state;
    state.active = true;
    const DrawnText prompt = TextAt(state, kPrompt);
    EXPECT_EQ(prompt.line.text, "< Press ENTER to start >");
    EXPECT_EQ(prompt.color, 0xC097u);
}

TEST(HudBar, OfNoDemandIsEmpty) {
    EXPECT_EQ(ThrottleTicks(0.0f), 0u);
    EXPECT_EQ(ThrottleTicks(-0.0f), 0u);
    EXPECT_EQ(BrakeTicks(0.0f), 0u);
}

TEST(HudBar, OfOneHasFiveTicks) { EXPECT_EQ(ThrottleTicks(1.0f), 5u); }

TEST(HudBar, OfAHeldKeyHasElevenTicks) { EXPECT_EQ(ThrottleTicks(4.0f), 11u); }

TEST(HudBar, OfAHeldKeyWithNitroHasTwentyTicks) { EXPECT_EQ(ThrottleTicks(12.0f), 20u); }

TEST(HudBar, OfTheBrakeFollowsTheSameRule) {
    EXPECT_EQ(BrakeTicks(1.0f), 5u);
    EXPECT_EQ(BrakeTicks(4.0f), 11u);
    EXPECT_EQ(BrakeTicks(12.0f), 20u);
    EXPECT_EQ(BrakeTicks(25.6f), 31u);
}

TEST(HudBar, IsFullFrom25Point6On) {
    EXPECT_EQ(ThrottleTicks(25.59f), 30u);
    EXPECT_EQ(ThrottleTicks(25.6f), 31u);
    EXPECT_EQ(ThrottleTicks(26.0f), 31u);
    EXPECT_EQ(ThrottleTicks(1000.0f), 31u);
}

TEST(HudBar, OfANegativeDemandIsThatOfThePositiveOne) {
    for (const float throttle : {0.1f, 1.0f, 4.0f, 12.0f, 30.0f}) EXPECT_EQ(ThrottleTicks(-throttle), ThrottleTicks(throttle));
}

TEST(HudBar, OfAnInfiniteDemandIsFull) {
    EXPECT_EQ(ThrottleTicks(kInfinity), 31u);
    EXPECT_EQ(ThrottleTicks(-kInfinity), 31u);
    EXPECT_EQ(BrakeTicks(kInfinity), 31u);
    EXPECT_EQ(ThrottleTicks(std::numeric_limits<float>::max()), 31u);  // 40 times that is infinite
}

TEST(HudBar, OfADemandThatIsNoNumberIsEmpty) {
    EXPECT_EQ(ThrottleTicks(kNan), 0u);
    EXPECT_EQ(BrakeTicks(kNan), 0u);
}

TEST(HudBar, IsMeasuredInSinglePrecision) {
    // The largest single below 0.9: times 40 it is 35.999999, which in single precision rounds to 36. In double precision the
    // root would stay below 6, and the bar would be a tick shorter.
    EXPECT_EQ(ThrottleTicks(0x1.ccccccp-1f), 5u);
}

TEST(HudBar, HasTicksOfThreeByEightPixelsEveryFivePixels) {
    HudState state;
    state.throttle = state.brake = kInfinity;
    for (const std::int32_t top : {16, 36}) {
        const std::vector<drawn::Rectangle> ticks = TicksFrom(state, top);
        ASSERT_EQ(ticks.size(), 31u);
        for (std::int32_t i = 0; i < 31; ++i) {
            EXPECT_EQ(ticks[std::size_t(i)], (drawn::Rectangle{82 + 5 * i, top, 85 + 5 * i, top + 8}));
        }
    }
}

}  // namespace
}  // namespace tavrik::test
