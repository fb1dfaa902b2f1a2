#pragma once
/// How the objects' drawings get into the host's views.

#include <max.h>

#include <optional>
#include <span>

#include "rig/gizmos/gizmo_lines.h"

namespace tavrik_plugin {

/// Draws in the window's colour, each line by itself: hosts join the points of longer ones as they like.
void DrawLines(GraphicsWindow& gw, std::span<const tavrik::GizmoLine> lines);

/// Whether a recording moves the node, so that it can't be moved by hand.
bool IsLocked(INode& node);

/// Where the body holds a suspension at a tick, world space; nothing unless the node is locked.
std::optional<Point3> LiveAttachment(INode& node, TimeValue t);

/// How far off a line a mouse may be and still be on it.
constexpr int kPickPixels = 4;

/// Draws into a window as a mouse sees it, and tells whether it was on any line.
/// @param type,crossing,p  as the host hands them to `HitTest`
/// @param draw             called once
/// @param report           called with how far off the nearest line is, if there is one
template <typename Draw, typename Report>
bool HitsDrawing(GraphicsWindow& gw, int type, int crossing, IPoint2* p, const Draw& draw, const Report& report) {
    HitRegion region;
    MakeHitRegion(region, type, crossing, kPickPixels, p);
    gw.setHitRegion(&region);
    const DWORD limits = gw.getRndLimits();
    gw.setRndLimits((limits | GW_PICK) & ~GW_ILLUM);
    gw.clearHitCode();
    draw();
    const bool hit = gw.checkHitCode() != FALSE;
    if (hit) report(gw.getHitDistance());
    gw.clearHitCode();
    gw.setRndLimits(limits);
    return hit;
}

}  // namespace tavrik_plugin
