#include "solver/suspension.h"

#include <gtest/gtest.h>

#include <cmath>

#include "rig/component_values.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

constexpr double kSide = 1.0;  // the unit of most tests is on the right of its car

void AddUnit(CarRig& rig, double side, std::int32_t type) {
    const int i = rig.unitCount++;
    SuspensionUnit& unit = rig.units[i];
    unit = SuspensionUnit{};
    unit.Radius = 30.0;
    unit.Width = 8.0;
    unit.Mass = 20.0;
    unit.Length = 40.0;
    unit.Wheel_Shift = 5.0;
    unit.Top_Stop = 10.0;
    unit.Bottom_Stop = -10.0;
    unit.Ruggedness = 20'000.0;
    unit.Damping = 2'000.0;
    unit.Buffer_Ruggedness = 50'000.0;
    unit.Suspension_Type = type;
    unit.frame = UnitFrameAt(side, {side * 20.0, 80.0, -10.0});
    PlaceWheel(unit, rig.chassisBody, rig.wheelBodies[i], rig.bufferPosition[i]);
}

std::unique_ptr<CarRig> OneWheel(std::int32_t type) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 0});
    AddUnit(*rig, kSide, type);
    return rig;
}

/// All that is derived of the car as it stands.
CarRuntime& Derive(CarRig& rig, const DriveInput& input = {}) {
    CarWorld& world = EmptyWorld();
    RefreshVelocities(rig);
    StepCar(world.cars[0], rig, NoGround(), input, 0.0, world.random);
    return world.cars[0];
}

/// Lowers the chassis, or lifts it, so that the spring's travel grows by `travel`.
void Compress(CarRig& rig, double travel) { rig.chassisBody.frame.row[3].z -= travel; }

void ExpectNear(const DPoint3& a, const DPoint3& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

class EitherSuspension : public testing::TestWithParam<std::int32_t> {};
INSTANTIATE_TEST_SUITE_P(Types, EitherSuspension, testing::Values(kWishbone, kTelescopic),
                         [](const auto& type) { return type.param == kWishbone ? "Wishbone" : "Telescopic"; });

TEST_P(EitherSuspension, APlacedWheelHasNoTravelAndNoError) {
    const auto rig = OneWheel(GetParam());
    const CarRuntime& runtime = Derive(*rig);
    EXPECT_NEAR(runtime.travel[0], 0.0, 1e-13);
    ExpectNear(runtime.lateralError[0], {0, 0, 0}, 1e-13);
    ExpectNear(runtime.alignError[0], {0, 0, 0}, 1e-6);
    ExpectNear(runtime.slideAxis[0], {0, 0, 1}, 1e-15);
    EXPECT_EQ(runtime.radiusSquared[0], 900.0);
}

TEST_P(EitherSuspension, SinkingOntoTheWheelsIsPositiveTravel) {
    const auto rig = OneWheel(GetParam());
    Compress(*rig, 3.0);
    EXPECT_NEAR(Derive(*rig).travel[0], 3.0, 1e-12);
}

TEST_P(EitherSuspension, PreloadPushesAtOnceWithoutTravel) {
    const auto rig = OneWheel(GetParam());
    rig->units[0].Shift = 10.0;
    CarRuntime& runtime = Derive(*rig);
    const double w = 0.25;
    UnitForces(runtime, 0, w);
    EXPECT_NEAR(rig->chassisBody.momentum.z, 10.0 * 20'000.0 * w, 1e-6);
    EXPECT_NEAR(rig->wheelBodies[0].momentum.z, -10.0 * 20'000.0 * w, 1e-6);
}

TEST_P(EitherSuspension, BothSidesGetTheSameImpulse) {
    const auto rig = OneWheel(GetParam());
    Compress(*rig, 2.0);
    rig->chassisBody.momentum = {1e5, -3e5, 2e5};
    rig->chassisBody.angularMomentum = {1e6, 2e6, -5e6};
    rig->wheelBodies[0].angularMomentum = {100.0, 3e4, 500.0};
    CarRuntime& runtime = Derive(*rig);
    RigidBody& chassis = rig->chassisBody;
    RigidBody& wheel = rig->wheelBodies[0];
    const DPoint3 momentum = chassis.momentum + wheel.momentum;
    const auto spin = [&] {
        return chassis.angularMomentum + Cross(chassis.frame.row[3], chassis.momentum) + wheel.angularMomentum +
               Cross(wheel.frame.row[3], wheel.momentum);
    };
    const DPoint3 before = spin();
    UnitForces(runtime, 0, 1e-3);
    ExpectNear(chassis.momentum + wheel.momentum, momentum, 1e-8);
    ExpectNear(spin(), before, 1e-6);
    EXPECT_GT(Length(wheel.momentum), 1.0);
}

TEST_P(EitherSuspension, ASuddenTravelIsMetByTheBufferWhichThenGivesWay) {
    const auto rig = OneWheel(GetParam());
    const SuspensionUnit& unit = rig->units[0];
    Compress(*rig, 3.0);
    CarRuntime& runtime = Derive(*rig);
    const double w = 1e-6;

    UnitForces(runtime, 0, w);
    const double first = Dot(rig->chassisBody.momentum, runtime.slideAxis[0]) / double(float(w));
    EXPECT_NEAR(first, 3.0 * (unit.Ruggedness + unit.Buffer_Ruggedness), 1e-6);

    // After Damping / Buffer_Ruggedness seconds the buffer's share has fallen to 1 / e.
    const double timeConstant = unit.Damping / unit.Buffer_Ruggedness;
    const int passes = int(timeConstant / w) - 1;
    for (int i = 0; i < passes; ++i) UnitForces(runtime, 0, w);
    EXPECT_NEAR((3.0 - rig->bufferPosition[0]) / 3.0, std::exp(-1.0), 1e-4);  // measured 1e-5 off
}

TEST_P(EitherSuspension, StopsAreAsHardAsTheCarIsSolid) {
    for (const double end : {1.0, -1.0}) {
        const auto rig = OneWheel(GetParam());
        Compress(*rig, end * 11.0);
        CarRuntime& runtime = Derive(*rig);
        rig->bufferPosition[0] = runtime.travel[0];
        UnitForces(runtime, 0, 1.0);
        const double spring = runtime.travel[0] * 20'000.0;
        const double stop = end * 1.0 * rig->chassisParams.Solidity;
        // Along the slide axis alone: a wishbone leans here and its arm is too long, which has a force of its own.
        EXPECT_NEAR(Dot(rig->chassisBody.momentum, runtime.slideAxis[0]), spring + stop, 1e-6);
    }
}

TEST_P(EitherSuspension, AStopNeverPullsTowardsItsEnd) {
    for (const double end : {1.0, -1.0}) {
        CarRig* rigs[2];
        std::unique_ptr<CarRig> owners[2];
        for (int k = 0; k < 2; ++k) {
            owners[k] = OneWheel(GetParam());
            rigs[k] = owners[k].get();
            Compress(*rigs[k], end * 5.0);
            rigs[k]->chassisBody.momentum = {0, 0, end * 1e8};  // leaves the stop fast
            // The first car stands just past the stop, the second has none.
            (end > 0.0 ? rigs[k]->units[0].Top_Stop : rigs[k]->units[0].Bottom_Stop) = k == 0 ? end * 4.999 : end * 1e9;
            UnitForces(Derive(*rigs[k]), 0, 1e-4);
        }
        EXPECT_EQ(FirstDifference(*rigs[0], *rigs[1]), "") << end;
    }
}

TEST_P(EitherSuspension, WhereStopsOverlapTheLowerOneHolds) {
    const auto both = OneWheel(GetParam()), lower = OneWheel(GetParam());
    both->units[0].Top_Stop = lower->units[0].Top_Stop = 1e9;
    both->units[0].Top_Stop = -2.0;
    both->units[0].Bottom_Stop = lower->units[0].Bottom_Stop = 2.0;
    for (CarRig* rig : {both.get(), lower.get()}) UnitForces(Derive(*rig), 0, 1.0);
    EXPECT_EQ(FirstDifference(*both, *lower), "");
    EXPECT_LT(both->chassisBody.momentum.z, 0.0);
}

TEST_P(EitherSuspension, ImpulsesCarryTheWeightInSinglePrecisionAndTheDashpotInFull) {
    const auto rig = OneWheel(GetParam());
    rig->units[0].Shift = 1.0;
    CarRuntime& runtime = Derive(*rig);
    // Whole numbers, so that the weight is the only rounding.
    runtime.travel[0] = 2.0;
    runtime.lateralError[0] = {0, 0, 0};
    runtime.slideAxis[0] = {0, 0, 1};
    runtime.driveTorque[0] = {3, 0, 0};
    const double w = kDt * 0.3;
    ASSERT_NE(double(float(w)), w);
    const double torqueBefore = rig->wheelBodies[0].angularMomentum.x;
    UnitForces(runtime, 0, w);
    EXPECT_EQ(rig->chassisBody.momentum.z, (2.0 * 50'000.0 + 3.0 * 20'000.0) * double(float(w)));
    EXPECT_EQ(rig->bufferPosition[0], 2.0 * 50'000.0 / 2'000.0 * w);
    EXPECT_NEAR(rig->wheelBodies[0].angularMomentum.x - torqueBefore, -3.0 * double(float(w)), 1e-18);
}

TEST_P(EitherSuspension, TheBrakeOfAWheelAtRestWorksOneWayByConvention) {
    const auto rig = OneWheel(GetParam());
    CarRuntime& runtime = Derive(*rig);
    runtime.alignError[0] = {0, 0, 0};
    runtime.lateralError[0] = {0, 0, 0};
    runtime.brakeTorque[0] = {7, 0, 0};
    UnitForces(runtime, 0, 1.0);
    EXPECT_EQ(rig->wheelBodies[0].angularMomentum.x, 7.0);
}

TEST_P(EitherSuspension, TheBrakeWorksAgainstTheSpinInFullHoweverSlow) {
    for (const double spin : {1e-9, 50.0, -1e-9, -50.0}) {
        const auto rig = OneWheel(GetParam());
        CarRuntime& runtime = Derive(*rig);
        runtime.alignError[0] = {0, 0, 0};
        runtime.brakeTorque[0] = {7, 0, 0};
        rig->wheelBodies[0].angularVelocity = {spin, 0, 0};
        UnitForces(runtime, 0, 1.0);
        EXPECT_NEAR(rig->wheelBodies[0].angularMomentum.x, spin > 0.0 ? -7.0 : 7.0, 1e-6) << spin;
    }
}

TEST_P(EitherSuspension, AnAxleOutOfLineIsTurnedBack) {
    const auto rig = OneWheel(GetParam());
    RotateZ(rig->wheelBodies[0].frame, 0.01);
    CarRuntime& runtime = Derive(*rig);
    runtime.lateralError[0] = {0, 0, 0};
    UnitForces(runtime, 0, 1e-4);
    EXPECT_LT(rig->wheelBodies[0].angularMomentum.z, 0.0);
}

TEST_P(EitherSuspension, AnUnsteeredAxleStaysOnItsUnitAtAnySteering) {
    const auto rig = OneWheel(GetParam());
    for (const double angle : {-0.6, 0.0, 0.6}) {
        rig->steerValue = angle;
        const CarRuntime& runtime = Derive(*rig);
        ExpectNear(runtime.spinAxis[0], runtime.unitFrame[0].row[2], 0.0);
    }
}

TEST_P(EitherSuspension, SteeredAxlesPointOutwardsAndAimAtTheCentre) {
    auto rig = std::make_unique<CarRig>();
    MakeBareCar(*rig, {0, 0, 0});
    for (const double side : {-1.0, 1.0}) AddUnit(*rig, side, GetParam());
    for (int i = 0; i < 2; ++i) rig->units[i].Steering = 1;
    for (const double angle : {-0.5, -0.01, 0.01, 0.5}) {
        rig->steerValue = angle;
        const CarRuntime& runtime = Derive(*rig);
        double angles[2];
        for (int i = 0; i < 2; ++i) {
            const DPoint3 axle = runtime.spinAxis[i];
            EXPECT_GT(Dot(axle, rig->units[i].frame.row[2]), 0.5) << angle;
            EXPECT_NEAR(axle.z, 0.0, 1e-15);
            const DPoint3 toCentre = runtime.rotationCenter - runtime.hubPoint[i];
            EXPECT_NEAR(axle.x * toCentre.y - axle.y * toCentre.x, 0.0, 1e-9 * Length(toCentre));
            angles[i] = std::abs(std::atan2(axle.y, std::abs(axle.x)));
        }
        // The wheel on the inner side, towards the centre, turns further.
        const bool centreOnRight = runtime.rotationCenter.x > 0.0;
        EXPECT_GT(angles[centreOnRight ? 1 : 0], angles[centreOnRight ? 0 : 1]) << angle;
    }
}

TEST_P(EitherSuspension, SteeringStraightAheadLeavesAxlesParallel) {
    const auto rig = OneWheel(GetParam());
    rig->units[0].Steering = 1;
    ExpectNear(Derive(*rig).spinAxis[0], {1, 0, 0}, 1e-4);
}

TEST(WishboneSuspension, TravelIsTheHeightOfTheArcAndNotItsLength) {
    const auto rig = OneWheel(kWishbone);
    // The hub swings up by 30 degrees on its circle of 40.
    const SuspensionUnit& unit = rig->units[0];
    const DPoint3 hub = unit.frame.row[3] + DPoint3{40.0 * std::cos(0.5), 0.0, 40.0 * std::sin(0.5)};
    rig->wheelBodies[0].frame.row[3] = hub + rig->wheelBodies[0].frame.row[2] * unit.Wheel_Shift;
    const CarRuntime& runtime = Derive(*rig);
    EXPECT_NEAR(runtime.travel[0], 40.0 * std::sin(0.5), 1e-12);
    ExpectNear(runtime.lateralError[0], {0, 0, 0}, 1e-12);
    ExpectNear(runtime.slideAxis[0], {-std::sin(0.5), 0.0, std::cos(0.5)}, 1e-12);
}

TEST(WishboneSuspension, LateralErrorHoldsArmLengthAndSidewaysShift) {
    const auto rig = OneWheel(kWishbone);
    rig->wheelBodies[0].frame.row[3] += DPoint3{2.0, 3.0, 0.0};  // outwards and along the pivot
    ExpectNear(Derive(*rig).lateralError[0], {-2.0, -3.0, 0.0}, 1e-12);
}

TEST(WishboneSuspension, AHubOnThePivotHasNoDirectionAndStaysFinite) {
    const auto rig = OneWheel(kWishbone);
    const DPoint3 pivot = rig->units[0].frame.row[3];
    rig->wheelBodies[0].frame.row[3] = pivot + rig->wheelBodies[0].frame.row[2] * rig->units[0].Wheel_Shift;
    CarRuntime& runtime = Derive(*rig);
    EXPECT_EQ(Length(runtime.slideAxis[0]), 0.0);
    UnitForces(runtime, 0, 1e-4);
    EXPECT_TRUE(IsFinite(*rig));
}

TEST(TelescopicSuspension, LateralErrorIsAllThatIsOffTheLine) {
    const auto rig = OneWheel(kTelescopic);
    rig->wheelBodies[0].frame.row[3] += DPoint3{2.0, 3.0, 4.0};
    const CarRuntime& runtime = Derive(*rig);
    ExpectNear(runtime.lateralError[0], {-2.0, -3.0, 0.0}, 1e-12);
    EXPECT_NEAR(runtime.travel[0], 4.0, 1e-12);
}

TEST(TelescopicSuspension, TakesNoNoticeOfTheArmLength) {
    const auto a = OneWheel(kTelescopic), b = OneWheel(kTelescopic);
    b->units[0].Length = 1e6;
    for (CarRig* rig : {a.get(), b.get()}) {
        Compress(*rig, 2.0);
        UnitForces(Derive(*rig), 0, 1e-4);
    }
    EXPECT_EQ(FirstDifference(*a, *b), "");
}

TEST(TelescopicSuspension, IsEveryTypeThatIsNotAWishbone) {
    const auto a = OneWheel(kTelescopic), b = OneWheel(7);
    for (CarRig* rig : {a.get(), b.get()}) {
        Compress(*rig, 2.0);
        UnitForces(Derive(*rig), 0, 1e-4);
    }
    EXPECT_EQ(FirstDifference(*a, *b), "");
}

TEST(PlaceWheel, PutsTheWheelAtTheEndOfArmAndShift) {
    EXPECT_NEAR(OneWheel(kWishbone)->wheelBodies[0].frame.row[3].x, 20.0 + 40.0 + 5.0, 1e-12);
    EXPECT_NEAR(OneWheel(kTelescopic)->wheelBodies[0].frame.row[3].x, 20.0 + 5.0, 1e-12);
}

TEST(MakeUnit, AFactorOfFourDoublesTheDampingAndQuadruplesBothSprings) {
    SuspensionValues values = DefaultSuspensionValues();
    values.Ruggedness_Factor = 1.0f;
    const SuspensionUnit one = MakeUnit(DefaultWheelValues(), values, IdentityDMatrix3(), 0);
    values.Ruggedness_Factor = 4.0f;
    const SuspensionUnit four = MakeUnit(DefaultWheelValues(), values, IdentityDMatrix3(), 0);
    EXPECT_DOUBLE_EQ(four.Damping, 2.0 * one.Damping);
    EXPECT_DOUBLE_EQ(four.Ruggedness, 4.0 * one.Ruggedness);
    EXPECT_DOUBLE_EQ(four.Buffer_Ruggedness, 4.0 * one.Buffer_Ruggedness);
}

}  // namespace
}  // namespace tavrik::test
