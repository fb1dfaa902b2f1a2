#include "host/follow_target.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/rig_objects.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/splshape.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

using tavrik::ControlParam;
using tavrik::DPoint3;
using tavrik::FollowedLine;
using tavrik::ObjectClass;

constexpr std::size_t kMostNames = 12;  // in one message

double LengthOf(const FollowedLine& line) {
    double length = 0.0;
    for (std::size_t i = 1; i < line.points.size(); ++i) length += Length(line.points[i] - line.points[i - 1]);
    if (line.closed) length += Length(line.points.front() - line.points.back());
    return length;
}

/// Whether a node is one of a car's own parts, or hangs on one.
bool IsOwn(INode& master, INode& node) {
    for (INode* up = &node; up != nullptr && up->IsRootNode() == 0; up = up->GetParentNode()) {
        if (up == &master || MasterOf(*up) == &master) return true;
    }
    return false;
}

bool Moves(INode& node) {
    const Interval range = GetCOREInterface()->GetAnimRange();
    const int step = GetTicksPerFrame();
    const Point3 first = node.GetObjectTM(range.Start()).GetTrans();
    for (TimeValue t = range.Start(); t <= range.End(); t += step) {
        const Point3 place = node.GetObjectTM(t).GetTrans();
        if (!(place == first)) return true;
    }
    return false;
}

/// What there is to follow, for a message.
std::string Choices(INode& master) {
    std::string names;
    std::size_t count = 0;
    for (INode* node : AllNodes()) {
        if (IsOwn(master, *node) || KindOf(*node) == FollowKind::Nothing) continue;
        if (++count > kMostNames) continue;
        names += fmt::format("{}\"{}\"", names.empty() ? "" : ", ", ToUtf8(node->GetName()));
    }
    if (count == 0) return "nothing in it can be followed; lay a line into it with \"tavrik path import\"";
    return "there is " + names + (count > kMostNames ? fmt::format(" and {} more", count - kMostNames) : "");
}

}  // namespace

FollowKind KindOf(INode& node) {
    Object* const object = node.EvalWorldState(0).obj;
    if (object != nullptr && object->CanConvertToType(genericShapeClassID) != 0) {
        return LineOf(node).points.size() < 2 ? FollowKind::Nothing : FollowKind::Road;
    }
    // A car's other helpers move with it; what moves by keys, or what another car carries along, can be followed.
    const ObjectClass itsClass = ClassOf(node);
    if (itsClass == ObjectClass::Tavrik || itsClass == ObjectClass::Start) return FollowKind::Nothing;
    return Moves(node) ? FollowKind::Timetable : FollowKind::Nothing;
}

FollowedLine LineOf(INode& road) {
    FollowedLine longest;
    Object* const object = road.EvalWorldState(0).obj;
    if (object == nullptr || object->CanConvertToType(splineShapeClassID) == 0) return longest;
    auto* const spline = static_cast<ShapeObject*>(object->ConvertToType(0, splineShapeClassID));
    if (spline == nullptr) return longest;
    PolyShape flat;
    spline->MakePolyShape(0, flat, PSHAPE_BUILTIN_STEPS, FALSE);
    if (spline != object) spline->MaybeAutoDelete();
    const Matrix3 tm = road.GetObjectTM(0);
    for (int i = 0; i < flat.numLines; ++i) {
        FollowedLine line;
        line.closed = flat.lines[i].IsClosed() != FALSE;
        for (int k = 0; k < flat.lines[i].numPts; ++k) {
            const Point3 p = flat.lines[i].pts[k].p * tm;
            line.points.push_back({double(p.x), double(p.y), double(p.z)});
        }
        if (line.points.size() > 1 && LengthOf(line) > LengthOf(longest)) longest = std::move(line);
    }
    return longest;
}

INode* LockedChassis(INode& master) {
    for (INode* node : NodesOf(ObjectClass::Chassis)) {
        if (MasterOf(*node) == &master) return node;
    }
    return nullptr;
}

bool FindFollowed(INode& master, const std::string& name, INode*& node, FollowKind& kind, std::string& problem) {
    bool known = false, own = false;
    for (INode* candidate : AllNodes()) {
        if (ToUtf8(candidate->GetName()) != name) continue;
        known = true;
        own = IsOwn(master, *candidate);
        if (own) continue;
        node = candidate;
        kind = KindOf(*candidate);
        if (kind != FollowKind::Nothing) return true;
    }
    problem = !known ? fmt::format("there is no node \"{}\" in it; {}.", name, Choices(master))
              : own  ? fmt::format("\"{}\" is a part of the car itself; {}.", name, Choices(master))
                     : fmt::format("\"{}\" has neither lines nor motion to follow; {}.", name, Choices(master));
    return false;
}

}  // namespace tavrik_host
