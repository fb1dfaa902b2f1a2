#include "host/sdk/triobj.h"

#include "host/sdk/hit_drawing.h"

const Class_ID triObjectClassID(9, 0);

int TriObject::HitTest(TimeValue t, INode* inode, int type, int crossing, int, IPoint2* p, ViewExp* vpt) {
    return tavrik_host::HitDrawing(t, *inode, type, crossing, p, vpt, [this](GraphicsWindow& gw) {
        gw.startTriangles();
        for (int i = 0; i < mesh.numFaces; ++i) {
            const Face& face = mesh.faces[i];
            Point3 corners[] = {mesh.verts[face.v[0]], mesh.verts[face.v[1]], mesh.verts[face.v[2]]};
            gw.triangle(corners, nullptr);
        }
        gw.endTriangles();
    });
}

void TriObject::GetWorldBoundBox(TimeValue t, INode* inode, ViewExp*, Box3& box) {
    Matrix3 place = inode->GetObjectTM(t);
    GetDeformBBox(t, box, &place, FALSE);
}

void TriObject::GetDeformBBox(TimeValue, Box3& box, Matrix3* tm, BOOL) {
    box.Init();
    for (int i = 0; i < mesh.numVerts; ++i) {
        const Point3& p = mesh.verts[i];
        box += tm == nullptr ? p : tm->PointTransform(p);
    }
}

RefTargetHandle TriObject::Clone(RemapDir& remap) {
    auto* const copy = new TriObject;
    copy->mesh.DeepCopy(&mesh, OBJ_CHANNELS);
    for (const int channel : {TOPO_CHAN_NUM, GEOM_CHAN_NUM}) copy->SetChannelValidity(channel, ChannelValidity(0, channel));
    BaseClone(this, copy, remap);
    return copy;
}

TriObject* CreateNewTriObject() { return new TriObject; }
