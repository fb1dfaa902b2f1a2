#include "session_fixture.h"

#include <bit>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <utility>

#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"
#include "tests/drive/drive_on_hills.h"

namespace tavrik::test {
namespace {

// What the interfaces answer when nothing is plugged in.
constexpr std::uint32_t kJoystickUnplugged = 165, kPadNotConnected = 1167;

SurfaceTree MakeLevelGround() {
    constexpr float kHalf = 5000.0f;
    TriangleMesh mesh;
    mesh.verts = {{-kHalf, -kHalf, 0.0f}, {kHalf, -kHalf, 0.0f}, {kHalf, kHalf, 0.0f}, {-kHalf, kHalf, 0.0f}};
    mesh.faces = {{{0, 1, 2}}, {{0, 2, 3}}};
    SurfaceTree tree;
    tree.Build(mesh);
    return tree;
}

std::uint32_t ScreenPoint(std::int32_t x, std::int32_t y) {
    return std::uint32_t(std::uint16_t(x)) | std::uint32_t(std::uint16_t(y)) << 16;
}

}  // namespace

void Keep(FakeWindows& log, const std::string& call) {
    log.calls.push_back(call);
    if (log.onCall) log.onCall(call);
}

FakeParams::FakeParams() {
    for (const ParamRow& row : FindParamTable("Tavrik")->rows) {
        const bool whole = row.type == ParamType::Int || row.type == ParamType::Bool;
        const bool single = row.type == ParamType::Float || row.type == ParamType::World;
        if (whole) ints_[row.id] = std::int32_t(row.defaultValue);
        if (single) floats_[row.id] = float(row.defaultValue);
    }
}

void FakeHost::SetTime(TimeValue tick, bool redraw) {
    time = tick;
    Keep(log_, "SetTime(" + std::to_string(tick) + ", " + (redraw ? "1)" : "0)"));
}

void FakeHost::RedrawViews(TimeValue tick) { Keep(log_, "RedrawViews(" + std::to_string(tick) + ")"); }

void FakeHost::NotifyMasters() { Keep(log_, "NotifyMasters()"); }

std::uint32_t FakeDevices::joyGetPos(std::uint32_t id, JoyInfo& info) {
    Keep(log_, "joyGetPos(" + std::to_string(id) + ")");
    if (!joystick) return kJoystickUnplugged;
    info = *joystick;
    return 0;
}

std::uint32_t FakeDevices::XInputGetState(std::int32_t user, XInputState& state) {
    Keep(log_, "XInputGetState(" + std::to_string(user) + ")");
    const XInputGamepad& pad = state.Gamepad;
    everyStateCameZeroed = everyStateCameZeroed && state.dwPacketNumber == 0 && pad.wButtons == 0 && pad.bLeftTrigger == 0 &&
                           pad.bRightTrigger == 0 && pad.sThumbLX == 0 && pad.sThumbLY == 0 && pad.sThumbRX == 0 &&
                           pad.sThumbRY == 0;
    if (user < 0 || user >= kXInputUsers || !pads[std::size_t(user)]) {
        std::memset(&state, 0xCD, sizeof state);
        return kPadNotConnected;
    }
    state.dwPacketNumber = 1;
    state.Gamepad = pads[std::size_t(user)]->Gamepad();
    return 0;
}

void FakeTarget::BuildPath() { Keep(log_, "BuildPath()"); }

void FakeTarget::DriveToTarget(DriveSession& session) {
    Keep(log_, "DriveToTarget()");
    if (toTarget) toTarget(session);
}

void FakeTarget::DriveAlongPath(DriveSession& session) {
    Keep(log_, "DriveAlongPath()");
    if (alongPath) alongPath(session);
}

void FakeMaster::UpdateSurface() {
    surface = updatedSurface;
    Keep(log_, "UpdateSurface()");
}

CarWorld& FakeMaster::World() {
    Keep(log_, "World()");
    return SharedWorld();
}

void FakeMaster::RebuildTrails() { Keep(log_, "RebuildTrails()"); }

void FakeMaster::LinkHitches() { Keep(log_, "LinkHitches()"); }

bool FakeMaster::CollectPushes(CarRig&, PushForce (&)[kMaxPushes], std::int32_t&) {
    Keep(log_, "CollectPushes()");
    return true;
}

const SurfaceTree& LevelGround() {
    static const SurfaceTree tree = MakeLevelGround();
    return tree;
}

SessionParts::SessionParts() {
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3].z = StockCarStandingHeight();
    MakeStockCar(*master.rig, frame);
    master.surface = master.updatedSurface = &LevelGround();
}

void SessionParts::Open() {
    session.OpenDrive();
    SharedWorld().carCount = 0;
    windows.calls.clear();
}

void SessionParts::OpenAndStart() {
    Open();
    KeyUp(kVkReturn);
    windows.calls.clear();
}

std::vector<std::string> SessionParts::TakeCalls() { return std::exchange(windows.calls, {}); }

void SessionParts::At(const std::string& call, std::function<void()> action) {
    windows.onCall = [call, action = std::move(action), done = false](const std::string& made) mutable {
        if (done || made != call) return;
        done = true;  // what the action calls comes by here again
        action();
    };
}

bool SessionParts::KeyDown(std::int32_t key) { return session.HandleMessage(kWmKeyDown, std::uint64_t(key), 0); }
bool SessionParts::KeyUp(std::int32_t key) { return session.HandleMessage(kWmKeyUp, std::uint64_t(key), 0); }
bool SessionParts::MoveMouse(std::int32_t x, std::int32_t y) {
    return session.HandleMessage(kWmMouseMove, 0, ScreenPoint(x, y));
}
bool SessionParts::Tick() { return session.HandleMessage(kWmTimer, kTimerId, 0); }

std::string SessionParts::Prompt() {
    std::string prompt;
    for (const CanvasCall& call : windows.CanvasOf(session.window).calls) {
        if (const auto* text = std::get_if<drawn::DrawTextLine>(&call)) prompt = text->text;
    }
    return prompt;
}

std::string Bits(const DriveInput& input) {
    std::ostringstream out;
    out << std::hex;
    const auto whole = [&](const char* name, std::uint32_t value) { out << name << ' ' << value << '\n'; };
    const auto single = [&](const char* name, float value) {
        out << name << ' ' << std::bit_cast<std::uint32_t>(value) << " = " << std::setprecision(9) << value << '\n';
    };
    whole("bikeDrive", input.bikeDrive);
    single("balanceForce", input.balanceForce);
    single("maxDriftSpeed", input.maxDriftSpeed);
    single("steerTarget", input.steerTarget);
    single("throttle", input.throttle);
    single("brake", input.brake);
    whole("handBrake", input.handBrake);
    single("steerRatio", input.steerRatio);
    single("rudderSensitivity", input.rudderSensitivity);
    single("throttleSensitivity", input.throttleSensitivity);
    single("brakeSensitivity", input.brakeSensitivity);
    single("differentialSensitivity", input.differentialSensitivity);
    whole("reverse", input.reverse);
    whole("drivingType", input.drivingType);
    whole("keyLeftDown", input.keyLeftDown);
    whole("keyRightDown", input.keyRightDown);
    whole("keyThrottleDown", input.keyThrottleDown);
    whole("keyBrakeDown", input.keyBrakeDown);
    whole("nitro", input.nitro);
    single("rudderAngle", input.rudderAngle);
    return out.str();
}

}  // namespace tavrik::test
