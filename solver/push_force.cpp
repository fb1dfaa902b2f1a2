#include "solver/push_force.h"

#include "solver/truncate.h"

namespace tavrik {
namespace {

TimeValue TickAt(double time) { return TruncateToInt(time * double(kTicksPerSecond)); }

DPoint3 VectorAt(const PushForce& push, const Matrix3& frame, TimeValue tick) {
    return FromPoint3(frame.row[1] * push.source->PushMagnitude(tick));
}

}  // namespace

DPoint3 PushVector(const PushForce& push, double time) {
    const TimeValue tick = TickAt(time);
    return VectorAt(push, push.source->GetObjectTM(tick), tick);
}

void ApplyPush(const PushForce& push, double time, double w) {
    const TimeValue tick = TickAt(time);
    const Matrix3 frame = push.source->GetObjectTM(tick);
    ApplyForceAt(*push.body, FromPoint3(frame.row[3]), VectorAt(push, frame, tick) * w);
}

}  // namespace tavrik
