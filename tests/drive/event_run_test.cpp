// Whole runs driven by what a window hears alone, against the same demands handed straight to the frames.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "session_fixture.h"
#include "solver/frame_stepping.h"
#include "tests/drive/drive_on_hills.h"

namespace tavrik {
namespace {

using test::HashRecording;
using test::SharedWorld;

constexpr std::uint64_t kSeed = 7;
constexpr TimeValue kEnd = 40 * 160;

// Keys as a new master object binds them.
constexpr std::int32_t kW = 87, kA = 65, kD = 68, kS = 83, kSpace = 32, kPageUp = 33, kShift = 16;

/// The stock car on the hills, its drive window open.
struct EventRun : test::SessionParts {
    EventRun() {
        master.surface = &test::Hills();
        host.range = {0, kEnd};
        WriteDriveSettings(StockCarSettings(), master.params);
        SharedWorld().random.Seed(kSeed);
        session.OpenDrive();
    }

    void Enter() {
        KeyDown(kVkReturn);
        KeyUp(kVkReturn);
    }
    void Ticks(int count) {
        for (int i = 0; i < count; ++i) Tick();
    }
};

/// The same car, driven frame by frame with demands that are written down here.
class DirectRun final : public DriveMaster {
 public:
    DirectRun() {
        world_.random.Seed(kSeed);
        (void)test::HillRun(*rig);  // puts the car into the world; the script stays aside
        ApplySettings(settings, 1e-5, input);
    }

    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    DriveSettings settings = StockCarSettings();
    DriveInput input;
    TimeValue tick = 0;

    void Frames(int count) {
        for (int i = 0; i < count; ++i) DriveTick(*this, tick, input);
    }
    /// What a pair of hands on the keyboard comes to.
    void Ask(float throttle, float brake, float steering) {
        input.throttle = throttle;
        input.brake = brake;
        input.steerTarget = steering * (input.rudderAngle / 180.0f * 3.1415927f);
        input.steerRatio = steering;
    }

    CarWorld& World() override { return world_; }
    const SurfaceTree* Surface() const override { return &test::Hills(); }
    float Gravity() const override { return settings.Gravity; }
    std::int32_t Frame_Step() const override { return settings.Frame_Step; }
    std::int32_t Sample_Step() const override { return settings.Sample_Step; }
    std::int32_t GetTicksPerFrame() const override { return 160; }
    TimeValue AnimRangeEnd() const override { return kEnd; }

 private:
    CarWorld& world_ = SharedWorld();
};

/// Every bit of a recording and where it ends, as one text.
std::string Summary(const CarRig& rig) {
    return std::to_string(rig.motion.frames) + " frames to tick " + std::to_string(rig.motion.times.back()) + ", hash " +
           std::to_string(HashRecording(rig.motion));
}

// The two runs of a test share one world and so come one after the other.

TEST(EventRun, KeysAndTimerRecordWhatTheirDemandsDo) {
    std::string byEvents;
    {
        EventRun run;
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(10);
        run.KeyDown(kA);
        run.Ticks(4);
        run.KeyUp(kA);
        run.KeyDown(kD);
        run.KeyDown(kShift);
        run.Ticks(3);
        run.KeyUp(kShift);
        run.KeyUp(kW);
        run.KeyDown(kS);
        run.Ticks(4);
        run.KeyUp(kS);
        run.KeyUp(kD);
        run.KeyDown(kPageUp);
        run.KeyDown(kW);
        run.Ticks(4);
        run.KeyDown(kSpace);
        run.Ticks(3);
        byEvents = Summary(*run.master.rig);
    }
    DirectRun direct;
    direct.Ask(4, 0, 0);
    direct.Frames(10);
    direct.Ask(4, 0, -1);
    direct.Frames(4);
    direct.Ask(12, 0, 1);
    direct.input.steerRatio = 3.0f;
    direct.input.nitro = 1;
    direct.Frames(3);
    direct.input.nitro = 0;
    direct.Ask(0, 4, 1);
    direct.Frames(4);
    direct.Ask(-4, 0, 0);
    direct.input.reverse = 1;
    direct.Frames(4);
    direct.Ask(-4, 4, 0);
    direct.input.handBrake = 1;
    direct.Frames(3);

    EXPECT_EQ(direct.rig->motion.frames, 1 + 28 * 5);
    EXPECT_EQ(byEvents, Summary(*direct.rig));
}

TEST(EventRun, DrivenBackFromAScrubToTheEndOfTheRangeRecordsWhatItsDemandsDo) {
    std::string byEvents;
    {
        EventRun run;
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(20);
        run.Enter();
        ASSERT_EQ(run.session.running, 0u);
        run.host.SetTime(12 * 160, true);  // the animator's own hand on the slider
        run.Enter();
        ASSERT_EQ(run.session.tick, 12 * 160);
        run.Ticks(4);  // the start has let go of the throttle
        run.KeyDown(kW);
        run.KeyDown(kD);
        int ticks = 0;
        for (; run.session.running != 0 && ticks < 100; ++ticks) run.Tick();
        EXPECT_EQ(ticks, 40 - 16 + 1);  // the last one finds the end of the range
        EXPECT_EQ(run.host.time, kEnd);
        EXPECT_EQ(run.windows.calls[run.windows.calls.size() - 1], "RedrawViews(6400)");
        byEvents = Summary(*run.master.rig);
    }
    DirectRun direct;
    direct.Ask(4, 0, 0);
    direct.Frames(20);
    direct.tick = 12 * 160;
    direct.Ask(0, 0, 0);
    direct.Frames(4);
    direct.Ask(4, 0, 1);
    direct.Frames(24);

    EXPECT_EQ(direct.tick, kEnd);
    EXPECT_EQ(byEvents, Summary(*direct.rig));
}

TEST(EventRun, AStopAndAStartWhereItStandsLeaveNoSeam) {
    std::string interrupted;
    {
        EventRun run;
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(8);
        run.Enter();
        run.host.SetTime(8 * 160, true);
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(8);
        interrupted = Summary(*run.master.rig);
    }
    EventRun unbroken;
    unbroken.Enter();
    unbroken.KeyDown(kW);
    unbroken.Ticks(16);
    EXPECT_EQ(interrupted, Summary(*unbroken.master.rig));
}

TEST(EventRun, AStartPutsTheCarWhereTheSliderStands) {
    EventRun run;
    run.Enter();
    run.KeyDown(kW);
    run.Ticks(20);
    run.Enter();
    run.host.SetTime(10 * 160, true);
    const float passed = run.master.rig->GetTM(ComponentType::Chassis, 0, 9 * 160 + 128).row[3].y;
    run.Enter();
    run.Tick();
    EXPECT_EQ(run.master.rig->motion.frames, 1 + 11 * 5);
    EXPECT_EQ(run.master.rig->GetTM(ComponentType::Chassis, 0, 9 * 160 + 128).row[3].y, passed);
}

TEST(EventRun, ByMouseRecordsWhatItsDemandsDo) {
    std::string byEvents;
    {
        EventRun run;
        run.Set(MasterParam::Driving_Type, 0);
        run.MoveMouse(500, 400);
        run.Enter();
        run.MoveMouse(500, 200);
        run.Ticks(8);
        run.MoveMouse(300, -100);
        run.Ticks(4);
        run.MoveMouse(500, 500);
        run.Ticks(3);
        byEvents = Summary(*run.master.rig);
    }
    DirectRun direct;
    direct.input.drivingType = 0;
    direct.Ask(4, 0, 0);
    direct.Frames(8);
    direct.Ask(25, 0, -200.0f * 0.003f);
    direct.Frames(4);
    direct.Ask(0, 1, 0);
    direct.Frames(3);
    EXPECT_EQ(byEvents, Summary(*direct.rig));
}

TEST(EventRun, ByPadRecordsWhatItsDemandsDo) {
    std::string byEvents;
    {
        EventRun run;
        run.Set(MasterParam::Driving_Type, 2);
        run.Set(MasterParam::CtrlJoyDriver, 1);
        run.Set(MasterParam::CtrlJoyThrottleCtrl, 3);
        run.devices.pads[0] = test::Pad{.bRightTrigger = 255};
        run.Enter();
        run.Ticks(8);
        run.devices.pads[0] = test::Pad{.sThumbLX = 32767};
        run.Ticks(4);
        run.devices.pads[0].reset();  // unplugged with the throttle released
        run.Ticks(4);
        byEvents = Summary(*run.master.rig);
    }
    DirectRun direct;
    direct.input.drivingType = 2;
    direct.Ask(4, 0, 0);
    direct.Frames(8);
    direct.Ask(0, 0, 1);
    direct.Frames(4);
    direct.Ask(0, 0, 0);
    direct.input.steerRatio = 1.0f;  // the last one that the pad told
    direct.Frames(4);
    EXPECT_EQ(byEvents, Summary(*direct.rig));
}

TEST(EventRun, AHandBrakePulledWhileTheSliderMovesStillReachesThatFrame) {
    std::string byEvents;
    {
        EventRun run;
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(12);
        run.KeyUp(kW);
        run.KeyDown(kS);
        run.At("SetTime(1920, 1)", [&] { run.session.HandleMessage(kWmRButtonDown, 0, 0); });
        run.Ticks(1);
        byEvents = Summary(*run.master.rig);
    }
    const auto direct = [](std::uint8_t handBrakeInTheLastFrame) {
        DirectRun run;
        run.Ask(4, 0, 0);
        run.Frames(12);
        run.Ask(0, 4, 0);
        run.input.handBrake = handBrakeInTheLastFrame;
        run.Frames(1);
        return Summary(*run.rig);
    };
    EXPECT_EQ(byEvents, direct(1));
    EXPECT_NE(byEvents, direct(0));
}

TEST(EventRun, ASecondPressOfDriveChangesNothingOfTheRun) {
    std::string pressedTwice;
    {
        EventRun run;
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(6);
        run.Enter();
        run.session.OpenDrive();
        run.host.SetTime(6 * 160, true);
        run.Enter();
        run.KeyDown(kW);
        run.Ticks(6);
        pressedTwice = Summary(*run.master.rig);
    }
    EventRun once;
    once.Enter();
    once.KeyDown(kW);
    once.Ticks(12);
    EXPECT_EQ(pressedTwice, Summary(*once.master.rig));
}

}  // namespace
}  // namespace tavrik
