#include "solver/chassis.h"

#include <cmath>

namespace tavrik {
namespace {

// A virtual wheel this many lengths ahead of the rotation centre turns by the steering angle.
constexpr double kVirtualWheelbase = 1.4;
// Straight ahead the rotation centre would lie at infinity; at this angle it is so far out that axles are parallel to rounding.
constexpr double kLeastSteerAngle = 1e-5;
// Balancing by steering fades with speed in lengths per second; single precision, as in every recording so far.
constexpr double kBalanceFade = double(0.1f);

double BalancingAngle(const CarRig& rig, const DriveInput& input) {
    //   lean = X . (Z.x, Z.y, 0)                        0 when upright
    //   angle = -steer + lean * balance / (speed / Length * 0.1 + 1)
    // The driver's steering counts the other way round, since a bike turns by leaning.
    const DMatrix3& frame = rig.chassisBody.frame;
    const double lean = Dot(frame.row[0], DPoint3{frame.row[2].x, frame.row[2].y, 0.0});
    const double forward = std::abs(Dot(rig.chassisBody.velocity, frame.row[1]));
    return -rig.steerValue + lean * double(input.balanceForce) / (forward / rig.chassisParams.Length * kBalanceFade + 1.0);
}

}  // namespace

double SteerAngle(const CarRig& rig, const DriveInput& input) {
    const double angle = input.bikeDrive == 0 ? rig.steerValue : BalancingAngle(rig, input);
    if (std::abs(angle) < kLeastSteerAngle) return angle > 0.0 ? kLeastSteerAngle : -kLeastSteerAngle;
    return angle;
}

void SteeringGeometry(CarRuntime& runtime, const CarRig& rig, const DriveInput& input) {
    runtime.steerAngle = SteerAngle(rig, input);
    const double length = rig.chassisParams.Length;
    const DPoint3 centre = {length * kVirtualWheelbase / std::tan(runtime.steerAngle),
                            length * rig.chassisParams.RotationCenterShift, 0.0};
    runtime.rotationCenter = TransformPoint(centre, rig.chassisBody.frame);
}

}  // namespace tavrik
