#include "wizard/wizard.h"

#include <algorithm>
#include <cmath>

#include "wizard/collision_spheres.h"
#include "wizard/find_wheels.h"
#include "wizard/layout.h"
#include "wizard/part_names.h"
#include "wizard/placed_model.h"
#include "wizard/springs.h"

namespace tavrik {
namespace {

bool IsWheelPart(const std::vector<FoundWheel>& wheels, int rigged) {
    for (const FoundWheel& wheel : wheels) {
        for (const WheelPiece& piece : wheel.pieces) {
            if (piece.rigged == rigged) return true;
        }
    }
    return false;
}

/// Leaves out what is neither a wheel nor among the named parts of the body.
bool KeepNamedBody(const CarModel& model, const WizardOptions& options, const std::vector<FoundWheel>& wheels,
                   std::vector<RiggedPart>& parts, std::string& problem) {
    for (const std::string& pattern : options.bodyNames) {
        const bool isMet = std::any_of(model.parts.begin(), model.parts.end(),
                                       [&](const ModelPart& part) { return MatchesPattern(part.name, pattern); });
        if (isMet) continue;
        problem = "no part is called \"" + pattern + "\", which was to be of the body.";
        return false;
    }
    if (options.bodyNames.empty()) return true;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (IsWheelPart(wheels, int(i))) continue;
        bool isNamed = false;
        for (int at = parts[i].part; at != -1; at = model.parts[std::size_t(at)].parent) {
            for (const std::string& pattern : options.bodyNames) {
                isNamed = isNamed || MatchesPattern(model.parts[std::size_t(at)].name, pattern);
            }
        }
        if (!isNamed) parts[i].role = PartRole::LeftOut;
    }
    return true;
}

/// A mirrored part can't be turned into what the rig moves: a rig turns and shifts, it never mirrors.
bool CheckFrames(const CarModel& model, const std::vector<FoundWheel>& wheels, const std::vector<RiggedPart>& parts,
                 std::string& problem) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].role == PartRole::LeftOut) continue;
        const double hand = Handedness(parts[i].frame);
        if (hand > 0.0) continue;
        const std::string what = IsWheelPart(wheels, int(i)) ? "wheel " : "part ";
        problem = what + PartTitle(model, parts[i].part) +
                  (hand < 0.0 ? " is mirrored by a negative scale; apply the scale to its mesh and export the model again."
                              : " is scaled to nothing; give it a size or leave it out.");
        return false;
    }
    return true;
}

/// Numbers near the ends of what a double or a float can hold come through all checks before, but not through the arithmetic.
bool IsSound(const WizardResult& result) {
    std::vector<double> positive = {double(result.plan.chassis.Width),    double(result.plan.chassis.Length),
                                    double(result.plan.chassis.Height),   double(result.plan.chassis.Mass),
                                    double(result.plan.chassis.Solidity), result.scale};
    std::vector<double> finite = {result.plan.standingHeight};
    const auto addFrame = [&](const DMatrix3& frame) {
        for (const DPoint3& row : frame.row) finite.insert(finite.end(), {row.x, row.y, row.z});
    };
    addFrame(result.frame);
    for (const PlannedUnit& unit : result.plan.units) {
        addFrame(unit.frame);
        for (const float v : {unit.wheel.Radius, unit.wheel.Width, unit.wheel.Mass, unit.wheel.Ruggedness,
                              unit.suspension.Length, unit.suspension.Ruggedness, unit.suspension.Damping,
                              unit.suspension.Buffer_Ruggedness, unit.suspension.Shift, unit.suspension.Top_Stop}) {
            positive.push_back(double(v));
        }
    }
    for (const PlannedSphere& sphere : result.plan.spheres) {
        finite.insert(finite.end(), {sphere.centre.x, sphere.centre.y, sphere.centre.z});
        positive.insert(positive.end(), {double(sphere.values.Radius), double(sphere.values.Ruggedness)});
    }
    for (const PlannedCoupling& coupling : result.plan.couplings) {
        finite.insert(finite.end(), {coupling.place.x, coupling.place.y, coupling.place.z, double(coupling.Ruggedness)});
    }
    return std::all_of(positive.begin(), positive.end(), [](double v) { return std::isfinite(v) && v > 0.0; }) &&
           std::all_of(finite.begin(), finite.end(), [](double v) { return std::isfinite(v); });
}

/// The tongue comes first, as it does in a garage's trailers.
void PlanCouplings(const WizardOptions& options, const Layout& layout, WizardResult& result) {
    const float ruggedness = CouplingRuggedness(result.plan.chassis.Mass);
    const auto add = [&](const std::optional<DPoint3>& place, bool isHitch) {
        if (!place) return;
        const double radius = 0.25 * layout.wheels.front().radius * layout.unitScale;
        result.plan.couplings.push_back({isHitch, SeenFrom(*place, layout.frame, layout.unitScale), float(radius), ruggedness});
    };
    add(options.tongue, false);
    add(options.hitch, true);
}

/// Says of each part what it hangs under, and of each face where a part holds several wheels.
void AssignParts(const CarModel& model, const std::vector<FoundWheel>& wheels, WizardResult& result) {
    for (std::size_t i = 0; i < result.parts.size(); ++i) {
        RiggedPart& part = result.parts[i];
        if (part.role == PartRole::LeftOut) continue;
        PartSplit split{int(i), {}};
        for (std::size_t w = 0; w < wheels.size(); ++w) {
            for (const WheelPiece& piece : wheels[w].pieces) {
                if (piece.rigged != int(i)) continue;
                if (piece.faces.empty()) {
                    part.role = PartRole::Wheel;
                    part.wheel = int(w);
                    continue;
                }
                split.faceWheels.resize(model.parts[std::size_t(part.part)].faces.size(), -1);
                for (const std::uint32_t f : piece.faces) split.faceWheels[f] = int(w);
            }
        }
        if (part.role == PartRole::Wheel || split.faceWheels.empty()) continue;
        part.role = PartRole::Split;
        result.splits.push_back(std::move(split));
    }
}

void TellParts(const CarModel& model, WizardResult& result) {
    std::vector<std::string> leftOut, split;
    for (const RiggedPart& part : result.parts) {
        if (part.role == PartRole::Split) split.push_back(PartTitle(model, part.part));
        const bool isSolid = !model.parts[std::size_t(part.part)].faces.empty();
        if (part.role == PartRole::LeftOut && isSolid) leftOut.push_back(PartTitle(model, part.part));
    }
    if (!split.empty()) result.decisions.push_back({"split", ListText(split), "it holds more than one wheel"});
    if (!leftOut.empty()) result.decisions.push_back({"left out", ListText(leftOut), "it is no part of the chosen car"});
}

}  // namespace

float CouplingRuggedness(float mass) {
    // 5 Hz: it holds a trailer within a finger's breadth, and is soft for any step.
    return 1000.0f * mass;
}

bool PlanRig(const CarModel& model, const WizardOptions& options, WizardResult& result, std::string& problem) {
    WizardResult made;
    std::vector<FoundWheel> wheels;
    if (!PlaceModel(model, options, made.parts, problem)) return false;
    if (!FindWheels(model, options, made.parts, wheels, made.decisions, problem)) return false;
    if (!KeepNamedBody(model, options, wheels, made.parts, problem)) return false;
    if (!CheckFrames(model, wheels, made.parts, problem)) return false;
    const BodyMesh body = GatherBody(model, made.parts, wheels);
    if (body.points.empty()) {
        problem = "all of the model is wheels; there is no body to hang them under.";
        return false;
    }
    Heading heading;
    if (!FindHeading(model, options, made.parts, wheels, body, heading, made.decisions, problem)) return false;
    Layout layout;
    if (!LayOut(model, options, std::move(wheels), body, heading, layout, made.decisions, problem)) return false;
    made.frame = layout.frame;
    made.scale = layout.scale;
    PlanSprings(options, layout, made);
    made.plan.spheres = FitSpheres(layout, double(made.plan.chassis.Mass), options.stepSeconds);
    PlanCouplings(options, layout, made);
    if (!IsSound(made)) {
        problem = "the sizes and masses of this model are too large or too small to plan with; check its unit and the options.";
        return false;
    }
    AssignParts(model, layout.wheels, made);
    TellParts(model, made);
    result = std::move(made);
    return true;
}

}  // namespace tavrik
