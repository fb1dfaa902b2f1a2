#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "drive/damper_drawing.h"
#include "drive/damper_model.h"
#include "host/atomic_file.h"
#include "host/painting_canvas.h"
#include "host/png_file.h"

namespace tavrik {
namespace {

constexpr std::int32_t kWidth = 645, kHeight = 300;

bool Paint(const StandOrder& order, std::string& problem) {
    CanvasFonts fonts;
    if (!CanWriteFile(order.out, problem) || !LoadCanvasFonts(fonts, problem)) return false;
    DamperModel model;
    RandomStream random(order.seed);
    const int passes = int(std::ceil(order.seconds / kStandStep));
    for (int i = 0; i < passes; ++i) StandStep(model, order.settings, random);
    PaintingCanvas canvas(kWidth, kHeight, fonts);
    DrawStand(model, canvas);
    return WritePngFile(order.out, canvas.Image(), problem);
}

}  // namespace

int RunStand(const StandOrder& order) {
    std::string problem;
    if (!Paint(order, problem)) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    fmt::print("Written   {}: the stand after {} s\n", order.out.string(), order.seconds);
    return kExitOk;
}

}  // namespace tavrik
