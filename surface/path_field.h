#pragma once
/// How near a point lies to a road: a potential over the straight pieces of a path. Each piece is a charged line, and the field
/// is the sum of the integrals of dl / r^3 over all of them: positive, without a direction, growing without bound towards the
/// line.

#include <cstdint>
#include <memory>
#include <vector>

#include "surface/path_piece.h"
#include "surface/poly_shape.h"

namespace tavrik {

/// A cube of the field's octree. Seen from afar it counts as one lump at its centre.
struct PathFieldNode {
    float totalLength = 0.0f;  // of the pieces within it
    Point3 centre{};
    float radiusSquared = 0.0f;  // of half its width
    Box3 box{};
    std::int32_t count = 0;                   // pieces in `segments`; of a leaf only
    std::unique_ptr<PathSegment[]> segments;  // of a leaf only
    std::unique_ptr<PathFieldNode[]> child;   // eight, or null for a leaf. Bit 0 of the number: upper half in X, 1: Y, 2: Z

    bool isLeaf() const { return child == nullptr; }
};

/// Where a path comes from.
class PathSource {
 public:
    virtual ~PathSource() = default;
    /// Flattens the spline, with the steps of its own, into world space as it is at time 0.
    /// @return false where there is no spline
    virtual bool MakePolyShape(PolyShape& shape) = 0;
};

class PathField {
 public:
    /// Builds the field over a spline in place of the one before, which goes in any case.
    /// @return false, with no field, if there is no spline
    bool Build(PathSource* source);
    /// Builds the field over flattened lines, in world space. Lines of no or one point, pieces of no length and points that
    /// aren't numbers are taken as they are: at worst the field near them isn't a number.
    void BuildFromPolyShape(const PolyShape& shape);
    void Release();

    /// The field at a point in world space; 0 where there is no field. Not finite on the line of a piece.
    ///
    /// Changes nothing and allocates nothing; any number of threads may ask at once.
    double FieldAt(const Point3& point) const;

    bool built() const { return root_ != nullptr; }
    /// Null where there is no field.
    const PathFieldNode* root() const { return root_.get(); }

 private:
    std::unique_ptr<PathFieldNode> root_;
};

}  // namespace tavrik
