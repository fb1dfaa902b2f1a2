// The picture of the damper stand against the calls that make it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "../drive/recording_canvas.h"
#include "drive/damper_drawing.h"
#include "host/painting_canvas.h"

namespace tavrik::test {
namespace {

const CanvasFonts& Fonts() {
    static const CanvasFonts fonts = [] {
        CanvasFonts loaded;
        std::string problem;
        if (!LoadCanvasFonts(loaded, problem)) ADD_FAILURE() << problem;
        return loaded;
    }();
    return fonts;
}

/// What recorded calls say of each pixel: a colour, or nothing where it takes the raster to tell (slanted lines, ellipses).
class Expected {
 public:
    explicit Expected(const std::vector<CanvasCall>& calls) : pixels_(kStandPictureWidth * kStandPictureHeight, ColorRef(0)) {
        for (const CanvasCall& call : calls) std::visit([this](const auto& record) { Take(record); }, call);
    }
    std::optional<ColorRef> At(std::int32_t x, std::int32_t y) const { return pixels_[Place(x, y)]; }

 private:
    static std::size_t Place(std::int32_t x, std::int32_t y) { return std::size_t(y * kStandPictureWidth + x); }

    void Fill(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom, std::optional<ColorRef> color) {
        for (std::int32_t y = std::max(top, 0); y < std::min(bottom, kStandPictureHeight); ++y)
            for (std::int32_t x = std::max(left, 0); x < std::min(right, kStandPictureWidth); ++x) pixels_[Place(x, y)] = color;
    }

    void Take(const drawn::SelectObject& call) {
        if (call.object == CanvasObject::HollowBrush || call.object == CanvasObject::DcBrush)
            hollow_ = call.object == CanvasObject::HollowBrush;
    }
    void Take(const drawn::SetDcPenColor& call) { pen_ = call.color; }
    void Take(const drawn::SetDcBrushColor& call) { brush_ = call.color; }
    void Take(const drawn::Rectangle& call) {
        const auto [top, bottom] = std::minmax(call.top, call.bottom);
        Fill(call.left, top, call.right, top + 1, pen_);
        Fill(call.left, bottom - 1, call.right, bottom, pen_);
        Fill(call.left, top, call.left + 1, bottom, pen_);
        Fill(call.right - 1, top, call.right, bottom, pen_);
        if (!hollow_) Fill(call.left + 1, top + 1, call.right - 1, bottom - 1, brush_);
    }
    void Take(const drawn::Ellipse& call) { Fill(call.left, call.top, call.right, call.bottom, std::nullopt); }
    void Take(const drawn::MoveTo& call) { x_ = call.x, y_ = call.y; }
    void Take(const drawn::LineTo& call) {
        const auto [left, right] = std::minmax(x_, call.x);
        const auto [top, bottom] = std::minmax(y_, call.y);
        if (left != right && top != bottom) {
            Fill(left, top, right + 1, bottom + 1, std::nullopt);
        } else if (left != right) {  // the end isn't painted, and it is on either side
            const std::int32_t back = call.x < x_ ? 1 : 0;
            Fill(left + back, top, right + back, top + 1, pen_);
        } else if (top != bottom) {
            const std::int32_t back = call.y < y_ ? 1 : 0;
            Fill(left, top + back, left + 1, bottom + back, pen_);
        }
        x_ = call.x, y_ = call.y;
    }
    void Take(const drawn::Erase&) { std::ranges::fill(pixels_, ColorRef(0)); }
    template <typename Other>
    void Take(const Other&) {}

    std::vector<std::optional<ColorRef>> pixels_;
    ColorRef pen_ = 0, brush_ = 0;
    bool hollow_ = false;
    std::int32_t x_ = 0, y_ = 0;
};

/// @return how many pixels the calls tell the colour of
int CompareWithCalls(const DamperModel& model) {
    PaintingCanvas canvas(kStandPictureWidth, kStandPictureHeight, Fonts());
    RecordingCanvas record(kStandPictureWidth, kStandPictureHeight);
    DrawStand(model, canvas);
    DrawStand(model, record);
    const Expected expected(record.calls);
    int known = 0;
    for (std::int32_t y = 0; y < kStandPictureHeight; ++y) {
        for (std::int32_t x = 0; x < kStandPictureWidth; ++x) {
            const std::optional<ColorRef> color = expected.At(x, y);
            if (!color) continue;
            ++known;
            EXPECT_TRUE(canvas.Image().At(x, y) == PixelOf(*color)) << x << ", " << y << " isn't " << std::hex << *color;
            if (::testing::Test::HasFailure()) return known;
        }
    }
    return known;
}

constexpr int kPixels = kStandPictureWidth * kStandPictureHeight;

TEST(PaintedStand, AtRestShowsItsRecordedCalls) { EXPECT_GT(CompareWithCalls({}), kPixels * 99 / 100); }

TEST(PaintedStand, OnABusyRoadShowsItsRecordedCalls) {
    DamperSettings settings;
    settings.knollRate = settings.holeRate = 5.0f;
    settings.gravity = 980.0f;
    settings.rigidityFactor = 1.0f;
    settings.springRigidity = 50000.0f;
    settings.oilDamping = 5000.0f;
    settings.damperShift = 10.0f;
    settings.bufferRigidity = 100000.0f;
    settings.sizeScale = 12.0f;
    DamperModel model;
    RandomStream random(1000);
    for (int pass = 0; pass < 150; ++pass) StandStep(model, settings, random);
    EXPECT_GT(CompareWithCalls(model), kPixels * 9 / 10);
}

TEST(PaintedStand, HasItsPartsWhereAnArtistLooksForThem) {
    PaintingCanvas canvas(kStandPictureWidth, kStandPictureHeight, Fonts());
    DrawStand({}, canvas);
    const auto at = [&](std::int32_t x, std::int32_t y) { return canvas.Image().At(x, y); };
    EXPECT_EQ(at(45, 30), PixelOf(0xFF0000));   // grid
    EXPECT_EQ(at(46, 30), PixelOf(0));          // between its lines
    EXPECT_EQ(at(615, 30), PixelOf(0xFFFFFF));  // the road's right end
    EXPECT_EQ(at(100, 71), PixelOf(0x00FF00));  // the trace, three pixels thick
    EXPECT_EQ(at(100, 72), PixelOf(0));
    EXPECT_EQ(at(100, 219), PixelOf(0x0000FF));  // the road, likewise
    EXPECT_EQ(at(100, 218), PixelOf(0));
    EXPECT_EQ(at(315, 70), PixelOf(0));          // top eye
    EXPECT_EQ(at(315, 213), PixelOf(0xFFFFFF));  // rim of the bottom eye
    EXPECT_EQ(at(305, 130), PixelOf(0x004064));  // oil above the piston
    EXPECT_EQ(at(305, 205), PixelOf(0x645000));  // and below
    EXPECT_EQ(at(333, 78), PixelOf(0x00FFFF));   // where the coil begins
}

}  // namespace
}  // namespace tavrik::test
