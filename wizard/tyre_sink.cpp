#include "wizard/tyre_sink.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavrik {

double TyreForce(double radius, double halfWidth, double sink) {
    // Rays from the circle of radius a = R - W, as the solver's; (k, s) lies on the section x^4 + y^4 = 1, m is its normal.
    //   height of the ray's start over the ground = R - sink - a cos(theta), its fall = k W cos(theta)
    constexpr int kAngles = 64;
    const double a = radius - halfWidth;
    double force = 0.0;
    for (int i = 0; i < 2 * kAngles; ++i) {
        const double phi = (double(i) + 0.5) / kAngles * 0.5 * std::numbers::pi - 0.5 * std::numbers::pi;
        double s = std::sin(phi), k = std::cos(phi);
        const double e = std::sqrt(std::sqrt(k * k * k * k + s * s * s * s));
        s /= e;
        k /= e;
        const double normal = k * k * k / std::hypot(k * k * k, s * s * s);
        const double reach = std::hypot(k, s) * halfWidth;
        for (int j = 0; j < 2 * kAngles; ++j) {
            // Only rays of the lower half can touch: theta from straight down to level, both ways.
            const double theta = (double(j) + 0.5) / (2 * kAngles) * 0.5 * std::numbers::pi;
            const double down = std::cos(theta);
            const double height = radius - sink - a * down, fall = k * halfWidth * down;
            if (height < 0.0 || height >= fall) continue;
            force += (1.0 - height / fall) * reach * normal * down;
        }
    }
    // Sixteen rays: each ring has 8 around, of which the quarter turns on both sides of straight down hold 4, and there are two
    // rings, one to each half of the section.
    return force / (2.0 * kAngles) / (2.0 * kAngles) * 8.0;
}

double TyreSink(double radius, double halfWidth, double stiffness, double force) {
    double low = 0.0, high = halfWidth;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) * 0.5;
        (TyreForce(radius, halfWidth, middle) * stiffness < force ? low : high) = middle;
    }
    return high;
}

}  // namespace tavrik
