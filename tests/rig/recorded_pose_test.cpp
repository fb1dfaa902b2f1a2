#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "rig/car_rig.h"
#include "rig/recorded_motion.h"
#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::Digits;
using test::SameBits;
using test::TestRandom;

constexpr TimeValue kFirstTick = std::numeric_limits<TimeValue>::min(), kLastTick = std::numeric_limits<TimeValue>::max();

constexpr ComponentType kTypes[] = {ComponentType::Chassis,   ComponentType::Suspension, ComponentType::Wheel,
                                    ComponentType::UnitFrame, ComponentType::Hitch,      ComponentType::Sphere};

/// How many components of that kind a car of test::RandomCar has.
int CountOf(ComponentType type) { return type == ComponentType::Chassis ? 1 : type == ComponentType::Sphere ? 2 : 3; }

// The slow, plain way: numbers in arrays, and no operation of the maths records.

struct Frame64 {
    double at[4][3];
};
struct Frame32 {
    float at[4][3];
};

Frame64 Plain(const DMatrix3& m) {
    Frame64 result;
    for (int r = 0; r < 4; ++r) {
        result.at[r][0] = m.row[r].x;
        result.at[r][1] = m.row[r].y;
        result.at[r][2] = m.row[r].z;
    }
    return result;
}

Frame64 PlainProduct(const Frame64& a, const Frame64& b) {
    Frame64 result;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) {
            double sum = a.at[r][0] * b.at[0][c] + a.at[r][1] * b.at[1][c] + a.at[r][2] * b.at[2][c];
            if (r == 3) sum += b.at[3][c];
            result.at[r][c] = sum;
        }
    }
    return result;
}

Frame32 PlainPose(const CarRig& rig, std::size_t f, ComponentType type, std::size_t index) {
    const Frame64 chassis = Plain(rig.motion.chassis[f].frame);
    Frame64 pose = chassis;
    if (type == ComponentType::Wheel) pose = Plain(rig.motion.wheels[index][f].frame);
    if (type == ComponentType::UnitFrame) pose = PlainProduct(Plain(rig.units[index].frame), chassis);
    if (type == ComponentType::Hitch) pose = PlainProduct(Plain(rig.hitches[index].frame), chassis);
    if (type == ComponentType::Sphere) pose = PlainProduct(Plain(rig.spheres[index].frame), chassis);
    if (type == ComponentType::Suspension) {
        const Frame64 fixed = PlainProduct(Plain(rig.units[index].frame), chassis);
        pose = Plain(rig.motion.wheels[index][f].frame);
        for (int c = 0; c < 3; ++c) pose.at[0][c] = fixed.at[0][c];
        const double* const x = pose.at[0];
        const double* const z = pose.at[2];
        pose.at[1][0] = x[1] * z[2] - x[2] * z[1];
        pose.at[1][1] = x[2] * z[0] - x[0] * z[2];
        pose.at[1][2] = x[0] * z[1] - x[1] * z[0];
    }
    Frame32 result;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) result.at[r][c] = float(pose.at[r][c]);
    }
    return result;
}

struct PlainPlace {
    std::size_t frame;
    bool last;
    float t;
};

std::int64_t Wrapped(std::int64_t ticks) { return ticks > kLastTick ? ticks - (std::int64_t(1) << 32) : ticks; }

PlainPlace PlainLocate(const RecordedMotion& motion, TimeValue tick) {
    std::size_t i = 0;
    while (i + 1 < motion.times.size() && motion.times[i + 1] <= tick) ++i;
    if (i + 1 == motion.times.size()) return {i, true, 0.0f};
    const std::int64_t from = motion.times[i], to = motion.times[i + 1];
    return {i, false, float(Wrapped(tick - from)) / float(Wrapped(to - from))};
}

Frame32 PlainSample(const CarRig& rig, TimeValue tick, ComponentType type, std::size_t index) {
    const PlainPlace place = PlainLocate(rig.motion, tick);
    const Frame32 a = PlainPose(rig, place.frame, type, index);
    if (place.last) return a;
    const Frame32 b = PlainPose(rig, place.frame + 1, type, index);
    Frame32 result;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) result.at[r][c] = b.at[r][c] * place.t + a.at[r][c] * (1.0f - place.t);
    }
    for (int r = 0; r < 3; ++r) {
        float* const v = result.at[r];
        const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        for (int c = 0; c < 3; ++c) v[c] /= length;
    }
    return result;
}

Matrix3 ToMatrix(const Frame32& frame) {
    Matrix3 result;
    for (int r = 0; r < 4; ++r) result.row[r] = {frame.at[r][0], frame.at[r][1], frame.at[r][2]};
    return result;
}

std::string Text(const Matrix3& m) {
    std::string text;
    for (const Point3& row : m.row) text += Digits(row) + "\n";
    return text;
}

float RowDistance(const Point3& a, const Point3& b) { return Length(a - b); }

TEST(ComponentPose, AgreesBitForBitWithPlainSums) {
    TestRandom random(test::TestSeed(71));
    const auto rig = test::RandomRun(random, 50, 0, 32);
    for (int f = 0; f < 50; ++f) {
        for (const ComponentType type : kTypes) {
            for (int index = 0; index < CountOf(type); ++index) {
                const Matrix3 pose = ComponentPose(*rig, f, type, index);
                const Matrix3 expected = ToMatrix(PlainPose(*rig, std::size_t(f), type, std::size_t(index)));
                ASSERT_TRUE(SameBits(pose, expected)) << "kind " << int(type) << "\n" << Text(pose) << Text(expected);
            }
        }
    }
}

TEST(SuspensionPose, TakesPlaceAndAxleFromTheWheelAndItsXAxisFromTheBody) {
    TestRandom random(test::TestSeed(72));
    const auto rig = test::RandomRun(random, 2, 0, 32);
    const Matrix3 pose = ComponentPose(*rig, 1, ComponentType::Suspension, 2);
    const Matrix3 wheel = ComponentPose(*rig, 1, ComponentType::Wheel, 2);
    const Matrix3 fixed = ComponentPose(*rig, 1, ComponentType::UnitFrame, 2);
    EXPECT_TRUE(SameBits(pose.row[0], fixed.row[0]));
    EXPECT_TRUE(SameBits(pose.row[2], wheel.row[2]));
    EXPECT_TRUE(SameBits(pose.row[3], wheel.row[3]));
}

TEST(SuspensionPose, IsLeftHanded) {
    const auto rig = std::make_unique<CarRig>();  // wheel and body both at the identity
    rig->unitCount = 1;
    rig->InitMotion();
    const Matrix3 pose = ComponentPose(*rig, 0, ComponentType::Suspension, 0);
    EXPECT_EQ(pose.row[1].x, 0.0f);
    EXPECT_EQ(pose.row[1].y, -1.0f);  // X x Z
    EXPECT_EQ(pose.row[1].z, 0.0f);
}

TEST(SuspensionPose, DoesNotSpinWithItsWheel) {
    TestRandom random(test::TestSeed(73));
    const auto rig = test::RandomRun(random, 2, 0, 32);
    const Matrix3 before = ComponentPose(*rig, 1, ComponentType::Suspension, 0);
    // A spinning wheel changes its first two axes only.
    rig->motion.wheels[0][1].frame.row[0] = random.Vector(1.0);
    rig->motion.wheels[0][1].frame.row[1] = random.Vector(1.0);
    EXPECT_TRUE(SameBits(ComponentPose(*rig, 1, ComponentType::Suspension, 0), before));
}

TEST(Sample, OneFrameAnswersForAllTimeWithTheAssembledPose) {
    TestRandom random(test::TestSeed(74));
    const auto rig = test::RandomCar(random);
    rig->InitMotion();
    for (const TimeValue tick : {kFirstTick, -1, 0, 1, 4800, kLastTick}) {
        for (const ComponentType type : kTypes) {
            const Matrix3 expected = ToMatrix(PlainPose(*rig, 0, type, 0));
            EXPECT_TRUE(SameBits(rig->motion.Sample(tick, *rig, type, 0), expected)) << tick << " kind " << int(type);
        }
    }
}

TEST(Sample, TickBeyondTheEndGivesTheLastFrameAsItIs) {
    TestRandom random(test::TestSeed(75));
    const auto rig = test::RandomRun(random, 5, 0, 32);
    const Matrix3 last = ToMatrix(PlainPose(*rig, 4, ComponentType::Wheel, 1));
    for (const TimeValue tick : {96, 97, 10'000, kLastTick}) {
        EXPECT_TRUE(SameBits(rig->motion.Sample(tick, *rig, ComponentType::Wheel, 1), last)) << tick;
    }
    EXPECT_NE(Length(last.row[0]), 1.0f);  // nothing is normalised there
}

TEST(Sample, TickOfAFrameGivesItsPoseWithAxesOfLengthOne) {
    TestRandom random(test::TestSeed(76));
    const auto rig = test::RandomRun(random, 5, 0, 32);
    const Matrix3 pose = ComponentPose(*rig, 2, ComponentType::Wheel, 1);
    const Matrix3 shown = rig->motion.Sample(32, *rig, ComponentType::Wheel, 1);
    for (int r = 0; r < 3; ++r) {
        EXPECT_EQ(RowDistance(shown.row[r], Normalize(pose.row[r])), 0.0f) << r;
        EXPECT_GT(RowDistance(shown.row[r], pose.row[r]), 0.01f) << r;  // the frames are scaled
    }
    EXPECT_EQ(RowDistance(shown.row[3], pose.row[3]), 0.0f);
}

TEST(Sample, BlendAgreesBitForBitWithPlainSums) {
    TestRandom random(test::TestSeed(77));
    const auto rig = test::RandomRun(random, 60, 100, 32);
    int wrapped = 0, extrapolated = 0, between = 0, beyond = 0;
    for (int round = 0; round < test::TestRounds(5'000); ++round) {
        const TimeValue tick = random.Int(-500, 2100);
        const ComponentType type = kTypes[random.Int(0, 5)];
        const int index = random.Int(0, CountOf(type) - 1);
        const Matrix3 shown = rig->motion.Sample(tick, *rig, type, index);
        const Matrix3 expected = ToMatrix(PlainSample(*rig, tick, type, std::size_t(index)));
        ASSERT_TRUE(SameBits(shown, expected)) << "tick " << tick << " kind " << int(type) << "\n"
                                               << Text(shown) << Text(expected);
        ++(tick < 0 ? extrapolated : tick < 100 ? wrapped : tick < rig->motion.times.back() ? between : beyond);
    }
    EXPECT_GT(extrapolated, 100);
    EXPECT_GT(wrapped, 20);
    EXPECT_GT(between, 1000);
    EXPECT_GT(beyond, 20);
}

TEST(Sample, BlendsUnevenFramesByTheirOwnDistance) {
    TestRandom random(test::TestSeed(78));
    const auto rig = test::RandomCar(random);
    rig->InitMotion();
    TimeValue tick = -3000;
    for (int f = 0; f < 40; ++f) {
        test::RandomState(random, *rig);
        rig->Store(tick += random.Int(1, 200));
    }
    for (int round = 0; round < test::TestRounds(2'000); ++round) {
        const TimeValue asked = random.Int(-3000, tick);
        const Matrix3 expected = ToMatrix(PlainSample(*rig, asked, ComponentType::Suspension, 3));
        ASSERT_TRUE(SameBits(rig->motion.Sample(asked, *rig, ComponentType::Suspension, 3), expected)) << asked;
    }
}

TEST(Sample, TickFromZeroOnShowsTheFirstDrivenFrameNotTheAssembly) {
    TestRandom random(test::TestSeed(79));
    const auto rig = test::RandomRun(random, 3, 160, 32);
    const Matrix3 first = ComponentPose(*rig, 1, ComponentType::Chassis, 0);
    for (const TimeValue tick : {0, 1, 80, 159}) {
        const Matrix3 shown = rig->motion.Sample(tick, *rig, ComponentType::Chassis, 0);
        for (int r = 0; r < 3; ++r)
            EXPECT_LT(RowDistance(shown.row[r], Normalize(first.row[r])), 1e-6f) << tick;  // measured 1e-7
        EXPECT_LT(RowDistance(shown.row[3], first.row[3]), 1e-3f) << tick;  // measured 2e-4, 1000 units from the origin
    }
}

TEST(Sample, NegativeTickReachesBackBeyondTheAssembly) {
    TestRandom random(test::TestSeed(80));
    const auto rig = test::RandomRun(random, 3, 160, 32);
    const Matrix3 a = ComponentPose(*rig, 0, ComponentType::Chassis, 0);
    const Matrix3 b = ComponentPose(*rig, 1, ComponentType::Chassis, 0);
    for (const TimeValue tick : {-1, -80, -4800}) {
        const Matrix3 shown = rig->motion.Sample(tick, *rig, ComponentType::Chassis, 0);
        const Point3 place = a.row[3] * 2.0f - b.row[3];
        EXPECT_LT(RowDistance(shown.row[3], place), 0.01f) << tick;  // measured 2e-3, 1000 units from the origin
        const Point3 axis = Normalize(a.row[0] * 2.0f - b.row[0]);
        EXPECT_LT(RowDistance(shown.row[0], axis), 1e-5f) << tick;  // measured 3e-7
    }
}

TEST(Sample, AfterARewindATickInTheForgottenGapShowsTheLastFrame) {
    TestRandom random(test::TestSeed(81));
    const auto rig = test::RandomRun(random, 10, 0, 32);
    rig->Rewind(96);
    const Matrix3 last = ComponentPose(*rig, 4, ComponentType::Chassis, 0);
    EXPECT_TRUE(SameBits(rig->motion.Sample(96 + 16, *rig, ComponentType::Chassis, 0), last));
}

TEST(Sample, AxesHaveLengthOneBetweenFrames) {
    TestRandom random(test::TestSeed(82));
    const auto rig = test::RandomRun(random, 20, 0, 32);
    for (TimeValue tick = 0; tick < 18 * 32; ++tick) {
        const Matrix3 shown = rig->motion.Sample(tick, *rig, ComponentType::Sphere, 1);
        for (int r = 0; r < 3; ++r) ASSERT_NEAR(Length(shown.row[r]), 1.0f, 2e-7f) << tick;  // measured 1.2e-7
    }
}

TEST(Sample, AxisThatVanishesStaysZero) {
    const auto rig = std::make_unique<CarRig>();
    rig->InitMotion();
    rig->Store(0);
    rig->chassisBody.frame.row[0] = {-1, 0, 0};
    rig->Store(32);
    const Matrix3 shown = rig->motion.Sample(16, *rig, ComponentType::Chassis, 0);
    EXPECT_EQ(Length(shown.row[0]), 0.0f);
    EXPECT_EQ(Length(shown.row[1]), 1.0f);
}

TEST(VelocityAt, IsZeroOnTheAssemblyAlone) {
    const auto rig = std::make_unique<CarRig>();
    rig->InitMotion();
    for (const TimeValue tick : {kFirstTick, 0, kLastTick}) {
        EXPECT_EQ(Length(rig->motion.VelocityAt(tick, *rig)), 0.0f) << tick;
    }
}

TEST(VelocityAt, DividesMomentumByTheBodysMassInDoublePrecision) {
    TestRandom random(test::TestSeed(83));
    const auto rig = test::RandomRun(random, 5, 0, 32);
    const DPoint3 p = rig->motion.chassis[4].momentum;
    const double mass = rig->chassisParams.Mass;
    const Point3 expected = {float(p.x / mass), float(p.y / mass), float(p.z / mass)};
    EXPECT_TRUE(SameBits(rig->motion.VelocityAt(10'000, *rig), expected));
}

TEST(VelocityAt, BlendAgreesBitForBitWithPlainSums) {
    TestRandom random(test::TestSeed(84));
    const auto rig = test::RandomRun(random, 60, 100, 32);
    const auto plain = [&](std::size_t f, double DPoint3::*axis) {
        return float(rig->motion.chassis[f].momentum.*axis / rig->chassisParams.Mass);
    };
    for (int round = 0; round < test::TestRounds(3'000); ++round) {
        const TimeValue tick = random.Int(-500, 1900);
        const PlainPlace place = PlainLocate(rig->motion, tick);
        ASSERT_FALSE(place.last);
        const auto blend = [&](double DPoint3::*axis) {
            return plain(place.frame + 1, axis) * place.t + plain(place.frame, axis) * (1.0f - place.t);
        };
        const Point3 expected = {blend(&DPoint3::x), blend(&DPoint3::y), blend(&DPoint3::z)};
        ASSERT_TRUE(SameBits(rig->motion.VelocityAt(tick, *rig), expected)) << tick;
    }
}

TEST(SteerAt, BlendAgreesBitForBitWithPlainSums) {
    TestRandom random(test::TestSeed(85));
    const auto rig = test::RandomRun(random, 60, 100, 32);
    for (int round = 0; round < test::TestRounds(3'000); ++round) {
        const TimeValue tick = random.Int(-500, 1900);
        const PlainPlace place = PlainLocate(rig->motion, tick);
        ASSERT_FALSE(place.last);
        const float a = float(rig->motion.steer[place.frame].steerValue);
        const float b = float(rig->motion.steer[place.frame + 1].steerValue);
        const float expected = a * (1.0f - place.t) + b * place.t;
        ASSERT_TRUE(SameBits(rig->motion.SteerAt(tick), expected)) << tick;
    }
}

TEST(SteerAt, LastFrameAnswersForEveryLaterTick) {
    TestRandom random(test::TestSeed(86));
    const auto rig = test::RandomRun(random, 5, 0, 32);
    const float last = float(rig->steerValue);
    EXPECT_EQ(rig->motion.SteerAt(96), last);
    EXPECT_EQ(rig->motion.SteerAt(kLastTick), last);
}

}  // namespace
}  // namespace tavrik
