#include "drive/hud.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "solver/truncate.h"

namespace tavrik {
namespace {

constexpr ColorRef kGround = 0x333333, kSpeedColor = 0xC8C8C8, kCaptionColor = 0xAAAAAA, kOn = 0xC097, kOff = 0x646464,
                   kAttention = 0x180EE0;

// The left column: captions, one below the other, and the bars beside the first two.
constexpr std::int32_t kRowLeft = 10, kRowRight = 80, kFirstRowTop = 10, kRowHeight = 20;
constexpr std::int32_t kBarLeft = 82, kTickPitch = 5, kTickWidth = 3, kTickHeight = 8, kThrottleBarTop = 16, kBrakeBarTop = 36;
constexpr std::int32_t kBarFull = 32;

PixelRect Row(std::int32_t row) {
    const std::int32_t top = kFirstRowTop + row * kRowHeight;
    return {kRowLeft, top, kRowRight, top + kRowHeight};
}

/// km/h, whole ones. A velocity that isn't a number shows 0, one too large for the digits the largest number there is.
std::int32_t ShownSpeed(const HudState& state) {
    constexpr double kSecondsPerHour = 3600.0;
    return TruncateToInt(double(Length(state.velocity)) * state.kilometresPerUnit * kSecondsPerHour);
}

/// How many ticks a bar has: 11 for a key held down, 20 with nitro, 31 at most.
std::int32_t BarTicks(float demand) {
    // The drivers square what a pedal says, so the root makes the bar follow the pedal. All in single precision, as the demand
    // is. Infinity fills the bar, and what isn't a number leaves it empty.
    const float length = std::sqrt(std::fabs(demand * 40.0f));
    return std::min(TruncateToInt(double(length)), kBarFull) - 1;
}

/// A row of ticks, each framed in green around the grey of the ground.
void DrawBar(Canvas& canvas, float demand, std::int32_t top) {
    const std::int32_t n = BarTicks(demand);
    canvas.SetDcPenColor(kSpeedColor);
    for (std::int32_t i = 0; i < n; ++i) {
        const std::int32_t left = kBarLeft + kTickPitch * i;
        canvas.SelectObject(CanvasObject::HudPen);
        canvas.Rectangle(left, top, left + kTickWidth, top + kTickHeight);
    }
}

/// Speed and gear, in the upper right.
void DrawSpeedBlock(const HudState& state, Canvas& canvas, std::int32_t right, std::int32_t bottom) {
    const PixelRect block = {right / 2 + 40, 0, right - 10, bottom / 2};
    canvas.SetTextColor(kSpeedColor);
    canvas.SelectObject(CanvasObject::Tahoma50Bold);
    canvas.DrawTextLine(std::to_string(ShownSpeed(state)), block, kTextSingleLine | kTextBottom | kTextNoClip);

    canvas.SetTextColor(kCaptionColor);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);
    // The digits stand on their baseline, some pixels above the block's bottom; the unit is raised to stand level with them.
    canvas.DrawTextLine("km/h", {block.left, block.top, block.right, block.bottom - 8},
                        kTextSingleLine | kTextBottom | kTextNoClip | kTextRight);
    canvas.DrawTextLine(state.reverse ? "Gear: Backward" : "Gear: Forward",
                        {block.left, bottom / 2, block.right, bottom / 2 + 20}, kTextSingleLine | kTextBottom);
}

void DrawCaptions(const HudState& state, Canvas& canvas) {
    canvas.SetTextColor(kOn);
    canvas.DrawTextLine("Throttle", Row(0), kTextSingleLine | kTextVCenter);
    canvas.DrawTextLine("Brake", Row(1), kTextSingleLine | kTextVCenter);
    canvas.SetTextColor(state.nitro ? kOn : kOff);
    canvas.DrawTextLine("Nitro", Row(2), kTextSingleLine | kTextBottom);
    canvas.SetTextColor(state.handBrake ? kOn : kOff);
    canvas.DrawTextLine("Hand Brake", Row(3), kTextSingleLine | kTextBottom);
}

/// What to do next. A window without the user's attention asks for that first, even while the car is driven.
void DrawPromptLine(const HudState& state, Canvas& canvas, std::int32_t right, std::int32_t bottom) {
    const char* text = "< Press ENTER to start >";
    ColorRef color = kOn;
    if (!state.active) {
        text = "< Click to activate >";
        color = kAttention;
    } else if (state.running) {
        text = "< Press ENTER to stop >";
        color = kAttention;
    }
    canvas.SetTextColor(color);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);
    canvas.DrawTextLine(text, {0, bottom - 20, right, bottom}, kTextSingleLine | kTextVCenter | kTextCenter | kTextNoClip);
}

}  // namespace

void DrawHud(const HudState& state, Canvas& canvas) {
    const PixelRect client = canvas.GetClientRect();
    const std::int32_t right = client.right, bottom = client.bottom;

    const CanvasObject pen = canvas.SelectObject(CanvasObject::DcPen);
    const CanvasObject brush = canvas.SelectObject(CanvasObject::DcBrush);
    const CanvasObject font = canvas.SelectObject(CanvasObject::HostFont);
    canvas.SelectObject(CanvasObject::Tahoma14Bold);

    canvas.SetDcBrushColor(kGround);
    canvas.SelectObject(CanvasObject::HudPen);
    canvas.Rectangle(0, 0, right, bottom);
    canvas.SetTransparentBackground();

    DrawSpeedBlock(state, canvas, right, bottom);
    DrawCaptions(state, canvas);
    DrawBar(canvas, state.throttle, kThrottleBarTop);
    DrawBar(canvas, state.brake, kBrakeBarTop);
    DrawPromptLine(state, canvas, right, bottom);

    canvas.SelectObject(pen);
    canvas.SelectObject(brush);
    canvas.SelectObject(font);
}

}  // namespace tavrik
