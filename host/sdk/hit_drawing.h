#pragma once
/// How the host's own objects find out whether a mouse is on them.

#include "host/sdk/max.h"

namespace tavrik_host {

constexpr int kLinePixels = 4;  // how far off a line a mouse may be

/// Draws into a view's window as a mouse sees it.
/// @param draw  draws in the node's space; called once
/// @return 1 if the mouse is on it, which the view is told; else 0
template <typename Draw>
int HitDrawing(TimeValue t, INode& node, int type, int crossing, IPoint2* p, ViewExp* view, const Draw& draw) {
    GraphicsWindow* const gw = view != nullptr && view->IsAlive() ? view->getGW() : nullptr;
    if (gw == nullptr) return 0;
    HitRegion region;
    MakeHitRegion(region, type, crossing, kLinePixels, p);
    gw->setHitRegion(&region);
    const DWORD limits = gw->getRndLimits();
    gw->setRndLimits((limits | GW_PICK) & ~GW_ILLUM);
    gw->clearHitCode();
    gw->setTransform(node.GetObjectTM(t));
    draw(*gw);
    const bool hit = gw->checkHitCode() != FALSE;
    if (hit) view->LogHit(&node, nullptr, gw->getHitDistance(), 0, nullptr);
    gw->clearHitCode();
    gw->setRndLimits(limits);
    return hit ? 1 : 0;
}

}  // namespace tavrik_host
