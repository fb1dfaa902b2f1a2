#include "tracks/tyre_contact.h"

#include <cmath>

#include "tracks/tread_table.h"

namespace tavrik {
namespace {

// The pi of every tread that was ever fitted to a tyre. A closer one would move the seam.
constexpr float kPi = 3.141592f;

float Fourth(float x) { return x * x * x * x; }

}  // namespace

bool TyreContact(const Point3& local, const TyreShape& tyre, TyreTouch& touch) {
    const float r = tyre.Radius, w = tyre.Width, z = local.z;
    if (std::abs(z) > w) return false;
    const float q = local.x * local.x + local.y * local.y;
    if (q > r * r) return false;

    // On the axle itself there is no way outwards: zero, and never a NaN that would blacken a picture.
    const float rho = std::sqrt(q);
    const Point3 radial = rho > 0.0f ? Point3{local.x, local.y, 0.0f} / rho : Point3{0.0f, 0.0f, 0.0f};

    //   weight = 1 - (s^4 + z^4) / w^4     s: from the circle at the middle of the section, outwards
    const float s = rho - (r - w);
    const float weight = 1.0f - (Fourth(s) + Fourth(z)) / Fourth(w);
    if (weight < 0.0f) return false;

    const Point3 n = Normalize({s * s * s, z * z * z, 0.0f});
    const Point3 axle = {0.0f, 0.0f, 1.0f};
    touch.weight = weight;
    touch.normal = axle * n.y + radial * n.x;
    if (tyre.patternMap == nullptr) return true;

    const float across = std::atan2(z, s) / kPi + 0.5f;
    float around = std::atan2(local.x, local.y) / kPi * 0.5f + 0.5f;
    float scale = 0.5f / r * w;
    if (tyre.sideFlag == 0) {
        around = 1.0f - around;
        scale = -scale;
    }
    // The rounded section says whether the point counts at all, the tread how much.
    const TreadSample tread = SampleTread(tyre.patternMap, across, around);
    const Point3 tangent = axle * n.x - radial * n.y;
    const Point3 spin = {radial.y, -radial.x, 0.0f};
    touch.weight = tread.value;
    touch.gradient = (tangent * tread.gradient.x + spin * tread.gradient.y * scale) * tread.value;
    return true;
}

}  // namespace tavrik
