#include "host/sdk/line_shape.h"

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
