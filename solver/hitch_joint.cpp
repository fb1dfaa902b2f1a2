#include "solver/hitch_joint.h"

namespace tavrik {

void ApplyJoint(const HitchJoint& joint, double w) {
    //   f = ((vB - vA) * damping + (pB - pA) * stiffness) * w
    const DPoint3 pA = TransformPoint(joint.localA, joint.bodyA->frame);
    const DPoint3 pB = TransformPoint(joint.localB, joint.bodyB->frame);
    const DPoint3 d = pB - pA;
    const DPoint3 dv = VelocityAt(*joint.bodyB, pB) - VelocityAt(*joint.bodyA, pA);
    const DPoint3 f = (dv * joint.damping + d * joint.stiffness) * w;
    ApplyForceAt(*joint.bodyA, pA, f);
    ApplyForceAt(*joint.bodyB, pB, -f);
}

}  // namespace tavrik
