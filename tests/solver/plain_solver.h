#pragma once
/// A second solver, written to be read and not to be fast: one step of the whole world with every formula spelled out once, on
/// vector maths of its own. What the solver proper does must agree with it to the last bit.

#include <vector>

#include "rig/car_rig.h"
#include "solver/drive_input.h"
#include "solver/hitch_joint.h"
#include "solver/push_force.h"
#include "solver/random_stream.h"
#include "surface/surface_tree.h"

namespace tavrik::test::plain {

/// Who takes part. The records are the solver's, the arithmetic is not.
struct World {
    std::vector<CarRig*> rigs;  // the driven car first; not owned
    std::vector<HitchJoint> joints;
    std::vector<PushForce> pushes;
    RandomStream random;
};

/// Moves all cars by one step.
void Step(World& world, double time, double dt, const SurfaceTree& surface, double gravity, const DriveInput& input);

}  // namespace tavrik::test::plain
