#pragma once
/// From somebody's car model to the plan of a rig. Whatever had to be decided on the way is told with its reason, and can be
/// decided otherwise by an option.

#include <optional>
#include <string>
#include <vector>

#include "rig/car_plan.h"
#include "wizard/car_model.h"
#include "wizard/decision.h"

namespace tavrik {

/// Puts one more copy of a part, with all that hangs below it, at a place of its own.
struct PartPlace {
    std::string name;
    double x = 0.0, y = 0.0, z = 0.0;  // of the part's origin in the model's space, model units
    double yaw = 0.0;                  // about the vertical through it, degrees, on top of how it is turned in the file
};

/// All of it optional: what isn't set is found out. Names are compared without regard to case; `*` stands for any text and `?`
/// for any letter. Axles are counted from 1 at the front.
struct WizardOptions {
    std::optional<double> unit;      // metres to one model unit
    std::optional<DPoint3> forward;  // in the model's space; the nearer of the two directions across the axles is taken
    std::vector<std::string> wheelNames;
    std::vector<std::string> bodyNames;  // with these, all else that is no wheel is left out
    std::string root;                    // only this part and what hangs below it is looked at
    /// With places, only the parts that they name are looked at, each as often as it is named.
    std::vector<PartPlace> places;
    std::optional<double> wheelRadius, wheelWidth;  // model units; the width is the tyre's whole thickness
    std::optional<double> mass;                     // of the whole car, kg
    std::optional<double> wheelMass;                // of each wheel, kg
    std::optional<double> frequency;                // of the body on its springs, Hz
    std::optional<double> dampingRatio;
    std::optional<std::vector<int>> steeredAxles, drivenAxles, handbrakeAxles;
    std::optional<bool> bike;
    std::optional<DPoint3> hitch, tongue;  // couplings, in the model's space; with a tongue it is towed
    double towedMass = 0.0;                // of what hangs behind, kg
    double leastMassScale = 1.0;           // vehicles that are coupled need one unit of mass
    double stepSeconds = 1.0 / 4500.0;     // of the solver, for which nothing may be too stiff
    double gravity = 980.0;                // scene units / s^2
    double unitsPerMetre = 100.0;          // of the scene
};

enum class PartRole { LeftOut, Body, Wheel, Split };

/// A part as the rig uses it. Without places there is one for each part of the model, in its order.
struct RiggedPart {
    int part = 0;
    DMatrix3 frame = IdentityDMatrix3();  // in the model's space
    PartRole role = PartRole::LeftOut;
    int wheel = -1;  // unit that it hangs under, where it is a wheel's
};

/// Which faces of a part go with which wheel.
struct PartSplit {
    int rigged = 0;               // index into `WizardResult::parts`
    std::vector<int> faceWheels;  // of each face: the unit that it hangs under, -1 for the body
};

/// One wheel in the model's space and unit, and how it is sprung. Parallel to the units of the plan: axles from the front, each
/// from left to right.
struct RiggedWheel {
    std::string label;         // "front left"
    DPoint3 centre{}, axle{};  // `axle` points away from the car's middle
    double radius = 0.0, halfWidth = 0.0;
    int axleNumber = 1;
    double load = 0.0;          // mass that rests on its spring
    double frequency = 0.0;     // Hz
    double dampingRatio = 0.0;  // 1 stops the swing altogether
    double tyreSink = 0.0;      // at rest, scene units
};

/// What the driver's settings have to be for the car to go about as well as the stock car does.
struct DriveAdvice {
    float throttleSensitivity = 0.0f, brakeSensitivity = 0.0f;
    bool bikeDrive = false;
    float balanceForce = 0.0f;
};

struct WizardResult {
    CarPlan plan;                         // scene units; its masses are kg times `massScale`
    DMatrix3 frame = IdentityDMatrix3();  // of the chassis in the model's space: X right, Y forward, Z up, row 3 in model units
    double scale = 1.0;                   // metres to one model unit
    double massScale = 1.0;               // units of mass to a kilogram
    std::vector<RiggedPart> parts;
    std::vector<PartSplit> splits;
    std::vector<RiggedWheel> wheels;
    DriveAdvice advice;
    std::vector<Decision> decisions;
};

/// Makes a plan of the car in `model`.
///
/// @param problem  on false: one sentence for the user, without a file's name
/// @return false where no car can be made of it; `result` then stays as it was
///
/// The same model and options give the same plan, and a model that is turned about the vertical, moved, or written in another
/// unit gives the same plan too, up to rounding.
bool PlanRig(const CarModel& model, const WizardOptions& options, WizardResult& result, std::string& problem);

/// How stiff a coupling is when the lighter of its two vehicles has this mass.
float CouplingRuggedness(float mass);

}  // namespace tavrik
