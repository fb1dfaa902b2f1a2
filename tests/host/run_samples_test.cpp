#include "host/run_samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>
#include <string>

#include "host/telemetry.h"
#include "rig/stock_car.h"
#include "tests/host/driven_car.h"

namespace tavrik::test {
namespace {

constexpr double kKilometresPerUnit = 1e-5;

/// A stock car with one recorded sample at `frame`.
std::unique_ptr<CarRig> CarAt(const DMatrix3& frame, const DPoint3& velocity = {}) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, frame);
    rig->chassisBody.momentum = velocity * rig->chassisParams.Mass;
    rig->Store(0);
    return rig;
}

TEST(RunSamples, LeaveOutThePoseOfTheAssembly) {
    const CarRig& car = DrivenCar();
    const RunSamples run = TakeRunSamples(car);
    EXPECT_EQ(run.readings.size(), std::size_t(car.motion.frames) - 1);
    EXPECT_EQ(run.readings.size(), std::size_t(kDrivenFrames) * 5);
    EXPECT_EQ(run.readings.front().seconds, 0.0);
    EXPECT_EQ(run.readings[5].seconds, 1.0 / 30.0);
}

TEST(RunSamples, TurnHeadingClockwiseFromY) {
    const auto rig = CarAt({{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 0, 51}}});  // the front looks along +X
    EXPECT_NEAR(TakeRunSamples(*rig).readings[0].heading, 90.0, 1e-9);
}

TEST(RunSamples, CallNoseUpAndRightSideDownPositive) {
    const double c = std::cos(0.1), s = std::sin(0.1);
    const auto noseUp = CarAt({{{1, 0, 0}, {0, c, s}, {0, -s, c}, {0, 0, 51}}});
    EXPECT_NEAR(TakeRunSamples(*noseUp).readings[0].pitch, 0.1 * 180 / M_PI, 1e-9);
    const auto rightDown = CarAt({{{c, 0, -s}, {0, 1, 0}, {s, 0, c}, {0, 0, 51}}});
    EXPECT_NEAR(TakeRunSamples(*rightDown).readings[0].roll, 0.1 * 180 / M_PI, 1e-9);
}

TEST(RunSamples, CountSpeedBackwardsAsNegative) {
    const auto rig = CarAt(IdentityDMatrix3(), {5, -1000, 3});
    EXPECT_NEAR(TakeRunSamples(*rig).readings[0].speed, -1000.0, 1e-9);
}

TEST(RunSamples, MeasureNoTravelInThePoseOfTheAssembly) {
    const RunSamples run = TakeRunSamples(*CarAt(IdentityDMatrix3()));
    for (std::size_t w = 0; w < run.wheelNames.size(); ++w) EXPECT_NEAR(run.Wheel(0, w).travel, 0.0, 1e-12);
}

TEST(RunSamples, MeasureTravelAsTheWheelRisesTowardsTheBody) {
    CarRig& rig = *std::make_unique<CarRig>().release();
    const std::unique_ptr<CarRig> owner(&rig);
    MakeStockCar(rig, IdentityDMatrix3());
    rig.wheelBodies[2].frame.row[3].z += 4.0;
    rig.Store(0);
    const RunSamples run = TakeRunSamples(rig);
    EXPECT_NEAR(run.Wheel(0, 2).travel, 4.0, 1e-9);
    EXPECT_NEAR(run.Wheel(0, 1).travel, 0.0, 1e-9);
}

TEST(RunSamples, SpinWheelsForwardOnBothSidesOfACarThatDrivesAhead) {
    const RunSamples run = TakeRunSamples(DrivenCar());
    const RunReading& last = run.readings.back();
    ASSERT_GT(last.speed, 100.0);
    // A wheel of radius 32 that rolls freely turns by about speed / 31; a driven one under throttle slips by a third at most.
    for (std::size_t w = 0; w < 4; ++w) {
        EXPECT_NEAR(run.Wheel(run.readings.size() - 1, w).spin, last.speed / 31.5, 0.4 * last.speed / 31.5) << w;
    }
}

TEST(RunSamples, NameWheelsByWhereTheyAre) {
    const std::vector<std::string> expected = {"front_left", "front_right", "rear_left", "rear_right"};
    EXPECT_EQ(WheelNames(DrivenCar()), expected);
}

TEST(Telemetry, HasOneLineForEachSampleBelowTheNames) {
    const RunSamples run = TakeRunSamples(DrivenCar());
    std::istringstream csv(TelemetryCsv(run, kKilometresPerUnit));
    std::string line;
    std::getline(csv, line);
    const auto commas = std::count(line.begin(), line.end(), ',');
    EXPECT_TRUE(
        line.starts_with("seconds,x_cm,y_cm,z_cm,heading_deg,pitch_deg,roll_deg,speed_kmh,steering_deg,travel_front_left_cm"))
        << line;
    std::size_t lines = 0;
    for (; std::getline(csv, line); ++lines) ASSERT_EQ(std::count(line.begin(), line.end(), ','), commas) << line;
    EXPECT_EQ(lines, run.readings.size());
}

TEST(Telemetry, GivesBackEveryBitOfAPosition) {
    const RunSamples run = TakeRunSamples(DrivenCar());
    std::istringstream csv(TelemetryCsv(run, kKilometresPerUnit));
    std::string line;
    std::getline(csv, line);
    for (const RunReading& reading : run.readings) {
        std::getline(csv, line);
        std::istringstream cells(line);
        std::string seconds, x, y;
        std::getline(cells, seconds, ',');
        std::getline(cells, x, ',');
        std::getline(cells, y, ',');
        ASSERT_EQ(std::stod(x), reading.position.x);
        ASSERT_EQ(std::stod(y), reading.position.y);
    }
}

TEST(DistanceInMetres, AddsUpTheWayOverAllSamples) {
    RunSamples run;
    run.readings.resize(3);
    run.readings[1].position = {300, 400, 0};
    run.readings[2].position = {0, 0, 0};
    EXPECT_NEAR(DistanceInMetres(run, kKilometresPerUnit), 10.0, 1e-12);
}

}  // namespace
}  // namespace tavrik::test
