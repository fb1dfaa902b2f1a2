#pragma once
/// Where a view is seen from, and where in it the world's points are.

#include "matrix3.h"

namespace tavrik_host {

/// From where a view is seen. Pixels count from the top left corner.
struct ViewCamera {
    Matrix3 frame{TRUE};  // of the eye in the world: it looks along its -Z, and Y is up
    float scale = 1.0f;   // pixels to a unit; in perspective at a distance of one unit
    bool perspective = false;
    IPoint2 centre{0, 0};  // the pixel in the middle
};

/// A place in a view, between pixels too.
struct Pixel {
    float x, y;
};

/// In perspective, nothing nearer to the eye is seen, scene units.
constexpr float kNearest = 1e-3f;

/// How far in front of the eye a point is, along the way it looks. Below zero: behind it.
float DepthOf(const ViewCamera& camera, const Point3& world);
/// @return false where there is no such place: behind a perspective eye
bool Project(const ViewCamera& camera, const Point3& world, Pixel& pixel);
/// The point at a depth behind a pixel.
Point3 Unproject(const ViewCamera& camera, const Pixel& pixel, float depth);
/// How many units a pixel spans at a depth.
float UnitsPerPixel(const ViewCamera& camera, float depth);

/// What is seen at a pixel lies on it.
struct ViewRay {
    Point3 origin, direction;  // length 1
};
ViewRay RayThrough(const ViewCamera& camera, const Pixel& pixel);

/// Where the line of sight at a pixel meets the plane z = 0 of a frame, in that frame. Where it doesn't, the nearest that a
/// mouse can mean: as far out as makes sense, in the same direction.
Point3 OnPlane(const ViewCamera& camera, const Pixel& pixel, const Matrix3& plane);

}  // namespace tavrik_host
