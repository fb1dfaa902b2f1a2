#pragma once
/// How stiff a rig may be for the solver's step.
///
/// The step moves bodies once and then applies all forces explicitly, so a spring k on a mass m rings louder and louder once
/// dt * sqrt(k / m) passes 2, and a damper c overshoots once c * dt / m passes a bound that depends on the passes. A quarter of
/// the first bound leaves room for several springs on one body, and damping that stops no more than half the motion in a step
/// leaves none to overshoot.

#include <span>
#include <string>
#include <vector>

#include "rig/car_rig.h"

namespace tavrik {

constexpr double kMostSpringRatio = 0.5;   // of dt * sqrt(k / m)
constexpr double kMostDampingRatio = 0.5;  // of dt * c / m

// Past these no step survives. A spring's swing then grows from step to step; a damper multiplies what is left of a motion by
// 1 - x * w in each pass, w being 0.3 * 0.7^k, and the product of the ten passes 1 at x = 30.2.
constexpr double kBreakingSpringRatio = 2.0;
constexpr double kBreakingDampingRatio = 30.0;

/// The largest stiffness and damping that hold `mass` within these bounds. @param dt  s
double StepLimitStiffness(double mass, double dt);
double StepLimitDamping(double mass, double dt);

/// One spring or damper of a rig against its bound.
struct StepCheck {
    std::string what;  // such as "tyre damping"
    int unit = -1;     // index of the unit or sphere, -1 for the chassis
    double ratio = 0.0;
    double limit = 0.0;   // what `ratio` should stay below
    double breaks = 0.0;  // what it can't pass
};

/// What weighs against a force at the hub of unit `i`, along the way it pulls: wheel and chassis in series, the lever of the
/// hub's shift included.
double MassAtHub(const SuspensionUnit& unit, double chassisMass);

/// Every spring and damper of a car. @param dt  s
std::vector<StepCheck> StepLimits(const ChassisParams& chassis, std::span<const SuspensionUnit> units,
                                  std::span<const CollisionSphere> spheres, double dt);

/// The stiffest `Solidity`, and the stiffest tyre, that hold the bounds.
double StepLimitSolidity(const ChassisParams& chassis, std::span<const SuspensionUnit> units, double dt);
double StepLimitTyre(double wheelMass, double dt);

}  // namespace tavrik
