#include "plugin/tongue_object.h"

#include "plugin/block_values.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::TongueParam;

}  // namespace

TongueObject::TongueObject() : RigHelper("TongueObject", statics) { MakeBlock(); }

void TongueObject::ReadValues(TimeValue) { radius = FloatOf(pblock_, Param::Radius); }

/// The cage around the cup is a fifth larger than the cup, and the beam reaches backward.
std::vector<Point3> TongueObject::Extent() const {
    const float cage = 1.2f * radius;
    return BoxCorners(Point3(-cage, -5.0f * cage, 0.0f), Point3(cage, cage, cage));
}

tavrik::GizmoLines TongueObject::Lines() const { return tavrik::TongueLines(radius); }

bool TongueObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Radius, Length(d));
    return d.x != 0.0f;
}

}  // namespace tavrik_plugin
