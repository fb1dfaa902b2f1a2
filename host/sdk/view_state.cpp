#include "host/sdk/view_state.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

constexpr float kDegree = 0.017453293f;
constexpr float kDegreesPerPixel = 0.4f;
constexpr float kClosest = 1e-2f, kFarthest = 1e7f;  // of an eye to its target, units

/// Sine and cosine; exact where a view looks along an axis, so that its plane is the axis's own.
struct Turn {
    float sin, cos;
};
Turn TurnOf(float degrees) {
    const float quarters = degrees / 90.0f, whole = std::nearbyint(quarters);
    if (quarters != whole) return {std::sin(degrees * kDegree), std::cos(degrees * kDegree)};
    switch ((int(std::fmod(whole, 4.0f)) + 4) % 4) {
        case 0:
            return {0.0f, 1.0f};
        case 1:
            return {1.0f, 0.0f};
        case 2:
            return {0.0f, -1.0f};
        default:
            return {-1.0f, 0.0f};
    }
}

/// To the right, up, and back to the eye.
Matrix3 AxesOf(const ViewState& view) {
    const Turn heading = TurnOf(view.heading), pitch = TurnOf(view.pitch);
    Matrix3 axes(TRUE);
    axes.SetRow(0, Point3(heading.cos, -heading.sin, 0.0f));
    axes.SetRow(1, Point3(-heading.sin * pitch.sin, -heading.cos * pitch.sin, pitch.cos));
    axes.SetRow(2, Point3(-heading.sin * pitch.cos, -heading.cos * pitch.cos, -pitch.sin));
    return axes;
}

float HalfLens(const ViewState& view) { return std::tan(0.5f * std::clamp(view.lens, 1.0f, 170.0f) * kDegree); }

float HalfHeight(const ViewState& view) { return 0.5f * float(std::max(1, view.height)); }

/// Pixels to a unit at the target.
float ScaleAtTarget(const ViewState& view) { return HalfHeight(view) / (HalfLens(view) * view.distance); }

bool IsAlongAxis(const Point3& d) { return (d.x != 0.0f) + (d.y != 0.0f) + (d.z != 0.0f) == 1; }

float WithinTurn(float degrees) {
    const float turned = std::fmod(degrees, 360.0f);
    return turned < 0.0f ? turned + 360.0f : turned;
}

}  // namespace

ViewState Seen(ViewState view, ViewSide side) {
    view.perspective = side == ViewSide::Perspective;
    switch (side) {
        case ViewSide::Perspective:
            view.heading = 30.0f;
            view.pitch = -25.0f;
            break;
        case ViewSide::Top:
        case ViewSide::Bottom:
            view.heading = 0.0f;
            view.pitch = side == ViewSide::Top ? -90.0f : 90.0f;
            break;
        case ViewSide::Front:
        case ViewSide::Back:
            view.heading = side == ViewSide::Front ? 0.0f : 180.0f;
            view.pitch = 0.0f;
            break;
        case ViewSide::Left:
        case ViewSide::Right:
            view.heading = side == ViewSide::Left ? 90.0f : 270.0f;
            view.pitch = 0.0f;
            break;
    }
    return view;
}

ViewCamera CameraOf(const ViewState& view) {
    ViewCamera camera;
    camera.frame = AxesOf(view);
    camera.frame.SetTrans(view.target + camera.frame.GetRow(2) * view.distance);
    camera.perspective = view.perspective;
    camera.scale = view.perspective ? HalfHeight(view) / HalfLens(view) : ScaleAtTarget(view);
    camera.centre = IPoint2(view.width / 2, view.height / 2);
    return camera;
}

Matrix3 GridPlaneOf(const ViewState& view) {
    const Matrix3 axes = AxesOf(view);
    const bool faces = !view.perspective && IsAlongAxis(axes.GetRow(0)) && IsAlongAxis(axes.GetRow(1));
    return faces ? axes : Matrix3(TRUE);
}

ViewState Orbited(ViewState view, float right, float down) {
    // Things follow the mouse, so the eye goes the other way.
    view.heading = WithinTurn(view.heading + right * kDegreesPerPixel);
    view.pitch = std::clamp(view.pitch - down * kDegreesPerPixel, -90.0f, 90.0f);
    return view;
}

ViewState Panned(ViewState view, float right, float down) {
    const Matrix3 axes = AxesOf(view);
    const float units = 1.0f / ScaleAtTarget(view);
    view.target += axes.GetRow(0) * (-right * units) + axes.GetRow(1) * (down * units);
    return view;
}

ViewState Zoomed(ViewState view, float factor, const Pixel& mouse) {
    if (!(factor > 0.0f) || !std::isfinite(factor)) return view;
    const float before = view.distance;
    view.distance = std::clamp(before / factor, kClosest, kFarthest);
    const Matrix3 axes = AxesOf(view);
    // What the mouse is on, at the target's depth, is this far off the target; it comes nearer by the same ratio.
    ViewState unzoomed = view;
    unzoomed.distance = before;
    const float units = 1.0f / ScaleAtTarget(unzoomed), left = 1.0f - view.distance / before;
    const float x = (mouse.x - float(view.width / 2)) * units, y = (float(view.height / 2) - mouse.y) * units;
    view.target += axes.GetRow(0) * (x * left) + axes.GetRow(1) * (y * left);
    return view;
}

ViewState Framed(ViewState view, std::span<const Point3> points, float margin) {
    if (points.empty()) return view;
    const Matrix3 axes = AxesOf(view);
    Point3 low(1e30f, 1e30f, 1e30f), high(-1e30f, -1e30f, -1e30f);
    const auto along = [&axes](const Point3& p, int i) { return DotProd(p, axes.GetRow(i)); };
    for (const Point3& p : points) {
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], along(p, i));
            high[i] = std::max(high[i], along(p, i));
        }
    }
    const Point3 middle = (low + high) * 0.5f;
    view.target = axes.GetRow(0) * middle.x + axes.GetRow(1) * middle.y + axes.GetRow(2) * middle.z;
    const float up = HalfLens(view) * (1.0f - 2.0f * margin), across = up * float(view.width) / float(std::max(1, view.height));
    float distance = kClosest;
    for (const Point3& p : points) {
        const float nearer = view.perspective ? along(p, 2) - middle.z : 0.0f;
        distance = std::max(
            {distance, nearer + std::abs(along(p, 0) - middle.x) / across, nearer + std::abs(along(p, 1) - middle.y) / up});
    }
    view.distance = std::min(distance, kFarthest);
    return view;
}

}  // namespace tavrik_host
