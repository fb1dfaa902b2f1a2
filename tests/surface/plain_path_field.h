#pragma once
/// The field over a path as one would first write it down: one piece after the other, one node at a time, no bound on memory.
/// The fast one has to answer the same, bit for bit.

#include <memory>
#include <vector>

#include "surface/poly_shape.h"

namespace tavrik::test {

struct PlainPiece {
    Point3 a, b, dir;
    float length;
};

struct PlainPathNode {
    float totalLength = 0;
    Point3 centre{};
    float radiusSquared = 0;
    Box3 box{};
    std::vector<PlainPiece> segments;
    std::unique_ptr<PlainPathNode> child[8];

    bool isLeaf() const { return child[0] == nullptr; }
};

struct PlainPathField {
    explicit PlainPathField(const PolyShape& shape);
    double FieldAt(const Point3& point) const;
    /// The exact sum over all pieces as they came in, without cells.
    double OpenedSum(const Point3& point) const;
    int Depth() const;

    std::vector<PlainPiece> pieces;
    PlainPathNode root;
};

/// The integral of dl / r^3 along a piece by Simpson's rule in double precision, in `steps` (even) steps.
double FieldByQuadrature(const Point3& a, const Point3& b, const Point3& point, int steps);

}  // namespace tavrik::test
