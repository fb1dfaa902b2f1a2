#include "drive/virtual_run.h"

#include <cstdio>

#include "drive/finite_check.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

// Metres to a unit of the host's, by its number: inches, feet, miles, millimetres, centimetres, metres, kilometres.
constexpr double kMetresOfUnit[] = {0.0254, 0.3048, 1609.344, 0.001, 0.01, 1.0, 1000.0};
constexpr double kBadUnit = -1.0;

constexpr std::uint32_t kJoyErrUnplugged = 167, kErrorDeviceNotConnected = 1167;

std::uint64_t PackPoint(float x, float y) {
    return std::uint64_t(std::uint16_t(std::int16_t(x))) | std::uint64_t(std::uint16_t(std::int16_t(y))) << 16;
}

std::uint64_t PackWheel(std::int32_t delta) { return std::uint64_t(std::uint16_t(std::int16_t(delta))) << 16; }

double StepSeconds(const ParamBlock& params, std::int32_t ticksPerFrame) {
    return double(ticksPerFrame) / params.GetInt(MasterParam::Frame_Step) / params.GetInt(MasterParam::Sample_Step) /
           kTicksPerSecond;
}

}  // namespace

double VirtualHost::GetMasterScale(std::int32_t unit) const {
    if (unit < 0 || std::size_t(unit) >= std::size(kMetresOfUnit)) return kBadUnit;
    return metresPerUnit / kMetresOfUnit[unit];
}

std::uint32_t VirtualPad::joyGetPos(std::uint32_t, JoyInfo&) { return kJoyErrUnplugged; }

std::uint32_t VirtualPad::XInputGetState(std::int32_t user, XInputState& answer) {
    if (!plugged || user != 0) return kErrorDeviceNotConnected;
    answer.Gamepad = state;
    return 0;
}

VirtualRun::VirtualRun(const VirtualRunSetup& setup)
    : setup_(setup), windows_(*setup.canvas), session_(*this, host_, windows_, pad_) {
    host_.range = {0, setup.frames * setup.ticksPerFrame};
    host_.ticksPerFrame = setup.ticksPerFrame;
    host_.metresPerUnit = setup.metresPerUnit;
    pad_.plugged = setup.events != nullptr && DrivingTypeOf(*setup.events) == kDriveByGamepad;
    setup_.world->random.Seed(setup.seed);
}

bool VirtualRun::Start(std::string& problem) {
    session_.OpenDrive();
    if (!windows_.messages.empty()) {
        problem = windows_.messages.front();
        return false;
    }
    session_.HandleMessage(kWmKeyUp, std::uint64_t(kVkReturn), 0);
    return true;
}

double VirtualRun::Seconds() const { return double(ticks_) * setup_.ticksPerFrame / kTicksPerSecond; }

bool VirtualRun::Tick(std::string& problem) {
    while (setup_.events != nullptr && nextEvent_ < setup_.events->events.size() &&
           setup_.events->events[nextEvent_].seconds <= Seconds()) {
        Deliver(setup_.events->events[nextEvent_++]);
    }
    ++ticks_;
    if (session_.running == 0) return true;
    const TimeValue before = session_.tick;
    session_.HandleMessage(kWmTimer, kTimerId, 0);
    if (session_.tick == before) return true;
    const double dt = StepSeconds(*setup_.params, setup_.ticksPerFrame);
    if (KeepFiniteSamples(*setup_.world, setup_.params->GetInt(MasterParam::Frame_Step), 0, dt, problem)) return true;
    session_.StopDrive();
    return false;
}

void VirtualRun::DriveToTarget(DriveSession& session) {
    ApplyRow(RowAt(*setup_.rows, double(session.tick) / kTicksPerSecond), session.input);
}

void VirtualRun::Deliver(const DriverEvent& event) {
    switch (event.kind) {
        case DriverEventKind::KeyDown:
            session_.HandleMessage(kWmKeyDown, std::uint64_t(event.code), 0);
            break;
        case DriverEventKind::KeyUp:
            session_.HandleMessage(kWmKeyUp, std::uint64_t(event.code), 0);
            break;
        case DriverEventKind::MouseMove:
            session_.HandleMessage(kWmMouseMove, 0, PackPoint(event.x, event.y));
            break;
        case DriverEventKind::MouseWheel:
            session_.HandleMessage(kWmMouseWheel, PackWheel(event.code), 0);
            break;
        case DriverEventKind::RightButtonDown:
            session_.HandleMessage(kWmRButtonDown, 0, 0);
            break;
        case DriverEventKind::RightButtonUp:
            session_.HandleMessage(kWmRButtonUp, 0, 0);
            break;
        case DriverEventKind::Click:
            session_.HandleMessage(kWmActivate, kWaClickActive, 0);
            break;
        case DriverEventKind::LoseFocus:
            session_.HandleMessage(kWmActivate, kWaInactive, 0);
            break;
        case DriverEventKind::Scrub:
            host_.time = TimeValue(double(event.x) * kTicksPerSecond);
            break;
        case DriverEventKind::PadChange:
            pad_.plugged = true;
            pad_.state = event.pad;
            break;
        case DriverEventKind::PadLost: {
            pad_.plugged = false;
            if (session_.running == 0 || session_.input.drivingType != kDriveByGamepad) break;
            // The last throttle would be squared from tick to tick: nobody wants to ride along with that.
            session_.StopDrive();
            char text[96];
            std::snprintf(text, sizeof text, "The gamepad was unplugged at second %.2f; the run stopped there.", event.seconds);
            notice_ = text;
            break;
        }
    }
}

}  // namespace tavrik
