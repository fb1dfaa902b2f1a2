#pragma once
/// The middle line of a road as seen from above.

#include <cstddef>
#include <vector>

namespace tavrik {

struct RoadPoint {
    double x, y;  // metres
};

struct RoadLine {
    std::vector<RoadPoint> points;  // no two neighbours on one spot
    bool closed = false;            // the last one leads back to the first

    /// Straight pieces; at least two points are needed for one.
    std::size_t Pieces() const { return points.size() < 2 ? 0 : points.size() - (closed ? 0 : 1); }
    /// Where the piece that begins at `points[piece]` ends.
    const RoadPoint& EndOf(std::size_t piece) const { return points[(piece + 1) % points.size()]; }
};

double Distance(const RoadPoint& a, const RoadPoint& b);

/// Metres along the whole line.
double LengthOf(const RoadLine& line);

/// The way it sets off, degrees clockwise from +Y. The line must have a piece.
double HeadingAtStart(const RoadLine& line);

/// The same way with points about `step` metres apart on each piece, corners kept.
RoadLine Divided(const RoadLine& line, double step);

/// A lap of our own, 985 m clockwise: straights up to 175 m long, and eight curves to both sides of 25 to 50 m in radius. It
/// begins at the origin, towards +Y.
RoadLine SampleCircuit();

}  // namespace tavrik
