#include "wizard/tyre_sink.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavrik {

namespace {

constexpr int kAngles = 64;

/// One ray that touches.
struct TouchingRay {
    double depth;        // of its end in the ground
    double normal;       // across the axle, of the section's normal of length 1
    double down, along;  // of where it lies around the wheel: cosine and sine of the angle to straight down
};

/// Adds up over all the angles at which rays may lie: the mean of the sum over a tyre's rays.
template <typename Value>
double MeanOverRays(double radius, double halfWidth, double sink, const Value& value) {
    // Rays from the circle of radius a = R - W, as the solver's; (k, s) lies on the section x^4 + y^4 = 1, m is its normal.
    //   height of the ray's start over the ground = R - sink - a cos(theta), its fall = k W cos(theta)
    const double a = radius - halfWidth;
    double sum = 0.0;
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
            sum += value(TouchingRay{(1.0 - height / fall) * reach, normal, down, std::sin(theta)});
        }
    }
    // Sixteen rays: each ring has 8 around, of which the quarter turns on both sides of straight down hold 4, and there are two
    // rings, one to each half of the section.
    return sum / (2.0 * kAngles) / (2.0 * kAngles) * 8.0;
}

}  // namespace

double TyreForce(double radius, double halfWidth, double sink) {
    return MeanOverRays(radius, halfWidth, sink, [](const TouchingRay& ray) { return ray.depth * ray.normal * ray.down; });
}

double TyreDrag(double radius, double halfWidth, double sink) {
    // The damping of a ray along n at the speed v is (v . n) n, of which the part along v counts.
    return MeanOverRays(radius, halfWidth, sink, [](const TouchingRay& ray) {
        const double along = ray.normal * ray.along;
        return along * along;
    });
}

double TyreTouch(double radius, double halfWidth, double sink) {
    // As above. Of the eight rays of a ring the nearest to straight down is at most half their distance off, and where that one
    // is clear of the ground the others are too. Both rings have their rays at the same places around, a quarter turn apart on
    // the section.
    const double a = radius - halfWidth;
    const auto fallOf = [halfWidth](double phi) {
        const double s = std::sin(phi), k = std::cos(phi);
        return k / std::sqrt(std::sqrt(k * k * k * k + s * s * s * s)) * halfWidth;
    };
    int touching = 0;
    for (int i = 0; i < kAngles; ++i) {
        const double phi = (double(i) + 0.5) / kAngles * 0.5 * std::numbers::pi;
        const double fall = std::max(fallOf(phi), fallOf(phi - 0.5 * std::numbers::pi));
        for (int j = 0; j < kAngles; ++j) {
            const double theta = (double(j) + 0.5) / kAngles * std::numbers::pi / 8.0;
            touching += radius - sink < (a + fall) * std::cos(theta) ? 1 : 0;
        }
    }
    return double(touching) / (kAngles * kAngles);
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
