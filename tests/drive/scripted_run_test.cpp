#include "tests/drive/scripted_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "tests/drive/drive_on_hills.h"

namespace tavrik {
namespace {

using test::HashRecording;
using test::HillRun;

constexpr int kFrames = 60;

void Drive(ScriptedRun& run, int frames) {
    std::string problem;
    for (int i = 0; i < frames; ++i) ASSERT_TRUE(DriveFrame(run, problem)) << problem;
}

TEST(DriveFrame, StoresOneFrameOfSamplesAndMovesTheTickOn) {
    const auto rig = std::make_unique<CarRig>();
    ScriptedRun run = HillRun(*rig);
    Drive(run, 2);
    EXPECT_EQ(run.tick, 320);
    ASSERT_EQ(rig->motion.frames, 1 + 2 * run.settings.Frame_Step);
    EXPECT_EQ(rig->motion.times[1], 0);
    EXPECT_EQ(rig->motion.times[10], 288);
}

TEST(DriveFrame, TheSameSeedAndScriptGiveTheSameBitsTwice) {
    std::uint64_t hashes[2];
    for (std::uint64_t& hash : hashes) {
        const auto rig = std::make_unique<CarRig>();
        ScriptedRun run = HillRun(*rig);
        Drive(run, kFrames);
        hash = HashRecording(rig->motion);
    }
    EXPECT_EQ(hashes[0], hashes[1]);
}

TEST(DriveFrame, AnotherSeedGivesOtherBits) {
    std::uint64_t hashes[2];
    for (std::uint64_t seed : {1u, 2u}) {
        const auto rig = std::make_unique<CarRig>();
        ScriptedRun run = HillRun(*rig);
        run.seed = seed;
        Drive(run, 2);
        hashes[seed - 1] = HashRecording(rig->motion);
    }
    EXPECT_NE(hashes[0], hashes[1]);
}

TEST(ResumeAt, ARunTakenBackAndDrivenOnGivesTheSameSamplesAgain) {
    const auto rig = std::make_unique<CarRig>();
    ScriptedRun run = HillRun(*rig);
    Drive(run, kFrames);
    const std::uint64_t unbroken = HashRecording(rig->motion);

    ResumeAt(run, 23 * run.ticksPerFrame);
    EXPECT_EQ(rig->motion.frames, 1 + 23 * run.settings.Frame_Step);
    Drive(run, kFrames - 23);

    EXPECT_EQ(HashRecording(rig->motion), unbroken);
}

TEST(ResumeAt, ACarMadeAnewFromRecordedStateAloneDrivesOnWithTheSameBits) {
    const auto rig = std::make_unique<CarRig>();
    ScriptedRun run = HillRun(*rig);
    Drive(run, 30);
    const RecordedMotion saved = rig->motion;
    Drive(run, 30);

    const auto loaded = std::make_unique<CarRig>();
    ScriptedRun later = HillRun(*loaded);
    loaded->motion = saved;
    ResumeAt(later, 30 * later.ticksPerFrame);
    Drive(later, 30);

    EXPECT_EQ(HashRecording(loaded->motion), HashRecording(rig->motion));
}

TEST(DriveFrame, StopsWithASentenceWhenNumbersBlowUp) {
    const auto rig = std::make_unique<CarRig>();
    ScriptedRun run = HillRun(*rig);
    Drive(run, 3);
    rig->chassisParams.Solidity = 1e13;

    std::string problem;
    bool sound = true;
    for (int i = 0; i < 30 && sound; ++i) sound = DriveFrame(run, problem);

    ASSERT_FALSE(sound);
    EXPECT_NE(problem.find("stopped at second 0.1"), std::string::npos) << problem;
    EXPECT_NE(problem.find("Solidity of the chassis"), std::string::npos) << problem;
}

TEST(DriveFrame, KeepsNoSampleThatIsNotFinite) {
    const auto rig = std::make_unique<CarRig>();
    ScriptedRun run = HillRun(*rig);
    Drive(run, 3);
    rig->chassisParams.Solidity = 1e13;
    std::string problem;
    while (DriveFrame(run, problem)) {
    }

    ASSERT_GE(rig->motion.frames, 16);
    for (const MotionSample& sample : rig->motion.chassis) EXPECT_TRUE(std::isfinite(Length(sample.momentum)));
}

}  // namespace
}  // namespace tavrik
