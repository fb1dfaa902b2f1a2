#pragma once
/// How a user has turned, moved and zoomed a view: plain values, which a program keeps for each of its views and changes by
/// these operations.

#include <span>

#include "view_camera.h"

namespace tavrik_host {

struct ViewState {
    int width = 640, height = 480;  // pixels
    Point3 target{0, 0, 0};         // what the eye turns about
    float heading = 0.0f;           // degrees: which way the eye looks, from above clockwise from +Y
    float pitch = 0.0f;             // degrees above the horizon, -90..90; -90 looks straight down with `heading` up
    float distance = 1000.0f;       // from the target to the eye, units
    float lens = 40.0f;             // degrees from top to bottom
    bool perspective = true;        // a flat view shows as much as the other does at its target
};

/// Views with names. A flat one looks along an axis of the world: Front along +Y, Left along +X, Top along -Z.
enum class ViewSide { Perspective, Top, Bottom, Front, Back, Left, Right };
/// Looks from a side, at the same target from as far away.
ViewState Seen(ViewState view, ViewSide side);

ViewCamera CameraOf(const ViewState& view);
/// The plane on which a mouse makes things: the one that a flat view along an axis faces, else the ground plane. Its frame
/// stands at the world's origin.
Matrix3 GridPlaneOf(const ViewState& view);

// What a mouse does that goes from one pixel to another, in pixels to the right and down.
/// Turns the eye about its target. A flat view gets askew.
ViewState Orbited(ViewState view, float right, float down);
/// Moves the eye so that what is at the target's depth goes along with the mouse.
ViewState Panned(ViewState view, float right, float down);
/// Goes nearer so that things at the target look `factor` times as large; what is under the mouse stays there.
ViewState Zoomed(ViewState view, float factor, const Pixel& mouse);

/// Moves the eye so that all points are seen, with a margin around them that is a ratio of the picture. Directions stay as they
/// are. Without a point nothing happens.
ViewState Framed(ViewState view, std::span<const Point3> points, float margin = 0.08f);

}  // namespace tavrik_host
