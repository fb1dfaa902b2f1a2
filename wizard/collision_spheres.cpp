#include "wizard/collision_spheres.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "wizard/step_limits.h"

namespace tavrik {
namespace {

/// Planes around the hull of a body: how far it reaches in many directions.
class Hull {
 public:
    explicit Hull(const std::vector<DPoint3>& points) {
        for (int k = 0; k < kPlanes; ++k) {
            // Evenly over a globe, by the golden angle.
            const double z = 1.0 - 2.0 * (k + 0.5) / kPlanes, r = std::sqrt(1.0 - z * z), turn = 2.399963229728653 * k;
            directions_[k] = {r * std::cos(turn), r * std::sin(turn), z};
        }
        // The six sides, or a box would bulge between them.
        for (int side = 0; side < 6; ++side) {
            const double sign = side % 2 == 0 ? 1.0 : -1.0;
            directions_[kPlanes + side] = {side / 2 == 0 ? sign : 0.0, side / 2 == 1 ? sign : 0.0, side / 2 == 2 ? sign : 0.0};
        }
        for (int k = 0; k < kPlanes + 6; ++k) {
            reach_[k] = -1e300;
            for (const DPoint3& p : points) reach_[k] = std::max(reach_[k], Dot(p, directions_[k]));
        }
    }
    bool Holds(const DPoint3& centre, double radius) const {
        for (int k = 0; k < kPlanes + 6; ++k) {
            if (Dot(centre, directions_[k]) + radius > reach_[k] + 1e-9) return false;
        }
        return true;
    }

 private:
    static constexpr int kPlanes = 200;
    DPoint3 directions_[kPlanes + 6];
    double reach_[kPlanes + 6];
};

/// The first place on the way from `start` to `end` at which the ball lies within the hull, else `end`.
DPoint3 PullIn(const Hull& hull, const DPoint3& start, const DPoint3& end, double radius) {
    constexpr int kSteps = 100;
    for (int i = 0; i < kSteps; ++i) {
        const DPoint3 p = start + (end - start) * (double(i) / kSteps);
        if (hull.Holds(p, radius)) return p;
    }
    return end;
}

}  // namespace

std::vector<PlannedSphere> FitSpheres(const Layout& layout, double mass, double dt) {
    const DPoint3 low = layout.box.low, high = layout.box.high;
    const DPoint3 middle = (low + high) * 0.5, half = (high - low) * 0.5;
    const double wheel = layout.wheels[0].radius * layout.unitScale;
    // A body that is a plank still needs balls to lie on.
    const double radius = std::max(std::min(0.25 * half.x, 0.35 * half.z), 0.1 * wheel);
    const Hull hull(layout.body.points);

    // The roof is what lies above most of the body.
    double roofFront = -1e300, roofBack = 1e300, roofOut = 0.0;
    for (const DPoint3& p : layout.body.points) {
        if (p.z < high.z - 0.3 * half.z) continue;
        roofFront = std::max(roofFront, p.y);
        roofBack = std::min(roofBack, p.y);
        roofOut = std::max(roofOut, std::abs(p.x - middle.x));
    }
    SphereValues values = DefaultSphereValues();
    values.Radius = float(radius);
    // As hard, to its mass, as the default ball to the default body, as far as the step allows.
    const double dampingRoot = StepLimitDamping(mass, dt) / (20.0 * 2.0);
    values.Ruggedness = float(std::min({500.0 * mass, StepLimitStiffness(mass, dt) / 2.0, dampingRoot * dampingRoot}));
    const double clear = layout.ground + 0.4 * wheel + radius;  // under it a wheel on its stop would leave the car on its balls
    std::vector<PlannedSphere> spheres;
    for (const bool isRoof : {false, true}) {
        for (const double end : {1.0, -1.0}) {
            for (const double side : {-1.0, 1.0}) {
                DPoint3 start{middle.x + side * (half.x - radius), middle.y + end * (half.y - radius), low.z + 0.7 * half.z};
                if (isRoof) {
                    start = {middle.x + side * std::max(roofOut - radius, 0.0),
                             end > 0 ? roofFront - radius : roofBack + radius, high.z - radius};
                }
                DPoint3 goal{middle.x, middle.y, start.z};
                DPoint3 centre = PullIn(hull, start, goal, radius);
                centre.z = std::max(centre.z, clear);
                spheres.push_back({values, centre});
            }
        }
    }
    return spheres;
}

}  // namespace tavrik
