#include <fmt/format.h>

#include <cmath>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "cli/timeline_words.h"
#include "host/png_file.h"
#include "host/render/render_sequence.h"
#include "host/render/track_bake.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"

namespace tavrik_cli {
namespace {

struct Baked {
    int pictures = 0;
    bool isFlat = false;
    double west = 0, south = 0, side = 0;  // of a flat layout, metres
    std::vector<std::string> notes;
};

/// The ticks to bake, each with the number that its picture gets.
bool TicksOf(const tavrik::TracksOrder& order, std::vector<std::pair<int, TimeValue>>& ticks, std::string& problem) {
    if (order.frames) {
        int first = 0, last = 0;
        if (!FramesOf(order.scene, order.frames, first, last, problem)) return false;
        for (int frame = first; frame <= last; ++frame) ticks.emplace_back(frame, frame * GetTicksPerFrame());
        return true;
    }
    const TimeValue tick = order.atSeconds ? TimeValue(std::lround(*order.atSeconds * TIME_TICKSPERSEC))
                                           : GetCOREInterface()->GetAnimRange().End();
    ticks.emplace_back(tick / GetTicksPerFrame(), tick);
    return true;
}

bool Bake(const tavrik::TracksOrder& order, tavrik::Progress& progress, Baked& baked, std::string& problem) {
    tavrik_host::SceneDocument document;
    tavrik_host::FrameNames colors, bumps;
    std::vector<std::pair<int, TimeValue>> ticks;
    progress.Begin("Reading scene");
    if (!OpenScene(order.scene, document, problem) || !TicksOf(order, ticks, problem)) return false;
    const bool withBump = !order.bump.empty();
    colors.Read(order.out, problem);
    if (withBump) bumps.Read(order.bump, problem);
    if (!order.look.tread.empty() && !tavrik_host::SetTreads(order.look.tread, problem)) return false;
    if (!CanTakePictures(colors, ticks.front().first, problem) ||
        (withBump && !CanTakePictures(bumps, ticks.front().first, problem))) {
        return false;
    }
    progress.Begin("Laying out");
    tavrik_host::BeginRender();
    tavrik_host::TakeComplaint(baked.notes);
    const tavrik_host::RenderModel model = TakeRenderModel(document, tavrik_host::TrackGrounds());
    const tavrik_host::RayShapes shapes(model);
    const tavrik_host::RayFrame frame(shapes, ticks.front().second);
    tavrik_host::TrackLayout layout;
    if (!layout.Build(model, frame, order.size, problem)) {
        problem = fmt::format("{}: {}", order.scene.string(), problem);
        return false;
    }
    baked.isFlat = layout.IsFlat();
    baked.west = double(layout.Low().x) * tavrik_host::MetresPerUnit();
    baked.south = double(layout.Low().y) * tavrik_host::MetresPerUnit();
    baked.side = double(layout.Side()) * tavrik_host::MetresPerUnit();
    tavrik_host::TrackPainter painter(tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik), ToLook(order.look));
    progress.Begin("Baking");
    for (const auto& [number, tick] : ticks) {
        painter.Update(tick);
        const auto done = [&](double part) { progress.ShowTimeLeft((baked.pictures + part) / double(ticks.size())); };
        const tavrik_host::BakedTracks tracks = layout.Bake(painter, tick, withBump, order.threads, done);
        if (!tavrik::WritePngFile(colors.Of(number), tracks.color, problem) ||
            (withBump && !tavrik::WritePngFile(bumps.Of(number), tracks.bump, problem))) {
            return false;
        }
        ++baked.pictures;
    }
    tavrik_host::EndRender();
    return true;
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunTracks(const TracksOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    tavrik_cli::Baked baked;
    std::string problem;
    const bool done = tavrik_cli::Bake(order, progress, baked, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    for (const std::string& note : baked.notes) fmt::print("Note      {}\n", note);
    fmt::print("Written   {}{}{}\n", order.out, order.bump.empty() ? "" : ", " + order.bump,
               baked.pictures > 1 ? fmt::format(": {} pictures", baked.pictures) : "");
    if (baked.isFlat) {
        fmt::print(
            "Layout    straight down: x {:.3f} to {:.3f} m from left to right, y {:.3f} to {:.3f} m from bottom to top\n",
            baked.west, baked.west + baked.side, baked.south, baked.south + baked.side);
    } else {
        fmt::print("Layout    the ground's own texture coordinates\n");
    }
    return kExitOk;
}
