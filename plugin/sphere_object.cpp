#include "plugin/sphere_object.h"

#include "plugin/block_values.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::SphereParam;

}  // namespace

CSphereObject::CSphereObject() : RigHelper("CSphereObject", statics) { MakeBlock(); }

void CSphereObject::ReadValues(TimeValue) {
    radius = FloatOf(pblock_, Param::Radius);
    ruggedness = FloatOf(pblock_, Param::Ruggedness);
    grip = FloatOf(pblock_, Param::Grip);
}

std::vector<Point3> CSphereObject::Extent() const { return BoxCorners(radius, radius, radius); }

tavrik::GizmoLines CSphereObject::Lines() const { return tavrik::SphereLines(radius); }

/// A drag straight along Y makes nothing, however long it is: artists have learnt to drag sideways.
bool CSphereObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Radius, Length(d));
    return d.x != 0.0f;
}

}  // namespace tavrik_plugin
