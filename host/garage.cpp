#include "host/garage.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>
#include <utility>

#include "drive/input_modes.h"
#include "host/car_shape.h"
#include "host/rig_objects.h"
#include "host/road_laying.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/param_block.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "host/vehicle_shapes.h"
#include "rig/garage_plans.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"
#include "rig/ticks.h"
#include "samples/road_ground.h"
#include "samples/sample_ground.h"

namespace tavrik_host {
namespace {

using tavrik::CarPlan;
using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik::PushParam;
using tavrik::SampleGroundKind;
using tavrik::SurfaceTree;

// ----------------------------------------------------------------------------------------------------------------- grounds

tavrik::TriangleMesh WideHills() { return tavrik::MakeSampleGround({SampleGroundKind::Hills, 600.0, 20'000, 1}); }
tavrik::TriangleMesh WidePlane() { return tavrik::MakeSampleGround({SampleGroundKind::Plane, 600.0, 800, 1}); }

// ---------------------------------------------------------------------------------------------------------------- vehicles

/// @param body  its parts, in chassis space
GarageVehicle Dressed(CarPlan plan, const char* name, const tavrik::DriveSettings& settings, tavrik::Shape body) {
    GarageVehicle vehicle{std::move(plan), {name, settings, std::move(body.parts), {}}};
    for (const tavrik::PlannedUnit& unit : vehicle.plan.units) {
        vehicle.dress.wheels.push_back(WheelShape(MakeUnit(unit.wheel, unit.suspension, unit.frame, 0)).parts);
    }
    return vehicle;
}

/// The brake of a trailer is the car's pedal; nothing else of its settings is read while it is towed.
GarageVehicle Trailer() { return Dressed(tavrik::TrailerPlan(), "Trailer", {}, tavrik::TrailerShape()); }
GarageVehicle LeadingTrailer() { return Dressed(tavrik::LeadingTrailerPlan(), "Trailer", {}, tavrik::TrailerShape()); }
GarageVehicle SecondTrailer() {
    return Dressed(tavrik::SecondTrailerPlan(), "Second trailer", {}, tavrik::SecondTrailerShape());
}

GarageVehicle TowCar() {
    GarageVehicle car{tavrik::TowCarPlan(), StockCarDress()};
    car.dress.name = "Tow car";
    return car;
}

std::vector<GarageVehicle> CarAndTrailer() { return {TowCar(), Trailer()}; }
std::vector<GarageVehicle> CarAndTwoTrailers() { return {TowCar(), LeadingTrailer(), SecondTrailer()}; }
std::vector<GarageVehicle> StockCar() { return {{tavrik::StockCarPlan(), StockCarDress()}}; }

std::vector<GarageVehicle> Motorcycle() {
    tavrik::DriveSettings settings;
    settings.Bike_Drive = 1;
    settings.Balance_Force = 4.0f;
    settings.Rudder_Angle = 45.0f;
    settings.Rudder_Sensitivity = 30.0f;
    settings.Throttle_Sensitivity = 3500.0f;
    settings.Brake_Sensitivity = 900.0f;
    return {Dressed(tavrik::MotorcyclePlan(), "Motorcycle", settings, tavrik::MotorcycleShape())};
}

std::vector<GarageVehicle> SixWheeler() {
    tavrik::DriveSettings settings;
    settings.Rudder_Angle = 35.0f;
    settings.Rudder_Sensitivity = 25.0f;
    settings.Throttle_Sensitivity = 6000.0f;
    settings.Brake_Sensitivity = 2500.0f;
    return {Dressed(tavrik::SixWheelerPlan(), "Six-wheeler", settings, tavrik::SixWheelerShape())};
}

// ------------------------------------------------------------------------------------------------------------------- pushes

constexpr std::int32_t kSecond = tavrik::kTicksPerSecond;

/// A push that rides on the car, so that it always hits the same spot of it, wherever the car was driven.
/// @param inChassis  row 1 is where to, row 3 the spot
INode& AddPush(const RigNodes& car, const DMatrix3& inChassis, float force) {
    const DMatrix3 chassis = RigFrame(car.chassis->GetNodeTM(0));
    INode& push = AddRigNode(ObjectClass::Push, SceneFrame(Compose(inChassis, chassis)), nullptr, car.chassis);
    SetParam(push, PushParam::Dummy_Size, 15.0f);
    SetParam(push, PushParam::Push_Force, force);
    SetParam(push, PushParam::Tavrik, car.master);
    return push;
}

/// A fifth of a second on the left flank before the back axle: 2e6 of force over 0.2 s turn the car's tail out by some 3 m/s.
bool HitTheFlank(SceneDocument&, const RigNodes& car, const SurfaceTree&, std::string&) {
    INode& push = AddPush(car, {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}, {-88, -110, 0}}}, 3.0f);
    SetParam(push, PushParam::Push_Type, 0);
    SetParam(push, PushParam::Start_Time, 2 * kSecond);
    SetParam(push, PushParam::Push_Length, 0.2f);
    return true;
}

/// A rocket at the tail that swells, holds, lets go and then holds back: percents of 6e5, a bit less than half the weight.
bool FireRocket(SceneDocument&, const RigNodes& car, const SurfaceTree&, std::string&) {
    INode& push = AddPush(car, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, -225, 0}}}, 0.6f);
    SetParam(push, PushParam::Push_Type, 1);
    auto* block = static_cast<ParamBlock*>(push.GetObjectRef()->GetParamBlockByID(BlockID(tavrik::kBlockId)));
    [[maybe_unused]] const bool set = block->SetKeys(ParamID(PushParam::Push_Anim_Mult), {{1 * kSecond, 0.0f},
                                                                                          {2 * kSecond, 100.0f},
                                                                                          {4 * kSecond, 100.0f},
                                                                                          {5 * kSecond, 0.0f},
                                                                                          {6 * kSecond, -50.0f},
                                                                                          {8 * kSecond, 0.0f}});
    assert(set);
    return true;
}

// ------------------------------------------------------------------------------------------------------------------ leaders

void LetFollow(const RigNodes& car, INode* leader) {
    SetParam(*car.master, MasterParam::Driving_Type, std::int32_t(tavrik::kDriveToTarget));
    SetParam(*car.master, MasterParam::Driving_Target, leader);
}

/// A block that starts some way ahead of the car and goes round and round to its right, at 40 km/h, for two minutes.
bool LeadInCircles(SceneDocument& document, const RigNodes& car, const SurfaceTree&, std::string&) {
    constexpr double kRadius = 4000.0, kAhead = 1500.0, kSpeed = 100'000.0 * 40.0 / 3600.0;  // cm, cm/s
    constexpr int kKeys = 120, kTurns = 6;                                                   // keys to a turn
    const double turnSeconds = 2.0 * std::numbers::pi * kRadius / kSpeed;
    const DMatrix3 chassis = RigFrame(car.chassis->GetNodeTM(0));
    tavrik::ShapePart block{{"target", 0.9f, 0.2f, 0.05f, 0.0f, 0.6f}, {}, {}, {}};
    AddBlock(block, {{-40.0f, -80.0f, -30.0f}, {40.0f, 80.0f, 30.0f}});
    INode* const target = AddMeshNode(document, {&block, 1}, "target");
    auto* const motion = dynamic_cast<PrsControl*>(target->GetTMController());
    assert(motion != nullptr);
    for (int i = 0; i <= kKeys * kTurns; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kKeys;
        const DPoint3 place = chassis.row[3] + chassis.row[0] * (kRadius * (1.0 - std::cos(angle))) +
                              chassis.row[1] * (kAhead + kRadius * std::sin(angle));
        const auto tick = TimeValue(turnSeconds * i / kKeys * kSecond);
        motion->position.keys.push_back({tick, Point3(float(place.x), float(place.y), float(place.z))});
    }
    motion->KeysChanged();
    LetFollow(car, target);
    return true;
}

/// The sample circuit as a line on the ground.
bool LayCircuit(SceneDocument&, const RigNodes& car, const SurfaceTree& surface, std::string& problem) {
    const tavrik::RoadLine circuit = tavrik::SampleCircuit();
    std::vector<tavrik::Point3> points;
    if (!LayOnGround(surface, circuit, MetresPerUnit(), points, problem)) {
        problem = "the circuit has no room on it: " + problem;
        return false;
    }
    auto* const shape = new LineShape;
    ShapeLine& line = shape->lines.emplace_back();
    line.closed = circuit.closed;
    for (const tavrik::Point3& p : points) line.points.emplace_back(p.x, p.y, p.z);
    LetFollow(car, CreateNode(shape, L"circuit"));
    return true;
}

}  // namespace

const std::vector<GarageScene>& GarageScenes() {
    static const std::vector<GarageScene> scenes = {
        {"trailer", "the stock car with a box trailer", WideHills, CarAndTrailer, nullptr, {}},
        {"two-trailers", "the stock car with a chain of two trailers", WideHills, CarAndTwoTrailers, nullptr, {}},
        {"motorcycle", "a motorcycle with its rider, who steers into the lean", WidePlane, Motorcycle, nullptr, {}},
        {"six-wheeler", "a lorry on three axles", WideHills, SixWheeler, nullptr, {}},
        {"timed-push", "the stock car, hit on its left flank at second 2", WidePlane, StockCar, HitTheFlank, {}},
        {"animated-push",
         "the stock car with a rocket at its tail, whose thrust has keys",
         WidePlane,
         StockCar,
         FireRocket,
         {}},
        {"chase", "the stock car, after a block that circles at 40 km/h", WidePlane, StockCar, LeadInCircles, {}},
        {"lap", "the stock car on a circuit, which it drives by itself", tavrik::MakeCircuitGround, StockCar, LayCircuit,
         tavrik::CarSpot{}},
    };
    return scenes;
}

const GarageScene* FindGarageScene(std::string_view name) {
    const std::vector<GarageScene>& scenes = GarageScenes();
    const auto found =
        std::find_if(scenes.begin(), scenes.end(), [name](const GarageScene& scene) { return scene.name == name; });
    return found == scenes.end() ? nullptr : &*found;
}

std::vector<RigNodes> FillGarageScene(SceneDocument& document, const GarageScene& wanted, const DMatrix3& frame, INode& ground,
                                      const tavrik::SurfaceTree& surface, std::string& problem) {
    std::vector<RigNodes> train = AddTrain(document, wanted.vehicles(), frame, ground, surface);
    if (wanted.addMore != nullptr && !wanted.addMore(document, train.front(), surface, problem)) train.clear();
    return train;
}

}  // namespace tavrik_host
