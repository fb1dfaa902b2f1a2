#pragma once
/// Splines that were flattened into straight pieces.

#include "matrix3.h"

class PolyPt {
 public:
    Point3 p;
    PolyPt() = default;  // uninitialised
    explicit PolyPt(const Point3& p_) : p(p_) {}
};

class PolyLine {
 public:
    int numPts = 0;
    PolyPt* pts = nullptr;

    PolyLine() = default;
    PolyLine(const PolyLine&) = delete;
    PolyLine& operator=(const PolyLine&) = delete;
    ~PolyLine();
    BOOL SetNumPts(int n);
    /// Pieces; a closed line has one more, from its last point back to its first.
    int Segments() const;
    int Verts() const { return numPts; }
    BOOL IsClosed() const { return closed_; }
    void Close() { closed_ = TRUE; }
    PolyPt& operator[](int i) { return pts[i]; }

 private:
    BOOL closed_ = FALSE;
};

class PolyShape {
 public:
    int numLines = 0;
    PolyLine* lines = nullptr;

    PolyShape() = default;
    PolyShape(const PolyShape&) = delete;
    PolyShape& operator=(const PolyShape&) = delete;
    ~PolyShape();
    BOOL SetNumLines(int n);
    void Transform(Matrix3& tm);
};
