#include "plugin/hitch_object.h"

#include "plugin/block_values.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::HitchParam;

}  // namespace

HitchObject::HitchObject() : RigHelper("HitchObject", statics) { MakeBlock(); }

void HitchObject::ReadValues(TimeValue) {
    radius = FloatOf(pblock_, Param::Radius);
    ruggedness = FloatOf(pblock_, Param::Ruggedness);
}

INode* HitchObject::ConnectionNode() const { return NodeOf(pblock_, Param::Connection_Node); }

/// The bar reaches forward and below the ball.
std::vector<Point3> HitchObject::Extent() const {
    return BoxCorners(Point3(-radius, -radius, -2.5f * radius), Point3(radius, 5.0f * radius, radius));
}

tavrik::GizmoLines HitchObject::Lines() const { return tavrik::HitchLines(radius); }

bool HitchObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Radius, Length(d));
    return d.x != 0.0f;
}

}  // namespace tavrik_plugin
