#include <fmt/format.h>

#include <string>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/atomic_file.h"

namespace tavrik_cli {
namespace {

bool Bake(const tavrik::BakeOrder& order, tavrik::Progress& progress, std::string& problem) {
    tavrik_host::SceneDocument document;
    progress.Begin("Reading scene");
    if (!tavrik::CanWriteFile(order.out, problem) || !OpenScene(order.scene, document, problem)) return false;
    progress.Begin("Baking");
    const auto keys =
        order.keys == tavrik::KeyChoice::EverySample ? tavrik_host::BakedKeys::EverySample : tavrik_host::BakedKeys::EveryFrame;
    std::string bytes;
    if (!MakeFilmFile(document, keys, bytes, problem)) {
        problem = fmt::format("{}: {}", order.scene.string(), problem);
        return false;
    }
    progress.Begin("Writing");
    return tavrik_host::WriteSceneFile(order.out, bytes, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunBake(const BakeOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    std::string problem;
    const bool done = tavrik_cli::Bake(order, progress, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    fmt::print("Written   {}: plain glTF, for any program that plays it\n", order.out.string());
    return kExitOk;
}
