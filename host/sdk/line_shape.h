#pragma once
/// This host's one spline: straight lines from point to point.

#include <vector>

#include "host/sdk/max.h"
#include "host/sdk/splshape.h"

namespace tavrik_host {

/// Points in the object's own space.
struct ShapeLine {
    std::vector<Point3> points;
    bool closed = false;
};

class LineShape final : public ShapeObject {
 public:
    std::vector<ShapeLine> lines;

    Class_ID ClassID() override { return splineShapeClassID; }
    void GetClassName(MSTR& s) override { s = L"Line"; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    void InitNodeName(MSTR& s) override { s = L"Line_"; }
    int CanConvertToType(Class_ID id) override { return id == splineShapeClassID || id == genericShapeClassID ? 1 : 0; }
    Object* ConvertToType(TimeValue, Class_ID id) override { return CanConvertToType(id) != 0 ? this : nullptr; }
    void MakePolyShape(TimeValue t, PolyShape& shape, int steps = PSHAPE_BUILTIN_STEPS, BOOL optimize = FALSE) override;
    /// White while the node is selected, else in its colour.
    int Display(TimeValue t, INode* inode, ViewExp* vpt, int flags) override;
    using ShapeObject::HitTest;
    int HitTest(TimeValue t, INode* inode, int type, int crossing, int flags, IPoint2* p, ViewExp* vpt) override;
    void GetWorldBoundBox(TimeValue t, INode* inode, ViewExp* vpt, Box3& box) override;
    void GetDeformBBox(TimeValue t, Box3& box, Matrix3* tm = nullptr, BOOL useSel = FALSE) override;
    RefTargetHandle Clone(RemapDir& remap) override;

 private:
    void Draw(GraphicsWindow& gw);
};

}  // namespace tavrik_host
