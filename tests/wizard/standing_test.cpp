/// Plans put on their wheels: what the solver makes of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "rig/stock_car.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"
#include "tests/wizard/model_cars.h"
#include "wizard/step_limits.h"

namespace tavrik::test {
namespace {

struct Stand {
    double height = 0.0, pitch = 0.0, roll = 0.0;  // means over the last second
    double most = 0.0;                             // farthest from the planned height in that second
    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
};

/// Drops the car from `above` its planned height and looks at how it stands at the end.
Stand StandOf(const WizardResult& result, double above, double seconds) {
    Stand stand;
    MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight + above}), *stand.rig);
    DriveInput input = StockInput();
    input.bikeDrive = result.advice.bikeDrive ? 1 : 0;
    CarWorld& world = EmptyWorld();
    world.rigs[0] = stand.rig.get();
    world.carCount = 1;
    const int steps = int(seconds / kDt), counted = std::min(steps, 4500);
    for (int i = 0; i < steps; ++i) {
        WorldStep(world, i * kDt, kDt, FlatGround(), kGravity, input);
        if (i < steps - counted) continue;
        const DMatrix3& frame = stand.rig->chassisBody.frame;
        stand.height += frame.row[3].z / counted;
        stand.pitch += frame.row[1].z / counted;
        stand.roll += frame.row[0].z / counted;
        stand.most = std::max(stand.most, std::abs(frame.row[3].z - result.plan.standingHeight));
    }
    return stand;
}

void ExpectItStandsAsDrawn(const CarModel& model, const WizardOptions& options = {}) {
    const WizardResult result = Planned(model, options);
    const Stand stand = StandOf(result, 5.0, 6.0);
    ASSERT_TRUE(IsFinite(*stand.rig));
    const double drawn = (result.frame.row[3].z - (result.wheels[0].centre.z - result.wheels[0].radius)) * result.scale * 100.0;
    EXPECT_NEAR(stand.height, drawn, 1.0);
    EXPECT_NEAR(stand.height, result.plan.standingHeight, 0.3);
    EXPECT_LT(stand.most, 0.5);
    EXPECT_NEAR(stand.pitch, 0.0, 0.003);
    EXPECT_NEAR(stand.roll, 0.0, 0.003);
}

TEST(PlannedCarStands, AtItsDrawnHeightOnFourWheels) { ExpectItStandsAsDrawn(Saloon()); }

TEST(PlannedCarStands, AtItsDrawnHeightOnSixWheels) { ExpectItStandsAsDrawn(Lorry(3)); }

TEST(PlannedCarStands, AtItsDrawnHeightOnThreeWheels) {
    CarModel model = Saloon();
    model.parts[1] = WheelPart("wheel_front", {0, 1.5, 0.32}, 0.32, 0.1);
    model.parts.erase(model.parts.begin() + 2);
    ExpectItStandsAsDrawn(model);
}

TEST(PlannedCarStands, AtItsDrawnHeightHoweverSoftItIs) {
    WizardOptions options;
    options.frequency = 1.1;
    options.dampingRatio = 0.5;
    ExpectItStandsAsDrawn(Saloon(), options);
}

TEST(PlannedCarStands, AtItsDrawnHeightAsAHeavyOne) {
    WizardOptions options;
    options.mass = 4000.0;
    ExpectItStandsAsDrawn(Saloon(), options);
}

TEST(PlannedCarStands, AsAToyOfTheSizeThatItsFileTells) {
    WizardOptions options;
    options.unit = 0.1;
    const WizardResult result = Planned(Saloon(), options);
    EXPECT_GT(result.massScale, 1.0);  // a kilogram would be too coarse for it
    const Stand stand = StandOf(result, 0.3, 6.0);
    ASSERT_TRUE(IsFinite(*stand.rig));
    EXPECT_NEAR(stand.height, result.plan.standingHeight, 0.1);
}

TEST(PlannedCarStands, ForAWhileOnTwoWheels) {
    const WizardResult result = Planned(Motorcycle());
    const Stand stand = StandOf(result, 0.0, 1.0);
    ASSERT_TRUE(IsFinite(*stand.rig));
    EXPECT_NEAR(stand.height, result.plan.standingHeight, 1.0);
    EXPECT_NEAR(stand.pitch, 0.0, 0.01);
}

TEST(PlannedCar, SwingsAtTheFrequencyThatItWasPlannedFor) {
    WizardOptions options;
    options.frequency = 1.5;
    options.dampingRatio = 0.05;
    const WizardResult result = Planned(Saloon(), options);
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight}), *rig);
    DriveAlone(*rig, FlatGround(), StockInput(), 3.0);
    const double rest = rig->chassisBody.frame.row[3].z;
    // Pushed down and let go, it passes its rest every half swing.
    rig->chassisBody.momentum.z -= rig->chassisParams.Mass * 30.0;
    RefreshVelocities(*rig);
    CarWorld& world = EmptyWorld();
    world.rigs[0] = rig.get();
    world.carCount = 1;
    std::vector<double> crossings;
    double before = 0.0;
    for (int i = 0; i < 9000; ++i) {
        WorldStep(world, i * kDt, kDt, FlatGround(), kGravity, StockInput());
        const double now = rig->chassisBody.frame.row[3].z - rest;
        if (i > 100 && before < 0.0 && now >= 0.0) crossings.push_back(i * kDt);
        before = now;
    }
    ASSERT_GE(crossings.size(), 2u);
    EXPECT_NEAR(1.0 / (crossings[1] - crossings[0]), 1.5, 0.12);  // tyres give way too, which makes it a little slower
}

/// How fast a car is after four seconds of full throttle.
double SpeedAfterFullThrottle(const CarPlan& plan, double throttleSensitivity, bool isBike) {
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(plan, FrameAt({0, 0, plan.standingHeight}), *rig);
    DriveInput input = StockInput();
    input.throttleSensitivity = float(throttleSensitivity);
    input.throttle = 4.0f;
    input.bikeDrive = isBike ? 1 : 0;
    input.balanceForce = 4.0f;
    DriveAlone(*rig, FlatGround(), input, 4.0);
    return Speed(*rig);
}

TEST(PlannedCar, PullsAwayAsTheStockCarDoes) {
    // The stock car's own setting.
    const double stock = SpeedAfterFullThrottle(StockCarPlan(), 5000.0, false);
    ASSERT_GT(stock, 1000.0);
    WizardOptions heavy, lightWheels, heavyWheels, allDriven, frontDriven;
    heavy.mass = 4000.0;
    lightWheels.wheelMass = 5.0;
    heavyWheels.wheelMass = 60.0;
    allDriven.drivenAxles = std::vector<int>{1, 2};
    frontDriven.drivenAxles = std::vector<int>{1};
    struct Case {
        const char* name;
        CarModel model;
        WizardOptions options;
    };
    for (const Case& c : {Case{"saloon", Saloon(), {}}, Case{"heavy", Saloon(), heavy},
                          Case{"light wheels", Saloon(), lightWheels}, Case{"heavy wheels", Saloon(), heavyWheels},
                          Case{"all driven", Saloon(), allDriven}, Case{"front driven", Saloon(), frontDriven},
                          Case{"three axles", Lorry(3), {}}, Case{"motorcycle", Motorcycle(), {}}}) {
        const WizardResult result = Planned(c.model, c.options);
        const double speed =
            SpeedAfterFullThrottle(result.plan, double(result.advice.throttleSensitivity), result.advice.bikeDrive);
        EXPECT_NEAR(speed / stock, 1.0, 0.2) << c.name;  // measured 0.9 to 1.15
    }
}

TEST(PlannedCar, DrivesOffStraightAhead) {
    const WizardResult result = Planned(Saloon());
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight}), *rig);
    DriveInput input = StockInput();
    input.throttleSensitivity = result.advice.throttleSensitivity;
    input.throttle = 4.0f;
    DriveAlone(*rig, FlatGround(), input, 4.0);
    EXPECT_GT(rig->chassisBody.frame.row[3].y, 700.0);
    EXPECT_LT(std::abs(rig->chassisBody.frame.row[3].x), 30.0);
}

TEST(PlannedBike, StaysUpWhileItIsDriven) {
    const WizardResult result = Planned(Motorcycle());
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight}), *rig);
    DriveInput input = StockInput();
    input.bikeDrive = 1;
    input.balanceForce = result.advice.balanceForce;
    input.throttleSensitivity = result.advice.throttleSensitivity;
    input.throttle = 4.0f;
    DriveAlone(*rig, FlatGround(), input, 5.0);
    ASSERT_TRUE(IsFinite(*rig));
    EXPECT_GT(rig->chassisBody.frame.row[2].z, 0.95);
    EXPECT_GT(Speed(*rig), 250.0);
}

TEST(PlannedBike, LeansIntoItsTurnsHoweverBroadItsTyresAreDrawn) {
    for (const double side : {1.0, -1.0}) {
        CarModel model = Motorcycle();
        for (ModelPart& part : model.parts) {
            // Twice as broad about the wheel's own axle.
            if (part.name.find("wheel") != std::string::npos) part.frame.row[0] = part.frame.row[0] * 2.0;
        }
        const WizardResult result = Planned(model);
        auto rig = std::make_unique<CarRig>();
        MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight}), *rig);
        DriveInput input = StockInput();
        input.bikeDrive = 1;
        input.balanceForce = result.advice.balanceForce;
        input.throttleSensitivity = result.advice.throttleSensitivity;
        input.throttle = 2.0f;
        input.steerTarget = float(side * 0.33);
        DriveAlone(*rig, FlatGround(), input, 4.0);
        ASSERT_TRUE(IsFinite(*rig));
        const DMatrix3& frame = rig->chassisBody.frame;
        EXPECT_GT(frame.row[1].x * side, 0.1);   // turned
        EXPECT_LT(frame.row[0].z * side, -0.1);  // and leans to the same side
        EXPECT_GT(frame.row[2].z, 0.85);
    }
}

TEST(PlannedCar, LiesOnItsBallsUpsideDown) {
    const WizardResult result = Planned(Saloon());
    DMatrix3 frame = IdentityDMatrix3();
    RotateY(frame, 3.1);
    frame.row[3] = {0, 0, 120};
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(result.plan, frame, *rig);
    DriveAlone(*rig, FlatGround(), StockInput(), 3.0);
    ASSERT_TRUE(IsFinite(*rig));
    EXPECT_GT(rig->chassisBody.frame.row[3].z, 20.0);
    EXPECT_LT(Speed(*rig), 20.0);
}

/// Every spring and damper of plans of all sizes stays within what the step takes.
TEST(PlannedCar, IsNoStifferThanTheStepAllows) {
    WizardOptions toy, heavy;
    toy.unit = 0.05;
    heavy.mass = 12000.0;
    struct Case {
        CarModel model;
        WizardOptions options;
    };
    for (const Case& c :
         {Case{Saloon(), {}}, Case{Saloon(), toy}, Case{Saloon(), heavy}, Case{Lorry(3), {}}, Case{Motorcycle(), {}}}) {
        const WizardResult result = Planned(c.model, c.options);
        auto rig = std::make_unique<CarRig>();
        MakePlannedCar(result.plan, FrameAt({0, 0, 0}), *rig);
        const auto checks = StepLimits(rig->chassisParams, std::span(rig->units, std::size_t(rig->unitCount)),
                                       std::span(rig->spheres, std::size_t(rig->sphereCount)), kDt);
        EXPECT_GT(checks.size(), 10u);
        for (const StepCheck& check : checks) EXPECT_LE(check.ratio, check.limit * 1.001) << check.what << " " << check.unit;
    }
}

}  // namespace
}  // namespace tavrik::test
