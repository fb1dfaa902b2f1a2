#include "host/scene_axes.h"

#include <cmath>

namespace tavrik_host {
namespace {

using tavrik::DMatrix3;
using tavrik::DPoint3;

/// Any direction across `a`, which is of length 1.
DPoint3 Across(const DPoint3& a) {
    const DPoint3 axis = std::abs(a.x) < 0.6 ? DPoint3{1, 0, 0} : DPoint3{0, 1, 0};
    return Normalize(Cross(a, axis));
}

/// Three axes out of what there is of them.
void FillAxes(DMatrix3& m) {
    constexpr double kNone = 1e-6;  // of axes of length 1: they lie in a plane
    if (std::abs(Dot(Cross(m.row[0], m.row[1]), m.row[2])) > 2 * kNone) return;
    if (!(Length(m.row[0]) > 0.5)) {
        const bool spans = Length(Cross(m.row[1], m.row[2])) > kNone;
        m.row[0] = spans ? Normalize(Cross(m.row[1], m.row[2])) : Length(m.row[1]) > 0.5 ? Across(m.row[1]) : DPoint3{1, 0, 0};
    }
    DPoint3 second = m.row[1] - m.row[0] * Dot(m.row[1], m.row[0]);
    if (!(Length(second) > kNone)) second = Cross(m.row[2], m.row[0]);
    if (!(Length(second) > kNone)) second = Across(m.row[0]);
    m.row[1] = Normalize(second);
    m.row[2] = Cross(m.row[0], m.row[1]);
}

}  // namespace

DPoint3 ToFileAxes(const DPoint3& p) { return {p.x, p.z, -p.y}; }
DPoint3 FromFileAxes(const DPoint3& p) { return {p.x, -p.z, p.y}; }
DPoint3 SwapYAndZ(const DPoint3& p) { return {p.x, p.z, p.y}; }

DMatrix3 ToDouble(const Matrix3& m) {
    DMatrix3 result{};
    for (int r = 0; r < 4; ++r) {
        const Point3 row = m.GetRow(r);
        result.row[r] = {double(row.x), double(row.y), double(row.z)};
    }
    return result;
}

Matrix3 ToSingle(const DMatrix3& m) {
    Matrix3 result(FALSE);
    for (int r = 0; r < 4; ++r) result.SetRow(r, Point3(float(m.row[r].x), float(m.row[r].y), float(m.row[r].z)));
    return result;
}

bool IsFinite(const Matrix3& m) {
    for (int r = 0; r < 4; ++r) {
        const Point3 row = m.GetRow(r);
        if (!std::isfinite(row.x) || !std::isfinite(row.y) || !std::isfinite(row.z)) return false;
    }
    return true;
}

Placement PlacementOf(const DMatrix3& frame) {
    Placement placement;
    placement.position = frame.row[3];
    DMatrix3 axes = frame;
    for (int r = 0; r < 3; ++r) {
        const double length = Length(frame.row[r]);
        axes.row[r] = length > 0.0 ? frame.row[r] * (1.0 / length) : DPoint3{0, 0, 0};
        if (!std::isfinite(axes.row[r].x + axes.row[r].y + axes.row[r].z)) axes.row[r] = {0, 0, 0};
    }
    FillAxes(axes);
    if (!NearestTurn(axes, placement.rotation)) placement.rotation = {0, 0, 0, 1};
    const DMatrix3 turn = FrameOf({{0, 0, 0}, placement.rotation, {1, 1, 1}});
    double* const scale[3] = {&placement.scale.x, &placement.scale.y, &placement.scale.z};
    for (int r = 0; r < 3; ++r) {
        *scale[r] = Dot(frame.row[r], turn.row[r]);
        // Single-precision axes are a little off square. Nobody sees that, but everybody sees a scale in the list of a node.
        for (const double whole : {1.0, -1.0}) {
            if (std::abs(*scale[r] - whole) < 1e-5) *scale[r] = whole;
        }
    }
    return placement;
}

DMatrix3 FrameOf(const Placement& placement) {
    const double x = placement.rotation.x, y = placement.rotation.y, z = placement.rotation.z, w = placement.rotation.w;
    DMatrix3 frame{};
    frame.row[0] = DPoint3{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)} * placement.scale.x;
    frame.row[1] = DPoint3{2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)} * placement.scale.y;
    frame.row[2] = DPoint3{2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)} * placement.scale.z;
    frame.row[3] = placement.position;
    return frame;
}

}  // namespace tavrik_host
