#pragma once
/// One straight piece of a path: how it is cut at a cell's walls, and how strongly it is felt at a point.

#include <cstddef>

#include "solver/single_maths.h"

namespace tavrik {

struct PathSegment {
    Point3 a;      // start
    Point3 b;      // end
    Point3 dir;    // (b - a) / length; not a number where the length is zero
    float length;  // |b - a|
};

PathSegment MakePathSegment(const Point3& a, const Point3& b);

/// Cuts a piece to a box. The piece's endless line has to pass through two of the box's faces, strictly inside of each: a line
/// along a wall, or through an edge or a corner, is in none of the boxes that meet there, and the piece is lost from them.
///
/// @param result  on true: the part within the box, as a piece of its own. May have no length
/// @return false when nothing of the piece is in the box
bool ClipSegment(const PathSegment& piece, const Box3& box, PathSegment& result);

/// What one piece adds to the field at `point`: the integral of dl / r^3 along it. Not finite on the piece's line.
///
/// The offset, its foot and the perpendicular are single precision, as the path is; what is made of their products is double,
/// because near the line the two quotients all but cancel.
double FieldOfSegment(const PathSegment& piece, const Point3& point);

/// The same over `count` pieces, added in their order: the bits are those of a plain sum.
double FieldOfSegments(const PathSegment* pieces, std::size_t count, const Point3& point);

}  // namespace tavrik
