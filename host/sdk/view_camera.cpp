#include "host/sdk/view_camera.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

/// In the eye's own axes.
Point3 FromEye(const ViewCamera& camera, const Point3& world) {
    const Point3 d = world - camera.frame.GetTrans();
    return {DotProd(d, camera.frame.GetRow(0)), DotProd(d, camera.frame.GetRow(1)), DotProd(d, camera.frame.GetRow(2))};
}

}  // namespace

float DepthOf(const ViewCamera& camera, const Point3& world) { return -FromEye(camera, world).z; }

bool Project(const ViewCamera& camera, const Point3& world, Pixel& pixel) {
    const Point3 eye = FromEye(camera, world);
    if (camera.perspective && -eye.z < kNearest) return false;
    const float scale = camera.perspective ? camera.scale / -eye.z : camera.scale;
    pixel = {float(camera.centre.x) + eye.x * scale, float(camera.centre.y) - eye.y * scale};
    return true;
}

float UnitsPerPixel(const ViewCamera& camera, float depth) {
    return camera.perspective ? std::max(depth, kNearest) / camera.scale : 1.0f / camera.scale;
}

Point3 Unproject(const ViewCamera& camera, const Pixel& pixel, float depth) {
    const float unit = camera.perspective ? depth / camera.scale : 1.0f / camera.scale;
    const float x = (pixel.x - float(camera.centre.x)) * unit, y = (float(camera.centre.y) - pixel.y) * unit;
    return Point3(x, y, -depth) * camera.frame;
}

ViewRay RayThrough(const ViewCamera& camera, const Pixel& pixel) {
    const Point3 at = Unproject(camera, pixel, 1.0f);
    if (!camera.perspective) return {Unproject(camera, pixel, 0.0f), -Normalize(camera.frame.GetRow(2))};
    return {camera.frame.GetTrans(), Normalize(at - camera.frame.GetTrans())};
}

Point3 OnPlane(const ViewCamera& camera, const Pixel& pixel, const Matrix3& plane) {
    constexpr float kFarthest = 1e4f;  // heights of the eye above the plane
    const ViewRay ray = RayThrough(camera, pixel);
    const Matrix3 toPlane = Inverse(plane);
    const Point3 from = ray.origin * toPlane, way = toPlane.VectorTransform(ray.direction);
    const float t = way.z != 0.0f ? -from.z / way.z : -1.0f, farthest = kFarthest * std::max(1.0f, std::abs(from.z));
    // A flat view sees what is behind its eye too.
    const bool meets = way.z != 0.0f && std::abs(t) <= farthest && (t >= 0.0f || !camera.perspective);
    Point3 at = from + way * (meets ? t : camera.perspective ? farthest : 0.0f);
    at.z = 0.0f;
    return at;
}

}  // namespace tavrik_host
