// One pass of the running-in stand, simulation and drawing. About thirty run a second beside the artist's own work, so a pass
// may take 5 ms at most.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "drive/damper_drawing.h"
#include "drive/damper_model.h"

namespace tavrik {
namespace {

/// A plain raster, just as able as the stand's picture needs it.
class RasterCanvas : public OffScreenCanvas {
 public:
    PixelRect GetClientRect() const override { return {0, 0, kStandPictureWidth, kStandPictureHeight}; }
    CanvasObject SelectObject(CanvasObject object) override {
        if (object == CanvasObject::HollowBrush || object == CanvasObject::DcBrush)
            hollow_ = object == CanvasObject::HollowBrush;
        return CanvasObject::DefaultPen;
    }
    void SetDcPenColor(ColorRef color) override { pen_ = color; }
    void SetDcBrushColor(ColorRef color) override { brush_ = color; }
    void SetTextColor(ColorRef) override {}
    void SetTransparentBackground() override {}
    void Rectangle(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override {
        if (bottom < top) std::swap(top, bottom);
        for (std::int32_t y = top; y < bottom; ++y)
            for (std::int32_t x = left; x < right; ++x) {
                const bool edge = x == left || y == top || x == right - 1 || y == bottom - 1;
                if (edge || !hollow_) Set(x, y, edge ? pen_ : brush_);
            }
    }
    void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override {
        Rectangle(left, top, right, bottom);
    }
    void MoveTo(std::int32_t x, std::int32_t y) override { x_ = x, y_ = y; }
    void LineTo(std::int32_t x, std::int32_t y) override {
        const std::int32_t dx = x - x_, dy = y - y_, steps = std::max(std::abs(dx), std::abs(dy));
        for (std::int32_t i = 0; i < steps; ++i) Set(x_ + dx * i / steps, y_ + dy * i / steps, pen_);
        MoveTo(x, y);
    }
    void DrawTextLine(std::string_view, const PixelRect&, std::uint32_t) override {}
    void Erase() override { std::ranges::fill(back_, 0u); }
    void Blit() override { std::ranges::copy(back_, front_.begin()); }

 private:
    void Set(std::int32_t x, std::int32_t y, ColorRef color) {
        if (x >= 0 && x < kStandPictureWidth && y >= 0 && y < kStandPictureHeight)
            back_[std::size_t(y * kStandPictureWidth + x)] = color;
    }

    std::vector<ColorRef> back_ = std::vector<ColorRef>(std::size_t(kStandPictureWidth * kStandPictureHeight));
    std::vector<ColorRef> front_ = back_;
    ColorRef pen_ = 0, brush_ = 0;
    bool hollow_ = false;
    std::int32_t x_ = 0, y_ = 0;
};

DamperSettings BusyRoad() {
    DamperSettings settings;
    settings.knollRate = settings.holeRate = 10.0f;
    settings.gravity = 980.0f;
    settings.rigidityFactor = 1.0f;
    settings.springRigidity = 50000.0f;
    settings.oilDamping = 5000.0f;
    settings.damperShift = 10.0f;
    settings.bufferRigidity = 100000.0f;
    settings.sizeScale = 12.0f;
    return settings;
}

/// The stand after ten seconds, its road as full as the rates ever make it.
std::unique_ptr<DamperModel> RunInStand(RandomStream& random) {
    auto model = std::make_unique<DamperModel>();
    for (int i = 0; i < 300; ++i) StandStep(*model, BusyRoad(), random);
    return model;
}

void BM_StandPass_BusyRoad(benchmark::State& state) {
    RandomStream random(1000);
    const auto model = RunInStand(random);
    RasterCanvas canvas;
    for ([[maybe_unused]] auto _ : state) {
        DrawStand(*model, canvas);
        StandStep(*model, BusyRoad(), random);
    }
    state.counters["bumps"] = double(LiveBumps(model->bumps).count);
}
BENCHMARK(BM_StandPass_BusyRoad)->Unit(benchmark::kMicrosecond);

/// More than the rates ever make: every entry of the table in use.
void BM_StandPass_FullTable(benchmark::State& state) {
    RandomStream random(1000);
    const auto model = RunInStand(random);
    for (std::size_t i = 0; i < kRoadBumps; ++i) model->bumps[i] = {-2.0 + 0.0039 * double(i), i % 2 ? 1.0 : -1.0};
    const auto bumps = model->bumps;
    RasterCanvas canvas;
    for ([[maybe_unused]] auto _ : state) {
        model->bumps = bumps;
        DrawStand(*model, canvas);
        StandStep(*model, BusyRoad(), random);
    }
}
BENCHMARK(BM_StandPass_FullTable)->Unit(benchmark::kMicrosecond);

void BM_DrawStand_BusyRoad(benchmark::State& state) {
    RandomStream random(1000);
    const auto model = RunInStand(random);
    RasterCanvas canvas;
    for ([[maybe_unused]] auto _ : state) DrawStand(*model, canvas);
}
BENCHMARK(BM_DrawStand_BusyRoad)->Unit(benchmark::kMicrosecond);

void BM_StandStep_BusyRoad(benchmark::State& state) {
    RandomStream random(1000);
    const auto model = RunInStand(random);
    for ([[maybe_unused]] auto _ : state) StandStep(*model, BusyRoad(), random);
}
BENCHMARK(BM_StandStep_BusyRoad)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrik
