#include "host/scene_doctor.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <utility>

#include "host/rig_objects.h"
#include "host/scene_rig.h"
#include "host/wide_text.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "surface/mesh_faults.h"
#include "surface/surface_mesh_check.h"
#include "surface/surface_tree.h"
#include "wizard/step_limits.h"

namespace tavrik_host {
namespace {

using tavrik::GroundFacts;
using tavrik::GroundSides;
using tavrik::ObjectClass;
using tavrik::ReportedCar;
using tavrik::StepStrain;

std::string NameOf(const tavrik::SceneNode& node) {
    return ToUtf8(SceneView::HostNode(const_cast<tavrik::SceneNode&>(node)).GetName());
}

// ------------------------------------------------------------------------------------------------------------------ grounds

/// How far the ground is from `org` along `dir`, as a share of it. @return false where there is none
bool Along(const tavrik::SurfaceTree& tree, const tavrik::Point3& org, const tavrik::Point3& dir, double& share) {
    tavrik::SurfaceRay ray;
    ray.Set(org, dir, 0.0f, 1.0f);
    if (!tree.Intersect(ray)) return false;
    share = double(ray.tmax);
    return true;
}

/// A ray that runs within a wall of the tree's cubes can lose its hit to rounding; a hair beside it is as good.
GroundSides SidesOf(const tavrik::SurfaceTree& tree, const tavrik::DPoint3& at) {
    constexpr float kBeside[][2] = {{0, 0}, {0.013f, 0.007f}, {-0.011f, 0.017f}};
    GroundSides sides;
    const tavrik::Point3 place = ToPoint3(at);
    const float down = place.z - (tree.bound().pmin.z - 1.0f), up = tree.bound().pmax.z + 1.0f - place.z;
    for (const auto& beside : kBeside) {
        const tavrik::Point3 org = place + tavrik::Point3{beside[0], beside[1], 0.0f};
        double share = 0.0;
        if (!sides.below && down > 0.0f && Along(tree, org, {0, 0, -down}, share)) sides.below = at.z - share * double(down);
        if (!sides.above && up > 0.0f && Along(tree, org, {0, 0, up}, share)) sides.above = at.z + share * double(up);
    }
    return sides;
}

bool IsMeshNode(INode& node) {
    if (node.GetObjectRef() == nullptr) return false;
    Object* object = node.GetObjectRef()->Eval(0).obj;
    return object != nullptr && object->CanConvertToType(triObjectClassID) != 0;
}

/// Cars of one scene mostly share their ground, and a large one takes its time.
class Grounds {
 public:
    GroundFacts Of(SceneView& view, INode& master) {
        INode* node = NodeParam(master, tavrik::MasterParam::Surface_Node);
        if (node == nullptr) return {};
        const auto [known, isNew] = facts_.try_emplace(node);
        if (isNew) known->second = Examine(view, *node);
        return known->second;
    }

 private:
    static GroundFacts Examine(SceneView& view, INode& node) {
        GroundFacts facts;
        facts.node = &view.Of(node);
        if (!IsMeshNode(node)) {
            facts.state = GroundFacts::State::NoMesh;
            return facts;
        }
        const tavrik::TriangleMesh mesh = ReadMesh(node);
        if (mesh.faces.empty()) {
            facts.state = GroundFacts::State::Empty;
            return facts;
        }
        const auto tree = std::make_shared<tavrik::SurfaceTree>();
        if (!tavrik::CheckMesh(mesh, facts.problem) || !tree->Build(mesh, {}, facts.problem)) {
            facts.state = GroundFacts::State::Refused;
            return facts;
        }
        const tavrik::MeshFaults faults = tavrik::FindMeshFaults(mesh);
        facts.state = GroundFacts::State::Whole;
        facts.degenerate = faults.degenerate;
        facts.duplicates = faults.duplicates;
        facts.sides = [tree](const tavrik::DPoint3& at) { return SidesOf(*tree, at); };
        return facts;
    }

    std::map<INode*, GroundFacts> facts_;
};

// ------------------------------------------------------------------------------------------------------------------ strains

// Half of what a spring survives, and all of a motion in one step of a damper: cars drive beyond it, but tremble.
constexpr double kMostStrain = 1.0;

/// One of several for the same parameter: the worst, which decides how far it has to come down.
void KeepWorst(std::vector<StepStrain>& strains, StepStrain strain) {
    for (StepStrain& known : strains) {
        if (known.node != strain.node || known.param != strain.param) continue;
        if (!(strain.found / strain.limit <= known.found / known.limit)) known = std::move(strain);
        return;
    }
    strains.push_back(std::move(strain));
}

bool Has(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }

/// A step's check with the parameter that it is about.
StepStrain StrainOf(const tavrik::StepCheck& check, const ReportedCar& car, const tavrik::AssemblyReport& report) {
    StepStrain strain{car.chassisNode, check.what, "Solidity", check.ratio, kMostStrain, check.breaks};
    if (check.unit < 0) return strain;
    const auto index = std::size_t(check.unit);
    if (Has(check.what, "sphere")) {
        strain.node = car.sphereNodes[index];
        strain.param = "Ruggedness";
    } else if (Has(check.what, "tyre")) {
        strain.node = report.pairs[index].wheel;
        strain.param = "Ruggedness";
    } else if (Has(check.what, "spring") || Has(check.what, "dashpot")) {
        strain.node = report.pairs[index].suspension;
        strain.param = "Ruggedness_Factor";
    } else {
        strain.what += " at \"" + NameOf(*report.pairs[index].wheel) + "\"";
    }
    return strain;
}

/// What weighs against a pull at a point of a body, along the axis in which it gives way most.
double MassAt(const tavrik::ChassisParams& chassis, const tavrik::Point3& p) {
    //   1/m' = 1/m + r^2 / I      r: lever about each axis; I of eight masses on the corners of a box of half these sizes
    const double x = double(p.x), y = double(p.y), z = double(p.z);
    const double xx = chassis.Width * chassis.Width / 4.0, yy = chassis.Length * chassis.Length / 4.0;
    const double zz = chassis.Height * chassis.Height / 4.0;
    const double alongX = z * z / (xx + zz) + y * y / (xx + yy);
    const double alongY = z * z / (yy + zz) + x * x / (xx + yy);
    const double alongZ = y * y / (yy + zz) + x * x / (xx + zz);
    return chassis.Mass / (1.0 + std::max({alongX, alongY, alongZ}));
}

struct WeighedCar {
    tavrik::AssemblyReport report;
    ReportedCar parts;
};

/// The inverse of what weighs at a hitch or tongue; 0 where it is no part of any car.
double InverseMassAt(const std::vector<WeighedCar>& cars, const tavrik::SceneNode& coupling) {
    for (const WeighedCar& car : cars) {
        const bool held = std::ranges::any_of(
            car.report.components, [&coupling](const tavrik::FoundComponent& part) { return part.node == &coupling; });
        if (!held || car.parts.chassisNode == nullptr) continue;
        const tavrik::Matrix3 inChassis = coupling.GetObjectTM() * Inverse(car.parts.chassisNode->GetObjectTM());
        return 1.0 / MassAt(car.parts.chassis, inChassis.row[3]);
    }
    return 0.0;
}

/// The joint of a hitch pulls two bodies: stiffness k, damping 20 * sqrt(k).
void AddHitchStrains(std::vector<StepStrain>& strains, const std::vector<WeighedCar>& cars, const WeighedCar& car, double dt) {
    for (const tavrik::FoundComponent& part : car.report.components) {
        if (part.objectClass != ObjectClass::Hitch) continue;
        const tavrik::SceneNode* tongue = part.node->GetNode(tavrik::HitchParam::Connection_Node);
        if (tongue == nullptr) continue;
        const double inverse = InverseMassAt(cars, *part.node) + InverseMassAt(cars, *tongue);
        const double stiffness = double(part.node->GetFloat(tavrik::HitchParam::Ruggedness));
        KeepWorst(strains, {part.node, "joint", "Ruggedness", dt * std::sqrt(stiffness * inverse), kMostStrain,
                            tavrik::kBreakingSpringRatio});
        KeepWorst(strains, {part.node, "joint's damping", "Ruggedness", dt * 20.0 * std::sqrt(stiffness) * inverse, kMostStrain,
                            tavrik::kBreakingDampingRatio});
    }
}

std::vector<StepStrain> StrainsOf(const std::vector<WeighedCar>& cars, const WeighedCar& car, double dt) {
    std::vector<StepStrain> strains;
    if (car.parts.chassisNode == nullptr) return strains;
    for (const tavrik::StepCheck& check : StepLimits(car.parts.chassis, car.parts.units, car.parts.spheres, dt)) {
        KeepWorst(strains, StrainOf(check, car.parts, car.report));
    }
    AddHitchStrains(strains, cars, car, dt);
    return strains;
}

// ------------------------------------------------------------------------------------------------------------------- wheels

/// The box around all meshes below a wheel, in its axes.
tavrik::Box3 BoxBelow(INode& wheel) {
    // As everything is shown now: wheel and mesh are carried along together.
    const tavrik::Matrix3 toWheel = Inverse(ToMatrix3(RigFrame(wheel.GetObjectTM(0))));
    tavrik::Box3 box = tavrik::EmptyBox3();
    std::vector<INode*> waiting = {&wheel};
    while (!waiting.empty()) {
        INode& node = *waiting.back();
        waiting.pop_back();
        for (int i = 0; i < node.NumberOfChildren(); ++i) {
            INode& child = *node.GetChildNode(i);
            for (const tavrik::Point3& p : ReadMesh(child).verts) box.Include(TransformPoint(p, toWheel));
            waiting.push_back(&child);
        }
    }
    return box;
}

std::vector<tavrik::WheelMesh> WheelMeshes(SceneView& view) {
    std::vector<tavrik::WheelMesh> meshes;
    for (INode* wheel : NodesOf(ObjectClass::Wheel)) {
        const tavrik::Box3 box = BoxBelow(*wheel);
        if (box.pmin.x <= box.pmax.x) meshes.push_back({&view.Of(*wheel), box.Center()});
    }
    return meshes;
}

}  // namespace

bool ExamineOpenScene(SceneDiagnosis& diagnosis, std::string& problem) {
    diagnosis = {};
    diagnosis.view = std::make_unique<SceneView>();
    SceneView& view = *diagnosis.view;
    const std::vector<INode*> masters = NodesOf(ObjectClass::Tavrik);
    std::vector<WeighedCar> weighed;
    for (INode* master : masters) {
        diagnosis.rigs.push_back(std::make_unique<tavrik::CarRig>());
        tavrik::CarRig& rig = *diagnosis.rigs.back();
        if (!ReadRecording(*master, rig.motion, problem)) return false;
        view.SetRig(*master, rig);
        tavrik::SceneNode& node = view.Of(*master);
        weighed.push_back({ReportAssembly(rig, view.Root(), node, ReadBoxSize(node)), {}});
        weighed.back().parts = CarOfReport(weighed.back().report);
    }
    tavrik::SceneFacts facts{view.Root(), {}, WheelMeshes(view), GetTicksPerFrame(), NameOf};
    Grounds grounds;
    for (std::size_t i = 0; i < masters.size(); ++i) {
        tavrik::SceneNode& node = view.Of(*masters[i]);
        const double dt = StepSeconds(node, GetTicksPerFrame());
        facts.cars.push_back({&node, grounds.Of(view, *masters[i]), StrainsOf(weighed, weighed[i], dt)});
    }
    diagnosis.findings = ExamineScene(facts);
    return true;
}

}  // namespace tavrik_host
