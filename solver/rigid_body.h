#pragma once
/// One rigid body and what acts on it. The state is momentum-based: whoever applies a force passes an impulse (force x time),
/// which goes straight into the momenta; nothing is accumulated and cleared.

#include "solver/double_maths.h"

namespace tavrik {

/// Rows 0..2 of `frame` are the body's X, Y and Z axes as world vectors, row 3 is its centre of mass.
struct RigidBody {
    DMatrix3 frame = IdentityDMatrix3();  // row 3 in scene units           recorded
    DPoint3 momentum{};                   // mass * unit/s                  recorded
    DPoint3 angularMomentum{};            // mass * unit^2 * rad/s          recorded, world axes
    DPoint3 velocity{};                   // unit/s                         derived by UpdateVelocities
    DPoint3 angularVelocity{};            // rad/s                          derived by UpdateVelocities, world axes
};

struct BodyInverseInertia {
    DMatrix3 inverseTensor;  // world axes, 1 / (mass * unit^2); row 3 is zero
    double inverseMass;      // 1 / mass
};

/// Applies the impulse `f` (mass * unit/s, world axes) at the world point `point`.
inline void ApplyForceAt(RigidBody& body, const DPoint3& point, const DPoint3& f) {
    body.angularMomentum += Cross(point - body.frame.row[3], f);
    body.momentum += f;
}

/// Applies the angular impulse `t` (mass * unit^2 * rad/s, world axes).
inline void ApplyTorque(RigidBody& body, const DPoint3& t) { body.angularMomentum += t; }

/// The velocity of the body's material at the world point `point`, unit/s.
inline DPoint3 VelocityAt(const RigidBody& body, const DPoint3& point) {
    return body.velocity + Cross(body.angularVelocity, point - body.frame.row[3]);
}

/// Derives both velocities from the momenta.
inline void UpdateVelocities(RigidBody& body, const BodyInverseInertia& inertia) {
    body.angularVelocity = TransformPoint(body.angularMomentum, inertia.inverseTensor);
    body.velocity = body.momentum * inertia.inverseMass;
}

/// Moves and turns the body by its present velocities over `dt` seconds. The turn is made in five small steps about the world
/// axes and is never re-orthonormalised.
void IntegrateBody(RigidBody& body, double dt);

/// The inverse inertia, in world axes, of eight equal point masses on the corners of a box.
///
/// @param halfExtents  of the box along the body's axes, scene units, each above zero
/// @param mass         of all eight together, above zero
/// @param frame        of the body; its row 3 plays no part
BodyInverseInertia CornerInertia(const DPoint3& halfExtents, double mass, const DMatrix3& frame);

/// Puts the body at `frame`, at rest.
void ResetBody(RigidBody& body, const DMatrix3& frame);

/// What a recording keeps of a body.
struct MotionSample {
    DMatrix3 frame = IdentityDMatrix3();
    DPoint3 momentum{};
    DPoint3 angularMomentum{};
};

/// Copies frame and momenta between a body and a sample, or between two bodies; velocities stay as they are.
template <typename To, typename From>
void CopyRecordedState(To& to, const From& from) {
    to.frame = from.frame;
    to.momentum = from.momentum;
    to.angularMomentum = from.angularMomentum;
}

}  // namespace tavrik
