#include "solver/wheel.h"

#include <algorithm>
#include <cmath>

#include "surface/surface_neighbourhood.h"

namespace tavrik {
namespace {

constexpr int kRings = 2;
constexpr int kRaysPerRing = kWheelRays / kRings;
// Single precision, as in every recording so far: 3.1415927410125732.
constexpr double kPi = double(3.14159265358979323846f);
// The fourth root of 2, and a little.
constexpr double kSectionReach = 1.19;
// Larger than the square of any sliding speed; a wheel in the air answers its root.
constexpr double kNoSlip = 1e9;

/// A place on the tyre's section, which is the curve x^4 + y^4 = 1.
struct SectionPoint {
    double across, along;  // from the section's centre: outwards from the wheel's axle, and along it
    DPoint3 normal;        // of the curve, x outwards and y along the axle
};

SectionPoint PointOnSection(double phi) {
    double s = std::sin(phi), k = std::cos(phi);
    // The root is single precision, the curve itself double: every recording so far rounds here.
    const double e = double(std::sqrt(std::sqrt(float(k * k * k * k + s * s * s * s))));
    s /= e;
    k /= e;
    return {k, s, Normalize(DPoint3{k * k * k, s * s * s, 0.0})};
}

/// No vector grows by more than this under rows 0..2 of `frame`. A node's scale comes along with its frame and is never taken
/// out.
double MostStretch(const DMatrix3& frame) {
    // The largest eigenvalue of frame * frame^T, and no sum of magnitudes along one of its rows is below that of all.
    const DPoint3 &x = frame.row[0], &y = frame.row[1], &z = frame.row[2];
    const double xy = std::abs(Dot(x, y)), yz = std::abs(Dot(y, z)), zx = std::abs(Dot(z, x));
    return std::sqrt(std::max({Dot(x, x) + xy + zx, Dot(y, y) + xy + yz, Dot(z, z) + yz + zx}));
}

}  // namespace

BodyInverseInertia WheelInertia(const SuspensionUnit& unit, const RigidBody& body) {
    // The whole radius and the whole section, not halved as for the chassis: a wheel's mass sits in its rim.
    return CornerInertia({unit.Radius, unit.Radius, unit.Width}, unit.Mass, body.frame);
}

int WheelRayCast(const SuspensionUnit& unit, const SurfaceTree& surface, const RigidBody& body, RandomStream& random,
                 std::span<ContactPoint, kWheelRays> contacts) {
    const double r1 = random.Rand01();
    const double r2 = random.Rand01();
    const DMatrix3 rot = WithoutTranslation(body.frame);
    const double W = unit.Width;
    const double a = unit.Radius - unit.Width;  // of the ring's centre line

    // No ray reaches further from the wheel's centre than this: the section's corners stand out 2^(1/4) times its radius.
    const double stretch = MostStretch(rot), section = std::abs(W) * stretch;
    const SurfaceNeighbourhood ground(surface, ToPoint3(body.frame.row[3]),
                                      float(std::abs(a) * stretch + kSectionReach * section));
    // Both rings start at the same eight places.
    double sines[kRaysPerRing], cosines[kRaysPerRing];
    Point3 origins[kRaysPerRing];
    float clear[kRaysPerRing];
    for (int j = 0; j < kRaysPerRing; ++j) {
        const double theta = (j + r1) * 0.25 * kPi;
        sines[j] = std::sin(theta);
        cosines[j] = std::cos(theta);
        origins[j] = ToPoint3(TransformPoint({sines[j] * a, cosines[j] * a, 0.0}, body.frame));
        clear[j] = ground.ClearReach(origins[j]);
    }

    int hits = 0;
    std::size_t c = 0;
    for (int ring = -1; ring <= 0; ++ring) {
        const double phi = (ring + r2) * 0.5 * kPi;
        const auto [k, s, m] = PointOnSection(phi);
        const float reach = float(std::sqrt(k * k + s * s) * section);
        for (int j = 0; j < kRaysPerRing; ++j, ++c) {
            ContactPoint& contact = contacts[c];
            contact.hit = 0;
            if (clear[j] > reach) continue;
            const double st = sines[j], ct = cosines[j];
            const DPoint3 skin = TransformPoint({st * k * W, ct * k * W, s * W}, rot);
            SurfaceRay ray;
            ray.Set(origins[j], ToPoint3(skin), 0.0f, 1.0f);
            if (!surface.Intersect(ray)) continue;

            const float t = ray.tmax;
            contact.hit = 1;
            ++hits;
            contact.direction = TransformPoint({st * m.x, ct * m.x, m.y}, rot);
            contact.point = FromPoint3(ray.org + ray.dir * t);
            contact.depth = double(1.0f - t) * Length(skin);
        }
    }
    return hits;
}

double SlipSpeed(const RigidBody& body, std::span<const ContactPoint, kWheelRays> contacts) {
    const DPoint3& axle = body.frame.row[2];
    double best = kNoSlip;
    for (const ContactPoint& contact : contacts) {
        if (contact.hit == 0) continue;
        const DPoint3& n = contact.direction;
        DPoint3 v = VelocityAt(body, contact.point);
        v -= n * Dot(n, v);
        v -= axle * Dot(v, axle);
        const double slip = Dot(v, v);
        if (best > slip) best = slip;
    }
    return double(std::sqrt(float(best)));
}

void DriveAndBrake(CarRuntime& runtime, int i, const DriveInput& input) {
    const SuspensionUnit& unit = runtime.units[i];
    const DPoint3& a = runtime.spinAxis[i];
    const double r2 = runtime.radiusSquared[i];

    const auto contacts = std::span<const ContactPoint, kWheelRays>(runtime.wheelContacts[i], kWheelRays);
    if (unit.Drive == 0 || !(runtime.maxDriftSpeed > SlipSpeed(runtime.wheelBodies[i], contacts))) {
        runtime.driveTorque[i] = {0.0, 0.0, 0.0};
    } else {
        DPoint3 t = a * r2 * double(input.throttle) * double(input.throttleSensitivity);
        // Axles point outwards on both sides, and all wheels drive one way.
        if (Dot(runtime.unitFrame[i].row[2], runtime.chassisBody->frame.row[0]) < 0.0) t = -t;
        // Not turned like the drive: it works forward on one side and backward on the other, and so steers.
        const DPoint3 d = a * r2 * double(input.steerRatio) * double(input.differentialSensitivity);
        runtime.driveTorque[i] = input.reverse == 0 ? t - d : t + d;
    }

    // The hand brake takes the foot brake's pressure from every wheel that it doesn't act on.
    const bool released = unit.Handbrake == 0 && input.handBrake != 0;
    const double amount = released ? 0.0 : double(input.brake);
    runtime.brakeTorque[i] = a * r2 * amount * double(input.brakeSensitivity);
}

}  // namespace tavrik
