#include "wizard/disc_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace tavrik {
namespace {

// Steeper than this no wheel stands.
constexpr double kSteepestAxle = 0.35;
constexpr int kDirections = 32;

/// The points' own axes: eigenvectors of their covariance, by Jacobi's rotations.
std::array<DPoint3, 3> PrincipalAxes(std::span<const DPoint3> points) {
    DPoint3 mean{};
    for (const DPoint3& p : points) mean += p / double(points.size());
    double a[3][3] = {}, v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (const DPoint3& p : points) {
        const double d[3] = {p.x - mean.x, p.y - mean.y, p.z - mean.z};
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) a[i][j] += d[i] * d[j];
        }
    }
    for (int sweep = 0; sweep < 30; ++sweep) {
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                if (!(std::abs(a[p][q]) > 1e-300)) continue;
                const double angle = 0.5 * std::atan2(2.0 * a[p][q], a[q][q] - a[p][p]);
                const double c = std::cos(angle), s = std::sin(angle);
                for (int k = 0; k < 3; ++k) {
                    const double kp = a[k][p], kq = a[k][q];
                    a[k][p] = c * kp - s * kq;
                    a[k][q] = s * kp + c * kq;
                }
                for (int k = 0; k < 3; ++k) {
                    const double pk = a[p][k], qk = a[q][k];
                    a[p][k] = c * pk - s * qk;
                    a[q][k] = s * pk + c * qk;
                }
                for (int k = 0; k < 3; ++k) {
                    const double kp = v[k][p], kq = v[k][q];
                    v[k][p] = c * kp - s * kq;
                    v[k][q] = s * kp + c * kq;
                }
            }
        }
    }
    return {DPoint3{v[0][0], v[1][0], v[2][0]}, DPoint3{v[0][1], v[1][1], v[2][1]}, DPoint3{v[0][2], v[1][2], v[2][2]}};
}

DiscFit FitAbout(std::span<const DPoint3> points, const DPoint3& axle) {
    const DPoint3 u = Normalize(Cross(axle, {0.0, 0.0, 1.0})), w = Cross(u, axle);
    // Reach of the points, from the origin, in directions around the axle, and along it both ways.
    const DPoint3& anchor = points[0];
    double reach[kDirections], cosines[kDirections], sines[kDirections];
    for (int k = 0; k < kDirections; ++k) {
        const double angle = 2.0 * std::numbers::pi * k / kDirections;
        cosines[k] = std::cos(angle);
        sines[k] = std::sin(angle);
        reach[k] = -1e300;
    }
    double low = 1e300, high = -1e300;
    for (const DPoint3& p : points) {
        const DPoint3 d = p - anchor;
        const double x = Dot(d, u), y = Dot(d, w), along = Dot(d, axle);
        low = std::min(low, along);
        high = std::max(high, along);
        for (int k = 0; k < kDirections; ++k) reach[k] = std::max(reach[k], x * cosines[k] + y * sines[k]);
    }
    const double cx = (reach[0] - reach[kDirections / 2]) * 0.5;
    const double cy = (reach[kDirections / 4] - reach[3 * kDirections / 4]) * 0.5;
    double least = 1e300, most = 0.0;
    for (int k = 0; k < kDirections; ++k) {
        const double r = reach[k] - cx * cosines[k] - cy * sines[k];
        least = std::min(least, r);
        most = std::max(most, r);
    }
    DiscFit fit;
    fit.axle = axle;
    fit.centre = anchor + u * cx + w * cy + axle * ((low + high) * 0.5);
    fit.radius = most;
    fit.halfWidth = (high - low) * 0.5;
    fit.roundness = most > 0.0 ? std::max(0.0, least / most) : 0.0;
    return fit;
}

}  // namespace

DiscFit FitDisc(std::span<const DPoint3> points, const DMatrix3& frame) {
    DiscFit best;
    if (points.size() < 6) return best;
    std::vector<DPoint3> axes;
    for (int r = 0; r < 3; ++r) axes.push_back(Normalize(frame.row[r]));
    axes.push_back({1, 0, 0});
    axes.push_back({0, 1, 0});
    for (const DPoint3& axis : PrincipalAxes(points)) axes.push_back(axis);
    for (const DPoint3& axis : axes) {
        if (!(std::abs(axis.z) < kSteepestAxle) || !(Length(axis) > 0.5)) continue;
        const DiscFit fit = FitAbout(points, axis);
        // Among directions that are alike the one drawn along wins over one that rounding made a little rounder.
        if (fit.roundness > best.roundness + 1e-3) best = fit;
    }
    return best;
}

}  // namespace tavrik
