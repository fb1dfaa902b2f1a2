#include "host/sdk/line_shape.h"

#include "host/sdk/hit_drawing.h"

const Class_ID genericShapeClassID(0x7E40, 0x51E2);
const Class_ID splineShapeClassID(10, 0);

namespace tavrik_host {

void LineShape::MakePolyShape(TimeValue, PolyShape& shape, int, BOOL) {
    shape.SetNumLines(int(lines.size()));
    for (int line = 0; line < shape.numLines; ++line) {
        const ShapeLine& from = lines[std::size_t(line)];
        PolyLine& to = shape.lines[line];
        to.SetNumPts(int(from.points.size()));
        for (int i = 0; i < to.numPts; ++i) to.pts[i].p = from.points[std::size_t(i)];
        if (from.closed) to.Close();
    }
}

void LineShape::Draw(GraphicsWindow& gw) {
    gw.startSegments();
    for (ShapeLine& line : lines) {
        gw.polyline(int(line.points.size()), line.points.data(), nullptr, nullptr, line.closed ? TRUE : FALSE, nullptr);
    }
    gw.endSegments();
}

int LineShape::Display(TimeValue t, INode* inode, ViewExp* vpt, int) {
    GraphicsWindow* const gw = vpt != nullptr && vpt->IsAlive() ? vpt->getGW() : nullptr;
    if (gw == nullptr) return 0;
    gw->setTransform(inode->GetObjectTM(t));
    gw->setColor(LINE_COLOR, inode->Selected() != 0 ? Color(1.0f, 1.0f, 1.0f) : Color(inode->GetWireColor()));
    Draw(*gw);
    return 0;
}

int LineShape::HitTest(TimeValue t, INode* inode, int type, int crossing, int, IPoint2* p, ViewExp* vpt) {
    return HitDrawing(t, *inode, type, crossing, p, vpt, [this](GraphicsWindow& gw) { Draw(gw); });
}

void LineShape::GetWorldBoundBox(TimeValue t, INode* inode, ViewExp*, Box3& box) {
    Matrix3 place = inode->GetObjectTM(t);
    GetDeformBBox(t, box, &place, FALSE);
}

void LineShape::GetDeformBBox(TimeValue, Box3& box, Matrix3* tm, BOOL) {
    box.Init();
    for (const ShapeLine& line : lines) {
        for (const Point3& p : line.points) box += tm == nullptr ? p : tm->PointTransform(p);
    }
}

RefTargetHandle LineShape::Clone(RemapDir& remap) {
    auto* const copy = new LineShape;
    copy->lines = lines;
    BaseClone(this, copy, remap);
    return copy;
}

}  // namespace tavrik_host
