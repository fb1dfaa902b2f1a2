#include "drive/bicycle_step.h"

#include <cmath>

namespace tavrik {
namespace {

constexpr float kRod = 1.4f, kHalfRod = 0.7f;  // lengths of the chassis

}  // namespace

void BicycleStep(Matrix3& frame, float length, float angle, float distance) {
    Point3 &right = frame.row[0], &front = frame.row[1], &position = frame.row[3];
    position = position - front * (length * kHalfRod);
    const float forward = std::cos(angle) * distance + length * kRod, side = std::sin(angle) * distance;
    front = Normalize(right * side + front * forward);
    right = Cross(front, frame.row[2]);
    position = position + front * (distance + length * kHalfRod);
}

}  // namespace tavrik
