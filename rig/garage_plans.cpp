#include "rig/garage_plans.h"

#include <cassert>
#include <cmath>

#include "rig/stock_car.h"

namespace tavrik {
namespace {

constexpr double kGravity = 980.0;

// ---------------------------------------------------------------------------------------------------------------- building

/// Chooses a spring by how the body shall swing on it, which is how a driver feels it, and lets its preload carry the body with
/// no travel, so that a vehicle at rest stands as it is drawn.
///
/// @param carried  mass on this unit, without the wheel
/// @param hertz    swings a second: lorries and cars 1.3 to 1.7, light trailers up to 2
/// @param ratio    of the damping that would stop the swing altogether
void SetSpring(SuspensionValues& values, double carried, double hertz, double ratio) {
    //   w = 2 pi f      k = m w^2      preload = g / w^2      damping = 2 r m w
    const double w = 2.0 * 3.141592653589793 * hertz;
    values.Ruggedness = float(carried * w * w);
    values.Shift = float(kGravity / (w * w));
    values.Damping = float(2.0 * ratio * carried * w);
}

WheelValues Wheel(float radius, float width, float mass, float ruggedness) {
    WheelValues values = DefaultWheelValues();
    values.Radius = radius;
    values.Width = width;
    values.Mass = mass;
    values.Ruggedness = ruggedness;
    return values;
}

SuspensionValues Strut(float topStop, float bottomStop) {
    SuspensionValues values = DefaultSuspensionValues();
    values.Suspension_Type = kTelescopic;
    values.Wheel_Shift = 4.0f;
    values.Top_Stop = topStop;
    values.Bottom_Stop = bottomStop;
    return values;
}

/// A pair of wheels at `halfTrack` to each side. Travel points down and the axles outwards.
void AddAxle(CarPlan& plan, const WheelValues& wheel, const SuspensionValues& suspension, double halfTrack, double y,
             double z) {
    for (const double side : {-1.0, 1.0}) {
        PlannedUnit unit{wheel, suspension, IdentityDMatrix3()};
        const double reach = RestReach(MakeUnit(wheel, suspension, unit.frame, 0));
        unit.frame = {{{0.0, 0.0, -1.0}, {0.0, side, 0.0}, {side, 0.0, 0.0}, {side * (halfTrack - reach), y, z}}};
        plan.units.push_back(unit);
    }
}

void AddSphere(CarPlan& plan, const DPoint3& centre, float radius) {
    SphereValues values = DefaultSphereValues();
    values.Radius = radius;
    plan.spheres.push_back({values, centre});
}

void AddSphereEachSide(CarPlan& plan, const DPoint3& right, float radius) {
    AddSphere(plan, {-right.x, right.y, right.z}, radius);
    AddSphere(plan, right, radius);
}

ChassisValues Body(float length, float width, float height, float mass) {
    ChassisValues values = DefaultChassisValues();
    values.Length = length;
    values.Width = width;
    values.Height = height;
    values.Mass = mass;
    return values;
}

// ---------------------------------------------------------------------------------------------------------------- couplings

// A ball a hand above the axles of a car, and the same over the ground on everything that is coupled.
constexpr double kBallHeight = 42.0;
constexpr float kBallRadius = 8.0f;
// With half of a light trailer's mass behind it the joint swings at some 6 Hz and is damped by half: stiff enough that a
// trailer hangs by less than a finger's breadth under full braking, soft for a step of 1/4500 s, where sqrt(k / m) dt is 0.01.
constexpr float kHitchRuggedness = 400000.0f;

void AddCoupling(CarPlan& plan, bool isHitch, double y) {
    plan.couplings.push_back({isHitch, {0.0, y, kBallHeight - plan.standingHeight}, kBallRadius, kHitchRuggedness});
}

}  // namespace

CarPlan TowCarPlan() {
    CarPlan plan = StockCarPlan();
    AddCoupling(plan, /*isHitch=*/true, -238.0);
    return plan;
}

CarPlan TrailerPlan() {
    // The axle stands a little behind the centre of mass: a fourteenth of the weight rests on the ball, which keeps the
    // trailer from swaying.
    constexpr double kAxleY = -20.0, kAxleZ = -30.0, kTongueY = 250.0;
    CarPlan plan;
    plan.chassis = Body(140.0f, 75.0f, 45.0f, 400.0f);
    plan.standingHeight = 28.0 - kAxleZ - 0.8;
    SuspensionValues suspension = Strut(9.0f, -9.0f);
    SetSpring(suspension, 400.0 * kTongueY / (kTongueY - kAxleY) / 2.0, 1.7, 0.4);
    AddAxle(plan, Wheel(28.0f, 9.0f, 18.0f, 700000.0f), suspension, 88.0, kAxleY, kAxleZ);
    for (const double y : {-118.0, 118.0}) {
        AddSphereEachSide(plan, {55.0, y, -8.0}, 18.0f);
        AddSphereEachSide(plan, {55.0, y, 62.0}, 18.0f);
    }
    AddSphere(plan, {0.0, kTongueY - 10.0, kBallHeight - plan.standingHeight}, 10.0f);
    AddCoupling(plan, /*isHitch=*/false, kTongueY);
    return plan;
}

CarPlan LeadingTrailerPlan() {
    CarPlan plan = TrailerPlan();
    AddCoupling(plan, /*isHitch=*/true, -158.0);
    return plan;
}

CarPlan SecondTrailerPlan() {
    constexpr double kAxleY = -14.0, kAxleZ = -24.0, kTongueY = 200.0;
    CarPlan plan;
    plan.chassis = Body(110.0f, 70.0f, 30.0f, 220.0f);
    plan.standingHeight = 26.0 - kAxleZ - 0.5;
    SuspensionValues suspension = Strut(8.0f, -8.0f);
    SetSpring(suspension, 220.0 * kTongueY / (kTongueY - kAxleY) / 2.0, 1.8, 0.4);
    AddAxle(plan, Wheel(26.0f, 8.0f, 14.0f, 600000.0f), suspension, 82.0, kAxleY, kAxleZ);
    for (const double y : {-92.0, 92.0}) AddSphereEachSide(plan, {54.0, y, 0.0}, 16.0f);
    AddSphere(plan, {0.0, kTongueY - 10.0, kBallHeight - plan.standingHeight}, 10.0f);
    AddCoupling(plan, /*isHitch=*/false, kTongueY);
    return plan;
}

CarPlan MotorcyclePlan() {
    // Rider and machine balance between the axles, a little nearer to the back one.
    constexpr double kFrontY = 76.0, kBackY = -68.0, kAxleZ = -30.0, kMass = 230.0;
    // Of the fork, 24 degrees: the sine and cosine.
    constexpr double kRakeAcross = 0.4067366430758002, kRakeAlong = 0.9135454576426009;
    CarPlan plan;
    plan.chassis = Body(105.0f, 40.0f, 70.0f, float(kMass));
    // The front wheel aims at a point on the back axle.
    plan.chassis.Rotation_Center_Shift = float(kBackY / 105.0 * 100.0);
    plan.standingHeight = 32.0 - kAxleZ - 0.8;

    // The section is round and wide: it carries on its shoulder in a lean, and gives the machine a moment at rest before it
    // falls.
    const WheelValues wheel = Wheel(32.0f, 8.0f, 14.0f, 600000.0f);
    SuspensionValues fork = Strut(9.0f, -9.0f), swing = Strut(9.0f, -9.0f);
    fork.Wheel_Shift = swing.Wheel_Shift = 0.0f;
    fork.Steering = 1;
    swing.Drive = swing.Handbrake = 1;
    // Along a raked fork the body weighs its upright part alone.
    SetSpring(fork, kMass * -kBackY / (kFrontY - kBackY) * kRakeAlong, 1.7, 0.45);
    SetSpring(swing, kMass * kFrontY / (kFrontY - kBackY), 1.7, 0.45);
    plan.units.push_back(
        {wheel,
         fork,
         {{{0.0, kRakeAcross, -kRakeAlong}, {0.0, kRakeAlong, kRakeAcross}, {1.0, 0.0, 0.0}, {0.0, kFrontY, kAxleZ}}}});
    plan.units.push_back({wheel, swing, {{{0.0, 0.0, -1.0}, {0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, kBackY, kAxleZ}}}});

    AddSphereEachSide(plan, {27.0, -5.0, -22.0}, 7.0f);  // foot pegs
    AddSphereEachSide(plan, {34.0, 42.0, 32.0}, 7.0f);   // ends of the handlebar
    AddSphere(plan, {0.0, -10.0, 78.0}, 14.0f);          // helmet
    return plan;
}

CarPlan SixWheelerPlan() {
    constexpr double kFrontY = 210.0, kMiddleY = -90.0, kBackY = -220.0, kAxleZ = -48.0, kHalfTrack = 100.0, kMass = 5000.0;
    constexpr double kPairY = (kMiddleY + kBackY) / 2.0;
    CarPlan plan;
    plan.chassis = Body(330.0f, 120.0f, 75.0f, float(kMass));
    plan.chassis.Solidity = 5000000.0f;
    // The two axles that don't steer turn about a point between them.
    plan.chassis.Rotation_Center_Shift = float(kPairY / 330.0 * 100.0);
    plan.standingHeight = 50.0 - kAxleZ - 1.2;

    const WheelValues wheel = Wheel(50.0f, 15.0f, 80.0f, 2500000.0f);
    // Levers share the weight between the front axle and the pair behind, whose equal springs halve theirs.
    const double onFront = kMass * -kPairY / (kFrontY - kPairY);
    SuspensionValues front = Strut(14.0f, -12.0f), back = front;
    front.Wheel_Shift = back.Wheel_Shift = 8.0f;
    front.Steering = 1;
    back.Drive = back.Handbrake = 1;
    front.Buffer_Ruggedness = back.Buffer_Ruggedness = 300000.0f;
    SetSpring(front, onFront / 2.0, 1.5, 0.35);
    SetSpring(back, (kMass - onFront) / 4.0, 1.6, 0.35);
    AddAxle(plan, wheel, front, kHalfTrack, kFrontY, kAxleZ);
    AddAxle(plan, wheel, back, kHalfTrack, kMiddleY, kAxleZ);
    AddAxle(plan, wheel, back, kHalfTrack, kBackY, kAxleZ);

    for (const double y : {-298.0, 298.0}) AddSphereEachSide(plan, {90.0, y, -20.0}, 28.0f);
    AddSphereEachSide(plan, {85.0, 250.0, 130.0}, 30.0f);
    AddSphereEachSide(plan, {85.0, 140.0, 130.0}, 30.0f);
    // Four times the weight of a car falls on them.
    for (PlannedSphere& sphere : plan.spheres) sphere.values.Ruggedness = 2000000.0f;
    return plan;
}

DPoint3 CouplingPlace(const CarPlan& plan, bool isHitch) {
    for (const PlannedCoupling& coupling : plan.couplings) {
        if (coupling.isHitch == isHitch) return coupling.place;
    }
    assert(false);
    return {};
}

DMatrix3 FrameBehind(const CarPlan& front, const DMatrix3& frontFrame, const CarPlan& behind) {
    DMatrix3 toTongue = IdentityDMatrix3();
    toTongue.row[3] = CouplingPlace(front, /*isHitch=*/true) - CouplingPlace(behind, /*isHitch=*/false);
    return Compose(toTongue, frontFrame);
}

}  // namespace tavrik
