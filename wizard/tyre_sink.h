#pragma once

namespace tavrik {

/// The upward force of a tyre of stiffness 1 that stands upright on level ground, `sink` below where its skin would just touch:
/// the mean over all the angles at which its rays may lie.
double TyreForce(double radius, double halfWidth, double sink);

/// How far a tyre sinks in under a force.
double TyreSink(double radius, double halfWidth, double stiffness, double force);

}  // namespace tavrik
