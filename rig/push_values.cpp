#include "rig/push_values.h"

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

// Artists type forces in millions of the solver's unit: a push that moves a car has eight digits.
constexpr float kForceUnit = 1e6f;

}  // namespace

void UpdatePushCache(PushValues& values, const SceneNode& node) {
    values.pushType = node.GetInt(PushParam::Push_Type);
    values.force = node.GetFloat(PushParam::Push_Force) * kForceUnit;
    if (values.pushType != 0) return;
    values.startTick = node.GetInt(PushParam::Start_Time);
    values.lengthTicks = node.GetFloat(PushParam::Push_Length) * float(kTicksPerSecond);
}

float PushMagnitude(const PushValues& values, TimeValue tick, float animMult) {
    if (values.pushType != 0) return animMult * values.force * 0.01f;
    // Asked as "not beyond the end", so that a length that is no number never ends.
    if (tick >= values.startTick && !(float(TicksBetween(values.startTick, tick)) > values.lengthTicks)) return values.force;
    return 0.0f;
}

}  // namespace tavrik
