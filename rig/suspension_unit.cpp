#include "rig/suspension_unit.h"

namespace tavrik {

double RestReach(const SuspensionUnit& unit) {
    return unit.Suspension_Type != kWishbone ? unit.Wheel_Shift : unit.Length + unit.Wheel_Shift;
}

void PlaceWheel(const SuspensionUnit& unit, const RigidBody& chassisBody, RigidBody& wheelBody, double& bufferPosition) {
    DMatrix3 frame = Compose(unit.frame, chassisBody.frame);
    frame.row[3] += frame.row[2] * RestReach(unit);
    ResetBody(wheelBody, frame);
    bufferPosition = 0.0;
}

}  // namespace tavrik
