#include "host/render/shading.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/render/shade_point.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

using Cover = RenderMaterial::Cover;

constexpr float kPi = std::numbers::pi_v<float>;
constexpr float kSunSize = 0.012f;     // radius of its disk, one unit away; a little larger than it is, for softer shadows
constexpr float kSkyReach = 1500.0f;   // centimetres: what stands farther away takes no sky from a place
constexpr float kAlwaysLight = 0.12f;  // of the sky's light finds its way everywhere
constexpr int kMostLayers = 12;        // of see-through surfaces, one behind the other
constexpr float kRoughest = 0.55f;     // above it nothing is mirrored

struct Axes {
    Point3 x, y;
};

/// Two directions across `n` and each other. (After "Building an Orthonormal Basis, Revisited", Duff and others, 2017.)
Axes AcrossTo(const Point3& n) {
    const float sign = std::copysign(1.0f, n.z), a = -1.0f / (sign + n.z), b = n.x * n.y * a;
    return {{1.0f + sign * n.x * n.x * a, sign * b, -sign * n.x}, {b, sign + n.y * n.y * a, -n.y}};
}

/// Rays start a little off the surface that they leave: by more where numbers are larger, and so coarser.
Point3 StartOff(const RayHit& hit) {
    const float largest = std::max({std::abs(hit.point.x), std::abs(hit.point.y), std::abs(hit.point.z)});
    return hit.point + hit.flat * (0.02f + 4e-6f * largest);
}

}  // namespace

std::uint32_t SampleNumbers::Hash(std::uint32_t x) {
    x ^= x >> 16;
    x *= 0x7feb352du;
    x ^= x >> 15;
    x *= 0x846ca68bu;
    return x ^ x >> 16;
}

Point2 SampleNumbers::Next() {
    // The two steps fill the square most evenly, whatever the count: 2^32 through the plastic number, and through its square.
    constexpr std::uint32_t kStepX = 3242174889u, kStepY = 2447445414u;
    const std::uint32_t shiftX = Hash(pixel_ + 2 * pair_), shiftY = Hash(pixel_ + 2 * pair_ + 1);
    ++pair_;
    return {float((shiftX + sample_ * kStepX) >> 8) * 0x1p-24f, float((shiftY + sample_ * kStepY) >> 8) * 0x1p-24f};
}

/// A point with all that its looks depend on.
struct Shading::Surface {
    Light color;
    Light glow;
    Point3 normal;
    float metallic, roughness, alpha;
};

Shading::Surface Shading::SurfaceAt(const RayHit& hit, const Point3& direction) const {
    const RenderMaterial& material = model_.materials[hit.part->material];
    Surface surface{material.color, material.glow, hit.normal, material.metallic, material.roughness, material.alpha};
    if (material.picture >= 0 && !hit.part->spots.empty()) {
        const Picture& picture = model_.pictures[std::size_t(material.picture)];
        const float slant = std::max(0.15f, std::abs(DotProd(direction, hit.flat)));
        const float width = (pixelSize_ + pixelAngle_ * hit.distance) / slant;
        const float pixels = float(std::max(picture.width(), picture.height()));
        const PictureColor color = picture.At(
            hit.spot.x * material.scale[0] + material.offset[0], hit.spot.y * material.scale[1] + material.offset[1],
            hit.spotsPerUnit * width * pixels * material.scale[0], material.edges[0], material.edges[1], material.blurred);
        surface.color = Times(surface.color, Light(color.red, color.green, color.blue));
        surface.alpha *= color.alpha;
    }
    if (material.cover == Cover::Whole) surface.alpha = 1.0f;
    if (material.cover == Cover::Cut) surface.alpha = surface.alpha < material.cutoff ? 0.0f : 1.0f;
    const RenderThing& thing = model_.things[hit.thing];
    if (tracks_ == nullptr || !thing.takesTracks) return surface;
    ShadePoint point(tick_, thing.node, frame_.PlaceOf(hit.thing));
    point.MoveTo(hit.point, hit.normal);
    const TrackMark mark = tracks_->At(point);
    surface.color = surface.color * mark.value;
    const Point3 bumped = Normalize(hit.normal + mark.bump);
    // A dent's wall may lean a good deal, but never over.
    if (DotProd(bumped, hit.flat) > 0.05f) surface.normal = bumped;
    return surface;
}

bool Shading::SunReaches(const Surface& surface, const RayHit& hit, const Point2& number) const {
    if (DotProd(surface.normal, day_.toSun) <= 0.0f || DotProd(hit.flat, day_.toSun) <= 0.0f) return false;
    const Axes axes = AcrossTo(day_.toSun);
    const float radius = kSunSize * std::sqrt(number.x), angle = 2.0f * kPi * number.y;
    const Point3 toSpot = day_.toSun + axes.x * (radius * std::cos(angle)) + axes.y * (radius * std::sin(angle));
    return !frame_.IsBlocked({StartOff(hit), Normalize(toSpot)});
}

bool Shading::SkyReaches(const Surface& surface, const RayHit& hit, const Point2& number) const {
    const Axes axes = AcrossTo(surface.normal);
    const float radius = std::sqrt(number.x), angle = 2.0f * kPi * number.y;
    const Point3 up = surface.normal * std::sqrt(std::max(0.0f, 1.0f - number.x)) + axes.x * (radius * std::cos(angle)) +
                      axes.y * (radius * std::sin(angle));
    // What looks down sees the ground's light, which no nearby thing is held against.
    if (DotProd(up, hit.flat) <= 0.0f) return true;
    return !frame_.IsBlocked({StartOff(hit), up, 0.0f, kSkyReach * float(0.01 / MetresPerUnit())});
}

Light Shading::Mirrored(const Surface& surface, const RayHit& hit, const Point3& toEye) const {
    const Point3 back = surface.normal * (2.0f * DotProd(surface.normal, toEye)) - toEye;
    RayHit seen;
    Light light = day_.SkyAt(back);
    if (DotProd(back, hit.flat) > 0.0f && frame_.Meets({StartOff(hit), back}, seen)) {
        const RenderMaterial& material = model_.materials[seen.part->material];
        const float slope = std::max(0.0f, DotProd(seen.normal, day_.toSun));
        light = Times(material.color, day_.SkyOn(seen.normal) + day_.sun * (0.7f * slope));
    }
    // What is rough mirrors everything at once.
    return Blend(light, day_.SkyOn(surface.normal), std::min(1.0f, surface.roughness / kRoughest));
}

Light Shading::Lit(const Surface& surface, const RayHit& hit, const Point3& toEye, SampleNumbers& numbers) const {
    const Point2 sunNumber = numbers.Next(), skyNumber = numbers.Next();
    const float toSun = DotProd(surface.normal, day_.toSun), facing = std::max(1e-3f, DotProd(surface.normal, toEye));
    const float sky = SkyReaches(surface, hit, skyNumber) ? 1.0f : kAlwaysLight;
    const Light matt = surface.color * (1.0f - surface.metallic);
    Light light = surface.glow + Times(matt, day_.SkyOn(surface.normal)) * sky;

    // Fresnel after "An Inexpensive BRDF Model for Physically-based Rendering", Schlick, 1994.
    const Light plain(0.04f, 0.04f, 0.04f), head = Blend(plain, surface.color, surface.metallic);
    const auto fresnel = [&head](float cosine) {
        const float rest = 1.0f - cosine, power = rest * rest * rest * rest * rest;
        return Blend(head, Light(1, 1, 1), power);
    };
    const float polish = std::max(0.0f, 1.0f - surface.roughness / (surface.metallic > 0.5f ? 1.5f : 1.0f));
    if (polish > 0.15f) light += Times(fresnel(facing), Mirrored(surface, hit, toEye)) * (polish * std::max(sky, 0.4f));

    if (toSun > 0.0f && SunReaches(surface, hit, sunNumber)) {
        // Highlights after "Microfacet Models for Refraction through Rough Surfaces", Walter and others, 2007.
        const Point3 half = Normalize(day_.toSun + toEye);
        const float a = std::max(0.02f, surface.roughness * surface.roughness), a2 = a * a;
        const float nh = std::max(0.0f, DotProd(surface.normal, half)), d = nh * nh * (a2 - 1.0f) + 1.0f;
        const float spread = a2 / (d * d), hidden = 0.25f / std::max(0.05f, 0.5f * (facing + toSun));
        const Light shine = fresnel(std::max(0.0f, DotProd(half, toEye))) * std::min(8.0f, spread * hidden);
        light += Times(matt + shine, day_.sun) * toSun;
    }
    return light;
}

Light Shading::Along(Ray ray, SampleNumbers& numbers) const {
    Light sum(0, 0, 0);
    float through = 1.0f;
    // Far away the air has a colour of its own.
    const float hazeWay = float(1200.0 / MetresPerUnit());
    for (int layer = 0; layer < kMostLayers; ++layer) {
        RayHit hit;
        if (!frame_.Meets(ray, hit)) return sum + day_.SkyAt(ray.direction) * through;
        const Surface surface = SurfaceAt(hit, ray.direction);
        if (surface.alpha > 0.0f) {
            Light light = Lit(surface, hit, -ray.direction, numbers);
            if (pixelSize_ == 0.0f) {
                const Light haze = day_.SkyAt(Point3(ray.direction.x, ray.direction.y, 0.0f));
                light = Blend(haze, light, std::exp(-hit.distance / hazeWay));
            }
            sum += light * (through * surface.alpha);
            through *= 1.0f - surface.alpha;
        }
        if (through < 0.01f) return sum;
        ray.origin = hit.point - hit.flat * (0.02f + 1e-6f * hit.distance);
        ray.near = 0.0f;
    }
    return sum;
}

}  // namespace tavrik_host
