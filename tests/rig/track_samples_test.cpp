#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "rig/car_rig.h"
#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;
using test::TestRandom;

std::vector<TrackSample> TrackSamplesOf(const CarRig& rig) {
    std::vector<TrackSample> samples(std::size_t(rig.TrackSampleCount()));
    samples.resize(std::size_t(rig.FillTrackSamples(samples)));
    return samples;
}

/// A car of one wheel, 30 in radius and 10 wide, and no recording yet.
std::unique_ptr<CarRig> OneWheel() {
    auto rig = std::make_unique<CarRig>();
    rig->unitCount = 1;
    rig->units[0].Radius = 30.0;
    rig->units[0].Width = 10.0;
    rig->units[0].wheelHandle = 4711;
    return rig;
}

void MoveWheelTo(CarRig& rig, double x, TimeValue tick) {
    rig.wheelBodies[0].frame.row[3].x = x;
    rig.Store(tick);
}

/// The same rule with nothing but numbers. `bits` tells which bits of a frame's number choose the corner.
std::vector<TrackSample> PlainTrackSamples(const CarRig& rig, unsigned bits) {
    std::vector<TrackSample> samples;
    const RecordedMotion& motion = rig.motion;
    for (std::size_t u = 0; u < std::size_t(motion.unitCount); ++u) {
        const float r = float(rig.units[u].Radius), w = float(rig.units[u].Width);
        std::size_t from = 0;
        for (std::size_t f = 1; f < std::size_t(motion.frames); ++f) {
            const unsigned corner = unsigned(f) & bits;
            const float p[3] = {corner & 1 ? r : -r, corner & 2 ? r : -r, corner & 4 ? w : -w};
            const Matrix3 a = ToMatrix3(motion.wheels[u][from].frame), b = ToMatrix3(motion.wheels[u][f].frame);
            float squared = 0.0f;
            for (std::size_t c = 0; c < 3; ++c) {
                const float there = a.row[0][c] * p[0] + a.row[1][c] * p[1] + a.row[2][c] * p[2] + a.row[3][c];
                const float here = b.row[0][c] * p[0] + b.row[1][c] * p[1] + b.row[2][c] * p[2] + b.row[3][c];
                squared += (here - there) * (here - there);
            }
            if (!(squared > (r * 0.5f) * (r * 0.5f))) continue;
            const std::int32_t side = rig.units[u].frame.row[2].y < 0.0 ? 1 : 0;
            samples.push_back({a, b, r, w, side, motion.times[f - 1], motion.times[f], rig.units[u].wheelHandle});
            from = f;
        }
    }
    return samples;
}

bool SameSample(const TrackSample& a, const TrackSample& b) {
    return SameBits(a.from, b.from) && SameBits(a.to, b.to) && a.radius == b.radius && a.width == b.width &&
           a.sideFlag == b.sideFlag && a.fromTick == b.fromTick && a.toTick == b.toTick && a.wheelHandle == b.wheelHandle;
}

bool SameSamples(const std::vector<TrackSample>& a, const std::vector<TrackSample>& b) {
    return std::ranges::equal(a, b, SameSample);
}

TEST(TrackSampleCount, IsZeroWithoutARecording) {
    const auto rig = OneWheel();
    EXPECT_EQ(rig->TrackSampleCount(), 0);
    EXPECT_EQ(rig->FillTrackSamples({}), 0);
}

TEST(TrackSampleCount, IsZeroForTheAssemblyAlone) {
    const auto rig = OneWheel();
    rig->InitMotion();
    EXPECT_EQ(rig->TrackSampleCount(), 0);
    EXPECT_EQ(rig->FillTrackSamples({}), 0);
}

TEST(TrackSampleCount, HasAPlaceForEachStepOfEachWheel) {
    TestRandom random(test::TestSeed(91));
    EXPECT_EQ(test::RandomRun(random, 11, 0, 32)->TrackSampleCount(), 10 * 4);
}

TEST(FillTrackSamples, WritesOneSegmentForAWheelThatMovesFarEnough) {
    const auto rig = OneWheel();
    rig->InitMotion();
    MoveWheelTo(*rig, 16.0, 160);

    const auto samples = TrackSamplesOf(*rig);

    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].from.row[3].x, 0.0f);
    EXPECT_EQ(samples[0].to.row[3].x, 16.0f);
    EXPECT_EQ(samples[0].radius, 30.0f);
    EXPECT_EQ(samples[0].width, 10.0f);
    EXPECT_EQ(samples[0].fromTick, kBeforeAllTime);
    EXPECT_EQ(samples[0].toTick, 160);
    EXPECT_EQ(samples[0].wheelHandle, 4711u);
}

TEST(FillTrackSamples, ExactlyHalfARadiusIsNotFarEnough) {
    const auto rig = OneWheel();
    rig->InitMotion();
    MoveWheelTo(*rig, 15.0, 160);
    EXPECT_TRUE(TrackSamplesOf(*rig).empty());
}

TEST(FillTrackSamples, ShortStepsAddUpFromTheLastSegment) {
    const auto rig = OneWheel();
    rig->InitMotion();
    for (int f = 1; f <= 6; ++f) MoveWheelTo(*rig, 6.0 * f, 32 * f);

    const auto samples = TrackSamplesOf(*rig);

    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[0].from.row[3].x, 0.0f);
    EXPECT_EQ(samples[0].to.row[3].x, 18.0f);
    EXPECT_EQ(samples[1].from.row[3].x, 18.0f);
    EXPECT_EQ(samples[1].to.row[3].x, 36.0f);
}

TEST(FillTrackSamples, MergedSegmentStartsAtTheTickOfTheFrameBeforeItsEnd) {
    const auto rig = OneWheel();
    rig->InitMotion();
    for (int f = 1; f <= 6; ++f) MoveWheelTo(*rig, 6.0 * f, 32 * f);

    const auto samples = TrackSamplesOf(*rig);

    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[1].fromTick, 160);  // not 96, where its way began
    EXPECT_EQ(samples[1].toTick, 192);
}

TEST(FillTrackSamples, SideFlagIsSetWhereTheAxleLooksBackwards) {
    const auto rig = OneWheel();
    rig->unitCount = 3;
    const double axleY[] = {-0.1, 0.0, 0.1};
    for (int u = 0; u < 3; ++u) {
        rig->units[u] = rig->units[0];
        rig->units[u].frame.row[2] = {1.0, axleY[u], 0.0};
    }
    rig->InitMotion();
    for (int u = 0; u < 3; ++u) rig->wheelBodies[u].frame.row[3].x = 100.0;
    rig->Store(160);

    const auto samples = TrackSamplesOf(*rig);

    ASSERT_EQ(samples.size(), 3u);
    EXPECT_EQ(samples[0].sideFlag, 1);
    EXPECT_EQ(samples[1].sideFlag, 0);
    EXPECT_EQ(samples[2].sideFlag, 0);
}

TEST(FillTrackSamples, CornerIsChosenByTheThreeLowBitsOfTheFrameNumber) {
    // The wheel turns about a diagonal of its box by a quarter each frame. The two corners on the diagonal, 0 and 7, stay where
    // they are; every other corner moves far.
    const auto rig = OneWheel();
    rig->InitMotion();
    const DPoint3 d = Normalize(DPoint3{30.0, 30.0, 10.0});
    const DPoint3 axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int f = 1; f <= 20; ++f) {
        const double c = f % 2 == 0 ? (f % 4 == 0 ? 1.0 : -1.0) : 0.0, s = f % 2 == 1 ? (f % 4 == 1 ? 1.0 : -1.0) : 0.0;
        for (int r = 0; r < 3; ++r) {
            const DPoint3& e = axes[r];
            rig->wheelBodies[0].frame.row[r] = e * c + Cross(d, e) * s + d * (Dot(d, e) * (1.0 - c));
        }
        rig->Store(f);
    }

    std::vector<TimeValue> ends;
    for (const TrackSample& sample : TrackSamplesOf(*rig)) ends.push_back(sample.toTick);

    EXPECT_EQ(ends, (std::vector<TimeValue>{1, 2, 3, 4, 5, 6, /*7, 8,*/ 9, 10, 11, 12, 13, 14, /*15, 16,*/ 17, 18, 19, 20}));
}

TEST(FillTrackSamples, AgreesWithAPlainReckoning) {
    TestRandom random(test::TestSeed(92));
    int written = 0, merged = 0, cornerMattered = 0;
    for (int round = 0; round < test::TestRounds(100); ++round) {
        const auto rig = test::RandomCar(random);
        for (int u = 0; u < 4; ++u) rig->wheelBodies[u].frame = random.Turn();
        rig->InitMotion();
        for (int f = 1; f <= 60; ++f) {
            for (int u = 0; u < 4; ++u) {
                DMatrix3& frame = rig->wheelBodies[u].frame;
                const DPoint3 place = frame.row[3] + random.Vector(5.0);
                RotateX(frame, random.Between(-0.3, 0.3));
                RotateZ(frame, random.Between(-0.3, 0.3));
                frame.row[3] = place;
            }
            rig->Store(f * 32);
        }
        const auto samples = TrackSamplesOf(*rig);
        ASSERT_TRUE(SameSamples(samples, PlainTrackSamples(*rig, 7))) << "round " << round;
        written += int(samples.size());
        merged += rig->TrackSampleCount() - int(samples.size());
        cornerMattered += !SameSamples(samples, PlainTrackSamples(*rig, 3));
    }
    EXPECT_GT(written, 1000);
    EXPECT_GT(merged, 1000);
    EXPECT_GT(cornerMattered, 50);
}

}  // namespace
}  // namespace tavrik
