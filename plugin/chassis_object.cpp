#include "plugin/chassis_object.h"

#include <cmath>

#include "plugin/block_values.h"
#include "plugin/param_blocks.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "ChassisObject";
ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::ChassisParam;

}  // namespace

ChassisObject::ChassisObject() : RigHelper(kClass, statics) {
    SetupChassisObject_param_blk(&BlockDescOf(kClass));
    MakeBlock();
}

void ChassisObject::ReadValues(TimeValue) {
    width = FloatOf(pblock_, Param::Width);
    length = FloatOf(pblock_, Param::Length);
    height = FloatOf(pblock_, Param::Height);
    mass = FloatOf(pblock_, Param::Mass);
    solidity = FloatOf(pblock_, Param::Solidity);
    rotationShift = FloatOf(pblock_, Param::Rotation_Center_Shift) / 100.0f;
}

std::vector<Point3> ChassisObject::Extent() const { return BoxCorners(width, length, height); }

tavrik::GizmoLines ChassisObject::Lines() const { return tavrik::ChassisLines(width, length, height, rotationShift); }

bool ChassisObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Length, std::abs(d.y));
    SetFloat(pblock_, Param::Width, std::abs(d.x));
    SetFloat(pblock_, Param::Height, 0.3f * std::abs(d.x));
    return d.x != 0.0f && d.y != 0.0f;
}

}  // namespace tavrik_plugin
