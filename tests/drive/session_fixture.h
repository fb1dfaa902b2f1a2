#pragma once
/// A drive session with everything around it faked: windows, host, master object, devices and a driver in the hands' place. All
/// that the session asks for is kept in one list, so that the order across the fakes can be looked at.

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drive/drive_session.h"
#include "rig/car_rig.h"
#include "tests/drive/fake_windows.h"

namespace tavrik::test {

/// The parameters of a master object, as a new one has them. A number asked for as the wrong type throws.
class FakeParams final : public ParamBlock {
 public:
    FakeParams();
    float GetFloat(std::int32_t id) const override { return floats_.at(id); }
    std::int32_t GetInt(std::int32_t id) const override { return ints_.at(id); }
    void SetFloat(std::int32_t id, float value) override { floats_.at(id) = value; }
    void SetInt(std::int32_t id, std::int32_t value) override { ints_.at(id) = value; }

 private:
    std::map<std::int32_t, float> floats_;
    std::map<std::int32_t, std::int32_t> ints_;
};

/// Keeps "SetTime(160, 1)", "NotifyMasters()" and "RedrawViews(160)".
class FakeHost final : public DriveHost {
 public:
    explicit FakeHost(FakeWindows& log) : log_(log) {}

    TimeValue time = 0;
    TimeRange range = {0, 16000};
    std::int32_t ticksPerFrame = 160;
    double kilometresPerUnit = 1e-5;

    TimeValue GetTime() const override { return time; }
    void SetTime(TimeValue tick, bool redraw) override;
    TimeRange GetAnimRange() const override { return range; }
    std::int32_t GetTicksPerFrame() const override { return ticksPerFrame; }
    /// Any other unit than kilometres answers with nonsense.
    double GetMasterScale(std::int32_t unit) const override { return unit == kKilometres ? kilometresPerUnit : -1e30; }
    void RedrawViews(TimeValue tick) override;
    void NotifyMasters() override;

 private:
    FakeWindows& log_;
};

/// A pad at rest but for what is named.
struct Pad {
    std::uint16_t wButtons = 0;
    std::uint8_t bLeftTrigger = 0, bRightTrigger = 0;
    std::int16_t sThumbLX = 0, sThumbLY = 0, sThumbRX = 0, sThumbRY = 0;

    XInputGamepad Gamepad() const { return {wButtons, bLeftTrigger, bRightTrigger, sThumbLX, sThumbLY, sThumbRX, sThumbRY}; }
};

/// One joystick and four pads. Keeps "joyGetPos(0)" and "XInputGetState(2)".
class FakeDevices final : public Devices {
 public:
    explicit FakeDevices(FakeWindows& log) : log_(log) {}

    std::optional<JoyInfo> joystick;         // absent: its record stays as it came
    std::array<std::optional<Pad>, 4> pads;  // absent: its record is filled with rubbish
    bool everyStateCameZeroed = true;        // of the records given to XInputGetState

    std::uint32_t joyGetPos(std::uint32_t id, JoyInfo& info) override;
    std::uint32_t XInputGetState(std::int32_t user, XInputState& state) override;

 private:
    FakeWindows& log_;
};

/// Keeps "BuildPath()", "DriveToTarget()" and "DriveAlongPath()".
class FakeTarget final : public TargetDriver {
 public:
    explicit FakeTarget(FakeWindows& log) : log_(log) {}

    bool hasTarget = true;
    bool isShape = false;
    std::function<void(DriveSession&)> toTarget, alongPath;  // what the driver does, where it does anything

    bool HasTarget() const override { return hasTarget; }
    bool TargetIsShape() const override { return isShape; }
    void BuildPath() override;
    void DriveToTarget(DriveSession& session) override;
    void DriveAlongPath(DriveSession& session) override;

 private:
    FakeWindows& log_;
};

/// Keeps "UpdateSurface()", "World()", "LinkHitches()", "CollectPushes()" and "RebuildTrails()". A frame that is driven shows
/// as "World()", a world that is built as "World()", "LinkHitches()", "CollectPushes()".
class FakeMaster final : public SessionMaster, public WorldScene {
 public:
    explicit FakeMaster(FakeWindows& log) : target(log), log_(log) {}

    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    FakeParams params;
    const SurfaceTree* surface = nullptr;         // the ground as it stands; null for one that isn't built
    const SurfaceTree* updatedSurface = nullptr;  // what UpdateSurface makes of it
    FakeTarget target;
    bool hasDriver = true;  // false: nothing drives in the hands' place

    CarRig& Rig() override { return *rig; }
    const ParamBlock& Params() const override { return params; }
    const SurfaceTree& Surface() const override { return surface != nullptr ? *surface : empty_; }
    void UpdateSurface() override;
    CarWorld& World() override;
    WorldScene* Scene() override { return this; }
    void RebuildTrails() override;
    TargetDriver* Target() override { return hasDriver ? &target : nullptr; }

    void LinkHitches() override;
    bool CollectPushes(CarRig& rig, PushForce (&pushes)[kMaxPushes], std::int32_t& pushCount) override;

 private:
    FakeWindows& log_;
    SurfaceTree empty_;
};

/// A level ground of two triangles.
const SurfaceTree& LevelGround();

/// The whole table: the stock car stands assembled on a level ground, the session is closed.
struct SessionParts {
    SessionParts();

    FakeWindows windows;  // its list is everyone's
    FakeHost host{windows};
    FakeDevices devices{windows};
    FakeMaster master{windows};
    DriveSession session{master, host, windows, devices};

    void Set(std::int32_t id, std::int32_t value) { master.params.SetInt(id, value); }
    void Set(std::int32_t id, float value) { master.params.SetFloat(id, value); }

    /// Opens the drive window, then takes the car out of the world, so that frames cost nothing, and forgets the calls.
    void Open();
    /// As `Open`, then releases ENTER and forgets the calls.
    void OpenAndStart();
    /// The calls so far, which are forgotten.
    std::vector<std::string> TakeCalls();
    /// Has `action` run once, at the next call that reads like this.
    void At(const std::string& call, std::function<void()> action);

    bool KeyDown(std::int32_t key);
    bool KeyUp(std::int32_t key);
    bool MoveMouse(std::int32_t x, std::int32_t y);
    bool Tick();
    /// The last line of text that the drive window shows: its prompt.
    std::string Prompt();
};

/// Adds `call` to the list that the fakes share.
void Keep(FakeWindows& log, const std::string& call);

/// The bits of every field of `input`, with their names: the text of two inputs is the same if they are the same bit for bit.
std::string Bits(const DriveInput& input);

}  // namespace tavrik::test
