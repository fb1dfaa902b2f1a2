#include "rig/recording_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

using test::SameBits;
using test::TestRandom;

// One wheel, room for two frames; the second was driven and then forgotten. Scenes that hold such an image exist, so it is
// never to be made anew: what reads and writes it has to change back.
constexpr const char* kOldImage =
    // clang-format off
    "01000000 01000000 01000000 02000000 "  // valid, unitCount, frames, capacity
    "00000080 20000000 "  // times
    "0000000000000000 0000000000000000 000000000000d03f 0000000000001cc0 "  // steer
    "000000000000f03f 0000000000000040 0000000000000840 0000000000001040 0000000000001440 0000000000001840 "  // chassis[0]
    "0000000000001c40 0000000000002040 0000000000002240 0000000000002440 0000000000002640 0000000000002840 "
    "0000000000002a40 0000000000002c40 0000000000002e40 0000000000003040 0000000000003140 0000000000003240 "
    "0000000000405940 0000000000805940 0000000000c05940 0000000000005a40 0000000000405a40 0000000000805a40 "  // chassis[1]
    "0000000000c05a40 0000000000005b40 0000000000405b40 0000000000805b40 0000000000c05b40 0000000000005c40 "
    "0000000000405c40 0000000000805c40 0000000000c05c40 0000000000005d40 0000000000405d40 0000000000805d40 "
    "0000000000206940 0000000000406940 0000000000606940 0000000000806940 0000000000a06940 0000000000c06940 "  // wheels[0][0]
    "0000000000e06940 0000000000006a40 0000000000206a40 0000000000406a40 0000000000606a40 0000000000806a40 "
    "0000000000a06a40 0000000000c06a40 0000000000e06a40 0000000000006b40 0000000000206b40 0000000000406b40 "
    "0000000000d07240 0000000000e07240 0000000000f07240 0000000000007340 0000000000107340 0000000000207340 "  // wheels[0][1]
    "0000000000307340 0000000000407340 0000000000507340 0000000000607340 0000000000707340 0000000000807340 "
    "0000000000907340 0000000000a07340 0000000000b07340 0000000000c07340 0000000000d07340 0000000000e07340 "
    "0000000000000000 0000000000000440 "  // buffers[0]
    // clang-format on
    ;

std::string FromHex(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        bytes += char(std::stoi(text.substr(i, 2), nullptr, 16));
        i += 2;
    }
    return bytes;
}

std::string OldImage() { return FromHex(kOldImage); }

/// The eighteen numbers from `first` on, in the order of the image.
MotionSample CountedSample(int first) {
    double numbers[18];
    for (int i = 0; i < 18; ++i) numbers[i] = first + i;
    MotionSample sample;
    std::memcpy(&sample, numbers, sizeof sample);
    return sample;
}

/// The recording that the old image was made of.
RecordedMotion OldMotion() {
    RecordedMotion motion;
    motion.valid = 1;
    motion.unitCount = 1;
    motion.capacity = 2;
    motion.frames = 1;
    const auto fill = [](auto& values, const auto& first, const auto& forgotten) {
        values.GrowRoom(2);
        values.push_back(first);
        values.push_back(forgotten);
        values.SetFrames(1);
    };
    fill(motion.times, std::numeric_limits<TimeValue>::min(), 32);
    fill(motion.steer, SteerSample{}, SteerSample{0.25, -7.0});
    fill(motion.chassis, CountedSample(1), CountedSample(101));
    fill(motion.wheels[0], CountedSample(201), CountedSample(301));
    fill(motion.buffers[0], 0.0, 2.5);
    return motion;
}

/// Writes one of the numbers of an image's head, or a tick behind it.
void Put(std::string& image, std::size_t place, std::int32_t value) { std::memcpy(&image[place * 4], &value, 4); }
constexpr std::size_t kValidPlace = 0, kUnitCountPlace = 1, kFramesPlace = 2, kCapacityPlace = 3, kTimesPlace = 4;

/// The old image with one number changed.
std::string OldImageWith(std::size_t place, std::int32_t value) {
    std::string image = OldImage();
    Put(image, place, value);
    return image;
}

/// A recording of some frames that has been rewound, so that it has a bit of everything.
RecordedMotion SomeMotion(std::uint64_t seed = 81) {
    TestRandom random(test::TestSeed(seed));
    auto rig = test::RandomRun(random, 12, 0, 32);
    rig->Rewind(200);
    return rig->motion;
}

/// Reads `image` over a live recording. What is refused must tell why and leave that as it was; what is accepted must give the
/// same bytes again.
bool Reads(const std::string& image, std::string* told = nullptr) {
    RecordedMotion motion = SomeMotion();
    const std::string before = SaveRecording(motion);
    std::string problem;
    const bool read = LoadRecording(image, motion, problem);
    EXPECT_EQ(read, problem.empty()) << problem;
    EXPECT_TRUE(SaveRecording(motion) == (read ? image : before)) << image.size() << " bytes";
    if (told != nullptr) *told = problem;
    return read;
}

std::string Refusal(const std::string& image) {
    std::string problem;
    EXPECT_FALSE(Reads(image, &problem));
    return problem;
}

TEST(RecordingBytes, ACarWithoutRecordingIsFourZeroBytes) {
    EXPECT_EQ(SaveRecording(RecordedMotion()), std::string(4, '\0'));
    RecordedMotion released = SomeMotion();
    released.Release();
    EXPECT_EQ(SaveRecording(released), std::string(4, '\0'));
}

TEST(RecordingBytes, FourZeroBytesUnlock) {
    RecordedMotion motion = SomeMotion();
    std::string problem;
    EXPECT_TRUE(LoadRecording(std::string(4, '\0'), motion, problem));
    EXPECT_FALSE(motion.valid);
    EXPECT_EQ(motion.frames, 0);
    EXPECT_EQ(motion.chassis.Room().size(), 0u);
    EXPECT_TRUE(LoadRecording(std::string(4, '\0'), motion, problem));  // and once more does nothing
    EXPECT_FALSE(motion.valid);
}

TEST(RecordingBytes, ImageIsByteForByteTheOldOne) { EXPECT_TRUE(SaveRecording(OldMotion()) == OldImage()); }

TEST(RecordingBytes, OldImageIsReadFieldByField) {
    ASSERT_EQ(OldImage().size(), 648u);
    RecordedMotion motion;
    std::string problem;
    ASSERT_TRUE(LoadRecording(OldImage(), motion, problem)) << problem;
    EXPECT_EQ(motion.valid, 1);
    EXPECT_EQ(motion.unitCount, 1);
    EXPECT_EQ(motion.frames, 1);
    EXPECT_EQ(motion.capacity, 2);
    EXPECT_EQ(motion.times, (std::vector<TimeValue>{std::numeric_limits<TimeValue>::min()}));
    EXPECT_EQ(motion.steer.Room()[1].steerValue, 0.25);
    EXPECT_EQ(motion.steer.Room()[1].steerSpare, -7.0);
    EXPECT_EQ(motion.chassis[0].frame.row[0].x, 1.0);
    EXPECT_EQ(motion.chassis[0].frame.row[1].y, 5.0);
    EXPECT_EQ(motion.chassis[0].frame.row[3].z, 12.0);
    EXPECT_EQ(motion.chassis[0].momentum.x, 13.0);
    EXPECT_EQ(motion.chassis[0].angularMomentum.z, 18.0);
    EXPECT_TRUE(SameBits(motion.wheels[0].Room()[1], CountedSample(301)));
    EXPECT_EQ(motion.buffers[0].Room()[1], 2.5);
}

TEST(RecordingBytes, ALockedCarOfFourWheelsSavesAFullStoreOfItsOneFrame) {
    TestRandom random(test::TestSeed(82));
    const auto rig = test::RandomCar(random, 4);
    rig->InitMotion();
    const std::string image = SaveRecording(rig->motion);
    EXPECT_EQ(image.size(), 386'016u);

    RecordedMotion loaded;
    std::string problem;
    ASSERT_TRUE(LoadRecording(image, loaded, problem)) << problem;
    EXPECT_EQ(loaded.frames, 1);
    EXPECT_EQ(loaded.capacity, 500);
    EXPECT_EQ(loaded.unitCount, 4);
    EXPECT_TRUE(SameBits(loaded.wheels[3][0].frame, rig->wheelBodies[3].frame));
}

TEST(RecordingBytes, RoomThatWasNeverUsedIsSavedAsSamplesAtRestAtTheOrigin) {
    TestRandom random(test::TestSeed(83));
    const auto rig = test::RandomRun(random, 501, 0, 32);  // has grown once
    const RecordedMotion& motion = rig->motion;
    ASSERT_EQ(motion.capacity, 1000);
    for (std::size_t f = 501; f < 1000; ++f) {
        ASSERT_EQ(motion.times.Room()[f], 0) << f;
        ASSERT_TRUE(SameBits(motion.steer.Room()[f], SteerSample{})) << f;
        ASSERT_TRUE(SameBits(motion.chassis.Room()[f], MotionSample{})) << f;
        ASSERT_TRUE(SameBits(motion.wheels[3].Room()[f], MotionSample{})) << f;
        ASSERT_TRUE(SameBits(motion.buffers[3].Room()[f], 0.0)) << f;
    }
}

TEST(RecordingBytes, ARewindChangesNothingInTheImageButTheNumberOfFrames) {
    TestRandom random(test::TestSeed(84));
    const auto rig = test::RandomRun(random, 30, 0, 32);
    std::string expected = SaveRecording(rig->motion);
    rig->Rewind(320);
    Put(expected, kFramesPlace, 12);
    EXPECT_TRUE(SaveRecording(rig->motion) == expected);
}

TEST(RecordingBytes, ForgottenFramesComeBackAsForgotten) {
    TestRandom random(test::TestSeed(85));
    const auto rig = test::RandomRun(random, 30, 0, 32);
    rig->Rewind(320);
    RecordedMotion loaded;
    std::string problem;
    ASSERT_TRUE(LoadRecording(SaveRecording(rig->motion), loaded, problem)) << problem;
    EXPECT_EQ(loaded.frames, 12);
    EXPECT_EQ(loaded.times, rig->motion.times);
    EXPECT_EQ(loaded.FindFrame(29 * 32), 11);
    EXPECT_EQ(loaded.Store(400, {}, rig->wheelBodies, rig->bufferPosition, {}), 13);
    EXPECT_EQ(loaded.times.back(), 400);
}

TEST(RecordingBytes, WhatIsLoadedRewindsToTheSameBits) {
    TestRandom random(test::TestSeed(86));
    const auto rig = test::RandomRun(random, 700, -4800, 32), loaded = test::RandomCar(random);
    std::string problem;
    ASSERT_TRUE(LoadRecording(SaveRecording(rig->motion), loaded->motion, problem)) << problem;
    for (const TimeValue tick : {17000, 9999, 0, -4801}) {
        EXPECT_EQ(loaded->Rewind(tick), rig->Rewind(tick));
        EXPECT_TRUE(SameBits(loaded->chassisBody.frame, rig->chassisBody.frame)) << tick;
        EXPECT_TRUE(SameBits(loaded->chassisBody.momentum, rig->chassisBody.momentum)) << tick;
        EXPECT_TRUE(SameBits(loaded->chassisBody.angularMomentum, rig->chassisBody.angularMomentum)) << tick;
        EXPECT_TRUE(SameBits(loaded->wheelBodies[3].angularMomentum, rig->wheelBodies[3].angularMomentum)) << tick;
        EXPECT_EQ(loaded->bufferPosition[2], rig->bufferPosition[2]) << tick;
        EXPECT_EQ(loaded->steerValue, rig->steerValue) << tick;
        EXPECT_EQ(loaded->steerSpare, rig->steerSpare) << tick;
    }
}

TEST(RecordingBytes, AnyCarComesBackToTheLastByte) {
    TestRandom random(test::TestSeed(87));
    for (const int units : {0, 1, 7, kMaxComponents}) {
        const auto rig = test::RandomCar(random, units);
        rig->InitMotion();
        for (int f = 0; f < 20; ++f) rig->Store(f);
        EXPECT_TRUE(Reads(SaveRecording(rig->motion))) << units;
    }
}

TEST(RecordingBytes, ALoadedRecordingGoesOnGrowingByFiveHundred) {
    RecordedMotion motion;
    std::string problem;
    ASSERT_TRUE(LoadRecording(OldImage(), motion, problem)) << problem;
    const RigidBody wheel;
    const double buffer = 1.5;
    EXPECT_EQ(motion.Store(0, {}, {&wheel, 1}, {&buffer, 1}, {}), 2);
    EXPECT_EQ(motion.capacity, 2);
    EXPECT_EQ(motion.Store(32, {}, {&wheel, 1}, {&buffer, 1}, {}), 3);
    EXPECT_EQ(motion.capacity, 502);
    EXPECT_TRUE(SameBits(motion.wheels[0][0], CountedSample(201)));
    EXPECT_EQ(motion.buffers[0][1], 1.5);  // took the place of what was forgotten
    EXPECT_EQ(SaveRecording(motion).size(), 16u + 502u * (164u + 152u));
}

TEST(RecordingBytes, TheTicksAloneAreThoseOfTheRecording) {
    TestRandom random(test::TestSeed(87));
    const auto rig = test::RandomRun(random, 12, 0, 32);
    const std::string image = SaveRecording(rig->motion);
    std::vector<TimeValue> times;
    std::string problem;
    ASSERT_TRUE(LoadRecordedTimes(image, times, problem)) << problem;
    EXPECT_EQ(rig->motion.times, times);
    EXPECT_FALSE(LoadRecordedTimes(image.substr(1), times, problem));
    ASSERT_TRUE(LoadRecordedTimes(std::string(4, '\0'), times, problem)) << problem;
    EXPECT_TRUE(times.empty());
}

TEST(RecordingBytes, LoadingOverALiveRecordingReleasesThatFirst) {
    RecordedMotion motion = SomeMotion();  // four wheels
    std::string problem;
    ASSERT_TRUE(LoadRecording(OldImage(), motion, problem)) << problem;
    EXPECT_EQ(motion.unitCount, 1);
    for (int u = 1; u < 4; ++u) {
        EXPECT_EQ(motion.wheels[u].Room().size(), 0u) << u;
        EXPECT_EQ(motion.buffers[u].Room().size(), 0u) << u;
    }
}

TEST(RecordingBytes, EveryTruncationIsRefused) {
    const std::string image = OldImage();
    for (std::size_t bytes = 0; bytes < image.size(); ++bytes) EXPECT_FALSE(Reads(image.substr(0, bytes))) << bytes;
    EXPECT_FALSE(Reads(image + '\0'));
    EXPECT_FALSE(Reads(std::string(5, '\0')));
    EXPECT_TRUE(Reads(image));
}

TEST(RecordingBytes, EveryFlippedBitInHeadAndTimesIsRefusedOrComesBack) {
    TestRandom random(test::TestSeed(88));
    const auto rig = test::RandomRun(random, 20, 0, 32);
    for (const std::string& image : {OldImage(), SaveRecording(rig->motion)}) {
        int kept = 0, refused = 0;
        constexpr std::size_t kLooked = 16 + 2 * sizeof(TimeValue);  // bytes
        for (std::size_t bit = 0; bit < 8 * kLooked; ++bit) {
            std::string flipped = image;
            flipped[bit / 8] = char(flipped[bit / 8] ^ (1 << bit % 8));
            ++(Reads(flipped) ? kept : refused);
        }
        EXPECT_GT(kept, 30);
        EXPECT_GT(refused, 90);
    }
}

TEST(RecordingBytes, AnyOtherFlagThanZeroIsARecordingAndKept) {
    for (const std::int32_t valid : {2, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_TRUE(Reads(OldImageWith(kValidPlace, valid))) << valid;
    }
}

TEST(RecordingBytes, CountsThatNoRecordingHasAreRefused) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max(), kLeast = std::numeric_limits<std::int32_t>::min();
    for (const std::int32_t count : {-1, kLeast, kMaxComponents + 1, kMost}) {
        EXPECT_NE(Refusal(OldImageWith(kUnitCountPlace, count)).find("wheels"), std::string::npos) << count;
    }
    for (const std::int32_t count : {0, -1, kLeast, 3, kMost}) {
        EXPECT_NE(Refusal(OldImageWith(kFramesPlace, count)).find("frames"), std::string::npos) << count;
    }
    for (const std::int32_t count : {0, -1, kLeast}) {
        EXPECT_NE(Refusal(OldImageWith(kCapacityPlace, count)).find("no room"), std::string::npos) << count;
    }
    for (const std::int32_t count : {1, 3, kMost}) {
        EXPECT_NE(Refusal(OldImageWith(kCapacityPlace, count)).find("bytes"), std::string::npos) << count;
    }
}

TEST(RecordingBytes, CountsWhoseProductWrapsIn32BitsAreRefused) {
    // 16 + 2^28 * (164 + 1 * 152) bytes, which is 16 in 32 bits: the head alone would do.
    std::string image = OldImage().substr(0, 16);
    Put(image, kCapacityPlace, 1 << 28);
    EXPECT_NE(Refusal(image).find(std::to_string(16 + (316LL << 28))), std::string::npos);

    Put(image, kCapacityPlace, std::numeric_limits<std::int32_t>::max());
    Put(image, kUnitCountPlace, kMaxComponents);
    EXPECT_NE(Refusal(image).find(std::to_string(16 + 2147483647LL * (164 + 200 * 152))), std::string::npos);
}

TEST(RecordingBytes, FramesThatGoBackInTimeAreRefused) {
    TestRandom random(test::TestSeed(89));
    const auto rig = test::RandomRun(random, 20, 0, 32);
    std::string image = SaveRecording(rig->motion);
    Put(image, kTimesPlace + 12, 10 * 32 - 1);  // one tick before its forerunner
    EXPECT_EQ(Refusal(image),
              "the recording is damaged: its frame 12 is earlier than the one before; take the scene from a backup.");
}

TEST(RecordingBytes, FramesMayShareATick) {
    // A scene with more samples to a frame than ticks stores such, and what is saved must be readable.
    TestRandom random(test::TestSeed(90));
    EXPECT_TRUE(Reads(SaveRecording(test::RandomRun(random, 20, 0, 0)->motion)));
}

TEST(RecordingBytes, TimesOfForgottenFramesMayBeAnything) {
    for (const TimeValue tick : {std::numeric_limits<TimeValue>::min(), -1, 0}) {
        EXPECT_TRUE(Reads(OldImageWith(kTimesPlace + 1, tick))) << tick;
    }
}

TEST(RecordingBytes, AFirstFrameThatIsNotBeforeAllTimeIsRefused) {
    EXPECT_NE(Refusal(OldImageWith(kTimesPlace, 0)).find("first frame"), std::string::npos);
}

TEST(RecordingBytes, NumbersThatAreNoneComeBackBitForBit) {
    std::string image = OldImage();
    const std::uint64_t odd[] = {0x7FF0000000000001u, 0xFFF8DEADBEEF0001u, 0x8000000000000000u, 1u};
    std::memcpy(&image[24], odd, sizeof odd);
    EXPECT_TRUE(Reads(image));
}

}  // namespace
}  // namespace tavrik
