#include "rig/rig_collector.h"

#include <cmath>
#include <cstddef>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

bool IsInside(const Point3& boxSize, const Point3& place) {
    return boxSize.x > std::abs(place.x) && boxSize.y > std::abs(place.y) && boxSize.z > std::abs(place.z);
}

void Gather(RigCollector& collector, SceneNode& node) {
    const ObjectClass objectClass = node.Class();
    if (objectClass == ObjectClass::None) return;
    const Matrix3 transform = node.GetObjectTM();
    const Point3 place = TransformPoint(transform.row[3], collector.masterInverse);
    std::vector<CollectedNode>* const list = ListOf(collector, objectClass);
    if (IsInside(collector.boxSize, place)) {
        if (list != nullptr) list->push_back({&node, transform});
        return;
    }
    const bool held = IsHeldBy(node, *collector.masterNode);
    if (held || list != nullptr) collector.outside.push_back({&node, objectClass, place, held});
}

}  // namespace

std::vector<CollectedNode>* ListOf(RigCollector& collector, ObjectClass objectClass) {
    switch (objectClass) {
        case ObjectClass::Wheel:
            return &collector.wheels;
        case ObjectClass::Suspension:
            return &collector.suspensions;
        case ObjectClass::Chassis:
            return &collector.chassis;
        case ObjectClass::Hitch:
        case ObjectClass::Tongue:
            return &collector.hitches;
        case ObjectClass::Sphere:
            return &collector.spheres;
        case ObjectClass::None:
        case ObjectClass::Other:
        case ObjectClass::Tavrik:
        case ObjectClass::Push:
        case ObjectClass::Start:
            break;
    }
    return nullptr;
}

bool IsHeldBy(const SceneNode& node, const SceneNode& master) {
    return node.HasControl() && node.GetControl().Tavrik_Node == &master;
}

bool GatherComponents(RigCollector& collector, SceneNode& root, SceneNode& master, const Point3& boxSize) {
    collector = RigCollector{};
    collector.masterNode = &master;
    collector.boxSize = boxSize;
    if (!FindInverse(master.GetObjectTM(), collector.masterInverse)) return false;
    WalkScene(root, [&](SceneNode& node) {
        Gather(collector, node);
        return true;
    });
    return true;
}

std::string OverfullSentence(const RigCollector& collector) {
    const struct {
        std::size_t count;
        const char* what;
    } lists[] = {
        {collector.wheels.size(), "wheels"},
        {collector.suspensions.size(), "suspensions"},
        {collector.chassis.size(), "chassis"},
        {collector.hitches.size(), "hitches and tongues"},
        {collector.spheres.size(), "collision spheres"},
    };
    for (const auto& list : lists) {
        if (list.count <= std::size_t(kMaxComponents)) continue;
        return "There are " + std::to_string(list.count) + " " + list.what + " in the master's box, but a car can have only " +
               std::to_string(kMaxComponents) + " of them; make the box smaller or take some of them out of it.";
    }
    return {};
}

UnitFit FitUnit(const CollectedNode& wheel, float width, const CollectedNode& suspension) {
    UnitFit fit;
    fit.distanceSquared = LengthSquared(wheel.transform.row[3] - suspension.transform.row[3]);
    fit.alignment = Dot(wheel.transform.row[2], suspension.transform.row[2]);
    fit.isNear = width * width > fit.distanceSquared;
    fit.isAligned = fit.alignment > kLeastAlignment;
    return fit;
}

std::int32_t FindSuspension(const RigCollector& collector, const CollectedNode& wheel) {
    const float width = wheel.node->GetFloat(WheelParam::Width);
    for (std::size_t s = 0; s < collector.suspensions.size(); ++s) {
        const UnitFit fit = FitUnit(wheel, width, collector.suspensions[s]);
        if (fit.isNear && fit.isAligned) return std::int32_t(s);
    }
    return kNoSuspension;
}

}  // namespace tavrik
