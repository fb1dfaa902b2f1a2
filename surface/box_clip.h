#pragma once
/// Which of a cube's eight children a triangle touches, decided exactly, by clipping.

#include "solver/single_maths.h"

namespace tavrik {

/// The walls between a cube's eight children: on each axis the lower child reaches from `low` to `middle`, the upper one from
/// `middle` to `high`. Child i is the upper one in X when bit 0 of i is set, in Y with bit 1, in Z with bit 2.
struct ChildWalls {
    Point3 low, middle, high;
};

/// The walls of the children of `parent`. `high` may part from parent.pmax by a rounding: a child's upper wall is its own lower
/// wall plus half the parent's side. Any other arithmetic would move the walls, and with them the hits that are lost there.
inline ChildWalls WallsOfChildren(const Box3& parent) {
    const Point3 half = (parent.pmax - parent.pmin) * 0.5f;
    const Point3 middle = parent.pmin + half;
    return {parent.pmin, middle, middle + half};
}

/// The box of child `i`.
inline Box3 ChildBox(const ChildWalls& walls, unsigned i) {
    const Box3 lower{walls.low, walls.middle}, upper{walls.middle, walls.high};
    return {{(i & 1) != 0 ? upper.pmin.x : lower.pmin.x, (i & 2) != 0 ? upper.pmin.y : lower.pmin.y,
             (i & 4) != 0 ? upper.pmin.z : lower.pmin.z},
            {(i & 1) != 0 ? upper.pmax.x : lower.pmax.x, (i & 2) != 0 ? upper.pmax.y : lower.pmax.y,
             (i & 4) != 0 ? upper.pmax.z : lower.pmax.z}};
}

/// The children that the triangle with these corners touches, as eight bits. A triangle that only touches a child's wall
/// belongs to that child too.
unsigned ChildrenTouched(const Point3 (&corner)[3], const ChildWalls& walls);

}  // namespace tavrik
