#include "host/car_placement.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <vector>

namespace tavrik {
namespace {

/// Up vectors that lean further than this from vertical are walls or edges, not something to put a car on.
constexpr double kLeastUp = 0.82;  // about 35 degrees

struct WheelGround {
    DPoint3 wheel;  // in the axes of the level car
    DPoint3 at;     // the ground below it, world
};

/// The box around the mesh itself: the tree's own bound is a larger cube.
Box3 BoxAround(const SurfaceTree& surface) {
    Box3 box = EmptyBox3();
    for (const Point3& v : surface.verts()) box.Include(v);
    return box;
}

/// The up vector of the plane closest to the grounds under the wheels, in the level frame's axes. Least squares for
/// z = c + gx * x + gy * y.
DPoint3 FitUp(std::span<const WheelGround> grounds) {
    const double n = double(grounds.size());
    DPoint3 mean{};
    for (const WheelGround& g : grounds) mean += DPoint3{g.wheel.x, g.wheel.y, g.at.z} / n;
    double xx = 0, xy = 0, yy = 0, xz = 0, yz = 0;
    for (const WheelGround& g : grounds) {
        const double x = g.wheel.x - mean.x, y = g.wheel.y - mean.y, z = g.at.z - mean.z;
        xx += x * x;
        xy += x * y;
        yy += y * y;
        xz += x * z;
        yz += y * z;
    }
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > 1e-6)) return {0, 0, 1};  // wheels in one line leave the tilt open
    const double gx = (xz * yy - yz * xy) / determinant, gy = (yz * xx - xz * xy) / determinant;
    return Normalize(DPoint3{-gx, -gy, 1.0});
}

}  // namespace

bool GroundBelow(const SurfaceTree& surface, double x, double y, double& z) {
    // A ray that runs within a wall of the tree's cubes can lose its hit to rounding, and the middle of a ground is such a
    // place. A hair beside it is as good.
    constexpr double kBeside[][2] = {{0, 0}, {0.013, 0.007}, {-0.011, 0.017}, {0.31, -0.23}, {-0.29, -0.37}};
    const Box3& box = surface.bound();
    const float top = box.pmax.z + 1.0f, depth = top - (box.pmin.z - 1.0f);
    for (const auto& beside : kBeside) {
        SurfaceRay ray;
        ray.Set({float(x + beside[0]), float(y + beside[1]), top}, {0.0f, 0.0f, -depth}, 0.0f, 1.0f);
        if (!surface.Intersect(ray)) continue;
        z = double(top) - double(depth) * double(ray.tmax);
        return true;
    }
    return false;
}

CarSpot MiddleOfGround(const SurfaceTree& surface) {
    const Point3 middle = BoxAround(surface).Center();
    CarSpot spot{double(middle.x), double(middle.y), 0.0};
    double z;
    if (GroundBelow(surface, spot.x, spot.y, z)) return spot;
    double nearest = std::numeric_limits<double>::infinity();
    CarSpot found = spot;
    const std::vector<Point3>& verts = surface.verts();
    for (const SurfaceTriangle& triangle : surface.triangles()) {
        const Point3 centre = (verts[triangle.corner[0]] + verts[triangle.corner[1]] + verts[triangle.corner[2]]) / 3.0f;
        const double distance = std::hypot(double(centre.x) - spot.x, double(centre.y) - spot.y);
        if (distance >= nearest || !GroundBelow(surface, double(centre.x), double(centre.y), z)) continue;
        nearest = distance;
        found = {double(centre.x), double(centre.y), 0.0};
    }
    return found;
}

bool StandOnGround(const SurfaceTree& surface, const CarSpot& spot, std::span<const DPoint3> wheels, double standingHeight,
                   DMatrix3& frame, std::string& problem) {
    double highest;
    if (!GroundBelow(surface, spot.x, spot.y, highest)) {
        const Box3 box = BoxAround(surface);
        const auto metres = [](float units) { return double(units) / 100.0; };
        problem = fmt::format(
            "there is no ground at x {} m, y {} m to put the car on; it lies within x {:.1f} to {:.1f} m, "
            "y {:.1f} to {:.1f} m",
            spot.x / 100.0, spot.y / 100.0, metres(box.pmin.x), metres(box.pmax.x), metres(box.pmin.y), metres(box.pmax.y));
        return false;
    }
    // Heading 0 looks along +Y; turning clockwise brings +Y towards +X.
    const double angle = spot.heading * std::numbers::pi / 180.0;
    const double c = std::cos(angle), s = std::sin(angle);
    frame = {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}, {spot.x, spot.y, 0}}};
    std::vector<WheelGround> grounds;
    for (const DPoint3& wheel : wheels) {
        const DPoint3 at = TransformPoint({wheel.x, wheel.y, 0}, frame);
        double z;
        if (!GroundBelow(surface, at.x, at.y, z)) continue;
        grounds.push_back({wheel, {at.x, at.y, z}});
        highest = std::max(highest, z);
    }
    const DPoint3 up = grounds.size() == wheels.size() ? FitUp(grounds) : DPoint3{0, 0, 1};
    if (up.z < kLeastUp || up.z == 1.0) {
        frame.row[3].z = highest + standingHeight;
        return true;
    }
    // The level frame's axes lean with the ground: the front keeps its compass direction, the right side follows from it.
    const DPoint3 upWorld = TransformPoint(up, WithoutTranslation(frame));
    const DPoint3 front = Normalize(DPoint3{s * upWorld.z, c * upWorld.z, -(s * upWorld.x + c * upWorld.y)});
    frame.row[0] = Cross(front, upWorld);
    frame.row[1] = front;
    frame.row[2] = upWorld;
    // As low as leaves no ground under a wheel above the car's plane: that plane is moved up to the highest of them.
    double offset = -std::numeric_limits<double>::infinity();
    for (const WheelGround& g : grounds) offset = std::max(offset, Dot(g.at - DPoint3{spot.x, spot.y, 0}, upWorld));
    frame.row[3] = DPoint3{spot.x, spot.y, offset / upWorld.z} + upWorld * standingHeight;
    return true;
}

}  // namespace tavrik
