#include "rig/rig_doctor.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "rig/doctor_notes.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "rig/scene_walk.h"
#include "rig/ticks.h"

namespace tavrik {
namespace {

/// The remedy for what an assembly leaves out.
std::string_view RemedyFor(LeftOutReason reason) {
    switch (reason) {
        case LeftOutReason::NoChassis:
            return "Put a chassis inside the box, or make the box larger.";
        case LeftOutReason::MasterFlattened:
        case LeftOutReason::ChassisFlattened:
            return "Reset its scale to 1.";
        case LeftOutReason::TooMany:
            return "";  // its sentence tells
        case LeftOutReason::OutsideBox:
            return "Enlarge Dummy_Size, move the part inside, or delete it.";
        case LeftOutReason::FurtherChassis:
            return "Delete it, or give it a master of its own.";
        case LeftOutReason::NoSuspension:
            return "Put a suspension where the wheel stands.";
        case LeftOutReason::WheelTooFar:
            return "Move the suspension onto the wheel.";
        case LeftOutReason::WheelAxisApart:
            return "Turn the suspension so that its Z axis lies along the axle.";
        case LeftOutReason::NoWheel:
        case LeftOutReason::SuspensionTooFar:
            return "Put a wheel where the suspension stands, or delete it.";
        case LeftOutReason::SuspensionPassedOver:
            return "Align its Z axis with the wheel's, or delete it.";
        case LeftOutReason::SuspensionShared:
            return "Give each wheel a suspension of its own.";
    }
    return "";
}

std::pair<Severity, FindingKind> KindOf(LeftOutReason reason) {
    switch (reason) {
        case LeftOutReason::NoChassis:
        case LeftOutReason::MasterFlattened:
        case LeftOutReason::ChassisFlattened:
            return {Severity::Error, FindingKind::NoCar};
        case LeftOutReason::TooMany:
            return {Severity::Error, FindingKind::TooManyParts};
        case LeftOutReason::OutsideBox:
            return {Severity::Warning, FindingKind::OutsideBox};
        case LeftOutReason::FurtherChassis:
            return {Severity::Warning, FindingKind::FurtherChassis};
        case LeftOutReason::NoSuspension:
        case LeftOutReason::WheelTooFar:
        case LeftOutReason::WheelAxisApart:
            return {Severity::Error, FindingKind::WheelLeftOut};
        case LeftOutReason::NoWheel:
        case LeftOutReason::SuspensionTooFar:
        case LeftOutReason::SuspensionPassedOver:
            return {Severity::Warning, FindingKind::SuspensionLeftOut};
        case LeftOutReason::SuspensionShared:
            return {Severity::Error, FindingKind::SuspensionShared};
    }
    return {Severity::Warning, FindingKind::OutsideBox};
}

bool Holds(const AssemblyReport& report, const SceneNode* node) {
    return std::ranges::any_of(report.components, [node](const FoundComponent& part) { return part.node == node; });
}

/// Several boxes may leave the same node out: it is told once, and not at all if one of them has it.
void TellLeftOut(DoctorNotes& notes, const std::vector<ExaminedCar>& cars, const ExaminedCar& car) {
    for (const LeftOut& record : car.report.leftOut) {
        const auto kindOf = KindOf(record.reason);
        const Severity severity = kindOf.first;
        const FindingKind kind = kindOf.second;
        if (kind == FindingKind::OutsideBox) {
            const auto holds = [&](const ExaminedCar& one) { return Holds(one.report, record.node); };
            const auto told = [&](const Finding& f) { return f.kind == kind && f.node == record.node; };
            if (std::ranges::any_of(cars, holds) || std::ranges::any_of(notes.findings, told)) continue;
        }
        const auto plain = [&](const SceneNode* node) { return node == nullptr ? std::string() : notes.facts.name(*node); };
        std::string sentence = LeftOutSentence(record, plain(record.node), plain(record.other));
        if (const std::string_view remedy = RemedyFor(record.reason); !remedy.empty()) sentence += " " + std::string(remedy);
        Finding& finding = notes.Add(severity, kind, record.node, std::move(sentence));
        finding.other = record.other;
        finding.found = double(record.found);
        finding.limit = double(record.limit);
    }
}

void TellSharedParts(DoctorNotes& notes, const std::vector<ExaminedCar>& cars) {
    for (std::size_t b = 1; b < cars.size(); ++b) {
        for (std::size_t a = 0; a < b; ++a) {
            std::vector<SceneNode*> both;
            for (const FoundComponent& part : cars[a].report.components) {
                if (Holds(cars[b].report, part.node)) both.push_back(part.node);
            }
            if (both.empty()) continue;
            SceneNode *first = cars[a].facts.master, *second = cars[b].facts.master;
            const std::string which = both.size() == 1
                                          ? "the part " + notes.Name(both.front())
                                          : std::to_string(both.size()) + " parts, such as " + notes.Name(both.front());
            Finding& finding =
                notes.Error(FindingKind::SharedParts, first,
                            "The boxes of " + notes.Name(first) + " and " + notes.Name(second) + " both hold " + which +
                                ": whichever master is locked last takes them from the other. Make the boxes smaller or move "
                                "the cars apart.");
            finding.other = second;
            finding.found = double(both.size());
        }
    }
}

bool HasTongue(const AssemblyReport& report) {
    return std::ranges::any_of(report.components,
                               [](const FoundComponent& part) { return part.objectClass == ObjectClass::Tongue; });
}

void TellWheels(DoctorNotes& notes, const ExaminedCar& car) {
    SceneNode* const master = car.facts.master;
    if (car.report.result != AssemblyResult::Locked) return;
    if (car.report.pairs.empty()) {
        notes.Error(FindingKind::NoUnits, master,
                    "The car of " + notes.Name(master) +
                        " has no wheel on a suspension, so nothing carries or drives it. Put wheels with suspensions inside "
                        "its box.");
        return;
    }
    if (HasTongue(car.report)) return;  // a trailer is pulled, and follows
    const auto none = [&](std::int32_t SuspensionUnit::*flag) {
        return std::ranges::none_of(car.parts.units, [flag](const SuspensionUnit& unit) { return unit.*flag != 0; });
    };
    if (none(&SuspensionUnit::Drive)) {
        notes.Warn(
            FindingKind::NothingDriven, master,
            "No wheel of " + notes.Name(master) + " is driven, so the throttle does nothing. Check Drive on a suspension.");
    }
    if (none(&SuspensionUnit::Steering)) {
        notes.Warn(
            FindingKind::NothingSteered, master,
            "No wheel of " + notes.Name(master) + " is steered, so the car goes straight on. Check Steering on a suspension.");
    }
}

void TellStrains(DoctorNotes& notes, const ExaminedCar& car) {
    for (const StepStrain& strain : car.facts.strains) {
        // Asked this way round so that a strain that is no number is told, too.
        if (strain.found <= strain.limit) continue;
        const bool breaks = !(strain.found < strain.breaks);
        Finding& finding = notes.Add(
            breaks ? Severity::Error : Severity::Warning, FindingKind::TooStiff, strain.node,
            "The " + strain.what + " of " + notes.Name(strain.node) + " is too stiff for the solver's step: it strains it by " +
                DoctorNumber(strain.found) + ", which should stay below " + DoctorNumber(strain.limit) +
                (breaks ? " and can't pass " + DoctorNumber(strain.breaks) + " without blowing up" : "") + ". Lower " +
                strain.param + ", give more mass to what it moves, or raise Sample_Step.");
        finding.found = strain.found;
        finding.limit = strain.limit;
    }
}

void TellWheelMeshes(DoctorNotes& notes) {
    // Rounding and valve stems aside, a wheel turns about the middle of its mesh.
    constexpr double kMostShare = 0.05;
    for (const WheelMesh& mesh : notes.facts.wheelMeshes) {
        const double off = std::hypot(double(mesh.middle.x), double(mesh.middle.y));
        const double limit = kMostShare * double(mesh.wheel->GetFloat(WheelParam::Radius));
        if (off <= limit) continue;
        Finding& finding = notes.Warn(
            FindingKind::WheelMeshOff, mesh.wheel,
            "The mesh under the wheel " + notes.Name(mesh.wheel) + " has its middle " + DoctorNumber(off) +
                " away from the axle, so it will wobble. Move the mesh so that its middle lies on the wheel's Z axis.");
        finding.found = off;
        finding.limit = limit;
    }
}

ExaminedCar Examine(const SceneFacts& facts, const CarFacts& car) {
    SceneNode& master = *car.master;
    ExaminedCar examined{car, ReportAssembly(*master.Rig(), facts.root, master, ReadBoxSize(master)), {}, IdentityDMatrix3()};
    examined.parts = CarOfReport(examined.report);
    const SceneNode* const start = master.GetNode(MasterParam::Start_Node);
    if (start != nullptr) {
        examined.start = FromMatrix3(start->GetObjectTM());
    } else if (examined.parts.chassisNode != nullptr) {
        examined.start = FromMatrix3(examined.parts.chassisNode->GetObjectTM());
    }
    return examined;
}

}  // namespace

SetAsideRecordings::SetAsideRecordings(const std::vector<CarFacts>& cars) {
    for (const CarFacts& car : cars) {
        CarRig& rig = *car.master->Rig();
        // Instances of a master share their rig.
        if (rig.motion.valid != 0) kept_.emplace_back(&rig, std::exchange(rig.motion, {}));
    }
}

SetAsideRecordings::~SetAsideRecordings() {
    for (auto& [rig, motion] : kept_) rig->motion = std::move(motion);
}

const RecordedMotion* SetAsideRecordings::Of(const CarRig& rig) const {
    const auto found = std::ranges::find(kept_, &rig, [](const auto& kept) { return kept.first; });
    return found != kept_.end() ? &found->second : nullptr;
}

DMatrix3 ExaminedCar::AtStart(const SceneNode& part) const {
    return Compose(FromMatrix3(part.GetObjectTM() * Inverse(parts.chassisNode->GetObjectTM())), start);
}

std::string DoctorNumber(double value) {
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 4);
    return {text, end.ptr};
}

double StepSeconds(const SceneNode& master, std::int32_t ticksPerFrame) {
    const std::int32_t samples = std::max(1, master.GetInt(MasterParam::Frame_Step));
    const std::int32_t steps = std::max(1, master.GetInt(MasterParam::Sample_Step));
    return double(ticksPerFrame) / samples / steps / kTicksPerSecond;
}

ReportedCar CarOfReport(const AssemblyReport& report) {
    ReportedCar car;
    for (const FoundComponent& part : report.components) {
        if (part.objectClass == ObjectClass::Chassis && car.chassisNode == nullptr) {
            car.chassisNode = part.node;
            car.chassis = MakeChassisParams(ReadChassisValues(*part.node));
        } else if (part.objectClass == ObjectClass::Sphere) {
            car.sphereNodes.push_back(part.node);
            car.spheres.push_back(MakeSphere(ReadSphereValues(*part.node), IdentityDMatrix3()));
        }
    }
    for (const MatchedPair& pair : report.pairs) {
        car.units.push_back(MakeUnit(ReadWheelValues(*pair.wheel), ReadSuspensionValues(*pair.suspension), IdentityDMatrix3(),
                                     pair.wheel->GetHandle()));
    }
    return car;
}

std::vector<Finding> ExamineScene(const SceneFacts& facts) {
    const SetAsideRecordings recordings(facts.cars);
    DoctorNotes notes{facts, recordings, {}};
    std::vector<ExaminedCar> cars;
    for (const CarFacts& car : facts.cars) cars.push_back(Examine(facts, car));
    if (cars.empty()) {
        notes.Error(FindingKind::NoMaster, nullptr,
                    "There is no master object in the scene, so there is no car. Make a scene with a car with \"tavrik new\", "
                    "or put a master object around the parts.");
    }
    TellSharedParts(notes, cars);
    WalkScene(facts.root, [&notes](SceneNode& node) {
        ExamineNode(notes, node);
        ExamineParameters(notes, node);
        return true;
    });
    TellWheelMeshes(notes);
    for (const ExaminedCar& car : cars) {
        TellLeftOut(notes, cars, car);
        TellWheels(notes, car);
        TellStrains(notes, car);
        ExamineGround(notes, car);
        ExamineStart(notes, car);
        ExamineRecording(notes, car);
    }
    ExamineCouplings(notes, cars);
    ExaminePushes(notes);
    return std::move(notes.findings);
}

bool StopsDrive(const std::vector<Finding>& findings) {
    return std::ranges::any_of(findings, [](const Finding& finding) { return finding.severity == Severity::Error; });
}

}  // namespace tavrik
