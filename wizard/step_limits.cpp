#include "wizard/step_limits.h"

#include <algorithm>
#include <cmath>

namespace tavrik {
namespace {

// Damping of what is rigid and of a tyre to the root of their stiffness, as the solver has them, and how many of a tyre's or a
// ball's rays press at the same moment when it stands.
constexpr double kSolidityDamping = 20.0, kTyreDamping = 10.0, kAlignDamping = 100.0;
constexpr double kTyreRays = 2.0, kSphereRays = 2.0;

double SpringRatio(double stiffness, double mass, double dt) { return dt * std::sqrt(stiffness / mass); }

}  // namespace

double StepLimitStiffness(double mass, double dt) {
    const double omega = kMostSpringRatio / dt;
    return mass * omega * omega;
}

double StepLimitDamping(double mass, double dt) { return kMostDampingRatio * mass / dt; }

double MassAtHub(const SuspensionUnit& unit, double chassisMass) {
    //   1/m = 1/m_wheel + shift^2 / I + 1/m_chassis        I about a diameter, of the corners of a box
    const double inertia = unit.Mass * (unit.Radius * unit.Radius + unit.Width * unit.Width);
    return 1.0 / (1.0 / unit.Mass + unit.Wheel_Shift * unit.Wheel_Shift / inertia + 1.0 / chassisMass);
}

double StepLimitSolidity(const ChassisParams& chassis, std::span<const SuspensionUnit> units, double dt) {
    double most = 1e300;
    for (const SuspensionUnit& unit : units) {
        const double mass = MassAtHub(unit, chassis.Mass);
        const double root = StepLimitDamping(mass, dt) / kSolidityDamping;
        most = std::min({most, StepLimitStiffness(mass, dt), root * root});
        // The axle's alignment: stiffness R^2 S and damping 100 R sqrt(S) against the wheel's inertia about a diameter.
        const double inertia = unit.Mass * (unit.Radius * unit.Radius + unit.Width * unit.Width);
        const double turnRoot = StepLimitDamping(inertia, dt) / (kAlignDamping * unit.Radius);
        most = std::min({most, StepLimitStiffness(inertia, dt) / (unit.Radius * unit.Radius), turnRoot * turnRoot});
    }
    return most;
}

double StepLimitTyre(double wheelMass, double dt) {
    const double root = StepLimitDamping(wheelMass, dt) / (kTyreDamping * kTyreRays);
    return std::min(StepLimitStiffness(wheelMass, dt) / kTyreRays, root * root);
}

std::vector<StepCheck> StepLimits(const ChassisParams& chassis, std::span<const SuspensionUnit> units,
                                  std::span<const CollisionSphere> spheres, double dt) {
    std::vector<StepCheck> checks;
    const auto spring = [&](const char* what, int i, double stiffness, double mass) {
        checks.push_back({what, i, SpringRatio(stiffness, mass, dt), kMostSpringRatio, kBreakingSpringRatio});
    };
    const auto damper = [&](const char* what, int i, double damping, double mass) {
        checks.push_back({what, i, damping * dt / mass, kMostDampingRatio, kBreakingDampingRatio});
    };
    const double solidityDamping = std::sqrt(chassis.Solidity) * kSolidityDamping;
    if (!units.empty()) {
        spring("solidity", -1, chassis.Solidity * double(units.size()), chassis.Mass);
        damper("solidity's damping", -1, solidityDamping * double(units.size()), chassis.Mass);
    }
    for (std::size_t u = 0; u < units.size(); ++u) {
        const SuspensionUnit& unit = units[u];
        const int i = int(u);
        const double mass = MassAtHub(unit, chassis.Mass);
        const double inertia = unit.Mass * (unit.Radius * unit.Radius + unit.Width * unit.Width);
        spring("hub", i, chassis.Solidity, mass);
        damper("hub's damping", i, solidityDamping, mass);
        spring("axle's alignment", i, chassis.Solidity * unit.Radius * unit.Radius, inertia);
        damper("axle's alignment damping", i, std::sqrt(chassis.Solidity) * unit.Radius * kAlignDamping, inertia);
        spring("spring and buffer", i, unit.Ruggedness + unit.Buffer_Ruggedness, mass);
        // The dashpot follows the buffer by this share of the way in a step.
        damper("dashpot", i, unit.Buffer_Ruggedness, unit.Damping);
        spring("tyre", i, unit.wheelRuggedness * kTyreRays, unit.Mass);
        damper("tyre's damping", i, unit.wheelDamping * kTyreRays, unit.Mass);
    }
    for (std::size_t s = 0; s < spheres.size(); ++s) {
        spring("collision sphere", int(s), spheres[s].Ruggedness * kSphereRays, chassis.Mass);
        damper("collision sphere's damping", int(s), spheres[s].damping * kSphereRays, chassis.Mass);
    }
    return checks;
}

}  // namespace tavrik
