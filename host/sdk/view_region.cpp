#include "host/sdk/view_region.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

/// From a point to the nearest one of a line.
float DistanceTo(const Pixel& p, const Pixel& a, const Pixel& b) {
    const float dx = b.x - a.x, dy = b.y - a.y, squared = dx * dx + dy * dy;
    const float t = squared > 0.0f ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / squared : 0.0f;
    const float along = std::clamp(t, 0.0f, 1.0f);
    return std::hypot(a.x + along * dx - p.x, a.y + along * dy - p.y);
}

bool Contains(const Rect& r, const Pixel& p) {
    return p.x >= float(r.left) && p.x <= float(r.right) && p.y >= float(r.top) && p.y <= float(r.bottom);
}

/// Narrows the piece t0..t1 of a line from `a`, `d` long on one axis, to where it is between two bounds.
void CutTo(float low, float high, float a, float d, float& t0, float& t1) {
    if (d == 0.0f) {
        if (a < low || a > high) t1 = -1.0f;
        return;
    }
    const float at = (low - a) / d, to = (high - a) / d;
    t0 = std::max(t0, std::min(at, to));
    t1 = std::min(t1, std::max(at, to));
}

bool Crosses(const Rect& r, const Pixel& a, const Pixel& b) {
    float t0 = 0.0f, t1 = 1.0f;
    CutTo(float(r.left), float(r.right), a.x, b.x - a.x, t0, t1);
    CutTo(float(r.top), float(r.bottom), a.y, b.y - a.y, t0, t1);
    return t0 <= t1;
}

}  // namespace

RegionAnswer TryRegion(const HitRegion& region, const Pixel& a, const Pixel& b) {
    switch (region.type) {
        case POINT_RGN: {
            const bool near = DistanceTo({float(region.pt.x), float(region.pt.y)}, a, b) <= float(region.epsilon);
            return {near, near};
        }
        case RECT_RGN:
            return {Crosses(region.rect, a, b), Contains(region.rect, a) && Contains(region.rect, b)};
        case CIRCLE_RGN: {
            const Pixel middle{float(region.circle.x), float(region.circle.y)};
            const float radius = float(region.circle.r);
            const auto holds = [&](const Pixel& p) { return std::hypot(p.x - middle.x, p.y - middle.y) <= radius; };
            return {DistanceTo(middle, a, b) <= radius, holds(a) && holds(b)};
        }
        default:
            return {false, false};  // fences are not looked into here
    }
}

}  // namespace tavrik_host

void MakeHitRegion(HitRegion& hr, int type, int crossing, int epsi, IPoint2* p) {
    hr.type = type;
    hr.crossing = crossing;
    hr.epsilon = epsi;
    switch (type) {
        case HITTYPE_POINT:
            hr.pt = p[0];
            break;
        case HITTYPE_RECT:
            hr.dir = p[1].x > p[0].x ? 1 : 0;
            hr.rect = {std::min(p[0].x, p[1].x), std::min(p[0].y, p[1].y), std::max(p[0].x, p[1].x), std::max(p[0].y, p[1].y)};
            break;
        case HITTYPE_CIRCLE:
            hr.circle = {p[0].x, p[0].y, int(std::lround(std::hypot(double(p[1].x - p[0].x), double(p[1].y - p[0].y))))};
            break;
        default:
            hr.pts = p;
            break;
    }
}
