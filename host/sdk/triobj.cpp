#include "host/sdk/triobj.h"

const Class_ID triObjectClassID(9, 0);

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
