#include "drive/virtual_run.h"

#include "drive/finite_check.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

// Metres to a unit of the host's, by its number: inches, feet, miles, millimetres, centimetres, metres, kilometres.
constexpr double kMetresOfUnit[] = {0.0254, 0.3048, 1609.344, 0.001, 0.01, 1.0, 1000.0};
constexpr double kBadUnit = -1.0;

double StepSeconds(const ParamBlock& params, std::int32_t ticksPerFrame) {
    return double(ticksPerFrame) / params.GetInt(MasterParam::Frame_Step) / params.GetInt(MasterParam::Sample_Step) /
           kTicksPerSecond;
}

}  // namespace

double VirtualHost::GetMasterScale(std::int32_t unit) const {
    if (unit < 0 || std::size_t(unit) >= std::size(kMetresOfUnit)) return kBadUnit;
    return metresPerUnit / kMetresOfUnit[unit];
}

VirtualRun::VirtualRun(const VirtualRunSetup& setup)
    : setup_(setup),
      windows_(*setup.canvas),
      hands_(setup.events, windows_, pad_, [this](double seconds) { host_.time = TimeValue(seconds * kTicksPerSecond); }),
      session_(*this, host_, windows_, pad_) {
    host_.range = {0, setup.frames * setup.ticksPerFrame};
    host_.ticksPerFrame = setup.ticksPerFrame;
    host_.metresPerUnit = setup.metresPerUnit;
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
    hands_.PlayUntil(Seconds());
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

}  // namespace tavrik
