#pragma once
/// Sun and sky of a clear day. Brightnesses are those of the picture: 1 is its white.

#include "host/sdk/max.h"

namespace tavrik_host {

using Light = Point3;  // red, green, blue; linear

inline Light Times(const Light& a, const Light& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Light Blend(const Light& a, const Light& b, float t) { return a * (1.0f - t) + b * t; }

struct Daylight {
    Point3 toSun;  // length 1
    Light sun{1.12f, 1.0f, 0.82f};

    /// @param azimuth, elevation  degrees, clockwise from +Y and above the horizon
    Daylight(float azimuth, float elevation);

    /// What is seen in a direction where nothing stands. Below the horizon lies haze.
    Light SkyAt(const Point3& direction) const;
    /// What the sky sends to a surface that lies across `normal`, with what comes back from the ground.
    Light SkyOn(const Point3& normal) const;
};

}  // namespace tavrik_host
