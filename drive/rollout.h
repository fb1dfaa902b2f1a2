#pragma once
/// What a candidate of steering and way would lead to: the car rolls on with both as they are, and each of fifty steps is
/// scored. Single precision, as the scene is.

#include <span>

#include "solver/single_maths.h"
#include "surface/path_field.h"

namespace tavrik {

constexpr int kRolloutSteps = 50;
/// Samples of a target; the first `kRolloutSteps` enter a score.
constexpr int kTargetSamples = 100;

/// How far a candidate stays from where the target will be: the sum of the squared distances in X and Y.
///
/// @param targets   one position a step, world space
/// @param frame     the chassis; moved to the end of the way
/// @param angle     of the front wheels, radians, right positive
/// @param distance  the whole way, scene units
/// @param length    of the chassis
float RolloutToTarget(const Point3 (&targets)[kTargetSamples], Matrix3& frame, float angle, float distance, float length);

/// How far a candidate stays from the road: the sum of 1 / field at every tenth step, from the first on. Steps where the field
/// isn't above zero don't count. Double, since one step far from any road can outweigh the rest by more than seven digits.
double RolloutAlongPath(const PathField& path, Matrix3& frame, float angle, float distance, float length);

/// One way to steer, and how far.
struct Candidate {
    float angle, distance;
};

/// `RolloutToTarget` for many candidates from one frame, bit for bit, at a fraction of the time.
/// @param costs  beside the candidates
void RolloutsToTarget(const Point3 (&targets)[kTargetSamples], const Matrix3& frame, std::span<const Candidate> candidates,
                      float length, std::span<float> costs);

/// `RolloutAlongPath` likewise.
void RolloutsAlongPath(const PathField& path, const Matrix3& frame, std::span<const Candidate> candidates, float length,
                       std::span<double> costs);

}  // namespace tavrik
