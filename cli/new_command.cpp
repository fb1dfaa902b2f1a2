#include <fmt/format.h>

#include <string>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/atomic_file.h"
#include "host/ground_node.h"
#include "host/plugin_file.h"
#include "host/rig_objects.h"
#include "host/rig_scene.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"
#include "samples/sample_ground.h"

namespace tavrik_cli {
namespace {

/// The ground as a node of the scene.
INode* AddGround(const tavrik::NewOrder& order, tavrik_host::SceneDocument& document, std::string& problem) {
    tavrik::TriangleMesh ground;
    if (order.ground.empty()) {
        ground = tavrik::MakeSampleGround({});
    } else if (!ReadGround(order.ground, order.import, ground, problem)) {
        return nullptr;
    }
    return AddGroundNode(document, ground, order.ground.string(), problem);
}

/// Where the stock car stands: on the ground as the scene has it, which is what will be driven on.
bool StandCar(const tavrik::NewOrder& order, INode& ground, const tavrik::CarPlan& plan, tavrik::DMatrix3& frame,
              std::string& problem) {
    const std::string name = order.ground.empty() ? "The sample ground" : order.ground.string();
    tavrik::SurfaceTree surface;
    return tavrik_host::BuildGround(ground, name, surface, problem) &&
           tavrik_host::FindStart(surface, name, plan, order.start, frame, problem);
}

bool MakeScene(const tavrik::NewOrder& order, tavrik_host::SceneDocument& document, tavrik::Progress& progress,
               std::string& problem) {
    progress.Begin("Reading ground");
    if (!tavrik::CanWriteFile(order.out, problem) || !tavrik_host::LoadTavrikPlugin(problem)) return false;
    tavrik_host::ResetScene();
    tavrik_host::SetTicksPerFrame(order.ticksPerFrame);
    INode* ground = AddGround(order, document, problem);
    if (ground == nullptr) return false;
    progress.Begin("Building surface");
    const tavrik::CarPlan plan = tavrik::StockCarPlan();
    tavrik::DMatrix3 frame;
    if (!StandCar(order, *ground, plan, frame, problem)) return false;
    AddPlannedCar(document, plan, tavrik_host::StockCarDress(), frame, ground);
    const auto frames = TimeValue(order.seconds * tavrik::kTicksPerSecond / order.ticksPerFrame + 0.5);
    GetCOREInterface()->SetAnimRange(Interval(0, frames * order.ticksPerFrame));
    progress.Begin("Writing");
    return SaveScene(order.out, document, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunNew(const NewOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    tavrik_host::SceneDocument document;
    std::string problem;
    const bool done = tavrik_cli::MakeScene(order, document, progress, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    fmt::print("Written   {}: the stock car on {}\n", order.out.string(),
               order.ground.empty() ? "the sample ground" : order.ground.string());
    fmt::print("Drive it  tavrik drive {}\n", order.out.string());
    return kExitOk;
}
