#include "rig/stock_car.h"

#include "rig/component_values.h"

namespace tavrik {
namespace {

// Axles relative to the centre of mass, scene units.
constexpr double kFrontAxleY = 132.0, kBackAxleY = -138.0, kAxleZ = -20.0;
constexpr double kHalfTrack = 76.0;
constexpr float kWheelRadius = 32.0f;
// A tyre carries its share of the car by sinking in this far.
constexpr double kTyreSink = 1.0;

ChassisValues Body() {
    ChassisValues values = DefaultChassisValues();
    values.Length = 225.0f;
    values.Width = 88.0f;
    values.Height = 35.0f;
    values.Mass = 1250.0f;
    // Steered axles aim at a point on the back axle.
    values.Rotation_Center_Shift = float(kBackAxleY / 225.0 * 100.0);
    return values;
}

WheelValues Wheel() {
    WheelValues values = DefaultWheelValues();
    values.Radius = kWheelRadius;
    values.Width = 10.0f;
    values.Mass = 22.0f;
    values.Ruggedness = 1000000.0f;
    return values;
}

/// Springs carry the body at zero travel and swing at 1.35 Hz in front and 1.45 Hz behind; dampers take a third of what would
/// stop the swing altogether.
SuspensionValues FrontSuspension() {
    SuspensionValues values = DefaultSuspensionValues();
    values.Suspension_Type = kWishbone;
    values.Length = 38.0f;
    values.Wheel_Shift = 4.0f;
    values.Ruggedness = 23000.0f;
    values.Shift = 13.6f;
    values.Damping = 1900.0f;
    values.Top_Stop = 9.0f;
    values.Bottom_Stop = -10.0f;
    values.Steering = 1;
    return values;
}

SuspensionValues BackSuspension() {
    SuspensionValues values = DefaultSuspensionValues();
    values.Suspension_Type = kTelescopic;
    values.Wheel_Shift = 4.0f;
    values.Ruggedness = 25000.0f;
    values.Shift = 12.0f;
    values.Damping = 1900.0f;
    values.Top_Stop = 9.0f;
    values.Bottom_Stop = -10.0f;
    values.Drive = 1;
    values.Handbrake = 1;
    return values;
}

/// Travel points down and the axle outwards, to the left (side -1) or to the right (side 1).
PlannedUnit Unit(double side, double axleY, const SuspensionValues& suspension) {
    PlannedUnit unit{Wheel(), suspension, IdentityDMatrix3()};
    const double reach = RestReach(MakeUnit(unit.wheel, unit.suspension, unit.frame, 0));
    unit.frame = {{{0.0, 0.0, -1.0}, {0.0, side, 0.0}, {side, 0.0, 0.0}, {side * (kHalfTrack - reach), axleY, kAxleZ}}};
    return unit;
}

PlannedSphere Sphere(const DPoint3& centre, float radius) {
    SphereValues values = DefaultSphereValues();
    values.Radius = radius;
    return {values, centre};
}

}  // namespace

CarPlan StockCarPlan() {
    CarPlan plan;
    plan.chassis = Body();
    for (const double side : {-1.0, 1.0}) plan.units.push_back(Unit(side, kFrontAxleY, FrontSuspension()));
    for (const double side : {-1.0, 1.0}) plan.units.push_back(Unit(side, kBackAxleY, BackSuspension()));
    for (const double side : {-1.0, 1.0}) {
        plan.spheres.push_back(Sphere({side * 66.0, 198.0, -8.0}, 20.0f));
        plan.spheres.push_back(Sphere({side * 66.0, -198.0, -8.0}, 20.0f));
        plan.spheres.push_back(Sphere({side * 48.0, 35.0, 66.0}, 22.0f));
        plan.spheres.push_back(Sphere({side * 48.0, -85.0, 66.0}, 22.0f));
    }
    plan.standingHeight = StockCarStandingHeight();
    return plan;
}

void MakeStockCar(CarRig& rig, const DMatrix3& frame) { MakePlannedCar(StockCarPlan(), frame, rig); }

double StockCarStandingHeight() { return double(kWheelRadius) - kAxleZ - kTyreSink; }

}  // namespace tavrik
