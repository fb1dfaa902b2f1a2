#include "surface/box_clip.h"

#include <algorithm>
#include <cassert>

namespace tavrik {
namespace {

// A cut can turn n points into n + n/2 of them if rounding bends the polygon as far as it can: 3, 4, 6, 9, 13 over the four
// cuts in X and Y. A polygon that stays convex needs 7.
constexpr int kMostPoints = 13;

struct Polygon {
    int count = 0;
    Point3 point[kMostPoints];

    void Add(const Point3& p) {
        assert(count < kMostPoints);
        point[count++] = p;
    }
};

// Cuts away what lies below (kSide = -1) or above (kSide = 1) the plane at `c` on an axis. Points on the plane stay, and only
// an edge with one end strictly below and one strictly above is cut.
template <int kAxis, int kSide>
void CutAt(const Polygon& from, float c, Polygon& to) {
    const auto keeps = [c](float a) { return kSide < 0 ? a >= c : a <= c; };
    to.count = 0;
    for (int i = 0; i < from.count; ++i) {
        const Point3& p = from.point[i];
        const Point3& next = from.point[i + 1 < from.count ? i + 1 : 0];
        const float a = p[kAxis], b = next[kAxis];
        if (keeps(a)) to.Add(p);
        if ((a < c && b > c) || (a > c && b < c)) {
            Point3 crossing = p + (next - p) * ((c - a) / (b - a));
            crossing[kAxis] = c;
            to.Add(crossing);
        }
    }
}

template <int kAxis>
Box3 Range(const Polygon& polygon) {
    Box3 range = EmptyBox3();
    float& low = range.pmin.x;
    float& high = range.pmax.x;
    low = high = polygon.point[0][kAxis];
    for (int i = 1; i < polygon.count; ++i) {
        low = std::min(low, polygon.point[i][kAxis]);
        high = std::max(high, polygon.point[i][kAxis]);
    }
    return range;
}

// Leaves of `polygon` what lies between two planes on an axis, the lower one cut first. A plane that has all points on its good
// side changes nothing, so it is passed over.
template <int kAxis>
void CutBetween(const Polygon& polygon, float low, float high, Polygon& rest) {
    Polygon aboveLow;
    const Polygon* from = &polygon;
    if (Range<kAxis>(*from).pmin.x < low) {
        CutAt<kAxis, -1>(*from, low, aboveLow);
        from = &aboveLow;
    }
    if (from->count > 0 && Range<kAxis>(*from).pmax.x > high) {
        CutAt<kAxis, 1>(*from, high, rest);
    } else {
        rest = *from;
    }
}

// Children on the lower and on the upper side of each axis.
constexpr unsigned kSideChildren[3][2] = {{0x55, 0xAA}, {0x33, 0xCC}, {0x0F, 0xF0}};

// The children that touch the range a..b of an axis.
template <int kAxis>
unsigned ChildrenOnRange(const ChildWalls& walls, float a, float b) {
    const float low = walls.low[kAxis], middle = walls.middle[kAxis], high = walls.high[kAxis];
    return (a <= middle && b >= low ? kSideChildren[kAxis][0] : 0u) | (a <= high && b >= middle ? kSideChildren[kAxis][1] : 0u);
}

// The children of `wanted` that the clipped triangle touches. Each is cut at its walls in the order X, Y, Z, the lower wall
// before the upper one; children that share their first walls share the cuts.
unsigned ChildrenByClipping(const Point3 (&corner)[3], const ChildWalls& walls, unsigned wanted) {
    unsigned touched = 0;
    Polygon triangle;
    for (const Point3& p : corner) triangle.Add(p);
    const float wallX[3] = {walls.low.x, walls.middle.x, walls.high.x};
    const float wallY[3] = {walls.low.y, walls.middle.y, walls.high.y};
    for (int x = 0; x < 2; ++x) {
        const unsigned wantedX = wanted & kSideChildren[0][x];
        if (wantedX == 0) continue;
        Polygon slab;
        CutBetween<0>(triangle, wallX[x], wallX[x + 1], slab);
        if (slab.count == 0) continue;
        for (int y = 0; y < 2; ++y) {
            const unsigned wantedY = wantedX & kSideChildren[1][y];
            if (wantedY == 0) continue;
            Polygon column;
            CutBetween<1>(slab, wallY[y], wallY[y + 1], column);
            if (column.count == 0) continue;
            // The last two cuts leave a point exactly when the polygon is neither all below nor all above: it is closed, so
            // between a point below and one above there is one within or an edge that is cut.
            const Box3 range = Range<2>(column);
            touched |= wantedY & ChildrenOnRange<2>(walls, range.pmin.x, range.pmax.x);
        }
    }
    return touched;
}

}  // namespace

unsigned ChildrenTouched(const Point3 (&corner)[3], const ChildWalls& walls) {
    const Box3 box{{std::min({corner[0].x, corner[1].x, corner[2].x}), std::min({corner[0].y, corner[1].y, corner[2].y}),
                    std::min({corner[0].z, corner[1].z, corner[2].z})},
                   {std::max({corner[0].x, corner[1].x, corner[2].x}), std::max({corner[0].y, corner[1].y, corner[2].y}),
                    std::max({corner[0].z, corner[1].z, corner[2].z})}};
    const unsigned near = ChildrenOnRange<0>(walls, box.pmin.x, box.pmax.x) &
                          ChildrenOnRange<1>(walls, box.pmin.y, box.pmax.y) & ChildrenOnRange<2>(walls, box.pmin.z, box.pmax.z);
    // No cut removes or moves a corner that lies in the child.
    unsigned touched = 0;
    for (const Point3& p : corner) {
        touched |=
            ChildrenOnRange<0>(walls, p.x, p.x) & ChildrenOnRange<1>(walls, p.y, p.y) & ChildrenOnRange<2>(walls, p.z, p.z);
    }
    const unsigned undecided = near & ~touched;
    return undecided == 0 ? touched : touched | ChildrenByClipping(corner, walls, undecided);
}

}  // namespace tavrik
