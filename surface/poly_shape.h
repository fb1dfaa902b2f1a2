#pragma once
/// A spline that was flattened into straight pieces.

#include <vector>

#include "solver/single_maths.h"

namespace tavrik {

struct PolyLine {
    std::vector<Point3> points;
    bool closed = false;  // a further piece leads from the last point back to the first
};

struct PolyShape {
    std::vector<PolyLine> lines;
};

}  // namespace tavrik
