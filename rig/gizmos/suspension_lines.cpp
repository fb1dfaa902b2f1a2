#include "rig/gizmos/suspension_lines.h"

#include <cmath>

#include "rig/gizmos/wishbone_lines.h"
#include "rig/suspension_unit.h"

namespace tavrik {
namespace {

// ---------------------------------------------------------------------------------------------------------------- hub carrier

/// A lug on the carrier's ring. @param out  from the axle to the lug, at length 1
void DrawMount(GizmoLines& lines, const Point3& out, float unit) {
    constexpr int kSegments = 20;
    const Point3 side{-out.y, out.x, 0};
    const auto at = [&](float along, float across) { return (out * along + side * across) * unit; };
    DrawBezier(lines, at(1.4f, -0.55f), at(1.6f, -0.3f), at(2.5f, -0.3f), kSegments);
    DrawBezier(lines, at(1.4f, 0.55f), at(1.6f, 0.3f), at(2.5f, 0.3f), kSegments);
    DrawArc(lines, at(2.5f, -0.3f), at(3.0f, 0.0f), at(2.5f, 0.3f), kSegments);
}

/// A shaft of `strips` lines along Z.
void DrawShaft(GizmoLines& lines, float radius, float z0, float z1, int strips) {
    for (int i = 0; i < strips; ++i) {
        const float a = 2.0f * kGizmoPi * float(i) / float(strips);
        const float x = radius * std::sin(a), y = radius * std::cos(a);
        DrawLine(lines, x, y, z0, x, y, z1);
    }
}

/// The shaft from the joint at the gearbox through the carrier to the joint at the wheel.
void DrawHalfShaft(GizmoLines& lines, float unit) {
    const float ball = 0.6f * unit, outer = 2.0f * unit, inner = -4.0f * unit, radius = 0.45f * unit;
    DrawBall(lines, {0, 0, outer}, ball, 40);
    DrawBall(lines, {0, 0, inner}, ball, 40);
    DrawShaft(lines, radius, inner + ball, 0.0f, 5);
    DrawShaft(lines, radius, 0.0f, outer - ball, 3);
    DrawCircleXY(lines, 0.0f, 0.0f, inner + ball, radius, 20);
    DrawCircleXY(lines, 0.0f, 0.0f, outer - ball, radius, 20);
    const float rim = 1.5f * unit;
    for (const float s : {-1.0f, 1.0f}) {
        DrawLine(lines, s * rim, 0.0f, 0.0f, s * radius, 0.0f, outer - ball);
        DrawLine(lines, 0.0f, s * rim, 0.0f, 0.0f, s * radius, outer - ball);
    }
}

// ---------------------------------------------------------------------------------------------------------------- moving part

/// An open tube along X: its mouth at `mouth`, four lines to `end`.
void DrawDrum(GizmoLines& lines, float mouth, float end, float radius, int segments) {
    DrawCircleYZ(lines, mouth, 0.0f, 0.0f, radius, segments);
    for (const float s : {-radius, radius}) {
        DrawLine(lines, mouth, s, 0.0f, end, s, 0.0f);
        DrawLine(lines, mouth, 0.0f, s, end, 0.0f, s);
    }
}

/// The post that everything at the wheel's end hangs on: along X, square with chamfered edges.
void DrawHub(GizmoLines& lines, const Point3& centre, float halfY, float halfZ, float chamfer, float halfX) {
    const float y = halfY - chamfer, z = halfZ - chamfer;
    const Point3 ring[] = {{0, -y, -halfZ}, {0, y, -halfZ}, {0, halfY, -z}, {0, halfY, z},
                           {0, y, halfZ},   {0, -y, halfZ}, {0, -halfY, z}, {0, -halfY, -z}};
    constexpr int kCorners = 8;
    const Point3 top = centre - Point3{halfX, 0, 0}, bottom = centre + Point3{halfX, 0, 0};
    for (int i = 0; i < kCorners; ++i) {
        const Point3 &here = ring[i], &next = ring[(i + 1) % kCorners];
        DrawLine(lines, top + here, top + next);
        DrawLine(lines, bottom + here, bottom + next);
        DrawLine(lines, top + here, bottom + here);
    }
}

constexpr int kEndSegments = 5;

/// A link with round ends along X: what holds a wishbone's pivots to the body on one side.
void DrawLink(GizmoLines& lines, const Point3& centre, float radius, float halfX) {
    const Point3 y{0, radius, 0};
    for (const float s : {-1.0f, 1.0f}) {
        const Point3 end = centre + Point3{s * halfX, 0, 0}, cap{s * radius, 0, 0};
        DrawArc(lines, end - y, end - y + cap, end + cap, kEndSegments);
        DrawArc(lines, end + cap, end + cap + y, end + y, kEndSegments);
    }
    const Point3 half{halfX, 0, 0};
    DrawLine(lines, centre - half - y, centre + half - y);
    DrawLine(lines, centre - half + y, centre + half + y);
}

/// A strut's spring on one side of the hub.
/// @param rise  along X with each quarter of a turn
void DrawCoil(GizmoLines& lines, float start, float rise, float radius) {
    constexpr int kQuarters = 12;
    Point3 last{start, 0, radius};
    for (int i = 1; i <= kQuarters * kEndSegments; ++i) {
        const float quarters = float(i) / float(kEndSegments), a = kGizmoPi / 2.0f * quarters;
        const Point3 next{start + rise * quarters, radius * std::sin(a), radius * std::cos(a)};
        DrawLine(lines, last, next);
        last = next;
    }
}

void DrawStrut(GizmoLines& lines, float length, const SuspensionReach& reach) {
    const float bottom = reach.from.x + (reach.to - reach.from).x + length, top = reach.from.x - length;
    DrawDrum(lines, bottom, top, 0.08f * length, 40);                // the rod, which shows how far it is pulled out
    DrawDrum(lines, top, top + 0.12f * length, 0.24f * length, 60);  // the cup over the spring
    for (const float side : {-1.0f, 1.0f}) DrawCoil(lines, side * 0.25f * length, side * 0.05f * length, 0.2f * length);
}

void DrawWishbones(GizmoLines& lines, float length, const Point3& body, const Point3& wheel) {
    constexpr int kSegments = 10;
    const Point3 apart{0.2f * length, 0, 0};
    DrawWishbone(lines, body + apart, wheel + apart, length, kSegments);
    DrawWishbone(lines, body - apart, wheel - apart, length, kSegments);
    for (const float side : {-1.0f, 1.0f}) {
        DrawLink(lines, body + Point3{0, side * kWishboneHalfPivot * length, 0}, 0.05f * length, 0.2f * length);
    }
}

}  // namespace

GizmoLines HubCarrierLines(float length) {
    GizmoLines lines;
    const float unit = 0.1f * length;
    for (const Point3& out : {Point3{1, 0, 0}, Point3{0, 1, 0}, Point3{-1, 0, 0}, Point3{0, -1, 0}})
        DrawMount(lines, out, unit);
    DrawCircleXY(lines, 0.0f, 0.0f, 0.0f, 1.5f * unit, 80);
    DrawHalfShaft(lines, unit);
    DrawLine(lines, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 2.0f * unit);
    DrawHeadAlongZ(lines, 0.5f * unit, 1.5f * unit, 2.0f * unit);
    return lines;
}

SuspensionReach IdleReach(std::int32_t type, float length) {
    SuspensionReach reach;
    if (type == kWishbone) reach.from = {0, 0, -length};
    return reach;
}

SuspensionReach LiveReach(const Point3& attachment) { return {{0, 0, 0}, attachment}; }

GizmoLines MovingPartLines(std::int32_t type, float length, const SuspensionReach& reach) {
    GizmoLines lines;
    // Z leads to the wheel, whichever way round the two points come.
    const bool outward = reach.to.z >= reach.from.z;
    const Point3 &body = outward ? reach.from : reach.to, &wheel = outward ? reach.to : reach.from;
    if (type == kTelescopic) {
        DrawStrut(lines, length, reach);
    } else {
        DrawWishbones(lines, length, body, wheel);
    }
    DrawHub(lines, wheel, 0.07f * length, 0.07f * length, 0.01f * length, 0.2f * length);
    return lines;
}

}  // namespace tavrik
