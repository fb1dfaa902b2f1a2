#include "host/sdk/polyshp.h"

#include <algorithm>
#include <limits>

PolyLine::~PolyLine() { delete[] pts; }

BOOL PolyLine::SetNumPts(int n) {
    if (n < 0) return FALSE;
    constexpr float kUnset = std::numeric_limits<float>::quiet_NaN();  // so that a forgotten point is seen
    auto* const fresh = n > 0 ? new PolyPt[std::size_t(n)] : nullptr;
    std::fill_n(fresh, n, PolyPt(Point3(kUnset, kUnset, kUnset)));
    delete[] pts;
    pts = fresh;
    numPts = n;
    return TRUE;
}

int PolyLine::Segments() const { return numPts == 0 ? 0 : closed_ != FALSE ? numPts : numPts - 1; }

PolyShape::~PolyShape() { delete[] lines; }

BOOL PolyShape::SetNumLines(int n) {
    if (n < 0) return FALSE;
    auto* const fresh = n > 0 ? new PolyLine[std::size_t(n)] : nullptr;
    delete[] lines;
    lines = fresh;
    numLines = n;
    return TRUE;
}

void PolyShape::Transform(Matrix3& tm) {
    for (int line = 0; line < numLines; ++line) {
        for (int i = 0; i < lines[line].numPts; ++i) lines[line].pts[i].p = lines[line].pts[i].p * tm;
    }
}
