#include "rig/assembly_report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

#include "rig/parameter_tables.h"
#include "rig/rig_collector.h"

namespace tavrik {
namespace {

using NodeList = std::vector<CollectedNode>;

/// One report in the making.
struct Reporting {
    const RigCollector& parts;
    AssemblyReport& report;
    std::vector<std::int32_t> taken;  // beside parts.wheels: index of the suspension, or `kNoSuspension`
};

LeftOut Record(LeftOutReason reason, SceneNode* node) {
    LeftOut record;
    record.reason = reason;
    record.node = node;
    return record;
}

LeftOut Record(LeftOutReason reason, SceneNode* node, SceneNode* other, float found, float limit) {
    LeftOut record = Record(reason, node);
    record.other = other;
    record.found = found;
    record.limit = limit;
    return record;
}

float WidthOf(const CollectedNode& wheel) { return wheel.node->GetFloat(WheelParam::Width); }

void ListComponents(Reporting& r) {
    const RigCollector& parts = r.parts;
    for (const NodeList* list : {&parts.chassis, &parts.wheels, &parts.suspensions, &parts.hitches, &parts.spheres}) {
        for (const CollectedNode& part : *list) {
            r.report.components.push_back({part.node, part.node->Class(), IsHeldBy(*part.node, *parts.masterNode)});
        }
    }
}

void ReportOutside(Reporting& r) {
    RigCollector none;
    for (const OutsideNode& outside : r.parts.outside) {
        if (ListOf(none, outside.objectClass) == nullptr) continue;
        LeftOut record = Record(LeftOutReason::OutsideBox, outside.node);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const float place = std::abs(outside.place[axis]), size = r.parts.boxSize[axis];
            if (size > place) continue;
            if (record.axis != ' ' && !(place - size > record.found - record.limit)) continue;
            record.axis = "XYZ"[axis];
            record.found = place;
            record.limit = size;
        }
        r.report.leftOut.push_back(record);
    }
}

/// Why this wheel found none.
LeftOut ExplainWheel(const Reporting& r, const CollectedNode& wheel) {
    const float width = WidthOf(wheel);
    const CollectedNode *nearest = nullptr, *straightest = nullptr;
    UnitFit nearestFit{}, straightestFit{};
    for (const CollectedNode& suspension : r.parts.suspensions) {
        const UnitFit fit = FitUnit(wheel, width, suspension);
        if (nearest == nullptr || fit.distanceSquared < nearestFit.distanceSquared) {
            nearest = &suspension;
            nearestFit = fit;
        }
        if (fit.isNear && (straightest == nullptr || fit.alignment > straightestFit.alignment)) {
            straightest = &suspension;
            straightestFit = fit;
        }
    }
    if (straightest != nullptr) {
        return Record(LeftOutReason::WheelAxisApart, wheel.node, straightest->node, straightestFit.alignment, kLeastAlignment);
    }
    if (nearest == nullptr) return Record(LeftOutReason::NoSuspension, wheel.node);
    return Record(LeftOutReason::WheelTooFar, wheel.node, nearest->node, std::sqrt(nearestFit.distanceSquared), width);
}

/// Why no wheel found this suspension.
LeftOut ExplainSuspension(const Reporting& r, const CollectedNode& suspension) {
    const CollectedNode* nearest = nullptr;
    UnitFit nearestFit{};
    for (const CollectedNode& wheel : r.parts.wheels) {
        const UnitFit fit = FitUnit(wheel, WidthOf(wheel), suspension);
        // A wheel that reaches this far tells more than a nearer one that is too narrow to.
        const bool better = nearest == nullptr || (fit.isNear && !nearestFit.isNear) ||
                            (fit.isNear == nearestFit.isNear && fit.distanceSquared < nearestFit.distanceSquared);
        if (!better) continue;
        nearest = &wheel;
        nearestFit = fit;
    }
    if (nearest == nullptr) return Record(LeftOutReason::NoWheel, suspension.node);
    return Record(nearestFit.isNear ? LeftOutReason::SuspensionPassedOver : LeftOutReason::SuspensionTooFar, suspension.node,
                  nearest->node, std::sqrt(nearestFit.distanceSquared), WidthOf(*nearest));
}

void MatchUnits(Reporting& r) {
    for (const CollectedNode& wheel : r.parts.wheels) {
        const std::int32_t s = FindSuspension(r.parts, wheel);
        const bool shared = s != kNoSuspension && std::ranges::count(r.taken, s) > 0;
        r.taken.push_back(s);
        if (s == kNoSuspension) {
            r.report.leftOut.push_back(ExplainWheel(r, wheel));
            continue;
        }
        const CollectedNode& suspension = r.parts.suspensions[std::size_t(s)];
        const float width = WidthOf(wheel);
        const UnitFit fit = FitUnit(wheel, width, suspension);
        r.report.pairs.push_back({wheel.node, suspension.node, std::sqrt(fit.distanceSquared), width, fit.alignment});
        if (shared) {
            r.report.leftOut.push_back(
                Record(LeftOutReason::SuspensionShared, wheel.node, suspension.node, std::sqrt(fit.distanceSquared), width));
        }
    }
    for (std::size_t s = 0; s < r.parts.suspensions.size(); ++s) {
        if (std::ranges::count(r.taken, std::int32_t(s)) > 0) continue;
        r.report.leftOut.push_back(ExplainSuspension(r, r.parts.suspensions[s]));
    }
}

void ReportChassis(Reporting& r) {
    const NodeList& chassis = r.parts.chassis;
    Matrix3 inverse;
    if (chassis.empty()) {
        r.report.leftOut.push_back(Record(LeftOutReason::NoChassis, r.parts.masterNode));
        return;
    }
    r.report.result = AssemblyResult::Locked;
    if (!FindInverse(chassis.front().transform, inverse)) {
        r.report.result = AssemblyResult::Flattened;
        r.report.leftOut.push_back(Record(LeftOutReason::ChassisFlattened, chassis.front().node));
    }
    for (std::size_t i = 1; i < chassis.size(); ++i) {
        r.report.leftOut.push_back(Record(LeftOutReason::FurtherChassis, chassis[i].node, chassis.front().node, 0.0f, 0.0f));
    }
}

AssemblyReport Report(SceneNode& root, SceneNode& master, const Point3& dummySize) {
    AssemblyReport report;
    RigCollector parts;
    if (!GatherComponents(parts, root, master, dummySize)) {
        report.result = AssemblyResult::Flattened;
        report.leftOut.push_back(Record(LeftOutReason::MasterFlattened, &master));
        return report;
    }
    Reporting reporting = {parts, report, {}};
    ListComponents(reporting);
    if (std::string sentence = OverfullSentence(parts); !sentence.empty()) {
        // No pairs: with so many parts, looking for reasons would take its time, and no car comes of it.
        report.result = AssemblyResult::TooMany;
        report.leftOut.push_back(Record(LeftOutReason::TooMany, &master));
        report.leftOut.back().text = std::move(sentence);
        return report;
    }
    ReportChassis(reporting);
    MatchUnits(reporting);
    ReportOutside(reporting);
    return report;
}

std::string Number(float value) {
    char text[48];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return {text, end.ptr};
}

std::string Quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }

}  // namespace

AssemblyReport ReportAssembly(CarRig& rig, SceneNode& root, SceneNode& master, const Point3& dummySize) {
    RecordedMotion kept = std::exchange(rig.motion, {});
    AssemblyReport report = Report(root, master, dummySize);
    rig.motion = std::move(kept);
    return report;
}

std::string LeftOutSentence(const LeftOut& record, std::string_view name, std::string_view otherName) {
    const std::string it = Quoted(name), other = Quoted(otherName), found = Number(record.found), limit = Number(record.limit);
    switch (record.reason) {
        case LeftOutReason::NoChassis:
            return "There is no chassis inside the box of " + it + ", so there is no car.";
        case LeftOutReason::MasterFlattened:
            return "The master " + it + " is scaled to nothing along some axis, so nothing is inside its box.";
        case LeftOutReason::ChassisFlattened:
            return "The chassis " + it + " is scaled to nothing along some axis, so no part has a place beside it.";
        case LeftOutReason::TooMany:
            return it + ": " + record.text;
        case LeftOutReason::OutsideBox:
            return it + " is outside the master's box: it stands " + found + " from the master along its " + record.axis +
                   " axis, and must stand nearer than " + limit + ".";
        case LeftOutReason::FurtherChassis:
            return "The chassis " + it + " is left out, since the car has " + other + " already.";
        case LeftOutReason::NoSuspension:
            return "The wheel " + it + " is left out: there is no suspension inside the box.";
        case LeftOutReason::WheelTooFar:
            return "The wheel " + it + " is left out: the nearest suspension, " + other + ", is " + found +
                   " away, and must be nearer than the wheel's Width of " + limit + ".";
        case LeftOutReason::WheelAxisApart:
            return "The wheel " + it + " is left out: its Z axis and that of the suspension " + other +
                   " lie too far apart; their product is " + found + ", and must be above " + limit + ".";
        case LeftOutReason::NoWheel:
            return "The suspension " + it + " is left out: there is no wheel inside the box.";
        case LeftOutReason::SuspensionTooFar:
            return "The suspension " + it + " is left out: the nearest wheel, " + other + ", is " + found +
                   " away, and must be nearer than its Width of " + limit + ".";
        case LeftOutReason::SuspensionPassedOver:
            return "The suspension " + it + " is left out: the wheel " + other + " is near enough at " + found +
                   ", but has its axis turned elsewhere or took another suspension.";
        case LeftOutReason::SuspensionShared:
            return "The wheel " + it + " shares the suspension " + other +
                   " with another wheel: it drives now, but can't be put together again after the scene is loaded.";
    }
    return {};
}

}  // namespace tavrik
