#include "studio/dialogs/placed_car.h"

#include <algorithm>
#include <cmath>

#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"
#include "samples/sample_ground.h"
#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

using tavrik::CarSpot;
using tavrik::MasterParam;
using tavrik::ObjectClass;

constexpr TimeValue kLeastTimeline = 20 * TIME_TICKSPERSEC;

/// A circle seen from above, scene units.
struct Circle {
    double x = 0.0, y = 0.0, radius = 0.0;
};

void AddCircle(std::vector<Circle>& circles, INode& node, double radius) {
    const Point3 place = node.GetNodeTM(0).GetTrans();
    circles.push_back({double(place.x), double(place.y), radius});
}

/// Where cars stand, and where they start.
std::vector<Circle> TakenCircles() {
    std::vector<Circle> circles;
    for (INode* const master : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
        const double radius = std::hypot(double(tavrik_host::FloatParam(*master, MasterParam::Dummy_Size, 0)),
                                         double(tavrik_host::FloatParam(*master, MasterParam::Dummy_Size, 1)));
        AddCircle(circles, *master, radius);
        if (INode* const start = tavrik_host::NodeParam(*master, MasterParam::Start_Node)) AddCircle(circles, *start, radius);
    }
    return circles;
}

/// How far a car reaches from its chassis, and a train from the first one, its yard beside the road included.
double ReachOf(const CarOrder& order) {
    double reach = double(std::max(order.plan->chassis.Width, order.plan->chassis.Length));
    for (const tavrik::PlannedUnit& unit : order.plan->units) reach = std::max(reach, Length(RestFrame(unit).row[3]));
    return order.vehicles == 1 ? reach : (3.5 + 2.0 * double(order.vehicles)) * std::max(reach, 400.0);
}

bool IsFree(const std::vector<Circle>& taken, double x, double y, double reach) {
    return std::ranges::none_of(
        taken, [&](const Circle& one) { return std::hypot(x - one.x, y - one.y) < one.radius + reach + 50.0; });
}

/// The wanted spot, or the nearest of a grid around it that is free and has ground; where there is none, the wanted one.
bool FindRoom(const CarOrder& order, const tavrik::SurfaceTree& surface, const std::string& name, tavrik::DMatrix3& frame,
              std::string& problem) {
    constexpr int kRings = 12;
    const std::vector<Circle> taken = TakenCircles();
    const CarSpot wanted = order.spot.value_or(MiddleOfGround(surface));
    const double reach = ReachOf(order), apart = std::max(reach, 100.0);
    for (int ring = 0; ring <= kRings; ++ring) {
        const int spots = std::max(1, 8 * ring);
        for (int i = 0; i < spots; ++i) {
            // The first one of a ring is to the right.
            const double angle = 6.283185307179586 * double(i) / double(spots);
            CarSpot spot = wanted;
            spot.x += std::cos(angle) * apart * double(ring);
            spot.y += std::sin(angle) * apart * double(ring);
            std::string fault;
            if (IsFree(taken, spot.x, spot.y, reach) && tavrik_host::FindStart(surface, name, *order.plan, spot, frame, fault))
                return true;
        }
    }
    return tavrik_host::FindStart(surface, name, *order.plan, wanted, frame, problem);
}

INode* AddSampleGround(Editor& editor, std::string& problem) {
    return AddGroundNode(editor.Document(), tavrik::MakeSampleGround({}), "ground", problem);
}

void LengthenTimeline() {
    const Interval range = GetCOREInterface()->GetAnimRange();
    if (range.End() - range.Start() >= kLeastTimeline) return;
    GetCOREInterface()->SetAnimRange(Interval(range.Start(), range.Start() + kLeastTimeline));
}

bool Put(Editor& editor, const CarOrder& order, INode* ground, std::vector<tavrik_host::RigNodes>& cars, std::string& problem) {
    if (ground == nullptr) ground = AddSampleGround(editor, problem);
    if (ground == nullptr) return false;
    const std::string name = NameOf(*ground).toStdString();
    tavrik::SurfaceTree surface;
    tavrik::DMatrix3 frame;
    if (!tavrik_host::BuildGround(*ground, name, surface, problem) || !FindRoom(order, surface, name, frame, problem))
        return false;
    cars = order.fill(frame, *ground, surface, problem);
    if (cars.empty()) problem = name + ": " + problem + ".";
    return !cars.empty();
}

}  // namespace

bool PutCar(Editor& editor, const CarOrder& order, INode* ground, QString& problem) {
    Change change(editor, order.what);
    editor.Select(nullptr);  // locking opens pages of its own: whoever shows others lets go of them first
    if (tavrik_host::NodesOf(ObjectClass::Tavrik).empty()) LengthenTimeline();
    std::vector<tavrik_host::RigNodes> cars;
    std::string fault;
    // A car that no file can hold could neither be saved nor taken back.
    std::string bytes;
    if (!Put(editor, order, ground, cars, fault) || !MakeSnapshot(editor.Document(), bytes, fault)) {
        problem = Text(fault);
        return false;
    }
    editor.Select(cars.front().master);
    change.Keep();
    editor.TouchNodes();
    emit editor.TimeChanged();
    return true;
}

}  // namespace tavrik_studio
