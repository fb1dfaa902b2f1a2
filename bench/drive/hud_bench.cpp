#include "drive/hud.h"

#include <benchmark/benchmark.h>

#include <string>

#include "host/painting_canvas.h"

namespace tavrik {
namespace {

/// The drive window's client area at 96 dots an inch, all its lamps on and both bars full.
void BM_DrawHud_PaintingCanvas(benchmark::State& state) {
    CanvasFonts fonts;
    std::string problem;
    if (!LoadCanvasFonts(fonts, problem)) {
        state.SkipWithError(problem.c_str());
        return;
    }
    PaintingCanvas canvas(300, 114, fonts);
    const HudState hud = {{0.0f, 8000.0f, 0.0f}, 1e-5, true, true, true, 30.0f, 30.0f, true, true};
    for ([[maybe_unused]] auto round : state) {
        DrawHud(hud, canvas);
        benchmark::DoNotOptimize(canvas.Image().pixels.data());
    }
}
BENCHMARK(BM_DrawHud_PaintingCanvas)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrik
