#pragma once

#include "rig/car_rig.h"
#include "surface/triangle_mesh.h"

namespace tavrik::test {

/// A stock car that was driven two seconds over the course, once for all tests of a program. Nobody changes it.
const CarRig& DrivenCar();
const TriangleMesh& DrivenGround();

constexpr int kDrivenFrames = 60;

}  // namespace tavrik::test
