#include <fmt/format.h>

#include <chrono>
#include <string>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "cli/timeline_words.h"
#include "host/render/render_sequence.h"

namespace tavrik_cli {
namespace {

std::optional<Point3> ToPoint(const std::optional<tavrik::MetresXYZ>& metres) {
    return metres ? std::optional<Point3>(Point3((*metres)[0], (*metres)[1], (*metres)[2])) : std::nullopt;
}

tavrik_host::CameraWish ToWish(const tavrik::RenderOrder& order) {
    using Kind = tavrik_host::CameraWish::Kind;
    tavrik_host::CameraWish wish;
    wish.kind = order.camera == "follow" ? Kind::Follow : order.camera == "top" ? Kind::Top : Kind::Node;
    wish.node = order.camera;
    wish.eye = ToPoint(order.eye);
    wish.look = ToPoint(order.target);
    wish.lens = order.lens;
    wish.span = order.span;
    return wish;
}

bool MakeSequence(const tavrik::RenderOrder& order, tavrik_host::SequenceOrder& sequence, std::string& problem) {
    if (!FramesOf(order.scene, order.frames, sequence.first, sequence.last, problem)) return false;
    sequence.names.Read(order.out, problem);
    if (sequence.first != sequence.last && !sequence.names.IsNumbered()) {
        problem = fmt::format("{}: {} frames need a number in their names, as in %04d.png.", order.out,
                              sequence.last - sequence.first + 1);
        return false;
    }
    sequence.resume = order.resume;
    sequence.settings = {order.width, order.height, order.samples, order.threads, order.sunAzimuth, order.sunElevation};
    sequence.camera = ToWish(order);
    sequence.tracks = order.tracks;
    sequence.look = ToLook(order.look);
    sequence.tread = order.look.tread;
    if (order.master.empty()) return true;
    return ChooseMaster(order.scene, order.master, sequence.master, problem);
}

bool Render(const tavrik::RenderOrder& order, tavrik::Progress& progress, tavrik_host::SequenceResult& result,
            std::string& problem) {
    tavrik_host::SceneDocument document;
    tavrik_host::SequenceOrder sequence;
    progress.Begin("Reading scene");
    if (!OpenScene(order.scene, document, problem) || !MakeSequence(order, sequence, problem)) return false;
    progress.Begin("Rendering");
    const auto done = [&progress](double part) { progress.ShowTimeLeft(part); };
    if (RenderSequence(document, sequence, done, result, problem)) return true;
    if (problem.starts_with("there is no camera")) problem = fmt::format("{}: {}", order.scene.string(), problem);
    if (result.written > 0) {
        problem.pop_back();
        problem += fmt::format("; pictures finished before it: {}, and --resume goes on from there.", result.written);
    }
    return false;
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunRender(const RenderOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    tavrik_host::SequenceResult result;
    std::string problem;
    const auto begin = std::chrono::steady_clock::now();
    const bool done = tavrik_cli::Render(order, progress, result, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    for (const std::string& note : result.notes) fmt::print("Note      {}\n", note);
    fmt::print("Written   {}: {} {} of {} x {} in {:.1f} s", order.out, result.written,
               result.written == 1 ? "picture" : "pictures", order.width, order.height, seconds);
    fmt::print("{}\n", result.kept > 0 ? fmt::format("; {} were there already", result.kept) : "");
    return kExitOk;
}
