#include "studio/view/chase_camera.h"

#include <cmath>

#include "rig/ticks.h"

namespace tavrik_studio {
namespace {

/// The shorter way round, -180..180.
float Between(float from, float to) { return std::remainder(to - from, 360.0f); }

}  // namespace

float HeadingOf(const Matrix3& place, float usual) {
    const Point3 ahead = place.GetRow(1);
    if (std::abs(ahead.x) + std::abs(ahead.y) < 1e-4f) return usual;
    return std::atan2(ahead.x, ahead.y) * 57.29578f;
}

void ChaseCamera::Start(tavrik_host::ViewState& state, const Matrix3& place, TimeValue tick) {
    heading_ = HeadingOf(place, state.heading);
    height_ = place.GetTrans().z;
    tick_ = tick;
    state.heading = heading_;
    state.target = place.GetTrans();
}

void ChaseCamera::Update(tavrik_host::ViewState& state, const Matrix3& place, TimeValue tick) {
    const float seconds = float(double(tick) - double(tick_)) / float(tavrik::kTicksPerSecond);
    tick_ = tick;
    const float wanted = HeadingOf(place, heading_), before = heading_;
    const bool isJump = seconds < 0.0f || seconds > kLongestSeconds;
    const float turned = isJump ? 1.0f : 1.0f - std::exp(-seconds / kTurnSeconds);
    const float risen = isJump ? 1.0f : 1.0f - std::exp(-seconds / kRiseSeconds);
    heading_ += Between(heading_, wanted) * turned;
    const Point3 at = place.GetTrans();
    height_ += (at.z - height_) * risen;
    state.heading += heading_ - before;
    state.target = Point3(at.x, at.y, height_);
}

}  // namespace tavrik_studio
