#include "host/sdk/view_region.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

/// Where on a line the point nearest to `p` is, 0..1.
double NearestOn(const RegionPoint& p, const RegionPoint& a, const RegionPoint& b) {
    const double dx = b.x - a.x, dy = b.y - a.y, squared = dx * dx + dy * dy;
    const double t = squared > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / squared : 0.0;
    return std::clamp(t, 0.0, 1.0);
}

/// From a point to such a one.
double DistanceTo(const RegionPoint& p, const RegionPoint& a, const RegionPoint& b, double along) {
    return std::hypot(a.x + along * (b.x - a.x) - p.x, a.y + along * (b.y - a.y) - p.y);
}

bool Contains(const Rect& r, const RegionPoint& p) {
    return p.x >= double(r.left) && p.x <= double(r.right) && p.y >= double(r.top) && p.y <= double(r.bottom);
}

/// Narrows the piece t0..t1 of a line from `a`, `d` long on one axis, to where it is between two bounds.
void CutTo(double low, double high, double a, double d, double& t0, double& t1) {
    if (d == 0.0) {
        if (a < low || a > high) t1 = -1.0;
        return;
    }
    const double at = (low - a) / d, to = (high - a) / d;
    t0 = std::max(t0, std::min(at, to));
    t1 = std::min(t1, std::max(at, to));
}

/// @param along  out: where the line enters
bool Crosses(const Rect& r, const RegionPoint& a, const RegionPoint& b, double& along) {
    double t0 = 0.0, t1 = 1.0;
    CutTo(double(r.left), double(r.right), a.x, b.x - a.x, t0, t1);
    CutTo(double(r.top), double(r.bottom), a.y, b.y - a.y, t0, t1);
    along = t0;
    return t0 <= t1;
}

}  // namespace

RegionAnswer TryRegion(const HitRegion& region, const RegionPoint& a, const RegionPoint& b) {
    switch (region.type) {
        case POINT_RGN: {
            const RegionPoint point{double(region.pt.x), double(region.pt.y)};
            const double along = NearestOn(point, a, b);
            const bool near = DistanceTo(point, a, b, along) <= double(region.epsilon);
            return {near, near, along};
        }
        case RECT_RGN: {
            RegionAnswer answer{false, Contains(region.rect, a) && Contains(region.rect, b), 0.0};
            answer.touched = Crosses(region.rect, a, b, answer.along);
            return answer;
        }
        case CIRCLE_RGN: {
            const RegionPoint middle{double(region.circle.x), double(region.circle.y)};
            const double radius = double(region.circle.r), along = NearestOn(middle, a, b);
            const auto holds = [&](const RegionPoint& p) { return std::hypot(p.x - middle.x, p.y - middle.y) <= radius; };
            return {DistanceTo(middle, a, b, along) <= radius, holds(a) && holds(b), along};
        }
        default:
            return {false, false, 0.0};  // fences are not looked into here
    }
}

RegionPoint PointOf(const HitRegion& region) {
    if (region.type == CIRCLE_RGN) return {double(region.circle.x), double(region.circle.y)};
    if (region.type == RECT_RGN) return {double(region.rect.left), double(region.rect.top)};
    return {double(region.pt.x), double(region.pt.y)};
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
