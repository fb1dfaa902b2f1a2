#include "studio/view/handles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tavrik_studio {
namespace {

using tavrik_host::Pixel;
using tavrik_host::ViewCamera;
using tavrik_host::ViewRay;

constexpr float kPi = 3.14159265f;
constexpr int kRingSides = 72;
constexpr float kEndOn = 0.12f;  // of an arm's length: what looks shorter than that points at the eye
constexpr HandlePart kAxes[] = {HandlePart::X, HandlePart::Y, HandlePart::Z};
constexpr HandlePart kPlanes[] = {HandlePart::YZ, HandlePart::ZX, HandlePart::XY};  // beside the axis across each

Point3 Axis(int i) { return {i == 0 ? 1.0f : 0.0f, i == 1 ? 1.0f : 0.0f, i == 2 ? 1.0f : 0.0f}; }

Point3 Back(const ViewCamera& camera) { return camera.frame.GetRow(2); }

/// To the eye from a place.
Point3 ToEye(const ViewCamera& camera, const Point3& at) {
    return camera.perspective ? Normalize(camera.frame.GetTrans() - at) : Back(camera);
}

float UnitAt(const Handles& handles, const ViewCamera& camera) {
    return UnitsPerPixel(camera, DepthOf(camera, handles.centre));
}

bool IsSeen(const Handles& handles, const ViewCamera& camera) {
    return !camera.perspective || DepthOf(camera, handles.centre) > tavrik_host::kNearest;
}

Pixel At(const ViewCamera& camera, const Point3& p) {
    Pixel pixel{-1e6f, -1e6f};
    Project(camera, p, pixel);
    return pixel;
}

float DistanceToLine(const Pixel& p, const Pixel& a, const Pixel& b) {
    const float dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const float t = square > 0.0f ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0f, 1.0f) : 0.0f;
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

bool IsInside(const Pixel& p, const std::vector<Pixel>& outline) {
    bool inside = false;
    for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const Pixel &a = outline[i], &b = outline[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    }
    return inside;
}

std::optional<Point3> MeetPlane(const ViewRay& ray, const Point3& at, const Point3& normal) {
    const float across = DotProd(ray.direction, normal);
    if (std::abs(across) < 1e-4f) return std::nullopt;
    return ray.origin + ray.direction * (DotProd(at - ray.origin, normal) / across);
}

/// A ring's two directions, for the axis that it goes about.
std::array<Point3, 2> RingAxes(HandlePart part, const ViewCamera& camera) {
    if (part == HandlePart::Eye) return {camera.frame.GetRow(0), camera.frame.GetRow(1)};
    const int axis = AxisOf(part);
    return {Axis((axis + 1) % 3), Axis((axis + 2) % 3)};
}

// -------------------------------------------------------------------------------------------------------------------- shapes

HandleShape Arm(const Handles& handles, const ViewCamera& camera, int axis) {
    const float unit = UnitAt(handles, camera);
    return {kAxes[axis],
            {At(camera, handles.centre + Axis(axis) * (kHandleMiddle * unit)),
             At(camera, handles.centre + Axis(axis) * ((kHandleArm - kHandleHead) * unit))},
            false,
            false};
}

HandleShape Head(const Handles& handles, const ViewCamera& camera, int axis) {
    const float unit = UnitAt(handles, camera);
    const Pixel tip = At(camera, handles.centre + Axis(axis) * (kHandleArm * unit)),
                foot = At(camera, handles.centre + Axis(axis) * ((kHandleArm - kHandleHead) * unit));
    const Pixel middle = At(camera, handles.centre);
    const float dx = tip.x - middle.x, dy = tip.y - middle.y, length = std::max(1e-3f, std::hypot(dx, dy));
    const float wide = 5.5f, nx = -dy / length * wide, ny = dx / length * wide;
    return {kAxes[axis], {tip, {foot.x + nx, foot.y + ny}, {foot.x - nx, foot.y - ny}}, true, false};
}

HandleShape Square(const Handles& handles, const ViewCamera& camera, int axis) {
    const float unit = UnitAt(handles, camera), a = kHandleSquareLow * unit, b = kHandleSquareHigh * unit;
    const Point3 u = Axis((axis + 1) % 3), v = Axis((axis + 2) % 3), c = handles.centre;
    return {kPlanes[axis],
            {At(camera, c + u * a + v * a), At(camera, c + u * b + v * a), At(camera, c + u * b + v * b),
             At(camera, c + u * a + v * b)},
            true,
            false};
}

HandleShape Middle(const Handles& handles, const ViewCamera& camera) {
    const Pixel p = At(camera, handles.centre);
    const float s = kHandleMiddle - 2.0f;
    return {HandlePart::Eye, {{p.x - s, p.y - s}, {p.x + s, p.y - s}, {p.x + s, p.y + s}, {p.x - s, p.y + s}}, true, false};
}

bool IsEndOn(const Handles& handles, const ViewCamera& camera, int axis) {
    const Pixel a = At(camera, handles.centre),
                b = At(camera, handles.centre + Axis(axis) * (kHandleArm * UnitAt(handles, camera)));
    return std::hypot(b.x - a.x, b.y - a.y) < kEndOn * kHandleArm;
}

/// A plane that is seen from the side can't be drawn in.
bool IsEdgeOn(const Handles& handles, const ViewCamera& camera, int axis) {
    return std::abs(DotProd(ToEye(camera, handles.centre), Axis(axis))) < 0.15f;
}

void AddRing(const Handles& handles, const ViewCamera& camera, HandlePart part, std::vector<HandleShape>& shapes) {
    const float radius = (part == HandlePart::Eye ? kHandleEyeRing : kHandleRing) * UnitAt(handles, camera);
    const std::array<Point3, 2> axes = RingAxes(part, camera);
    const Point3 toEye = ToEye(camera, handles.centre);
    HandleShape shape;
    for (int i = 0; i <= kRingSides; ++i) {
        const float angle = 2.0f * kPi * float(i) / float(kRingSides);
        const Point3 off = axes[0] * std::cos(angle) + axes[1] * std::sin(angle);
        const bool isBehind = part != HandlePart::Eye && DotProd(off, toEye) < -0.02f;
        const Pixel pixel = At(camera, handles.centre + off * radius);
        if (!shape.line.empty() && shape.isBehind != isBehind) {
            shape.line.push_back(pixel);
            shapes.push_back(shape);
            shape.line.clear();
        }
        shape.part = part;
        shape.isBehind = isBehind;
        shape.line.push_back(pixel);
    }
    shapes.push_back(shape);
}

}  // namespace

int AxisOf(HandlePart part) {
    for (int i = 0; i < 3; ++i) {
        if (part == kAxes[i] || part == kPlanes[i]) return i;
    }
    return -1;
}

std::vector<HandleShape> ShapesOf(const Handles& handles, const ViewCamera& camera) {
    std::vector<HandleShape> shapes;
    if (!IsSeen(handles, camera)) return shapes;
    if (handles.kind == HandleKind::Rotate) {
        AddRing(handles, camera, HandlePart::Eye, shapes);
        for (const HandlePart part : kAxes) AddRing(handles, camera, part, shapes);
        std::ranges::stable_sort(shapes, std::greater(), &HandleShape::isBehind);
        return shapes;
    }
    for (int i = 0; i < 3; ++i) {
        if (!IsEdgeOn(handles, camera, i)) shapes.push_back(Square(handles, camera, i));
    }
    std::array<int, 3> order = {0, 1, 2};
    std::ranges::sort(order, std::less(), [&](int i) { return DotProd(Axis(i), Back(camera)); });
    for (const int i : order) {
        if (IsEndOn(handles, camera, i)) continue;
        shapes.push_back(Arm(handles, camera, i));
        shapes.push_back(Head(handles, camera, i));
    }
    shapes.push_back(Middle(handles, camera));
    return shapes;
}

HandlePart HandleAt(const Handles& handles, const ViewCamera& camera, const Pixel& mouse) {
    const std::vector<HandleShape> shapes = ShapesOf(handles, camera);
    HandlePart part = HandlePart::None;
    float nearest = kHandleGrab;
    // What is painted last lies on top. The middle is small, so it comes before the arms that begin there.
    for (auto shape = shapes.rbegin(); shape != shapes.rend(); ++shape) {
        if (shape->isFilled && IsInside(mouse, shape->line)) return shape->part;
        if (shape->isFilled || shape->isBehind) continue;
        for (std::size_t i = 1; i < shape->line.size(); ++i) {
            const float distance = DistanceToLine(mouse, shape->line[i - 1], shape->line[i]);
            if (distance < nearest) {
                nearest = distance;
                part = shape->part;
            }
        }
    }
    return part;
}

Point3 DraggedBy(const Handles& handles, HandlePart part, const ViewCamera& camera, const Pixel& from, const Pixel& to,
                 float grid) {
    const Point3 c = handles.centre;
    const bool isAxis = part == HandlePart::X || part == HandlePart::Y || part == HandlePart::Z;
    Point3 normal = Back(camera);
    if (isAxis) {
        // In the plane that has the axis in it and else faces the eye as far as it can.
        const Point3 axis = Axis(AxisOf(part)), toEye = ToEye(camera, c);
        normal = Normalize(toEye - axis * DotProd(toEye, axis));
    } else if (part != HandlePart::Eye) {
        normal = Axis(AxisOf(part));
    }
    const std::optional<Point3> a = MeetPlane(RayThrough(camera, from), c, normal),
                                b = MeetPlane(RayThrough(camera, to), c, normal);
    if (!a || !b) return {0, 0, 0};
    // Beyond the horizon the plane lies behind the eye: there the mouse means nothing.
    if (camera.perspective && DepthOf(camera, *b) < tavrik_host::kNearest) return {0, 0, 0};
    Point3 moved = *b - *a;
    if (isAxis) moved = Axis(AxisOf(part)) * DotProd(moved, Axis(AxisOf(part)));
    if (grid > 0.0f) {
        for (int i = 0; i < 3; ++i) moved[i] = std::round(moved[i] / grid) * grid;
    }
    return moved;
}

HandleTurn TurnedBy(const Handles& handles, HandlePart part, const ViewCamera& camera, const Pixel& from, const Pixel& to,
                    float step) {
    HandleTurn turn;
    turn.axis = part == HandlePart::Eye ? ToEye(camera, handles.centre) : Axis(std::max(0, AxisOf(part)));
    const Point3 toEye = ToEye(camera, handles.centre);
    const float facing = DotProd(turn.axis, toEye);
    const Pixel middle = At(camera, handles.centre);
    if (std::abs(facing) > 0.2f) {
        // By the angle at the ring's middle, in its own plane.
        const std::optional<Point3> a = MeetPlane(RayThrough(camera, from), handles.centre, turn.axis),
                                    b = MeetPlane(RayThrough(camera, to), handles.centre, turn.axis);
        if (!a || !b) return turn;
        const Point3 u = *a - handles.centre, v = *b - handles.centre;
        turn.angle = std::atan2(DotProd(CrossProd(u, v), turn.axis), DotProd(u, v));
    } else {
        // Seen from the side a ring is a line, along which the mouse rolls it.
        const Point3 along = CrossProd(turn.axis, toEye);
        const Pixel end = At(camera, handles.centre + along * (kHandleRing * UnitAt(handles, camera)));
        const float dx = end.x - middle.x, dy = end.y - middle.y, length = std::max(1.0f, std::hypot(dx, dy));
        turn.angle = ((to.x - from.x) * dx + (to.y - from.y) * dy) / length / kHandleRing;
    }
    if (step > 0.0f) turn.angle = std::round(turn.angle / step) * step;
    return turn;
}

Matrix3 Turned(const Matrix3& frame, const HandleTurn& turn, const Point3& centre) {
    const float sine = std::sin(turn.angle), cosine = std::cos(turn.angle);
    const Point3 k = turn.axis;
    // Rodrigues: v cos + (k x v) sin + k (k . v) (1 - cos)
    const auto turned = [&](const Point3& v) {
        return v * cosine + CrossProd(k, v) * sine + k * (DotProd(k, v) * (1.0f - cosine));
    };
    Matrix3 result(TRUE);
    for (int i = 0; i < 3; ++i) result.SetRow(i, turned(frame.GetRow(i)));
    result.SetTrans(centre + turned(frame.GetTrans() - centre));
    return result;
}

}  // namespace tavrik_studio
