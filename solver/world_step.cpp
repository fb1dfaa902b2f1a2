#include "solver/world_step.h"

#include <cmath>
#include <span>

#include "solver/chassis.h"
#include "solver/sphere.h"
#include "solver/suspension.h"
#include "solver/wheel.h"

namespace tavrik {
namespace {

// Each pass weighs 0.7 of the one before: the first ones carry the load, the last only settle contact chatter. The ten weights
// add up to 1 - 0.7^10 = 0.97175 of dt, not to dt. Every rig in use is tuned against that sum, so it stays.
constexpr int kRelaxPasses = 10;
constexpr double kFirstWeight = 0.3, kWeightDecay = 0.7;
// Steering slows down with speed in lengths per second; single precision, as in every recording so far.
constexpr double kSteerSlowdown = double(0.15f);
constexpr double kSteerRate = 0.03;
// Damping of what is rigid, to the square root of its stiffness.
constexpr double kSolidityDampingFactor = 20.0;

std::span<ContactPoint, kWheelRays> WheelContacts(CarRuntime& runtime, int i) {
    return std::span<ContactPoint, kWheelRays>(runtime.wheelContacts[i], kWheelRays);
}
std::span<ContactPoint, kSphereRays> SphereContacts(CarRuntime& runtime, int i) {
    return std::span<ContactPoint, kSphereRays>(runtime.sphereContacts[i], kSphereRays);
}

BodyInverseInertia ChassisInertia(const CarRig& rig) {
    const ChassisParams& chassis = rig.chassisParams;
    return CornerInertia({chassis.Width * 0.5, chassis.Length * 0.5, chassis.Height * 0.5}, chassis.Mass,
                         rig.chassisBody.frame);
}

void RefreshViews(CarRuntime& runtime, CarRig& rig) {
    runtime.wheelBodies = rig.wheelBodies;
    runtime.units = rig.units;
    runtime.chassisBody = &rig.chassisBody;
    runtime.chassisParams = &rig.chassisParams;
    runtime.spheres = rig.spheres;
    runtime.bufferPositions = rig.bufferPosition;
    runtime.unitCount = rig.unitCount;
    runtime.sphereCount = rig.sphereCount;
}

void MoveBodies(CarRuntime& runtime, CarRig& rig, double dt) {
    runtime.chassisInertia = ChassisInertia(rig);
    UpdateVelocities(rig.chassisBody, runtime.chassisInertia);
    for (int i = 0; i < runtime.unitCount; ++i) {
        RigidBody& wheel = rig.wheelBodies[i];
        IntegrateBody(wheel, dt);
        runtime.wheelInertia[i] = WheelInertia(rig.units[i], wheel);
        UpdateVelocities(wheel, runtime.wheelInertia[i]);
    }
    IntegrateBody(rig.chassisBody, dt);
    runtime.chassisInertia = ChassisInertia(rig);
    UpdateVelocities(rig.chassisBody, runtime.chassisInertia);
}

void FindContacts(CarRuntime& runtime, const CarRig& rig, const SurfaceTree& surface, RandomStream& random) {
    for (int i = 0; i < runtime.unitCount; ++i) {
        runtime.wheelHits[i] = WheelRayCast(rig.units[i], surface, rig.wheelBodies[i], random, WheelContacts(runtime, i));
    }
    for (int i = 0; i < runtime.sphereCount; ++i) {
        runtime.sphereHits[i] = SphereRayCast(rig.spheres[i], surface, rig.chassisBody, random, SphereContacts(runtime, i));
    }
}

void ApplyGravity(RigidBody& body, double mass, double w, double gravity) {
    ApplyForceAt(body, body.frame.row[3], {0.0, 0.0, -gravity * mass * w});
}

/// The driver turns the wheel of the first car alone: trailers have none.
void SteerFirstCar(CarWorld& world, double dt, const DriveInput& input) {
    if (world.carCount < 1) return;
    CarRig& rig = *world.rigs[0];
    const double speed = Length(rig.chassisBody.velocity);
    const float factor = float(speed / rig.chassisParams.Length * kSteerSlowdown + 1.0);
    const float rate = input.rudderSensitivity / factor;
    SlewSteering(rig.steerValue, double(input.steerTarget), dt, double(rate));
}

void UpdateCarVelocities(CarRuntime& runtime) {
    UpdateVelocities(*runtime.chassisBody, runtime.chassisInertia);
    for (int i = 0; i < runtime.unitCount; ++i) UpdateVelocities(runtime.wheelBodies[i], runtime.wheelInertia[i]);
}

}  // namespace

void SlewSteering(double& value, double target, double dt, double rate) {
    double step = rate;
    const bool crossesZero = (target < 0.0 && value > 0.0) || (target > 0.0 && value < 0.0);
    if (crossesZero) step = rate * 2.0;
    step = step * (dt * kSteerRate);
    if (step > std::abs(target - value)) {
        value = target;
    } else if (value > target) {
        value -= step;
    } else {
        value += step;
    }
}

void StepCar(CarRuntime& runtime, CarRig& rig, const SurfaceTree& surface, const DriveInput& input, double dt,
             RandomStream& random) {
    RefreshViews(runtime, rig);
    MoveBodies(runtime, rig, dt);
    FindContacts(runtime, rig, surface, random);
    SteeringGeometry(runtime, rig, input);
    runtime.solidity = rig.chassisParams.Solidity;
    runtime.solidityDamping = std::sqrt(runtime.solidity) * kSolidityDampingFactor;
    runtime.maxDriftSpeed = double(input.maxDriftSpeed);
    for (int i = 0; i < runtime.unitCount; ++i) {
        UnitDerive(runtime, i);
        DriveAndBrake(runtime, i, input);
    }
}

void RelaxCar(CarRuntime& runtime, double w, double gravity) {
    for (int i = 0; i < runtime.unitCount; ++i) ApplyGravity(runtime.wheelBodies[i], runtime.units[i].Mass, w, gravity);
    ApplyGravity(*runtime.chassisBody, runtime.chassisParams->Mass, w, gravity);
    for (int i = 0; i < runtime.unitCount; ++i) {
        const SuspensionUnit& unit = runtime.units[i];
        UnitForces(runtime, i, w);
        if (runtime.wheelHits[i] == 0) continue;
        ContactForces(runtime.wheelBodies[i], WheelContacts(runtime, i), unit.wheelRuggedness, unit.wheelDamping, unit.Grip, w);
    }
    for (int i = 0; i < runtime.sphereCount; ++i) {
        if (runtime.sphereHits[i] == 0) continue;
        const CollisionSphere& sphere = runtime.spheres[i];
        ContactForces(*runtime.chassisBody, SphereContacts(runtime, i), sphere.Ruggedness, sphere.damping, sphere.Grip, w);
    }
}

void WorldStep(CarWorld& world, double time, double dt, const SurfaceTree& surface, double gravity, const DriveInput& input) {
    SteerFirstCar(world, dt, input);
    for (int c = 0; c < world.carCount; ++c) StepCar(world.cars[c], *world.rigs[c], surface, input, dt, world.random);

    double w = dt * kFirstWeight;
    for (int pass = 0; pass < kRelaxPasses; ++pass) {
        for (int c = 0; c < world.carCount; ++c) RelaxCar(world.cars[c], w, gravity);
        for (int j = 0; j < world.jointCount; ++j) ApplyJoint(world.joints[j], w);
        for (int p = 0; p < world.pushCount; ++p) ApplyPush(world.pushes[p], time, w);
        for (int c = 0; c < world.carCount; ++c) UpdateCarVelocities(world.cars[c]);
        w = w * kWeightDecay;
    }
}

void RefreshVelocities(CarRig& rig) {
    UpdateVelocities(rig.chassisBody, ChassisInertia(rig));
    for (int i = 0; i < rig.unitCount; ++i) {
        UpdateVelocities(rig.wheelBodies[i], WheelInertia(rig.units[i], rig.wheelBodies[i]));
    }
}

}  // namespace tavrik
