#pragma once
/// The handles by which a mouse moves and turns nodes: where they are in a picture, and what a drag of one means. Plain values.

#include <optional>
#include <vector>

#include "host/sdk/max.h"
#include "host/sdk/view_state.h"

namespace tavrik_studio {

enum class HandlePart {
    None,
    X,
    Y,
    Z,  // along an axis, or about it
    XY,
    YZ,
    ZX,   // in a plane
    Eye,  // in the plane that faces the eye, or about the way it looks
};
enum class HandleKind { Move, Rotate };

/// At a place of the world, along its axes, and of the same size in every picture.
struct Handles {
    HandleKind kind = HandleKind::Move;
    Point3 centre{0, 0, 0};
};

// In pixels.
constexpr float kHandleArm = 84.0f, kHandleHead = 16.0f, kHandleSquareLow = 20.0f, kHandleSquareHigh = 38.0f,
                kHandleRing = 76.0f, kHandleEyeRing = 92.0f, kHandleGrab = 7.0f, kHandleMiddle = 8.0f;

/// One piece to be painted, the farthest first.
struct HandleShape {
    HandlePart part = HandlePart::None;
    std::vector<tavrik_host::Pixel> line;  // an outline if it is filled
    bool isFilled = false;
    bool isBehind = false;  // the far half of a ring
};
std::vector<HandleShape> ShapesOf(const Handles& handles, const tavrik_host::ViewCamera& camera);

/// What a mouse is on. Handles that point at the eye can't be told apart and aren't there.
HandlePart HandleAt(const Handles& handles, const tavrik_host::ViewCamera& camera, const tavrik_host::Pixel& mouse);

/// 0 for X, 1 for Y, 2 for Z; of a plane the axis across it. -1: none.
int AxisOf(HandlePart part);

/// How far a drag has moved things.
/// @param grid  units; each step along an axis is a multiple of it; 0: anywhere
Point3 DraggedBy(const Handles& handles, HandlePart part, const tavrik_host::ViewCamera& camera, const tavrik_host::Pixel& from,
                 const tavrik_host::Pixel& to, float grid = 0.0f);

/// A turn about an axis of length 1, counter-clockwise for whoever it points at.
struct HandleTurn {
    Point3 axis{0, 0, 1};
    float angle = 0.0f;  // radians
};
/// @param step  radians; the angle is a multiple of it; 0: any
HandleTurn TurnedBy(const Handles& handles, HandlePart part, const tavrik_host::ViewCamera& camera,
                    const tavrik_host::Pixel& from, const tavrik_host::Pixel& to, float step = 0.0f);
/// Turns a frame about a place of the world.
Matrix3 Turned(const Matrix3& frame, const HandleTurn& turn, const Point3& centre);

}  // namespace tavrik_studio
