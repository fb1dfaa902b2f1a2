#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "cli/rig_order.h"
#include "host/atomic_file.h"
#include "host/ground_node.h"
#include "host/plugin_file.h"
#include "host/rig_job.h"
#include "host/sdk/standin.h"
#include "samples/sample_ground.h"

namespace tavrik_cli {
namespace {

using tavrik_host::PlannedVehicle;
using tavrik_host::RigJob;

/// The ground as a node of the scene, and as it is driven on.
INode* AddGround(const tavrik::RigOrder& order, const std::string& name, tavrik_host::SceneDocument& document,
                 tavrik::SurfaceTree& surface, std::string& problem) {
    tavrik::TriangleMesh ground;
    if (order.ground.empty()) {
        ground = tavrik::MakeSampleGround({});
    } else if (!ReadGround(order.ground, order.groundImport, ground, problem)) {
        return nullptr;
    }
    INode* const node = AddGroundNode(document, ground, name, problem);
    return node != nullptr && tavrik_host::BuildGround(*node, name, surface, problem) ? node : nullptr;
}

bool MakeScene(const tavrik::RigOrder& order, const RigJob& job, tavrik::Progress& progress, std::string& problem) {
    progress.Begin("Building ground");
    if (!tavrik::CanWriteFile(order.out, problem) || !tavrik_host::LoadTavrikPlugin(problem)) return false;
    std::vector<tavrik_host::DressedCar> cars;
    if (!DressRigJob(job, cars, problem)) return false;
    tavrik_host::ResetScene();
    tavrik_host::SetTicksPerFrame(order.ticksPerFrame);
    tavrik_host::SceneDocument document;
    tavrik::SurfaceTree surface;
    const std::string name = order.ground.empty() ? "The sample ground" : order.ground.string();
    INode* ground = AddGround(order, name, document, surface, problem);
    tavrik::DMatrix3 frame;
    if (ground == nullptr || !tavrik_host::FindStart(surface, name, cars.front().plan, order.start, frame, problem))
        return false;
    AddTrain(document, cars, frame, *ground, surface);
    const auto frames = TimeValue(order.seconds * tavrik::kTicksPerSecond / order.ticksPerFrame + 0.5);
    GetCOREInterface()->SetAnimRange(Interval(0, frames * order.ticksPerFrame));
    progress.Begin("Writing");
    return SaveScene(order.out, document, problem);
}

/// What stands in the table of the wheels isn't told a second time.
bool IsOfOneWheel(const tavrik::Decision& decision) {
    return decision.key.starts_with("spring.") || decision.key.starts_with("tyre.");
}

/// A direction in the axes of the model's file: "-z", or three numbers.
std::string AxisText(tavrik::DPoint3 d, bool stoodUp) {
    if (stoodUp) d = {d.x, d.z, -d.y};
    const double numbers[] = {d.x, d.y, d.z};
    for (int i = 0; i < 3; ++i) {
        if (std::abs(numbers[i]) > 0.9999) return fmt::format("{}{}", numbers[i] > 0.0 ? '+' : '-', "xyz"[i]);
    }
    return fmt::format("{:.3g}, {:.3g}, {:.3g}", d.x, d.y, d.z);
}

void PrintDecisions(const tavrik::WizardResult& result, bool stoodUp) {
    std::size_t keys = 0, values = 0;
    constexpr std::size_t kWidest = 36;  // longer ones push their reason aside
    for (const tavrik::Decision& decision : result.decisions) {
        if (IsOfOneWheel(decision)) continue;
        keys = std::max(keys, decision.key.size());
        if (decision.value.size() <= kWidest) values = std::max(values, decision.value.size());
    }
    for (const tavrik::Decision& decision : result.decisions) {
        if (IsOfOneWheel(decision)) continue;
        const std::string value =
            decision.key == "forward" ? AxisText(result.frame.row[1], stoodUp) + " in its file" : decision.value;
        fmt::print("  {:<{}}  {:<{}}  {}\n", decision.key, keys, value, values, decision.why);
    }
}

void PrintWheels(const tavrik::WizardResult& result) {
    std::size_t labels = 5;
    for (const tavrik::RiggedWheel& wheel : result.wheels) labels = std::max(labels, wheel.label.size());
    fmt::print("  {:<{}}  {:>6}  {:>6}  {:>6}  {:>7}  {:>5}  {:>5}  {:>5}  {}\n", "wheel", labels, "R cm", "kg", "Hz",
               "damping", "up", "down", "sinks", "suspension");
    for (std::size_t i = 0; i < result.wheels.size(); ++i) {
        const tavrik::RiggedWheel& wheel = result.wheels[i];
        const tavrik::PlannedUnit& unit = result.plan.units[i];
        fmt::print("  {:<{}}  {:>6.1f}  {:>6.4g}  {:>6.2f}  {:>7.2f}  {:>5.1f}  {:>5.1f}  {:>5.2f}  {}{}{}\n", wheel.label,
                   labels, unit.wheel.Radius, wheel.load / result.massScale, wheel.frequency, wheel.dampingRatio,
                   unit.suspension.Top_Stop, -unit.suspension.Bottom_Stop, wheel.tyreSink,
                   unit.suspension.Suspension_Type == tavrik::kWishbone ? "wishbone" : "telescopic",
                   unit.suspension.Steering != 0 ? ", steers" : "", unit.suspension.Drive != 0 ? ", drives" : "");
    }
}

void PrintJob(const tavrik::RigOrder& order, const RigJob& job) {
    std::size_t triangles = 0;
    for (const tavrik::ModelPart& part : job.model.parts) triangles += part.faces.size();
    fmt::print("Model     {}: {} parts, {} triangles\n", job.file.string(), job.model.parts.size(), triangles);
    for (const std::string& missed : job.looks.missed) fmt::print("Note      {}\n", missed);
    for (const PlannedVehicle& vehicle : job.vehicles) {
        fmt::print("Car       {}\n", vehicle.wish.name);
        PrintDecisions(vehicle.result, job.model.stoodUp);
        PrintWheels(vehicle.result);
    }
    if (order.out.empty()) return;
    fmt::print("Written   {}\n", order.out.string());
    fmt::print("Drive it  tavrik drive {}{}\n", order.out.string(),
               job.vehicles.size() > 1 ? fmt::format(" --master \"{}\"", job.vehicles.front().wish.name) : "");
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunRig(const RigOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    tavrik_host::RigJob job;
    std::string problem;
    progress.Begin("Reading model");
    const bool done = ReadRigJob(order.wish, job, problem) && PlanRigJob(job, problem) &&
                      (order.out.empty() || tavrik_cli::MakeScene(order, job, progress, problem));
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    tavrik_cli::PrintJob(order, job);
    return kExitOk;
}
