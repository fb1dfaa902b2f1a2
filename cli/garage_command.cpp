#include <fmt/format.h>

#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/atomic_file.h"
#include "host/garage.h"
#include "host/ground_node.h"
#include "host/plugin_file.h"
#include "host/sdk/standin.h"

namespace tavrik_cli {
namespace {

void PrintList() {
    for (const tavrik_host::GarageScene& scene : tavrik_host::GarageScenes()) fmt::print("{:<14} {}\n", scene.name, scene.what);
}

std::string GroundName(const tavrik::GarageOrder& order) {
    return order.ground.empty() ? "The garage's ground" : order.ground.string();
}

/// The ground as a node of the scene, and as it is driven on.
INode* AddGround(const tavrik::GarageOrder& order, const tavrik_host::GarageScene& scene, tavrik_host::SceneDocument& document,
                 tavrik::SurfaceTree& surface, std::string& problem) {
    tavrik::TriangleMesh ground;
    if (order.ground.empty()) {
        ground = scene.ground();
    } else if (!ReadGround(order.ground, order.import, ground, problem)) {
        return nullptr;
    }
    INode* const node = AddGroundNode(document, ground, GroundName(order), problem);
    return node != nullptr && tavrik_host::BuildGround(*node, GroundName(order), surface, problem) ? node : nullptr;
}

bool MakeScene(const tavrik::GarageOrder& order, const tavrik_host::GarageScene& scene, tavrik::Progress& progress,
               std::string& problem) {
    progress.Begin("Building ground");
    if (!tavrik::CanWriteFile(order.out, problem) || !tavrik_host::LoadTavrikPlugin(problem)) return false;
    tavrik_host::ResetScene();
    tavrik_host::SceneDocument document;
    tavrik::SurfaceTree surface;
    INode* ground = AddGround(order, scene, document, surface, problem);
    tavrik::DMatrix3 frame;
    if (ground == nullptr || !tavrik_host::FindStart(surface, GroundName(order), scene.vehicles().front().plan,
                                                     order.start ? order.start : scene.start, frame, problem))
        return false;
    if (FillGarageScene(document, scene, frame, *ground, surface, problem).empty()) {
        problem = fmt::format("{}: {}.", GroundName(order), problem);
        return false;
    }
    const auto frames = TimeValue(order.seconds * tavrik::kTicksPerSecond / GetTicksPerFrame() + 0.5);
    GetCOREInterface()->SetAnimRange(Interval(0, frames * GetTicksPerFrame()));
    progress.Begin("Writing");
    return SaveScene(order.out, document, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunGarage(const GarageOrder& order) {
    if (order.name.empty()) {
        tavrik_cli::PrintList();
        return kExitOk;
    }
    const tavrik_host::GarageScene* scene = tavrik_host::FindGarageScene(order.name);
    if (scene == nullptr) {
        return tavrik_cli::Fail(
            fmt::format("There is no \"{}\" in the garage; \"tavrik garage list\" tells what there is.", order.name));
    }
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    std::string problem;
    const bool done = tavrik_cli::MakeScene(order, *scene, progress, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    fmt::print("Written   {}: {}\n", order.out.string(), scene->what);
    const std::vector<tavrik_host::GarageVehicle> vehicles = scene->vehicles();
    fmt::print("Drive it  tavrik drive {}{}\n", order.out.string(),
               vehicles.size() > 1 ? fmt::format(" --master \"{}\"", vehicles.front().dress.name) : "");
    return kExitOk;
}
