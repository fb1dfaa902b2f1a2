#include "drive/damper_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "tests/support/test_random.h"

namespace tavrik {
namespace {

using test::Digits;
using test::TestRandom;
using test::TestRounds;
using test::TestSeed;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr float kNanFloat = std::numeric_limits<float>::quiet_NaN();

/// What a new suspension brings along, 40 long, in a scene of centimetres.
DamperSettings NewSuspension() {
    DamperSettings settings;
    settings.gravity = 980.0f;
    settings.rigidityFactor = 1.0f;
    settings.springRigidity = 50000.0f;
    settings.oilDamping = 5000.0f;
    settings.damperShift = 10.0f;
    settings.bufferRigidity = 100000.0f;
    settings.sizeScale = 12.0f;
    return settings;
}

DamperSettings OnAnEmptyRoad(DamperSettings settings) {
    settings.knollRate = settings.holeRate = 0.0f;
    return settings;
}

void RunPasses(DamperModel& model, const DamperSettings& settings, RandomStream& random, int passes) {
    for (int i = 0; i < passes; ++i) StandStep(model, settings, random);
}

std::size_t LiveCount(const DamperModel& model) { return LiveBumps(model.bumps).count; }

/// Whether both have the same bits; two NaNs count as the same.
bool Same(double a, double b) { return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0; }

// The road's profile.

TEST(RoadHeight, EmptyRoadIsFlat) {
    const DamperModel model;
    for (const double x : {-1.9, -1.0, 0.0, 0.5, 1.9}) EXPECT_EQ(RoadHeight(model.bumps, x), 0.0) << x;
}

TEST(RoadHeight, KnollIsOneHighAtItsTop) {
    const RoadBump knoll[] = {{0.3, 1.0}};
    EXPECT_EQ(RoadHeight(knoll, 0.3), 1.0);
}

TEST(RoadHeight, HoleIsAKnollUpsideDown) {
    const RoadBump knoll[] = {{0.3, 1.0}}, hole[] = {{0.3, -1.0}};
    for (double x = 0.2; x < 0.4; x += 0.003) EXPECT_EQ(RoadHeight(hole, x), -RoadHeight(knoll, x)) << Digits(x);
}

TEST(RoadHeight, BumpIsATenthWide) {
    const RoadBump knoll[] = {{0.0, 1.0}};
    EXPECT_GT(RoadHeight(knoll, 0.049), 0.0);
    EXPECT_GT(RoadHeight(knoll, -0.049), 0.0);
    EXPECT_EQ(RoadHeight(knoll, 0.05), 0.0);
    EXPECT_EQ(RoadHeight(knoll, 0.051), 0.0);
    EXPECT_EQ(RoadHeight(knoll, -0.051), 0.0);
}

TEST(RoadHeight, ProfileIsTheSquareOfAParabola) {
    const RoadBump knoll[] = {{0.0, 1.0}};
    for (double x = -0.05; x <= 0.05; x += 0.001) {
        const double v = std::abs(x) / 0.05;
        EXPECT_NEAR(RoadHeight(knoll, x), (1.0 - v * v) * (1.0 - v * v), 1e-15) << Digits(x);
    }
}

TEST(RoadHeight, HalfWayDownABumpTheHeightIsNineSixteenths) {
    const RoadBump knoll[] = {{0.0, 1.0}};
    EXPECT_EQ(RoadHeight(knoll, 0.025), 0.5625);
}

TEST(RoadHeight, BumpsInOnePlaceAddUp) {
    const RoadBump bumps[] = {{0.0, 1.0}, {0.0, 1.0}, {0.025, -1.0}};
    EXPECT_EQ(RoadHeight(bumps, 0.0), 2.0 - 0.5625);
}

TEST(RoadHeight, FreeEntryAddsNothingHoweverHighItWas) {
    const RoadBump bumps[] = {{kFreeBump, 1.0}, {2.03, -1.0}};
    for (const double x : {-1.0, 0.0, 1.0, 1.9}) EXPECT_EQ(RoadHeight(bumps, x), 0.0) << x;
}

TEST(RoadHeight, PlaceThatIsNoNumberHasNoHeight) {
    const RoadBump knoll[] = {{0.0, 1.0}};
    EXPECT_TRUE(std::isnan(RoadHeight(knoll, std::numeric_limits<double>::quiet_NaN())));
}

TEST(LiveBumps, HeightAgreesWithTheWholeTableToTheLastBit) {
    TestRandom random(TestSeed(2026));
    int raised = 0;
    for (int round = 0; round < TestRounds(200); ++round) {
        DamperModel model;
        for (RoadBump& bump : model.bumps) bump = {random.Between(-2.1, 2.2), random.Unit() < 0.5 ? 1.0 : -1.0};
        const LiveBumps live(model.bumps);
        ASSERT_LT(live.count, kRoadBumps);
        for (int i = 0; i < 20; ++i) {
            const double x = random.Between(-1.0, 1.0);
            const double whole = RoadHeight(model.bumps, x);
            ASSERT_TRUE(Same(live.Height(x), whole)) << Digits(x);
            raised += whole != 0.0;
        }
    }
    EXPECT_GT(raised, TestRounds(200) * 10);
}

// The road's motion.

TEST(MoveRoad, EveryBumpInUseMovesAndFreeOnesStay) {
    RoadBump bumps[] = {{-2.0, 1.0}, {kFreeBump, 0.0}, {1.5, -1.0}, {2.01, 1.0}};
    MoveRoad(bumps, 0.25);
    EXPECT_EQ(bumps[0].position, -1.75);
    EXPECT_EQ(bumps[1].position, kFreeBump);
    EXPECT_EQ(bumps[2].position, 1.75);
    EXPECT_EQ(bumps[3].position, 2.01);
}

TEST(MoveRoad, BumpCrossesFourUnitsAndFallsFree) {
    DamperModel model;
    ASSERT_TRUE(AddBump(model.bumps, -2.0, 1.0));
    int passes = 0;
    while (LiveCount(model) > 0 && passes < 1000) {
        MoveRoad(model.bumps, kStandStep);
        ++passes;
    }
    EXPECT_EQ(passes, 122);  // 4 / 0.033 = 121.2
    EXPECT_EQ(RoadHeight(model.bumps, 1.0), 0.0);
}

TEST(MoveRoad, BumpThatComesToTwoExactlyIsFree) {
    RoadBump bumps[] = {{1.5, 1.0}};
    MoveRoad(bumps, 0.5);
    EXPECT_TRUE(AddBump(bumps, -2.0, -1.0));
    EXPECT_EQ(bumps[0].amplitude, -1.0);
}

TEST(AddBump, TakesTheFirstFreeEntry) {
    RoadBump bumps[] = {{0.0, 1.0}, {2.5, 1.0}, {kFreeBump, 0.0}};
    EXPECT_TRUE(AddBump(bumps, -2.0, -1.0));
    EXPECT_EQ(bumps[1].position, -2.0);
    EXPECT_EQ(bumps[1].amplitude, -1.0);
    EXPECT_EQ(bumps[2].position, kFreeBump);
}

TEST(AddBump, DropsTheBumpWhereNoEntryIsFree) {
    DamperModel model;
    for (std::size_t i = 0; i < kRoadBumps; ++i) ASSERT_TRUE(AddBump(model.bumps, 0.001 * double(i), 1.0));
    EXPECT_FALSE(AddBump(model.bumps, -2.0, -1.0));
    for (std::size_t i = 0; i < kRoadBumps; ++i) {
        EXPECT_EQ(model.bumps[i].position, 0.001 * double(i));
        EXPECT_EQ(model.bumps[i].amplitude, 1.0);
    }
}

TEST(SpawnBumps, EachChanceAndEachPlaceDrawsItsOwnNumber) {
    const double sequence[] = {0.0, 0.25, 0.01, 0.75};  // knoll's chance, its place, hole's chance, its place
    RandomStream random;
    random.Feed(sequence);
    DamperModel model;
    SpawnBumps(model.bumps, DamperSettings{}, kStandStep, random);
    ASSERT_EQ(LiveCount(model), 2u);
    EXPECT_EQ(model.bumps[0].position, -2.0 - 0.033 * 0.25);
    EXPECT_EQ(model.bumps[0].amplitude, 1.0);
    EXPECT_EQ(model.bumps[1].position, -2.0 - 0.033 * 0.75);
    EXPECT_EQ(model.bumps[1].amplitude, -1.0);
}

TEST(SpawnBumps, BumpThatDoesNotComeDrawsNoPlace) {
    const double sequence[] = {0.5, 0.01, 0.75};  // knoll's chance, hole's chance, its place
    RandomStream random;
    random.Feed(sequence);
    DamperModel model;
    SpawnBumps(model.bumps, DamperSettings{}, kStandStep, random);
    ASSERT_EQ(LiveCount(model), 1u);
    EXPECT_EQ(model.bumps[0].position, -2.0 - 0.033 * 0.75);
    EXPECT_EQ(model.bumps[0].amplitude, -1.0);
}

TEST(SpawnBumps, BumpThatIsDroppedHasDrawnItsPlace) {
    DamperModel model;
    for (RoadBump& bump : model.bumps) bump.position = 0.0;
    const double sequence[] = {0.0, 0.25, 0.5, 0.9};
    RandomStream random;
    random.Feed(sequence);
    SpawnBumps(model.bumps, DamperSettings{}, kStandStep, random);
    EXPECT_EQ(random.Rand01(), 0.9);
}

TEST(SpawnBumps, ChanceThatEqualsTheNumberDrawnIsNone) {
    const double sequence[] = {double(1.0f) * kStandStep};
    RandomStream random;
    random.Feed(sequence);
    DamperModel model;
    SpawnBumps(model.bumps, DamperSettings{}, kStandStep, random);
    EXPECT_EQ(LiveCount(model), 0u);
}

TEST(SpawnBumps, RatesOfZeroLeaveTheRoadEmpty) {
    RandomStream random(1000);
    DamperModel model;
    for (int i = 0; i < 10'000; ++i) SpawnBumps(model.bumps, OnAnEmptyRoad({}), kStandStep, random);
    EXPECT_EQ(LiveCount(model), 0u);
}

TEST(SpawnBumps, RateThatIsNoNumberLeavesTheRoadEmpty) {
    DamperSettings settings;
    settings.knollRate = settings.holeRate = kNanFloat;
    RandomStream random(1000);
    DamperModel model;
    SpawnBumps(model.bumps, settings, kStandStep, random);
    EXPECT_EQ(LiveCount(model), 0u);
}

TEST(SpawnBumps, RateOfTenComesEveryThirdPass) {
    DamperSettings settings;
    settings.knollRate = settings.holeRate = 10.0f;
    RandomStream random(1000);
    int knolls = 0, holes = 0;
    constexpr int kPasses = 20'000;
    for (int i = 0; i < kPasses; ++i) {
        std::array<RoadBump, 3> bumps;
        SpawnBumps(bumps, settings, kStandStep, random);
        for (const RoadBump& bump : bumps) {
            knolls += bump.amplitude > 0.0;
            holes += bump.amplitude < 0.0;
        }
    }
    EXPECT_NEAR(double(knolls) / kPasses, 0.33, 0.01);  // three times the spread of so many passes
    EXPECT_NEAR(double(holes) / kPasses, 0.33, 0.01);
}

TEST(SpawnBumps, AtMostOneKnollAndOneHoleComeInAPassWhateverTheRate) {
    DamperSettings settings;
    settings.knollRate = settings.holeRate = 1e9f;
    RandomStream random(1000);
    DamperModel model;
    for (std::size_t pass = 1; pass <= 100; ++pass) {
        SpawnBumps(model.bumps, settings, kStandStep, random);
        ASSERT_EQ(LiveCount(model), 2 * pass);
    }
}

// The simulation.

/// The model's law once more, over the whole table and with every conversion written out.
void SimulatePlainly(DamperModel& m, const DamperSettings& f, double dt) {
    const double s = dt * 0.01;
    for (int i = 0; i <= 99; ++i) {
        const double road = RoadHeight(m.bumps, -s * i);
        const double buffer = (road - (m.bodyHeight + m.damperTravel)) * static_cast<double>(f.bufferRigidity);
        m.damperTravel = m.damperTravel +
                         ((buffer / static_cast<double>(f.oilDamping)) * s) * static_cast<double>(std::sqrt(f.rigidityFactor));
        const float shift = f.damperShift / f.sizeScale;
        const double spring = ((road + static_cast<double>(shift)) - m.bodyHeight) * static_cast<double>(f.springRigidity);
        const float weight = f.gravity / f.sizeScale;
        const double push = ((buffer + spring) * static_cast<double>(f.rigidityFactor)) / static_cast<double>(f.mass);
        m.bodyVelocity = m.bodyVelocity + (push - static_cast<double>(weight)) * s;
        m.bodyHeight = m.bodyHeight + m.bodyVelocity * s;
        if (i % 10 != 0) continue;
        for (std::size_t k = kStandHistory - 1; k > 0; --k) m.history[k] = m.history[k - 1];
        m.history[0] = m.bodyHeight;
    }
}

TEST(Simulate, AgreesWithTheLawWrittenPlainlyToTheLastBit) {
    TestRandom random(TestSeed(2026));
    for (int round = 0; round < TestRounds(20); ++round) {
        DamperSettings settings;
        settings.knollRate = settings.holeRate = 10.0f;
        settings.mass = random.Between(100.0f, 2000.0f);
        settings.gravity = random.Between(0.0f, 2000.0f);
        settings.rigidityFactor = random.Between(0.1f, 3.0f);
        settings.springRigidity = random.Between(1e3f, 1e5f);
        settings.oilDamping = random.Between(1e3f, 1e4f);
        settings.damperShift = random.Between(-20.0f, 20.0f);
        settings.bufferRigidity = random.Between(1e3f, 2e5f);
        settings.sizeScale = random.Between(1.0f, 30.0f);
        DamperModel fast;
        RandomStream road(1000);
        for (int pass = 0; pass < 150; ++pass) {
            DamperModel plain = fast;
            MoveRoad(plain.bumps, kStandStep);
            RandomStream plainRoad = road;
            SpawnBumps(plain.bumps, settings, kStandStep, plainRoad);
            SimulatePlainly(plain, settings, kStandStep);

            StandStep(fast, settings, road);

            ASSERT_TRUE(Same(fast.bodyHeight, plain.bodyHeight)) << "round " << round << " pass " << pass;
            ASSERT_TRUE(Same(fast.bodyVelocity, plain.bodyVelocity)) << "round " << round << " pass " << pass;
            ASSERT_TRUE(Same(fast.damperTravel, plain.damperTravel)) << "round " << round << " pass " << pass;
            ASSERT_EQ(fast.history, plain.history) << "round " << round << " pass " << pass;
        }
        ASSERT_GT(LiveCount(fast), 20u);
    }
}

TEST(Simulate, FreeFallIsThatOfGravityInStandUnits) {
    DamperSettings settings;
    settings.gravity = 980.0f;
    settings.oilDamping = 1.0f;
    settings.sizeScale = 20.0f;
    DamperModel model;
    Simulate(model, settings, kStandStep);
    EXPECT_NEAR(model.bodyVelocity, -49.0 * 0.033, 1e-14);
    // The velocity goes first: the sum of 1..100 substeps rather than of 0..99.
    EXPECT_NEAR(model.bodyHeight, -49.0 * 0.00033 * 0.00033 * 5050.0, 1e-14);
}

TEST(Simulate, QuotientsOfSettingsAreSingle) {
    DamperSettings settings;
    settings.oilDamping = 1.0f;
    settings.gravity = 1.0f;
    settings.sizeScale = 3.0f;
    DamperModel model;
    Simulate(model, settings, kStandStep);
    double velocity = 0.0, doubleVelocity = 0.0;
    for (int i = 0; i < 100; ++i) {
        velocity += (0.0 - double(1.0f / 3.0f)) * (kStandStep * 0.01);
        doubleVelocity += (0.0 - 1.0 / 3.0) * (kStandStep * 0.01);
    }
    EXPECT_EQ(model.bodyVelocity, velocity);
    EXPECT_NE(model.bodyVelocity, doubleVelocity);
}

TEST(Simulate, RootOfTheRigidityFactorIsSingle) {
    DamperSettings settings;  // no gravity, no spring: only the damper moves, under the buffer's pull
    settings.rigidityFactor = 2.0f;
    settings.oilDamping = 4.0f;
    settings.bufferRigidity = 8.0f;
    settings.sizeScale = 1.0f;
    settings.mass = std::numeric_limits<float>::infinity();
    DamperModel model;
    model.damperTravel = 1.0;
    Simulate(model, settings, kStandStep);
    double travel = 1.0, doubleTravel = 1.0;
    for (int i = 0; i < 100; ++i) {
        travel += (0.0 - travel) * 8.0 / 4.0 * (kStandStep * 0.01) * double(std::sqrt(2.0f));
        doubleTravel += (0.0 - doubleTravel) * 8.0 / 4.0 * (kStandStep * 0.01) * std::sqrt(2.0);
    }
    EXPECT_EQ(model.damperTravel, travel);
    EXPECT_NE(model.damperTravel, doubleTravel);
}

TEST(Simulate, HistoryTakesTenHeightsNewestFirst) {
    DamperModel model;
    model.history[0] = 7.0;
    model.history[kStandHistory - 1] = 9.0;
    DamperSettings settings;
    settings.gravity = 980.0f;
    settings.oilDamping = 1.0f;
    settings.sizeScale = 20.0f;
    Simulate(model, settings, kStandStep);
    EXPECT_EQ(model.history[10], 7.0);
    EXPECT_EQ(model.history[kStandHistory - 1], 0.0);  // the oldest was dropped
    for (std::size_t k = 0; k < 10; ++k) {
        // The height after substep i = 90 - 10 k is the fall of the first i + 1.
        const double n = 91.0 - 10.0 * double(k);
        EXPECT_NEAR(model.history[k], -49.0 * 0.00033 * 0.00033 * n * (n + 1.0) / 2.0, 1e-14) << k;
    }
    EXPECT_LT(model.bodyHeight, model.history[0]);
}

TEST(Simulate, HistoryHoldsAboutASecond) { EXPECT_NEAR(double(kStandHistory) / 10.0 * kStandStep, 1.0, 0.02); }

TEST(Simulate, KnollUnderTheWheelPushesTheMassUp) {
    DamperSettings settings = NewSuspension();
    settings.gravity = settings.damperShift = 0.0f;
    DamperModel model;
    AddBump(model.bumps, 0.0, 1.0);
    ASSERT_EQ(RoadHeight(model.bumps, 0.0), 1.0);
    Simulate(model, settings, kStandStep);
    EXPECT_GT(model.bodyHeight, 0.0);
    EXPECT_GT(model.damperTravel, 0.0);
}

TEST(Simulate, BumpStillAheadIsFeltAndOneBehindIsNot) {
    DamperSettings settings = NewSuspension();
    settings.gravity = settings.damperShift = 0.0f;
    DamperModel ahead, behind;
    AddBump(ahead.bumps, -0.08, 1.0);  // its foot comes under the wheel during the pass
    AddBump(behind.bumps, 0.06, 1.0);
    Simulate(ahead, settings, kStandStep);
    Simulate(behind, settings, kStandStep);
    EXPECT_GT(ahead.bodyHeight, 0.0);
    EXPECT_EQ(behind.bodyHeight, 0.0);
}

TEST(Simulate, OnAFlatRoadTheMassSettlesWhereTheSpringHoldsGravity) {
    // At rest the oil has given way until the buffer is slack, damperTravel = -bodyHeight, and the spring alone is left:
    //   (shift / size - h) * k * factor / mass = gravity / size
    //   h = (shift - mass * gravity / (k * factor)) / size
    for (const float factor : {0.5f, 1.0f, 2.0f}) {
        DamperSettings settings = OnAnEmptyRoad(NewSuspension());
        settings.rigidityFactor = factor;
        DamperModel model;
        RandomStream random(1000);
        RunPasses(model, settings, random, 1000);
        const double h = (10.0 - 400.0 * 980.0 / (50000.0 * double(factor))) / 12.0;
        EXPECT_NEAR(model.bodyHeight, h, 2e-6) << factor;  // single-precision shift and weight
        EXPECT_NEAR(model.damperTravel, -h, 2e-6) << factor;
        EXPECT_NEAR(model.bodyVelocity, 0.0, 1e-9) << factor;
        EXPECT_NEAR(model.history[kStandHistory - 1], model.history[0], 1e-9) << factor;
    }
}

TEST(Simulate, WithOilThatNeverGivesWaySpringAndBufferHoldGravityTogether) {
    // The damper stays at 0, so both springs pull:
    //   ((shift / size - h) * k - h * kb) * factor / mass = gravity / size
    //   h = (shift * k - mass * gravity / factor) / (size * (k + kb))
    DamperSettings settings = OnAnEmptyRoad(NewSuspension());
    settings.oilDamping = std::numeric_limits<float>::infinity();
    const double h = (10.0 * 50000.0 - 400.0 * 980.0) / (12.0 * 150000.0);
    DamperModel model;
    model.bodyHeight = h;
    RandomStream random(1000);
    for (int pass = 0; pass < 300; ++pass) {
        StandStep(model, settings, random);
        ASSERT_NEAR(model.bodyHeight, h, 1e-6) << pass;
    }
    EXPECT_EQ(model.damperTravel, 0.0);
}

TEST(Simulate, WithOilThatNeverGivesWayTheMassSwingsAtTheSpringsOwnPeriod) {
    // No damping: h swings about its rest with w^2 = (k + kb) * factor / mass, here 375 /s^2, and the scheme keeps the swing.
    DamperSettings settings = OnAnEmptyRoad(NewSuspension());
    settings.gravity = settings.damperShift = 0.0f;
    settings.oilDamping = std::numeric_limits<float>::infinity();
    DamperModel model;
    model.bodyHeight = 1.0;
    RandomStream random(1000);
    constexpr int kPasses = 300;
    RunPasses(model, settings, random, kPasses);
    EXPECT_NEAR(model.bodyHeight, std::cos(std::sqrt(375.0) * kPasses * kStandStep), 0.01);  // measured 3e-3 over 10 s
    for (const double height : model.history) EXPECT_LE(std::abs(height), 1.01);
}

TEST(Simulate, SizeOfZeroMakesShiftAndGravityInfinite) {
    DamperSettings settings = OnAnEmptyRoad(NewSuspension());
    settings.sizeScale = 0.0f;
    settings.damperShift = -10.0f;
    DamperModel model;
    Simulate(model, settings, kStandStep);
    EXPECT_EQ(model.history[9], -kInfinity);    // both pull down without end in the first substep
    EXPECT_TRUE(std::isnan(model.bodyHeight));  // and from there on, infinities stand against each other
}

TEST(Simulate, ShiftOfZeroOverASizeOfZeroIsNoNumber) {
    DamperSettings settings = OnAnEmptyRoad(NewSuspension());
    settings.sizeScale = settings.damperShift = 0.0f;
    DamperModel model;
    Simulate(model, settings, kStandStep);
    EXPECT_TRUE(std::isnan(model.history[9]));
}

TEST(Simulate, HeightThatIsLostStaysLostUnderGoodSettings) {
    for (const auto field : {&DamperSettings::mass, &DamperSettings::oilDamping, &DamperSettings::sizeScale}) {
        DamperSettings settings = OnAnEmptyRoad(NewSuspension());
        settings.*field = 0.0f;
        DamperModel model;
        RandomStream random(1000);
        RunPasses(model, settings, random, 3);
        ASSERT_FALSE(std::isfinite(model.bodyHeight));
        RunPasses(model, OnAnEmptyRoad(NewSuspension()), random, 100);
        EXPECT_FALSE(std::isfinite(model.bodyHeight));
        model = {};
        RunPasses(model, OnAnEmptyRoad(NewSuspension()), random, 3);
        EXPECT_TRUE(std::isfinite(model.bodyHeight));
    }
}

TEST(Simulate, InfiniteHeightsDoNotMoveTheRoad) {
    DamperSettings settings = NewSuspension();
    settings.mass = 0.0f;
    DamperModel lost, sound;
    RandomStream a(1000), b(1000);
    RunPasses(lost, settings, a, 200);
    RunPasses(sound, NewSuspension(), b, 200);
    for (std::size_t i = 0; i < kRoadBumps; ++i) ASSERT_EQ(lost.bumps[i].position, sound.bumps[i].position) << i;
    EXPECT_FALSE(std::isfinite(lost.bodyHeight));
    EXPECT_TRUE(std::isfinite(sound.bodyHeight));
}

TEST(StandStep, MovesTheRoadBeforeABumpAppears) {
    const double sequence[] = {0.0, 0.0, 0.5};  // a knoll at once, no hole; then neither
    RandomStream random;
    random.Feed(sequence);
    DamperModel model;
    StandStep(model, NewSuspension(), random);
    EXPECT_EQ(model.bumps[0].position, -2.0);
    const double none[] = {0.5};
    random.Feed(none);
    StandStep(model, NewSuspension(), random);
    EXPECT_EQ(model.bumps[0].position, -2.0 + 0.033);
}

TEST(StandStep, SameSeedDrawsTheSameRoad) {
    DamperModel first, second;
    RandomStream a(1000), b(1000);
    RunPasses(first, NewSuspension(), a, 500);
    RunPasses(second, NewSuspension(), b, 500);
    EXPECT_EQ(first.history, second.history);
    EXPECT_GT(LiveCount(first), 0u);
}

TEST(StandStep, TenSecondsAreTheSameBitForBit) {
    DamperModel model;
    RandomStream random(1000);
    RunPasses(model, NewSuspension(), random, 303);
    // Only sums, products, quotients and roots go in: the same with every compiler and library.
    EXPECT_EQ(Digits(model.bodyHeight), "0.031475064766373927");
    EXPECT_EQ(Digits(model.damperTravel), "0.12433395151755608");
    EXPECT_EQ(LiveCount(model), 7u);
}

}  // namespace
}  // namespace tavrik
