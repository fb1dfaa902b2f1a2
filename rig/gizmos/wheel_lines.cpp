#include <cmath>

#include "rig/gizmos/gizmos.h"

namespace tavrik {
namespace {

/// A tyre: a rounded section, carried around Z.
struct Tyre {
    float middle;  // radius of the section's centre line
    float width;   // half the tyre's, and the section's radius
};

/// A point of the section, as ratios of the width: along the axle and outward.
struct SectionPoint {
    float s, c;
};

//   (s, c) = (sin b, cos b) / n     n is below 1 between the axes, so the circle swells towards a square
SectionPoint OnTread(float b) {
    const float s = std::sin(b), c = std::cos(b);
    const float n = std::sqrt(s * s * s * s + c * c * c * c);
    return {s / n, c / n};
}

/// One root more than on the tread's rings. Sections are drawn so, rings aren't; they meet at b = 0 and at the rims.
SectionPoint OnSection(float b) {
    const float s = std::sin(b), c = std::cos(b);
    const float n = std::sqrt(std::sqrt(s * s * s * s + c * c * c * c));
    return {s / n, c / n};
}

Point3 OnTyre(const Tyre& tyre, const SectionPoint& p, float theta) {
    const float rho = tyre.middle + p.c * tyre.width;
    return {std::sin(theta) * rho, std::cos(theta) * rho, p.s * tyre.width};
}

void DrawRing(GizmoLines& lines, const Tyre& tyre, float b) {
    const SectionPoint p = OnTread(b);
    const auto at = [&](int i) { return OnTyre(tyre, p, float(i) / 50.0f * kGizmoPi); };
    for (int i = 0; i < 100; ++i) DrawLine(lines, at(i), at(i + 1));
}

void DrawSection(GizmoLines& lines, const Tyre& tyre, float theta) {
    const auto at = [&](int n) { return OnTyre(tyre, OnSection(float(n) / 100.0f * kGizmoPi), theta); };
    for (int n = -50; n < 50; ++n) DrawLine(lines, at(n), at(n + 1));
}

}  // namespace

GizmoLines WheelLines(float radius, float width) {
    GizmoLines lines;
    const Tyre tyre{radius - width, width};
    for (const float halves : {-1.0f, 0.0f, 1.0f}) DrawRing(lines, tyre, halves / 2.0f * kGizmoPi);
    for (int k = 0; k < 4; ++k) DrawSection(lines, tyre, float(k) / 2.0f * kGizmoPi);
    DrawLine(lines, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 2.0f * width);
    DrawHeadAlongZ(lines, 0.3f * width, 1.5f * width, 2.0f * width);
    return lines;
}

GizmoLines SphereLines(float radius) {
    GizmoLines lines;
    DrawBall(lines, {0, 0, 0}, radius, 32);
    return lines;
}

}  // namespace tavrik
