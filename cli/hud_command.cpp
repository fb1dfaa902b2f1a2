#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "cli/prepared_drive.h"
#include "cli/progress.h"
#include "host/atomic_file.h"
#include "host/painting_canvas.h"
#include "host/png_file.h"

namespace tavrik {
namespace {

// The drive window's client area at 96 dots an inch.
constexpr std::int32_t kWidth = 300, kHeight = 114;

bool Paint(const HudOrder& order, Progress& progress, std::string& problem) {
    CanvasFonts fonts;
    if (!CanWriteFile(order.out, problem) || !LoadCanvasFonts(fonts, problem)) return false;
    PaintingCanvas canvas(kWidth, kHeight, fonts);
    PreparedDrive drive;
    if (!PrepareDrive(order.drive, canvas, progress, drive, problem)) return false;
    const int frames = int(std::lround(order.atSeconds * kTicksPerSecond / drive.ticksPerFrame));
    if (!DriveFrames(drive, frames, progress, problem)) return false;
    drive.run->Redraw();
    return WritePngFile(order.out, canvas.Image(), problem);
}

}  // namespace

int RunHud(const HudOrder& order) {
    Progress progress;
    std::string problem;
    const bool done = Paint(order, progress, problem);
    progress.Clear();
    if (!done) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    fmt::print("Written   {}: the drive window at second {}\n", order.out.string(), order.atSeconds);
    return kExitOk;
}

}  // namespace tavrik
