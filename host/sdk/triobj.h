#pragma once

#include "mesh.h"
#include "object.h"

extern const Class_ID triObjectClassID;

/// An object that is a mesh.
class TriObject final : public GeomObject {
 public:
    Mesh mesh;
    Mesh& GetMesh() { return mesh; }

    Class_ID ClassID() override { return triObjectClassID; }
    void GetClassName(MSTR& s) override { s = L"Editable Mesh"; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    void InitNodeName(MSTR& s) override { s = L"Mesh_"; }
    int CanConvertToType(Class_ID id) override { return id == triObjectClassID ? 1 : 0; }
    Object* ConvertToType(TimeValue, Class_ID id) override { return id == triObjectClassID ? this : nullptr; }
    using GeomObject::HitTest;
    /// By its triangles, whichever side shows.
    int HitTest(TimeValue t, INode* inode, int type, int crossing, int flags, IPoint2* p, ViewExp* vpt) override;
    void GetWorldBoundBox(TimeValue t, INode* inode, ViewExp* vpt, Box3& box) override;
    void GetDeformBBox(TimeValue t, Box3& box, Matrix3* tm = nullptr, BOOL useSel = FALSE) override;
    RefTargetHandle Clone(RemapDir& remap) override;
};

TriObject* CreateNewTriObject();
