#pragma once

#include <cstdint>

#include "rig/car_rig.h"
#include "solver/contact.h"
#include "solver/rigid_body.h"

namespace tavrik {

constexpr int kWheelRays = 16;            // rays of one wheel
constexpr int kSphereRays = 12;           // rays of one sphere
constexpr int kWheelContactPlaces = 64;   // of which a wheel uses the first kWheelRays
constexpr int kSphereContactPlaces = 42;  // of which a sphere uses the first kSphereRays

/// What a step derives of one car and nobody records. Filled by `StepCar`, valid until the next; nothing of it is carried from
/// step to step. Units and spheres are parallel to those of the car's rig. All vectors are in world axes.
///
/// Trivial on purpose: places that no car uses are never touched, and so cost no memory.
struct CarRuntime {
    BodyInverseInertia wheelInertia[kMaxComponents];
    BodyInverseInertia chassisInertia;
    ContactPoint wheelContacts[kMaxComponents][kWheelContactPlaces];
    ContactPoint sphereContacts[kMaxComponents][kSphereContactPlaces];
    std::int32_t wheelHits[kMaxComponents];   // rays of a wheel that met the ground
    std::int32_t sphereHits[kMaxComponents];  // rays of a sphere that met the ground
    double steerAngle;                        // radians, never zero
    DPoint3 rotationCenter;                   // all steered axles aim at it
    DPoint3 lateralError[kMaxComponents];     // how far a hub is off its line or circle, scene units
    DMatrix3 unitFrame[kMaxComponents];       // the unit's attachment
    DPoint3 slideAxis[kMaxComponents];        // the way on which a hub is free to move, unit
    DPoint3 hubPoint[kMaxComponents];         // where the unit holds the wheel
    double travel[kMaxComponents];            // of the spring, scene units, positive when compressed
    DPoint3 spinAxis[kMaxComponents];         // where the wheel's axle belongs, unit
    double radiusSquared[kMaxComponents];     // of the wheel
    DPoint3 alignError[kMaxComponents];       // torque that turns the axle to where it belongs
    double alignDamping[kMaxComponents];
    DPoint3 driveTorque[kMaxComponents];
    DPoint3 brakeTorque[kMaxComponents];
    double solidity;         // of the chassis
    double solidityDamping;  // sqrt(solidity) * 20
    double maxDriftSpeed;    // unit/s

    // Views into the car's rig, refreshed at the head of each step; not owned.
    RigidBody* wheelBodies;
    const SuspensionUnit* units;
    RigidBody* chassisBody;
    const ChassisParams* chassisParams;
    const CollisionSphere* spheres;
    double* bufferPositions;
    std::int32_t unitCount;
    std::int32_t sphereCount;
};

}  // namespace tavrik
