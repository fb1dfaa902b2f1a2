// The two drivers in the hands' place: their searches, and the car under them.

#include "drive/target_driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <set>

#include "drive/bicycle_step.h"
#include "drive/rollout.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"
#include "tests/drive/drive_on_hills.h"
#include "tests/drive/session_fixture.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::TestRandom;

constexpr std::int32_t kW = 87, kA = 65, kD = 68;

/// Answers by a function, and keeps the ticks that it was asked for.
class Timetable final : public TargetPositions {
 public:
    explicit Timetable(std::function<Point3(TimeValue)> at) : at_(std::move(at)) {}
    mutable std::vector<TimeValue> asked;
    Point3 PositionAt(TimeValue tick) const override {
        asked.push_back(tick);
        return at_(tick);
    }

 private:
    std::function<Point3(TimeValue)> at_;
};

Timetable StandingAt(const Point3& place) {
    return Timetable([place](TimeValue) { return place; });
}

PolyShape CircleRoad(float radius, const Point3& centre = {0, 0, 0}, int points = 200) {
    PolyLine line;
    line.closed = true;
    for (int i = 0; i < points; ++i) {
        const double angle = 6.283185307179586 * i / points;
        line.points.push_back(centre + Point3{radius * float(std::cos(angle)), radius * float(std::sin(angle)), 0});
    }
    return {{line}};
}

// ---- The drivers

class TargetDriverTest : public testing::Test, protected test::SessionParts {
 protected:
    TargetDriverTest() {
        Set(MasterParam::Driving_Type, 3);
        session.ReadSettings();
    }

    /// Puts the car on its wheels' height at a place, turned left by `heading`, rolling forwards.
    void Place(const Point3& place, double heading, double speed, double steer = 0.0) {
        CarRig& rig = *master.rig;
        const DPoint3 front{-std::sin(heading), std::cos(heading), 0};
        DMatrix3 frame{{{front.y, -front.x, 0}, front, {0, 0, 1}, FromPoint3(place)}};
        frame.row[3].z = StockCarStandingHeight();
        MakeStockCar(rig, frame);
        rig.chassisBody.momentum = front * speed * rig.chassisParams.Mass;
        for (std::int32_t i = 0; i < rig.unitCount; ++i) rig.wheelBodies[i].momentum = front * speed * rig.units[i].Mass;
        rig.InitMotion();
        rig.motion.steer[0].steerValue = rig.steerValue = steer;
    }
    float A() const { return LargestSteering(session.input); }
    float L() const { return float(master.rig->chassisParams.Length); }
    float W() const { return float(master.rig->chassisParams.Width); }
    void ToTarget(const TargetPositions& target) { DriveToTarget(session, &target); }
    DriveInput& input() { return session.input; }
};

/// Both drivers once more, as one would first write them down.
struct PlainDrivers {
    static float Cubed(int k) { return float(k) * 0.02f * (float(k) * 0.02f) * (float(k) * 0.02f); }

    static DriveInput ToTarget(DriveSession& session, const TargetPositions& target) {
        DriveInput input = session.input;
        const TimeValue t = session.core().GetTime();
        const Matrix3 frame = session.rig->GetTM(ComponentType::Chassis, 0, t);
        const float steer = session.rig->GetSteer(t), A = input.rudderAngle / 180.0f * 3.1415927f;
        Point3 targets[100];
        for (int i = 0; i < 100; ++i) targets[i] = target.PositionAt(t + i * session.forecast / 50);
        const float L = float(session.rig->chassisParams.Length), W = float(session.rig->chassisParams.Width);
        const float D = Dot(frame.row[1], session.rig->GetVelocity(t)) * float(session.forecast) / 4800.0f;
        const float K = W * L / (D * D);
        float best = 1e30f, cBest = 0.0f;
        for (int k = -50; k <= 50; ++k) {
            Matrix3 copy = frame;
            const float cost = RolloutToTarget(targets, copy, steer + K * Cubed(k), D, L);
            if (best > cost) {
                best = cost;
                cBest = Cubed(k);
            }
        }
        input.steerTarget = steer + cBest * A * 0.1f;
        input.steerTarget = std::min(std::max(input.steerTarget, -A), A);
        best = 1e30f;
        int kBest = 0;
        for (int k = -50; k <= 50; ++k) {
            Matrix3 copy = frame;
            const float cost = RolloutToTarget(targets, copy, steer, D + L * (float(k) * 0.02f) * 0.5f, L);
            if (best > cost) {
                best = cost;
                kBest = k;
            }
        }
        input.throttle = float(kBest) * 0.02f * 5.0f;
        return input;
    }

    static DriveInput AlongPath(DriveSession& session) {
        DriveInput input = session.input;
        const TimeValue t = session.core().GetTime();
        const Matrix3 frame = session.rig->GetTM(ComponentType::Chassis, 0, t);
        const float steer = session.rig->GetSteer(t), A = input.rudderAngle / 180.0f * 3.1415927f;
        const float L = float(session.rig->chassisParams.Length), W = float(session.rig->chassisParams.Width);
        float D = std::abs(Dot(frame.row[1], session.rig->GetVelocity(t))) * float(session.forecast) / 4800.0f;
        D = std::max(D, 2.0f * L);
        const float K = W * L / (D * D);
        double best = 1e30;
        float cBest = 0.0f;
        for (int k = -50; k <= 50; ++k) {
            Matrix3 copy = frame;
            const double cost = RolloutAlongPath(session.path, copy, steer + K * Cubed(k), D, L);
            if (best > cost) {
                best = cost;
                cBest = Cubed(k);
            }
        }
        input.steerTarget = steer + cBest * 0.1f * A;
        input.steerTarget = std::min(std::max(input.steerTarget, -A), A);
        return input;
    }
};

TEST_F(TargetDriverTest, DrivesToATargetLikeThePlainSearchBitForBit) {
    TestRandom random(test::TestSeed(4));
    std::set<float> steering, throttles;
    for (int i = 0; i < test::TestRounds(60); ++i) {
        const Point3 place = random.PointIn({{-500, -500, 0}, {500, 500, 0}});
        const double heading = random.Between(-3.0, 3.0), speed = random.Between(-300.0, 2000.0);
        Place(place, heading, speed, random.Between(-0.6, 0.6));
        // Now and then beside the car's own way, so that the best candidate isn't always one at the end of the range.
        const Point3 along{float(-std::sin(heading) * speed), float(std::cos(heading) * speed), 0};
        const float apart = i % 2 == 0 ? 50.0f : 1000.0f;
        const Point3 from = place + random.PointIn({{-apart, -apart, 0}, {apart, apart, 0}});
        const Point3 velocity = along + random.PointIn({{-apart, -apart, 0}, {apart, apart, 0}});
        const Timetable target([&](TimeValue tick) { return from + velocity * (float(tick) / 4800.0f); });
        session.forecast = random.Int(0, 9600);
        const DriveInput plain = PlainDrivers::ToTarget(session, target);
        ToTarget(target);
        ASSERT_EQ(test::Bits(input()), test::Bits(plain));
        steering.insert(input().steerTarget);
        throttles.insert(input().throttle);
    }
    EXPECT_GT(steering.size(), 30u);
    EXPECT_GT(throttles.size(), 10u);
}

TEST_F(TargetDriverTest, FindsTheCandidateOnWhoseWayTheTargetGoes) {
    for (int wanted = -50; wanted <= 50; ++wanted) {
        if (std::abs(wanted) < 6) continue;  // the nearest to straight ahead go the same way, but for the last bits
        input().rudderAngle = 30.0f + float(wanted) * 0.3f;
        Place({10, 20, 0}, 0.3, 800.0, 0.05);
        const float D =
            Dot(master.rig->GetTM(ComponentType::Chassis, 0, 0).row[1], master.rig->GetVelocity(0)) * 4800.0f / 4800.0f;
        const float K = W() * L() / (D * D), c = PlainDrivers::Cubed(wanted);
        Matrix3 stepped = master.rig->GetTM(ComponentType::Chassis, 0, 0);
        const Matrix3 frame = stepped;
        BicycleStep(stepped, L(), 0.05f + K * c, D * 0.02f);
        const Matrix3 delta = stepped * Inverse(frame);
        std::vector<Point3> way;
        for (Matrix3 at = frame; way.size() < 100;) way.push_back((at = delta * at).row[3]);
        ToTarget(Timetable([&](TimeValue tick) { return way[std::size_t(tick / 96)]; }));
        EXPECT_EQ(input().steerTarget, 0.05f + c * A() * 0.1f) << wanted;
    }
}

TEST_F(TargetDriverTest, DrivesAlongAPathLikeThePlainSearchBitForBit) {
    TestRandom random(test::TestSeed(5));
    std::set<float> corrections;
    for (int i = 0; i < test::TestRounds(100); ++i) {
        // Now and then nearly along the road, so that the best candidate isn't always one at the end of the range.
        const float radius = random.Between(500.0f, 3000.0f), angle = random.Between(-3.0f, 3.0f);
        const float apart = i % 2 == 0 ? random.Between(-20.0f, 20.0f) : random.Between(-1500.0f, 1500.0f);
        const double aside = i % 2 == 0 ? random.Between(-0.05, 0.05) : random.Between(-3.0, 3.0);
        session.path.BuildFromPolyShape(CircleRoad(radius, {0, 0, 0}, 150));
        input().rudderAngle = random.Between(5.0f, 60.0f);
        const Point3 place{(radius + apart) * std::cos(angle), (radius + apart) * std::sin(angle), 0};
        Place(place, double(angle) + aside, random.Between(-2000.0, 2000.0), random.Between(-0.3, 0.3));
        const DriveInput plain = PlainDrivers::AlongPath(session);
        DriveAlongPath(session);
        ASSERT_EQ(test::Bits(input()), test::Bits(plain));
        const float correction = std::abs(input().steerTarget - master.rig->GetSteer(0)) / A();
        if (correction > 1e-6f && correction < 0.099f) corrections.insert(correction);
    }
    EXPECT_GT(corrections.size(), 4u);
}

TEST_F(TargetDriverTest, WithoutATargetTheInputStays) {
    Place({0, 0, 0}, 0.0, 500.0, 0.1);
    input().steerTarget = 0.3f;
    input().throttle = 2.0f;
    const std::string before = test::Bits(input());
    DriveToTarget(session, nullptr);
    EXPECT_EQ(test::Bits(input()), before);
}

TEST_F(TargetDriverTest, CarThatIsNotLockedIsLeftAlone) {
    master.rig->ResetMotion();
    const std::string before = test::Bits(input());
    ToTarget(StandingAt({0, 100, 0}));
    DriveAlongPath(session);
    EXPECT_EQ(test::Bits(input()), before);
}

TEST_F(TargetDriverTest, LooksAtTheTargetAHundredTimesOverTwiceTheForecast) {
    Place({0, 0, 0}, 0.0, 500.0);
    host.time = 320;
    session.forecast = 4810;
    const Timetable target = StandingAt({0, 1000, 0});
    ToTarget(target);
    ASSERT_EQ(target.asked.size(), 100u);
    EXPECT_EQ(target.asked[0], 320);
    EXPECT_EQ(target.asked[1], 320 + 96);     // 4810 / 50 = 96.2
    EXPECT_EQ(target.asked[7], 320 + 673);    // 33670 / 50 = 673.4
    EXPECT_EQ(target.asked[99], 320 + 9523);  // 476190 / 50 = 9523.8
}

TEST_F(TargetDriverTest, TurnsTowardsAStandingTargetAheadByATenthOfTheLockAtMost) {
    for (const float side : {-400.0f, 400.0f}) {
        Place({0, 0, 0}, 0.0, 1000.0);
        ToTarget(StandingAt({side, 900, 0}));
        EXPECT_GT(input().steerTarget * side, 0.0f);
        EXPECT_LE(std::abs(input().steerTarget), A() * 0.1f);
    }
}

TEST_F(TargetDriverTest, StaysWithinTheLock) {
    for (const double steer : {-2.0, 2.0}) {
        Place({0, 0, 0}, 0.0, 1000.0, steer);
        ToTarget(StandingAt({float(steer) * 1000.0f, 500, 0}));
        EXPECT_EQ(input().steerTarget, steer > 0 ? A() : -A());
        session.path.BuildFromPolyShape(CircleRoad(500));
        DriveAlongPath(session);
        EXPECT_EQ(input().steerTarget, steer > 0 ? A() : -A());
    }
}

TEST_F(TargetDriverTest, TakesTheSpeedWhoseWayStaysNearestToAStandingTarget) {
    // Straight ahead: of all ways about 500 units the sum of squares about a target is a parabola of the way.
    Place({0, 0, 0}, 0.0, 500.0);
    const float y = 340.0f;
    ToTarget(StandingAt({0, y, 0}));
    double best = 1e30;
    int kBest = 0;
    for (int k = -50; k <= 50; ++k) {
        const double way = 500.0 + double(L()) * k * 0.01;
        double cost = 0.0;
        for (int i = 1; i <= 50; ++i) cost += (way * i / 50.0 - double(y)) * (way * i / 50.0 - double(y));
        if (best > cost) {
            best = cost;
            kBest = k;
        }
    }
    ASSERT_GT(kBest, -50);
    ASSERT_LT(kBest, 50);
    EXPECT_FLOAT_EQ(input().throttle, float(kBest) * 0.1f);
}

TEST_F(TargetDriverTest, AsksForMoreThrottleTheFartherAndForLessWhereTheTargetIsBehind) {
    Place({0, 0, 0}, 0.0, 500.0);
    ToTarget(StandingAt({0, 5000, 0}));
    EXPECT_FLOAT_EQ(input().throttle, 5.0f);
    ToTarget(StandingAt({0, -5000, 0}));
    EXPECT_FLOAT_EQ(input().throttle, -5.0f);
}

TEST_F(TargetDriverTest, BrakeAndHandBrakeAreNotTouched) {
    Place({0, 0, 0}, 0.0, 500.0);
    input().brake = 1.5f;
    input().handBrake = 1;
    ToTarget(StandingAt({0, -5000, 0}));
    EXPECT_EQ(input().brake, 1.5f);
    EXPECT_EQ(input().handBrake, 1);
}

TEST_F(TargetDriverTest, TargetBehindTurnsTheWheelsByATenthOfTheLockAtMost) {
    for (const float side : {-300.0f, 300.0f}) {
        Place({0, 0, 0}, 0.0, 400.0, 0.05);
        ToTarget(StandingAt({side, -1000, 0}));
        EXPECT_NE(input().steerTarget, 0.05f);
        EXPECT_LE(std::abs(input().steerTarget - 0.05f), A() * 0.1f * 1.000001f);
        EXPECT_GT((input().steerTarget - 0.05f) * side, 0.0f);  // the side where the arc comes nearest
    }
}

TEST_F(TargetDriverTest, CarAtRestKeepsItsSteeringAndIsSetMoving) {
    Place({0, 0, 0}, 0.0, 0.0, 0.125);
    ToTarget(StandingAt({800, 3000, 0}));
    EXPECT_EQ(input().steerTarget, 0.125f);
    EXPECT_FLOAT_EQ(input().throttle, 5.0f);
}

TEST_F(TargetDriverTest, WithoutForecastAllSamplesAreOneAndTheSteeringStays) {
    Place({0, 0, 0}, 0.0, 900.0, 0.125);
    session.forecast = 0;
    const Timetable target([](TimeValue tick) { return Point3{0, float(tick), 0}; });
    host.time = 640;
    ToTarget(target);
    for (const TimeValue tick : target.asked) EXPECT_EQ(tick, 640);
    EXPECT_EQ(input().steerTarget, 0.125f);
    EXPECT_GT(input().throttle, 0.0f);
}

TEST_F(TargetDriverTest, WithoutForecastAPathIsStillLookedAtTwoLengthsAhead) {
    session.path.BuildFromPolyShape(CircleRoad(1500.0f));
    Place({1400, 0, 0}, 0.2, 900.0);
    session.forecast = 0;
    DriveAlongPath(session);
    const float without = input().steerTarget;
    Place({1400, 0, 0}, 0.2, 0.0);  // at rest the way is two lengths as well
    session.forecast = 4800;
    DriveAlongPath(session);
    EXPECT_EQ(input().steerTarget, without);
    EXPECT_NE(without, 0.0f);
}

TEST_F(TargetDriverTest, BackwardsAPathIsLookedAtAheadAllTheSame) {
    session.path.BuildFromPolyShape(CircleRoad(3000.0f));
    Place({3000, 0, 0}, 0.02, 1500.0, 0.01);
    DriveAlongPath(session);
    const float forwards = input().steerTarget;
    Place({3000, 0, 0}, 0.02, -1500.0, 0.01);
    DriveAlongPath(session);
    EXPECT_EQ(input().steerTarget, forwards);
    Place({3000, 0, 0}, 0.02, 0.0, 0.01);
    DriveAlongPath(session);
    EXPECT_NE(input().steerTarget, forwards);  // the speed does count
}

TEST_F(TargetDriverTest, OfEqualCostsTheLeftmostWins) {
    // A chassis without width tries the same steering a hundred times.
    Place({0, 0, 0}, 0.0, 500.0);
    master.rig->chassisParams.Width = 0.0;
    ToTarget(StandingAt({300, 1000, 0}));
    EXPECT_EQ(input().steerTarget, 0.0f + -1.0f * A() * 0.1f);
}

TEST_F(TargetDriverTest, WithoutAFieldTheLeftmostCandidateWins) {
    Place({0, 0, 0}, 0.0, 500.0, 0.25);
    DriveAlongPath(session);
    EXPECT_EQ(input().steerTarget, 0.25f + -1.0f * 0.1f * A());
}

TEST_F(TargetDriverTest, PathFarAwayStillOrdersTheCandidates) {
    for (const float side : {-1.0f, 1.0f}) {
        session.path.BuildFromPolyShape(CircleRoad(1000.0f, {side * 400'000.0f, 100'000, 0}));
        Place({0, 0, 0}, 0.0, 2000.0);
        DriveAlongPath(session);
        EXPECT_GT(session.path.FieldAt({0, 0, 0}), 0.0);
        EXPECT_LT(session.path.FieldAt({0, 0, 0}), 1e-9);
        EXPECT_GT(input().steerTarget * side, 0.0f);
    }
}

TEST_F(TargetDriverTest, SteersBackToAStraightRoadFromBothSides) {
    session.path.BuildFromPolyShape({{{{{0, -5000, 0}, {0, 5000, 0}}, false}}});
    for (const float side : {-200.0f, 200.0f}) {
        Place({side, 0, 0}, 0.0, 1000.0);
        DriveAlongPath(session);
        EXPECT_LT(input().steerTarget * side, 0.0f);
    }
}

// ---- Whole runs

/// Drives for real: the fixture's car in the shared world on level ground.
class SelfDriving : public TargetDriverTest {
 protected:
    SelfDriving() {
        host.range = {0, 16000 * 10};
        Set(MasterParam::Throttle_Sensitivity, 3000.0f);
        Set(MasterParam::Rudder_Sensitivity, 30.0f);  // at the first value of 5 the wheels follow the search too slowly
        master.target.alongPath = [](DriveSession& driven) { DriveAlongPath(driven); };
    }
    Point3 CarAt() const { return master.rig->GetTM(ComponentType::Chassis, 0, host.time).row[3]; }
    float Speed() const { return Length(master.rig->GetVelocity(host.time)); }
    void Begin() {
        session.OpenDrive();
        session.StartDrive();
        ASSERT_NE(session.running, 0u);
    }
};

TEST_F(SelfDriving, CarStaysOnACircularRoad) {
    constexpr float kRadius = 2500.0f;
    master.target.isShape = true;
    session.path.BuildFromPolyShape(CircleRoad(kRadius));
    Place({kRadius + 150.0f, 0, 0}, 0.0, 0.0);
    Begin();
    ASSERT_EQ(input().drivingType, kDriveAlongPath);
    float worst = 0.0f;
    double turned = 0.0;
    Point3 before = CarAt();
    for (int frame = 0; frame < 300; ++frame) {
        Speed() < 700.0f ? KeyDown(kW) : KeyUp(kW);
        Tick();
        const Point3 at = CarAt();
        turned += std::asin(double(Cross(before, at).z) / double(Length(before) * Length(at)));
        before = at;
        if (frame > 90) worst = std::max(worst, std::abs(std::hypot(at.x, at.y) - kRadius));
    }
    EXPECT_LT(worst, 200.0f);
    EXPECT_GT(turned, 1.5);
}

TEST_F(SelfDriving, KeysOverruleThePathForAsLongAsTheyAreHeld) {
    master.target.isShape = true;
    session.path.BuildFromPolyShape(CircleRoad(2500.0f));
    Place({2500.0f, 0, 0}, 0.0, 0.0);
    Begin();
    Tick();
    const float byPath = input().steerTarget;
    EXPECT_LE(std::abs(byPath), A() * 0.1f);
    EXPECT_EQ(input().steerRatio, 0.0f);
    EXPECT_EQ(input().throttle, 0.0f);
    KeyDown(kA);
    Tick();
    EXPECT_EQ(input().steerTarget, -A());
    EXPECT_EQ(input().steerRatio, -1.0f);
    KeyDown(kD);
    Tick();
    EXPECT_EQ(input().steerTarget, A());
    EXPECT_EQ(input().steerRatio, 1.0f);
    KeyUp(kA);
    KeyUp(kD);
    Tick();
    EXPECT_NE(std::abs(input().steerTarget), A());
    EXPECT_EQ(input().steerRatio, 0.0f);
}

TEST_F(SelfDriving, CarFollowsAMovingTarget) {
    // Sets out gently beside the car, then goes round a wide bend at 7 m/s.
    const Timetable target([](TimeValue tick) {
        const double s = double(tick) / 4800.0, way = s < 4.0 ? 87.5 * s * s : 1400.0 + 700.0 * (s - 4.0);
        const double angle = way / 3000.0;
        return Point3{float(-3000.0 + 3000.0 * std::cos(angle)), float(3000.0 * std::sin(angle) + 300.0), 0};
    });
    master.target.toTarget = [&](DriveSession& driven) { DriveToTarget(driven, &target); };
    Place({0, 0, 0}, 0.0, 0.0);
    Begin();
    ASSERT_EQ(input().drivingType, kDriveToTarget);
    float last = 0.0f, worst = 0.0f;
    for (int frame = 0; frame < 300; ++frame) {
        Tick();
        const Point3 apart = CarAt() - target.PositionAt(host.time);
        last = std::hypot(apart.x, apart.y);
        if (frame > 150) worst = std::max(worst, last);
    }
    EXPECT_LT(worst, 500.0f);
    EXPECT_LT(last, 300.0f);
    EXPECT_GT(Length(CarAt()), 3000.0f);
}

}  // namespace
}  // namespace tavrik
