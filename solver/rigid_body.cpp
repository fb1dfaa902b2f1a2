#include "solver/rigid_body.h"

namespace tavrik {
namespace {

// A turn is made in fifths, with the single-precision 0.2 (0.20000000298...). An exact fifth would part from every recording
// so far in the eighth digit.
constexpr int kTurnSteps = 5;
constexpr double kTurnFraction = double(0.2f);

}  // namespace

void IntegrateBody(RigidBody& body, double dt) {
    const DPoint3 position = body.frame.row[3];
    body.frame.row[3] = {0.0, 0.0, 0.0};

    DMatrix3 turn = IdentityDMatrix3();
    const double a = dt * kTurnFraction;
    RotateX(turn, body.angularVelocity.x * a);
    RotateY(turn, body.angularVelocity.y * a);
    RotateZ(turn, body.angularVelocity.z * a);
    for (int i = 0; i < kTurnSteps; ++i) body.frame = Compose(body.frame, turn);

    body.frame.row[3] = position + body.velocity * dt;
}

BodyInverseInertia CornerInertia(const DPoint3& halfExtents, double mass, const DMatrix3& frame) {
    const DMatrix3 turn = WithoutTranslation(frame);
    //   I = sum over corners of m/8 * (|r|^2 E - r r^T)
    DMatrix3 tensor{};
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            for (int k = 0; k < 2; ++k) {
                const DPoint3 corner = {(2 * i - 1) * halfExtents.x, (2 * j - 1) * halfExtents.y, (2 * k - 1) * halfExtents.z};
                const DPoint3 r = TransformPoint(corner, turn);
                tensor.row[0] += DPoint3{r.y * r.y + r.z * r.z, -r.x * r.y, -r.x * r.z};
                tensor.row[1] += DPoint3{-r.x * r.y, r.x * r.x + r.z * r.z, -r.y * r.z};
                tensor.row[2] += DPoint3{-r.x * r.z, -r.y * r.z, r.x * r.x + r.y * r.y};
            }
        }
    }
    const double cornerMass = mass * 0.125;
    for (int r = 0; r < 3; ++r) tensor.row[r] = tensor.row[r] * cornerMass;

    BodyInverseInertia inertia;
    inertia.inverseTensor = tensor;
    Inverse(inertia.inverseTensor);
    inertia.inverseMass = 1.0 / mass;
    return inertia;
}

void ResetBody(RigidBody& body, const DMatrix3& frame) {
    body = RigidBody{};
    body.frame = frame;
}

}  // namespace tavrik
