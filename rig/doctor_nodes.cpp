#include <algorithm>
#include <array>
#include <cmath>

#include "rig/class_identities.h"
#include "rig/doctor_notes.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

// Frames come through files in single precision, turned and turned back: what is off by less than this is rounding.
constexpr double kFrameTolerance = 1e-3;

/// What a scale, a shear or a mirroring does to an object of some class.
struct FrameFault {
    ObjectClass objectClass;
    const char* word;     // for the artist
    Severity severity;    // of a scale or a shear
    const char* because;  // likewise
    bool minds = false;   // whether it matters that it is mirrored
};
constexpr FrameFault kFrameFaults[] = {
    {ObjectClass::Tavrik, "master", Severity::Warning, "its box is not the size that Dummy_Size tells"},
    {ObjectClass::Chassis, "chassis", Severity::Error, "bodies keep their size, so the parts no longer fit together", true},
    {ObjectClass::Suspension, "suspension", Severity::Error, "the wheel's place and travel are measured in its axes", true},
    {ObjectClass::Wheel, "wheel", Severity::Warning, "only Radius and Width count, and the mesh under it changes its shape",
     true},
    {ObjectClass::Sphere, "collision sphere", Severity::Warning, "only its Radius counts"},
    {ObjectClass::Hitch, "hitch", Severity::Warning, "only its place counts"},
    {ObjectClass::Tongue, "tongue", Severity::Warning, "only its place counts"},
    {ObjectClass::Push, "push", Severity::Warning, "its force is multiplied by the length of its Y axis"},
    {ObjectClass::Start, "start position", Severity::Error, "bodies keep their size, so the parts no longer fit together",
     true},
};

const FrameFault* FaultOf(ObjectClass objectClass) {
    const auto* const found = std::ranges::find(kFrameFaults, objectClass, &FrameFault::objectClass);
    return found != std::end(kFrameFaults) ? found : nullptr;
}

/// The length of the axis that is furthest from 1.
double WorstLength(const DMatrix3& frame) {
    double worst = 1.0;
    for (int i = 0; i < 3; ++i) {
        const double length = Length(frame.row[i]);
        if (!(std::abs(length - 1.0) <= std::abs(worst - 1.0))) worst = length;
    }
    return worst;
}

/// Of the products of two axes, at length 1, the one furthest from 0.
double WorstProduct(const DMatrix3& frame) {
    double worst = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double product = Dot(Normalize(frame.row[i]), Normalize(frame.row[(i + 1) % 3]));
        if (!(std::abs(product) <= std::abs(worst))) worst = product;
    }
    return worst;
}

void TellFrame(DoctorNotes& notes, SceneNode& node, const FrameFault& fault) {
    const DMatrix3 frame = FromMatrix3(node.GetObjectTM());
    const std::string the = "The " + std::string(fault.word) + " " + notes.Name(&node);
    if (const double length = WorstLength(frame); !(std::abs(length - 1.0) <= kFrameTolerance)) {
        notes
            .Add(fault.severity, FindingKind::ScaledNode, &node,
                 the + " is scaled by " + DoctorNumber(length) + ", but " + fault.because +
                     ". Reset its scale, and that of the nodes above it, to 1.")
            .found = length;
    }
    if (const double product = WorstProduct(frame); !(std::abs(product) <= kFrameTolerance)) {
        notes
            .Add(fault.severity, FindingKind::ShearedNode, &node,
                 the + " is sheared: the product of two of its axes is " + DoctorNumber(product) + " and ought to be 0, but " +
                     fault.because + ". Turn it by itself, not under a node with an uneven scale.")
            .found = product;
    }
    if (fault.minds && Dot(Cross(frame.row[0], frame.row[1]), frame.row[2]) < 0.0) {
        const bool shownOnly = fault.objectClass == ObjectClass::Wheel;
        notes.Add(shownOnly ? Severity::Warning : Severity::Error, FindingKind::MirroredNode, &node,
                  the + " is mirrored, " +
                      (shownOnly ? "but what is recorded is not, so the mesh under it flips as the car is locked"
                                 : "so its sides are exchanged and forces act the wrong way") +
                      ". Turn it to face the other side instead, with a scale above 0.");
    }
}

/// Whether the solver divides by this value or takes its root, as it does with sizes, masses and stiffnesses. A driver's
/// settings may be nothing, and some sizes are only drawn.
bool MustBePositive(ObjectClass objectClass, const ParamRow& row) {
    switch (objectClass) {
        case ObjectClass::Chassis:
        case ObjectClass::Suspension:
        case ObjectClass::Wheel:
        case ObjectClass::Sphere:
            return row.low > 0.0;
        case ObjectClass::Hitch:
            return row.id == HitchParam::Ruggedness;
        default:
            return false;
    }
}

bool IsReal(ParamType type) { return type == ParamType::Float || type == ParamType::World || type == ParamType::WorldTable; }

void TellValue(DoctorNotes& notes, SceneNode& node, const ParamRow& row, std::string_view entry, double value) {
    if (value >= row.low && value <= row.high) return;
    const bool breaks = !std::isfinite(value) || (MustBePositive(node.Class(), row) && !(value > 0.0));
    const double end = value > row.high ? row.high : row.low;
    Finding& finding =
        notes.Add(breaks ? Severity::Error : Severity::Warning, FindingKind::OutOfRange, &node,
                  std::string(row.name) + std::string(entry) + " of " + notes.Name(&node) + " is " + DoctorNumber(value) +
                      (breaks ? ", with which nothing can be computed" : ", beyond what can be typed") + ". Set it between " +
                      DoctorNumber(row.low) + " and " + DoctorNumber(row.high) + ".");
    finding.found = value;
    finding.limit = end;
}

}  // namespace

void ExamineNode(DoctorNotes& notes, SceneNode& node) {
    if (const FrameFault* const fault = FaultOf(node.Class()); fault != nullptr) TellFrame(notes, node, *fault);
}

void ExamineParameters(DoctorNotes& notes, SceneNode& node) {
    const ClassIdentity* const identity = FindClass(node.Class());
    const ParamTable* const table = identity != nullptr ? FindParamTable(identity->objectClass) : nullptr;
    if (table == nullptr) return;
    constexpr std::array<std::string_view, 3> kEntries = {" X", " Y", " Z"};
    for (const ParamRow& row : table->rows) {
        // What starts outside of its range is meant to: codes of buttons, and sizes that a drag will set.
        if (!row.hasRange || row.defaultValue < row.low || row.defaultValue > row.high) continue;
        if (row.type == ParamType::Int) {
            TellValue(notes, node, row, "", double(node.GetInt(row.id)));
        } else if (IsReal(row.type)) {
            for (std::int32_t i = 0; i < row.entries; ++i) {
                TellValue(notes, node, row, row.entries > 1 ? kEntries[std::size_t(i)] : "", double(node.GetFloat(row.id, i)));
            }
        }
    }
}

}  // namespace tavrik
