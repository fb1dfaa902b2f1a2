#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "host/rig_objects.h"
#include "host/scene_nodes.h"
#include "host/scene_rig.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/assembly_report.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

using tavrik::ObjectClass;
using tavrik_host::SceneView;

std::string NameOf(INode* node) { return node == nullptr ? "none" : tavrik_host::ToUtf8(node->GetName()); }
std::string NameOf(tavrik::SceneNode* node) { return node == nullptr ? "" : NameOf(&SceneView::HostNode(*node)); }

double Seconds(TimeValue ticks) { return double(ticks) / tavrik::kTicksPerSecond; }

void PrintScene(const std::filesystem::path& file) {
    const Interval range = GetCOREInterface()->GetAnimRange();
    fmt::print("Scene     {}: {} nodes, 1 unit is {:g} m, {:g} frames a second, {:.2f} to {:.2f} s\n", file.string(),
               tavrik_host::AllNodes().size(), tavrik_host::MetresPerUnit(),
               double(tavrik::kTicksPerSecond) / GetTicksPerFrame(), Seconds(range.Start()), Seconds(range.End()));
}

std::string LockText(const tavrik::RecordedMotion& motion) {
    if (!motion.valid) return "unlocked";
    if (motion.frames < 2) return "locked, not driven yet";
    return fmt::format("locked, recording of {} samples from {:.2f} to {:.2f} s", motion.frames - 1, Seconds(motion.times[1]),
                       Seconds(motion.times[std::size_t(motion.frames - 1)]));
}

void PrintUnits(const tavrik::AssemblyReport& report) {
    for (std::size_t i = 0; i < report.pairs.size(); ++i) {
        const tavrik::MatchedPair& pair = report.pairs[i];
        const tavrik::WheelValues wheel = ReadWheelValues(*pair.wheel);
        const tavrik::SuspensionValues suspension = ReadSuspensionValues(*pair.suspension);
        fmt::print("  Unit {:<3} {} with {}: {}, radius {:g}, mass {:g}{}{}{}\n", i, NameOf(pair.wheel),
                   NameOf(pair.suspension), suspension.Suspension_Type == tavrik::kWishbone ? "wishbone" : "telescopic",
                   wheel.Radius, wheel.Mass, suspension.Steering != 0 ? ", steered" : "",
                   suspension.Drive != 0 ? ", driven" : "", suspension.Handbrake != 0 ? ", hand brake" : "");
    }
}

void PrintParts(const tavrik::AssemblyReport& report) {
    bool chassisSeen = false;
    for (const tavrik::FoundComponent& part : report.components) {
        const std::string name = NameOf(part.node);
        if (part.objectClass == ObjectClass::Chassis && !chassisSeen) {
            const tavrik::ChassisValues values = ReadChassisValues(*part.node);
            fmt::print("  Chassis  {}: mass {:g}, {:g} x {:g} x {:g}\n", name, values.Mass, values.Width * 2, values.Length * 2,
                       values.Height * 2);
            chassisSeen = true;
        } else if (part.objectClass == ObjectClass::Sphere) {
            const tavrik::SphereValues values = ReadSphereValues(*part.node);
            fmt::print("  Sphere   {}: radius {:g}, grip {:g}\n", name, values.Radius, values.Grip);
        } else if (part.objectClass == ObjectClass::Hitch) {
            tavrik::SceneNode* tongue = part.node->GetNode(tavrik::HitchParam::Connection_Node);
            fmt::print("  Hitch    {}: {}\n", name, tongue == nullptr ? "connected to nothing" : "to " + NameOf(tongue));
        } else if (part.objectClass == ObjectClass::Tongue) {
            fmt::print("  Tongue   {}\n", name);
        }
    }
}

void PrintPushes(INode& master) {
    using tavrik::PushParam;
    for (INode* push : tavrik_host::NodesOf(ObjectClass::Push)) {
        if (tavrik_host::NodeParam(*push, PushParam::Tavrik) != &master) continue;
        const std::string when =
            tavrik_host::IntParam(*push, PushParam::Push_Type) != 0
                ? "animated"
                : fmt::format("at {:.2f} s for {:g} s", Seconds(tavrik_host::IntParam(*push, PushParam::Start_Time)),
                              tavrik_host::FloatParam(*push, PushParam::Push_Length));
        fmt::print("  Push     {}: {:g} Mn, {}\n", NameOf(push), tavrik_host::FloatParam(*push, PushParam::Push_Force), when);
    }
}

/// Whether a node stands in the box of any master.
bool InAnyBox(const std::vector<tavrik::AssemblyReport>& reports, const tavrik::SceneNode* node) {
    return std::any_of(reports.begin(), reports.end(), [node](const tavrik::AssemblyReport& report) {
        return std::any_of(report.components.begin(), report.components.end(),
                           [node](const tavrik::FoundComponent& part) { return part.node == node; });
    });
}

void PrintLeftOut(const tavrik::AssemblyReport& report, const std::vector<tavrik::AssemblyReport>& all) {
    for (const tavrik::LeftOut& record : report.leftOut) {
        // What another car's box holds is not this one's loss.
        if (record.reason == tavrik::LeftOutReason::OutsideBox && InAnyBox(all, record.node)) continue;
        fmt::print("  Note     {}\n", LeftOutSentence(record, NameOf(record.node), NameOf(record.other)));
    }
}

bool PrintCars(std::string& problem) {
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    if (masters.empty()) fmt::print("Cars      none: no master object in it\n");
    SceneView view;
    std::vector<tavrik::AssemblyReport> reports;
    std::vector<std::string> locks;
    std::vector<std::string> faults;  // of recordings that no car goes with any more
    const auto rig = std::make_unique<tavrik::CarRig>();
    for (INode* master : masters) {
        std::string fault;
        if (!tavrik_host::ReadRecording(*master, rig->motion, problem)) return false;
        if (rig->motion.valid) tavrik_host::ReadRig(*master, *rig, fault);
        faults.push_back(fault);
        locks.push_back(LockText(rig->motion));
        tavrik::SceneNode& node = view.Of(*master);
        reports.push_back(ReportAssembly(*rig, view.Root(), node, ReadBoxSize(node)));
    }
    for (std::size_t i = 0; i < masters.size(); ++i) {
        fmt::print("Car       {}: {}\n", NameOf(masters[i]), locks[i]);
        const tavrik::TriangleMesh ground = tavrik_host::ReadSurface(*masters[i]);
        fmt::print("  Surface  {}: {} triangles\n",
                   NameOf(tavrik_host::NodeParam(*masters[i], tavrik::MasterParam::Surface_Node)), ground.faces.size());
        fmt::print("  Start    {}\n", NameOf(tavrik_host::NodeParam(*masters[i], tavrik::MasterParam::Start_Node)));
        PrintParts(reports[i]);
        PrintUnits(reports[i]);
        PrintPushes(*masters[i]);
        PrintLeftOut(reports[i], reports);
        if (!faults[i].empty()) fmt::print("  Note     {}\n", faults[i]);
    }
    return true;
}

bool PrintInfo(const tavrik::InfoOrder& order, std::string& problem) {
    tavrik_host::SceneDocument document;
    if (!OpenScene(order.scene, document, problem)) return false;
    PrintScene(order.scene);
    return PrintCars(problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunInfo(const InfoOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    std::string problem;
    return tavrik_cli::PrintInfo(order, problem) ? kExitOk : tavrik_cli::Fail(problem);
}
