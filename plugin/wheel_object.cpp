#include "plugin/wheel_object.h"

#include <imtl.h>

#include <cmath>
#include <set>

#include "plugin/block_values.h"
#include "plugin/param_blocks.h"
#include "plugin/sc_tex.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "WheelObject";
ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::WheelParam;

/// Has a map read its files, and then whatever stands in its slots. One that stands in many is asked once.
void LoadFilesOf(Texmap& map) {
    std::vector<Texmap*> waiting = {&map};  // the next one is the last
    std::set<Texmap*> seen;
    while (!waiting.empty()) {
        Texmap* const next = waiting.back();
        waiting.pop_back();
        if (next == nullptr || !seen.insert(next).second) continue;
        next->LoadMapFiles(0);
        for (int i = next->NumSubTexmaps(); i-- > 0;) waiting.push_back(next->GetSubTexmap(i));
    }
}

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

void WheelObject::BuildPattern() {
    Texmap* map = nullptr;
    Interval forever = FOREVER;
    if (pblock_ != nullptr) pblock_->GetValue(ParamID(Param::Pattern_Map), 0, map, forever);
    if (map == nullptr) {
        tread_ = tavrik::EvenTread();
        return;
    }
    Interval valid = NEVER;
    map->Update(0, valid);
    LoadFilesOf(*map);
    SCTex place;
    tread_ = tavrik::MakeTread([&](float u, float v) {
        place.uvw = Point3(u, v, 0.0f);
        return map->EvalMono(place);
    });
}

std::vector<Point3> WheelObject::Extent() const { return BoxCorners(radius, radius, width); }

tavrik::GizmoLines WheelObject::Lines() const { return tavrik::WheelLines(radius, width); }

bool WheelObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Radius, std::abs(d.y));
    SetFloat(pblock_, Param::Width, std::abs(d.x));
    return d.x != 0.0f && d.y != 0.0f;
}

}  // namespace tavrik_plugin
