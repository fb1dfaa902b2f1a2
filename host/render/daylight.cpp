#include "host/render/daylight.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

const Light kZenith(0.20f, 0.38f, 0.72f), kHorizon(0.72f, 0.81f, 0.90f), kHaze(0.60f, 0.67f, 0.72f);
const Light kFromAbove(0.27f, 0.33f, 0.42f), kFromBelow(0.14f, 0.135f, 0.115f);

}  // namespace

Daylight::Daylight(float azimuth, float elevation) {
    constexpr float kDegree = 0.017453293f;
    const float a = azimuth * kDegree, e = elevation * kDegree;
    toSun = Point3(std::sin(a) * std::cos(e), std::cos(a) * std::cos(e), std::sin(e));
}

Light Daylight::SkyAt(const Point3& direction) const {
    if (direction.z < 0.0f) return Blend(kHorizon, kHaze, std::min(1.0f, -direction.z * 12.0f));
    const float height = std::sqrt(direction.z);
    Light light = Blend(kHorizon, kZenith, std::min(1.0f, height * 1.15f));
    const float near = std::max(0.0f, DotProd(direction, toSun)), glow = near * near * near * near;
    light += sun * (0.10f * glow * glow);
    return light;
}

Light Daylight::SkyOn(const Point3& normal) const { return Blend(kFromBelow, kFromAbove, 0.5f + 0.5f * normal.z); }

}  // namespace tavrik_host
