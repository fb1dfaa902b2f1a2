#pragma once

namespace tavrik {

/// The upward force of a tyre of stiffness 1 that stands upright on level ground, `sink` below where its skin would just touch:
/// the mean over all the angles at which its rays may lie.
double TyreForce(double radius, double halfWidth, double sink);

/// How far a tyre sinks in under a force.
double TyreSink(double radius, double halfWidth, double stiffness, double force);

/// How much of the time at least one ray of such a tyre touches the ground. A wheel is driven only while one does.
double TyreTouch(double radius, double halfWidth, double sink);

/// What rolling takes from such a tyre whose damping is 1: force to speed. Rays ahead of straight down dive into the ground and
/// are damped, those behind rise out of it.
double TyreDrag(double radius, double halfWidth, double sink);

}  // namespace tavrik
