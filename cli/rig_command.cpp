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
#include "host/placed_parts.h"
#include "host/plugin_file.h"
#include "host/rigged_model.h"
#include "host/scene_rig.h"
#include "host/sdk/standin.h"
#include "samples/sample_ground.h"

namespace tavrik_cli {
namespace {

/// What has been made up about one vehicle.
struct PlannedVehicle {
    tavrik::VehicleWish wish;
    tavrik::WizardResult result;
};

struct RigJob {
    tavrik::CarModel model;
    tavrik::CarLooks looks;
    std::vector<PlannedVehicle> vehicles;
};

bool ReadAll(const tavrik::RigOrder& order, RigJob& job, std::string& problem) {
    if (!ReadCarModel(order.model, order.carImport, job.model, job.looks, problem)) return false;
    std::vector<tavrik::VehicleWish> wishes{{"", order.options}};
    if (!order.places.empty() && !ReadPlaces(order.places, order.options, wishes, problem)) return false;
    for (tavrik::VehicleWish& wish : wishes) {
        if (job.model.stoodUp) StandUpWish(wish);
        if (wish.name.empty()) wish.name = order.name.empty() ? order.model.stem().string() : order.name;
        job.vehicles.push_back({std::move(wish), {}});
    }
    return true;
}

bool PlanVehicle(const tavrik::RigOrder& order, RigJob& job, PlannedVehicle& vehicle, std::string& problem) {
    std::string fault;
    if (PlanRig(job.model, vehicle.wish.options, vehicle.result, fault)) return true;
    problem = fmt::format("{}: {}{}", order.model.string(),
                          job.vehicles.size() > 1 ? fmt::format("of \"{}\", ", vehicle.wish.name) : "", fault);
    return false;
}

/// Of body and wheels, kg.
double WholeMass(const tavrik::WizardResult& result) {
    double mass = double(result.plan.chassis.Mass);
    for (const tavrik::PlannedUnit& unit : result.plan.units) mass += double(unit.wheel.Mass);
    return mass / result.massScale;
}

/// Vehicles that hang together are measured by one unit of length and one of mass.
bool PlanAll(const tavrik::RigOrder& order, RigJob& job, std::string& problem) {
    double massScale = 1.0;
    for (PlannedVehicle& vehicle : job.vehicles) {
        if (!vehicle.wish.options.unit && &vehicle != &job.vehicles.front()) {
            vehicle.wish.options.unit = job.vehicles.front().result.scale;
        }
        if (!PlanVehicle(order, job, vehicle, problem)) return false;
        massScale = std::max(massScale, vehicle.result.massScale);
    }
    PlannedVehicle& first = job.vehicles.front();
    first.wish.options.towedMass = 0.0;
    for (const PlannedVehicle& vehicle : job.vehicles) {
        if (&vehicle != &first) first.wish.options.towedMass += WholeMass(vehicle.result);
    }
    float lightest = first.result.plan.chassis.Mass;
    for (PlannedVehicle& vehicle : job.vehicles) {
        vehicle.wish.options.leastMassScale = massScale;
        const bool isNew = vehicle.result.massScale < massScale || vehicle.wish.options.towedMass > 0.0;
        if (isNew && !PlanVehicle(order, job, vehicle, problem)) return false;
        lightest = std::min(lightest, vehicle.result.plan.chassis.Mass);
    }
    for (PlannedVehicle& vehicle : job.vehicles) {
        for (tavrik::PlannedCoupling& coupling : vehicle.result.plan.couplings) {
            coupling.Ruggedness = std::min(coupling.Ruggedness, tavrik::CouplingRuggedness(lightest));
        }
    }
    return true;
}

/// The ground as a node of the scene, and as it is driven on.
INode* AddGround(const tavrik::RigOrder& order, tavrik_host::SceneDocument& document, tavrik::SurfaceTree& surface,
                 std::string& problem) {
    const std::string name = order.ground.empty() ? "The sample ground" : order.ground.string();
    tavrik::TriangleMesh ground;
    if (order.ground.empty()) {
        ground = tavrik::MakeSampleGround({});
    } else if (!ReadGround(order.ground, order.groundImport, ground, problem)) {
        return nullptr;
    }
    const tavrik::ShapePart part = GroundShape(ground);
    INode* node = AddMeshNode(document, {&part, 1}, "ground");
    if (node == nullptr) {
        problem = fmt::format("{}: it has a coordinate that is not finite.", name);
        return nullptr;
    }
    if (surface.Build(tavrik_host::ReadMesh(*node), {}, problem)) return node;
    problem = fmt::format("{}: {}.", name, problem);
    return nullptr;
}

bool FindStart(const tavrik::RigOrder& order, const tavrik::CarPlan& plan, const tavrik::SurfaceTree& surface,
               tavrik::DMatrix3& frame, std::string& problem) {
    const tavrik::CarSpot spot = order.start ? *order.start : MiddleOfGround(surface);
    std::vector<tavrik::DPoint3> wheels;
    for (const tavrik::PlannedUnit& unit : plan.units) wheels.push_back(RestFrame(unit).row[3]);
    if (StandOnGround(surface, spot, wheels, plan.standingHeight, frame, problem)) return true;
    problem = fmt::format("{}: {}.", order.ground.empty() ? "The sample ground" : order.ground.string(), problem);
    return false;
}

bool MakeScene(const tavrik::RigOrder& order, const RigJob& job, tavrik::Progress& progress, std::string& problem) {
    progress.Begin("Building ground");
    if (!tavrik::CanWriteFile(order.out, problem) || !tavrik_host::LoadTavrikPlugin(problem)) return false;
    std::vector<tavrik_host::DressedCar> cars;
    for (const PlannedVehicle& vehicle : job.vehicles) {
        std::string fault;
        if (DressPlan(job.model, job.looks, vehicle.result, vehicle.wish.options, vehicle.wish.name, cars.emplace_back(),
                      fault)) {
            continue;
        }
        problem = fmt::format("{}: {}", order.model.string(), fault);
        return false;
    }
    tavrik_host::ResetScene();
    tavrik_host::SetTicksPerFrame(order.ticksPerFrame);
    tavrik_host::SceneDocument document;
    tavrik::SurfaceTree surface;
    INode* ground = AddGround(order, document, surface, problem);
    tavrik::DMatrix3 frame;
    if (ground == nullptr || !FindStart(order, cars.front().plan, surface, frame, problem)) return false;
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
    fmt::print("Model     {}: {} parts, {} triangles\n", order.model.string(), job.model.parts.size(), triangles);
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
    tavrik_cli::RigJob job;
    std::string problem;
    progress.Begin("Reading model");
    const bool done = ReadAll(order, job, problem) && PlanAll(order, job, problem) &&
                      (order.out.empty() || MakeScene(order, job, progress, problem));
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    PrintJob(order, job);
    return kExitOk;
}
