#include "drive/virtual_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "drive/drive_settings.h"
#include "drive/table_params.h"
#include "drive/window_messages.h"
#include "tests/drive/drive_on_hills.h"
#include "tests/drive/recording_canvas.h"

namespace tavrik {
namespace {

using test::HashRecording;
using test::HillRun;

/// The stock car on the hills, with a session and everything it needs.
struct HillSession {
    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    ScriptedRun direct = HillRun(*rig);  // puts the car on the ground; driven by itself only where a test compares
    TableParams params{*FindParamTable("Tavrik")};
    test::RecordingCanvas canvas;
    VirtualRunSetup setup;

    HillSession() {
        WriteDriveSettings(StockCarSettings(), params);
        setup.world = direct.world;
        setup.rig = rig.get();
        setup.surface = direct.surface;
        setup.params = &params;
        setup.canvas = &canvas;
        setup.frames = 60;
        setup.seed = direct.seed;
    }

    void Drive(VirtualRun& run, int ticks) {
        std::string problem;
        ASSERT_TRUE(run.Start(problem)) << problem;
        for (int i = 0; i < ticks; ++i) ASSERT_TRUE(run.Tick(problem)) << problem;
    }

    void DriveByEvents(const EventScript& events, int ticks) {
        setup.events = &events;
        params.SetInt(MasterParam::Driving_Type, std::int32_t(DrivingTypeOf(events)));
        VirtualRun run(setup);
        Drive(run, ticks);
    }
};

DriverEvent Key(double seconds, DriverEventKind kind, std::int32_t code) {
    return {.seconds = seconds, .kind = kind, .code = code};
}

TEST(VirtualRun, RowsDriveToTheSameBitsAsWithoutASession) {
    HillSession session;
    const DriverScript rows = test::EveryPedal();
    session.setup.rows = &rows;
    session.params.SetInt(MasterParam::Driving_Type, kDriveToTarget);
    VirtualRun run(session.setup);
    session.Drive(run, 60);
    const std::uint64_t throughSession = HashRecording(session.rig->motion);

    session.direct = HillRun(*session.rig);
    std::string problem;
    for (int i = 0; i < 60; ++i) ASSERT_TRUE(DriveFrame(session.direct, problem)) << problem;

    EXPECT_EQ(throughSession, HashRecording(session.rig->motion));
}

TEST(VirtualRun, AKeyHeldByEventsIsAFullPedalByRows) {
    HillSession session;
    EventScript events;
    events.events = {Key(0.0, DriverEventKind::KeyDown, 'W'), Key(1.0, DriverEventKind::KeyUp, 'W')};
    session.DriveByEvents(events, 45);
    const std::uint64_t byKeys = HashRecording(session.rig->motion);

    session.direct = HillRun(*session.rig);
    session.direct.script.rows = {{.seconds = 0.0, .throttle = 1.0f}, {.seconds = 1.0}};
    std::string problem;
    for (int i = 0; i < 45; ++i) ASSERT_TRUE(DriveFrame(session.direct, problem)) << problem;

    EXPECT_EQ(byKeys, HashRecording(session.rig->motion));
}

TEST(VirtualRun, ARunStoppedScrubbedBackAndStartedAgainGivesTheSameSamplesAgain) {
    HillSession session;
    EventScript unbroken;
    unbroken.events = {Key(0.0, DriverEventKind::KeyDown, 'W')};
    session.DriveByEvents(unbroken, 40);
    const std::uint64_t expected = HashRecording(session.rig->motion);

    // Stops after 40 frames, goes back to frame 10 and drives the same 30 frames again. ENTER clears held keys.
    session.direct = HillRun(*session.rig);
    constexpr double kFrame = 1.0 / 30.0;
    EventScript again;
    again.events = {Key(0.0, DriverEventKind::KeyDown, 'W'),
                    Key(40 * kFrame, DriverEventKind::KeyUp, kVkReturn),
                    {.seconds = 41 * kFrame, .kind = DriverEventKind::Scrub, .x = 10.0f / 30.0f},
                    Key(42 * kFrame, DriverEventKind::KeyUp, kVkReturn),
                    Key(42 * kFrame, DriverEventKind::KeyDown, 'W')};
    session.DriveByEvents(again, 72);

    EXPECT_EQ(HashRecording(session.rig->motion), expected);
}

TEST(VirtualRun, StopsAtTheEndOfTheRange) {
    HillSession session;
    session.setup.frames = 7;
    EventScript none;
    session.setup.events = &none;
    VirtualRun run(session.setup);
    session.Drive(run, 10);
    EXPECT_EQ(run.Session().running, 0u);
    EXPECT_EQ(session.rig->motion.frames, 1 + 7 * 5);
}

TEST(VirtualRun, SaysWhatTheMessageBoxSaysWhenTheCarIsNotSetUp) {
    HillSession session;
    session.rig->ResetMotion();
    VirtualRun run(session.setup);
    std::string problem;
    EXPECT_FALSE(run.Start(problem));
    EXPECT_EQ(problem, "You didn't setup the Car.\nDo Car Setup.");
}

TEST(VirtualRun, StopsWithANoticeWhenThePadIsUnplugged) {
    HillSession session;
    EventScript events;
    XInputGamepad full{};
    full.bRightTrigger = 255;
    events.events = {{.seconds = 0.0, .kind = DriverEventKind::PadChange, .pad = full},
                     {.seconds = 0.5, .kind = DriverEventKind::PadLost}};
    session.params.SetInt(MasterParam::CtrlJoyDriver, 1);
    session.params.SetInt(MasterParam::CtrlJoyThrottleCtrl, 3);
    session.params.SetInt(MasterParam::Driving_Type, kDriveByGamepad);
    session.setup.events = &events;
    VirtualRun run(session.setup);
    session.Drive(run, 30);
    EXPECT_EQ(run.Session().running, 0u);
    EXPECT_EQ(session.rig->motion.frames, 1 + 15 * 5);
    EXPECT_NE(run.Notice().find("unplugged at second 0.50"), std::string::npos) << run.Notice();
    EXPECT_GT(Length(session.rig->chassisBody.velocity), 50.0);
}

TEST(VirtualRun, StopsWithASentenceWhenNumbersBlowUp) {
    HillSession session;
    session.rig->chassisParams.Solidity = 1e13;
    VirtualRun run(session.setup);
    std::string problem;
    ASSERT_TRUE(run.Start(problem));
    bool sound = true;
    for (int i = 0; i < 30 && sound; ++i) sound = run.Tick(problem);
    ASSERT_FALSE(sound);
    EXPECT_NE(problem.find("Solidity of the chassis"), std::string::npos) << problem;
    EXPECT_EQ(run.Session().running, 0u);
    for (const MotionSample& sample : session.rig->motion.chassis) EXPECT_TRUE(std::isfinite(Length(sample.momentum)));
}

TEST(VirtualHost, AnswersUnitsByTheirNumbers) {
    VirtualHost host;
    host.metresPerUnit = 0.01;
    EXPECT_DOUBLE_EQ(host.GetMasterScale(3), 10.0);
    EXPECT_DOUBLE_EQ(host.GetMasterScale(4), 1.0);
    EXPECT_DOUBLE_EQ(host.GetMasterScale(5), 0.01);
    EXPECT_EQ(host.GetMasterScale(6), 1e-5);
    EXPECT_EQ(host.GetMasterScale(7), -1.0);
}

TEST(DrivingTypeOf, FollowsTheDeviceThatAScriptUses) {
    EventScript script;
    EXPECT_EQ(DrivingTypeOf(script), kDriveByKeyboard);
    script.events.push_back({.kind = DriverEventKind::MouseMove});
    EXPECT_EQ(DrivingTypeOf(script), kDriveByMouse);
    script.events.push_back({.kind = DriverEventKind::PadChange});
    EXPECT_EQ(DrivingTypeOf(script), kDriveByGamepad);
}

}  // namespace
}  // namespace tavrik
