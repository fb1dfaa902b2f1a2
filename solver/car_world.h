#pragma once

#include <cstdint>

#include "solver/car_runtime.h"
#include "solver/hitch_joint.h"
#include "solver/push_force.h"
#include "solver/random_stream.h"

namespace tavrik {

constexpr int kMaxCars = 100;
constexpr int kMaxJoints = 100;
constexpr int kMaxPushes = 100;

/// All cars that are driven together: the driven car at index 0 and whatever is hitched to it.
///
/// Well over 100 MB, nearly all of it never touched: give it static storage, which starts zeroed and costs no memory until it
/// is used, and pass it by reference.
struct CarWorld {
    CarRuntime cars[kMaxCars];
    CarRig* rigs[kMaxCars];  // parallel to `cars`; not owned
    std::int32_t carCount;
    HitchJoint joints[kMaxJoints];
    std::int32_t jointCount;
    PushForce pushes[kMaxPushes];
    std::int32_t pushCount;
    RandomStream random;  // what the rays of wheels and spheres are turned by
};

}  // namespace tavrik
