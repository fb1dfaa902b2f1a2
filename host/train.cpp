#include "host/train.h"

#include <algorithm>
#include <cassert>

#include "host/car_placement.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "rig/garage_plans.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

using tavrik::CarPlan;
using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::HitchParam;
using tavrik::ObjectClass;

/// Of the wheels, in chassis space.
DPoint3 MiddleOfWheels(const CarPlan& plan) {
    DPoint3 sum{};
    for (const tavrik::PlannedUnit& unit : plan.units) sum += RestFrame(unit).row[3];
    return sum * (1.0 / double(plan.units.size()));
}

/// The tongue on the hitch, and the drawbar tilted until the axle is as high above the ground as it is on a level one.
DMatrix3 StandBehind(const CarPlan& front, const DMatrix3& frontFrame, const CarPlan& behind,
                     const tavrik::SurfaceTree& surface) {
    DMatrix3 frame = FrameBehind(front, frontFrame, behind);
    const DPoint3 hitch = TransformPoint(CouplingPlace(front, /*isHitch=*/true), frontFrame);
    const DPoint3 tongue = CouplingPlace(behind, /*isHitch=*/false), axle = MiddleOfWheels(behind);
    const DPoint3 place = TransformPoint(axle, frame);
    double ground = 0.0;
    if (!GroundBelow(surface, place.x, place.y, ground)) return frame;
    const double rise = ground + behind.standingHeight + axle.z - place.z;
    frame.row[1] = Normalize(frame.row[1] - frame.row[2] * (rise / (tongue.y - axle.y)));
    frame.row[2] = Normalize(Cross(frame.row[0], frame.row[1]));
    frame.row[3] = {0.0, 0.0, 0.0};
    frame.row[3] = hitch - TransformPoint(tongue, frame);
    return frame;
}

/// Far enough from the road, and from each other, that no vehicle at its start lies in a box of the yard.
DMatrix3 PlaceInYard(const DMatrix3& road, std::size_t which, double longest) {
    const double toTheLeft = std::max(1000.0, 2.5 * longest), apart = std::max(800.0, 2.0 * longest);
    DMatrix3 frame = road;
    frame.row[3] += road.row[0] * -toTheLeft - road.row[1] * (apart * double(which));
    return frame;
}

/// How far the parts of any vehicle reach from its chassis.
double LongestReach(const std::vector<DressedCar>& vehicles) {
    double longest = 0.0;
    for (const DressedCar& vehicle : vehicles) {
        const CarPlan& plan = vehicle.plan;
        longest = std::max({longest, double(plan.chassis.Width), double(plan.chassis.Length)});
        for (const tavrik::PlannedUnit& unit : plan.units) longest = std::max(longest, Length(RestFrame(unit).row[3]));
        for (const tavrik::PlannedCoupling& coupling : plan.couplings) longest = std::max(longest, Length(coupling.place));
    }
    return longest;
}

INode* CouplingNode(const RigNodes& nodes, ObjectClass end) {
    const auto found =
        std::find_if(nodes.couplings.begin(), nodes.couplings.end(), [end](INode* node) { return ClassOf(*node) == end; });
    return found == nodes.couplings.end() ? nullptr : *found;
}

void SetUpTrain(const std::vector<RigNodes>& train) {
    for (std::size_t i = 1; i < train.size(); ++i) {
        SetParam(*CouplingNode(train[i - 1], ObjectClass::Hitch), HitchParam::Connection_Node,
                 CouplingNode(train[i], ObjectClass::Tongue));
    }
    for (const RigNodes& nodes : train) MasterPanel(*nodes.master).LockComponents();
}

}  // namespace

std::vector<RigNodes> AddTrain(SceneDocument& document, const std::vector<DressedCar>& vehicles, const DMatrix3& frame,
                               INode& ground, const tavrik::SurfaceTree& surface) {
    const bool isTrain = vehicles.size() > 1;
    const double longest = LongestReach(vehicles);
    std::vector<RigNodes> train;
    DMatrix3 start = frame;
    for (std::size_t i = 0; i < vehicles.size(); ++i) {
        const DressedCar& vehicle = vehicles[i];
        if (i > 0) start = StandBehind(vehicles[i - 1].plan, start, vehicle.plan, surface);
        const DMatrix3 place = isTrain ? PlaceInYard(frame, i, longest) : start;
        train.push_back(AddPlannedCar(document, vehicle.plan, vehicle.dress, place, &ground));
        Matrix3 startFrame = SceneFrame(start);
        train.back().start->SetNodeTM(0, startFrame);
    }
    if (isTrain) SetUpTrain(train);
    return train;
}

}  // namespace tavrik_host
