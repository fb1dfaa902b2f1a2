#include "plugin/wheel_object.h"

#include <cmath>

#include "plugin/block_values.h"
#include "plugin/param_blocks.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "WheelObject";
ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::WheelParam;

}  // namespace

WheelObject::WheelObject() : RigHelper(kClass, statics) {
    SetupWheel_param_blk(&BlockDescOf(kClass));
    MakeBlock();
}

void WheelObject::ReadValues(TimeValue) {
    radius = FloatOf(pblock_, Param::Radius);
    width = FloatOf(pblock_, Param::Width);
    mass = FloatOf(pblock_, Param::Mass);
    ruggedness = FloatOf(pblock_, Param::Ruggedness);
    grip = FloatOf(pblock_, Param::Grip);
}

std::vector<Point3> WheelObject::Extent() const { return BoxCorners(radius, radius, width); }

bool WheelObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Radius, std::abs(d.y));
    SetFloat(pblock_, Param::Width, std::abs(d.x));
    return d.x != 0.0f && d.y != 0.0f;
}

}  // namespace tavrik_plugin
