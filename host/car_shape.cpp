#include "host/car_shape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <utility>
#include <vector>

namespace tavrik {
namespace {

constexpr ShapeMaterial Paint() { return {"paint", 0.55f, 0.03f, 0.03f, 0.2f, 0.35f}; }

/// Where the parts of a body lie, all in chassis space and scene units.
struct BodyMeasures {
    float halfLength, halfWidth;
    float sill, belt, roof;  // heights
};

BodyMeasures Measure(const CarRig& rig) {
    const double halfLength = rig.chassisParams.Length;
    double ground = -rig.chassisParams.Height;
    double clearance = 0.0;
    double halfWidth = rig.chassisParams.Width;
    for (int i = 0; i < rig.unitCount; ++i) {
        const SuspensionUnit& unit = rig.units[i];
        const DPoint3 hub = unit.frame.row[3] + unit.frame.row[2] * RestReach(unit);
        ground = i == 0 ? hub.z - unit.Radius : std::min(ground, hub.z - unit.Radius);
        clearance = std::max(clearance, unit.Radius * 0.6);
        // The outer face of each tyre stands a little proud of the hull.
        const double face = std::abs(hub.x) + unit.Width * 0.9;
        if (std::abs(hub.x) > unit.Width) halfWidth = std::min(halfWidth, face);
    }
    return {float(halfLength), float(halfWidth), float(ground + clearance), float(ground + 0.40 * halfLength),
            float(ground + 0.63 * halfLength)};
}

/// One slice across a body: `along` and `width` are ratios of its half length and half width, heights are scene units.
struct Slice {
    float along, width, low, high;
};

constexpr int kSliceCorners = 32;

/// The outline of a slice: a rectangle with rounded corners.
std::vector<Point3> Outline(const Slice& slice, const BodyMeasures& m) {
    // A superellipse |x|^n + |z|^n = 1 with n = 5.
    constexpr float kRounding = 2.0f / 5.0f;
    std::vector<Point3> points;
    for (int i = 0; i < kSliceCorners; ++i) {
        const float angle = 2.0f * std::numbers::pi_v<float> * (float(i) + 0.5f) / float(kSliceCorners);
        const float c = std::cos(angle), s = std::sin(angle);
        const float x = std::copysign(std::pow(std::abs(c), kRounding), c);
        const float z = std::copysign(std::pow(std::abs(s), kRounding), s);
        points.push_back({x * slice.width * m.halfWidth, slice.along * m.halfLength,
                          (slice.low + slice.high) * 0.5f + z * (slice.high - slice.low) * 0.5f});
    }
    return points;
}

void AddHull(ShapePart& paint, const BodyMeasures& m) {
    const float height = m.belt - m.sill;
    const Slice slices[] = {
        {-1.00f, 0.80f, m.sill + 0.18f * height, m.belt - 0.22f * height},
        {-0.97f, 0.93f, m.sill + 0.06f * height, m.belt - 0.10f * height},
        {-0.85f, 1.00f, m.sill, m.belt - 0.03f * height},
        {-0.40f, 1.00f, m.sill, m.belt},
        {0.25f, 1.00f, m.sill, m.belt},
        {0.60f, 0.99f, m.sill, m.belt - 0.10f * height},
        {0.88f, 0.95f, m.sill, m.belt - 0.22f * height},
        {0.97f, 0.86f, m.sill + 0.06f * height, m.belt - 0.34f * height},
        {1.00f, 0.74f, m.sill + 0.18f * height, m.belt - 0.44f * height},
    };
    std::vector<Point3> grid;
    for (auto slice = std::rbegin(slices); slice != std::rend(slices); ++slice) {
        for (const Point3& p : Outline(*slice, m)) grid.push_back(p);
    }
    AddGrid(paint, grid, kSliceCorners, /*closed=*/true);
    const std::vector<Point3> rear = Outline(slices[0], m);
    AddPolygon(paint, rear);
    std::vector<Point3> front = Outline(slices[std::size(slices) - 1], m);
    std::reverse(front.begin(), front.end());
    AddPolygon(paint, front);
}

/// Sides that lean in towards the roof, with a painted top.
void AddCabin(ShapePart& paint, ShapePart& glass, const BodyMeasures& m) {
    const float base = m.belt - 0.10f * (m.belt - m.sill);
    const float w = 0.90f * m.halfWidth, top = 0.72f * m.halfWidth;
    // Corners seen from above, counter-clockwise from rear right; the roof is shorter than the base by the slant of the
    // screens.
    const float alongBase[2] = {-0.80f * m.halfLength, 0.44f * m.halfLength};
    const float alongRoof[2] = {-0.52f * m.halfLength, 0.10f * m.halfLength};
    const float edge = m.roof - 0.06f * (m.roof - m.belt);
    const auto ring = [](float halfWidth, const float* along, float z) {
        // Each corner twice, a little apart, which rounds the pillars.
        const float inX = halfWidth * 0.14f, inY = (along[1] - along[0]) * 0.05f;
        return std::vector<Point3>{{halfWidth - inX, along[0], z},  {halfWidth, along[0] + inY, z},
                                   {halfWidth, along[1] - inY, z},  {halfWidth - inX, along[1], z},
                                   {-halfWidth + inX, along[1], z}, {-halfWidth, along[1] - inY, z},
                                   {-halfWidth, along[0] + inY, z}, {-halfWidth + inX, along[0], z}};
    };
    const std::vector<Point3> low = ring(w, alongBase, base), high = ring(top, alongRoof, edge);
    std::vector<Point3> sides = low;
    sides.insert(sides.end(), high.begin(), high.end());
    AddGrid(glass, sides, int(low.size()), /*closed=*/true);
    const float alongTop[2] = {alongRoof[0] * 0.94f, alongRoof[1] * 0.7f};
    const std::vector<Point3> crown = ring(top * 0.9f, alongTop, m.roof);
    std::vector<Point3> roof = high;
    roof.insert(roof.end(), crown.begin(), crown.end());
    AddGrid(paint, roof, int(high.size()), /*closed=*/true);
    AddPolygon(paint, crown);
}

void AddPair(ShapePart& part, const BodyMeasures& m, float along, float across, float z) {
    const Point3 half = {0.13f * m.halfWidth, 0.02f * m.halfLength, 0.07f * (m.belt - m.sill)};
    for (const float side : {-1.0f, 1.0f}) {
        const Point3 centre = {side * across * m.halfWidth, along * m.halfLength, z};
        AddBlock(part, {centre - half, centre + half});
    }
}

/// Points of a circle about Z.
std::vector<Point3> Circle(float radius, float z, int corners) {
    std::vector<Point3> points;
    for (int i = 0; i < corners; ++i) {
        const float angle = 2.0f * std::numbers::pi_v<float> * float(i) / float(corners);
        points.push_back({radius * std::cos(angle), radius * std::sin(angle), z});
    }
    return points;
}

/// A flat spoke at `angle`, on the side of `z`'s sign.
void AddSpoke(ShapePart& part, float angle, float inner, float outer, float halfWidth, float z) {
    const float c = std::cos(angle), s = std::sin(angle);
    const auto at = [&](float along, float across) { return Point3{c * along - s * across, s * along + c * across, z}; };
    std::vector<Point3> corners = {at(inner, -halfWidth), at(outer, -halfWidth * 0.75f), at(outer, halfWidth * 0.75f),
                                   at(inner, halfWidth)};
    if (z < 0) std::reverse(corners.begin(), corners.end());
    AddPolygon(part, corners);
}

void AddDisc(ShapePart& part, float radius, float z, int corners) {
    std::vector<Point3> points = Circle(radius, z, corners);
    if (z < 0) std::reverse(points.begin(), points.end());
    AddPolygon(part, points);
}

/// Turns a profile of (radius, z) points about Z. Seen from outside, z rises along the profile.
void AddRing(ShapePart& part, std::span<const std::pair<float, float>> profile, int corners) {
    std::vector<Point3> grid;
    for (const auto& [radius, z] : profile) {
        for (const Point3& p : Circle(radius, z, corners)) grid.push_back(p);
    }
    AddGrid(part, grid, corners, /*closed=*/true);
}

}  // namespace

Shape BodyShape(const CarRig& rig) {
    const BodyMeasures m = Measure(rig);
    const float height = m.belt - m.sill;
    ShapePart paint{Paint(), {}, {}, {}};
    ShapePart glass{{"glass", 0.02f, 0.03f, 0.04f, 0.0f, 0.1f}, {}, {}, {}};
    ShapePart head{{"head_light", 0.95f, 0.93f, 0.80f, 0.0f, 0.3f}, {}, {}, {}};
    ShapePart tail{{"tail_light", 0.30f, 0.0f, 0.0f, 0.0f, 0.3f}, {}, {}, {}};
    AddHull(paint, m);
    AddCabin(paint, glass, m);
    AddPair(head, m, 0.97f, 0.60f, m.sill + 0.42f * height);
    AddPair(tail, m, -0.985f, 0.64f, m.sill + 0.58f * height);
    return {{std::move(paint), std::move(glass), std::move(head), std::move(tail)}};
}

Shape WheelShape(const SuspensionUnit& unit) {
    constexpr int kCorners = 48, kSpokes = 5;
    const float r = float(unit.Radius), t = float(unit.Width);
    ShapePart tyre{{"tyre", 0.02f, 0.02f, 0.02f, 0.0f, 0.9f}, {}, {}, {}};
    ShapePart rim{{"rim", 0.62f, 0.63f, 0.65f, 0.8f, 0.35f}, {}, {}, {}};
    ShapePart mark{{"rim_mark", 0.90f, 0.45f, 0.02f, 0.0f, 0.5f}, {}, {}, {}};
    const std::pair<float, float> profile[] = {{0.64f * r, -0.55f * t}, {0.66f * r, -0.92f * t}, {0.82f * r, -1.00f * t},
                                               {0.95f * r, -0.86f * t}, {r, -0.55f * t},         {r, 0.55f * t},
                                               {0.95f * r, 0.86f * t},  {0.82f * r, 1.00f * t},  {0.66f * r, 0.92f * t},
                                               {0.64f * r, 0.55f * t}};
    AddRing(tyre, profile, kCorners);
    for (const float side : {-1.0f, 1.0f}) {
        AddDisc(tyre, 0.66f * r, side * 0.55f * t, kCorners);
        AddDisc(rim, 0.17f * r, side * 0.82f * t, kCorners / 2);
        for (int i = 0; i < kSpokes; ++i) {
            const float angle = 2.0f * std::numbers::pi_v<float> * float(i) / float(kSpokes);
            AddSpoke(i == 0 ? mark : rim, angle, 0.10f * r, 0.65f * r, 0.11f * r, side * 0.75f * t);
        }
    }
    return {{std::move(tyre), std::move(rim), std::move(mark)}};
}

}  // namespace tavrik
