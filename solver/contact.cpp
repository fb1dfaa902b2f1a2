#include "solver/contact.h"

namespace tavrik {

void ContactForces(RigidBody& body, std::span<const ContactPoint> contacts, double stiffness, double damping, double friction,
                   double w) {
    for (const ContactPoint& contact : contacts) {
        if (contact.hit == 0) continue;
        //   fn = depth * stiffness + (v . n) * damping     n points into the ground, so v . n > 0 is sinking
        //   J  = -(n + friction * vt / |vt|) * fn * w      w turns the force into this pass's impulse
        const DPoint3& n = contact.direction;
        const DPoint3 v = VelocityAt(body, contact.point);
        const double vn = Dot(v, n);
        const double fn = contact.depth * stiffness + vn * damping;
        if (!(fn > 0.0)) continue;                      // the ground pushes, it never pulls
        const DPoint3 tangent = Normalize(v - n * vn);  // zero stays zero: a point at rest gets no sideways kick
        ApplyForceAt(body, contact.point, -(n + tangent * friction) * (fn * w));
    }
}

}  // namespace tavrik
