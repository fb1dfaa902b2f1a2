#include "plugin/start_object.h"

#include <cmath>

#include "plugin/block_values.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::StartParam;

}  // namespace

StartObject::StartObject() : RigHelper("StartObject", statics) { MakeBlock(); }

void StartObject::ReadValues(TimeValue) { size = FloatOf(pblock_, Param::Size); }

std::vector<Point3> StartObject::Extent() const { return BoxCorners(0.5f * size, size, 0.1f * size); }

tavrik::GizmoLines StartObject::Lines() const { return tavrik::StartLines(size); }

bool StartObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Size, std::abs(d.y));
    return d.y != 0.0f;
}

}  // namespace tavrik_plugin
