#pragma once
/// Objects that are splines.

#include "object.h"
#include "polyshp.h"

constexpr int PSHAPE_BUILTIN_STEPS = -2;  // as many as the shape itself says

/// What every spline object can become, and the kind of spline that keeps its knots.
extern const Class_ID genericShapeClassID, splineShapeClassID;

class ShapeObject : public GeomObject {
 public:
    SClass_ID SuperClassID() override { return SHAPE_CLASS_ID; }
    int IsRenderable() override { return 0; }
    /// Flattens the spline, in the object's own space.
    virtual void MakePolyShape(TimeValue t, PolyShape& shape, int steps = PSHAPE_BUILTIN_STEPS, BOOL optimize = FALSE) = 0;
};
