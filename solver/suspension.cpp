#include "solver/suspension.h"

#include <cmath>

namespace tavrik {
namespace {

// Keeps a wheel's axle where it belongs: damping to the square root of the alignment's stiffness.
constexpr double kAlignDampingFactor = 100.0;

/// Impulses between wheel and chassis carry the weight in single precision: every recording so far was made with that rounding.
double RoundToSingle(double w) { return double(float(w)); }

/// The line of a telescopic unit, or the circle of a wishbone's hub.
void DeriveSlide(CarRuntime& runtime, int i, const DPoint3& arm) {
    const SuspensionUnit& unit = runtime.units[i];
    const DMatrix3& unitFrame = runtime.unitFrame[i];
    if (unit.Suspension_Type != kWishbone) {
        runtime.slideAxis[i] = -unitFrame.row[0];
        runtime.lateralError[i] = arm - unitFrame.row[0] * Dot(unitFrame.row[0], arm);
        return;
    }
    const DPoint3& pivot = unitFrame.row[1];
    const DPoint3 radial = arm - pivot * Dot(arm, pivot);
    const DPoint3 u = Normalize(radial);
    runtime.slideAxis[i] = Cross(pivot, u);
    runtime.lateralError[i] = arm - u * unit.Length;
}

/// A steered axle lies on the line from the rotation centre to the hub, so that each wheel gets an angle of its own; any other
/// is fixed to its unit.
DPoint3 SpinAxis(const CarRuntime& runtime, int i) {
    const DMatrix3& unitFrame = runtime.unitFrame[i];
    if (runtime.units[i].Steering == 0) return unitFrame.row[2];
    DPoint3 d = runtime.hubPoint[i] - runtime.rotationCenter;
    d -= unitFrame.row[0] * Dot(unitFrame.row[0], d);
    d = Normalize(d);
    // The axle keeps pointing outwards, whichever side the centre lies on.
    return Dot(unitFrame.row[2], runtime.chassisBody->frame.row[0]) * runtime.steerAngle > 0.0 ? -d : d;
}

/// The hard stops at both ends of the travel. Each pushes away from its end and never pulls towards it.
double StopForce(const CarRuntime& runtime, const SuspensionUnit& unit, double travel, double rate) {
    double stop = 0.0;
    if (travel > unit.Top_Stop) {
        stop = (travel - unit.Top_Stop) * runtime.solidity + rate * runtime.solidityDamping;
        if (stop < 0.0) stop = 0.0;
    }
    if (unit.Bottom_Stop > travel) {
        stop = (travel - unit.Bottom_Stop) * runtime.solidity + rate * runtime.solidityDamping;
        if (stop > 0.0) stop = 0.0;
    }
    return stop;
}

/// The main spring with its preload, beside a buffer spring in series with a dashpot. `Damping` only ever divides: it says how
/// slowly the dashpot gives way to the buffer.
double SpringForce(CarRuntime& runtime, int i, double w) {
    //   buffer = (travel - position) * k_buffer         position' = buffer / damping
    //   spring = buffer + (travel + preload) * k
    const SuspensionUnit& unit = runtime.units[i];
    double& position = runtime.bufferPositions[i];
    const double buffer = (runtime.travel[i] - position) * unit.Buffer_Ruggedness;
    position += buffer / unit.Damping * w;
    return buffer + (runtime.travel[i] + unit.Shift) * unit.Ruggedness;
}

void ApplyLinearPart(CarRuntime& runtime, int i, double w) {
    RigidBody& chassis = *runtime.chassisBody;
    RigidBody& wheel = runtime.wheelBodies[i];
    const DPoint3& hub = runtime.hubPoint[i];
    const DPoint3& slideAxis = runtime.slideAxis[i];

    const DPoint3 dv = VelocityAt(chassis, hub) - VelocityAt(wheel, hub);
    const double along = Dot(dv, slideAxis);
    const DPoint3 perp = dv - slideAxis * along;
    DPoint3 force = runtime.lateralError[i] * runtime.solidity + perp * runtime.solidityDamping;

    const double spring = SpringForce(runtime, i, w);
    const double stop = StopForce(runtime, runtime.units[i], runtime.travel[i], -along);
    force -= slideAxis * (spring + stop);
    force = force * RoundToSingle(w);
    ApplyForceAt(chassis, hub, -force);
    ApplyForceAt(wheel, hub, force);
}

void ApplyAngularPart(CarRuntime& runtime, int i, double w) {
    RigidBody& chassis = *runtime.chassisBody;
    RigidBody& wheel = runtime.wheelBodies[i];
    const DPoint3& spinAxis = runtime.spinAxis[i];

    DPoint3 torque = runtime.driveTorque[i];
    const DPoint3 dw = chassis.angularVelocity - wheel.angularVelocity;
    const double spin = Dot(spinAxis, dw);
    // The brake works against the spin with its full size, however slow that is.
    if (spin < 0.0) {
        torque += runtime.brakeTorque[i];
    } else {
        torque -= runtime.brakeTorque[i];
    }
    const DPoint3 perp = dw - spinAxis * spin;
    torque -= runtime.alignError[i] + perp * runtime.alignDamping[i];
    torque = torque * RoundToSingle(w);
    ApplyTorque(wheel, -torque);
    ApplyTorque(chassis, torque);
}

}  // namespace

void UnitDerive(CarRuntime& runtime, int i) {
    const SuspensionUnit& unit = runtime.units[i];
    const RigidBody& wheel = runtime.wheelBodies[i];
    runtime.radiusSquared[i] = unit.Radius * unit.Radius;
    runtime.unitFrame[i] = Compose(unit.frame, runtime.chassisBody->frame);
    runtime.hubPoint[i] = TransformPoint({0.0, 0.0, -unit.Wheel_Shift}, wheel.frame);

    const DPoint3 arm = runtime.unitFrame[i].row[3] - runtime.hubPoint[i];
    DeriveSlide(runtime, i, arm);
    runtime.travel[i] = Dot(arm, runtime.unitFrame[i].row[0]);
    runtime.spinAxis[i] = SpinAxis(runtime, i);

    // Scaled by the radius squared, as the wheel's inertia would be.
    const double q = runtime.radiusSquared[i] * runtime.solidity;
    runtime.alignError[i] = Cross(wheel.frame.row[2], runtime.spinAxis[i] * q);
    runtime.alignDamping[i] = std::sqrt(q) * kAlignDampingFactor;
}

void UnitForces(CarRuntime& runtime, int i, double w) {
    ApplyLinearPart(runtime, i, w);
    ApplyAngularPart(runtime, i, w);
}

}  // namespace tavrik
